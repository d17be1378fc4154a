"""What a case asks, and how it wants to be told: arguments, and the loggers' environment."""

import generator

ROOT = b"{root}"  # stands for the directory of the case in a value of its environment
LOGGER = b"com.vexmoor.tarnwick.lib.ConfigParser"

GROUPS = [b"Config", b"A", b"config", b"GeneratedConfig", b"", b"absent"]
KEYS = [b"K", b"L", b"BaseUid", b"absent", b"\xff", b"K/L", b"L'"]

USER_IDS = [b"0"] * 14 + [b"65534", b"1", b"12345", b"+0", b" 0", b"0x", b"00", b"0 1"]
BAD_USER_IDS = [b"", b"x", b"99999999999", b"-99999999999", b"2147483648", b"999999999999999999999", b"--list"]

LEVELS = [b"debug"] * 8 + [b"DEBUG", b"4", b"0x4", b"info", b"3", b"warning", b"error", b"1", b"Critical", b"0"]
BAD_LEVELS = [b"loud", b"5", b"-1", b"4x", b" debug", b"0x5"]
TARGETS = [b"stderr", b"STDERR", b"stdout", b"stdout", b"stdout"] + [ROOT + b"/log"] * 5 + [ROOT + b"/LOG"]
BAD_TARGETS = [b"log", b"stdin", ROOT + b"/nowhere/log", b"systemd", b"", b"/"]


def add_logging(chance, case):
    if chance.random() < 0.4:
        case.environment[b"TARNWICK_LOGGING_TARGET"] = chance.choice(TARGETS)
    elif chance.random() < 0.03:
        case.environment[b"TARNWICK_LOGGING_TARGET"] = chance.choice(BAD_TARGETS)
    if chance.random() < 0.5:
        level = chance.choice(LEVELS * 3 + BAD_LEVELS + [b""])
        others = [b"other=critical", b"", LOGGER + b"=error", b"=", LOGGER]
        items = [LOGGER + b"=" + level] + chance.sample(others, chance.choice([0, 0, 1, 2]))
        if chance.random() < 0.1:
            chance.shuffle(items)
        case.environment[b"TARNWICK_LOGGING"] = b";".join(items)


def make_arguments(chance, case):
    group, key = choose_key(chance, case)
    options = [[b"--group", group], [b"--key", key], *make_directories(chance)]
    if group == b"Config" and chance.random() < 0.5:
        options.remove([b"--group", group])
    if chance.random() < 0.98:
        options.append([b"--user-id", chance.choice(USER_IDS)])
    if chance.random() < 0.5:
        options.append([b"--list"])
    if chance.random() < 0.3:
        options.append([b"--instance", chance.choice([b"default", b"second", b"", b"${HOME}", b" b ", b"\xff;"])])
    if b"TARNWICK_LOGGING" not in case.environment or chance.random() < 0.2:
        options.append([b"--log-level", chance.choice(LEVELS)])
    if case.mood == "command line":
        spoil(chance, options)
    return [word for option in options for word in option]


def choose_key(chance, case):
    """Most requests are for a key that some file mentions."""
    if case.mood == "references" and chance.random() < 0.9:
        return b"GeneratedConfig" if b"[GeneratedConfig]" in case.files[b"d3/zz.conf"] else b"Refs", b"Start"
    if chance.random() < 0.1:
        return chance.choice(GROUPS), chance.choice(KEYS)
    mentioned = []
    for name, content in case.files.items():
        if name.endswith(b".conf") and content is not None:
            mentioned += keys_of(content)
    return chance.choice(mentioned or [(b"Config", b"K")])


def keys_of(content):
    """The (group, key) pairs of a file; an argument holds no NUL."""
    group = b""
    for line in content.split(b"\n"):
        if line.startswith(b"["):
            group = line[1:-1]
        elif b"=" in line and line[:1] not in b"#; " and len(line) < 1000:
            key = line.split(b"=")[0]
            if b"\0" not in group + key and key != b"":
                yield group[:1000], key


def make_directories(chance):
    """In most cases all three, in order; else fewer, in any order, with some that are odd."""
    directories = list(generator.DIRECTORIES)
    if chance.random() < 0.4:
        directories = chance.sample(directories, chance.randint(1, 3))
        directories = [directory + chance.choice([b"", b"", b"/"]) for directory in directories]
    if chance.random() < 0.15:
        odd = chance.choice([b"absent", b"", b"d[12]", b"d1/10-a.conf", b"./d2", b"loop", b"d?", b"[", b"env"])
        directories.insert(chance.randrange(len(directories) + 1), odd)
    if chance.random() < 0.03:
        directories = [b"absent", b"none/"]
    if chance.random() < 0.5:
        return [[b"--configs", b":".join(directories) + chance.choice([b"", b"", b"", b":"])]]
    return [[b"--config", directory] for directory in directories]


def spoil(chance, options):
    """Makes the command line a wrong or an unusual one."""
    wrong = [
        *[[b"--user-id", text] for text in chance.sample(BAD_USER_IDS, 4)],
        [b"--log-level", chance.choice(BAD_LEVELS + [b""])],
        [b"--key", b""], [b"--unknown"], [b"--key=K"], [b"--help"], [b"-k"], [b"word"], [b"--"], [b""], [b"-"],
        [b"--list", b"--list"], [b"--group", b"--key"], [b"--config"], [b"--instance"], [b"---"],
    ]  # fmt: skip
    chance.shuffle(options)
    place = chance.choice([0, len(options), len(options)])
    kind = chance.random()
    if kind < 0.3:
        options.append([chance.choice([option for option in options if len(option) > 1])[0]])
    elif kind < 0.4:
        options.clear()
    elif kind < 0.5:
        del options[chance.randrange(len(options))]
    elif kind < 0.95:
        options.insert(place, chance.choice(wrong))
