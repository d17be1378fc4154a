"""The surroundings of the tool as a test wants them, in a private mount namespace.

Login state, accounts, home directories and configuration are plain files below one directory. The
tool is started in a namespace of its own in which they stand where the real ones are; the libraries
that read them are the real ones. A test may change every file from outside while the tool runs.
"""

import functools
import os
import shutil
import subprocess
import sysconfig
import time

import pytest

from support.preloading import preload
from support.tool import clean_environment, tool_command, write_files

RUN_LIMIT_SECONDS = 60
FAKETIME_LIBRARY = f"/usr/lib/{sysconfig.get_config_var('MULTIARCH')}/faketime/libfaketime.so.1"
FAKETIME_SPEED = 20

# /run begins empty, so nothing of this machine's login state, journal or buses is in reach.
ENTER = """
set -e
mount -t tmpfs -o mode=755 private /run
mkdir /run/systemd
mount --bind "$1" /run/systemd
mount --bind "$2" /etc/passwd
if [ -e /etc/nsswitch.conf ]; then mount --bind "$3" /etc/nsswitch.conf; fi
if [ -d /etc/dconf ]; then mount -t tmpfs -o mode=755 private /etc/dconf; fi
shift 3
exec "$@"
"""


def unshare_command():
    """Starts a command in a new mount namespace; without root, in a user namespace around it."""
    identity = [] if os.getuid() == 0 else ["--user", "--map-root-user"]
    return ["unshare", *identity, "--mount"]


@functools.cache
def reason_against_namespaces():
    """Why this machine cannot run these tests, or None."""
    if shutil.which("unshare") is None:
        return "private namespaces need unshare"
    attempt = subprocess.run(
        [*unshare_command(), "sh", "-c", "mount -t tmpfs private /run"],
        capture_output=True,
        text=True,
        check=False,
    )
    if attempt.returncode != 0:
        return f"no private mount namespace here: {attempt.stderr.strip()}"
    return None


class Device:
    """One set of surroundings below `directory`, with nobody logged in and no account but root."""

    def __init__(self, directory):
        self.directory = directory
        self.login = directory / "login"  # seen as /run/systemd
        self.homes = directory / "homes"
        self.passwd = directory / "passwd"
        self.name_services = directory / "nsswitch.conf"
        self.configuration = directory / "conf.d"
        self.seat = self.login / "seats" / "seat0"
        self.users = self.login / "users"
        for new in ("login/seats", "login/sessions", "login/users", "homes", "runtime", "conf.d"):
            (directory / new).mkdir(parents=True)
        self.passwd.touch()
        # The passwd file alone: other services would make up an account of root.
        self.name_services.write_text("passwd: files\n")
        self.add_account("root", 0)

    def add_account(self, name, uid):
        """Enters an account into the password database and returns its home directory."""
        home = self.homes / name
        home.mkdir()
        with self.passwd.open("a") as passwd:
            passwd.write(f"{name}:x:{uid}:{uid}::{home}:/bin/sh\n")
        return home

    def remove_accounts(self):
        self.passwd.write_text("")

    def configure(self, *lines):
        """Makes `lines` the whole configuration."""
        write_files(self.configuration, {"test.conf": "".join(f"{line}\n" for line in lines)})

    def write_database(self, home, **values):
        """Compiles a dconf database below `home` that holds `values` (GVariant text) under
        /com/vexmoor/."""
        if shutil.which("dconf") is None:
            pytest.skip("compiling a database needs dconf")
        sources = home / "keyfiles"
        lines = ["[com/vexmoor]", *(f"{name}={text}" for name, text in values.items())]
        write_files(sources, {"values": "".join(f"{line}\n" for line in lines)})
        database = home / ".config" / "dconf" / "user"
        database.parent.mkdir(parents=True)
        subprocess.run(["dconf", "compile", database, sources], check=True, timeout=RUN_LIMIT_SECONDS)
        return database

    def write_seat(self, text):
        """Replaces the seat file, as login does: whole, under its name in one step."""
        new = self.seat.with_name(".#seat0")
        new.write_text(text)
        new.rename(self.seat)

    def report_user_change(self, uid):
        """Renames a user file into place, which is what wakes whoever monitors users."""
        new = self.users / f".#{uid}"
        new.write_text(f"STATE=active\nUID={uid}\n")
        new.rename(self.users / str(uid))

    def environment(self):
        names = ("XDG_", "DCONF_", "DBUS_", "LD_")
        kept = {name: text for name, text in clean_environment().items() if not name.startswith(names)}
        kept.update(HOME=str(self.homes / "root"), XDG_RUNTIME_DIR=str(self.directory / "runtime"))
        return kept

    def inside(self, *command):
        """The argument vector that runs `command` in the namespace."""
        places = (self.login, self.passwd, self.name_services)
        return [*unshare_command(), "sh", "-c", ENTER, "enter", *map(str, places), *command]

    def tool(self, *arguments, env=None):
        """The argument vector of the tool, for use inside; `env` is seen by the tool alone."""
        assignments = [f"{name}={text}" for name, text in (env or {}).items()]
        return ["env", *assignments, *tool_command("--config", str(self.configuration), *arguments)]

    def run(self, *arguments, before=(), env=None, **options):
        """Runs the tool to its end, behind the command `before`; bytes in `stdout` and `stderr`."""
        options.setdefault("stderr", subprocess.PIPE)
        return subprocess.run(
            self.inside(*before, *self.tool(*arguments, env=env)),
            env=self.environment(),
            stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE,
            timeout=RUN_LIMIT_SECONDS,
            check=False,
            **options,
        )

    def start(self, *arguments, env=None, stderr):
        """Starts the tool; the process is the tool itself, so it can be watched and killed."""
        return subprocess.Popen(
            self.inside(*self.tool(*arguments, env=env)),
            env=self.environment(),
            stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE,
            stderr=stderr,
        )


def hurried():
    """The environment in which the tool's clock and its waits run at FAKETIME_SPEED."""
    return {**preload(FAKETIME_LIBRARY), "FAKETIME": f"+0 x{FAKETIME_SPEED}"}


def is_watching(process_id):
    """True once a process has an inotify watch in place: then it waits, and misses nothing."""
    directory = f"/proc/{process_id}/fdinfo"
    for name in os.listdir(directory):
        try:
            with open(f"{directory}/{name}", encoding="ascii", errors="replace") as information:
                if any(line.startswith("inotify wd:") for line in information):
                    return True
        except FileNotFoundError:
            continue
    return False


def wait_until(condition, limit_seconds=100):
    """Waits for `condition` to become true; a test that gets no such moment fails."""
    deadline = time.monotonic() + limit_seconds
    while not condition():
        assert time.monotonic() < deadline, f"not within {limit_seconds} s: {condition.__name__}"
        time.sleep(0.01)
