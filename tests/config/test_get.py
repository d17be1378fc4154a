"""`tarnwick-config get`: many keys from one load."""

import base64
import functools
import json
import os
import resource
import subprocess

import pytest
from config_helpers import in_config, valid_json
from support.tool import CONFIG_TOOL, EMULATOR, clean_environment, config_command, is_watched, run_config, run_tool

ASK = ["get", "--config=conf.d", "--user-id=0"]
MEGABYTE = 1024 * 1024
CIRCLE = ("Circle=a${config:Config/Ring}", "Ring=b${config:Config/Circle}")
SHIFT = ("Here=h", "Shift=x ${config:Config/Here}")


@pytest.fixture
def get(run):
    """Writes a.conf and asks; returns status and output, after a look at the error stream."""

    def ask(text, *arguments, said=b""):
        result = run(text, *ASK, *arguments)
        assert said in result.stderr if said else result.stderr == b""
        return result.returncode, result.stdout

    return ask


# --- Answers ---


def test_answers_come_in_the_order_of_the_keys(get):
    text = in_config("A=1;2", "B=${config:Config/A}b") + "[Net]\nA=n\n"
    assert get(text, "B", "Config/A", "Net/A", "B") == (0, b"2b\n2\nn\n2b\n")


def test_a_key_without_a_value_is_status_2_and_the_others_are_printed(get):
    assert get(in_config("A=1"), "Nope", "A") == (2, b"1\n")


def test_list_prints_all_values(get):
    assert get(in_config("A=1;2", "A=3", "B=x"), "--list", "A", "B") == (0, b"1;2;3\nx\n")


def test_each_answer_ends_with_nul_where_that_is_wanted(get):
    assert get(in_config("A=1", "B=2"), "-z", "A", "Nope", "B") == (2, b"1\x002\x00")


def test_a_default_is_success_and_an_answer_for_a_key_without_a_value(get):
    assert get(in_config("A=1"), "--default", "d", "A", "Nope") == (0, b"1\nd\n")
    assert get(in_config("A=1"), "--default=", "Nope", "A") == (0, b"\n1\n")


def test_a_default_is_no_answer_for_a_key_that_fails(get):
    assert get(in_config(*SHIFT), "--default=d", "Shift", "Here", said=b"CRITICAL: Cannot get") == (1, b"h\n")


def test_failure_outweighs_a_missing_value(get):
    text = in_config(*SHIFT)
    assert get(text, "Nope", "Shift", "Here", said=b"CRITICAL: Cannot get 'Config/Shift'") == (1, b"h\n")
    assert get(text, "Shift", "Nope", "Here", said=b"CRITICAL: Cannot get 'Config/Shift'") == (1, b"h\n")


def test_a_circle_is_an_empty_text_and_a_record(get):
    assert get(in_config(*CIRCLE), "Circle", said=b"ERROR: Max depth reached") == (0, b"\n")


@pytest.mark.parametrize(
    "text,said",
    [
        (" bad\n", b"ERROR: Invalid configuration in conf.d/a.conf"),
        ("[Config]\nA=${env:BLANK}\n", b"CRITICAL: Cannot load the configuration: conf.d/a.conf:2: key 'A'"),
    ],
)
def test_a_load_that_fails_is_status_1_and_has_no_answers(text, said, run):
    result = run(text, *ASK, "--default=d", "A", "B", env={"BLANK": " "})
    assert (result.returncode, result.stdout) == (1, b"")
    assert said in result.stderr


def test_without_a_configuration_it_is_status_1(run):
    result = run({}, *ASK, "A")
    assert (result.returncode, result.stdout) == (1, b"")
    assert result.stderr == b"No configuration to read in conf.d\n"


@pytest.mark.parametrize(
    "arguments,message",
    [
        (["get"], "KEY is required"),
        (["get", ""], "'' names no key"),
        (["get", "Config/"], "'Config/' names no key"),
        (["get", "--format=xml", "A"], "--format: 'xml' is not text, shell or json"),
        (["get", "--format=json", "-z", "A"], "-z goes with --format=text alone"),
        (["get", "--prefix=X", "A"], "--prefix goes with --format=shell alone"),
        (["get", "--format=json", "A", b"A\xff"], "'A\\xFF' is no UTF-8 and can name no member"),
        (["get", "--format=json", "ABase64", "A"], "'ABase64' stands for the bytes of 'A' in this form"),
        (
            ["get", "--format=shell", "A", "9-lives"],
            "'9-lives': no variable can be named '9_lives'; --prefix puts something in front",
        ),
        (["get", "--format=shell", "--prefix=0", "A"], None),
        (
            ["get", "--format=shell", "A.b", "A", "Net/A-b"],
            "'A.b' and 'Net/A-b' would both be the variable 'A_b'",
        ),
    ],
)
def test_what_cannot_be_asked_is_wrong_use(arguments, message, run):
    result = run(in_config("A=1"), "--config=conf.d", "--user-id=0", *arguments)
    assert (result.returncode, result.stdout) == (64, b"")
    said, hint = result.stderr.decode().splitlines()
    assert message is None or said == f"tarnwick-config: {message}"
    assert hint == "Try 'tarnwick-config get --help'."


