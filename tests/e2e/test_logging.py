"""Log records: which levels are written, where they go, and how the two variables are read."""

import pytest
from e2e_helpers import PARSER_IDENTITY, is_critical_record, lines, one_key, request, usage

# One value for each kind of record that a request can cause, least urgent last.
NOISY = "[Config]\nK=1\nE=${nope}\nW=${system:exit 65}\nD=${env:UNSET_HERE}\n"
ERROR = "ERROR: No such template 'nope'"
WARNING = "WARNING: exit 65 exited with non-zero status: A"
DEBUG_COMMAND = "DEBUG: Failed to resolve 'exit 65' from system for template 'system:exit 65'"
DEBUG_VARIABLE = "DEBUG: Failed to read 'UNSET_HERE' from environment variables for template 'env:UNSET_HERE'"
RECORDS = {
    "critical": b"",
    "error": lines(ERROR),
    "warning": lines(ERROR, WARNING),
    "info": lines(ERROR, WARNING),
    "debug": lines(ERROR, WARNING, DEBUG_COMMAND, DEBUG_VARIABLE),
}

# Names the user, so that a level taken by mistake makes no test wait for a login.
FOR_ROOT = ["--user-id", "0", "--key", "K"]


def level_of_parser(level):
    """The environment that gives the parser's logger a level."""
    return {"TARNWICK_LOGGING": f"{PARSER_IDENTITY}={level}"}


def target(place):
    return {"TARNWICK_LOGGING_TARGET": str(place)}


def test_warnings_and_worse_go_to_the_error_stream_by_default(ask):
    assert ask(NOISY) == (0, b"1\n", RECORDS["warning"])


LEVELS = [
    ("critical", "critical"),
    ("error", "error"),
    ("warning", "warning"),
    ("info", "info"),
    ("debug", "debug"),
    ("CRITICAL", "critical"),
    ("Debug", "debug"),
    ("dEBUG", "debug"),
    ("0", "critical"),
    ("1", "error"),
    ("2", "warning"),
    ("3", "info"),
    ("4", "debug"),
    ("-0", "critical"),
    ("+4", "debug"),
    ("004", "debug"),
    (" 4", "debug"),
    ("\t1", "error"),
    ("0x4", "debug"),
    ("0x01", "error"),
]
BAD_LEVELS = [
    *["5", "-1", "verbose", "warn", "debug ", " debug", "4 ", "4x", "1.0", "0X4", "-0x1", " 0x4"],
    *["0x5", "0x", " ", "x", "ä", "4294967296", "4294967298", "99999999999999999999", "debug;"],
]


@pytest.mark.parametrize(("text", "level"), LEVELS)
def test_the_log_level_option_takes_names_and_numbers(ask, text, level):
    assert ask(NOISY, "--log-level", text) == (0, b"1\n", RECORDS[level])


@pytest.mark.parametrize(("text", "level"), LEVELS)
def test_the_environment_takes_the_same_levels(ask, text, level):
    assert ask(NOISY, env=level_of_parser(text)) == (0, b"1\n", RECORDS[level])


@pytest.mark.parametrize("text", BAD_LEVELS)
def test_a_level_that_is_refused_is_followed_by_the_usage(text):
    message = lines(f"ERROR: Invalid logging level '{text}'")
    assert request(*FOR_ROOT, "--log-level", text) == (1, usage(), message)


@pytest.mark.parametrize("text", [text for text in BAD_LEVELS if ";" not in text])
def test_a_level_that_the_environment_gets_wrong_is_reported_and_left(ask, text):
    outcome = ask(NOISY, env=level_of_parser(text))
    message = lines(f"ERROR: Invalid logging level '{text}'")
    assert outcome == (0, b"1\n", message + RECORDS["warning"])


def test_an_empty_log_level_counts_as_not_given(ask):
    assert ask(NOISY, "--log-level", "") == (0, b"1\n", RECORDS["warning"])
    assert ask(NOISY, "--log-level", "debug", "--log-level", "") == (0, b"1\n", RECORDS["warning"])


