"""Runs the tool under a fault and looks at everything it leaves: status, streams, time, memory,
processes and files."""

import errno
import os
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

# Generous: only a runaway comes near. What small inputs cost is a few milliseconds and megabytes.
TIME_LIMIT_SECONDS = 300
SMALL_CPU_SECONDS = 20
SMALL_PEAK_BYTES = 200 * MEGABYTE


@dataclass
class Outcome:
    """How a run ended. A negative status is the signal that ended it. The peak includes the test's
    own size at the time of the fork (some 40 MB): the kernel carries it over."""

    status: int
    stdout: bytes
    stderr: bytes
    cpu_seconds: float
    peak_bytes: int


def run(*arguments, place, small=True, command=None, **options):
    """Runs the tool in `place` and returns its Outcome; asserts that nothing was left behind.

    Options: env, limits (RLIMIT to number), stdin/stdout/stderr (a file, or CLOSED), user, root (a
    directory to chroot to), dispositions (signal to handler), expected_files (names that the run
    may create). With `small`, time and memory of a small input are asserted too."""
    expected_files = set(options.pop("expected_files", ()))
    files_before = set(place.rglob("*"))
    with tempfile.TemporaryFile() as stdout, tempfile.TemporaryFile() as stderr:
        options.setdefault("stdout", stdout)
        options.setdefault("stderr", stderr)
        process = start(*arguments, place=place, command=command, **options)
        status, usage = wait(process)
        stdout.seek(0)
        stderr.seek(0)
        outcome = Outcome(
            os.waitstatus_to_exitcode(status),
            stdout.read(),
            stderr.read(),
            usage.ru_utime + usage.ru_stime,
            usage.ru_maxrss * 1024,
        )
    assert session_members(process.pid) == []
    created = {str(path.relative_to(place)) for path in set(place.rglob("*")) - files_before}
    assert created <= expected_files
    if small:
        assert outcome.cpu_seconds < SMALL_CPU_SECONDS
        assert outcome.peak_bytes < SMALL_PEAK_BYTES
    return outcome


def start(*arguments, place, command=None, env=None, limits=None, user=None, root=None, dispositions=None, **streams):
    """Starts the tool in a session of its own, with the standard group and user id."""
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
    return subprocess.Popen(
        command or tool_command("--user-id", "0", *arguments),
        cwd=place,
        env=clean_environment(TMPDIR=str(place), **(env or {})),
        preexec_fn=prepare,
        start_new_session=True,
        **identity,
        **kept,
    )


def wait(process, limit=TIME_LIMIT_SECONDS):
    """Waits for the process: its wait status and the resources it used."""
    alarm = threading.Timer(limit, kill_session, [process.pid])
    alarm.start()
    _, status, usage = os.wait4(process.pid, 0)
    alarm.cancel()
    process.returncode = os.waitstatus_to_exitcode(status)
    return status, usage


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


def wait_for_end_of_session(session, limit=5):
    """The processes of the session that are still there after a moment's grace."""
    deadline = time.monotonic() + limit
    while (members := session_members(session)) and time.monotonic() < deadline:
        time.sleep(0.01)
    return members


def kill_session(session):
    for member in session_members(session):
        os.kill(member, signal.SIGKILL)


def wait_until(condition, limit=60):
    """Waits for something that must come about; says whether it did."""
    deadline = time.monotonic() + limit
    while not condition():
        if time.monotonic() > deadline:
            return False
        time.sleep(0.02)
    return True


def one_critical_record(text, *named):
    """True for exactly one line, a critical record that contains every text of `named`."""
    is_one_line = text.startswith(b"CRITICAL: ") and text.count(b"\n") == 1 and text.endswith(b"\n")
    return is_one_line and all(name in text for name in named)


def load_failure(path):
    """The two records for a file that could not be loaded."""
    return f"ERROR: Failed to load config from '{path}'\nERROR: Invalid configuration in {path}\n".encode()
