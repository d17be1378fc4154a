"""`tarnwick-config expand`: what a text with templates comes to."""

import pytest
from config_helpers import in_config

FILES = in_config("Name=box", "A=${config:Config/B}", "B=${config:Config/A}", "Shifted=x ${config:Config/Name}")


@pytest.fixture
def expand(run):
    """Expands a text over FILES and returns the status, the output and the error output."""

    def expand_text(text, *arguments, files=FILES, **options):
        result = run(files, "expand", "--config=conf.d", "--user-id=0", *arguments, text, **options)
        return result.returncode, result.stdout.decode(), result.stderr.decode()

    return expand_text


def failure(result):
    """The last line of a failure, which names the template; records of the library may stand before it."""
    status, output, errors = result
    assert (status, output) == (1, "")
    return errors.splitlines()[-1].removeprefix("tarnwick-config: ")


@pytest.mark.parametrize(
    "text,expected",
    [
        ("plain", "plain"),
        ("", ""),
        ("a;b;", "a;b;"),
        ("[a,b]", "[a,b]"),
        ("$$", "$"),
        ("${USER} on ${config:Config/Name}.", "root on box."),
        ("${config:Config/Nope}-", "-"),
        ("${env:E_WORD}", "word"),
        ("${system:echo a;echo b}", "a\\x0Ab"),
    ],
)
def test_a_text_is_expanded_as_a_value_is_but_not_cut(expand, text, expected):
    assert expand(text, env={"E_WORD": "word"}) == (0, expected + "\n", "")


def test_context_reaches_the_variables(expand):
    assert expand("${INSTANCE}", "--instance", "work") == (0, "work\n", "")


@pytest.mark.parametrize(
    "text,said",
    [
        ("x ${env:E_NONE}", "'${env:E_NONE}': E_NONE is not set"),
        ("${env:E_EMPTY}", "'${env:E_EMPTY}': E_EMPTY is set, but empty"),
        ("${HOM}", "'${HOM}': no variable is named 'HOM'; did you mean 'HOME'?"),
        ("${confg:A/B}", "'${confg:A/B}': no source is named 'confg'; did you mean 'config'?"),
        ("a $", "'$': expected '{' or '$' after '$'; write '$$' for a '$'"),
        ("a ${HOME", "'${HOME': expected '}' at the end of the template"),
        ("${config:A}", "'${config:A}': 'A' names no group and key; write '${config:GROUP/KEY}'"),
        ("${envfile:x}", "'${envfile:x}': 'x' names no path and variable; write '${envfile:PATH:VARIABLE}'"),
        ("${envfile:none:X}", "'${envfile:none:X}': none cannot be read: No such file or directory"),
        ("${envfile:conf.d/a.conf:X}", "'${envfile:conf.d/a.conf:X}': no line of conf.d/a.conf assigns X"),
        ("${realpath:none}", "'${realpath:none}': the path none does not exist or cannot be reached"),
        ("${system:exit 3}", "'${system:exit 3}': the command 'exit 3' did not end with status 0"),
        ("  ", "'  ': it is white space alone"),
        ("${env:E_BLANK}", "'${env:E_BLANK}': its templates come to white space alone"),
        ("${config:Config/A}", "'${config:Config/A}': a circle: leads back to Config/A"),
    ],
)
def test_the_template_that_fails_is_named_with_the_reason(expand, text, said):
    assert failure(expand(text, env={"E_EMPTY": "", "E_BLANK": " "})) == said


@pytest.mark.parametrize(
    "text,named",
    [
        ("x ${config:Config/Name}", "white space is trimmed from the value, and the reference '${config:Config/Name}'"),
        ("q${config:Config/Shifted}", "'${config:Config/Shifted}': Config/Shifted: white space is trimmed"),
    ],
)
def test_a_reference_behind_the_end_of_its_trimmed_text_is_a_failure(expand, text, named):
    said = failure(expand(text))
    assert said.startswith(named)
    assert said.endswith(
        "then stands past its end; remove the white space, or put other characters before and behind it"
    )


def test_more_references_than_a_request_fills_are_a_failure(expand):
    assert expand("${config:Config/Name}" * 32) == (0, "box" * 32 + "\n", "")
    assert "more than 32 other values" in failure(expand("${config:Config/Name}" * 33))


def test_a_command_runs_once(expand, tmp_path):
    assert expand("${system:echo x >> ran; echo y}") == (0, "y\n", "")
    assert (tmp_path / "ran").read_text() == "x\n"


def test_an_output_drives_no_terminal(expand):
    assert (
        expand("\u202e\u00e9${env:E_BYTES}", env={"E_BYTES": "\x1b[1m\n\x7f"})[1]
        == "\\xE2\\x80\\xAE\u00e9\\x1B[1m\\x0A\\x7F\n"
    )
    said = failure(expand("${env:\x1b[1m}"))
    assert said == "'${env:\\x1B[1m}': \\x1B[1m is not set"


def test_a_load_that_fails_is_told_with_its_place(expand):
    assert failure(expand("x", files="[Config]\nA\n")) == "conf.d/a.conf:2:2: expected '=' after the key"
    assert failure(expand("x", files="[Config]\nA= \n")).startswith("conf.d/a.conf:2:3: the value is white space alone")


def test_a_user_without_an_entry_is_told(expand):
    said = failure(expand("x", "--user-id=4242424"))
    assert said == "user 4242424 (command line) has no entry in the password database"


def test_no_files_are_told(run):
    result = run({}, "expand", "--config=nowhere", "--user-id=0", "x")
    assert result.returncode == 1
    assert b"no directory holds a file named '*.conf': nowhere" in result.stderr


@pytest.mark.parametrize("texts", [[], ["a", "b"]])
def test_one_text_is_expanded(run, texts):
    assert run("", "expand", "--config=conf.d", *texts).returncode == 64


def test_what_cannot_be_written_is_a_failure(run):
    with open("/dev/full", "wb") as full:
        result = run("", "expand", "--config=conf.d", "--user-id=0", "x", stdout=full)
    assert (result.returncode, result.stderr) == (1, b"tarnwick-config: cannot write to the standard output\n")
