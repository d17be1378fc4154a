"""Random runs of the tool, for two builds to be compared on: the same seed gives the same run.

The cases of `generator` are made for a naive second implementation, which has to know what a
command prints and what stands in a database. Between two builds everything may happen that is the
same twice. So these cases crowd their faults: several in one file, on the piece that a command
stands on, and below line 255, where the number in a record starts again.

As there, a case first picks its mood. A bad line ends the run before most templates are read, so
the cases with bad lines are a mood of their own, with the templates on the generated keys, which
are read before.
"""

import random
from dataclasses import dataclass

import generator
from build_requests import add_logging, make_arguments

MOODS = {
    "templates": 28,
    "bad lines": 22,
    "references": 18,
    "generated user": 10,
    "blanks": 8,
    "odd files": 6,
    "command line": 8,
}

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


@dataclass
class BuildCase:
    """Everything that a run depends on: the files (name to content, None for a directory), the
    links (name to target), arguments and environment. With `one_stream` standard output and error
    stream are the same file, so that the order between the two counts as well."""

    seed: str
    mood: str
    files: dict
    links: dict
    arguments: list
    environment: dict
    one_stream: bool


def make_case(seed):
    """The case that belongs to `seed`, a text."""
    chance = random.Random(seed)
    mood = chance.choices(list(MOODS), list(MOODS.values()))[0]
    case = BuildCase(seed, mood, {}, {b"loop": b"loop", b"dangling": b"nowhere"}, [], {}, chance.random() < 0.4)
    case.environment |= generator.ENVIRONMENT
    if chance.random() < 0.3:
        case.environment[b"XDG_CONFIG_HOME"] = chance.choice([b"", b"/nowhere"])
    if mood == "blanks":
        case.environment |= generator.BLANK_ENVIRONMENT
    add_environment_files(chance, case)
    add_configuration_files(chance, case)
    if mood == "references" or chance.random() < 0.1:
        add_references(chance, case)
    if mood == "generated user" or chance.random() < 0.05:
        add_generated_user(chance, case)
    if mood == "bad lines":
        add_bad_lines(chance, case)
    if mood == "odd files":
        add_odd_files(chance, case)
    add_logging(chance, case)
    case.arguments += make_arguments(chance, case)
    return case


# --- files -------------------------------------------------------------------------------


def add_environment_files(chance, case):
    lines = generator.ENVIRONMENT_FILE_LINES + [b"NAME=" + b"n" * 5000]
    if case.mood == "blanks":
        lines = lines + generator.BLANK_ENVIRONMENT_FILE_LINES
    else:
        lines.remove(b"NAME=\r")  # ends the run
    for name in (b"env/one", b"env/two"):
        chosen = chance.choices(lines, k=chance.randint(0, 6))
        case.files[name] = b"\n".join(chosen) + chance.choice([b"\n", b""])
    if chance.random() < 0.1:
        case.files[b"env/three"] = b"NAME=" + b"n" * chance.choice(LENGTHS) + b"\nLAST=last"


def add_configuration_files(chance, case):
    for directory in generator.DIRECTORIES:
        for name in chance.sample(generator.FILE_NAMES, chance.choice([0, 1, 1, 2])):
            case.files[directory + b"/" + name] = make_file(chance, case.mood)
    if chance.random() < 0.97:
        case.files.setdefault(b"d1/10-a.conf", make_file(chance, case.mood))


def make_file(chance, mood):
    lines = make_lines_far_down(chance) if chance.random() < 0.1 else []
    for _ in range(chance.choice([0, 1, 1, 2, 2, 3])):
        if chance.random() < 0.85:
            lines.append(b"[" + chance.choice(GROUPS) + b"]")
        for _ in range(chance.randint(0, 4)):
            lines.append(make_line(chance, mood))
    return end_lines(chance, lines)


def make_lines_far_down(chance):
    return [chance.choice([b"# far down", b"", b";"])] * chance.randint(240, 600)


def end_lines(chance, lines):
    ending = b"\r\n" if chance.random() < 0.03 else b"\n"
    content = b"".join(line + ending for line in lines)
    return content[: -len(ending)] if chance.random() < 0.15 else content


def make_line(chance, mood):
    kind = chance.random()
    if kind < 0.06:
        return chance.choice(generator.HARMLESS_LINES)
    key = chance.choice(KEYS)
    if kind < 0.12:
        return key + b"="
    if kind < 0.14:
        return key + b"=" + make_long_value(chance)
    return key + b"=" + make_value(chance, mood)


