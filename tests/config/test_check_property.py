"""`check` against the tool's own verdict, on generated configurations: an error where some request
fails or costs a record of the level error, whatever the sources answer, and none where none does.

The cases are those of the differential tests, with every source changed to one that has a word.

TARNWICK_CHECK_CASES   how many cases (default 300)
"""

import json
import os
import re

import pytest
from comparing import on_disk
from draws import often
from generator import cases, entries_of
from hypothesis import given
from hypothesis import strategies as st
from support.generated import on_cases
from support.tool import run_config, run_tool

# Longer than white space that is trimmed, so that it is never for want of a longer word that a
# position lies past the end.
WORD = "word" * 20
WORDS = {"CHECK_WORD": WORD}
VARIABLES = re.compile(rb"\$\{(?:HOME|USER|USER_ID|ODM_DIR)\}")
SOURCES = re.compile(rb"\$\{(?:env|realpath|dconf|prop|system|envfile:[^:;}\n]*):[^;}\n]*\}")


@st.composite
def sure_cases(draw):
    """Cases in which every source and every variable has a long word without white space."""
    case = draw(cases())
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


def keys_with_references(case):
    """All that can fail where a load succeeds."""
    return {(group, key) for group, key, value in entries_of(case.files) if b"${config:" in value}


def all_keys(case):
    """Each key in each group."""
    entries = list(entries_of(case.files))
    return {(group, key) for group, _, _ in entries for _, key, _ in entries}


def keys_to_ask(case, asks_for_all):
    """One that stands in no file first."""
    keys = all_keys(case) if asks_for_all else keys_with_references(case)
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
    """None when both agree, otherwise what they said."""
    with on_disk(case, root):
        errors = check_finds(case, root)
        # Faults that are not of references concern every request: one is enough.
        if any(not error["id"].startswith("reference-") or error["id"] == "reference-form" for error in errors):
            keys = keys[:1]
        failing = next((key for key in keys if tool_fails(case, root, *key)), None)
    if bool(errors) == bool(failing):
        return None
    return f"check: {errors}\nkey that fails: {failing}"


# In a few cases all keys are asked for, so that nothing else fails.
@on_cases("TARNWICK_CHECK_CASES", 300)
@given(case=sure_cases(), asks_for_all=often(3))
def test_check_finds_an_error_where_the_tool_fails_and_nowhere_else(root, case, asks_for_all):
    found = disagreement(case, keys_to_ask(case, asks_for_all), root)
    if found is not None:
        pytest.fail(found)
