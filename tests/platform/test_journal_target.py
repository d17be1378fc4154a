"""Records on their way to the journal: field by field at its socket, and through the real daemon."""

import json
import pathlib
import shutil
import socket

import pytest

from journal_socket import messages

TO_JOURNAL = {"TARNWICK_LOGGING_TARGET": "systemd"}
DAEMON = "/lib/systemd/systemd-journald"


def ask(device, *arguments, user="0", env=TO_JOURNAL, **options):
    return device.run("--key", "Hostname", "--user-id", user, *arguments, env=env, **options)


def test_an_entry_has_the_message_its_priority_and_the_program_s_name(device, journal):
    device.configure("[Config]", "Hostname=${nothing}")
    result = ask(device)
    assert (result.stdout, result.stderr, result.returncode) == (b"", b"", 2)
    assert journal() == [
        {
            "MESSAGE": b"No such template 'nothing'",
            "PRIORITY": b"3",
            "SYSLOG_IDENTIFIER": b"tarnwick-parse-config",
        }
    ]


PRIORITIES = [
    ("error",   "${nothing}",    (3, b"No such template 'nothing'")),
    ("warning", "${system:exit 7}", (4, b"exit 7 exited with non-zero status: \x07")),
    ("debug",   "${env:NO_SUCH}",
     (7, b"Failed to read 'NO_SUCH' from environment variables for template 'env:NO_SUCH'")),
]  # fmt: skip


@pytest.mark.parametrize(("level", "value", "entry"), PRIORITIES, ids=[row[0] for row in PRIORITIES])
def test_the_priority_follows_the_level(device, journal, level, value, entry):
    device.configure("[Config]", f"Hostname={value}")
    ask(device, "--log-level", level)
    assert messages(journal()) == [entry]


def test_a_critical_record_has_priority_2(device, journal):
    device.configure("[Config]", "Hostname= ")
    result = ask(device)
    assert (result.stdout, result.stderr, result.returncode) == (b"", b"", 1)
    [(priority, _)] = messages(journal())
    assert priority == 2


def test_records_above_the_level_stay_away_from_the_journal(device, journal):
    device.configure("[Config]", "Hostname=${env:NO_SUCH}")
    ask(device)
    assert journal() == []


def test_entries_come_in_the_order_of_their_records(device, journal):
    device.configure("[Config]", "Hostname=${one};${two};${three}")
    ask(device)
    assert [message for _, message in messages(journal())] == [
        b"No such template 'one'",
        b"No such template 'two'",
        b"No such template 'three'",
    ]


@pytest.mark.parametrize("name", ["systemd", "SystemD"])
def test_the_target_s_name_may_be_written_in_any_case(device, journal, name):
    device.configure("[Config]", "Hostname=${nothing}")
    result = ask(device, env={"TARNWICK_LOGGING_TARGET": name})
    assert (result.stderr, len(journal())) == (b"", 1)


def test_without_the_target_nothing_reaches_the_journal(device, journal):
    device.configure("[Config]", "Hostname=${nothing}")
    result = ask(device, env={})
    assert (result.stderr, journal()) == (b"ERROR: No such template 'nothing'\n", [])


def test_front_end_messages_stay_on_the_error_stream(device, journal):
    device.configuration.rmdir()
    result = ask(device)
    assert result.stderr == f"No configuration to read in {device.configuration}\n".encode()
    assert (result.returncode, journal()) == (1, [])


def template(name):
    """The message of an unknown template, whose name the configuration chooses freely."""
    return b"[Config]\nHostname=${" + name + b"}\n", b"No such template '" + name + b"'"


UNUSUAL = {
    "a percent sign": template(b"100%s %n"),
    "invalid UTF-8": template(b"\xff\xfe\x80"),
    "control characters": template(b"\x01\x1b\x7f\t\r"),
    "leading blanks": template(b"   name"),
    "ten thousand characters": template(b"x" * 10000),
    "a hundred thousand characters": template(b"y" * 100000),
}


@pytest.mark.parametrize(("configuration", "message"), UNUSUAL.values(), ids=UNUSUAL)
def test_a_message_reaches_the_journal_byte_by_byte(device, journal, configuration, message):
    (device.configuration / "test.conf").write_bytes(configuration)
    ask(device)
    assert messages(journal()) == [(3, message)]


def test_a_message_ends_at_a_nul(device, journal):
    (device.configuration / "test.conf").write_bytes(template(b"before\0after")[0])
    ask(device)
    assert messages(journal()) == [(3, b"No such template 'before")]


# A user id is shown as the character of its low 8 bits, so it can put any byte into a message.
SEAT_MESSAGES = {
    "a line feed": (0x0A, b"There is only one session on seat0, selecting UID \n as active user"),
    "a NUL": (0x00, b"There is only one session on seat0, selecting UID"),
    "invalid UTF-8": (0xC8, b"There is only one session on seat0, selecting UID \xc8 as active user"),
}