def test_the_option_overrides_the_level_of_the_environment(ask):
    quiet = ask(NOISY, "--log-level", "error", env=level_of_parser("debug"))
    loud = ask(NOISY, "--log-level", "debug", env=level_of_parser("critical"))
    assert (quiet.err, loud.err) == (RECORDS["error"], RECORDS["debug"])


def test_a_refused_level_is_not_reported_by_a_logger_that_is_too_quiet():
    outcome = request(*FOR_ROOT, "--log-level", "x", env=level_of_parser("critical"))
    assert outcome == (1, usage(), b"")


@pytest.mark.parametrize(
    ("items", "level"),
    [
        ("", "warning"),
        ("{me}=", "warning"),
        ("{me}=;{me}=debug", "warning"),
        ("{me}=error;{me}=debug", "error"),
        ("{me}=debug;", "debug"),
        (";;{me}=debug", "debug"),
        ("other.ident=2;{me}=debug", "debug"),
        ("{me}=debug;other.ident=2", "debug"),
        ("other.ident=debug", "warning"),
        ("{me}", "warning"),
        ("{me}X=debug", "warning"),
        ("{me} =debug", "warning"),
        ("debug", "warning"),
        ("=debug", "warning"),
        ("x{me}=debug", "warning"),
    ],
)
def test_the_first_item_of_the_parser_decides_in(ask, items, level):
    environment = {"TARNWICK_LOGGING": items.format(me=PARSER_IDENTITY)}
    assert ask(NOISY, env=environment) == (0, b"1\n", RECORDS[level])


def test_the_identity_is_compared_with_its_letter_case(ask):
    environment = {"TARNWICK_LOGGING": f"{PARSER_IDENTITY.lower()}=debug"}
    assert ask(NOISY, env=environment) == (0, b"1\n", RECORDS["warning"])


def test_a_refused_first_item_decides_too(ask):
    items = f"{PARSER_IDENTITY}=loud;{PARSER_IDENTITY}=debug"
    outcome = ask(NOISY, env={"TARNWICK_LOGGING": items})
    expected = lines("ERROR: Invalid logging level 'loud'") + RECORDS["warning"]
    assert outcome == (0, b"1\n", expected)


def test_the_text_behind_the_first_equals_sign_is_the_level(ask):
    outcome = ask(one_key("1"), env=level_of_parser("=debug"))
    assert outcome == (0, b"1\n", lines("ERROR: Invalid logging level '=debug'"))


@pytest.mark.parametrize("place", ["stderr", "STDERR", "StdErr", ""])
def test_the_error_stream_can_be_named_as_the_target(ask, place):
    assert ask(NOISY, env=target(place)) == (0, b"1\n", RECORDS["warning"])


@pytest.mark.parametrize("place", ["stdout", "STDOUT"])
def test_records_can_go_to_standard_output_before_the_value(ask, place):
    assert ask(NOISY, env=target(place)) == (0, RECORDS["warning"] + b"1\n", b"")


@pytest.mark.parametrize("place", ["systemd", "SystemD"])
def test_the_journal_takes_the_records_off_both_streams(ask, place):
    assert ask(NOISY, env=target(place)) == (0, b"1\n", b"")


@pytest.mark.parametrize("place", ["/dev/null", "/dev/full", "/DEV/NULL"])
def test_a_target_that_loses_the_records_harms_nothing(ask, place):
    assert ask(NOISY, env=target(place)) == (0, b"1\n", b"")


def test_records_can_go_to_a_file_whose_path_is_lower_cased(ask, lower_case_directory):
    outcome = ask(NOISY, env=target(lower_case_directory / "Tool.LOG"))
    assert outcome == (0, b"1\n", b"")
    assert [path.name for path in lower_case_directory.iterdir()] == ["tool.log"]
    assert (lower_case_directory / "tool.log").read_bytes() == RECORDS["warning"]


