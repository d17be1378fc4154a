"""The account that belongs to a user id, out of the password database."""

import pytest

IDENTITY = "Hostname=${USER}|${USER_ID}|${HOME}"


def ask(device, user):
    device.configure("[Config]", IDENTITY)
    return device.run("--key", "Hostname", "--user-id", str(user))


@pytest.mark.parametrize("uid", [0, 1, 1065, 2147483647])
def test_name_and_home_come_from_the_account(device, uid):
    name = "root" if uid == 0 else "amber"
    if uid != 0:
        device.add_account("amber", uid)
    result = ask(device, uid)
    assert result.stdout == f"{name}|{uid}|{device.homes / name}\n".encode()
    assert (result.stderr, result.returncode) == (b"", 0)


def test_a_user_id_beyond_31_bits_shows_as_a_negative_number(device):
    device.add_account("amber", 2**32 - 2)
    assert ask(device, -2).stdout == f"amber|-2|{device.homes / 'amber'}\n".encode()


@pytest.mark.parametrize("uid", [4242, -2, 2147483647])
def test_a_user_without_an_account_is_an_error(device, uid):
    result = ask(device, uid)
    assert result.stderr == f"ERROR: Failed to get user information for uid {uid}: Success\n".encode()
    assert (result.stdout, result.returncode) == (b"", 1)


def test_an_empty_password_database_knows_nobody(device):
    device.remove_accounts()
    assert ask(device, 0).returncode == 1


def test_the_first_account_of_a_user_id_counts(device):
    device.add_account("amber", 1065)
    device.add_account("birch", 1065)
    assert ask(device, 1065).stdout.startswith(b"amber|")


def test_broken_lines_are_passed_over(device):
    with device.passwd.open("a") as passwd:
        passwd.write("junk\nbirch:x:not-a-number:1::/:/bin/sh\n")
    device.add_account("amber", 1065)
    assert ask(device, 1065).stdout.startswith(b"amber|1065|")


def test_a_home_with_blanks_and_dollars_is_taken_as_it_is(device):
    with device.passwd.open("a") as passwd:
        passwd.write("amber:x:1065:1065::/home/a $b ${c}:/bin/sh\n")
    assert ask(device, 1065).stdout == b"amber|1065|/home/a $b ${c}\n"


def test_an_account_without_a_home_leaves_it_empty(device):
    with device.passwd.open("a") as passwd:
        passwd.write("amber:x:1065:1065:::/bin/sh\n")
    assert ask(device, 1065).stdout == b"amber|1065|\n"
