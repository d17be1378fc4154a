"""Random runs of the tool, for two builds to be compared on, as a strategy of Hypothesis.

The cases of `generator` are made for a naive second implementation, which has to know what a
command prints and what stands in a database. Between two builds everything may happen that is the
same twice. So these cases crowd their faults: several in one file, on the piece that a command
stands on, and below line 255, where the number in a record starts again.

As there, a case first picks its mood. A bad line ends the run before most templates are read, so
the cases with bad lines are a mood of their own, with the templates on the generated keys, which
are read before.
"""

import functools
import itertools
from dataclasses import dataclass

from hypothesis import strategies as st

import generator
from build_requests import add_logging, make_arguments
from draws import often, pick, place, weighted
from generator import PIECES, WORDS, draw_lines, fill, line_shapes, value_shapes

GROUPS = [b"Config"] * 4 + [b"A"] * 3 + [b"B b", b"GeneratedConfig", b"config", b" x ", b"Refs"]
KEYS = [b"K", b"K", b"K", b"L", b"L", b"M", b"my key ", b"N-1.x_", b"BaseUid", b"Instance"]
GENERATED = [b"BaseUid", b"UserId", b"User", b"Home", b"Instance"]

# Nothing here depends on the moment, on the process, or on what ran before.
COMMANDS = [
    b"echo out", b"echo err >&2", b"printf part >&2", b"echo out && echo err >&2", b"true", b"", b":",
    b"echo err >&2 && exit 7", b"exit 65", b"exit 255", b"false", b"kill -9 $$", b"echo gone >&2 && kill -15 $$",
    b"no-such-command", b"echo )", b"printf 'one\\ntwo\\n\\n'", b"printf 'cut\\000away\\nkept'", b"printf '\\377\\n'",
    b"echo >&2", b"printf 'WARNING: not ours\\n' >&2", b"printf '%s' '${HOME'", b"printf 'x%1500sy' z",
    b"cat env/one", b"cat env/one >&2", b"cat d1/none", b'echo "$DT_ONE$XDG_CONFIG_HOME"',
    b'echo "<$XDG_CONFIG_HOME>" >&2', b"cd d1 && pwd", b"echo more >>log", b"echo more >>/proc/$PPID/fd/1",
    b"echo more >>/proc/$PPID/fd/2", b"exec >&-", b"echo x >/dev/full", b"read line || echo no input >&2",
]  # fmt: skip
COMMANDS_WITHOUT_TEXT = [b"echo", b"printf ' \\t '"]

PROPERTIES = [b"${prop:ro.short}", b"${prop:ro.longest}", b"${prop:ro.zero}", b"${prop:ro.negative}", b"${prop:}"]
DATABASE = [
    b"${dconf:/tw/%s}" % key
    for key in (b"text", b"number", b"byte", b"real", b"flag", b"list", b"blank", b"empty", b"template", b"none")
] + [b"${dconf:}", b"${dconf:tw/text}", b"${dconf:/tw/}", b"${dconf://}"]
SHOW_CONFIG_HOME = b"${system:printenv XDG_CONFIG_HOME >&2}"  # which reading the database leaves changed
FORMS = [
    b"${envfile:env/one:NAME:x}", b"${envfile:env/one}", b"${envfile::}", b"${envfile:/dev/null:NAME}",
    b"${envfile:env/three:NAME}", b"${envfile:env/three:LAST}", b"${envfile:env/three:}", b"${envfile:env:NAME}",
    b"${env:DT_ONE }", b"${env: DT_ONE}", b"${env:DT_\0ONE}", b"${realpath:/dev/../dev/null}", b"${realpath:\0}",
    b"${realpath:d1/../../}", b"${realpath:loop}", b"${realpath:dangling}", b"${system}", b"${dconf}", b"${prop}",
    b"${config:A/K}${", b"${USER_ID}$", b"${HOME\0}", b"${env:DT_UNSET}$x", b"${ODM_DIR}${}", b"${config:A\0/K}",
]  # fmt: skip
FAULTS = [b"$", b"${NOPE}", b"${", b"${env:DT_UNSET}", b"${config:A}", b"${foo:bar}", b"${realpath:nowhere}", b"$x"]

# The reader's first buffer holds 32 KiB, the next ones twice as much.
LENGTHS = [300, 1023, 1024, 4096, 32766, 32767, 32768, 32769, 40000, 65535, 65536, 65537, 140000]

GENERATED_USER_IDS = [b"0"] * 10 + [b"1", b"12345", b"0x0", b"abc", b"99999999999", b"1 2", b"-5", b"${system:}"]
GENERATED_TEXTS = [b"0", b"text", b"text;other", b"${HOME}", b"${INSTANCE}", b"${system:}", b"${env:DT_ONE}"]