def test_a_log_file_is_emptied_by_each_run(ask, lower_case_directory):
    log = lower_case_directory / "tool.log"
    log.write_text("old\n" * 1000)
    ask(NOISY, env=target(log))
    assert log.read_bytes() == RECORDS["warning"]
    ask({"a.conf": one_key("1")}, env=target(log))
    assert log.read_bytes() == b""


def test_each_record_is_in_the_file_before_the_work_goes_on(ask, lower_case_directory):
    log = lower_case_directory / "tool.log"
    outcome = ask(f"[Config]\nBad=${{nope}}\nK=${{system:cat {log}}}\n", env=target(log))
    assert outcome == (0, lines(ERROR), b"")


@pytest.mark.parametrize(
    "place",
    ["Tmp/X.log", "syslog", " stderr", "stderr ", "std", "/", "/missing/X.log", "/dev/null/X", "-"],
)
def test_a_target_that_cannot_be_had_is_reported_and_left(ask, place):
    expected = lines(f"ERROR: Invalid logging target '{place}'") + RECORDS["warning"]
    assert ask(NOISY, env=target(place)) == (0, b"1\n", expected)


def test_the_level_is_read_before_the_target(ask, lower_case_directory):
    log = lower_case_directory / "x.log"
    outcome = ask(NOISY, env=level_of_parser("loud") | target(log))
    assert outcome == (0, b"1\n", lines("ERROR: Invalid logging level 'loud'"))
    assert log.read_bytes() == RECORDS["warning"]


def test_a_wrong_target_is_not_reported_by_a_logger_that_is_too_quiet(ask):
    outcome = ask(NOISY, env=level_of_parser("critical") | target("nowhere"))
    assert outcome == (0, b"1\n", b"")


def test_the_environment_is_read_before_the_command_line():
    outcome = request(env=level_of_parser("loud"))
    expected = lines("ERROR: Invalid logging level 'loud'", "Needs at least one argument!")
    assert outcome == (1, usage(), expected)


def test_a_refused_level_is_reported_to_the_target(lower_case_directory):
    log = lower_case_directory / "x.log"
    outcome = request(*FOR_ROOT, "--log-level", "loud", env=target(log))
    assert outcome == (1, usage(), b"")
    assert log.read_bytes() == lines("ERROR: Invalid logging level 'loud'")


def test_a_refused_level_on_standard_output_stands_before_the_usage():
    outcome = request(*FOR_ROOT, "--log-level", "loud", env=target("stdout"))
    assert outcome == (1, lines("ERROR: Invalid logging level 'loud'") + usage(), b"")


@pytest.mark.parametrize("place", ["stdout", "/dev/null", "systemd"])
@pytest.mark.parametrize(
    ("arguments", "message"),
    [
        (["--bogus"], "--bogus: unknown argument"),
        (["--key"], "--key needs value. Specify an config key name."),
        (["--user-id", "x"], "--user-id: x does not look like an integer."),
        (["--list"], "Config key is required! Please specify a config key to parse."),
        (
            ["--config", "/missing", "--user-id", "0", "--key", "K"],
            "No configuration to read in /missing",
        ),
    ],
)
def test_messages_of_the_command_line_do_not_follow_the_target(place, arguments, message):
    assert request(*arguments, env=target(place)).err == lines(message)


def test_the_logging_group_of_the_configuration_changes_nothing(ask):
    group = f"[Logging]\n{PARSER_IDENTITY}=debug\nLogTarget=stdout\n"
    assert ask(group + NOISY) == (0, b"1\n", RECORDS["warning"])
    assert ask(group + NOISY, "--group", "Logging", "--key", "LogTarget").out == b"stdout\n"


def test_a_request_that_ends_early_is_reported_even_by_the_quietest_logger(ask):
    outcome = ask(one_key(" "), "--log-level", "critical")
    assert outcome[:2] == (1, b"")
    assert is_critical_record(outcome.err, "Config", "K")


def test_a_request_that_ends_early_is_reported_to_the_target(ask, lower_case_directory):
    log = lower_case_directory / "x.log"
    assert ask(one_key(" "), env=target(log)) == (1, b"", b"")
    assert is_critical_record(log.read_bytes(), "Config", "K")
