"""The tool on a booted system: real systemd, logind and journald in a throw-away container.

The seat of the container has no virtual terminals. There a new session becomes the active one, and
when it ends no other takes its place; that is how the tests arrive at sessions none of which is active.
The login service keeps a session that ended last in its seat file until something else changes.
"""

import contextlib
import json
import pathlib
import subprocess
import sys
import time

import pytest

from container import SHARED_INSIDE, TOOL_INSIDE, plain_environment
from device import hurried, is_watching, wait_until

ROOT = pathlib.Path(__file__).parents[2]
sys.path.insert(0, str(ROOT / "man"))
from text_examples import examples_in  # noqa: E402

# Above the range that accounts usually come from; the low 8 bits are the letters A, B and C.
USERS = {"tw-amber": 45121, "tw-birch": 45122, "tw-cedar": 45123}
AMBER, BIRCH, CEDAR = USERS
# Half of what the tool waits by itself: an answer in this time is one to an event.
ANSWER_LIMIT_SECONDS = 15

TIMED_OUT = b"WARNING: Could not get sessions for seat0, timeout reached\n"
NO_USER = b"ERROR: Failed to get seat0 user: "


@pytest.fixture(scope="module")
def system(machine):
    """The booted container with accounts and a login service."""
    for name, uid in USERS.items():
        machine.run("useradd", "--create-home", "--uid", str(uid), name)
    machine.run("systemctl", "start", "systemd-logind.service")
    return machine


class Seat:
    """Seat0 of the container: people log in and out, and their sessions are told apart by name."""

    def __init__(self, system):
        self.system = system

    def fields(self):
        lines = self.system.read("/run/systemd/seats/seat0").splitlines()
        return dict(line.split("=", 1) for line in lines if "=" in line)

    def active(self):
        return self.fields().get("ACTIVE_UID")

    def users(self):
        """The users of the sessions that the seat file lists."""
        return sorted(self.fields().get("UIDS", "").split())

    def session_ids(self, name):
        return self.system.run("loginctl", "show-user", name, "--property=Sessions", "--value").split()

    def log_in(self, name):
        """Opens a session, which becomes the active one; returns once the seat file says so."""
        self.system.run(
            "systemd-run", f"--unit=session-of-{name}", "--quiet", "--collect",
            "-p", "PAMName=login", "-p", f"User={name}",
            "-E", "XDG_SEAT=seat0", "-E", "XDG_SESSION_TYPE=tty", "-E", "XDG_SESSION_CLASS=user",
            "sleep", "infinity",
        )  # fmt: skip
        self.wait_for_active(name)

    def log_out(self, name):
        """Ends a session; returns once it is gone and the seat file has no active user of that name."""
        self.system.run("systemctl", "stop", f"session-of-{name}.service")
        wait_until(lambda: not self.session_ids_or_none(name))
        wait_until(lambda: self.active() != str(USERS[name]))

    def session_ids_or_none(self, name):
        try:
            return self.session_ids(name)
        except subprocess.CalledProcessError:
            return []  # the login service knows no user without sessions

    def activate(self, name):
        [session] = self.session_ids(name)
        self.system.run("loginctl", "activate", session)
        self.wait_for_active(name)

    def wait_for_active(self, name):
        wait_until(lambda: self.active() == str(USERS[name]))

    def clear(self):
        """Logs everybody out; the login service, started anew, forgets the sessions that ended."""
        self.system.run("systemctl", "stop", "session-of-*.service")
        wait_until(lambda: not self.system.run("loginctl", "list-sessions", "--no-legend"))
        self.system.run("systemctl", "reset-failed", "systemd-logind.service")  # so often is too often
        self.system.run("systemctl", "restart", "systemd-logind.service")
        wait_until(lambda: self.users() == [])


@pytest.fixture
def seat(system):
    """A seat that begins and ends with nobody logged in."""
    seat = Seat(system)
    seat.clear()
    yield seat
    seat.clear()


def uids(*names):
    return sorted(str(USERS[name]) for name in names)


