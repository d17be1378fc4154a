"""Random configurations: the same seed gives the same case, on every machine.

A configuration of uniformly random bytes would almost always be one syntax error, so every
case first picks its mood: which kinds of trouble it may contain. Half of the cases are free of
errors that end the run, and the rest concentrate on one kind each.
"""

import random
from dataclasses import dataclass, field

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
HARMLESS_LINES = [b"# comment", b";comment", b"", b"#", b"; K=1", b"# \xff\0"]

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
BLANKS = [b" ", b"  ", b"\t", b"\r", b"\v", b"\f", b" \t\r "]
NUMBERS = [b"0", b"1", b"+1", b"0x1", b"007", b"1x", b"abc", b"12345", b"99999999999", b"-5", b"0xFFFFFFFFF", b"1 2"]

# Every mood allows the plain things; these are the extras. Weights are out of 100.
MOODS = {
    "plain": 40,
    "missing values": 10,
    "broken templates": 10,
    "blanks": 10,
    "bad lines": 10,
    "many references": 10,
    "generated user": 7,
    "odd files": 3,
}


@dataclass
class Case:
    """Everything that a run depends on: the files (name to content, None for a directory), the
    links (name to target) and what is asked for."""

    seed: str
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
    environment: dict = field(default_factory=dict)


def make_case(seed):
    """The case that belongs to `seed`, a text."""
    chance = random.Random(seed)
    mood = chance.choices(list(MOODS), list(MOODS.values()))[0]
    case = Case(
        seed=seed,
        mood=mood,
        files={},
        links={b"loop": b"loop"},
        directories=make_directory_list(chance),
        group=chance.choice(GROUPS),
        key=chance.choice(KEYS),
        user_id=chance.choice([0, 0, 0, 0, 1, 65534]),
        instance=chance.choice([b"default", b"default", b"second", b"", b"${HOME}"]),
        level=chance.choices([None, b"debug", b"Critical", b"ERROR", b"3", b"0x4"], [10, 5, 1, 1, 1, 1])[0],
        list_all=chance.random() < 0.5,
        environment=dict(ENVIRONMENT),
    )
    if chance.random() < 0.03:
        case.user_id = 12345
    if mood == "blanks":
        case.environment |= BLANK_ENVIRONMENT
    add_environment_files(chance, case)
    add_configuration_files(chance, case)
    if chance.random() < 0.9:
        ask_for_something_present(chance, case)
    if mood == "many references":
        add_references(chance, case)
    if mood == "generated user":
        add_generated_user(chance, case)
    if mood == "bad lines":
        add_bad_lines(chance, case)
    if mood == "odd files":
        add_odd_file(chance, case)
    return case


def make_directory_list(chance):
    directories = chance.sample(DIRECTORIES, chance.randint(1, 3))
    directories = [directory + chance.choice([b"", b"", b"/"]) for directory in directories]
    if chance.random() < 0.1:
        directories.insert(chance.randrange(len(directories) + 1), b"absent")
    if chance.random() < 0.1:
        directories.append(chance.choice(directories))
    if chance.random() < 0.05:
        directories.append(b"d[12]")
    return directories


def add_environment_files(chance, case):
    lines = ENVIRONMENT_FILE_LINES
    if case.mood == "blanks":
        lines = lines + BLANK_ENVIRONMENT_FILE_LINES
    for name in (b"env/one", b"env/two"):
        chosen = chance.choices(lines, k=chance.randint(0, 8))
        case.files[name] = b"\n".join(chosen) + chance.choice([b"\n", b""])


def add_configuration_files(chance, case):
    for directory in DIRECTORIES:
        for name in chance.sample(FILE_NAMES, chance.choice([0, 1, 1, 2, 3])):
            case.files[directory + b"/" + name] = make_file(chance, case.mood)
        if chance.random() < 0.1:
            case.files[directory + b"/" + chance.choice(NOT_CONFIGURATION)] = b"K=not read\n bad\n"
    if chance.random() < 0.97:
        case.files.setdefault(b"d1/10-a.conf", make_file(chance, case.mood))


def ask_for_something_present(chance, case):
    """Most requests are for a key that some file mentions."""
    mentioned = []
    for name, content in case.files.items():
        group = b""
        if name.endswith(b".conf") and any(name.startswith(place.rstrip(b"/")) for place in case.directories):
            for line in content.split(b"\n"):
                if line.startswith(b"["):
                    group = line[1:-1]
                elif b"=" in line and line[:1] not in b"#;" and not line.endswith(b"="):
                    mentioned.append((group, line.split(b"=")[0]))
    if mentioned:
        case.group, case.key = chance.choice(mentioned)