@pytest.mark.parametrize(("byte", "message"), SEAT_MESSAGES.values(), ids=SEAT_MESSAGES)
def test_a_raw_character_in_the_middle_of_a_message_is_kept(device, journal, byte, message):
    uid = 1024 + byte
    device.add_account("amber", uid)
    device.configure("[Config]", "Hostname=${USER_ID}")
    device.write_seat(f"SESSIONS=1\nUIDS={uid}\n")
    result = ask(device, "--log-level", "debug", user="-1")
    assert (result.stdout, messages(journal())) == (f"{uid}\n".encode(), [(7, message)])


@pytest.mark.parametrize("byte", [0x20, 0x0A, 0x09, 0x00], ids=["blank", "line feed", "tab", "NUL"])
def test_white_space_at_the_end_of_a_message_is_dropped_on_the_way(device, journal, byte):
    uid = 1024 + byte
    device.add_account("amber", uid)
    device.configure("[Config]", "Hostname=${USER_ID}")
    device.write_seat(f"ACTIVE=1\nACTIVE_UID={uid}\n")
    ask(device, "--log-level", "debug", user="-1")
    assert messages(journal()) == [(7, b"Active session on seat0 found for UID")]


def no_journal(device):
    assert not (device.login / "journal").exists()


def abandoned_socket(device):
    (device.login / "journal").mkdir()
    with socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM) as listener:
        listener.bind(str(device.login / "journal" / "socket"))


def file_in_place_of_the_socket(device):
    (device.login / "journal").mkdir()
    (device.login / "journal" / "socket").write_text("")


@pytest.mark.parametrize("lay_out", [no_journal, abandoned_socket, file_in_place_of_the_socket])
@pytest.mark.parametrize(("value", "output", "status"), [("${nothing};v", b"v\n", 0), ("${nothing}", b"", 2)])
def test_without_a_journal_only_the_record_is_lost(device, lay_out, value, output, status):
    lay_out(device)
    device.configure("[Config]", f"Hostname={value}")
    result = ask(device)
    assert (result.stdout, result.stderr, result.returncode) == (output, b"", status)


# Starts the daemon, runs the command given, and lets the daemon store everything before it goes. The
# daemon makes its sockets one after the other: it is ready once it answers at the last of them.
WITH_DAEMON = """
set -e
mkdir /run/systemd/journald.conf.d
printf '[Journal]\\nStorage=volatile\\nReadKMsg=no\\nAudit=\\n' >/run/systemd/journald.conf.d/test.conf
"$0" 2>/run/systemd/daemon.log &
daemon=$!
trap 'kill $daemon; wait $daemon || true' EXIT
until journalctl --sync 2>/run/systemd/sync.log; do kill -0 $daemon; sleep 0.1; done
"$@" || true
journalctl --sync
journalctl --directory=/run/log/journal --all --output=json SYSLOG_IDENTIFIER=tarnwick-parse-config
"""


@pytest.fixture
def stored_entries(device):
    """Runs the tool beside a real daemon and returns the entries that the daemon stored."""
    if not pathlib.Path(DAEMON).exists() or shutil.which("journalctl") is None:
        pytest.skip("a journal started by hand needs systemd")

    def run(*arguments, user="0"):
        result = ask(device, *arguments, user=user, before=["sh", "-c", WITH_DAEMON, DAEMON])
        result.check_returncode()
        return [json.loads(line) for line in result.stdout.splitlines() if line.startswith(b"{")]

    return run


def stored_message(entry):
    """The message as bytes; what is not printable text is stored as a list of numbers."""
    message = entry["MESSAGE"]
    return message.encode() if isinstance(message, str) else bytes(message)


def test_the_real_daemon_stores_message_and_priority(device, stored_entries):
    device.configure("[Config]", "Hostname=${one};${system:exit 7};${env:NO_SUCH}")
    entries = stored_entries("--log-level", "debug")
    assert [(entry["PRIORITY"], stored_message(entry)) for entry in entries] == [
        ("3", b"No such template 'one'"),
        ("4", b"exit 7 exited with non-zero status: \x07"),
        ("7", b"Failed to resolve 'exit 7' from system for template 'system:exit 7'"),
        ("7", b"Failed to read 'NO_SUCH' from environment variables for template 'env:NO_SUCH'"),
    ]
    assert {entry["_TRANSPORT"] for entry in entries} == {"journal"}


@pytest.mark.parametrize(
    "name", [b"\xff\x80", b"x" * 5000, "d\u00e9j\u00e0".encode()], ids=["invalid UTF-8", "long", "accents"]
)
def test_the_real_daemon_stores_every_byte(device, stored_entries, name):
    configuration, message = template(name)
    (device.configuration / "test.conf").write_bytes(configuration)
    assert [stored_message(entry) for entry in stored_entries()] == [message]


@pytest.mark.parametrize(("byte", "message"), SEAT_MESSAGES.values(), ids=SEAT_MESSAGES)
def test_the_real_daemon_stores_raw_characters(device, stored_entries, byte, message):
    uid = 1024 + byte
    device.add_account("amber", uid)
    device.configure("[Config]", "Hostname=${USER_ID}")
    device.write_seat(f"SESSIONS=1\nUIDS={uid}\n")
    entries = stored_entries("--log-level", "debug", user="-1")
    assert [stored_message(entry) for entry in entries] == [message]
