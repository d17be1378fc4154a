"""A library that is not installed behaves like a service that is not there."""

import errno
import os
import pathlib
import subprocess

import pytest

from support.tool import EMULATOR

HIDDEN = """
set -e
for library in $1; do mount --bind "$2" "$library"; done
shift 2
exec "$@"
"""


def paths_of(soname):
    """Every path under which the tool's dynamic linker could find the library."""
    if EMULATOR:  # shows its sysroot in place of this machine's directories
        return list(pathlib.Path(EMULATOR[-1]).glob(f"usr/lib/*/{soname}"))
    listing = subprocess.run(["ldconfig", "-p"], capture_output=True, text=True, check=True).stdout
    return [line.split(" => ")[1] for line in listing.splitlines() if f"\t{soname} " in line]


@pytest.fixture
def ask_without(device, tmp_path):
    """Runs the tool with the library of that name hidden by a file that is no library."""

    def ask(soname, *arguments, env=None):
        paths = [os.path.realpath(path) for path in paths_of(soname)]
        assert paths, f"{soname} is not installed, and cannot be hidden"
        nothing = tmp_path / "nothing"
        nothing.write_bytes(b"")
        hide = ["sh", "-c", HIDDEN, "hide", " ".join(paths), str(nothing)]
        return device.run(*arguments, before=hide, env=env)

    return ask


def test_without_libdconf_a_key_has_no_value_and_the_debug_record_says_so(device, ask_without):
    device.configure("[Config]", "Hostname=${dconf:/com/vexmoor/value}")
    device.write_database(device.homes / "root", value="'there'")
    asked = ask_without("libdconf.so.1", "--key", "Hostname", "--user-id", "0", "--log-level", "debug")
    record = b"DEBUG: Failed to read '/com/vexmoor/value' from dconf for template 'dconf:/com/vexmoor/value'\n"
    assert (asked.returncode, asked.stdout, asked.stderr) == (2, b"", record)


def test_without_libsystemd_there_is_no_seat_user(device, ask_without):
    device.configure("[Config]", "Hostname=value")
    device.write_seat("IS_SEAT0=1\nACTIVE=1\nACTIVE_UID=0\n")
    asked = ask_without("libsystemd.so.0", "--key", "Hostname")
    assert (asked.returncode, asked.stdout) == (1, b"")
    assert asked.stderr.decode().splitlines() == [
        "WARNING: Could not get sessions for seat0",
        "WARNING: Could not create login monitor",
        f"ERROR: Failed to get seat0 user: {os.strerror(errno.ENOSYS)}",
    ]


def test_without_libsystemd_a_journal_record_is_lost_and_nothing_else(device, ask_without):
    device.configure("[Config]", "Hostname=value", "Bad=${nothing}")
    asked = ask_without(
        "libsystemd.so.0",
        "--key",
        "Hostname",
        "--user-id",
        "0",
        env={"TARNWICK_LOGGING_TARGET": "systemd"},
    )
    assert (asked.returncode, asked.stdout, asked.stderr) == (0, b"value\n", b"")
