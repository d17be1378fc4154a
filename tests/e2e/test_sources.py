"""What templates read from outside the configuration: variables, paths, commands."""

import errno
import os
import resource
import signal

import pytest
from e2e_helpers import is_critical_record, lines, one_key, plain_build_only


def debug(*messages):
    """The records of values that could not be had."""
    return lines(*(f"DEBUG: {message}" for message in messages))


@pytest.mark.parametrize(
    ("name", "text"),
    [
        ("X", "text"),
        ("X", " two words "),
        ("X", "ä€"),
        ("lower", "1"),
        ("A:B", "colon"),
        ("A B", "blank"),
    ],
)
def test_env_reads_a_variable(ask, name, text):
    assert ask(one_key(f"<${{env:{name}}}>"), env={name: text}) == (0, lines(f"<{text}>"), b"")


@pytest.mark.parametrize("name", ["UNSET_HERE", "EMPTY", "empty", "", "EMPTY=", " EMPTY"])
def test_env_fails_for_a_variable_without_a_text(ask, name):
    template = f"env:{name}"
    message = f"Failed to read '{name}' from environment variables for template '{template}'"
    text = one_key(f"x${{{template}}}")
    assert ask(text, env={"EMPTY": ""}) == (2, b"", b"")
    assert ask(text, "--log-level", "debug", env={"EMPTY": ""}) == (2, b"", debug(message))


@pytest.mark.parametrize("level", ["critical", "error", "warning", "info"])
def test_a_missing_value_is_silent_below_the_debug_level(ask, level):
    values = "${env:UNSET_HERE};${realpath:/missing};${envfile:/missing:X};${system:kill -9 $$}"
    assert ask(one_key(values), "--log-level", level) == (2, b"", b"")


@pytest.mark.parametrize(
    ("path", "answer"),
    [
        ("/tmp/../tmp", os.path.realpath("/tmp")),
        ("/", "/"),
        ("//", "/"),
        (".", "{cwd}"),
        ("inner/..", "{cwd}"),
        ("inner/", "{cwd}/inner"),
        ("link", "{cwd}/inner"),
        ("a:b", "{cwd}/a:b"),
        ("link/../inner/./", "{cwd}/inner"),
    ],
)
def test_realpath_gives_the_canonical_path(ask, tmp_path, path, answer):
    (tmp_path / "inner").mkdir()
    (tmp_path / "link").symlink_to("inner")
    (tmp_path / "a:b").touch()
    expected = answer.format(cwd=tmp_path.resolve())
    assert ask(one_key(f"${{realpath:{path}}}"), cwd=tmp_path) == (0, lines(expected), b"")


@pytest.mark.parametrize("path", ["", "/missing/path", "missing", "file/x", " file", "loop"])
def test_realpath_fails_for_a_path_that_leads_nowhere(ask, tmp_path, path):
    (tmp_path / "file").touch()
    (tmp_path / "loop").symlink_to("loop")
    text = one_key(f"${{realpath:{path}}}")
    message = f"Failed to resolve '{path}' path for template 'realpath:{path}'"
    assert ask(text, "--log-level", "debug", cwd=tmp_path) == (2, b"", debug(message))


@pytest.mark.parametrize(
    ("command", "answer"),
    [
        ("echo hello", "hello"),
        ("echo '  hello  '", "hello"),
        ("printf 'a\\n\\nb\\n\\n'", "a\n\nb"),
        ("printf hello", "hello"),
        ("echo a:b", "a:b"),
        ("echo '$x${y'", "$x${y"),
        ("x=5 && echo $x", "5"),
        ("printf 'a\\0b\\nc\\n'", "ac"),
        ("head -c 5000 /dev/zero | tr '\\0' x", "x" * 5000),
        ("seq 1 2000", "\n".join(map(str, range(1, 2001)))),
        ("true", ""),
        ("", ""),
        ("pwd", "{cwd}"),
        ("cat", ""),
    ],
)
def test_system_gives_the_trimmed_output_of_a_command(ask, tmp_path, command, answer):
    outcome = ask(one_key(f"<${{system:{command}}}>"), cwd=tmp_path)
    expected = answer.replace("{cwd}", str(tmp_path))
    assert outcome == (0, lines(f"<{expected}>"), b"")


def test_a_command_writes_its_complaints_to_the_error_stream_of_the_tool(ask):
    assert ask(one_key("a${system:echo oops >&2}")) == (0, b"a\n", b"oops\n")


def test_a_command_that_does_not_exist_fails_with_the_status_of_the_shell(ask):
    outcome = ask(one_key("${system:/no/such/program 2> /dev/null}"))
    message = "/no/such/program 2> /dev/null exited with non-zero status: \x7f"
    assert outcome == (2, b"", lines(f"WARNING: {message}"))


