"""Whose session is at seat0: every content of the seat file, read by the real login library."""

import errno
import os

import pytest

from device import hurried

IDENTITY = "Hostname=${USER}|${USER_ID}|${HOME}"
ARGUMENTS = ("--key", "Hostname", "--log-level", "debug")

NOT_READABLE = b"WARNING: Could not get sessions for seat0\n"
TIMED_OUT = b"WARNING: Could not get sessions for seat0, timeout reached\n"
NO_USER = b"ERROR: Failed to get seat0 user: "


@pytest.fixture
def seat(device):
    """Seat0 of a device with three accounts; the login monitor works."""
    device.configure("[Config]", IDENTITY)
    for name, uid in (("amber", 1065), ("birch", 1066), ("cedar", 1067)):
        device.add_account(name, uid)
    return device


@pytest.fixture
def unmonitored_seat(seat):
    """The same without a directory of users: no monitor comes about, so the first look decides."""
    seat.users.rmdir()
    return seat


ACTIVE = b"DEBUG: Active session on seat0 found for UID %c\n"
ONLY_ONE = b"DEBUG: There is only one session on seat0, selecting UID %c as active user\n"

FOUND = {
    "an active session": ("ACTIVE=1\nACTIVE_UID=1065\n", 1065, ACTIVE),
    "an active session in a file without a last line feed": ("ACTIVE=1\nACTIVE_UID=1065", 1065, ACTIVE),
    "quoted values": ('ACTIVE="1"\nACTIVE_UID="1065"\n', 1065, ACTIVE),
    "an active user without a session": ("ACTIVE_UID=1065\n", 1065, ACTIVE),
    "the active of several users": ("ACTIVE=2\nACTIVE_UID=1066\nSESSIONS=1 2 3\nUIDS=1065 1066 1067\n", 1066, ACTIVE),
    "an active user apart from the one session": ("ACTIVE=2\nACTIVE_UID=1066\nSESSIONS=1\nUIDS=1065\n", 1066, ACTIVE),
    "root": ("ACTIVE=1\nACTIVE_UID=0\n", 0, ACTIVE),
    "one session that is not active": ("SESSIONS=1\nUIDS=1065\n", 1065, ONLY_ONE),
    "one session beside an active uid that is no number": (
        "ACTIVE=2\nACTIVE_UID=junk\nSESSIONS=1\nUIDS=1065\n",
        1065,
        ONLY_ONE,
    ),
    "one session beside an active uid that means nobody": (
        "ACTIVE=2\nACTIVE_UID=4294967295\nSESSIONS=1\nUIDS=1065\n",
        1065,
        ONLY_ONE,
    ),
}


@pytest.mark.parametrize(("text", "uid", "record"), FOUND.values(), ids=FOUND)
def test_a_user_found_at_the_first_look_is_taken_at_once(seat, text, uid, record):
    seat.write_seat(text)
    result = seat.run(*ARGUMENTS)
    name = {0: "root", 1065: "amber", 1066: "birch"}[uid]
    assert result.stdout == f"{name}|{uid}|{seat.homes / name}\n".encode()
    assert result.stderr == record % (uid & 0xFF)
    assert result.returncode == 0


NOBODY = {
    "an empty file": "",
    "only the seat's abilities": "IS_SEAT0=1\nCAN_MULTI_SESSION=1\n",
    "an active session without a user": "ACTIVE=1\n",
    "lists without entries": "SESSIONS=\nUIDS=\n",
    "one session without a list of users": "SESSIONS=1\n",
    "one session with an empty list of users": "SESSIONS=1\nUIDS=\n",
    "two sessions without a list of users": "SESSIONS=1 2\n",
    "two sessions of two users": "SESSIONS=1 2\nUIDS=1065 1066\n",
    "two sessions of one user": "SESSIONS=1 2\nUIDS=1065 1065\n",
    "three sessions of three users": "SESSIONS=1 2 3\nUIDS=1065 1066 1067\n",
}

UNREADABLE = {
    "no file": (None, errno.ENXIO),
    "users without sessions": ("UIDS=1065\n", errno.EUCLEAN),
    "users beside an empty list of sessions": ("SESSIONS=\nUIDS=1065\n", errno.EUCLEAN),
    "fewer users than sessions": ("SESSIONS=1 2\nUIDS=1065\n", errno.EUCLEAN),
    "more users than sessions": ("SESSIONS=1\nUIDS=1065 1066\n", errno.EUCLEAN),
    "a user that is no number": ("SESSIONS=1\nUIDS=junk\n", errno.EINVAL),
    "a user that means nobody": ("SESSIONS=1\nUIDS=4294967295\n", errno.ENXIO),
}


def lay_out(device, text):
    if text is not None:
        device.write_seat(text)


@pytest.mark.parametrize("text", NOBODY.values(), ids=NOBODY)
def test_without_a_monitor_a_seat_of_nobody_fails_at_once(unmonitored_seat, text):
    unmonitored_seat.write_seat(text)
    result = unmonitored_seat.run(*ARGUMENTS)
    warning, error = result.stderr.splitlines(keepends=True)
    assert warning == b"WARNING: Could not create login monitor\n"
    assert error.startswith(NO_USER)
    assert (result.stdout, result.returncode) == (b"", 1)