class Tool:
    """The tool inside the container, with a configuration of the test's own."""

    def __init__(self, system):
        self.system = system
        self.errors = system.shared / "errors"
        self.configure("Hostname=${USER}|${USER_ID}|${HOME}")

    def configure(self, *lines):
        directory = self.system.shared / "conf.d"
        directory.mkdir(exist_ok=True)
        (directory / "test.conf").write_text("".join(f"{line}\n" for line in ("[Config]", *lines)))

    def command(self, *arguments, env=None):
        assignments = [f"{name}={text}" for name, text in (env or {}).items()]
        return self.system.inside(
            "env", *assignments, TOOL_INSIDE, "--config", str(SHARED_INSIDE / "conf.d"),
            "--key", "Hostname", *arguments,
        )  # fmt: skip

    def run(self, *arguments, env=None):
        """Runs the tool to its end: exit status, standard output, error stream."""
        with self.errors.open("wb") as errors:
            result = subprocess.run(
                self.command(*arguments, env=env),
                env=plain_environment(),
                timeout=60,
                check=False,
                stdin=subprocess.DEVNULL,
                stdout=subprocess.PIPE,
                stderr=errors,
            )
        return result.returncode, result.stdout, self.errors.read_bytes()

    @contextlib.contextmanager
    def waiting(self):
        """The tool in another process, at the moment when it waits for a login."""
        with self.errors.open("wb") as errors:
            process = subprocess.Popen(
                self.command(),
                env=plain_environment(),
                stdin=subprocess.DEVNULL,
                stdout=subprocess.PIPE,
                stderr=errors,
            )
        try:
            wait_until(lambda: any(is_watching(child) for child in children(process.pid)))
            yield process
        finally:
            for child in children(process.pid):
                subprocess.run(["kill", "-KILL", child], check=False)
            process.kill()
            process.communicate()


def children(process_id):
    """The processes that a process has started; none once it has ended."""
    try:
        with open(f"/proc/{process_id}/task/{process_id}/children", encoding="ascii") as names:
            return names.read().split()
    except (FileNotFoundError, ProcessLookupError):
        return []


@pytest.fixture
def tool(system):
    return Tool(system)


def identity(name):
    return f"{name}|{USERS[name]}|/home/{name}\n".encode()


def answers_in_time(process, name):
    output, _ = process.communicate(timeout=ANSWER_LIMIT_SECONDS)
    return (process.returncode, output) == (0, identity(name))


def still_waits(process):
    """A grace period: a tool that had found a user would have answered by then."""
    time.sleep(0.5)
    return process.poll() is None


def test_the_active_session_s_user_is_taken(seat, tool):
    seat.log_in(AMBER)
    assert tool.run() == (0, identity(AMBER), b"")


def test_the_record_of_the_active_session_shows_the_raw_user_id(seat, tool):
    seat.log_in(AMBER)
    _, _, errors = tool.run("--log-level", "debug")
    assert errors == b"DEBUG: Active session on seat0 found for UID A\n"


def test_of_several_sessions_the_active_one_counts(seat, tool):
    for name in (AMBER, BIRCH, CEDAR):
        seat.log_in(name)
    assert tool.run() == (0, identity(CEDAR), b"")


def test_a_session_switch_before_the_start_is_followed(seat, tool):
    seat.log_in(AMBER)
    seat.log_in(BIRCH)
    seat.activate(AMBER)
    assert tool.run() == (0, identity(AMBER), b"")


def test_a_login_during_the_wait_is_answered_within_a_second(seat, tool):
    with tool.waiting() as process:
        seat.log_in(AMBER)
        assert answers_in_time(process, AMBER)


def test_the_only_session_is_taken_although_it_is_not_active(seat, tool):
    seat.log_in(AMBER)
    seat.log_out(AMBER)
    assert (seat.users(), seat.active()) == (uids(AMBER), None)
    assert tool.run("--log-level", "debug") == (
        0,
        identity(AMBER),
        b"DEBUG: There is only one session on seat0, selecting UID A as active user\n",
    )