def failed_command(command):
    return f"Failed to resolve '{command}' from system for template 'system:{command}'"


@pytest.mark.parametrize(
    ("command", "character"),
    [
        ("false", b"\x01"),
        ("exit 65", b"A"),
        ("exit 10", b"\n"),
        ("exit 255", b"\xff"),
        ("echo lost && exit 48", b"0"),
    ],
)
def test_a_failed_command_is_reported_with_its_status_as_one_character(ask, command, character):
    warning = b"WARNING: " + command.encode() + b" exited with non-zero status: " + character
    text = one_key(f"${{system:{command}}}")
    assert ask(text) == (2, b"", warning + b"\n")
    outcome = ask(text, "--log-level", "debug")
    assert outcome == (2, b"", warning + b"\n" + debug(failed_command(command)))


def test_a_command_that_a_signal_ends_fails_without_a_warning(ask):
    command = "echo lost && kill -9 $$"
    text = one_key(f"${{system:{command}}}")
    assert ask(text) == (2, b"", b"")
    expected = debug(failed_command(command))
    assert ask(text, "--log-level", "debug") == (2, b"", expected)


def test_a_failed_command_fails_its_whole_value_and_no_other(ask):
    outcome = ask(one_key("a${system:exit 65}b;c"), "--list")
    assert outcome == (0, b"c\n", lines("WARNING: exit 65 exited with non-zero status: A"))


def test_a_command_that_prints_white_space_only_ends_the_request(ask, directory):
    outcome = ask(one_key("a${system:echo}b"))
    assert outcome[:2] == (1, b"")
    assert is_critical_record(outcome.err, "Config", "K", str(directory / "a.conf"))


def limit_descriptors():
    """Leaves room for a file and one more descriptor beside the standard three: no pipe."""
    resource.setrlimit(resource.RLIMIT_NOFILE, (5, 5))


@plain_build_only
def test_a_command_that_cannot_be_started_is_an_error(ask):
    outcome = ask(one_key("${system:echo hi}"), preexec_fn=limit_descriptors)
    message = f"Failed to execute 'echo hi': {os.strerror(errno.EMFILE)}"
    assert outcome == (2, b"", lines(f"ERROR: {message}"))


def ignore_ended_children():
    """Lets the kernel reap every child, so that nobody can learn its status."""
    signal.signal(signal.SIGCHLD, signal.SIG_IGN)


def test_a_command_whose_status_is_lost_is_an_error(ask):
    text = one_key("${system:echo hi}")
    outcome = ask(text, "--log-level", "debug", preexec_fn=ignore_ended_children)
    error = f"ERROR: echo hi pclose() exited with failure: {os.strerror(errno.ECHILD)}"
    assert outcome == (2, b"", lines(error) + debug(failed_command("echo hi")))


def test_a_command_gets_the_default_action_for_a_broken_pipe(ask):
    # Were the signal ignored, `yes` would complain about its output and live on for a moment.
    assert ask(one_key("${system:yes | head -n 1}")) == (0, b"y\n", b"")


def test_a_command_inherits_no_configuration_file(ask):
    command = "ls -l /proc/self/fd | grep -c a.conf || true"
    assert ask(one_key(f"${{system:{command}}}")) == (0, b"0\n", b"")


@pytest.mark.parametrize("key", ["BaseUid", "Home", "Instance", "UserId", "User"])
def test_a_generated_key_has_its_templates_expanded_in_both_passes(ask, tmp_path, key):
    log = tmp_path / "log"
    ask(f"[GeneratedConfig]\n{key}=${{system:echo run >> {log} && echo 0}}\n")
    assert log.read_text() == "run\nrun\n"


@pytest.mark.parametrize(
    ("group", "key"),
    [
        ("Config", "K"),
        ("Config", "UserId"),
        ("GeneratedConfig", "DefaultLxc"),
        ("GeneratedConfig", "userid"),
        ("Other", "Home"),
    ],
)
def test_any_other_key_has_its_templates_expanded_once(ask, tmp_path, group, key):
    log = tmp_path / "log"
    ask(f"[{group}]\n{key}=${{system:echo run >> {log}}}\n")
    assert log.read_text() == "run\n"


def test_templates_are_expanded_afresh_and_in_order(ask, tmp_path):
    command = f"${{system:echo x >> {tmp_path}/log && wc -l < {tmp_path}/log}}"
    assert ask(one_key(f"{command}-{command};{command}"), "--list") == (0, b"1-2;3\n", b"")
