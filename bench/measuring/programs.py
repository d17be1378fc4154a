"""The programs that answer the same question, as rows: how each is started, and how far it goes."""

import os
import shutil
import sys
from pathlib import Path
from typing import Callable, NamedTuple

from . import inputs

TOOL = "tarnwick-parse-config"
EMPTY = "empty C program"
CAREFUL = "careful C++ reader"
LIMIT = "slices in C"
GIT = "git config"
KEY_FILE = "GKeyFile"


def is_answer(source, printed):
    return printed == source.answer + "\n"


class Program(NamedTuple):
    name: str
    path: str
    arguments: Callable[[inputs.Input], list]
    most_keys: int = 3_000_000  # beyond this it takes too long to be worth the wait
    most_files: int = 1000
    answers: bool = True  # it reads the input and prints the value
    environment: Callable[[inputs.Input], dict] = lambda source: {}
    is_right: Callable[[inputs.Input, str], bool] = is_answer  # what a reader printed


def same_arguments(source):
    return [source.directory, source.group, source.key]


def tool_arguments(source):
    return ["--config", source.directory, "--user-id", os.getuid(), "--group", source.group, "--key", source.key]


def list_arguments(source):
    return [*tool_arguments(source), "--list"]


def git_arguments(source):
    file = inputs.include_file(source)
    return ["config", "--includes", "--file", file, "--get", f"{source.group}.{source.key}"]


def kreadconfig_arguments(source):
    return ["--file", "settings", "--group", source.group, "--key", source.key]


def kreadconfig_environment(source):
    *system, user = inputs.cascade(source)
    important_first = ":".join(str(directory) for directory in reversed(system))
    return {"XDG_CONFIG_HOME": str(user), "XDG_CONFIG_DIRS": important_first or "/nonexistent"}


def crudini_arguments(source):
    return ["--get", inputs.joined_file(source), source.group, source.key]


def known_programs(build):
    """Every program; `path` is empty where one is not installed or not built."""
    peers = Path(build) / "bench" / "peers"

    def built(path):
        return str(path) if path.exists() else ""

    def installed(name):
        return shutil.which(name) or ""

    return [
        Program(EMPTY, built(peers / "empty"), lambda source: [], answers=False),
        Program(TOOL, built(Path(build) / "tools" / TOOL), tool_arguments),
        Program(CAREFUL, built(peers / "careful"), same_arguments),
        Program(LIMIT, built(peers / "slices"), same_arguments),
        Program("libinih", built(peers / "inih"), same_arguments),
        Program(KEY_FILE, built(peers / "gkeyfile"), same_arguments),
        Program(GIT, installed("git"), git_arguments),
        Program(
            "kreadconfig5",
            installed("kreadconfig5"),
            kreadconfig_arguments,
            most_keys=1_000_000,
            most_files=100,
            environment=kreadconfig_environment,
        ),
        Program("crudini", installed("crudini"), crudini_arguments, most_keys=10_000, most_files=100),
    ]


def built_tool(build):
    """The tool in a build tree; ends the process when there is none."""
    (tool,) = (program for program in known_programs(build) if program.name == TOOL)
    if not tool.path:
        sys.exit(f"There is no tool in {build}.")
    return tool


def able_programs(programs, source):
    """Those that are here and can read an input of this size."""
    return [
        program
        for program in programs
        if program.path and source.keys <= program.most_keys and source.files <= program.most_files
    ]


def invocation(program, source):
    """How the program is started: its argument vector, and a small environment of its own, the
    same for everyone who measures."""
    arguments = [program.path, *(str(argument) for argument in program.arguments(source))]
    environment = {
        "PATH": "/usr/bin:/bin",
        "LC_ALL": "C",
        "HOME": str(source.directory),
        "GIT_CONFIG_NOSYSTEM": "1",
        **program.environment(source),
    }
    return arguments, environment
