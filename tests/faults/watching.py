"""Runs the tool under a fault and looks at everything it leaves: status, streams, time, memory,
processes and files."""

import contextlib
import errno
import os
import re
import resource
import signal
import subprocess
import tempfile
import threading
import time
from dataclasses import dataclass
from pathlib import Path

from support.tool import clean_environment, tool_command

MEGABYTE = 1024 * 1024
CLOSED = object()
NOBODY = 65534
TIME_LIMIT_SECONDS = 300

RECORD = re.compile(rb"(CRITICAL|ERROR|WARNING|INFO|DEBUG): ")


@dataclass(frozen=True)
class Bounds:
    """What a run and its commands may cost."""

    cpu_seconds: float
    peak_bytes: int

    def plus(self, cpu_seconds=0, peak_bytes=0):
        return Bounds(self.cpu_seconds + cpu_seconds, self.peak_bytes + peak_bytes)


# Generous: only a runaway comes near. What small inputs cost is a few milliseconds and megabytes.
SMALL = Bounds(cpu_seconds=20, peak_bytes=200 * MEGABYTE)


@dataclass
class Session:
    """What a test started: its processes share the session, and `files_before` were there first."""

    leader: int
    place: Path
    files_before: set
    expected_files: tuple

    def assert_nothing_left(self, grace=0):
        left = wait_for_end_of_session(self.leader, grace)
        assert left == [], f"processes are left behind: {left}"
        created = {str(path.relative_to(self.place)) for path in files_below(self.place) - self.files_before}
        assert created <= set(self.expected_files), f"files are left behind: {created}"


# Started, and not yet seen to have left nothing behind.
open_sessions = []


@dataclass
class Outcome:
    """How a run ended. A negative status is the signal that ended it. The peak includes the test's
    own size at the time of the fork (some 40 MB): the kernel carries it over."""

    status: int
    stdout: bytes
    stderr: bytes
    cpu_seconds: float
    peak_bytes: int


def run(*arguments, place, bounds=SMALL, **options):
    """Runs the tool in `place` and returns its Outcome; asserts that it kept to the bounds and left
    nothing behind.

    Options: command, env, limits (RLIMIT to number), stdin/stdout/stderr (a file, or CLOSED), user,
    root (a directory to chroot to), dispositions (signal to handler), expected_files (names that the
    run may create)."""
    with tempfile.TemporaryFile() as stdout, tempfile.TemporaryFile() as stderr:
        options.setdefault("stdout", stdout)
        options.setdefault("stderr", stderr)
        process = start(*arguments, place=place, **options)
        session = open_sessions[-1]
        status, usage = wait(process, bounds=bounds)
        stdout.seek(0)
        stderr.seek(0)
        outcome = Outcome(status, stdout.read(), stderr.read(), cpu_seconds(usage), peak_bytes(usage))
    session.assert_nothing_left()
    open_sessions.remove(session)
    return outcome


def start(
    *arguments,
    place,
    command=None,
    env=None,
    limits=None,
    user=None,
    root=None,
    dispositions=None,
    expected_files=(),
    **streams,
):
    """Starts the tool in a session of its own. The end of the test looks at what is left of it."""
    closed = [number for number, name in enumerate(("stdin", "stdout", "stderr")) if streams.get(name) is CLOSED]
    kept = {name: stream for name, stream in streams.items() if stream is not CLOSED}
    kept.setdefault("stdin", subprocess.DEVNULL)

    def prepare():
        for number in closed:
            os.close(number)
        for number, disposition in (dispositions or {}).items():
            signal.signal(number, disposition)
        resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
        if root is not None:
            os.chroot(root)
            os.chdir("/")
        for limit, value in (limits or {}).items():
            resource.setrlimit(limit, (value, value))

    identity = {} if user is None else {"user": user, "group": user, "extra_groups": []}
    files_before = files_below(place)
    process = subprocess.Popen(
        command or tool_command("--user-id", "0", *arguments),
        cwd=place,
        env=clean_environment(TMPDIR=str(place), **(env or {})),
        preexec_fn=prepare,
        start_new_session=True,
        **identity,
        **kept,
    )
    open_sessions.append(Session(process.pid, place, files_before, expected_files))
    return process


def wait(process, limit=TIME_LIMIT_SECONDS, bounds=SMALL):
    """Waits for the process: its exit status, negative for a signal, and the resources it used."""
    hung = threading.Event()

    def give_up():
        hung.set()
        kill_session(process.pid)

    alarm = threading.Timer(limit, give_up)
    alarm.start()
    _, status, usage = os.wait4(process.pid, 0)
    alarm.cancel()
    process.returncode = os.waitstatus_to_exitcode(status)
    assert not hung.is_set(), f"the tool hung: it was still there after {limit} seconds"
    assert cpu_seconds(usage) < bounds.cpu_seconds
    assert peak_bytes(usage) < bounds.peak_bytes
    return process.returncode, usage


def cpu_seconds(usage):
    return usage.ru_utime + usage.ru_stime


def peak_bytes(usage):
    return usage.ru_maxrss * 1024


def close_sessions():
    """Asserts that nothing is left of what the test started; ends it where it is not so."""
    sessions = open_sessions.copy()
    open_sessions.clear()
    try:
        for session in sessions:
            session.assert_nothing_left(grace=5)
    finally:
        for session in sessions:
            kill_session(session.leader)


def files_below(place):
    return set(place.rglob("*"))


def session_members(session):
    """The ids of the living processes of a session."""
    members = []
    for entry in Path("/proc").iterdir():
        if entry.name.isdigit():
            try:
                fields = (entry / "stat").read_text().rpartition(")")[2].split()
            except OSError as error:
                if error.errno not in (errno.ENOENT, errno.ESRCH):
                    raise
                continue
            if fields[0] not in "ZX" and int(fields[3]) == session:
                members.append(int(entry.name))
    return members


def wait_for_end_of_session(session, limit):
    """The processes of the session that are still there after a moment's grace."""
    deadline = time.monotonic() + limit
    while (members := session_members(session)) and time.monotonic() < deadline:
        time.sleep(0.01)
    return members


def kill_session(session):
    """Ends the processes of the session, those too that one of them starts meanwhile."""
    while members := session_members(session):
        for member in members:
            with contextlib.suppress(ProcessLookupError):
                os.kill(member, signal.SIGKILL)
        time.sleep(0.01)


def wait_until(condition, limit=60):
    """Waits for something that must come about; says whether it did."""
    deadline = time.monotonic() + limit
    while not condition():
        if time.monotonic() > deadline:
            return False
        time.sleep(0.02)
    return True


def is_told_in_records(text):
    """True for one line or more, each of which is a record."""
    return text != b"" and all(RECORD.match(line) for line in text.splitlines())


def one_critical_record(text, *named):
    """True for exactly one line, a critical record that contains every text of `named`."""
    is_one_line = text.startswith(b"CRITICAL: ") and text.count(b"\n") == 1 and text.endswith(b"\n")
    return is_one_line and all(name in text for name in named)


def load_failure(path):
    """The two records for a file that could not be loaded."""
    return f"ERROR: Failed to load config from '{path}'\nERROR: Invalid configuration in {path}\n".encode()
