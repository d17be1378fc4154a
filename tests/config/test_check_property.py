"""`check` against the tool's own verdict, on generated configurations: an error where some request
fails or costs a record of the level error, whatever the sources answer, and none where none does.

The cases are those of the differential tests, with every source changed to one that has a word.

TARNWICK_CHECK_CASES        how many cases of `make test` (default 300)
TARNWICK_CHECK_SLOW_CASES   how many with the slow ones (default 20000)
TARNWICK_CHECK_SEED         another text gives other cases (default "check")
TARNWICK_CHECK_ONLY         the number of the only case to run
"""

import json
import multiprocessing
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
SLOW_CASES = int(os.environ.get("TARNWICK_CHECK_SLOW_CASES", "20000"))
SEED = os.environ.get("TARNWICK_CHECK_SEED", "check")
ONLY = os.environ.get("TARNWICK_CHECK_ONLY")
BLOCKS = 100
PROCESSES = len(os.sched_getaffinity(0))

# Longer than white space that is trimmed, so that it is never for want of a longer word that a
# position lies past the end.
WORD = "word" * 20
WORDS = {"CHECK_WORD": WORD}
VARIABLES = re.compile(rb"\$\{(?:HOME|USER|USER_ID|ODM_DIR)\}")
SOURCES = re.compile(rb"\$\{(?:env|realpath|dconf|prop|system|envfile:[^:;}\n]*):[^;}\n]*\}")


def make_sure_case(seed):
    """A case in which every source and every variable has a long word without white space."""
    case = make_case(seed)
    for name, content in case.files.items():
        if content is not None and name.endswith(b".conf"):
            case.files[name] = settle_user(VARIABLES.sub(b"${INSTANCE}", SOURCES.sub(b"${env:CHECK_WORD}", content)))
    case.user_id = 0
    case.instance = WORD.encode()
    return case


def settle_user(content):
    """A generated user is root, whose entry in the password database there is on every machine,
    and always has an instance: without one that variable would be empty."""
    instance = b"Instance=" + WORD.encode()
    content = re.sub(rb"^UserId=.*$", b"UserId=0", content, flags=re.MULTILINE)
    content = re.sub(rb"^Instance=.*$", instance, content, flags=re.MULTILINE)
    return re.sub(rb"^BaseUid=.*$", rb"\g<0>\n" + instance, content, flags=re.MULTILINE)


def entries_of(case):
    """Every (group, key, value) that stands in a file, as far as one can tell without a parser."""
    for name, content in case.files.items():
        if content is None or not name.endswith(b".conf"):
            continue
        group = b""  # of what stands above any header
        for line in content.split(b"\n"):
            if line.startswith(b"["):
                group = line[1:-1]
            elif b"=" in line:
                yield group, *line.split(b"=", 1)


def keys_with_references(case):
    """All that can fail where a load succeeds."""
    return {(group, key) for group, key, value in entries_of(case) if b"${config:" in value}


def all_keys(case):
    entries = list(entries_of(case))
    return {(group, key) for group, _, _ in entries for _, key, _ in entries}


def keys_to_ask(case, number):
    """One that stands in no file first; in every thirtieth case all, so that nothing else fails."""
    keys = all_keys(case) if number % 30 == 0 else keys_with_references(case)
    # A NUL cannot stand in an argument, nor in the name of a key that is stored.
    return [(b"Config", b"NoSuchKey"), *sorted(pair for pair in keys if pair[1] and b"\0" not in pair[0] + pair[1])]


def tool_fails(case, root, group, key):
    arguments = [b"--configs", b":".join(case.directories), b"--user-id", b"0", b"--instance", case.instance]
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


def disagreement(case, keys, root):
    """None when both agree, otherwise what they said. Leaves nothing at `root`."""
    write_case(case, root)
    errors = check_finds(case, root)
    # Faults that are not of references concern every request: one is enough.
    if any(not error["id"].startswith("reference-") or error["id"] == "reference-form" for error in errors):
        keys = keys[:1]
    failing = next((key for key in keys if tool_fails(case, root, *key)), None)
    shutil.rmtree(root)
    if bool(errors) == bool(failing):
        return None
    return f"check: {errors}\nkey that fails: {failing}"


def first_disagreement(numbers):
    """What is to be told about the first case on which both do not agree, or None."""
    memory = "/dev/shm" if os.access("/dev/shm", os.W_OK) else None
    with tempfile.TemporaryDirectory(prefix="check-", dir=memory) as parent:
        root = os.fsencode(os.path.join(os.path.realpath(parent), "case"))
        for number in numbers:
            case = make_sure_case(f"{SEED}:{number}")
            found = disagreement(case, keys_to_ask(case, number), root)
            if found is not None:
                return f"case {number}\n{describe(case)}\n{found}"
    return None


def compare(first, end):
    """Compares these cases on all processors."""
    blocks = [range(first + block, end, BLOCKS) for block in range(BLOCKS)]
    with multiprocessing.Pool(PROCESSES) as pool:
        for found in pool.imap_unordered(first_disagreement, blocks):
            assert found is None, found


def test_check_finds_an_error_where_the_tool_fails_and_nowhere_else():
    if ONLY:
        compare(int(ONLY), int(ONLY) + 1)
    else:
        compare(0, CASES)


@pytest.mark.slow
def test_the_same_of_many_more_cases():
    compare(CASES, SLOW_CASES)
