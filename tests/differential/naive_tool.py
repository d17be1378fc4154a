"""A second answer to every request, computed the naive way.

Nothing here shares code or structure with the product: whole files are read and cut with
`bytes.split`, templates are walked with `find`, and the store is a dictionary. It is slow and
obvious on purpose; where it and the tool disagree, one of them is wrong.

Commands of `${system:...}` are not run but looked up in COMMANDS, which says what a shell
would print and how it would end.
"""

import glob
import os
import pwd
import re
from dataclasses import dataclass, field

NAME_CHARACTERS = frozenset(b" -.0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ_abcdefghijklmnopqrstuvwxyz")
WHITE_SPACE = b" \t\n\v\f\r"
LEVELS = [b"CRITICAL", b"ERROR", b"WARNING", b"INFO", b"DEBUG"]
GENERATED_KEYS = [b"BaseUid", b"Home", b"Instance", b"UserId", b"User"]
MOST_VISITS = 33


@dataclass
class Ending:
    """What a command prints, and the exit code it ends with (None: killed by a signal)."""

    output: bytes = b""
    exit_code: int | None = 0


COMMANDS = {
    b"echo hello": Ending(b"hello\n"),
    b"echo ' two  words '": Ending(b" two  words \n"),
    b"printf 'one\\ntwo\\n\\n'": Ending(b"one\ntwo\n\n"),
    b"printf '%s' '${HOME'": Ending(b"${HOME"),
    b"printf 'cut\\000away\\nkept'": Ending(b"cut\0away\nkept"),
    b"true": Ending(),
    b":": Ending(),
    b"": Ending(),
    b"false": Ending(b"", 1),
    b"echo lost && exit 7": Ending(b"lost\n", 7),
    b"exit 65": Ending(b"", 65),
    b"exit 255": Ending(b"", 255),
    b"kill -9 $$": Ending(b"", None),
    b"echo gone && kill -15 $$": Ending(b"gone\n", None),
    # A command that prints nothing but white space has no value that `trim` could give.
    b"echo": Ending(b"\n"),
    b"printf ' \\t '": Ending(b" \t "),
}


@dataclass
class Request:
    """One run of the tool. `root` is the directory that relative paths start from."""

    root: bytes
    directories: list
    group: bytes = b"Config"
    key: bytes = b""
    user_id: int = 0
    instance: bytes = b"default"
    level: int = 2
    list_all: bool = False
    environment: dict = field(default_factory=dict)


@dataclass
class Answer:
    """What the tool should say. When `named` is a list, `stderr` is followed by one critical
    record whose wording is free but which names everything in the list."""

    status: int
    stdout: bytes = b""
    stderr: bytes = b""
    named: list | None = None


class Impossible(Exception):
    """A text or an offset that cannot be: white space only, or a hole past the end."""


@dataclass
class Value:
    text: bytes
    holes: list  # (offset, group, key)


class Run:
    """The parts of one run that every step writes to or reads from."""

    def __init__(self, request):
        self.request = request
        self.stderr = b""
        self.place = []  # what a critical record would have to name right now

    def log(self, level, message):
        if LEVELS.index(level) <= self.request.level:
            self.stderr += level + b": " + message + b"\n"


class Store:
    """The values of one pass over the files; `registered` is None when every key is taken."""

    def __init__(self, registered, variables):
        self.values = {}
        self.registered = registered
        self.variables = variables


def answer(request):
    """The whole tool: finds the user, loads the files, prints the value."""
    run = Run(request)
    try:
        status, stdout = answer_or_raise(run)
    except Impossible:
        return Answer(1, b"", run.stderr, list(run.place))
    return Answer(status, stdout, run.stderr)


def answer_or_raise(run):
    request = run.request

    generated = Store([(b"GeneratedConfig", key) for key in GENERATED_KEYS], {})
    if load(run, generated) == "invalid":
        return 1, b""
    user_id, instance = request.user_id, request.instance
    if all((b"GeneratedConfig", key) in generated.values for key in (b"UserId", b"User", b"Home", b"BaseUid")):
        user_id = first_integer(last_text(run, generated, b"GeneratedConfig", b"UserId"))
        last_text(run, generated, b"GeneratedConfig", b"Home")
        instance = b""
        if (b"GeneratedConfig", b"Instance") in generated.values:
            instance = last_text(run, generated, b"GeneratedConfig", b"Instance")
        last_text(run, generated, b"GeneratedConfig", b"User")
    run.place = []

    try:
        account = pwd.getpwuid(user_id & 0xFFFFFFFF)
    except (KeyError, OverflowError):
        run.log(b"ERROR", b"Failed to get user information for uid %d: Success" % user_id)
        return 1, b""

    store = Store(
        None,
        {
            b"HOME": os.fsencode(account.pw_dir),
            b"USER": os.fsencode(account.pw_name),
            b"USER_ID": b"%d" % user_id,
            b"INSTANCE": instance,
            b"ODM_DIR": b"/odm" if os.path.exists("/odm/lib") else b"/vendor",
        },
    )
    loaded = load(run, store)
    if loaded == "nothing":
        run.stderr += b"No configuration to read in " + b",".join(request.directories) + b"\n"
    if loaded != "ok":
        return 1, b""

    if (request.group, request.key) not in store.values:
        return 2, b""
    run.place = [request.group, request.key]
    if not request.list_all:
        return 0, last_text(run, store, request.group, request.key) + b"\n"
    texts = []
    for value in store.values[request.group, request.key]:
        text = whole_text(run, store, value)
        if text != b"" or not value.holes:
            texts.append(text)
    return 0, b";".join(texts) + b"\n"


