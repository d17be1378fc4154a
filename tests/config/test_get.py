"""`tarnwick-config get`: many keys from one load."""

from config_helpers import in_config


def test_answers_are_those_of_the_boot_tool_key_by_key(run):
    result = run(
        in_config("A=1;2", "B=${config:Config/A}b"), "get", "--config=conf.d", "--user-id=0", "B", "Config/A"
    )
    assert (result.returncode, result.stdout, result.stderr) == (0, b"2b\n2\n", b"")


def test_a_key_without_a_value_is_status_2_and_the_others_are_printed(run):
    result = run(in_config("A=1"), "get", "--config=conf.d", "--user-id=0", "Nope", "A")
    assert (result.returncode, result.stdout, result.stderr) == (2, b"1\n", b"")