# --- Output that nobody takes ---


@pytest.mark.skipif(not os.path.exists("/dev/full"), reason="no full device here")
@pytest.mark.parametrize("form", ["text", "shell", "json"])
def test_a_full_output_is_status_1_and_said(form, run):
    with open("/dev/full", "wb") as full:
        result = run(in_config("A=1"), *ASK, f"--format={form}", "A", stdout=full)
    assert result.returncode == 1
    assert result.stderr == b"tarnwick-config: cannot write to the standard output\n"


@pytest.mark.parametrize("closed,status", [(">&-", 1), ("2>&-", 0), ("<&-", 0), (">&- 2>&- <&-", 1)])
def test_closed_streams_do_no_harm(closed, status, run, directory):
    run(in_config("A=1"), "--version")
    line = " ".join(config_command(*ASK, "A")) + " " + closed
    result = subprocess.run(["sh", "-c", line], cwd=directory.parent, env=clean_environment(), capture_output=True)
    assert result.returncode == status


def test_a_reader_that_has_seen_enough_ends_it_quietly_with_status_1(run, directory):
    run(in_config("A=1", "B=" + "x" * 300000), "--version")
    line = "{ " + " ".join(config_command(*ASK, "A", "B")) + "; echo $? >&2; } | head -n 1"
    result = subprocess.run(["sh", "-c", line], cwd=directory.parent, env=clean_environment(), capture_output=True)
    assert (result.stdout, result.stderr) == (b"1\n", b"1\n")


@pytest.mark.parametrize("form", ["text", "shell", "json"])
def test_want_of_memory_is_status_1_and_leaves_no_half_line_to_a_shell(form, run, directory):
    if is_watched(CONFIG_TOOL) or EMULATOR:
        pytest.skip("limits are for builds without sanitizers and counters")
    ask = [*ASK, f"--format={form}", "A", "B"]
    whole = run(in_config("A=1", "B=" + "'" * 8 * MEGABYTE), *ask).stdout
    outcomes = set()
    for limit in range(32 * MEGABYTE, 192 * MEGABYTE, 8 * MEGABYTE):
        set_limit = functools.partial(resource.setrlimit, resource.RLIMIT_AS, (limit, limit))
        result = run_config(*ask, cwd=directory.parent, preexec_fn=set_limit)
        outcomes.add(result.returncode)
        assert result.returncode == 1 or (result.returncode, result.stdout) == (0, whole)
        assert form != "shell" or result.stdout in (b"", whole) or result.stdout.endswith(b"\n(exit 1)\n")
    assert outcomes == {0, 1}


# --- Shell ---


def test_variables_have_the_names_of_their_keys(get):
    text = in_config("A.b-c d=1", "_X=2") + "[Net]\nip=3\n"
    expected = b"A_b_c_d='1'\n_X='2'\nip='3'\n_X='2'\n"
    assert get(text, "--format=shell", "A.b-c d", "_X", "Net/ip", "Config/_X") == (0, expected)
    assert get(text, "--format=shell", "--prefix=my-", "_X") == (0, b"my__X='2'\n")


def test_a_prefix_makes_names_of_keys_that_begin_with_a_digit(get):
    assert get(in_config("9=x"), "--format=shell", "--prefix=K", "9") == (0, b"K9='x'\n")


def test_a_variable_without_an_answer_is_unset_and_the_status_comes_last(get):
    assert get(in_config("A=1"), "--format=shell", "Nope", "A") == (2, b"unset -v Nope\nA='1'\n(exit 2)\n")
    assert get(in_config("A=1"), "--format=shell", "--default=d", "Nope") == (0, b"Nope='d'\n")
    shifted = get(in_config(*SHIFT), "--format=shell", "Shift", "Nope", "Here", said=b"CRITICAL")
    assert shifted == (1, b"unset -v Shift\nunset -v Nope\nHere='h'\n(exit 1)\n")


def test_a_load_that_fails_unsets_every_variable(get):
    assert get(" bad\n", "--format=shell", "A", "B", said=b"ERROR") == (1, b"unset -v A\nunset -v B\n(exit 1)\n")


def test_a_value_with_nul_is_an_error_before_anything_is_printed(get):
    said = b"tarnwick-config: B: the value holds a NUL byte, which no shell takes\n"
    assert get(in_config("A=1", "B=a\0b"), "--format=shell", "A", "B", said=said) == (1, b"")