@pytest.mark.parametrize("names", [(AMBER, BIRCH), (AMBER, BIRCH, CEDAR)], ids=["two", "three"])
def test_several_sessions_none_active_fail_when_the_wait_is_over(seat, tool, names):
    for name in names:
        seat.log_in(name)
    seat.log_out(names[-1])
    assert (seat.users(), seat.active()) == (uids(*names), None)
    status, output, errors = tool.run(env=hurried())
    assert (status, output) == (1, b"")
    assert errors.startswith(TIMED_OUT + NO_USER)


def test_nobody_at_the_seat_fails_when_the_wait_is_over(seat, tool):
    status, output, errors = tool.run(env=hurried())
    assert (status, output) == (1, b"")
    assert errors.startswith(TIMED_OUT + NO_USER)


def test_a_session_switch_during_the_wait_is_answered_within_a_second(seat, tool):
    for name in (AMBER, BIRCH, CEDAR):
        seat.log_in(name)
    seat.log_out(CEDAR)
    with tool.waiting() as process:
        seat.activate(BIRCH)
        assert answers_in_time(process, BIRCH)


def test_a_user_who_logs_out_during_the_wait_does_not_end_it(seat, tool):
    for name in (AMBER, BIRCH, CEDAR):
        seat.log_in(name)
    seat.log_out(CEDAR)
    with tool.waiting() as process:
        seat.log_out(BIRCH)
        assert still_waits(process)
        seat.activate(AMBER)
        assert answers_in_time(process, AMBER)


def test_a_user_who_has_logged_out_and_been_forgotten_is_not_taken(seat, tool):
    seat.log_in(AMBER)
    seat.clear()
    with tool.waiting() as process:
        assert still_waits(process)
        seat.log_in(BIRCH)
        assert answers_in_time(process, BIRCH)


def test_a_fresh_account_is_known_by_name_home_and_id(system, tool):
    system.run("useradd", "--uid", "45200", "--home-dir", "/srv/dew", "tw-dew")
    assert tool.run("--user-id", "45200") == (0, b"tw-dew|45200|/srv/dew\n", b"")
    system.run("userdel", "tw-dew")
    status, output, errors = tool.run("--user-id", "45200")
    assert (status, output) == (1, b"")
    assert errors == b"ERROR: Failed to get user information for uid 45200: Success\n"


def write_as(system, name, key, variant):
    """Writes a dconf value the way the user's own programs do: over a session bus."""
    system.run("runuser", "-u", name, "--", "dbus-run-session", "--", "dconf", "write", key, variant)


def test_a_value_that_the_active_user_wrote_is_read(seat, tool, system):
    tool.configure("Hostname=${dconf:/com/vexmoor/colour} for ${USER}")
    write_as(system, AMBER, "/com/vexmoor/colour", "'yellow'")
    write_as(system, BIRCH, "/com/vexmoor/colour", "'white'")
    seat.log_in(BIRCH)
    seat.log_in(AMBER)
    assert tool.run() == (0, f"yellow for {AMBER}\n".encode(), b"")
    seat.activate(BIRCH)
    assert tool.run() == (0, f"white for {BIRCH}\n".encode(), b"")


def test_a_value_that_the_user_changes_is_read_anew(tool, system):
    tool.configure("Hostname=${dconf:/com/vexmoor/size}")
    for variant, text in (("uint32 5", b"5\n"), ("0.25", b"0.25\n"), ("true", b"true\n")):
        write_as(system, AMBER, "/com/vexmoor/size", variant)
        assert tool.run("--user-id", str(USERS[AMBER])) == (0, text, b"")


@pytest.fixture
def new_entries(system):
    """Calling it returns what the tool has sent to the journal since the test began."""
    begin = time.time()

    def read():
        system.run("journalctl", "--sync")
        lines = system.run(
            "journalctl",
            "--quiet",
            "--output=json",
            f"--since=@{begin:.6f}",
            "SYSLOG_IDENTIFIER=tarnwick-parse-config",
        ).splitlines()
        return [json.loads(line) for line in lines]

    return read


