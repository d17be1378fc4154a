"""Commands in values that print too much, never end, or die."""

import os
import signal
import time

import pytest

from watching import (
    MEGABYTE,
    SMALL,
    kill_session,
    run,
    session_members,
    start,
    wait,
    wait_until,
)

ASK = ("--config", "d", "--key", "K")
GIGABYTE = 1000 * 1000 * 1000

# Ten times the processor time that was seen, and half as much memory again.
SECONDS_PER_BYTE = 100e-9
COPIES_OF_OUTPUT = 3

# What these do by default is nothing, or to stop the process until SIGCONT.
HARMLESS = {signal.SIGCHLD, signal.SIGCONT, signal.SIGURG, signal.SIGWINCH}
STOPPING = {signal.SIGSTOP, signal.SIGTSTP, signal.SIGTTIN, signal.SIGTTOU}


def write(place, command, other=""):
    (place / "d/a.conf").write_text(f"[Config]\nK={other}${{system:{command}}}\n")


def deadly_signals():
    """The signals that end a process; an emulator keeps two of them from the tool's commands."""
    kept = {signal.SIGRTMIN, signal.SIGRTMIN + 1}
    for number in sorted(signal.valid_signals() - HARMLESS - STOPPING):
        marks = [pytest.mark.native] if number in kept else []
        yield pytest.param(number, marks=marks, id=str(int(number)))


@pytest.mark.parametrize("number", deadly_signals())
def test_a_command_that_dies_by_a_signal_has_no_value_and_no_record(place, number):
    write(place, f"echo lost && kill -{int(number)} $$ && sleep 60")
    outcome = run(*ASK, place=place)
    assert (outcome.status, outcome.stdout, outcome.stderr) == (2, b"", b"")


@pytest.mark.parametrize("number", sorted(HARMLESS), ids=int)
def test_a_command_survives_a_signal_that_is_ignored_by_default(place, number):
    write(place, f"kill -{int(number)} $$ && echo alive")
    outcome = run(*ASK, place=place)
    assert (outcome.status, outcome.stdout, outcome.stderr) == (0, b"alive\n", b"")


@pytest.mark.parametrize("number", sorted(STOPPING), ids=int)
def test_the_tool_waits_for_a_stopped_command_and_takes_its_value_when_it_goes_on(place, number):
    # The test's new sessions have no terminal and orphaned groups, in which only SIGSTOP stops.
    write(place, f"kill -{int(number)} $$ && echo alive")
    with open(place / "out", "wb") as out:
        process = start(*ASK, place=place, stdout=out)
    if number == signal.SIGSTOP:
        assert wait_until(lambda: stopped_members(process.pid) != [])
        for member in stopped_members(process.pid):
            os.kill(member, signal.SIGCONT)
    status, _ = wait(process, limit=60)
    assert status == 0
    assert (place / "out").read_bytes() == b"alive\n"


def stopped_members(session):
    return [member for member in session_members(session) if state_of(member) == "T"]


def state_of(process):
    return stat_fields(process)[0]


def parent_of(process):
    return int(stat_fields(process)[1])


def stat_fields(process):
    with open(f"/proc/{process}/stat") as file:
        return file.read().rpartition(")")[2].split()


def test_the_tool_waits_as_long_as_a_command_runs_and_then_goes_on(place):
    write(place, "sleep 1000", other="early;")
    with open(place / "out", "wb") as out, open(place / "err", "wb") as err:
        process = start(*ASK, place=place, stdout=out, stderr=err)
    assert wait_until(lambda: commands_of(process) != [])
    time.sleep(0.5)
    assert state_of(process.pid) == "S"
    for command in commands_of(process):
        os.kill(command, signal.SIGTERM)
    status, _ = wait(process, limit=60)
    assert status == 0
    assert ((place / "out").read_bytes(), (place / "err").read_bytes()) == (b"early\n", b"")


def commands_of(process):
    """The shell, and what it runs, once they are there."""
    return [member for member in session_members(process.pid) if member != process.pid]


@pytest.mark.native
def test_a_tool_that_is_killed_while_it_waits_prints_nothing(place):
    write(place, "sleep 1000", other="early;")
    with open(place / "out", "wb") as out, open(place / "err", "wb") as err:
        process = start(*ASK, place=place, stdout=out, stderr=err)
    assert wait_until(lambda: commands_of(process) != [])
    process.terminate()
    status, _ = wait(process)
    assert status == -signal.SIGTERM
    assert ((place / "out").read_bytes(), (place / "err").read_bytes()) == (b"", b"")
    kill_session(process.pid)  # the command outlives the tool that was killed


