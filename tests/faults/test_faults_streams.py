"""Standard streams and log files that cannot be written."""

import os
import signal

import pytest

from support.tool import tool_command
from watching import CLOSED, one_critical_record, run

ASK = ("--config", "d", "--key", "K")
ALARMING = "[Config]\nK=right\nL=${NOWHERE}\n"
ALARM = b"ERROR: No such template 'NOWHERE'\n"


@pytest.fixture
def one_value(place):
    (place / "d/a.conf").write_text("[Config]\nK=right\n")
    return place


@pytest.fixture
def one_value_and_a_complaint(place):
    (place / "d/a.conf").write_text(ALARMING)
    return place


@pytest.fixture
def pipe_without_reader():
    reader, writer = os.pipe()
    os.close(reader)
    yield writer
    os.close(writer)


@pytest.fixture
def full_device():
    with open("/dev/full", "wb") as device:
        yield device


def test_a_closed_standard_output_is_a_failure(one_value):
    outcome = run(*ASK, place=one_value, stdout=CLOSED)
    assert outcome.status == 1
    assert one_critical_record(outcome.stderr)


def test_a_full_standard_output_is_a_failure(one_value, full_device):
    outcome = run(*ASK, place=one_value, stdout=full_device)
    assert outcome.status == 1
    assert one_critical_record(outcome.stderr)


@pytest.mark.parametrize("disposition", [signal.SIG_DFL, signal.SIG_IGN])
def test_a_pipe_whose_reader_is_gone_is_a_failure_and_not_a_death(one_value, pipe_without_reader, disposition):
    outcome = run(*ASK, place=one_value, stdout=pipe_without_reader, dispositions={signal.SIGPIPE: disposition})
    assert outcome.status == 1
    assert one_critical_record(outcome.stderr)


@pytest.mark.parametrize("option", [[], ["--list"]])
def test_a_long_value_that_only_partly_fits_is_a_failure(place, as_root, option):
    (place / "d/a.conf").write_text("K=" + "x" * 100_000 + "\n")
    (place / "small").mkdir()
    script = 'mount -t tmpfs -o size=16k none small && exec "$@" > small/output'
    outcome = run_in_namespace(place, script, *ASK, "--group", "", *option)
    assert outcome.status == 1
    assert one_critical_record(outcome.stderr)


def test_a_reader_that_leaves_midway_makes_the_tool_fail(place):
    (place / "d/a.conf").write_text("[Config]\nK=" + "x" * 1_000_000 + "\n")
    reader, writer = os.pipe()
    departure = leave_after_one_byte(reader, writer)
    outcome = run(*ASK, place=place, stdout=writer)
    os.close(writer)
    os.waitpid(departure, 0)
    assert outcome.status == 1
    assert one_critical_record(outcome.stderr)


def leave_after_one_byte(reader, writer):
    """Hands the only reading end to a process that takes one byte and goes."""
    process = os.fork()
    if process == 0:
        os.close(writer)
        os.read(reader, 1)
        os._exit(0)
    os.close(reader)
    return process


def test_the_usage_text_on_a_full_output_still_fails(one_value, full_device):
    outcome = run("--key", place=one_value, stdout=full_device)
    assert outcome.status == 1
    assert outcome.stderr.startswith(b"--key needs value. Specify an config key name.\n")


def test_a_closed_error_stream_does_not_harm_the_value(one_value_and_a_complaint):
    outcome = run(*ASK, place=one_value_and_a_complaint, stderr=CLOSED)
    assert (outcome.status, outcome.stdout) == (0, b"right\n")


def test_records_for_a_closed_error_stream_do_not_land_in_the_files(one_value_and_a_complaint):
    outcome = run(*ASK, place=one_value_and_a_complaint, stdin=CLOSED, stdout=CLOSED, stderr=CLOSED)
    assert outcome.status == 1
    assert (one_value_and_a_complaint / "d/a.conf").read_text() == ALARMING


def test_with_every_stream_closed_the_tool_fails(one_value):
    outcome = run(*ASK, place=one_value, stdin=CLOSED, stdout=CLOSED, stderr=CLOSED)
    assert (outcome.status, outcome.stdout, outcome.stderr) == (1, b"", b"")


def test_a_closed_input_changes_nothing(one_value):
    outcome = run(*ASK, place=one_value, stdin=CLOSED)
    assert (outcome.status, outcome.stdout, outcome.stderr) == (0, b"right\n", b"")


def test_a_command_finds_its_output_when_the_tools_own_is_closed(place):
    (place / "d/a.conf").write_text("[Config]\nK=${system:echo hello}\n")
    outcome = run(*ASK, place=place, stdin=CLOSED, stderr=CLOSED)
    assert (outcome.status, outcome.stdout) == (0, b"hello\n")


def test_a_full_error_stream_does_not_harm_the_value(one_value_and_a_complaint, full_device):
    outcome = run(*ASK, place=one_value_and_a_complaint, stderr=full_device)
    assert (outcome.status, outcome.stdout) == (0, b"right\n")


def test_an_error_pipe_without_reader_does_not_harm_the_value(one_value_and_a_complaint, pipe_without_reader):
    outcome = run(*ASK, place=one_value_and_a_complaint, stderr=pipe_without_reader)
    assert (outcome.status, outcome.stdout) == (0, b"right\n")


def test_a_log_file_that_takes_nothing_does_not_harm_the_value(one_value_and_a_complaint):
    outcome = run(*ASK, place=one_value_and_a_complaint, env={"TARNWICK_LOGGING_TARGET": "/dev/full"})
    assert (outcome.status, outcome.stdout, outcome.stderr) == (0, b"right\n", b"")


def test_a_log_file_on_a_full_disk_does_not_harm_the_value(one_value_and_a_complaint, as_root):
    place = one_value_and_a_complaint
    (place / "d/a.conf").write_text(ALARMING * 1000)
    (place / "small").mkdir()
    script = 'mount -t tmpfs -o size=16k none small && exec "$@"'
    outcome = run_in_namespace(place, script, *ASK, env={"TARNWICK_LOGGING_TARGET": f"{place}/small/log"})
    assert (outcome.status, outcome.stdout, outcome.stderr) == (0, b"right\n", b"")


def test_a_value_is_not_lost_silently_when_the_log_is_full_too(one_value, full_device):
    outcome = run(*ASK, place=one_value, stdout=full_device, env={"TARNWICK_LOGGING_TARGET": "/dev/full"})
    assert (outcome.status, outcome.stderr) == (1, b"")


def test_a_log_file_takes_the_record_about_the_lost_value(one_value, full_device):
    log = one_value / "log"
    outcome = run(
        *ASK, place=one_value, stdout=full_device,
        env={"TARNWICK_LOGGING_TARGET": str(log)}, expected_files=["log"],
    )  # fmt: skip
    assert (outcome.status, outcome.stderr) == (1, b"")
    assert one_critical_record(log.read_bytes())


def run_in_namespace(place, script, *arguments, **options):
    """Runs `script` with the tool's command line as "$@", in mounts of its own."""
    tool = tool_command("--user-id", "0", *arguments)
    return run(place=place, command=["unshare", "-m", "sh", "-c", script, "sh", *tool], **options)
