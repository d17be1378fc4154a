"""Random configurations, as strategies of Hypothesis.

A configuration of uniformly random bytes would almost always be one syntax error, so every
case first picks its mood: which kinds of trouble it may contain. Half of the cases are free of
errors that end the run, and the rest concentrate on one kind each.
"""

import functools
import itertools
from dataclasses import dataclass

from hypothesis import strategies as st

from draws import pick, place, weighted
from naive_tool import COMMANDS

GROUPS = [b"Config", b"Config", b"Config", b"A", b"A", b"B b", b"config", b" x ", b"", b"GeneratedConfig", b"0.-_"]
KEYS = [b"K", b"K", b"L", b"M", b"k", b"my key ", b"N-1.x_", b"User", b"Home"]
GENERATED = [b"UserId", b"User", b"Home", b"BaseUid"]

FILE_NAMES = [b"10-a.conf", b"9-b.conf", b"a.conf", b"B.conf", b"a-b.conf", b"a.b.conf", b"\xc3\xa9.conf", b"z z.conf"]
NOT_CONFIGURATION = [b".hidden.conf", b"a.conf.bak", b"notes.txt", b"CAPS.CONF", b".conf"]
DIRECTORIES = [b"d1", b"d2", b"d3"]

ENVIRONMENT = {
    b"DT_ONE": b"one",
    b"DT_EMPTY": b"",
    b"DT_PADDED": b"  padded\t",
    b"DT_TEMPLATE": b"${HOME}$$",
    b"DT_LIST": b"p;q",
    b"DT_BYTES": b"\xff\xa0\x85",
    b"DT_LINES": b"l1\nl2\n",
}
BLANK_ENVIRONMENT = {b"DT_BLANK": b" \t ", b"DT_SPACE": b" "}

ENVIRONMENT_FILE_LINES = [
    b"NAME=plain", b"NAME=a=b", b"NAME=", b'NAME=""', b'NAME="', b' NAME = "two words" ', b"NAME='single'",
    b"NAME", b"", b"=nameless", b"#NAME=comment", b"export NAME=x", b"OTHER=1", b"a:b=colon", b"NAME=\r",
    b"OTHER= 2\t", b'OTHER=""x""', b"NAME=$HOME${HOME}",
]  # fmt: skip
BLANK_ENVIRONMENT_FILE_LINES = [b"NAME=   ", b"  =x", b"OTHER=\t", b"UNUSED=  "]

BAD_LINES = [
    b" key=value", b"=value", b"\tK=1", b"\r", b"{", b'"K"=1', b"\x80K=1", b"/K=1", b"\0K=1",
    b"[unclosed", b"[Config] ", b"[Config]\r", b"[", b"[a/b]", b"[\xe9]", b"[a]b]", b"[[x]]",
    b"K", b"just words", b"ke/y=1", b"K\t=1", b"K\xc3=1", b"a:b=1", b"K[0]=1", b"-", b"K;L=1",
]  # fmt: skip
HARMLESS_LINES = [b"", b"# comment", b";comment", b"#", b"; K=1", b"# \xff\0"]

GOOD_TEMPLATES = [
    b"${HOME}", b"${USER}", b"${USER_ID}", b"${INSTANCE}", b"${ODM_DIR}", b"$$", b"$$$$", b"$${HOME}",
    b"${env:DT_ONE}", b"${env:DT_TEMPLATE}", b"${env:DT_LIST}", b"${env:DT_BYTES}", b"${env:DT_LINES}",
    b"${envfile:env/one:NAME}", b"${envfile:env/one:OTHER}", b"${envfile:env/two:NAME}",
    b"${envfile:env/one:a:b}", b"${envfile:env/one:}",
    b"${realpath:.}", b"${realpath:d1/../d1}", b"${realpath:d1/}", b"${realpath:env/one}", b"${realpath:/}",
]  # fmt: skip
MISSING_TEMPLATES = [
    b"${env:DT_EMPTY}", b"${env:DT_UNSET}", b"${env:}", b"${envfile:env/none:NAME}", b"${envfile:env/one:ABSENT}",
    b"${envfile::NAME}", b"${envfile:d1:NAME}", b"${realpath:nowhere}", b"${realpath:}", b"${realpath:env/one/..}",
    b"${prop:ro.x}", b"${realpath:loop}", b"${dconf:/tw/none}", b"${dconf:tw}", b"${dconf:}",
]  # fmt: skip
BROKEN_TEMPLATES = [
    b"$", b"$x", b"a$ b", b"${", b"${HOME", b"${env:DT_ONE", b"${}", b"${home}", b"${ HOME}", b"${HOME }",
    b"${${HOME}}", b"${foo:bar}", b"${:x}", b"${Config:A/K}", b"${CONFIG:A/K}", b"${envfile:NAME}", b"${envfile:}",
    b"${config:A}", b"${config:/K}", b"${config:A/}", b"${config:A//K}", b"${config:A/K/L}", b"${config:}",
    b"${config:A/K//}", b"${config:/}", b"${system:a;b}", b"$\0", b"$}",
]  # fmt: skip
COMMAND_ENDS_IN_BLANK = [b"echo", b"printf ' \\t '"]
LITERALS = [
    b"x", b"value", b"two words", b"a=b", b"#not a comment", b"[x]", b"{", b"}", b"/", b":", b"'", b'"', b"\\",
    b"0", b"true", b"-1", b"\xff\xfe", b"\xc3\xa9", b"\x85", b"\xa0", b"a\0b", b"a\rb", b"\x7f", b"%s%n",
]  # fmt: skip
BLANKS = [
    b" ", b"  ", b"\t", b"\r", b"\v", b"\f", b" \t\r ", b"\v ",
    b"${env:DT_BLANK}", b"${env:DT_SPACE}", b"${env:DT_PADDED}",
]  # fmt: skip
NUMBERS = [b"0", b"1", b"+1", b"0x1", b"007", b"1x", b"abc", b"12345", b"99999999999", b"-5", b"0xFFFFFFFFF", b"1 2"]


