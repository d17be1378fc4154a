"""The wait for a user: what wakes the tool, what does not, and when it gives up."""

import contextlib
import signal
import time

import pytest

from device import FAKETIME_SPEED, hurried, is_watching, wait_until

WAIT_SECONDS = 31
TIMED_OUT = b"WARNING: Could not get sessions for seat0, timeout reached\n"
NO_USER = b"ERROR: Failed to get seat0 user: "


@pytest.fixture
def waiting_tool(device, tmp_path):
    """Starts the tool on an empty seat and yields it once it waits for a login."""
    device.configure("[Config]", "Hostname=${USER}")
    device.add_account("amber", 1065)
    device.add_account("birch", 1066)
    device.write_seat("")
    with contextlib.ExitStack() as clean_up:
        errors = clean_up.enter_context((tmp_path / "errors").open("wb"))

        def start(**options):
            tool = device.start("--key", "Hostname", stderr=errors, **options)
            clean_up.callback(finish, tool)
            wait_until(lambda: is_watching(tool.pid))
            return tool

        yield start


def finish(tool):
    tool.kill()
    tool.communicate()


def answer(tool, tmp_path, limit_seconds=20):
    """Exit status, standard output and error stream of a started tool."""
    output, _ = tool.communicate(timeout=limit_seconds)
    return tool.returncode, output, (tmp_path / "errors").read_bytes()


def still_waits(tool):
    """A grace period: a tool that was woken has answered by then."""
    time.sleep(0.3)
    return tool.poll() is None


def test_a_login_ends_the_wait(device, waiting_tool, tmp_path):
    tool = waiting_tool()
    device.write_seat("ACTIVE=1\nACTIVE_UID=1065\nSESSIONS=1\nUIDS=1065\n")
    device.report_user_change(1065)
    assert answer(tool, tmp_path) == (0, b"amber\n", b"")


def test_the_last_of_several_users_leaving_but_one_ends_the_wait(device, waiting_tool, tmp_path):
    device.write_seat("SESSIONS=1 2\nUIDS=1065 1066\n")
    device.report_user_change(1066)
    tool = waiting_tool()
    device.write_seat("SESSIONS=1\nUIDS=1065\n")
    (device.users / "1066").unlink()
    assert answer(tool, tmp_path) == (0, b"amber\n", b"")


def test_a_seat_that_becomes_readable_ends_the_wait(device, waiting_tool, tmp_path):
    device.write_seat("UIDS=1065\n")
    tool = waiting_tool()
    device.write_seat("SESSIONS=1\nUIDS=1065\n")
    device.report_user_change(1065)
    assert answer(tool, tmp_path) == (0, b"amber\n", b"WARNING: Could not get sessions for seat0\n")


def test_a_change_that_gives_no_user_goes_on_waiting(device, waiting_tool, tmp_path):
    tool = waiting_tool()
    device.write_seat("SESSIONS=1 2\nUIDS=1065 1066\n")
    device.report_user_change(1065)
    assert still_waits(tool)
    device.write_seat("ACTIVE=2\nACTIVE_UID=1066\nSESSIONS=1 2\nUIDS=1065 1066\n")
    device.report_user_change(1066)
    assert answer(tool, tmp_path) == (0, b"birch\n", b"")


def test_each_change_is_one_more_look_at_the_seat(device, waiting_tool, tmp_path):
    device.seat.unlink()
    tool = waiting_tool()
    assert looks(tmp_path) == 1
    for changes in (1, 2):
        device.report_user_change(1065)
        wait_until(lambda: looks(tmp_path) > changes)
        assert still_waits(tool)
        assert looks(tmp_path) == 1 + changes


def looks(tmp_path):
    """How often the tool has looked at a seat without a file: each look is warned of."""
    return (tmp_path / "errors").read_bytes().count(b"WARNING: Could not get sessions for seat0\n")


def test_a_seat_file_alone_wakes_nobody(device, waiting_tool, tmp_path):
    tool = waiting_tool()
    device.write_seat("ACTIVE=1\nACTIVE_UID=1065\n")
    assert still_waits(tool)
    device.report_user_change(1065)
    assert answer(tool, tmp_path) == (0, b"amber\n", b"")


def test_a_user_file_written_in_place_wakes_nobody(device, waiting_tool, tmp_path):
    tool = waiting_tool()
    device.write_seat("ACTIVE=1\nACTIVE_UID=1065\n")
    (device.users / "1065").write_text("STATE=active\n")
    assert still_waits(tool)
    (device.users / "1065").unlink()
    assert answer(tool, tmp_path) == (0, b"amber\n", b"")


def test_a_login_that_nobody_reports_is_seen_in_the_last_second(device, waiting_tool, tmp_path):
    tool = waiting_tool(env=hurried())
    device.write_seat("ACTIVE=1\nACTIVE_UID=1065\n")
    assert answer(tool, tmp_path) == (0, b"amber\n", b"")


def test_a_wake_up_without_a_user_does_not_lengthen_the_wait(device, waiting_tool, tmp_path):
    tool = waiting_tool(env=hurried())
    device.report_user_change(1065)
    status, output, errors = answer(tool, tmp_path)
    assert (status, output) == (1, b"")
    assert errors.startswith(TIMED_OUT + NO_USER)


def test_the_hurried_wait_lasts_its_share_of_31_seconds(device, waiting_tool, tmp_path):
    begin = time.monotonic()
    tool = waiting_tool(env=hurried())
    status, output, errors = answer(tool, tmp_path)
    assert time.monotonic() - begin >= WAIT_SECONDS / FAKETIME_SPEED
    assert (status, output) == (1, b"")
    assert errors.startswith(TIMED_OUT + NO_USER)


def test_a_signal_during_the_wait_ends_it_without_a_user(waiting_tool, tmp_path):
    tool = waiting_tool()
    wait_until(lambda: is_asleep(tool.pid))
    tool.send_signal(signal.SIGPIPE)  # the one that the tool handles, by doing nothing
    status, output, errors = answer(tool, tmp_path)
    assert (status, output) == (1, b"")
    assert errors.startswith(b"WARNING: Polling login monitor failed!\n" + NO_USER)


def is_asleep(process_id):
    """True while a process waits in the kernel."""
    with open(f"/proc/{process_id}/stat", encoding="ascii") as information:
        return information.read().rpartition(")")[2].split()[0] == "S"


@pytest.mark.slow
def test_the_wait_at_true_speed_lasts_31_seconds(device, waiting_tool, tmp_path):
    begin = time.monotonic()
    tool = waiting_tool()
    status, output, errors = answer(tool, tmp_path, limit_seconds=90)
    elapsed = time.monotonic() - begin
    assert elapsed >= WAIT_SECONDS
    assert (status, output) == (1, b"")
    assert errors.startswith(TIMED_OUT + NO_USER)
