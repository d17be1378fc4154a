"""The options, what each one does, and the complaints about a command line."""

import subprocess
import sys

import pytest
from e2e_helpers import (
    lines,
    one_key,
    request,
    started_directly,
    usage,
    without_default_directory,
)
from support.tool import TOOL, clean_environment, write_files


def complaint(message):
    """The outcome of a command line that is refused with a message and the usage text."""
    return (1, usage(), lines(message))


NO_KEY = complaint("Config key is required! Please specify a config key to parse.")


def test_without_any_argument_the_tool_complains_and_shows_its_usage():
    assert request() == complaint("Needs at least one argument!")


@pytest.mark.parametrize(
    ("option", "message"),
    [
        (
            "--config",
            "--config needs value. Specify alternative config directory to read.",
        ),
        ("--configs", "--configs needs value."),
        ("--instance", "--instance needs value. Specify a name."),
        ("--user-id", "--user-id needs value. Specify an UID value."),
        ("--group", "--group needs value. Specify an config group name."),
        ("--key", "--key needs value. Specify an config key name."),
        ("--log-level", "--log-level needs value."),
    ],
)
def test_an_option_that_ends_the_command_line_without_its_value_is_refused(option, message):
    assert request(option) == complaint(message)
    assert request("--key", "K", option) == complaint(message)


@pytest.mark.parametrize("argument", ["--bogus", "---", "--help", "--Key", "--key=K", "--lis", "--list=1", "-- "])
def test_an_unknown_argument_is_named_without_the_usage(argument):
    assert request(argument, "--key", "K") == (1, b"", lines(argument + ": unknown argument"))


@pytest.mark.parametrize(
    ("arguments", "outcome"),
    [
        (["--bogus", "--user-id", "x"], (1, b"", lines("--bogus: unknown argument"))),
        (["--bogus", "--key"], (1, b"", lines("--bogus: unknown argument"))),
        (
            ["--user-id", "x", "--bogus"],
            complaint("--user-id: x does not look like an integer."),
        ),
        (["--log-level", "bogus", "--other"], (1, b"", lines("--other: unknown argument"))),
        (["--log-level", "bogus"], NO_KEY),
        (["--list"], NO_KEY),
    ],
)
def test_the_first_fault_of_a_command_line_is_the_one_reported(arguments, outcome):
    assert request(*arguments) == outcome


@pytest.mark.parametrize(
    "arguments",
    [
        ["--key", ""],
        ["--key", "K", "--key", ""],
        ["value", "--key", "K"],
        ["-k", "K"],
        ["--", "--key", "K"],
        ["", "--key", "K"],
        ["-", "--bogus"],
    ],
)
def test_a_command_line_that_names_no_key_is_refused(arguments):
    assert request(*arguments) == NO_KEY


@pytest.mark.parametrize("stop", ["extra", "-k", "-", "--", ""])
@pytest.mark.parametrize("ignored", [["--list"], ["--bogus"], ["--key"], []])
def test_everything_from_the_first_plain_argument_on_is_ignored(ask, stop, ignored):
    assert ask("[Config]\nK=1\nK=2\n", stop, *ignored) == (0, b"2\n", b"")


@pytest.mark.parametrize(
    ("arguments", "answer"),
    [
        pytest.param(["--key", "A", "--key", "B"], "b", id="key"),
        pytest.param(["--group", "X", "--group", "Other"], "other", id="group"),
        pytest.param(["--instance", "x", "--instance", "y", "--key", "I"], "y", id="instance"),
        pytest.param(["--user-id", "7", "--user-id", "1", "--key", "U"], "1", id="user-id"),
        pytest.param(["--log-level", "x", "--log-level", "info"], "k", id="log-level"),
        pytest.param(["--list", "--list"], "k", id="list"),
    ],
)
def test_the_last_of_repeated_options_counts(ask, arguments, answer):
    text = "[Config]\nK=k\nA=a\nB=b\nI=${INSTANCE}\nU=${USER_ID}\n[Other]\nK=other\n"
    assert ask(text, *arguments) == (0, lines(answer), b"")


@pytest.mark.parametrize("key", ["--list", "--bogus", "--key", "-k"])
def test_the_argument_after_key_is_its_name_whatever_it_looks_like(ask, key):
    assert ask(f"[Config]\n{key}=1\n{key}=2\n", "--key", key) == (0, b"2\n", b"")


@pytest.mark.parametrize(
    ("option", "value"), [("--instance", "--list"), ("--log-level", "debug"), ("--group", "Config")]
)
def test_a_value_is_not_looked_at_as_an_option(ask, option, value):
    assert ask("[Config]\nK=1\nK=2\n", option, value) == (0, b"2\n", b"")


@pytest.mark.parametrize(
    ("text", "user_id"),
    [
        ("0", "0"),
        ("1", "1"),
        ("+1", "1"),
        ("-0", "0"),
        ("001", "1"),
        (" \t\n1", "1"),
        ("1x", "1"),
        ("1 000", "1"),
        ("1.9", "1"),
        ("0x1", "0"),
    ],
)
def test_the_user_id_is_the_number_that_its_text_begins_with(ask, text, user_id):
    assert ask(one_key("${USER_ID}"), "--user-id", text) == (0, lines(user_id), b"")