def show_case(case):
    """The case as somebody would want to see it who has to find the fault."""
    lines = [f"{name} {value!r}" for name, value in vars(case).items() if name not in ("files", "links")]
    lines += [f"file {name!r}: {content!r}" for name, content in case.files.items()]
    lines += [f"link {name!r} -> {target!r}" for name, target in case.links.items()]
    return "\n".join(lines)


@dataclass(repr=False)
class Case:
    """Everything that a run depends on: the files (name to content, None for a directory), the
    links (name to target) and what is asked for."""

    mood: str
    files: dict
    links: dict
    directories: list
    group: bytes
    key: bytes
    user_id: int
    instance: bytes
    level: bytes | None
    list_all: bool
    environment: dict

    __repr__ = show_case


def entries_of(files):
    """Every (group, key, value) that stands in a configuration, as far as one can tell without a parser."""
    for name, content in files.items():
        if content is None or not name.endswith(b".conf"):
            continue
        group = b""  # of what stands above any header
        for line in content.split(b"\n"):
            if line.startswith(b"["):
                group = line[1:-1]
            elif b"=" in line and line[:1] not in b"#;":
                yield group, *line.split(b"=", 1)


# --- lines -------------------------------------------------------------------------------

HEADERS = [b"[" + group + b"]" for group in GROUPS]
FAR_DOWN = [b"\n".join([b"# far down"] * count) for count in range(20, 301, 20)]
REFERENCES = [
    b"${config:" + group + b"/" + key + end + b"}"
    for end, group, key in itertools.product([b"", b"", b"", b"/"], filter(None, GROUPS), KEYS)
]
COMMAND_TEMPLATES = [b"${system:" + command + b"}" for command in COMMANDS if command not in COMMAND_ENDS_IN_BLANK]
BLANK_COMMAND_TEMPLATES = [b"${system:" + command + b"}" for command in COMMAND_ENDS_IN_BLANK]

MOOD_ATOMS = {
    "missing values": [(25, MISSING_TEMPLATES)],
    "broken templates": [(25, BROKEN_TEMPLATES)],
    "blanks": [(30, BLANKS), (2, BLANK_COMMAND_TEMPLATES)],
}

# The pieces of values: "a" stands for an atom, "w" for a word. Between blanks there has to be
# something to keep, or hardly any case would get past its first line.
PIECES = ["a", "a", "a", "aa", "aa", "aaa", "aaaa"]
PIECES_AMONG_BLANKS = ["w", "aw", "wa", "awa", "aawa", "waa", "aaw", "a"]


@functools.cache
def atoms(mood):
    extras = MOOD_ATOMS.get(mood, [])
    words = 60 - sum(weight for weight, _ in extras)
    return weighted((words, LITERALS), (22, GOOD_TEMPLATES), (15, REFERENCES), (3, COMMAND_TEMPLATES), *extras)


def value_shapes(pieces):
    """Values of one, two or three pieces, some of which are empty."""
    return [
        (65, pieces),
        (15, [";".join(pair) for pair in itertools.product(pieces, repeat=2)]),
        (12, [";".join(three) for three in itertools.combinations(pieces, 3)]),
        (8, [shape.replace("p", piece) for piece in pieces for shape in ("p;", ";p", "p;;p", "p;;;p")]),
    ]


END = (None, "")