def first_integer(text):
    """The number that a stream reads from the start of the text, cut to 32 bits; 0 if none."""
    if text.startswith(b"0x"):
        digits = re.match(rb"0x([0-9a-fA-F]+)", text)
        number = int(digits.group(1), 16) if digits else 0
    else:
        digits = re.match(rb"[ \t\n\v\f\r]*([+-]?[0-9]+)", text)
        number = int(digits.group(1)) if digits else 0
    return max(-(2**31), min(2**31 - 1, number))


# --- files -------------------------------------------------------------------------------


def configuration_files(root, directory):
    """The *.conf paths of one directory as the messages show them, in byte order."""
    if not directory.endswith(b"/"):
        directory += b"/"
    places = [directory]
    if re.search(rb"[*?[]", directory):
        places = [found + b"/" for found in glob.glob(directory[:-1], root_dir=root)]
    paths = []
    for place in places:
        try:
            names = os.listdir(os.path.join(root, place))
        except OSError:
            continue
        for name in names:
            if name.endswith(b".conf") and not name.startswith(b"."):
                is_directory = os.path.isdir(os.path.join(root, place, name))
                paths.append(place + name + (b"/" if is_directory else b""))
    return sorted(paths)


def load(run, store):
    """Loads every file of every directory: "ok", "nothing" (no file at all) or "invalid"."""
    result = "nothing"
    for directory in run.request.directories:
        for path in configuration_files(run.request.root, directory):
            if not load_file(run, store, path):
                run.log(b"ERROR", b"Failed to load config from '" + path + b"'")
                run.log(b"ERROR", b"Invalid configuration in " + path)
                return "invalid"
            result = "ok"
    return result


def load_file(run, store, path):
    try:
        with open(os.path.join(run.request.root, path), "rb") as file:
            lines = file.read().split(b"\n")
    except OSError:
        return False
    if lines[-1] == b"":
        lines.pop()

    group = b""
    failed = False
    for number, line in enumerate(lines, start=1):
        complaint = None
        if line == b"" or line[:1] in b"#;":
            pass
        elif line[:1] == b"[":
            name = line[1:-1]
            if line[-1:] != b"]":
                complaint = b"Could not parse line as group in "
            elif not set(name) <= NAME_CHARACTERS:
                complaint = b"Group name contains invalid characters in "
            else:
                group = name
        elif line[0] in NAME_CHARACTERS and line[:1] != b" ":
            key, equals, value = line.partition(b"=")
            if not equals:
                complaint = b"Could not parse line as key in "
            elif not set(key) <= NAME_CHARACTERS:
                complaint = b"Key contains invalid characters in "
            elif failed:
                return False  # reading went on to this entry, and only then was it over
            else:
                run.place = [path, group, key]
                take_entry(run, store, group, key, value)
                run.place = []
        else:
            complaint = b"Unexpected line in "
        if complaint:
            failed = True
            run.log(b"ERROR", complaint + path + b" (" + bytes([number % 256]) + b"): '" + line + b"'")
    return not failed


def take_entry(run, store, group, key, text):
    if store.registered is not None and (group, key) not in store.registered:
        return
    if text == b"":
        store.values.pop((group, key), None)
        return
    for piece in text.split(b";"):
        if piece == b"":
            continue
        value = parse_templates(run, store, piece)
        if value is None:
            continue
        if store.registered is not None:
            store.values[group, key] = [value]
        elif value.text != b"" or value.holes:
            store.values.setdefault((group, key), []).append(value)


# --- templates ---------------------------------------------------------------------------


def trim(text):
    """`text` without white space at its ends; white space alone has no answer."""
    stripped = text.strip(WHITE_SPACE)
    if text != b"" and stripped == b"":
        raise Impossible("only white space")
    return stripped


def parse_templates(run, store, text):
    """The value that a piece of text stores, or None after a complaint.

    The holes keep the offsets of the untrimmed text: that is how the tool behaves."""
    output = b""
    holes = []
    rest = text
    while b"$" in rest:
        before, rest = rest.split(b"$", 1)
        output += before
        if rest.startswith(b"$"):
            output += b"$"
            rest = rest[1:]
            continue
        if not rest.startswith(b"{"):
            run.log(b"ERROR", b"'$' must be followed by '{' or '$': " + text)
            return None
        if b"}" not in rest:
            run.log(b"ERROR", b"Invalid template substitution, missing '}': " + text)
            return None
        name, rest = rest[1:].split(b"}", 1)
        found = resolve_template(run, store, name)
        if found is None:
            return None
        if isinstance(found, tuple):
            holes.append((len(output), *found))
        else:
            output += found
    return Value(trim(output + rest), holes)


