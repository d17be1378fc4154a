"""Puts one case on disk, asks the tool and the naive implementation, and says how they differ."""

import contextlib
import os
import shutil
import subprocess

import naive_tool
from support.tool import run_tool

LEVELS = {None: 2, b"debug": 4, b"Critical": 0, b"ERROR": 1, b"3": 3, b"0x4": 4}

# A case takes milliseconds, and to make one small that hangs takes this long for each try.
TIME_LIMIT_SECONDS = 20
HANGS = subprocess.CompletedProcess([], "hangs", b"", b"")


def write_case(case, root):
    """Fills the fresh directory `root` with the files and links of the case."""
    for directory in (b"d1", b"d2", b"d3", b"env"):
        os.makedirs(os.path.join(root, directory))
    for name, content in case.files.items():
        path = os.path.join(root, name)
        if content is None:
            os.mkdir(path)
            continue
        with open(path, "wb") as file:
            file.write(content)
    for name, target in case.links.items():
        os.symlink(target, os.path.join(root, name))


@contextlib.contextmanager
def on_disk(case, root):
    """The case is at `root` for as long as this lasts."""
    write_case(case, root)
    try:
        yield
    finally:
        shutil.rmtree(root)


def context_of(case):
    """The arguments that say what a request is answered from."""
    arguments = [b"--user-id", b"%d" % case.user_id, b"--configs", b":".join(case.directories)]
    arguments += [b"--instance", case.instance]
    return arguments if case.level is None else [*arguments, b"--log-level", case.level]


def arguments_of(case):
    return [*context_of(case), b"--group", case.group, b"--key", case.key] + [b"--list"] * case.list_all


def variables_of(case):
    return {os.fsdecode(name): os.fsdecode(text) for name, text in case.environment.items()}


def expected_answer(case, root):
    """What the naive implementation says; the case has been written to `root`."""
    return naive_tool.answer(
        naive_tool.Request(
            root=root,
            directories=case.directories,
            group=case.group,
            key=case.key,
            user_id=case.user_id,
            instance=case.instance,
            level=LEVELS[case.level],
            list_all=case.list_all,
            environment=case.environment,
        )
    )


def tool_answer(case, root):
    """How the tool's run ended; one without an end is an answer of its own."""
    arguments = map(os.fsdecode, arguments_of(case))
    try:
        return run_tool(*arguments, env=variables_of(case), cwd=root, timeout=TIME_LIMIT_SECONDS)
    except subprocess.TimeoutExpired:
        return HANGS


def difference(case, root):
    """None when both agree, otherwise what they said. Leaves nothing at `root`."""
    with on_disk(case, root):
        expected = expected_answer(case, root)
        seen = tool_answer(case, root)
    if agrees(expected, seen):
        return None
    return f"naive: {expected}\ntool:  {(seen.returncode, seen.stdout, seen.stderr)}"


def agrees(expected, seen):
    if (seen.returncode, seen.stdout) != (expected.status, expected.stdout):
        return False
    if expected.named is None:
        return seen.stderr == expected.stderr
    return is_critical_record(seen.stderr.removeprefix(expected.stderr), expected.named)


def is_critical_record(text, named):
    """True for exactly one critical record that names everything in `named`."""
    one_line = text.startswith(b"CRITICAL: ") and text.find(b"\n") == len(text) - 1
    return one_line and all(name in text for name in named)
