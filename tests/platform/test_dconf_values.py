"""Values out of compiled dconf databases: every type, whose database, and what stays behind."""

import pytest

UNSUPPORTED = b"WARNING: Unsupported GVariant type '%s'\n"


@pytest.fixture
def home(device):
    """The home directory of user 1065, whose configuration asks dconf for the key `value`."""
    device.configure("[Config]", "Hostname=${dconf:/com/vexmoor/value}")
    return device.add_account("amber", 1065)


def ask(device, *arguments, user=1065, **options):
    return device.run("--key", "Hostname", "--user-id", str(user), *arguments, **options)


CONVERTED = [
    ("true",                       b"true"),
    ("false",                      b"false"),
    ("byte 0x41",                  b"A"),
    ("byte 0x00",                  b"\0"),
    ("byte 0xff",                  b"\xff"),
    ("int16 -32768",               b"-32768"),
    ("int16 32767",                b"32767"),
    ("uint16 65535",               b"65535"),
    ("-2147483648",                b"-2147483648"),
    ("2147483647",                 b"2147483647"),
    ("handle 7",                   b"7"),
    ("handle -3",                  b"-3"),
    ("uint32 4294967295",          b"4294967295"),
    ("int64 -9223372036854775808", b"-9223372036854775808"),
    ("int64 9223372036854775807",  b"9223372036854775807"),
    ("uint64 18446744073709551615", b"18446744073709551615"),
    ("1234567",                    b"1234567"),
    ("0.5",                        b"0.5"),
    ("3.14159265",                 b"3.14159"),
    ("100000.0",                   b"100000"),
    ("1000000.0",                  b"1e+06"),
    ("-0.0",                       b"-0"),
    ("1e-300",                     b"1e-300"),
    ("inf",                        b"inf"),
    ("'text'",                     b"text"),
    ("'d\u00e9j\u00e0 vu'",        "d\u00e9j\u00e0 vu".encode()),
    ("'one;two'",                  b"one;two"),
    ("'${HOME} $$ $'",             b"${HOME} $$ $"),
    ("'two\\nlines'",              b"two\nlines"),
    ("' blanks around '",          b"blanks around"),
]  # fmt: skip


@pytest.mark.parametrize(("variant", "text"), CONVERTED, ids=[variant for variant, _ in CONVERTED])
def test_a_value_of_a_simple_type_is_converted_to_text(device, home, variant, text):
    device.write_database(home, value=variant)
    result = ask(device)
    assert (result.stdout, result.stderr, result.returncode) == (text + b"\n", b"", 0)


REFUSED = [
    ("['a', 'b']",             b"as"),
    ("@as []",                 b"as"),
    ("(1, 'a')",               b"(is)"),
    ("{'k': <1>}",             b"a{sv}"),
    ("b'bytes'",               b"ay"),
    ("<1>",                    b"v"),
    ("@ms 'maybe'",            b"ms"),
    ("objectpath '/a'",        b"o"),
    ("signature 'as'",         b"g"),
]  # fmt: skip


@pytest.mark.parametrize(("variant", "kind"), REFUSED, ids=[variant for variant, _ in REFUSED])
def test_a_value_of_another_type_is_warned_of_and_missing(device, home, variant, kind):
    device.write_database(home, value=variant)
    result = ask(device)
    assert (result.stdout, result.stderr, result.returncode) == (b"", UNSUPPORTED % kind, 2)


FAILED_TO_READ = b"DEBUG: Failed to read '/com/vexmoor/value' from dconf for template 'dconf:/com/vexmoor/value'\n"


def test_an_empty_string_is_as_good_as_no_value(device, home):
    device.write_database(home, value="''")
    result = ask(device, "--log-level", "debug")
    assert (result.stdout, result.stderr, result.returncode) == (b"", FAILED_TO_READ, 2)


def test_a_key_that_the_database_lacks_has_no_value(device, home):
    device.write_database(home, other="'text'")
    result = ask(device, "--log-level", "debug")
    assert (result.stdout, result.stderr, result.returncode) == (b"", FAILED_TO_READ, 2)


def test_a_user_without_a_database_has_no_value(device, home):
    result = ask(device, "--log-level", "debug")
    assert (result.stdout, result.stderr, result.returncode) == (b"", FAILED_TO_READ, 2)


@pytest.mark.parametrize("content", [b"", b"junk", b"junk" * 1000], ids=["empty", "short", "long"])
def test_a_corrupt_database_has_no_value(device, home, content):
    database = device.write_database(home, value="'text'")
    database.write_bytes(content)
    result = ask(device, "--log-level", "debug")
    # The dconf library may complain of the file in its own words.
    assert FAILED_TO_READ in result.stderr
    assert (result.stdout, result.returncode) == (b"", 2)