def line_shapes(keys, headers, pieces, more=()):
    """A line as the text that it starts with and the shape of the value behind that, or the end of all lines."""
    starts = [key + b"=" for key in keys]
    values = [(0.55 * weight, list(itertools.product(starts, shapes))) for weight, shapes in value_shapes(pieces)]
    texts = [(9, starts), (7, HARMLESS_LINES), (0.5, FAR_DOWN), (30, headers)]
    texts = [(weight, [(text, "") for text in alternatives]) for weight, alternatives in texts]
    return weighted((13, [END]), *values, *texts, *more)


LINE_SHAPES = line_shapes(KEYS, HEADERS, PIECES)
LINE_SHAPES_AMONG_BLANKS = line_shapes(KEYS, HEADERS, PIECES_AMONG_BLANKS)
WORDS = st.sampled_from(LITERALS)


def fill(draw, shape, strategies):
    """The text of a value: what is drawn for each mark of its shape."""
    return b"".join(b";" if mark == ";" else draw(strategies[mark]) for mark in shape)


def draw_lines(draw, shapes, strategies):
    """Lines until one is the end: so a failing case loses its lines one by one."""
    while True:
        text, shape = draw(shapes)
        if text is None:
            return
        yield text + fill(draw, shape, strategies)


# --- files -------------------------------------------------------------------------------

PATHS = st.sampled_from([directory + b"/" + name for directory in DIRECTORIES for name in FILE_NAMES])
OTHER_PATHS = [directory + b"/" + name for directory in DIRECTORIES for name in NOT_CONFIGURATION]
NOT_READ = weighted((73, [{}]), (27, [{path: b"K=not read\n bad\n"} for path in OTHER_PATHS]))
# The line before the others, and how the last one ends; None for an empty file.
FRAMES = weighted(
    (10, [None]),
    (69, [(header, b"\n") for header in HEADERS]),
    (8, [(header, b"") for header in HEADERS]),
    (8, [(b"", b"\n"), (b"", b"")]),
)


@st.composite
def contents(draw, mood):
    frame = draw(FRAMES)
    if frame is None:
        return b""
    first, end = frame
    shapes = LINE_SHAPES_AMONG_BLANKS if mood == "blanks" else LINE_SHAPES
    return b"\n".join([first, *draw_lines(draw, shapes, {"a": atoms(mood), "w": WORDS})]) + end


@functools.cache
def configuration_files(mood):
    return st.lists(st.tuples(PATHS, contents(mood)), min_size=2, max_size=8).map(dict)


@functools.cache
def environment_files(mood):
    chosen = ENVIRONMENT_FILE_LINES + BLANK_ENVIRONMENT_FILE_LINES * (mood == "blanks")
    line = st.sampled_from(chosen)
    content = st.lists(line.map(lambda text: text + b"\n"), max_size=8).map(b"".join)
    return st.fixed_dictionaries({b"env/one": content, b"env/two": line})


# --- what is asked -----------------------------------------------------------------------

ORDERS = weighted(*[(1, list(itertools.permutations(DIRECTORIES, count))) for count in (1, 2, 3)])
ENDS = st.sampled_from([(b"", b"", b""), (b"", b"", b""), (b"/", b"", b""), (b"", b"/", b"/"), (b"/", b"/", b"/")])
MORE_DIRECTORIES = weighted((75, [None]), (10, [b"absent"]), (10, DIRECTORIES), (5, [b"d[12]"]))


@st.composite
def directory_lists(draw):
    directories = [name + end for name, end in zip(draw(ORDERS), draw(ENDS))]
    another = draw(MORE_DIRECTORIES)
    if another is not None:
        directories.insert(place(draw, len(directories) + 1), another)
    return directories


USER_IDS = weighted((65, [0]), (16, [1]), (16, [65534]), (3, [12345]))
INSTANCES = st.sampled_from([b"default", b"default", b"second", b"", b"${HOME}"])
LEVELS = weighted((10, [None]), (5, [b"debug"]), (4, [b"Critical", b"ERROR", b"3", b"0x4"]))
ANY_KEYS = weighted((90, [None]), (10, list(itertools.product(GROUPS, KEYS))))


def read_files(files, directories):
    """The configuration files that stand in these directories."""
    places = tuple(directory.rstrip(b"/") for directory in directories)
    return {name: content for name, content in files.items() if name.endswith(b".conf") and name.startswith(places)}


def requested_key(draw, files, directories):
    """Mostly one that stands in a file that is read."""
    absent = draw(ANY_KEYS)
    if absent is not None:
        return absent
    found = [(group, key) for group, key, value in entries_of(read_files(files, directories)) if value]
    return pick(draw, found or [(GROUPS[0], KEYS[0])])


# --- moods -------------------------------------------------------------------------------

FAN_SIZES = st.sampled_from([1, 2, 5, 31, 32, 32, 33, 33, 34])
FAN_SHAPES = st.sampled_from(["cycle", "chain", "fan", "fan of pairs"])
BEFORE = st.sampled_from([None, None, None, b"before", b"before", b"before "])


