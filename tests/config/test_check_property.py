"""`check` against the tool's own verdict, on generated configurations: an error where some request
fails or costs a record of the level error, whatever the sources answer, and none where none does.

The cases are those of the differential tests, with every source changed to one that has a word.

TARNWICK_CHECK_CASES   how many cases of `make test` (default 300)
TARNWICK_CHECK_SLOW_CASES   how many with the slow ones (default 2000)
TARNWICK_CHECK_ONLY    the number of the only case to run
"""

import json
import os
import pathlib
import re
import shutil
import sys
import tempfile

import pytest
from support.tool import run_config, run_tool

sys.path.insert(0, str(pathlib.Path(__file__).parents[1] / "differential"))
from comparing import describe, write_case  # noqa: E402
from generator import make_case  # noqa: E402

CASES = int(os.environ.get("TARNWICK_CHECK_CASES", "300"))
SLOW_CASES = int(os.environ.get("TARNWICK_CHECK_SLOW_CASES", "2000"))
ONLY = os.environ.get("TARNWICK_CHECK_ONLY")
BLOCKS = 10

WORDS = {"CHECK_WORD": "word"}
SOURCES = re.compile(rb"\$\{(?:env|realpath|dconf|prop|system|envfile:[^:;}\n]*):[^;}\n]*\}")


def make_sure_case(seed):
    """A case in which every source and every variable has a word without white space."""
    case = make_case(seed)
    for name, content in case.files.items():
        if content is not None and name.endswith(b".conf"):
            case.files[name] = settle_user(SOURCES.sub(b"${env:CHECK_WORD}", content))
    case.user_id = 0
    case.instance = b"word"
    return case


def settle_user(content):
    """A generated user is root, whose entry in the password database there is on every machine."""
    content = re.sub(rb"^UserId=.*$", b"UserId=0", content, flags=re.MULTILINE)
    return re.sub(rb"^Instance=.*$", b"Instance=word", content, flags=re.MULTILINE)


def keys_of(case):
    """Every key that stands in a file, under any group, and one that stands in none."""
    groups, keys = {b"Config"}, {b"NoSuchKey"}
    for name, content in case.files.items():
        if content is None or not name.endswith(b".conf"):
            continue
        for line in content.split(b"\n"):
            if line.startswith(b"["):
                groups.add(line[1:-1])
            elif b"=" in line:
                keys.add(line.split(b"=")[0])
    # A NUL cannot stand in an argument, nor in the name of a key that is stored.
    return [(group, key) for group in sorted(groups) for key in sorted(keys) if key and b"\0" not in group + key]


def tool_fails(case, root, group, key):
    arguments = [b"--configs", b":".join(case.directories), b"--user-id", b"0", b"--instance", b"word"]
    arguments += [b"--list", b"--group", group, b"--key", key]
    run = run_tool(*map(os.fsdecode, arguments), cwd=root, env=WORDS)
    return run.returncode == 1 or re.search(rb"^(ERROR|CRITICAL): ", run.stderr, flags=re.MULTILINE) is not None


def check_finds(case, root):
    arguments = [os.fsdecode(path) for path in case.directories]
    run = run_config("check", "--format=json", *arguments, cwd=root)
    report = json.loads(run.stdout)
    errors = [fault for fault in report["faults"] if fault["severity"] == "error"]
    expected = 2 if run.stderr else 1 if errors else 0
    assert (run.returncode, report["errors"]) == (expected, len(errors))
    return errors


def disagreement(case, root):
    """None when both agree, otherwise what they said. Leaves nothing at `root`."""
    shutil.rmtree(root, ignore_errors=True)
    write_case(case, root)
    errors = check_finds(case, root)
    keys = keys_of(case)
    # Faults that are not of references concern every request: one is enough.
    if any(not error["id"].startswith("reference-") or error["id"] == "reference-form" for error in errors):
        keys = keys[:1]
    failing = [key for key in keys if tool_fails(case, root, *key)]
    shutil.rmtree(root)
    if bool(errors) == bool(failing):
        return None
    return f"check: {errors}\nkeys that fail: {failing}"


@pytest.fixture
def root():
    memory = "/dev/shm" if os.access("/dev/shm", os.W_OK) else None
    parent = tempfile.mkdtemp(prefix="check-", dir=memory)
    yield os.fsencode(os.path.join(os.path.realpath(parent), "case"))
    shutil.rmtree(parent)


def compare(numbers, root):
    for number in numbers:
        case = make_sure_case(f"check:{number}")
        found = disagreement(case, root)
        assert found is None, f"case {number}\n{describe(case)}\n{found}"


@pytest.mark.parametrize("block", range(1 if ONLY else BLOCKS))
def test_check_finds_an_error_where_the_tool_fails_and_nowhere_else(block, root):
    compare([int(ONLY)] if ONLY else range(block, CASES, BLOCKS), root)


@pytest.mark.slow
@pytest.mark.parametrize("block", range(BLOCKS))
def test_the_same_of_many_more_cases(block, root):
    compare(range(CASES + block, SLOW_CASES, BLOCKS), root)