@dataclass(repr=False)
class BuildCase:
    """Everything that a run depends on: the files (name to content, None for a directory), the
    links (name to target), arguments and environment. With `one_stream` standard output and error
    stream are the same file, so that the order between the two counts as well."""

    mood: str
    files: dict
    links: dict
    arguments: list
    environment: dict
    one_stream: bool

    __repr__ = generator.show_case


# --- lines -------------------------------------------------------------------------------

HEADERS = [b"[" + group + b"]" for group in GROUPS]
REFERENCES = [
    b"${config:" + group + b"/" + key + end + b"}"
    for end, group, key in itertools.product([b"", b"", b"/"], GROUPS, KEYS)
]
DATABASE_TEMPLATES = [
    template + end
    for template, end in itertools.product(DATABASE, [b"", b"", b";", SHOW_CONFIG_HOME, b";" + SHOW_CONFIG_HOME])
]
COMMAND_TEMPLATES = [b"${system:" + command + b"}" for command in COMMANDS]
BLANKS = generator.BLANKS + [
    b"${dconf:/tw/blank}",
    *[b"${system:" + command + b"}" for command in COMMANDS_WITHOUT_TEXT],
]


@functools.cache
def atoms(has_blanks):
    """Commands often stand between faults, whose records and their output must not change places."""
    return weighted(
        (7 if has_blanks else 32, generator.LITERALS),
        (15, generator.GOOD_TEMPLATES),
        (8, generator.MISSING_TEMPLATES),
        (5, generator.BROKEN_TEMPLATES),
        (6, FORMS),
        (3, PROPERTIES),
        (2, DATABASE_TEMPLATES),
        (8, COMMAND_TEMPLATES),
        (3, [command + fault for command in COMMAND_TEMPLATES for fault in FAULTS]),
        (1.5, [fault + command for command in COMMAND_TEMPLATES for fault in FAULTS]),
        (
            1.5,
            [b"".join(three) for three in itertools.product(COMMAND_TEMPLATES, [b";", b"", b" "], COMMAND_TEMPLATES)],
        ),
        (16, REFERENCES),
        *[(25, BLANKS)] * has_blanks,
        slots=1 << 16,
    )


PLAIN_PIECES = ["a", "a", "aa", "aa", "aaa", "aaaa"]
PIECES_AMONG_BLANKS = ["wa", "aw", "awa", "waa", "aaw", "aawa", "a"]
LONG_LINES = [(2, [(key + b"=", "l") for key in KEYS])]


@functools.cache
def shapes_of_lines(has_blanks):
    return line_shapes(KEYS, HEADERS, PIECES_AMONG_BLANKS if has_blanks else PLAIN_PIECES, LONG_LINES)