@pytest.mark.parametrize("signals", [[signal.SIGSTOP, signal.SIGCONT], [signal.SIGPIPE], [signal.SIGWINCH]])
def test_a_signal_that_only_interrupts_the_wait_does_not_harm_the_value(place, signals):
    write(place, "sleep 1000 || echo woken")
    with open(place / "out", "wb") as out, open(place / "err", "wb") as err:
        process = start(*ASK, place=place, stdout=out, stderr=err)
    assert wait_until(lambda: len(commands_of(process)) == 2)
    for number in signals:
        process.send_signal(number)
        time.sleep(0.05)
    sleeper = next(member for member in commands_of(process) if parent_of(member) != process.pid)
    os.kill(sleeper, signal.SIGTERM)
    status, _ = wait(process, limit=60)
    assert status == 0
    assert (place / "out").read_bytes() == b"woken\n"


def test_a_command_that_closes_its_output_is_waited_for_all_the_same(place):
    write(place, "echo early && exec >&- && sleep 0.3 && touch done")
    outcome = run(*ASK, place=place, expected_files=["done"])
    assert (outcome.status, outcome.stdout, outcome.stderr) == (0, b"early\n", b"")
    assert (place / "done").exists()


def test_a_command_of_a_parent_that_reaps_no_children_fails_with_a_record(place):
    write(place, "echo hello")
    outcome = run(*ASK, place=place, dispositions={signal.SIGCHLD: signal.SIG_IGN})
    assert (outcome.status, outcome.stdout) == (2, b"")
    assert outcome.stderr == b"ERROR: echo hello pclose() exited with failure: No child processes\n"


@pytest.mark.parametrize("disposition", [signal.SIG_DFL, pytest.param(signal.SIG_IGN, marks=pytest.mark.native)])
@pytest.mark.parametrize("number", [signal.SIGPIPE, signal.SIGXFSZ])
def test_a_signal_that_the_tool_survives_reaches_commands_as_it_reached_the_tool(place, number, disposition):
    write(place, "grep SigIgn /proc/self/status")
    outcome = run(*ASK, place=place, dispositions={number: disposition})
    ignored = int(outcome.stdout.split()[1], 16)
    assert bool(ignored >> (number - 1) & 1) == (disposition == signal.SIG_IGN)


def test_a_command_inherits_no_descriptor_of_the_tool(place):
    write(place, "ls /proc/self/fd | tr '\\n' ,")
    outcome = run(*ASK, place=place)
    # The fourth is the directory that ls itself lists.
    assert (outcome.status, outcome.stdout, outcome.stderr) == (0, b"0,1,2,3,\n", b"")


@pytest.mark.parametrize("code", [1, 2, 126, 127, 128, 200, 255])
def test_a_failing_commands_status_is_told_as_one_raw_character(place, code):
    write(place, f"exit {code}")
    outcome = run(*ASK, place=place)
    record = b"WARNING: exit %d exited with non-zero status: %c\n" % (code, code)
    assert (outcome.status, outcome.stdout, outcome.stderr) == (2, b"", record)


def test_much_output_becomes_the_value(place):
    assert_takes_output(place, 20 * MEGABYTE)


@pytest.mark.slow
def test_a_gigabyte_of_output_becomes_the_value(place, plain_build, memory_for_a_gigabyte):
    assert_takes_output(place, GIGABYTE)


@pytest.mark.slow
def test_a_gigabyte_of_a_failing_command_is_discarded(place, plain_build, memory_for_a_gigabyte):
    command = f"{letters(GIGABYTE)} && false"
    write(place, command, other="early;")
    outcome = run(*ASK, place=place, bounds=output_bounds(GIGABYTE))
    assert (outcome.status, outcome.stdout) == (0, b"early\n")
    assert outcome.stderr == f"WARNING: {command} exited with non-zero status: \x01\n".encode()


@pytest.fixture
def memory_for_a_gigabyte():
    if available_memory() < 4 * GIGABYTE:
        pytest.skip("needs 4 GB of free memory")


def assert_takes_output(place, size):
    write(place, letters(size))
    with open(place / "out", "w+b") as out:
        outcome = run(*ASK, place=place, bounds=output_bounds(size), stdout=out)
        assert (outcome.status, outcome.stderr) == (0, b"")
        assert is_only_x(out, size)


def letters(size):
    """The command that prints so many letters; NULs would not be kept."""
    return f"head -c {size} /dev/zero | tr '\\000' x"


def output_bounds(size):
    """No more than a handful of copies of the output exist, and none is gone through again and again."""
    return SMALL.plus(cpu_seconds=size * SECONDS_PER_BYTE, peak_bytes=size * COPIES_OF_OUTPUT)


def is_only_x(file, size):
    file.seek(0)
    block = b"x" * MEGABYTE
    for start_of_block in range(0, size, MEGABYTE):
        length = min(MEGABYTE, size - start_of_block)
        if file.read(length) != block[:length]:
            return False
    return file.read() == b"\n"


def available_memory():
    with open("/proc/meminfo") as file:
        return next(int(line.split()[1]) * 1024 for line in file if line.startswith("MemAvailable"))