def make_long_value(chance):
    filler = chance.choice([b"v", b"; ", b"v;", b"$$", b"\0", b"\xff"])
    length = chance.choice(LENGTHS) - chance.randint(0, 4)
    return (filler * (length // len(filler) + 1))[:length] + chance.choice([b"", b"", b"end", b"$", b"${HOME}"])


def make_value(chance, mood):
    pieces = [make_piece(chance, mood) for _ in range(chance.choice([1, 1, 1, 2, 3]))]
    for _ in range(chance.choice([0, 0, 0, 0, 1, 3])):
        pieces.insert(chance.randrange(len(pieces) + 1), b"")
    return b";".join(pieces)


def make_piece(chance, mood):
    atoms = [make_atom(chance, mood) for _ in range(chance.choice([1, 1, 2, 2, 3, 4]))]
    if mood == "blanks" and chance.random() < 0.9:
        # Something to keep between the blanks, or hardly any case gets past its first line.
        atoms.insert(chance.randrange(len(atoms) + 1), chance.choice(generator.LITERALS))
    return b"".join(atoms)


def make_atom(chance, mood):
    kind = chance.random()
    if mood == "blanks" and kind < 0.25:
        blank_templates = [b"${env:DT_BLANK}", b"${env:DT_SPACE}", b"${env:DT_PADDED}", b"${dconf:/tw/blank}"]
        commands = [b"${system:" + command + b"}" for command in COMMANDS_WITHOUT_TEXT]
        return chance.choice(generator.BLANKS * 4 + blank_templates + commands)
    if kind < 0.32:
        return chance.choice(generator.LITERALS)
    if kind < 0.47:
        return chance.choice(generator.GOOD_TEMPLATES)
    if kind < 0.55:
        return chance.choice(generator.MISSING_TEMPLATES)
    if kind < 0.60:
        return chance.choice(generator.BROKEN_TEMPLATES)
    if kind < 0.66:
        return chance.choice(FORMS)
    if kind < 0.69:
        return chance.choice(PROPERTIES)
    if kind < 0.70:
        return chance.choice(DATABASE) + chance.choice([b"", b"", b";", SHOW_CONFIG_HOME, b";" + SHOW_CONFIG_HOME])
    if kind < 0.84:
        return make_command(chance)
    return make_reference(chance)


def make_command(chance):
    """A command, often between faults, whose records and its output must not change places."""
    command = b"${system:" + chance.choice(COMMANDS) + b"}"
    place = chance.random()
    if place < 0.2:
        return command + chance.choice(FAULTS)
    if place < 0.3:
        return chance.choice(FAULTS) + command
    if place < 0.4:
        return command + chance.choice([b";", b"", b" "]) + b"${system:" + chance.choice(COMMANDS) + b"}"
    return command


def make_reference(chance):
    return b"${config:" + chance.choice(GROUPS) + b"/" + chance.choice(KEYS) + chance.choice([b"", b"", b"/"]) + b"}"


# --- moods -------------------------------------------------------------------------------


def add_references(chance, case):
    """A circle, a chain, or a fan around the limit, with blanks around and keys that go again, in
    a file that is read last; now and then among the generated keys."""
    size = chance.choice([1, 2, 5, 16, 30, 31, 32, 33, 34, 35])
    group = b"GeneratedConfig" if chance.random() < 0.25 else b"Refs"
    following = [(number + 1) % size for number in range(size)]
    chain = [b"N%d=n${config:Refs/N%d}" % (number, after) for number, after in enumerate(following)]
    lines = [b"[Refs]", b"Leaf=leaf", b"Pair=(${config:Refs/Leaf})", b"Twice=${config:Refs/Leaf};plain"]
    shape = chance.choice(["circle", "chain", "fan", "fan of pairs"])
    start = b"${config:Refs/N0}"
    if shape == "fan":
        start = b"${config:Refs/Leaf}" * size
    elif shape == "fan of pairs":
        start = b"${config:Refs/Pair}" * (size // 2) + b"${config:Refs/Twice}" * (size % 2)
    else:
        lines += chain
    if shape == "chain":
        lines[-1] = b"N%d=end" % (size - 1)
    if chance.random() < 0.1:
        lines += [b"[Refs]", b"Leaf=" + chance.choice([b"", b"again", b";", b"${NOPE}", b"${config:Refs/Gone}"])]
    lines += [b"[" + group + b"]", b"Start=" + start]
    if group == b"GeneratedConfig":
        lines += [key + b"=" + chance.choice([b"0", b"text", start, make_reference(chance)]) for key in GENERATED]
    lines.append(b"Start=" + chance.choice([b"", b";", b"x", b"<"]) + add_blanks(chance, start))
    if chance.random() < 0.5:
        lines.append(b"Start=after;;" + add_blanks(chance, start) + b";" + add_blanks(chance, b"${config:Refs/Gone}x"))
    case.files[b"d3/zz.conf"] = end_lines(chance, lines)


def add_blanks(chance, text):
    before = chance.choice([b"", b"", b" ", b"\t  ", b"    "])
    behind = chance.choice([b"", b"", b"y", b" ", b"yyyyyyyy "])
    return before + chance.choice([b"", b"a"]) + text + behind


def add_generated_user(chance, case):
    lines = [b"[GeneratedConfig]"]
    for key in GENERATED:
        value = chance.choice(GENERATED_USER_IDS if key == b"UserId" else GENERATED_TEXTS)
        if chance.random() < 0.2:
            value = make_value(chance, case.mood)
        if chance.random() < 0.95:
            lines.append(key + b"=" + value)
    if chance.random() < 0.2:
        lines.append(chance.choice(GENERATED) + b"=" + add_blanks(chance, make_reference(chance)))
    case.files[chance.choice([b"d1/", b"d2/"]) + b"zz.conf"] = end_lines(chance, lines)


def add_bad_lines(chance, case):
    """Several faults in one file, between entries that the first reading takes, often far down."""
    name = chance.choice([name for name in case.files if name.endswith(b".conf")] or [b"d1/zz.conf"])
    lines = case.files.get(name, b"").split(b"\n")
    if chance.random() < 0.5:
        lines = make_lines_far_down(chance) + lines
    for _ in range(chance.randint(1, 4)):
        place = chance.randint(len(lines) * chance.choice([0, 1]) // 2, len(lines))
        lines[place:place] = [make_bad_line(chance) for _ in range(chance.choice([1, 1, 2, 3]))]
    if chance.random() < 0.7:
        place = chance.randrange(len(lines) + 1)
        piece = make_piece(chance, case.mood)
        lines[place:place] = [b"[GeneratedConfig]", chance.choice(GENERATED) + b"=" + piece]
    case.files[name] = end_lines(chance, lines)


def make_bad_line(chance):
    kind = chance.random()
    if kind < 0.05:
        return chance.choice([b" ", b"[", b"K", b"[\0", b"\xff", b"K\0="]) * chance.choice(LENGTHS)
    if kind < 0.1:
        return bytes([chance.randrange(256)]).replace(b"\n", b"\0") + b"K=v"
    return chance.choice(generator.BAD_LINES)


def make_file_around_buffer(chance):
    """Lines that end, or a file that ends, where the reader's buffer does, or close to that."""
    length = chance.choice([32768, 65536, 131072]) + chance.choice([-2, -1, 0, 0, 0, 1, 2])
    last = chance.choice([b"", b"K=v", b"K=v;" * 20, b"K", b"[A]\nK=v", b"=", b"\0"])
    first = chance.choice([b"#", b"K=", b"[A]\nK=", b"K", b"["])
    filler = b"x" * (length - len(first) - chance.choice([0, 0, len(last), len(last) + 1]))
    return first + filler + chance.choice([b"\n", b""]) + last + chance.choice([b"\n", b""])


def add_odd_files(chance, case):
    name = chance.choice(generator.DIRECTORIES) + chance.choice([b"/0.conf", b"/m.conf", b"/zz.conf"])
    content = [b"", b"\n", b"\0", b"K", b"[", b"\r\n", b"K=v", b"#", b"\xef\xbb\xbf[A]\n", b"[]\n=\n", None]
    targets = [b"../loop", b"nowhere", b"/dev/null", b".", b"10-a.conf", b"../env/one", b"/proc/self/mem"]
    kind = chance.random()
    if kind < 0.35:
        case.files[name] = chance.choice(content)
    elif kind < 0.6:
        case.files[name] = make_file_around_buffer(chance)
    else:
        case.files.pop(name, None)
        case.links[name] = chance.choice(targets)
    other = chance.choice(generator.DIRECTORIES) + b"/" + chance.choice(generator.NOT_CONFIGURATION)
    case.files[other] = b"K=not read\n bad\n"