def test_a_missing_value_leaves_the_rest_of_the_configuration_alone(device, home):
    device.configure("[Config]", "Hostname=first", "Hostname=${dconf:/com/vexmoor/value}")
    assert ask(device).stdout == b"first\n"


def test_a_value_is_part_of_the_text_around_it(device, home):
    device.configure("[Config]", "Hostname=<${dconf:/com/vexmoor/a}-${dconf:/com/vexmoor/b}>")
    device.write_database(home, a="'left'", b="5")
    assert ask(device).stdout == b"<left-5>\n"


def test_each_user_gets_the_value_of_their_own_database(device, home):
    device.write_database(home, value="'of amber'")
    device.write_database(device.add_account("birch", 1066), value="'of birch'")
    assert ask(device, user=1065).stdout == b"of amber\n"
    assert ask(device, user=1066).stdout == b"of birch\n"


def test_the_caller_s_own_configuration_directory_is_not_looked_at(device, home, tmp_path):
    elsewhere = tmp_path / "elsewhere"
    elsewhere.mkdir()
    device.write_database(elsewhere, value="'of the caller'")
    result = ask(device, env={"XDG_CONFIG_HOME": str(elsewhere / ".config")})
    assert (result.stdout, result.returncode) == (b"", 2)


AFTERWARDS = {
    "unset": ({}, b"XDG_CONFIG_HOME=\n"),
    "empty": ({"XDG_CONFIG_HOME": ""}, b"XDG_CONFIG_HOME=\n"),
    "set": ({"XDG_CONFIG_HOME": "/the/caller's"}, b"XDG_CONFIG_HOME=/the/caller's\n"),
}


@pytest.mark.parametrize(("before", "seen"), AFTERWARDS.values(), ids=AFTERWARDS)
def test_a_command_run_after_a_dconf_read_sees_the_saved_directory(device, home, before, seen):
    device.configure(
        "[Config]",
        "Arch=${dconf:/com/vexmoor/value}",
        "Hostname=${system:env | grep ^XDG_CONFIG_HOME=}",
    )
    device.write_database(home, value="'text'")
    result = ask(device, env=before)
    assert (result.stdout, result.stderr) == (seen, b"")
    assert ask(device, "--key", "Arch", env=before).stdout == b"text\n"


@pytest.mark.parametrize("variant", ["'text'", "['a']", None], ids=["text", "refused", "missing"])
def test_the_saved_directory_returns_whatever_became_of_the_read(device, home, variant):
    device.configure("[Config]", "Arch=${dconf:/com/vexmoor/value}", "Hostname=${env:XDG_CONFIG_HOME}")
    if variant is not None:
        device.write_database(home, value=variant)
    assert ask(device, env={"XDG_CONFIG_HOME": "/saved"}).stdout == b"/saved\n"


def test_a_command_run_without_a_dconf_read_sees_the_directory_unset(device, home):
    device.configure("[Config]", "Hostname=${system:env | grep -c ^XDG_CONFIG_HOME= || true}")
    assert ask(device).stdout == b"0\n"


GENERATED = [
    "[GeneratedConfig]",
    "UserId=1065",
    "User=amber",
    "Home=/",
    "BaseUid=1",
    "Instance=${dconf:/com/vexmoor/value}",
    "[Config]",
    "Hostname=${INSTANCE}",
]


def test_generated_keys_are_read_from_the_database_of_root(device, home):
    device.configure(*GENERATED)
    device.write_database(home, value="'of amber'")
    device.write_database(device.homes / "root", value="'of root'")
    assert ask(device).stdout == b"of root\n"


def test_the_first_read_decides_whose_database_the_whole_run_uses(device, home):
    device.configure(*GENERATED, "Hostname=${dconf:/com/vexmoor/value}")
    device.write_database(home, value="'of amber'")
    device.write_database(device.homes / "root", value="'of root'")
    assert ask(device).stdout == b"of root\n"


def test_a_user_without_an_account_has_no_value(device, home):
    device.remove_accounts()
    home = device.homes / "amber"
    device.write_database(home, value="'of amber'")
    with device.passwd.open("a") as passwd:
        passwd.write(f"amber:x:1065:1065::{home}:/bin/sh\n")
    device.configure(*GENERATED, "Hostname=none")
    result = ask(device, "--log-level", "debug")
    # Generated keys are read for user 0, who has no account here.
    assert result.stderr.count(FAILED_TO_READ) == 2
    assert (result.stdout, result.returncode) == (b"none\n", 0)
