"""Whose configuration is read: the user from the command line, from generated keys, from passwd."""

import os
import pwd

import pytest
from e2e_helpers import lines, load_failure

WHO = "[Config]\nK=${USER_ID} ${USER} ${HOME} <${INSTANCE}>\n"
GENERATED = {"BaseUid": "100000", "Home": "/made/up", "UserId": "1", "User": "somebody"}
UNKNOWN_UID = 2147483600


def who(uid, instance="default"):
    """The answer to `WHO` for a user of this machine."""
    entry = pwd.getpwuid(uid)
    return lines(f"{uid} {entry.pw_name} {entry.pw_dir} <{instance}>")


def generated(**changes):
    """The generated group; a key changed to None is left out."""
    settings = {**GENERATED, **changes}
    present = [f"{key}={value}" for key, value in settings.items() if value is not None]
    return "\n".join(["[GeneratedConfig]", *present, ""])


def unknown_user(uid):
    message = f"Failed to get user information for uid {uid}: {os.strerror(0)}"
    return (1, b"", lines(f"ERROR: {message}"))


@pytest.mark.parametrize("uid", [0, 1, 65534])
def test_name_and_home_come_from_the_password_database(ask, uid):
    outcome = ask(WHO, "--user-id", str(uid), env={"HOME": "/elsewhere", "USER": "nobody"})
    assert outcome == (0, who(uid), b"")


@pytest.mark.parametrize("instance", ["work", "", "two words", "${HOME}", "a;b"])
def test_the_instance_is_taken_as_it_is_typed(ask, instance):
    assert ask(WHO, "--instance", instance) == (0, who(0, instance), b"")


@pytest.mark.parametrize("uid", [str(UNKNOWN_UID), "2147483647", "-2"])
def test_an_unknown_user_is_reported_without_the_usage(ask, uid):
    assert ask(WHO, "--user-id", uid) == unknown_user(uid)


def test_an_unknown_user_is_reported_before_a_missing_configuration(ask):
    assert ask({}, "--user-id", str(UNKNOWN_UID)) == unknown_user(UNKNOWN_UID)


def test_a_faulty_file_is_reported_before_an_unknown_user(ask, directory):
    outcome = ask("=\n", "--user-id", str(UNKNOWN_UID))
    fault = lines(f"ERROR: Unexpected line in {directory}/a.conf (\1): '='")
    assert outcome == (1, b"", fault + load_failure(directory / "a.conf"))


def test_the_generated_user_wins_but_name_and_home_stay_those_of_passwd(ask):
    outcome = ask(generated(Instance="made") + WHO, "--user-id", "0", "--instance", "typed")
    assert outcome == (0, who(1, "made"), b"")


def test_without_a_generated_instance_the_instance_is_empty(ask):
    assert ask(generated() + WHO, "--instance", "typed") == (0, who(1, ""), b"")


@pytest.mark.parametrize("missing", GENERATED)
def test_nothing_generated_is_taken_without(ask, missing):
    text = generated(Instance="made", **{missing: None})
    assert ask(text + WHO, "--instance", "typed") == (0, who(0, "typed"), b"")


@pytest.mark.parametrize("missing", GENERATED)
@pytest.mark.parametrize("value", ["", ";", "${nope}", "${env:UNSET_HERE}"])
def test_a_generated_key_is_not_there_when_it_is(ask, missing, value):
    text = generated(Instance="made", **{missing: value})
    assert ask(text + WHO, "--instance", "typed")[:2] == (0, who(0, "typed"))