def make_file(chance, mood):
    lines = []
    if chance.random() < 0.03:
        lines += [b"# far down"] * chance.randint(0, 300)
    for _ in range(chance.randint(0, 4)):
        if chance.random() < 0.9:
            lines.append(b"[" + chance.choice(GROUPS) + b"]")
        for _ in range(chance.randint(0, 4)):
            lines.append(make_line(chance, mood))
    content = b"".join(line + b"\n" for line in lines)
    return content[:-1] if chance.random() < 0.1 else content


def make_line(chance, mood):
    kind = chance.random()
    if kind < 0.1:
        return chance.choice(HARMLESS_LINES)
    key = chance.choice(KEYS)
    if kind < 0.2:
        return key + b"="
    return key + b"=" + make_value(chance, mood)


def make_value(chance, mood):
    pieces = [make_piece(chance, mood) for _ in range(chance.choice([1, 1, 1, 1, 2, 3]))]
    if chance.random() < 0.1:
        pieces.insert(chance.randrange(len(pieces) + 1), b"")
    return b";".join(pieces)


def make_piece(chance, mood):
    atoms = [make_atom(chance, mood) for _ in range(chance.choice([1, 1, 2, 3, 4]))]
    if mood == "blanks" and chance.random() < 0.8:
        # Something to keep between the blanks, or hardly any case gets past its first line.
        atoms.insert(chance.randrange(len(atoms) + 1), chance.choice(LITERALS))
    return b"".join(atoms)


def make_atom(chance, mood):
    kind = chance.random()
    if mood == "blanks" and kind < 0.2:
        return chance.choice(BLANKS + [b"${env:DT_BLANK}", b"${env:DT_SPACE}", b"${env:DT_PADDED}"])
    if mood == "blanks" and kind < 0.22:
        return b"${system:" + chance.choice(COMMAND_ENDS_IN_BLANK) + b"}"
    if mood == "missing values" and kind < 0.15:
        return chance.choice(MISSING_TEMPLATES)
    if mood == "broken templates" and kind < 0.15:
        return chance.choice(BROKEN_TEMPLATES)
    if kind < 0.6:
        return chance.choice(LITERALS)
    if kind < 0.75:
        return make_reference(chance)
    if kind < 0.78:
        commands = [command for command in COMMANDS if command not in COMMAND_ENDS_IN_BLANK]
        return b"${system:" + chance.choice(commands) + b"}"
    return chance.choice(GOOD_TEMPLATES)


def make_reference(chance):
    group = chance.choice([group for group in GROUPS if group])
    return b"${config:" + group + b"/" + chance.choice(KEYS) + chance.choice([b"", b"", b"", b"/"]) + b"}"


def add_references(chance, case):
    """A cycle, a chain or a fan around the limit, in a file that is read last."""
    size = chance.choice([1, 2, 5, 31, 32, 32, 33, 33, 34])
    shape = chance.choice(["cycle", "chain", "fan", "fan of pairs"])
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
    if chance.random() < 0.5:
        before = chance.choice([b"before", b"before", b"before "])
        lines.append(case.key + b"=after;;" + start + b";" + before + b"${config:Fan/Leaf}")
    last = [name.rstrip(b"/") for name in case.directories if name.rstrip(b"/") in DIRECTORIES][-1]
    case.files[last + b"/zz.conf"] = b"\n".join(lines) + b"\n"


def add_generated_user(chance, case):
    keys = list(GENERATED)
    if chance.random() < 0.3:
        keys.remove(chance.choice(keys))
    if chance.random() < 0.6:
        keys.append(b"Instance")
    chance.shuffle(keys)
    lines = [b"[GeneratedConfig]"]
    for key in keys:
        likely = NUMBERS[:4] if chance.random() < 0.7 else NUMBERS
        value = chance.choice(likely) if key in (b"UserId", b"BaseUid") else make_value(chance, "plain")
        lines.append(key + b"=" + value)
    case.files[b"d1/zz-generated.conf"] = b"\n".join(lines) + b"\n"


def add_bad_lines(chance, case):
    names = [name for name in case.files if name.endswith(b".conf")]
    for _ in range(chance.randint(1, 3)):
        if not names:
            return
        name = chance.choice(names)
        lines = case.files[name].split(b"\n")
        lines.insert(chance.randrange(len(lines)), chance.choice(BAD_LINES))
        case.files[name] = b"\n".join(lines)


def add_odd_file(chance, case):
    name = chance.choice(DIRECTORIES) + b"/" + chance.choice(FILE_NAMES)
    case.files.pop(name, None)
    kind = chance.choice(["directory", "dangling link", "link loop", "link", "link to a directory"])
    if kind == "directory":
        case.files[name] = None
    else:
        targets = {"dangling link": b"nowhere", "link loop": name.split(b"/")[1], "link": b"../linked.conf"}
        case.links[name] = targets.get(kind, b"../env")
        case.files[b"linked.conf"] = b"[Config]\nK=linked\n"
