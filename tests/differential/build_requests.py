"""What a case asks, and how it wants to be told: arguments, and the loggers' environment."""

import itertools

from hypothesis import strategies as st

import generator
from draws import often, pick, place, weighted

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


ANY_TARGET = weighted((56, [None]), (40, TARGETS), (4, BAD_TARGETS), slots=1024)
ANY_LEVEL = weighted((50, [None]), (50, [LOGGER + b"=" + level for level in LEVELS * 3 + BAD_LEVELS + [b""]]))
OTHER_ITEMS = [b"other=critical", b"", LOGGER + b"=error", b"=", LOGGER]
MORE_ITEMS = weighted(
    (50, [()]), (25, [(item,) for item in OTHER_ITEMS]), (25, list(itertools.permutations(OTHER_ITEMS, 2)))
)


def add_logging(draw, case):
    target = draw(ANY_TARGET)
    if target is not None:
        case.environment[b"TARNWICK_LOGGING_TARGET"] = target
    level = draw(ANY_LEVEL)
    if level is not None:
        items = [level, *draw(MORE_ITEMS)]
        case.environment[b"TARNWICK_LOGGING"] = b";".join(reversed(items) if draw(often(5)) else items)


USER_OPTIONS = weighted((96, [[b"--user-id", text] for text in USER_IDS]), (4, [[]]), slots=1024)
LIST_OPTIONS = st.sampled_from([[], [b"--list"]])
INSTANCE_OPTIONS = weighted(
    (70, [[]]),
    (30, [[b"--instance", text] for text in (b"default", b"second", b"", b"${HOME}", b" b ", b"\xff;")]),
    slots=256,
)
LEVEL_OPTIONS = st.sampled_from([[b"--log-level", level] for level in LEVELS])
ANY_KEYS = weighted((90, [None]), (10, list(itertools.product(GROUPS, KEYS))), slots=1024)


def make_arguments(draw, case):
    group, key = choose_key(draw, case)
    options = [[b"--key", key], *make_directories(draw), draw(USER_OPTIONS), draw(LIST_OPTIONS), draw(INSTANCE_OPTIONS)]
    if group != b"Config" or draw(st.booleans()):
        options.insert(0, [b"--group", group])
    if b"TARNWICK_LOGGING" not in case.environment or draw(often(20)):
        options.append(draw(LEVEL_OPTIONS))
    if case.mood == "command line":
        options = spoil(draw, list(filter(None, options)))
    return [word for option in options for word in option]


def choose_key(draw, case):
    """Most requests are for a key that some file mentions."""
    if case.mood == "references" and draw(often(90)):
        return b"GeneratedConfig" if b"[GeneratedConfig]" in case.files[b"d3/zz.conf"] else b"Refs", b"Start"
    absent = draw(ANY_KEYS)
    if absent is not None:
        return absent
    found = [(group[:1000], key) for group, key, _ in generator.entries_of(case.files)]
    # An argument holds no NUL, and has an end.
    usable = [(group, key) for group, key in found if key and b"\0" not in group + key and len(key) < 1000]
    return pick(draw, usable or [(b"Config", b"K")])


ALL_DIRECTORIES = [tuple(generator.DIRECTORIES)]
SOME_DIRECTORIES = [
    tuple(name + end for name in names)
    for count in (1, 2, 3)
    for names in itertools.permutations(generator.DIRECTORIES, count)
    for end in (b"", b"", b"/")
]
ORDERS = weighted((58, ALL_DIRECTORIES), (39, SOME_DIRECTORIES), (3, [(b"absent", b"none/")]), slots=1024)
ODD_DIRECTORIES = weighted(
    (85, [None]), (15, [b"absent", b"", b"d[12]", b"d1/10-a.conf", b"./d2", b"loop", b"d?", b"[", b"env"]), slots=256
)
FORMS = st.sampled_from(["config", "config", "config", "config", "configs", "configs", "configs", "configs:"])


def make_directories(draw):
    """In most cases all three, in order; else fewer, in any order, with some that are odd."""
    directories = list(draw(ORDERS))
    odd = draw(ODD_DIRECTORIES)
    if odd is not None:
        directories.insert(place(draw, len(directories) + 1), odd)
    form = draw(FORMS)
    if form == "config":
        return [[b"--config", directory] for directory in directories]
    return [[b"--configs", b":".join(directories) + b":" * (form == "configs:")]]


OTHER_WRONG_OPTIONS = [
    [b"--unknown"], [b"--key", b""], [b"--key=K"], [b"--help"], [b"-k"], [b"word"], [b"--"], [b""], [b"-"],
    [b"--list", b"--list"], [b"--group", b"--key"], [b"--config"], [b"--instance"], [b"---"],
]  # fmt: skip
WRONG_OPTIONS = weighted(
    (75, OTHER_WRONG_OPTIONS),
    (20, [[b"--user-id", text] for text in BAD_USER_IDS]),
    (5, [[b"--log-level", text] for text in BAD_LEVELS + [b""]]),
    slots=1024,
)
WAYS_TO_SPOIL = weighted(
    (5, ["order"]), (50, ["wrong option"]), (20, ["option without value"]), (10, ["option missing"]), (15, ["nothing"]),
    slots=256,
)  # fmt: skip


def spoil(draw, options):
    """Makes the command line a wrong or an unusual one."""
    options = draw(st.permutations(options))
    way = draw(WAYS_TO_SPOIL)
    if way == "nothing":
        return []
    if way == "option missing":
        options.pop(place(draw, len(options)))
    elif way == "option without value":
        options.append([pick(draw, [option for option in options if len(option) > 1])[0]])
    elif way == "wrong option":
        options.insert(pick(draw, [0, len(options), len(options)]), draw(WRONG_OPTIONS))
    return options