def long_text(filler, length, less, end):
    return (filler * (length // len(filler) + 1))[: length - less] + end


LONG_VALUES = st.builds(
    long_text,
    st.sampled_from([b"v", b"; ", b"v;", b"$$", b"\0", b"\xff"]),
    st.sampled_from(LENGTHS),
    st.sampled_from(range(5)),
    st.sampled_from([b"", b"", b"end", b"$", b"${HOME}"]),
)


@functools.cache
def marks(has_blanks):
    return {"a": atoms(has_blanks), "w": WORDS, "l": LONG_VALUES}


VALUE_SHAPES = weighted(*value_shapes(PIECES))


# --- files -------------------------------------------------------------------------------

PATHS = generator.PATHS
FAR_DOWN = [line * count for line in (b"# far down\n", b"\n", b";\n") for count in range(240, 600, 12)]
ENDS = weighted((82, [(b"\n", b"\n")]), (15, [(b"\n", b"")]), (3, [(b"\r\n", b"\r\n")]), slots=256)
# What is far above the lines of a file, and the line before them; None for an empty file.
FRAMES = weighted(
    (14, [None]),
    (65, [(b"", header) for header in HEADERS]),
    (11, [(b"", b"")]),
    (10, [(far_down, HEADERS[0]) for far_down in FAR_DOWN]),
)


def end_lines(draw, lines):
    between, last = draw(ENDS)
    return between.join(lines) + last if lines else b""


@st.composite
def contents(draw, has_blanks):
    frame = draw(FRAMES)
    if frame is None:
        return b""
    far_above, first = frame
    return far_above + end_lines(draw, [first, *draw_lines(draw, shapes_of_lines(has_blanks), marks(has_blanks))])


@functools.cache
def configuration_files(has_blanks):
    return st.lists(st.tuples(PATHS, contents(has_blanks)), min_size=2, max_size=6).map(dict)


LONG_ENVIRONMENT_FILES = weighted(
    (90, [{}]), (10, [{b"env/three": b"NAME=" + b"n" * length + b"\nLAST=last"} for length in LENGTHS])
)


@functools.cache
def environment_files(has_blanks):
    chosen = generator.ENVIRONMENT_FILE_LINES + [b"NAME=" + b"n" * 5000]
    if has_blanks:
        chosen = chosen + generator.BLANK_ENVIRONMENT_FILE_LINES
    else:
        chosen.remove(b"NAME=\r")  # ends the run
    line = st.sampled_from(chosen)
    content = st.lists(line.map(lambda text: text + b"\n"), max_size=6).map(b"".join)
    return st.fixed_dictionaries({b"env/one": content, b"env/two": line})


# --- moods -------------------------------------------------------------------------------

SIZES = st.sampled_from([1, 2, 5, 16, 30, 31, 32, 33, 34, 35])
SHAPES = st.sampled_from(["circle", "chain", "fan", "fan of pairs"])
AMONG = weighted((75, [b"Refs"]), (25, [b"GeneratedConfig"]), slots=256)
LEAVES = weighted((90, [None]), (10, [b"", b"again", b";", b"${NOPE}", b"${config:Refs/Gone}"]), slots=256)
REFERENCE = st.sampled_from(REFERENCES)
AROUND = st.sampled_from(
    list(
        itertools.product(
            [b"", b"", b" ", b"\t  ", b"    "],
            [b"", b"a"],
            [b"", b"", b"y", b" ", b"yyyyyyyy "],
        )
    )
)


def add_blanks(draw, text):
    blanks, word, behind = draw(AROUND)
    return blanks + word + text + behind


STARTS = st.sampled_from([b"", b";", b"x", b"<"])
GENERATED_VALUES = st.sampled_from([b"0", b"text", None])


def add_references(draw, case):
    """A circle, a chain, or a fan around the limit, with blanks around and keys that go again, in
    a file that is read last; now and then among the generated keys."""
    size = draw(SIZES)
    group = draw(AMONG)
    following = [(number + 1) % size for number in range(size)]
    chain = [b"N%d=n${config:Refs/N%d}" % (number, after) for number, after in enumerate(following)]
    lines = [b"[Refs]", b"Leaf=leaf", b"Pair=(${config:Refs/Leaf})", b"Twice=${config:Refs/Leaf};plain"]
    shape = draw(SHAPES)
    start = b"${config:Refs/N0}"
    if shape == "fan":
        start = b"${config:Refs/Leaf}" * size
    elif shape == "fan of pairs":
        start = b"${config:Refs/Pair}" * (size // 2) + b"${config:Refs/Twice}" * (size % 2)
    else:
        lines += chain
    if shape == "chain":
        lines[-1] = b"N%d=end" % (size - 1)
    leaf = draw(LEAVES)
    if leaf is not None:
        lines += [b"[Refs]", b"Leaf=" + leaf]
    lines += [b"[" + group + b"]", b"Start=" + start]
    if group == b"GeneratedConfig":
        lines += [key + b"=" + (draw(GENERATED_VALUES) or pick(draw, [start, draw(REFERENCE)])) for key in GENERATED]
    lines.append(b"Start=" + draw(STARTS) + add_blanks(draw, start))
    if draw(st.booleans()):
        lines.append(b"Start=after;;" + add_blanks(draw, start) + b";" + add_blanks(draw, b"${config:Refs/Gone}x"))
    case.files[b"d3/zz.conf"] = end_lines(draw, lines)


USER_ID_VALUES = st.sampled_from(GENERATED_USER_IDS)
TEXT_VALUES = st.sampled_from(GENERATED_TEXTS)
KINDS = weighted((75, ["simple"]), (20, ["any"]), (5, ["none"]), slots=256)
GENERATED_FILES = st.sampled_from([b"d1/zz.conf", b"d2/zz.conf"])


def add_generated_user(draw, case):
    lines = [b"[GeneratedConfig]"]
    for key in GENERATED:
        kind = draw(KINDS)
        if kind == "simple":
            lines.append(key + b"=" + draw(USER_ID_VALUES if key == b"UserId" else TEXT_VALUES))
        elif kind == "any":
            lines.append(key + b"=" + any_value(draw, case))
    if draw(often(20)):
        lines.append(pick(draw, GENERATED) + b"=" + add_blanks(draw, draw(REFERENCE)))
    case.files[draw(GENERATED_FILES)] = end_lines(draw, lines)


def any_value(draw, case):
    return fill(draw, draw(VALUE_SHAPES), marks(case.mood == "blanks"))


LONG_BAD_LINES = [start * length for start in (b" ", b"[", b"K", b"[\0", b"\xff", b"K\0=") for length in LENGTHS]
BAD_LINES = weighted(
    (90, generator.BAD_LINES),
    (5, LONG_BAD_LINES),
    (5, [bytes([byte]).replace(b"\n", b"\0") + b"K=v" for byte in range(256)]),
)
BAD_LINES_TOGETHER = st.lists(BAD_LINES, min_size=1, max_size=3)
LINES_FAR_DOWN = weighted((50, [b""]), (50, FAR_DOWN))


def add_bad_lines(draw, case):
    """Several faults in one file, between entries that the first reading takes, often far down."""
    name = pick(draw, [name for name in case.files if name.endswith(b".conf")])
    lines = (draw(LINES_FAR_DOWN) + case.files[name]).split(b"\n")
    for bad in draw(st.lists(BAD_LINES_TOGETHER, min_size=1, max_size=4)):
        first = len(lines) // 2 if draw(st.booleans()) else 0
        at = first + place(draw, len(lines) - first + 1)
        lines[at:at] = bad
    if draw(often(70)):
        at = place(draw, len(lines) + 1)
        lines[at:at] = [b"[GeneratedConfig]", pick(draw, GENERATED) + b"=" + any_value(draw, case)]
    case.files[name] = end_lines(draw, lines)


def around_buffer(length, less, last, first, counts_last, between, end):
    """Lines that end, or a file that ends, where the reader's buffer does, or close to that."""
    filler = b"x" * (length + less - len(first) - (0, 0, len(last), len(last) + 1)[counts_last])
    return first + filler + between + last + end


FILES_AROUND_BUFFER = st.builds(
    around_buffer,
    st.sampled_from([32768, 65536, 131072]),
    st.sampled_from([0, 0, 0, -1, 1, -2, 2]),
    st.sampled_from([b"", b"K=v", b"K=v;" * 20, b"K", b"[A]\nK=v", b"=", b"\0"]),
    st.sampled_from([b"#", b"K=", b"[A]\nK=", b"K", b"["]),
    st.sampled_from(range(4)),
    st.sampled_from([b"\n", b""]),
    st.sampled_from([b"\n", b""]),
)
ODD_NAMES = st.sampled_from(
    [directory + name for directory in generator.DIRECTORIES for name in (b"/0.conf", b"/m.conf", b"/zz.conf")]
)
ODD_CONTENTS = st.sampled_from(
    [b"", b"\n", b"\0", b"K", b"[", b"\r\n", b"K=v", b"#", b"\xef\xbb\xbf[A]\n", b"[]\n=\n", None]
)
ODD_TARGETS = st.sampled_from(
    [b"../loop", b"nowhere", b"/dev/null", b".", b"10-a.conf", b"../env/one", b"/proc/self/mem"]
)
ODD_KINDS = weighted((35, ["content"]), (25, ["around buffer"]), (40, ["link"]), slots=256)


def add_odd_files(draw, case):
    name = draw(ODD_NAMES)
    kind = draw(ODD_KINDS)
    if kind == "link":
        case.files.pop(name, None)
        case.links[name] = draw(ODD_TARGETS)
    else:
        case.files[name] = draw(ODD_CONTENTS if kind == "content" else FILES_AROUND_BUFFER)
    case.files |= pick(draw, [{path: b"K=not read\n bad\n"} for path in generator.OTHER_PATHS])


# How often a mood comes, what it adds, and how often that is added in other moods, in per cent.
MOODS = {
    "templates": (28, None, 0),
    "bad lines": (22, add_bad_lines, 0),
    "references": (18, add_references, 10),
    "generated user": (10, add_generated_user, 5),
    "blanks": (8, None, 0),
    "odd files": (6, add_odd_files, 0),
    "command line": (8, None, 0),
}
MOOD = weighted(*[(weight, [mood]) for mood, (weight, _, _) in MOODS.items()])
ADDED = weighted((85, [None]), *[(percent, [mood]) for mood, (_, _, percent) in MOODS.items() if percent])
CONFIG_HOMES = weighted((70, [{}]), (30, [{b"XDG_CONFIG_HOME": home} for home in (b"", b"/nowhere")]), slots=256)


@st.composite
def cases(draw):
    mood = draw(MOOD)
    has_blanks = mood == "blanks"
    case = BuildCase(
        mood=mood,
        files=draw(environment_files(has_blanks))
        | draw(configuration_files(has_blanks))
        | draw(LONG_ENVIRONMENT_FILES),
        links={b"loop": b"loop", b"dangling": b"nowhere"},
        arguments=[],
        environment=generator.ENVIRONMENT | (generator.BLANK_ENVIRONMENT if has_blanks else {}) | draw(CONFIG_HOMES),
        one_stream=draw(often(40)),
    )
    for added in dict.fromkeys([draw(ADDED), mood]):
        _, add_extras, _ = MOODS.get(added, (0, None, 0))
        if add_extras:
            add_extras(draw, case)
    add_logging(draw, case)
    case.arguments = make_arguments(draw, case)
    return case
