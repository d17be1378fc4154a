"""Two builds of the tool are compared well: equal ones do not differ, and a planted difference is
found and told by a small case, whatever part of the answer it is in."""

import pathlib
import subprocess
import sys
from dataclasses import replace

import pytest

from build_cases import BuildCase
from build_comparing import EXCEPTION_TEXT, Answer, Bench, Surroundings, difference
from support.tool import EMULATOR, TOOL

pytestmark = pytest.mark.skipif(bool(EMULATOR), reason="builds are started without the emulator")

COMPARER = pathlib.Path(__file__).with_name("compare_builds")
CASES = 100


def compare(*arguments):
    command = [sys.executable, COMPARER, "--jobs", "2", *arguments]
    return subprocess.run(command, capture_output=True, text=True, check=False, timeout=600)


@pytest.fixture
def wrapped_build(tmp_path):
    """A script in whose text TOOL stands for a run of the tool, under its name."""

    def make(text):
        build = tmp_path / "wrapped-build"
        run = f'(exec -a tarnwick-parse-config {TOOL} "$@")'
        build.write_text("#!/bin/bash\n" + text.replace("TOOL", run) + "\n")
        build.chmod(0o755)
        return build

    return make


@pytest.fixture
def bench(tmp_path, monkeypatch):
    monkeypatch.chdir(tmp_path)  # and back from where the bench goes
    return Bench(tmp_path, Surroundings(tmp_path / "surroundings"))


def test_a_build_does_not_differ_from_itself():
    result = compare(TOOL, TOOL, "--cases", str(CASES))
    assert f"\n{CASES} cases, no difference: " in result.stdout, result.stdout + result.stderr
    assert result.returncode == 0


def slow(*row):
    return pytest.param(*row, marks=pytest.mark.slow)


@pytest.mark.parametrize(
    ("text", "replacement"),
    [
        (b"missing '}': ", b"missing '}'; "),
        slow(b" from system for template ", b" from System for template "),
        slow(b"exited with non-zero status: ", b"exited with non-zero status; "),
        slow(b"Failed to load config from '", b"failed to load config from '"),
        (b"USAGE:", b"Usage:"),
    ],
)
def test_one_byte_that_differs_is_found_and_told_by_a_small_case(other_build, text, replacement):
    result = compare(TOOL, str(other_build(text, replacement)), "--cases", "500", "--seed", "1")
    assert result.returncode == 1, result.stdout + result.stderr
    case, _, answers = result.stdout.partition("first: ")
    assert text.decode() in answers and replacement.decode() in answers
    assert len(case) < 1000, case


def test_a_case_that_differs_can_be_come_back_to(other_build):
    build = str(other_build(b"No such template '", b"No such Template '"))
    found = compare(TOOL, build, "--cases", "500", "--seed", "1").stdout
    _, hint = found.splitlines()[:2]
    again = compare(TOOL, build, *hint.split(": ")[1].split())
    assert again.returncode == 1
    assert again.stdout.splitlines()[1:] == found.splitlines()[1:]


def test_the_text_of_an_exception_is_ignored_on_demand_alone(other_build):
    build = str(other_build(b"white space alone", b"white space alike"))
    numbers = ("--cases", "300", "--seed", "1")
    assert compare(TOOL, build, *numbers).returncode == 1
    assert compare(TOOL, build, *numbers, "--ignore-exception-text").returncode == 0


def test_nothing_else_of_a_critical_record_is_ignored(other_build):
    build = str(other_build(b"Cannot get '", b"Cannot Get '"))
    result = compare(TOOL, build, "--cases", "300", "--seed", "1", "--ignore-exception-text")
    assert result.returncode == 1


def test_the_text_of_an_exception_ends_with_its_line():
    text = b"CRITICAL: Cannot get 'A/K': text: 'more'\nERROR: after\n"
    assert EXCEPTION_TEXT.sub(rb"\1", text) == b"CRITICAL: Cannot get 'A/K': \nERROR: after\n"


def test_an_exit_status_that_differs_is_found(wrapped_build):
    build = wrapped_build("TOOL\nstatus=$?\n[ $status -ne 2 ] && exit $status\nexit 3")
    result = compare(TOOL, str(build), "--cases", str(CASES))
    assert result.returncode == 1
    assert "first:  Answer(status=2, " in result.stdout
    assert "second: Answer(status=3, " in result.stdout


@pytest.fixture
def case():
    """One case that the tests fill with what they need."""
    arguments = [b"--user-id", b"0", b"--config", b"d1", b"--key", b"K", b"--log-level", b"debug"]
    return BuildCase("templates", {}, {}, arguments, {}, one_stream=False)


def test_records_keep_their_place_among_what_commands_write(bench, case):
    case.files = {b"d1/a.conf": b"[Config]\nK=${NOPE};${system:echo told >&2}$;${NOPE}\n"}
    nope = b"ERROR: No such template 'NOPE'\n"
    dollar = b"ERROR: '$' must be followed by '{' or '$': ${system:echo told >&2}$\n"
    assert bench.answers(case, [TOOL]) == [Answer(2, b"", nope + b"told\n" + dollar + nope, None)]


def test_what_a_command_adds_to_the_log_file_counts(bench, case):
    case.files = {b"d1/a.conf": b"[Config]\nK=${NOPE};${system:echo told >>log}\n"}
    case.environment = {b"TARNWICK_LOGGING_TARGET": b"{root}/log"}
    assert bench.answers(case, [TOOL]) == [Answer(2, b"", b"", b"ERROR: No such template 'NOPE'\ntold\n")]


def test_output_and_errors_in_one_stream_keep_their_order(bench, case):
    case.files = {b"d1/a.conf": b"[Config]\nK=${env:NONE};v\n"}
    case.one_stream = True
    record = b"DEBUG: Failed to read 'NONE' from environment variables for template 'env:NONE'\n"
    assert bench.answers(case, [TOOL]) == [Answer(0, record + b"v\n", b"", None)]


def test_nothing_of_a_case_is_left_for_the_next(bench, case):
    case.files = {b"d1/a.conf": b"[Config]\nK=v\n", b"d1/b.conf": None}
    case.links = {b"d2/c.conf": b"nowhere"}
    bench.answers(case, [TOOL])
    other = replace(case, files={b"d1/c.conf": b"[Config]\nK=w\n"}, links={})
    assert bench.answers(other, [TOOL]) == [Answer(0, b"w\n", b"", None)]


def test_a_build_that_hangs_differs(bench, case, wrapped_build, monkeypatch):
    monkeypatch.setattr("build_comparing.TIME_LIMIT_SECONDS", 1)
    first, second = bench.answers(case, [TOOL, str(wrapped_build("sleep 1000"))])
    assert (first.status, second.status) == (1, -9)
    assert difference([first, second])
