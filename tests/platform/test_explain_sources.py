"""What `tarnwick-config explain` says of texts that come from services: seat0's session and dconf."""

import subprocess

import pytest
from support.tool import config_command

from device import RUN_LIMIT_SECONDS


@pytest.fixture
def explain(device):
    """Explains Config/Hostname on the device; returns the status and the rows without their columns."""

    def explain_key(*arguments):
        command = config_command("explain", "--config", str(device.configuration), *arguments, "Hostname")
        result = subprocess.run(
            device.inside(*command),
            env=device.environment(),
            stdin=subprocess.DEVNULL,
            capture_output=True,
            timeout=RUN_LIMIT_SECONDS,
            check=False,
        )
        return result.returncode, [" ".join(line.split()) for line in result.stdout.decode().splitlines()]

    return explain_key


def test_a_user_of_seat0_is_told_as_such(device, explain):
    device.configure("[Config]", "Hostname=${USER_ID}${HOME}")
    device.add_account("amber", 1065)
    device.write_seat("ACTIVE=1\nACTIVE_UID=1065\n")
    status, rows = explain()
    assert status == 0
    assert rows[-2:] == [
        "USER_ID = 1065 variable: session on seat0",
        f"HOME = {device.homes / 'amber'} variable: password database, user 1065",
    ]


def test_a_seat_of_nobody_is_told_with_what_was_read(device, explain):
    device.configure("[Config]", "Hostname=${USER_ID}")
    device.users.rmdir()  # without a monitor nobody is waited for
    device.write_seat("")
    status, rows = explain()
    assert status == 1
    assert rows[0] == "Config/Hostname has no answer (exit 1)"
    assert rows[2].startswith("no user is known: nobody is logged in on seat0")
    assert rows[-1].endswith(" = ${USER_ID} read, not expanded")