TO_JOURNAL = {"TARNWICK_LOGGING_TARGET": "systemd"}


def test_records_are_read_back_from_the_journal_without_a_label(tool, new_entries):
    tool.configure("Hostname=${nothing};${system:exit 65};${env:NO_SUCH};value")
    result = tool.run("--user-id", "0", "--log-level", "debug", env=TO_JOURNAL)
    assert result == (0, b"value\n", b"")
    assert [(entry["PRIORITY"], entry["MESSAGE"]) for entry in new_entries()] == [
        ("3", "No such template 'nothing'"),
        ("4", "exit 65 exited with non-zero status: A"),
        ("7", "Failed to resolve 'exit 65' from system for template 'system:exit 65'"),
        ("7", "Failed to read 'NO_SUCH' from environment variables for template 'env:NO_SUCH'"),
    ]


def test_records_of_the_seat_s_user_are_read_back_from_the_journal(seat, tool, new_entries):
    seat.log_in(CEDAR)
    assert tool.run("--log-level", "debug", env=TO_JOURNAL) == (0, identity(CEDAR), b"")
    assert [(entry["PRIORITY"], entry["MESSAGE"]) for entry in new_entries()] == [
        ("7", "Active session on seat0 found for UID C")
    ]


def test_without_the_journal_target_the_journal_gets_nothing(tool, new_entries):
    tool.configure("Hostname=${nothing}")
    assert tool.run("--user-id", "0") == (2, b"", b"ERROR: No such template 'nothing'\n")
    assert new_entries() == []


def test_a_stopped_journal_costs_the_record_and_nothing_else(tool, system):
    tool.configure("Hostname=${nothing};value")
    units = ("systemd-journald.socket", "systemd-journald-dev-log.socket", "systemd-journald.service")
    system.run("systemctl", "stop", *units)
    try:
        assert tool.run("--user-id", "0", env=TO_JOURNAL) == (0, b"value\n", b"")
    finally:
        system.run("systemctl", "start", *units)


@pytest.fixture
def manual_units(system):
    """The units of the manual's example, installed, with a directory for the default configuration."""
    [example] = [
        found
        for found in examples_in(ROOT / "man" / "tarnwick-parse-config.1.scd")
        if found.title == "units of systemd"
    ]
    units = {block.name: block.text for block in example.blocks if block.kind == "file"}
    for name, text in units.items():
        (system.shared / name).write_text(text)
        system.run("cp", f"{SHARED_INSIDE}/{name}", f"/run/systemd/system/{name}")
    system.run("mkdir", "-p", "/etc/tarnwick.conf.d")
    system.run("systemctl", "daemon-reload")
    yield
    system.run("systemctl", "stop", *units)
    system.run("rm", "-r", "/etc/tarnwick.conf.d")


def set_data_root(system, line):
    (system.shared / "units.conf").write_text(f"[Config]\n{line}\n")
    system.run("cp", f"{SHARED_INSIDE}/units.conf", "/etc/tarnwick.conf.d/10-units.conf")


def test_the_units_of_the_manual_hand_a_setting_on(manual_units, system):
    directory = "/var/tmp/two  blanks, a * and 'quotes'"
    set_data_root(system, f"DataRoot={directory}")
    system.run("mkdir", "-p", directory)
    system.run("systemctl", "start", "container-usage.service")
    system.run("journalctl", "--sync")
    messages = system.run("journalctl", "--output=cat", "--unit=container-usage.service")
    assert f"\t{directory}\n" in messages


def test_the_units_of_the_manual_fail_without_a_value(manual_units, system):
    set_data_root(system, "DataRoot=")
    with pytest.raises(subprocess.CalledProcessError):
        system.run("systemctl", "start", "container-usage.service")
    show = ("systemctl", "show", "container-settings.service", "--property=ExecMainStatus", "--value")
    assert system.run(*show) == "2\n"
    system.run("systemctl", "reset-failed", "container-settings.service")
