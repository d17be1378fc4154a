"""The value on standard output, and what becomes of a value that cannot be written."""

import os
import subprocess

import pytest
from e2e_helpers import Outcome, lines, one_key, usage
from support.tool import TIME_LIMIT_SECONDS, clean_environment, tool_command

CANNOT_WRITE = lines("CRITICAL: Cannot write the value to the standard output")
NO_KEY = lines("Config key is required! Please specify a config key to parse.")


@pytest.fixture
def ask_through_shell(directory):
    """Writes a.conf and asks for key K through a shell that redirects the tool's descriptors."""

    def ask_redirected(text, redirections, *arguments, **variables):
        (directory / "a.conf").write_text(text)
        tool = tool_command("--config", str(directory), "--user-id", "0", "--key", "K", *arguments)
        run = subprocess.run(
            ["sh", "-c", f'exec "$@" {redirections}', "sh", *tool],
            env=clean_environment(**variables),
            capture_output=True,
            timeout=TIME_LIMIT_SECONDS,
        )
        return Outcome(run.returncode, run.stdout, run.stderr)

    return ask_redirected


@pytest.mark.parametrize(
    ("value", "single", "listed"),
    [
        ("v", b"v\n", b"v\n"),
        ("a;b;c", b"c\n", b"a;b;c\n"),
        ("a,b", b"a,b\n", b"a,b\n"),
        ("two words", b"two words\n", b"two words\n"),
        ("%s%d", b"%s%d\n", b"%s%d\n"),
        ("${system:printf 'a\\nb'}", b"a\nb\n", b"a\nb\n"),
    ],
)
def test_the_value_is_all_that_is_printed(ask, value, single, listed):
    assert ask(one_key(value)) == (0, single, b"")
    assert ask(one_key(value), "--list") == (0, listed, b"")


UNWRITABLE = ["> /dev/full", ">&-", "> /dev/full < /dev/null", "<&- >&-", "1< /dev/null"]


@pytest.mark.parametrize("redirections", UNWRITABLE)
@pytest.mark.parametrize("value", ["v", "x" * 100_000, "${config:Config/Missing}"])
@pytest.mark.parametrize("listing", [[], ["--list"]])
def test_a_value_that_cannot_be_written_is_a_failure(ask_through_shell, redirections, value, listing):
    outcome = ask_through_shell(one_key(value), redirections, *listing)
    assert outcome.status == 1
    assert outcome.err == CANNOT_WRITE


@pytest.mark.parametrize("redirections", UNWRITABLE)
def test_nothing_to_print_is_no_failure_to_print(ask_through_shell, redirections):
    assert ask_through_shell(one_key(""), redirections) == (2, b"", b"")


@pytest.mark.parametrize("redirections", UNWRITABLE)
def test_a_usage_text_that_cannot_be_written_keeps_its_status(ask_through_shell, redirections):
    outcome = ask_through_shell(one_key("v"), redirections, "--key", "")
    assert outcome.status == 1
    assert outcome.err.startswith(NO_KEY)


def test_a_reader_that_went_away_is_a_failure_and_no_sudden_death(ask):
    reader, writer = os.pipe()
    os.close(reader)
    outcome = ask(one_key("v"), stdout=writer)
    os.close(writer)
    assert outcome.status == 1
    assert outcome.err == CANNOT_WRITE


@pytest.mark.parametrize("redirections", ["2>&-", "2> /dev/full", "2>&- <&-"])
def test_an_unusable_error_stream_does_not_keep_the_value_back(ask_through_shell, redirections):
    text = "[Config]\nBad=${nope}\nK=v\n"
    assert ask_through_shell(text, redirections) == (0, b"v\n", b"")


@pytest.mark.parametrize(
    ("text", "arguments", "status"),
    [
        (one_key("v"), ["--bogus"], 1),
        (one_key(" "), [], 1),
        ("=\n", [], 1),
        (one_key(""), [], 2),
    ],
)
def test_an_unusable_error_stream_does_not_change_the_status(ask_through_shell, text, arguments, status):
    assert ask_through_shell(text, "2>&-", *arguments) == (status, b"", b"")


def test_all_three_streams_may_be_closed(ask_through_shell):
    assert ask_through_shell(one_key("v"), "<&- >&- 2>&-") == (1, b"", b"")


@pytest.mark.parametrize("redirections", [">&-", "<&- >&-", "<&- >&- 2>&-"])
def test_a_log_file_never_takes_the_place_of_a_closed_stream(ask_through_shell, lower_case_directory, redirections):
    log = lower_case_directory / "x.log"
    text = "[Config]\nBad=${nope}\nK=v\n"
    outcome = ask_through_shell(text, redirections, TARNWICK_LOGGING_TARGET=str(log))
    assert outcome == (1, b"", b"")
    first, _, rest = log.read_bytes().partition(b"\n")
    assert first == b"ERROR: No such template 'nope'"
    assert rest == CANNOT_WRITE


def test_a_command_finds_nothing_to_read_in_place_of_a_closed_input(ask_through_shell, directory):
    text = one_key("${system:cat}")
    assert ask_through_shell(text, "<&-") == (2, b"", b"")
    assert (directory / "a.conf").read_text() == text


def test_records_on_a_full_standard_output_make_the_value_fail_too(ask_through_shell):
    text = "[Config]\nBad=${nope}\nK=v\n"
    outcome = ask_through_shell(text, "> /dev/full", TARNWICK_LOGGING_TARGET="stdout")
    assert outcome == (1, b"", b"")


def test_the_usage_goes_to_standard_output_and_its_message_to_the_error_stream(ask):
    outcome = ask(one_key("v"), "--key", "")
    assert outcome == (1, usage(), NO_KEY)


def test_the_configuration_is_left_as_it_was(ask, directory):
    text = "[Config]\nK=${config:A/B}\n[A]\nB=${system:echo x}\n"
    ask(text, "--list")
    assert [path.name for path in directory.iterdir()] == ["a.conf"]
    assert (directory / "a.conf").read_text() == text


def test_output_and_diagnostics_do_not_depend_on_the_locale(ask):
    text = "[Config]\nK=ä;${system:exit 65}\n"
    outcomes = [ask(text, env={"LC_ALL": locale}) for locale in ("C", "C.UTF-8", "de_DE.UTF-8")]
    assert len(set(outcomes)) == 1