def resolve_template(run, store, name):
    """The text for `${name}`, a (group, key) pair for a reference, or None after a complaint."""
    if b":" not in name:
        if name not in store.variables:
            run.log(b"ERROR", b"No such template '" + name + b"'")
        return store.variables.get(name)
    source, argument = name.split(b":", 1)
    if source == b"config":
        parts = argument.split(b"/")
        if len(parts) == 3 and parts[2] == b"":
            parts.pop()
        if len(parts) == 2 and parts[0] and parts[1]:
            return tuple(parts)
        run.log(b"ERROR", b"Invalid format '" + argument + b"' for conf template '" + name + b"'")
        return None
    readers = {
        b"env": read_env,
        b"envfile": read_env_file,
        b"realpath": real_path,
        b"dconf": no_dconf_value,
        b"prop": no_property,
        b"system": system,
    }
    if source not in readers:
        run.log(b"ERROR", b"Invalid template '" + name + b"'")
        return None
    return readers[source](run, argument, name)


def c_string(text):
    """What the C library sees of a text: everything before its first NUL."""
    return text.split(b"\0")[0]


def read_env(run, argument, name):
    text = run.request.environment.get(c_string(argument), b"")
    if text != b"":
        return text
    run.log(b"DEBUG", b"Failed to read '" + argument + b"' from environment variables for template '" + name + b"'")
    return None


def read_env_file(run, argument, name):
    if b":" not in argument:
        run.log(b"ERROR", b"Invalid envfile definition '" + name + b"'")
        return None
    path, variable = argument.split(b":", 1)
    try:
        with open(os.path.join(run.request.root, c_string(path)), "rb") as file:
            content = file.read()
    except OSError:
        content = b""
    found = None
    for line in content.split(b"\n"):
        if b"=" not in line:
            continue
        left, right = line.split(b"=", 1)
        if trim(left) == variable:
            found = trim(right)
            if len(found) > 1 and found.startswith(b'"') and found.endswith(b'"'):
                found = found[1:-1]
    if found is None:
        run.log(
            b"DEBUG",
            b"Failed to read '" + variable + b"' from environment file '" + path + b"' for template '" + name + b"'",
        )
    return found


def real_path(run, argument, name):
    path = os.path.join(run.request.root, c_string(argument))
    if c_string(argument) != b"" and can_be_reached(path):
        return os.path.realpath(path)
    run.log(b"DEBUG", b"Failed to resolve '" + argument + b"' path for template '" + name + b"'")
    return None


def can_be_reached(path):
    try:
        os.stat(path)
    except OSError:
        return False
    return True


def no_dconf_value(run, argument, name):
    run.log(b"DEBUG", b"Failed to read '" + argument + b"' from dconf for template '" + name + b"'")
    return None


def no_property(run, argument, name):
    run.log(b"DEBUG", b"Failed to read '" + argument + b"' from properties for template '" + name + b"'")
    return None


def system(run, argument, name):
    ending = COMMANDS[argument]
    if ending.exit_code == 0:
        # Output is read line by line, and each line counts up to its first NUL.
        lines = ending.output.split(b"\n")
        kept = [line + b"\n" for line in lines[:-1]] + [lines[-1]]
        return trim(b"".join(line.split(b"\0")[0] for line in kept))
    if ending.exit_code is not None:
        run.log(b"WARNING", argument + b" exited with non-zero status: " + bytes([ending.exit_code]))
    run.log(b"DEBUG", b"Failed to resolve '" + argument + b"' from system for template '" + name + b"'")
    return None


# --- references --------------------------------------------------------------------------


def last_text(run, store, group, key):
    run.place = [group, key]
    return whole_text(run, store, store.values[group, key][-1])


def whole_text(run, store, value):
    """A stored value with its holes filled; empty, after a complaint, when too many are visited."""
    if not value.holes:
        return value.text
    visits = [0]
    text = visit(run, store, value, visits)
    if text is None:
        run.log(b"ERROR", b"Max depth reached, possibly circular reference.")
        return b""
    return text


def visit(run, store, value, visits):
    visits[0] += 1
    if visits[0] > MOST_VISITS:
        return None
    fillings = []
    for _, group, key in value.holes:
        if store.registered is not None and (group, key) not in store.registered:
            run.log(b"WARNING", group + b"/" + key + b" has not been added to the parser")
        filling = b""
        if (group, key) in store.values:
            filling = visit(run, store, store.values[group, key][-1], visits)
            if filling is None:
                return None
        fillings.append(filling)
    text = value.text
    shift = 0
    for (offset, _, _), filling in zip(value.holes, fillings):
        place = offset + shift
        if place > len(text):
            raise Impossible("a hole past the end")
        text = text[:place] + filling + text[place:]
        shift += len(filling)
    return text
