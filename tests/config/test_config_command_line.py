"""The command line that all commands share."""

import os
import pathlib
import pty
import re
import subprocess

import pytest
from config_helpers import in_config
from support.tool import clean_environment, config_command, run_config

CMAKE = (pathlib.Path(__file__).parents[2] / "CMakeLists.txt").read_bytes()
VERSION = re.search(rb"^project\(.* VERSION (\S+)", CMAKE, flags=re.MULTILINE).group(1)


def refusal(*arguments):
    """What is said of a wrong use; it is never more than two lines, and never on standard output."""
    result = run_config(*arguments)
    assert (result.returncode, result.stdout) == (64, b"")
    message, hint = result.stderr.decode().splitlines()
    assert message.startswith("tarnwick-config: ")
    assert hint.startswith("Try 'tarnwick-config") and hint.endswith("--help'.")
    return message.removeprefix("tarnwick-config: ")


@pytest.mark.parametrize(
    "arguments,message",
    [
        ([], "A subcommand is required"),
        (["chekc"], "there is no command 'chekc'"),
        (["--nonsense", "check"], "there is no option '--nonsense'"),
        (["check", "--nonsense=[x]"], "there is no option '--nonsense=[x]'"),
        (["get", "-k"], "there is no option '-k'"),
        (["get", "-zA"], "there is no option '-A'"),
        (["[x]", "[y]"], "there is no command '[x]'"),
        (["explain", "A", "--", "-k"], "KEY: At Most 1 required but received 2"),
        (["get", "--list=false", "A"], "--list takes no value"),
        (["get", "--list=0", "A"], "--list takes no value"),
        (["get", "--list=true", "A"], "--list takes no value"),
        (["get", "--list=", "A"], "--list takes no value"),
        (["get", "-z=1", "A"], "-z takes no value"),
        (["--help=no", "check"], "--help takes no value"),
        (["check", "--config"], "--config: 1 required DIR missing"),
        (["check", "--user-id", "x"], "--user-id: x does not look like an integer."),
        (["check", "--user-id=99999999999"], "--user-id: 99999999999 is too big/small."),
        (["check", "--log-level", "loud"], "--log-level: 'loud' is no level"),
        (["check", "--log-level=[a,b]"], "--log-level: '[a,b]' is no level"),
        (["check", "--user-id=[1]"], "--user-id: [1] does not look like an integer."),
        (["check", "--color=[x]"], "--color: '[x]' is not auto, always or never"),
        (["check", "--color=blue"], "--color: 'blue' is not auto, always or never"),
        (["check", "--format=[xml"], "--format: '[xml' is not text, json or gcc"),
        (["check", "--ignore=[x]"], "--ignore: there is no id '[x]'"),
        (["check", "--format=xml"], "--format: 'xml' is not text, json or gcc"),
        (["files", "--format=gcc"], "--format: 'gcc' is not text or json"),
        (
            ["check", "--ignore=nul-byte,bad-nubmer"],
            "--ignore: there is no id 'bad-nubmer'; did you mean 'bad-number'?",
        ),
    ],
)
def test_wrong_use_is_status_64_with_a_message_and_a_hint(arguments, message):
    said = refusal(*arguments)
    assert message is None or said == message


@pytest.mark.parametrize("arguments", [["--help"], ["check", "--help"], ["--help", "check"], ["files", "--help"]])
def test_help_is_everywhere(arguments):
    result = run_config(*arguments)
    assert (result.returncode, result.stderr) == (0, b"")
    assert b"Usage: tarnwick-config" in result.stdout


@pytest.mark.parametrize("arguments", [["--version"], ["check", "--version"]])
def test_the_version_is_everywhere(arguments):
    result = run_config(*arguments)
    assert (result.returncode, result.stdout, result.stderr) == (0, b"tarnwick-config %s\n" % VERSION, b"")


def test_context_stands_before_or_after_the_command(run):
    files = {"d1/a.conf": in_config("Arch=$"), "d2/b.conf": "", "[d,3]/c.conf": ""}
    expected = b"conf.d/d1/a.conf\nconf.d/d2/b.conf\nconf.d/[d,3]/c.conf\n"
    # The tool takes a directory for a pattern, so its bracket needs a backslash.
    lists = ["--configs=conf.d/d1:conf.d/d2", "--config", "conf.d/\\[d,3]"]
    assert run(files, *lists, "files").stdout == expected
    assert run(files, "files", *lists).stdout == expected


def test_brackets_are_no_list(tmp_path):
    result = run_config("files", "[a,b]", "--config", "[c]", cwd=tmp_path)
    assert result.stderr.decode().splitlines() == [
        "tarnwick-config: [c]: No such file or directory",
        "tarnwick-config: [a,b]: No such file or directory",
    ]


