"""A throw-away copy of this machine in which real systemd, logind and journald run.

`boot` is a context manager: it starts the container, waits until the container says that it is
ready, yields a `Container`, and stops it on every way out. Nothing that happens inside outlives it.
"""

import contextlib
import os
import pathlib
import shutil
import socket
import subprocess
import time

from support.tool import TOOL, clean_environment

BOOT_SCRIPT = pathlib.Path(__file__).with_name("boot_container.sh")
BOOT_LIMIT_SECONDS = 120
COMMAND_LIMIT_SECONDS = 120
# The whole life of one container; after this the driver is stopped from outside.
LIFE_LIMIT_SECONDS = 800
DEBUGGER_LIFE_LIMIT_SECONDS = 3600

TOOL_INSIDE = "/usr/local/bin/tarnwick-parse-config"
SHARED_INSIDE = pathlib.Path("/srv/shared")

NEEDED_PROGRAMS = [
    "systemd-nspawn", "unshare", "nsenter", "setpriv", "timeout", "systemd-run", "loginctl",
    "journalctl", "useradd", "runuser", "dbus-run-session", "dconf",
]  # fmt: skip


class CannotBoot(Exception):
    """This machine cannot boot the container; the text says why, in one line."""


def reason_not_to_try():
    """Why booting is hopeless here, or None."""
    if os.getuid() != 0:
        return "booting a container needs root"
    missing = [program for program in NEEDED_PROGRAMS if shutil.which(program) is None]
    if missing:
        return f"booting a container needs {', '.join(missing)}"
    return None


class Container:
    """A running container: commands run inside as root, and one directory is shared with it."""

    def __init__(self, leader, shared):
        self.leader = leader
        self.shared = shared

    def inside(self, *command):
        """The argument vector that runs `command` in the container."""
        return ["nsenter", "--target", str(self.leader), "--all", "--", *command]

    def run(self, *command):
        """Runs a command that must succeed and returns its standard output as text."""
        return subprocess.run(
            self.inside(*command),
            env=plain_environment(),
            stdin=subprocess.DEVNULL,
            capture_output=True,
            check=True,
            text=True,
            timeout=COMMAND_LIMIT_SECONDS,
        ).stdout

    def read(self, path):
        """The text of a file inside; empty when there is no such file."""
        try:
            return pathlib.Path(f"/proc/{self.leader}/root{path}").read_text()
        except FileNotFoundError:
            return ""


def plain_environment():
    """What commands inside need of the environment; XDG_ names of the caller would mislead them."""
    environment = {
        name: text for name, text in clean_environment().items() if not name.startswith(("XDG_", "DBUS_", "LD_"))
    }
    return {**environment, "PATH": "/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin"}


@contextlib.contextmanager
def boot(directory, life_limit=LIFE_LIMIT_SECONDS):
    """Boots the container; raises `CannotBoot` where the machine does not allow it."""
    reason = reason_not_to_try()
    if reason:
        raise CannotBoot(reason)
    root, shared, log = directory / "root", directory / "shared", directory / "console.log"
    root.mkdir()
    shared.mkdir(mode=0o755)

    with notification_socket(directory / "ready") as notifications, log.open("wb") as console:
        driver = subprocess.Popen(
            driver_command(root, shared, life_limit),
            stdin=subprocess.DEVNULL,
            stdout=console,
            stderr=console,
            env={**plain_environment(), "NOTIFY_SOCKET": str(directory / "ready")},
            start_new_session=True,
        )
        try:
            yield Container(wait_until_ready(driver, notifications, log), shared)
        finally:
            stop(driver)


def driver_command(root, shared, life_limit):
    """The boot script with a time limit around it, told to stop when this process dies."""
    return [
        "setpriv", "--pdeathsig", "TERM",
        "timeout", "--foreground", "--kill-after=20", str(life_limit),
        "unshare", "--mount",
        str(BOOT_SCRIPT), f"tarnwick-platform-{os.getpid()}", str(root),
        f"--bind-ro={TOOL}:{TOOL_INSIDE}",
        f"--bind={shared}:{SHARED_INSIDE}",
        "systemd.unit=basic.target",
    ]  # fmt: skip


@contextlib.contextmanager
def notification_socket(path):
    with socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM) as notifications:
        notifications.bind(str(path))
        notifications.settimeout(0.1)
        yield notifications


def wait_until_ready(driver, notifications, log):
    """The process id of the container's first process, once the container has booted."""
    leader = None
    deadline = time.monotonic() + BOOT_LIMIT_SECONDS
    while time.monotonic() < deadline:
        message = receive(notifications)
        for line in message.splitlines():
            name, _, text = line.partition("=")
            if name == "X_NSPAWN_LEADER_PID":
                leader = int(text)
            if line == "READY=1" and leader:
                return leader
        if driver.poll() is not None:
            raise CannotBoot(f"the container does not start: {last_line(log)}")
    raise CannotBoot(f"the container is not ready after {BOOT_LIMIT_SECONDS} s: {last_line(log)}")


def receive(notifications):
    try:
        return notifications.recv(4096).decode(errors="replace")
    except TimeoutError:
        return ""


def last_line(log):
    lines = [line for line in log.read_text(errors="replace").splitlines() if line.strip()]
    return lines[-1].strip() if lines else "no output"


def stop(driver):
    """Asks the driver to stop the container; the driver cleans up behind it."""
    driver.terminate()
    try:
        driver.wait(timeout=100)
    except subprocess.TimeoutExpired:
        driver.kill()
        driver.wait()
