"""The people's program, tarnwick-config: its commands as programs that are measured."""

import os
from pathlib import Path

from . import running
from .programs import Program, invocation

NAME = "tarnwick-config"


def find(build):
    """Where it stands in a build tree; empty when it is not built."""
    tools = Path(build) / "tools"
    paths = (tools / "config" / NAME, tools / NAME)
    return next((str(path) for path in paths if path.is_file()), "")


def context(source):
    return ["--config", source.directory, "--user-id", os.getuid()]


def answers_of(tool, source, names):
    """What the tool answers for each (group, key), a line each."""
    requests = (source._replace(group=group, key=key) for group, key in names)
    printed = (running.run(*invocation(tool, request)).stdout for request in requests)
    return "".join(printed).removesuffix("\n")


def check(path):
    """`check` of one unknown group, of which one fault tells."""
    return Program(
        f"{NAME} check",
        path,
        lambda source: ["check", source.directory],
        is_right=lambda source, printed: printed.count("[unknown-") == 1,
    )


def check_examples(path):
    """`check` of what the examples set up; what is broken on purpose would end it with 1."""
    return Program(
        f"{NAME} check",
        path,
        lambda source: ["check", source.directory / "vendor.conf.d", source.directory / "user.conf.d"],
        is_right=lambda source, printed: True,
    )


def show(path):
    def is_right(source, printed):
        last = f"{source.group}/{source.key}={source.answer}\n"
        return last in printed and printed.count("\n") == source.keys

    return Program(f"{NAME} show", path, lambda source: ["show", *context(source)], is_right=is_right)


def get(path, names):
    """`get` of the (group, key) names, from one load."""
    keys = [f"{group}/{key}" for group, key in names]
    return Program(
        f"{NAME} get, {len(keys)} {'key' if len(keys) == 1 else 'keys'}",
        path,
        lambda source: ["get", *context(source), *keys],
    )