@pytest.mark.parametrize("value", ["[", "[]", "[x]", "[a,b]", "[ab]x", "\1", "\1[x]", "--", "-z", "=", "{}", ""])
def test_a_value_is_taken_as_it_was_typed(value, run):
    ask = ("get", "--config=conf.d", "--user-id=0")
    for words in ([f"--default={value}"], ["--default", value]):
        assert run("", *ask, *words, "Nope").stdout == value.encode() + b"\n", words
    if value:
        result = run_config("files", f"--config={value}", "--configs", f"{value}:{value}")
        said = value.replace("\1", "\\x01")
        assert result.stderr.decode() == f"tarnwick-config: {said}: No such file or directory\n" * 3


def test_a_value_may_be_empty_or_look_like_an_option(run):
    for arguments in (["--instance="], ["--instance", ""], ["--instance", "--strict"], ["--instance", "--config="]):
        assert run("", "check", *arguments, "conf.d").returncode == 0, arguments


def test_what_follows_two_dashes_is_a_path(tmp_path):
    (tmp_path / "--strict").write_text("")
    assert run_config("check", "--", "--strict", cwd=tmp_path).returncode == 0


@pytest.mark.parametrize(
    "operands",
    [["A", "--", "B"], ["--", "A", "B"], ["A", "B", "--"], ["B", "--", "A", "--"], ["A", "--", "-k", "--list"]],
)
def test_two_dashes_may_stand_between_operands(operands, run):
    names = operands.copy()
    names.remove("--")
    text = in_config("A=a", "B=b", "-k=k", "--=dashes")
    result = run(text, "get", "--config=conf.d", "--user-id=0", "--default=none", *operands)
    values = {"A": "a", "B": "b", "-k": "k", "--": "dashes"}
    assert result.stdout.decode().split() == [values.get(name, "none") for name in names]
    assert result.returncode == 0


def test_every_command_with_operands_takes_them_on_both_sides_of_two_dashes(run):
    text = in_config("A=1", "B=2")
    assert run(text, "show", "--config=conf.d", "--user-id=0", "Config/A", "--", "Config/B").stdout.count(b"\n") == 2
    assert run("", "check", "conf.d", "--", "conf.d").returncode == 0
    assert run("", "files", "conf.d", "--", "conf.d").stdout == b"conf.d/a.conf\n" * 2


def test_a_commands_name_may_be_a_path(tmp_path):
    (tmp_path / "files").write_text("")
    assert run_config("check", "files", cwd=tmp_path).returncode == 0


def test_one_argument_for_each_option(run):
    assert run("", "--config", "conf.d", "check", "--config", "conf.d", "conf.d").returncode == 0


def test_without_a_path_the_default_directory_is_read():
    result = run_config("files")
    assert result.returncode == 0 or b"/etc/tarnwick.conf.d: " in result.stderr


@pytest.mark.skipif(not os.path.exists("/dev/full"), reason="no full device here")
@pytest.mark.parametrize(
    "arguments",
    [["check", "--list-ids"], ["files", "conf.d"], ["files", "--names", "conf.d"], ["--help"], ["--version"]],
)
def test_a_full_output_is_status_2_and_said_once(arguments, run):
    with open("/dev/full", "wb") as full:
        result = run(in_config(*(f"Key{number}=1" for number in range(5000))), *arguments, stdout=full)
    assert (result.returncode, result.stderr) == (2, b"tarnwick-config: cannot write to the standard output\n")


def test_a_reader_that_has_seen_enough_ends_a_list_quietly(run, directory):
    run(in_config(*(f"Key{number}=1" for number in range(100000))), "--version")
    line = "{ " + " ".join(config_command("files", "--names", "conf.d")) + "; echo $? >&2; } | head -n 1"
    result = subprocess.run(["sh", "-c", line], cwd=directory.parent, env=clean_environment(), capture_output=True)
    assert (result.stdout, result.stderr) == (b"Config/Key0\n", b"2\n")


@pytest.mark.parametrize("variables,has_color", [({}, True), ({"NO_COLOR": "1"}, False), ({"NO_COLOR": ""}, False)])
def test_a_terminal_gets_colours_unless_no_color_is_set_even_to_nothing(variables, has_color, run, directory):
    run(in_config("Arch=$"), "--version")
    environment = clean_environment()
    environment.pop("NO_COLOR", None)
    leader, follower = pty.openpty()
    command = config_command("check", "conf.d")
    subprocess.run(command, cwd=directory.parent, stdout=follower, env={**environment, **variables}, check=False)
    assert (b"\x1b[" in os.read(leader, 4096)) == has_color
    os.close(leader)
    os.close(follower)