def add_references(draw, case):
    """A cycle, a chain or a fan around the limit, in a file that is read last."""
    size = draw(FAN_SIZES)
    shape = draw(FAN_SHAPES)
    lines = [b"[Fan]", b"Leaf=leaf", b"Pair=(${config:Fan/Leaf})", b"Twice=${config:Fan/Leaf};plain"]
    start = b"<${config:Fan/N0}>"
    if shape == "fan":
        start = b"<" + b"${config:Fan/Leaf}" * size + b">"
    elif shape == "fan of pairs":
        start = b"<" + b"${config:Fan/Pair}" * (size // 2) + b"${config:Fan/Twice}" * (size % 2) + b">"
    else:
        following = [b"%d" % (number + 1) for number in range(size - 1)] + [b"0"]
        lines += [b"N%d=n${config:Fan/N%s}" % (number, after) for number, after in enumerate(following)]
    if shape == "chain":
        lines[-1] = b"N%d=end" % (size - 1)
    lines += [b"[" + case.group + b"]", case.key + b"=" + start]
    before = draw(BEFORE)
    if before is not None:
        lines.append(case.key + b"=after;;" + start + b";" + before + b"${config:Fan/Leaf}")
    last = [name.rstrip(b"/") for name in case.directories if name.rstrip(b"/") in DIRECTORIES][-1]
    case.files[last + b"/zz.conf"] = b"\n".join(lines) + b"\n"


# Now and then one is missing.
GENERATED_KEYS = weighted(
    (60, list(itertools.permutations([*GENERATED, b"Instance"]))),
    (30, list(itertools.permutations(GENERATED))),
    (20, list(itertools.permutations([*GENERATED, b"Instance"], 4))),
)
GENERATED_NUMBERS = weighted((80, NUMBERS[:4]), (20, NUMBERS[4:]))
GENERATED_SHAPES = weighted(*value_shapes(PIECES))


def add_generated_user(draw, case):
    lines = [b"[GeneratedConfig]"]
    for key in draw(GENERATED_KEYS):
        is_number = key in (b"UserId", b"BaseUid")
        value = draw(GENERATED_NUMBERS) if is_number else fill(draw, draw(GENERATED_SHAPES), {"a": atoms("plain")})
        lines.append(key + b"=" + value)
    case.files[b"d1/zz-generated.conf"] = b"\n".join(lines) + b"\n"


def add_bad_lines(draw, case):
    names = list(read_files(case.files, case.directories)) or [b"d1/a.conf"]
    for bad in draw(st.lists(st.sampled_from(BAD_LINES), min_size=1, max_size=3)):
        name = pick(draw, names)
        lines = case.files.get(name, b"").split(b"\n")
        lines.insert(place(draw, len(lines)), bad)
        case.files[name] = b"\n".join(lines)


LINK_TARGETS = {"dangling link": b"nowhere", "link": b"../linked.conf", "link to a directory": b"../env"}
ODD_FILES = st.sampled_from(["directory", "link loop", *LINK_TARGETS])


def add_odd_file(draw, case):
    name = draw(PATHS)
    case.files.pop(name, None)
    kind = draw(ODD_FILES)
    if kind == "directory":
        case.files[name] = None
    else:
        case.links[name] = LINK_TARGETS.get(kind, name.split(b"/")[1])
        case.files[b"linked.conf"] = b"[Config]\nK=linked\n"


def add_nothing(draw, case):
    pass


# Every mood allows the plain things; these are the extras. Weights are out of 100.
MOODS = {
    "plain": (40, add_nothing),
    "missing values": (10, add_nothing),
    "broken templates": (10, add_nothing),
    "blanks": (10, add_nothing),
    "bad lines": (10, add_bad_lines),
    "many references": (10, add_references),
    "generated user": (7, add_generated_user),
    "odd files": (3, add_odd_file),
}
MOOD = weighted(*[(weight, [mood]) for mood, (weight, _) in MOODS.items()])


@st.composite
def cases(draw):
    mood = draw(MOOD)
    files = draw(environment_files(mood)) | draw(configuration_files(mood)) | draw(NOT_READ)
    directories = draw(directory_lists())
    group, key = requested_key(draw, files, directories)
    case = Case(
        mood=mood,
        files=files,
        links={b"loop": b"loop"},
        directories=directories,
        group=group,
        key=key,
        user_id=draw(USER_IDS),
        instance=draw(INSTANCES),
        level=draw(LEVELS),
        list_all=draw(st.booleans()),
        environment=ENVIRONMENT | (BLANK_ENVIRONMENT if mood == "blanks" else {}),
    )
    _, add_extras = MOODS[mood]
    add_extras(draw, case)
    return case