# Command lines, and what makes each of them strict.
SHELLS = {
    "dash": (["dash"], "set -eu"),
    "bash": (["bash"], "set -euo pipefail"),
    "bash as sh": (["bash", "--posix"], "set -euo pipefail"),
    "busybox": (["busybox", "sh"], "set -euo pipefail"),
    "zsh": (["zsh", "-f"], "set -euo pipefail"),
}
ALL_BYTES = bytes(byte for byte in range(1, 256) if byte not in b"\n;$")
VALUES = [
    b"plain", b"it's", b"''", b"'", b'"$$(echo no)"', b"`id`", b"a\\", b"\\'", b"* ? [a-z] ~", b"-n", b"--", b"!x #y",
    b"${system:printf 'a\\n\\nb'}", b"${system:printf \"'\\n'x\"}", b"a=b c=d", b"$${HOME}", b"(exit 3)", b"\xff\xfe",
    "\u00e9\u4e2d".encode(), b"\x81\x82\x88\x9b", b"x" + ALL_BYTES + b"x", b"y" * 20000,
]  # fmt: skip


@pytest.fixture(params=SHELLS)
def shell(request, directory):
    """Runs a script in a strict shell, in which `config` is the program with its context."""
    command, strict = SHELLS[request.param]

    def run_script(script, **variables):
        config = " ".join(config_command("--config=conf.d", "--user-id=0"))
        text = f'{strict}\nconfig() {{ {config} "$@"; }}\n{script}\n'
        environment = clean_environment(LC_ALL="C.UTF-8", **variables)
        return subprocess.run([*command, "-c", text], cwd=directory.parent, env=environment, capture_output=True)

    return run_script


def test_every_shell_reads_every_value_back(shell, run):
    text = b"[Config]\n" + b"".join(b"K%d=%s\n" % (number, value) for number, value in enumerate(VALUES))
    names = [f"K{number}" for number in range(len(VALUES))]
    expected = run({"a.conf": text}, *ASK, "-z", *names).stdout
    assert expected.count(b"\0") == len(VALUES) and b"'\n'x\0" in expected and ALL_BYTES in expected
    printing = "\n".join(f"printf '%s\\0' \"${name}\"" for name in names)
    arguments = "get --format=shell " + " ".join(names)
    for script in (f'vars=$(config {arguments}) || exit\neval "$vars"\n', f'eval "$(config {arguments})"\n'):
        result = shell(script + printing)
        assert (result.returncode, result.stdout, result.stderr) == (0, expected, b"")


@pytest.mark.parametrize(
    "text,key,status", [(in_config("A=1"), "Nope", 2), (in_config(*SHIFT), "Shift", 1), (" bad\n", "A", 1)]
)
def test_every_shell_sees_the_failure_and_no_inherited_variable(text, key, status, shell, run):
    run(text, "--version")
    variables = {key: "inherited"}
    asked = f'vars=$(config get --format=shell {key}) || exit\neval "$vars"\necho "${key}"'
    result = shell(asked, **variables)
    assert (result.returncode, result.stdout) == (status, b"")
    bare = f'eval "$(config get --format=shell {key})"\necho "${key}"'
    result = shell(bare, **variables)
    assert (result.returncode, result.stdout) == (status, b"")
    lenient = f'set +eu\neval "$(config get --format=shell {key})"\necho "$? ${key}."'
    assert shell(lenient, **variables).stdout == b"%d .\n" % status


# --- JSON ---


def test_json_is_an_object_of_the_keys_as_they_were_typed(get):
    text = in_config("A=1;2", 'Q="\\') + "[Net]\nA=\u00e9\n"
    status, output = get(text, "--format=json", "A", "Net/A", "Q", "Nope", "A")
    assert status == 2
    assert valid_json("get", output) == {"A": "2", "Net/A": "\u00e9", "Q": '"\\', "Nope": None}
    assert output.count(b'"A"') == 1
    assert json.loads(get(text, "--format=json", "--list", "A")[1]) == {"A": "1;2"}
    assert json.loads(get(text, "--format=json", "--default=d", "Nope")[1]) == {"Nope": "d"}


def test_json_has_the_bytes_of_a_value_that_is_no_utf8_beside_it(get):
    status, output = get(b"[Config]\nA=a\xff\0\xc3\xa9\n", "--format=json", "A")
    report = valid_json("get", output)
    assert (status, report["A"]) == (0, "a\ufffd\0\u00e9")
    assert base64.b64decode(report["ABase64"]) == b"a\xff\0\xc3\xa9"


def test_a_key_that_fails_has_no_member(get):
    status, output = get(in_config(*SHIFT), "--format=json", "Shift", "Here", said=b"CRITICAL")
    assert (status, valid_json("get", output)) == (1, {"Here": "h"})
    status, output = get(" bad\n", "--format=json", "A", said=b"ERROR")
    assert (status, valid_json("get", output)) == (1, {})


# --- One load ---


def test_commands_run_as_often_as_in_one_request(run, tmp_path):
    text = in_config("A=${system:echo a >> runs && echo a}", "B=${config:Config/A}${system:echo b >> runs && echo b}")
    run(text, *ASK, "A", "B", "A", "Nope")
    many = (tmp_path / "runs").read_bytes()
    (tmp_path / "runs").unlink()
    run_tool("--config", "conf.d", "--user-id", "0", "--key", "A", cwd=tmp_path)
    assert many == (tmp_path / "runs").read_bytes() == b"a\nb\n"