@pytest.mark.parametrize(
    ("text", "uid"),
    [
        ("1", 1),
        (" 1", 1),
        ("+1", 1),
        ("1x", 1),
        ("1.9", 1),
        ("0x1", 1),
        ("2;1", 1),
        ("0X1", 0),
        ("abc", 0),
        ("x1", 0),
        ("-", 0),
        ("true", 0),
        ("${system:true}", 0),
        ("${system:echo 1}", 1),
        ("${env:ONE}", 1),
        ("${config:GeneratedConfig/Home}", 0),
        ("${config:GeneratedConfig/Instance}", 1),
        ("0${config:GeneratedConfig/Instance}", 1),
    ],
)
def test_the_generated_user_id_is_the_number_that_its_text_begins_with(ask, text, uid):
    outcome = ask(generated(UserId=text, Instance="1") + WHO, "--user-id", "2", env={"ONE": "1"})
    assert outcome == (0, who(uid, "1"), b"")


@pytest.mark.parametrize(("text", "uid"), [(str(UNKNOWN_UID), UNKNOWN_UID), ("99999999999", 2147483647), ("-3", -3)])
def test_a_generated_user_must_be_known_too(ask, text, uid):
    assert ask(generated(UserId=text) + WHO) == unknown_user(uid)


@pytest.mark.parametrize("key", ["BaseUid", "Home", "User"])
def test_a_required_generated_key_may_expand_to_nothing(ask, key):
    text = generated(Instance="made", **{key: "${system:true}"})
    assert ask(text + WHO) == (0, who(1, "made"), b"")


def test_the_last_generated_value_of_all_files_counts(ask):
    files = {
        "1.conf": generated(UserId="2", Instance="first"),
        "2.conf": generated(UserId="3;1", Instance="second;third"),
        "3.conf": WHO,
    }
    assert ask(files) == (0, who(1, "third"), b"")


def test_a_later_empty_value_takes_a_generated_key_away(ask):
    files = {"1.conf": generated(), "2.conf": "[GeneratedConfig]\nUser=\n", "3.conf": WHO}
    assert ask(files) == (0, who(0), b"")


def test_generated_keys_are_looked_for_in_their_group_only(ask):
    text = generated(Instance="made").replace("GeneratedConfig", "Config")
    assert ask(text + WHO) == (0, who(0), b"")


def test_no_template_variable_exists_while_generated_keys_are_read(ask):
    text = generated(Home="${HOME}") + WHO
    message = lines("ERROR: No such template 'HOME'")
    assert ask(text) == (0, who(0), message)
    home = pwd.getpwuid(0).pw_dir
    outcome = ask(text, "--group", "GeneratedConfig", "--key", "Home")
    assert outcome == (0, lines(home), message)


@pytest.mark.parametrize(("key", "user_id"), [("UserId", 0), ("Home", 1), ("Instance", 1), ("User", 1)])
def test_a_generated_key_that_draws_on_another_key_finds_it_unregistered(ask, key, user_id):
    text = generated(**{"Instance": "made", key: "${config:Config/X}"})
    outcome = ask(text + WHO + "X=2\n", "--user-id", "2")
    warning = lines("WARNING: Config/X has not been added to the parser")
    assert outcome == (0, who(user_id, "" if key == "Instance" else "made"), warning)


def test_the_generated_base_uid_has_to_be_there_but_is_not_looked_up(ask):
    outcome = ask(generated(BaseUid="${config:Config/X}", Instance="made") + WHO)
    assert outcome == (0, who(1, "made"), b"")


def test_a_circle_among_generated_keys_counts_as_no_text(ask):
    circle = "${config:GeneratedConfig/UserId}"
    outcome = ask(generated(UserId=circle, Instance="made") + WHO, "--user-id", "1")
    message = lines("ERROR: Max depth reached, possibly circular reference.")
    assert outcome == (0, who(0, "made"), message)


@pytest.mark.parametrize("key", GENERATED)
def test_generated_keys_can_be_asked_for_like_any_other(ask, key):
    outcome = ask(generated(), "--group", "GeneratedConfig", "--key", key)
    assert outcome == (0, lines(GENERATED[key]), b"")


def test_several_generated_values_are_all_listed_though_one_counts(ask):
    text = generated(UserId="2;1")
    outcome = ask(text, "--group", "GeneratedConfig", "--key", "UserId", "--list")
    assert outcome == (0, b"2;1\n", b"")
