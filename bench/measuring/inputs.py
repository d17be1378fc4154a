"""Generates the configurations that are read, and names the question asked about each.

Every input exists once as the tool reads it, a directory of `*.conf` files. What a peer needs
besides (one joined file, a cascade of directories, a file of include lines) is derived from it.
"""

import itertools
import random
from pathlib import Path
from typing import NamedTuple

KEYS_PER_GROUP = 1000

# Texts as device configurations hold them: switches, numbers, names, paths, sentences.
VALUE_SHAPES = (
    "true",
    "{}",
    "name-{}",
    "/vendor/lib/modules/module-{}.so",
    "com.example.service.number{}",
    "The text of the setting with the number {}",
)

# What every tenth value of the start-up input draws on; plain text to the peers.
TEMPLATE_SHAPES = (
    "${{HOME}}/share/{}",
    "/run/user/${{USER_ID}}/socket-{}",
    "${{INSTANCE}}-{}",
    "${{config:Config/Hostname}}-{}",
)

STARTUP_GROUPS = ("Audio", "Config", "Devices", "Features", "Network")


class Input(NamedTuple):
    """One configuration, and one key with the value that every program must answer."""

    name: str
    directory: Path
    keys: int
    files: int
    group: str
    key: str
    answer: str


def joined_file(source):
    """All files of the input as one; the file itself when there is just one."""
    files = sorted(source.directory.glob("*.conf"))
    if len(files) == 1:
        return files[0]
    joined = source.directory / "joined"
    if not joined.exists():
        joined.write_text("".join(file.read_text() for file in files))
    return joined


def include_file(source):
    """A file for `git config --includes` that includes the input's files in their order."""
    includes = source.directory / "includes"
    if not includes.exists():
        paths = sorted(source.directory.glob("*.conf"))
        includes.write_text("[include]\n" + "".join(f"path = {path}\n" for path in paths))
    return includes


def cascade(source):
    """Directories, least important first, that each hold one of the files as `settings`."""
    top = source.directory / "cascade"
    if not top.exists():
        for file in source.directory.glob("*.conf"):
            (top / file.stem).mkdir(parents=True)
            (top / file.stem / "settings").symlink_to(file)
    return sorted(top.iterdir())


def value_text(number):
    return VALUE_SHAPES[number % len(VALUE_SHAPES)].format(number)


def startup_value(number):
    if number % 10 == 0:
        return TEMPLATE_SHAPES[number // 10 % len(TEMPLATE_SHAPES)].format(number)
    return value_text(number)


def startup_file(index):
    """25 keys in five groups, with the comments and blank lines that people write."""
    lines = [f"# Settings, file {index}"]
    numbers = itertools.count(25 * index)
    for group in STARTUP_GROUPS:
        lines += ["", f"[{group}]"]
        for number in itertools.islice(numbers, 5):
            lines.append(f"Setting{number}={startup_value(number)}")
        if group == "Config":
            lines[-1] = f"Hostname=device-{index}"
    return "\n".join(lines) + "\n"


def startup_input(top, files=12):
    """The usual request: 12 files of 25 keys; each file overrides the key that is asked for."""
    directory = top / f"startup-{files}"
    directory.mkdir()
    for index in range(files):
        (directory / f"{10 + index:03}-settings.conf").write_text(startup_file(index))
    answer = f"device-{files - 1}"
    return Input("start-up", directory, 25 * files, files, "Config", "Hostname", answer)


def startup_keys(count, files=12):
    """(group, key) of `count` keys of the start-up input, spread over its files and groups."""
    numbers = [number for number in range(25 * files) if number % 25 != 9]  # there: "Hostname"
    chosen = numbers[:: len(numbers) // count][:count]
    return [(STARTUP_GROUPS[number % 25 // 5], f"Setting{number}") for number in chosen]


def group_lines(number, keys, first):
    yield f"[Group{number}]\n"
    for key in range(keys):
        yield f"Key{key}={value_text(first + key)}\n"


def large_input(top, keys, files=1, per_group=KEYS_PER_GROUP):
    """`keys` keys in groups, spread evenly over the files; the last key is asked for."""
    directory = top / f"{keys}-keys-{files}-files"
    directory.mkdir()
    groups = [min(per_group, keys - first) for first in range(0, keys, per_group)]
    groups_per_file = len(groups) // files
    for index in range(files):
        with open(directory / f"{index:05}.conf", "w", encoding="ascii") as file:
            for number in range(index * groups_per_file, (index + 1) * groups_per_file):
                file.writelines(group_lines(number, groups[number], number * per_group))
    last_group, last_key = len(groups) - 1, groups[-1] - 1
    answer = value_text(keys - 1)
    name = f"{files:,} {'file' if files == 1 else 'files'}, {keys:,} keys"
    return Input(name, directory, keys, files, f"Group{last_group}", f"Key{last_key}", answer)


def references_input(top, values=10_000, references=30):
    """One key with `values` values, each drawing on `references` of as many other keys. The
    answer is the whole list."""
    choice = random.Random(1)
    directory = top / f"references-{values}-of-{references}"
    directory.mkdir()
    drawn = [choice.choices(range(values), k=references) for _ in range(values)]

    with open(directory / "references.conf", "w", encoding="ascii") as file:
        file.write("[Base]\n")
        file.writelines(f"Key{number}=text {number}\n" for number in range(values))
        file.write("[Config]\n")
        for numbers in drawn:
            templates = (f"${{config:Base/Key{number}}}" for number in numbers)
            file.write("Drawn=" + ",".join(templates) + "\n")
    answer = ";".join(",".join(f"text {number}" for number in numbers) for numbers in drawn)
    return Input("references", directory, 2 * values, 1, "Config", "Drawn", answer)
