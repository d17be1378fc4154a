"""Too few descriptors for a service: its value is missing, never wrong, and the rest unharmed."""

import pytest

from journal_socket import messages
from support.tool import EMULATOR

pytestmark = pytest.mark.skipif(bool(EMULATOR), reason="the limit would hit the emulator")

at_every_limit = pytest.mark.parametrize("count", range(4, 20))


@pytest.fixture
def ask(device):
    """Runs the tool with a limited number of descriptors."""

    def run(count, *arguments, env=None):
        limit = ["prlimit", f"--nofile={count}"]
        return device.run("--key", "Hostname", *arguments, before=limit, env=env)

    return run


@at_every_limit
def test_a_dconf_value_needs_six(device, ask, count):
    device.configure("[Config]", "Hostname=early;${dconf:/com/vexmoor/value}")
    device.write_database(device.homes / "root", value="'right'")
    asked = ask(count, "--user-id", "0")
    if count < 6:  # its library may have words of its own for it
        assert (asked.returncode, asked.stdout) == (0, b"early\n")
    else:
        assert (asked.returncode, asked.stdout, asked.stderr) == (0, b"right\n", b"")


@at_every_limit
def test_a_property_needs_five(device, ask, property_libraries, count):
    device.configure("[Config]", "Hostname=early;${prop:ro.short}")
    asked = ask(count, "--user-id", "0", env={"LD_LIBRARY_PATH": str(property_libraries)})
    value = b"early\n" if count < 5 else b"amber\n"
    assert (asked.returncode, asked.stdout, asked.stderr) == (0, value, b"")


@at_every_limit
def test_the_seat_needs_no_more_than_a_file(device, ask, count):
    device.configure("[Config]", "Hostname=${USER}")
    device.add_account("amber", 1065)
    device.write_seat("ACTIVE=1\nACTIVE_UID=1065\n")
    asked = ask(count)
    assert (asked.returncode, asked.stdout, asked.stderr) == (0, b"amber\n", b"")


@at_every_limit
def test_a_record_for_the_journal_needs_five_and_does_not_harm_the_value(device, ask, journal, count):
    device.configure("[Config]", "Hostname=early;${nothing}")
    asked = ask(count, "--user-id", "0", env={"TARNWICK_LOGGING_TARGET": "systemd"})
    assert (asked.returncode, asked.stdout, asked.stderr) == (0, b"early\n", b"")
    assert messages(journal()) == ([] if count < 5 else [(3, b"No such template 'nothing'")])


@at_every_limit
def test_a_log_file_needs_one_for_itself(device, ask, count):
    device.configure("[Config]", "Hostname=early;${nothing}")
    log = device.directory / "records"
    asked = ask(count, "--user-id", "0", env={"TARNWICK_LOGGING_TARGET": str(log)})
    if count < 5:  # then none is left for the password database
        expected = (1, b"", b"")
        record = b"ERROR: Failed to get user information for uid 0: Too many open files\n"
    else:
        expected = (0, b"early\n", b"")
        record = b"ERROR: No such template 'nothing'\n"
    assert (asked.returncode, asked.stdout, asked.stderr) == expected
    assert log.read_bytes() == record