@pytest.mark.parametrize("text", ["", "x", " ", "-", "+", "+-1", "x1", "- 1", "--list"])
def test_a_user_id_without_a_number_is_refused(text):
    message = f"--user-id: {text} does not look like an integer."
    assert request("--key", "K", "--user-id", text) == complaint(message)


@pytest.mark.parametrize(
    "text",
    [
        "2147483648",
        "-2147483649",
        "4294967296",
        "99999999999",
        "-99999999999",
        "99999999999x",
        "9" * 60,
        "-" + "9" * 60,
    ],
)
def test_a_user_id_beyond_32_bits_is_refused(text):
    message = f"--user-id: {text} is too big/small."
    assert request("--key", "K", "--user-id", text) == complaint(message)


@pytest.mark.parametrize(
    ("arguments", "answer"),
    [
        pytest.param(["--config", "a", "--configs", "b:c"], "a;b;c", id="both options in order"),
        pytest.param(["--configs", "c:b", "--config", "a"], "c;b;a", id="the other order"),
        pytest.param(["--configs", "a", "--configs", "b"], "a;b", id="configs twice"),
        pytest.param(["--config", "a", "--config", "a"], "a;a", id="one directory twice"),
        pytest.param(["--configs", "a:b:"], "a;b", id="a trailing colon"),
        pytest.param(["--configs", "", "--config", "b"], "b", id="an empty list adds nothing"),
        pytest.param(["--config", "a/", "--config", "b/."], "a;b", id="trailing slashes"),
    ],
)
def test_directories_are_read_in_the_order_of_the_command_line(tmp_path, arguments, answer):
    write_files(tmp_path, {f"{name}/x.conf": one_key(name) for name in "abc"})
    outcome = request(*arguments, "--user-id", "0", "--list", "--key", "K", cwd=tmp_path)
    assert outcome == (0, lines(answer), b"")


@pytest.mark.parametrize(
    ("arguments", "directories"),
    [
        (["--config", "x"], "x"),
        (["--config", "x/", "--config", "y"], "x/,y"),
        (["--configs", "x:y:"], "x,y"),
        (["--config", "x:y"], "x:y"),
        (["--configs", "x:", "--config", "y"], "x,y"),
    ],
)
def test_the_directories_without_any_file_are_named(tmp_path, arguments, directories):
    outcome = request(*arguments, "--user-id", "0", "--key", "K", cwd=tmp_path)
    assert outcome == (1, b"", lines("No configuration to read in " + directories))


@without_default_directory
@pytest.mark.parametrize("arguments", [[], ["--configs", ""]])
def test_the_default_directory_is_read_when_none_is_given(arguments):
    outcome = request(*arguments, "--user-id", "0", "--key", "K")
    assert outcome == (1, b"", lines("No configuration to read in /etc/tarnwick.conf.d"))


@pytest.mark.parametrize(
    ("group", "answer"), [("", "outside"), ("Config", "config"), ("config", "small"), (" x ", "x")]
)
def test_the_group_is_taken_as_it_is_typed(ask, group, answer):
    text = "K=outside\n[Config]\nK=config\n[config]\nK=small\n[ x ]\nK=x\n"
    assert ask(text, "--group", group) == (0, lines(answer), b"")


@pytest.mark.parametrize("arguments", [["--key", "k"], ["--group", "X"], ["--group", ""]])
@pytest.mark.parametrize("listing", [[], ["--list"]])
def test_a_key_that_is_not_there_gives_status_2_and_no_output(ask, arguments, listing):
    assert ask("[Config]\nK=1\n[Empty]\n", *arguments, *listing) == (2, b"", b"")


@started_directly
@pytest.mark.parametrize("program", ["parse", "./odd name", ""])
def test_the_usage_names_the_program_as_it_was_started(program):
    run = subprocess.run([program, "--list"], executable=TOOL, env=clean_environment(), capture_output=True)
    assert (run.returncode, run.stdout) == (1, usage(program))


# A fresh interpreter runs this, since the tool takes the place of the process that starts it.
START_WITHOUT_ARGUMENTS = """
import ctypes, os, sys
library = ctypes.CDLL(None)
nothing = (ctypes.c_char_p * 1)(None)
library.execve(os.fsencode(sys.argv[1]), nothing, ctypes.c_void_p.in_dll(library, "environ"))
sys.exit("the tool could not be started")
"""


@started_directly
def test_an_empty_argument_vector_is_no_argument_at_all():
    command = [sys.executable, "-c", START_WITHOUT_ARGUMENTS, TOOL]
    run = subprocess.run(command, env=clean_environment(), capture_output=True)
    assert (run.returncode, run.stdout) == (1, usage(""))
    assert run.stderr == lines("Needs at least one argument!")