@pytest.mark.parametrize("text", [text for text, _ in UNREADABLE.values()], ids=UNREADABLE)
def test_without_a_monitor_an_unreadable_list_of_sessions_fails_at_once(unmonitored_seat, text):
    lay_out(unmonitored_seat, text)
    result = unmonitored_seat.run(*ARGUMENTS)
    assert result.stderr.startswith(NOT_READABLE + b"WARNING: Could not create login monitor\n")
    assert result.stderr.count(b"\n") == 3
    assert result.stderr.splitlines()[2].startswith(NO_USER)
    assert (result.stdout, result.returncode) == (b"", 1)


def test_without_a_monitor_the_first_look_still_finds_the_active_user(unmonitored_seat):
    unmonitored_seat.write_seat("ACTIVE=1\nACTIVE_UID=1065\n")
    result = unmonitored_seat.run(*ARGUMENTS)
    assert result.stdout.startswith(b"amber|1065|")
    assert result.stderr == ACTIVE % (1065 & 0xFF) + b"WARNING: Could not create login monitor\n"
    assert result.returncode == 0


@pytest.mark.parametrize(
    "text", ["", "SESSIONS=1 2\nUIDS=1065 1066\n"], ids=["no session", "two sessions, none active"]
)
def test_a_seat_of_nobody_fails_when_the_wait_is_over(seat, tmp_path, text):
    seat.write_seat(text)
    with (tmp_path / "errors").open("wb+") as errors:
        result = seat.run(*ARGUMENTS, env=hurried(), stderr=errors)
        errors.seek(0)
        timed_out, error = errors.read().splitlines(keepends=True)
    assert timed_out == TIMED_OUT
    assert error.startswith(NO_USER)
    assert (result.stdout, result.returncode) == (b"", 1)


def looks_in_vain(seat, tmp_path, cause):
    """The records of the looks at a seat that cannot be read, until the wait is over."""
    with (tmp_path / "errors").open("wb+") as errors:
        result = seat.run(*ARGUMENTS, env=hurried(), stderr=errors)
        errors.seek(0)
        *looks, timed_out, error = errors.read().splitlines(keepends=True)
    assert timed_out == TIMED_OUT
    assert error == NO_USER + os.strerror(cause).encode() + b"\n"
    assert (result.stdout, result.returncode) == (b"", 1)
    return looks


@pytest.mark.parametrize(("text", "cause"), UNREADABLE.values(), ids=UNREADABLE)
def test_an_unreadable_list_of_sessions_is_looked_at_until_the_wait_is_over(seat, tmp_path, text, cause):
    lay_out(seat, text)
    # One look before the wait, one after it, and many without a pause while its last second passes.
    # That second is a moment here, in which a busy machine may let others run: then once more.
    for _ in range(10):
        looks = looks_in_vain(seat, tmp_path, cause)
        assert set(looks) == {NOT_READABLE}
        if len(looks) > 10:
            break
    assert len(looks) > 10


def test_a_user_without_an_account_is_an_error_that_names_the_uid(seat):
    seat.write_seat("ACTIVE=1\nACTIVE_UID=4242\n")
    result = seat.run("--key", "Hostname")
    assert result.stderr == b"ERROR: Failed to get user information for uid 4242: Success\n"
    assert (result.stdout, result.returncode) == (b"", 1)


def test_a_uid_that_needs_all_32_bits_is_taken_as_it_is(seat):
    seat.write_seat("ACTIVE=1\nACTIVE_UID=4294967294\n")
    result = seat.run("--key", "Hostname")
    assert result.stderr == b"ERROR: Failed to get user information for uid -2: Success\n"
    assert (result.stdout, result.returncode) == (b"", 1)


def test_a_user_id_on_the_command_line_spares_the_look_at_the_seat(seat):
    seat.write_seat("ACTIVE=1\nACTIVE_UID=1065\n")
    result = seat.run(*ARGUMENTS, "--user-id", "1066")
    assert result.stdout == f"birch|1066|{seat.homes / 'birch'}\n".encode()
    assert result.stderr == b""


def test_a_user_id_of_minus_one_asks_the_seat(seat):
    seat.write_seat("ACTIVE=1\nACTIVE_UID=1065\n")
    assert seat.run(*ARGUMENTS, "--user-id", "-1").stdout.startswith(b"amber|1065|")


GENERATED = ["[GeneratedConfig]", "UserId=1066", "User=someone", "Home=/elsewhere", "BaseUid=100000"]


def test_a_generated_user_spares_the_look_at_the_seat(seat):
    seat.configure(*GENERATED, "[Config]", IDENTITY)
    seat.write_seat("ACTIVE=1\nACTIVE_UID=1065\n")
    result = seat.run(*ARGUMENTS)
    assert result.stdout == f"birch|1066|{seat.homes / 'birch'}\n".encode()
    assert result.stderr == b""


@pytest.mark.parametrize("missing", range(1, len(GENERATED)), ids=[line.partition("=")[0] for line in GENERATED[1:]])
def test_an_incomplete_generated_user_leaves_the_choice_to_the_seat(seat, missing):
    left = GENERATED[:missing] + GENERATED[missing + 1 :]
    seat.configure(*left, "[Config]", IDENTITY)
    seat.write_seat("ACTIVE=1\nACTIVE_UID=1065\n")
    assert seat.run(*ARGUMENTS).stdout.startswith(b"amber|1065|")


def test_a_generated_user_of_minus_one_asks_the_seat(seat):
    seat.configure(*GENERATED, "UserId=-1", "[Config]", IDENTITY)
    seat.write_seat("ACTIVE=1\nACTIVE_UID=1065\n")
    assert seat.run(*ARGUMENTS).stdout.startswith(b"amber|1065|")
