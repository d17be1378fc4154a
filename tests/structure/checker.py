"""Reads the include lines of a tree and finds what breaks the order of its parts.

Every rule is a function that returns its findings, one text each, with the file and the include.
"""

import functools
import graphlib
import os
import re
import shutil
import subprocess
from dataclasses import dataclass, field

INCLUDE = re.compile(r'^[ \t]*#[ \t]*include[ \t]*"([^"\n]+)"', re.MULTILINE)
TEXT = r'"(?:\\.|[^"\\\n])*"|(?<![0-9A-Fa-f])\'(?:\\.|[^\'\\\n])*\''
COMMENT = r"//[^\n]*|/\*.*?\*/"
TEXT_OR_COMMENT = re.compile(f"{TEXT}|{COMMENT}", re.DOTALL)
PARSER = re.compile(r"\bConfigParser\b")
DECLARATION = re.compile(r"\bclass ConfigParser;|\((?:const )?ConfigParser\* \w+\)")
INSTALLED = re.compile(r"^  (\S+\.h)\)?$", re.MULTILINE)


@dataclass
class Rules:
    """The table that a tree is held against, see `floors`."""

    floors: list
    shared_rooms: dict = field(default_factory=dict)
    name_the_parser: list = field(default_factory=list)
    declare_the_parser: list = field(default_factory=list)

    def floor_of(self, file):
        """The number of the floor that a file of the library stands on, or None."""
        names = {stem(file), folder(file)}
        return next((number for number, floor in enumerate(self.floors) if names & set(floor)), None)

    def room_of(self, place, file):
        if place == "tools":
            return f"tools/{stem(file)}"
        return self.shared_rooms.get(folder(file)) or self.shared_rooms.get(stem(file)) or stem(file)


def stem(file):
    return os.path.splitext(file)[0]


def folder(file):
    """The top folder of a file with a slash behind, or nothing for a file in no folder."""
    return file.split("/")[0] + "/" if "/" in file else ""


class Tree:
    """The C++ files of `src` and `tools` below a directory, by their paths inside these."""

    def __init__(self, directory):
        self.directory = str(directory)
        self.files = [(place, file) for place in ("src", "tools") for file in self.files_of(place)]

    def files_of(self, place):
        top = os.path.join(self.directory, place)
        found = [os.path.join(folder, name) for folder, _, names in os.walk(top) for name in names]
        return sorted(os.path.relpath(path, top) for path in found if path.endswith((".h", ".cpp")))

    def text(self, place, file):
        with open(os.path.join(self.directory, place, file), encoding="utf-8") as source:
            return source.read()

    @functools.cached_property
    def includes(self):
        """(place, file, include as written, place and file that it leads to or None) of each."""
        return [
            (place, file, written, self.target(place, file, written))
            for place, file in self.files
            for written in INCLUDE.findall(without_comments(self.text(place, file)))
        ]

    def target(self, place, file, written):
        beside = os.path.normpath(os.path.join(place, os.path.dirname(file), written))
        candidates = [tuple(beside.split("/", 1)), ("src", written), ("tools", written)]
        return next((candidate for candidate in candidates if candidate in self.files), None)

    def installed_headers(self):
        """The headers that are installed, by their paths inside `src`."""
        return INSTALLED.findall(self.text("cmake", "PublicHeaders.cmake"))


def without_comments(text):
    return TEXT_OR_COMMENT.sub(lambda found: " " if found[0].startswith("/") else found[0], text)


def code_alone(text):
    """The text without comments, string literals and character literals."""
    return TEXT_OR_COMMENT.sub(" ", text)


# --- rules -------------------------------------------------------------------------------


def files_without_floor(tree, rules):
    return [
        f"src/{file} stands on no floor"
        for place, file in tree.files
        if place == "src" and rules.floor_of(file) is None
    ]


def includes_upward(tree, rules):
    findings = []
    for place, file, written, target in tree.includes:
        reason = reason_against(rules, place, file, target)
        if reason:
            findings.append(f'{place}/{file} includes "{written}", {reason}')
    return findings


def reason_against(rules, place, file, target):
    if target is None:
        return "which is nowhere"
    if place == "tools":
        return None
    if target[0] == "tools":
        return "which is no part of the library"
    here, there = rules.floor_of(file), rules.floor_of(target[1])
    if here is not None and there is not None and there > here:
        return f"which stands above it: floor {there} above floor {here}"
    return None


def circles(tree, rules):
    """The first circle of rooms, as the includes that make it."""
    ways = {}
    for place, file, written, target in tree.includes:
        if target is not None:
            rooms = rules.room_of(place, file), rules.room_of(*target)
            if rooms[0] != rooms[1]:
                ways.setdefault(rooms, f'{place}/{file} includes "{written}"')
    graph = {}
    for room, other in ways:
        graph.setdefault(room, []).append(other)
    try:
        graphlib.TopologicalSorter(graph).prepare()
    except graphlib.CycleError as error:
        circle = error.args[1][::-1]  # each room is followed by one that it includes
        return [" and ".join(ways[step] for step in zip(circle, circle[1:])) + ": a circle"]
    return []


def installed_headers_that_need_others(tree):
    installed = tree.installed_headers()
    missing = [file for file in installed if ("src", file) not in tree.files]
    findings = [f"cmake/PublicHeaders.cmake names src/{file}, which is nowhere" for file in missing]
    for place, file, written, target in tree.includes:
        if place == "src" and file in installed and target is not None and target[1] not in installed:
            findings.append(f'src/{file} is installed and includes "{written}", which is not')
    return findings


def installed_headers_that_do_not_compile(tree, compiler, directory):
    """Compiles each installed header alone, from `directory`, which holds nothing else."""
    headers = tree.installed_headers()
    for file in headers:
        copy = os.path.join(directory, "tarnwick", file)
        os.makedirs(os.path.dirname(copy), exist_ok=True)
        shutil.copy(os.path.join(tree.directory, "src", file), copy)
    findings = []
    for file in headers:
        message = message_of_compiler(compiler, directory, f"#include <tarnwick/{file}>\n")
        if message:
            findings.append(f"src/{file} does not compile alone: {message}")
    return findings


def message_of_compiler(compiler, directory, source):
    """The first error in `source`, or None."""
    command = [compiler, "-std=c++20", "-fsyntax-only", "-I", directory, "-x", "c++", "-"]
    result = subprocess.run(command, input=source, capture_output=True, text=True, check=False)
    if result.returncode == 0:
        return None
    lines = result.stderr.splitlines()
    return next((line for line in lines if "error: " in line), result.stderr)


def files_that_name_the_parser(tree, rules):
    findings = []
    for place, file in tree.files:
        if place != "src" or file in rules.name_the_parser:
            continue
        code = code_alone(tree.text(place, file))
        if file in rules.declare_the_parser:
            code = DECLARATION.sub(" ", code)
        if PARSER.search(code):
            findings.append(f"src/{file} names ConfigParser")
    return findings
