"""`tarnwick-config show`: the effective configuration, with origins."""

import base64
import os
import subprocess

import pytest
from config_helpers import in_config, valid_json
from support.tool import clean_environment, config_command

SHOW = ["show", "--config=conf.d", "--user-id=0"]
CIRCLE_SAID = b"its references lead in a circle, or to more than 32 other values\n"
SHIFT_SAID = b"a reference stands past the end of a text from which white space was trimmed\n"

FILES = {
    "10-a.conf": "[B]\nK=1;2\nHome=${config:A/L}/x\n[A]\nL=gone\nL=\n",
    "20-b.conf": "Early=e\n[A]\nL=$$l\n[B]\nK=3\n",
}


@pytest.fixture
def show(run):
    """Writes files and shows them; returns status and output, after a look at the error stream."""

    def see(files, *arguments, said=b""):
        result = run(files, *SHOW, *arguments)
        assert result.stderr == said
        return result.returncode, result.stdout

    return see


# --- One value a line ---


def test_values_come_in_the_order_of_the_first_value_left_of_each_key(show):
    assert show(FILES) == (0, b"B/K=1\nB/K=2\nB/K=3\nB/Home=$l/x\n/Early=e\nA/L=$l\n")


def test_origins_stand_in_front(show):
    status, output = show(FILES, "--origin", "B")
    assert status == 0
    assert output.decode().splitlines() == [
        "conf.d/10-a.conf:2\tB/K=1",
        "conf.d/10-a.conf:2\tB/K=2",
        "conf.d/20-b.conf:5\tB/K=3",
        "conf.d/10-a.conf:3\tB/Home=$l/x",
    ]


def test_raw_shows_texts_as_they_were_written(show):
    assert show(FILES, "--raw", "A", "B/Home") == (0, b"B/Home=${config:A/L}/x\nA/L=$$l\n")


def test_what_drives_a_terminal_or_forges_a_line_is_escaped(show):
    value = "a\x1b[31m\u00e9\u202e\x7f\u0085".encode() + b"\xff\0\rb"
    text = b"[Config]\nA=" + value + b"\nB=${system:printf 'x\\nConfig/C=y'}\n"
    escapes = "a\\x1B[31m\u00e9\\xE2\\x80\\xAE\\x7F\\xC2\\x85\\xFF\\x00\\x0Db"
    assert show({"a\n.conf": text}, "--origin") == (
        0,
        f"conf.d/a\\x0A.conf:2\tConfig/A={escapes}\nconf.d/a\\x0A.conf:3\tConfig/B=x\\x0AConfig/C=y\n".encode(),
    )


def test_z_prints_raw_bytes_that_end_with_nul(show):
    text = b"[Config]\nA=\x1b\xff\rb\nB=${system:printf 'x\\ny'};2\n"
    expected = b"a.conf:2\tConfig/A=\x1b\xff\rb\0a.conf:3\tConfig/B=x\ny\0a.conf:3\tConfig/B=2\0"
    assert show(text, "-z", "--origin") == (0, expected.replace(b"a.conf", b"conf.d/a.conf"))


def test_a_value_whose_references_are_empty_is_shown_as_empty(show):
    assert show(in_config("A=${config:Config/No};b", "B=${config:Config/No}")) == (
        0,
        b"Config/A=\nConfig/A=b\nConfig/B=\n",
    )


# --- Selection ---


def test_groups_and_keys_are_selected(show):
    assert show(FILES, "A", "B/Home") == (0, b"B/Home=$l/x\nA/L=$l\n")
    assert show(FILES, "/Early") == show(FILES, "") == (0, b"/Early=e\n")


def test_each_of_many_names_selects_its_key_and_is_named_when_it_selects_none(run):
    names = [f"Config/K{number}" for number in range(3000)]
    result = run(in_config(*(f"K{number}=x" for number in range(1000, 2000))), *SHOW, *names, "Config/K1500")
    assert result.returncode == 0
    assert result.stdout.decode().splitlines() == [name + "=x" for name in names[1000:2000]]
    assert result.stderr.decode().splitlines() == [
        f"tarnwick-config: {name}: it has no value" for name in (*names[:1000], *names[2000:])
    ]


def test_a_selection_of_nothing_is_status_2(show):
    said = b"tarnwick-config: Nope: it has no value\ntarnwick-config: A/M: it has no value\n"
    assert show(FILES, "Nope", "A/M", said=said) == (2, b"")
    assert show(FILES, "Nope", "A", said=b"tarnwick-config: Nope: it has no value\n") == (0, b"A/L=$l\n")


def test_a_key_that_files_set_and_unset_or_whose_value_was_dropped_has_no_value(run):
    result = run(in_config("A=1", "A=", "B=${nope:}"), *SHOW, "Config/A", "Config/B")
    said = b"tarnwick-config: Config/A: it has no value\ntarnwick-config: Config/B: it has no value\n"
    assert (result.returncode, result.stdout) == (2, b"")
    assert result.stderr.endswith(said)


def test_nothing_to_show_is_no_failure(show):
    assert show(in_config("A=1", "A=")) == (0, b"")


# --- Failure ---

FAULTY = in_config("Ring=${config:Config/Ring}", "A=1", "Here=h", "Shift=ok;x ${config:Config/Here}", "B=2")
FAULTY_SAID = b"ERROR: Max depth reached, possibly circular reference.\n"


def test_values_that_fail_are_named_and_the_rest_is_shown(show):
    said = FAULTY_SAID + b"tarnwick-config: conf.d/a.conf:2: Config/Ring: " + CIRCLE_SAID
    said += b"tarnwick-config: conf.d/a.conf:5: Config/Shift: " + SHIFT_SAID
    assert show(FAULTY, said=said) == (1, b"Config/A=1\nConfig/Here=h\nConfig/Shift=ok\nConfig/B=2\n")
    assert show(FAULTY, "Config/A") == (0, b"Config/A=1\n")
    assert show(FAULTY, "Nope", "Config/Ring", said=said.split(b"tarnwick-config: conf.d/a.conf:5")[0]
                + b"tarnwick-config: Nope: it has no value\n") == (1, b"")  # fmt: skip


EARLIER = in_config(
    "R=${config:Config/R}", "K=${config:Config/R};cur", "L=a;${config:Config/R}", "L=x${config:Config/K}"
)
EARLIER_SAID = b"".join(
    FAULTY_SAID + b"tarnwick-config: conf.d/a.conf:%s: " % place + CIRCLE_SAID
    for place in (b"2: Config/R", b"3: Config/K", b"4: Config/L")
)


def test_good_values_of_a_key_are_shown_when_others_of_it_fail(show):
    assert show(EARLIER, "--origin", said=EARLIER_SAID) == (
        1,
        b"conf.d/a.conf:3\tConfig/K=cur\nconf.d/a.conf:4\tConfig/L=a\nconf.d/a.conf:5\tConfig/L=xcur\n",
    )


def test_as_written_nothing_fails(show):
    assert show(FAULTY, "--raw")[1].count(b"\n") == 6


def test_a_load_that_fails_shows_nothing(run):
    result = run(in_config("A=1") + " bad\n", *SHOW)
    assert (result.returncode, result.stdout) == (1, b"")
    assert b"ERROR: Invalid configuration in conf.d/a.conf" in result.stderr


@pytest.mark.skipif(not os.path.exists("/dev/full"), reason="no full device here")
@pytest.mark.parametrize("form", ["text", "ini", "json"])
def test_a_full_output_is_status_2_and_said(form, run):
    with open("/dev/full", "wb") as full:
        result = run(in_config("A=1"), *SHOW, f"--format={form}", stdout=full)
    assert (result.returncode, result.stderr) == (2, b"tarnwick-config: cannot write to the standard output\n")


def test_a_reader_that_has_seen_enough_ends_it_quietly(run, directory):
    run(in_config(*(f"K{number}=x" for number in range(100000))), "--version")
    line = " ".join(config_command(*SHOW)) + " | head -n 1"
    result = subprocess.run(["sh", "-c", line], cwd=directory.parent, env=clean_environment(), capture_output=True)
    assert (result.stdout, result.stderr) == (b"Config/K0=x\n", b"")


@pytest.mark.parametrize("option", ["--origin", "--raw", "-z"])
def test_options_of_lines_go_with_lines_alone(option, run):
    result = run(FILES, *SHOW, "--format=ini", option)
    assert (result.returncode, result.stdout) == (64, b"")
    assert result.stderr.startswith(b"tarnwick-config: --origin, --raw and -z go with --format=text alone\n")


# --- One file ---


def test_ini_is_one_file_by_groups(show):
    expected = b"Early=e\n[B]\nK=1\nK=2\nK=3\nHome=$$l/x\n[A]\nL=$$l\n"
    assert show(FILES, "--format=ini") == (0, expected)
    assert show(FILES, "--format=ini", "A") == (0, b"[A]\nL=$$l\n")


def test_ini_keeps_blanks_of_names_and_any_byte_of_values(show):
    text = b"[ x ]\nmy key =a\0\xff\x1b#[\n-.=b  c\n"
    assert show(text, "--format=ini") == (0, text)


def test_nothing_is_written_of_what_no_file_can_hold(show):
    text = in_config(
        "Good=1",
        "Semicolon=${system:echo 'a\\073b'}",
        "Lines=ok;${system:printf 'a\\nb'}",
        "Empty=${config:Config/No}",
        "Ring=${config:Config/Ring}",
    )
    said = b"tarnwick-config: Config/Semicolon cannot be written: it holds ';'\n"
    said += b"tarnwick-config: Config/Lines cannot be written: it holds a line feed\n"
    said += b"tarnwick-config: Config/Empty cannot be written: it is empty\n"
    said += FAULTY_SAID + b"tarnwick-config: Config/Ring cannot be written: " + CIRCLE_SAID
    assert show(text, "--format=ini", said=said) == (1, b"")
    assert show(text, "--format=ini", "Config/Good") == (0, b"[Config]\nGood=1\n")


EARLY_SAID = b" cannot be written: it is read before variables and references are known\n"


@pytest.mark.parametrize("template", ["${HOME}", "${config:Config/A}", "x;${config:Config/A};y", "${env:PATH}"])
@pytest.mark.parametrize("key", ["BaseUid", "Home", "Instance", "UserId", "User"])
def test_no_file_is_written_of_templates_in_keys_that_tell_whose_configuration_it_is(key, template, run):
    text = in_config("A=0", "Home=${HOME}") + f"[GeneratedConfig]\nOther=${{HOME}}\n{key}={template}\n"
    result = run(text, *SHOW, "--format=ini")
    assert (result.returncode, result.stdout) == (1, b"")
    assert result.stderr.endswith(b"tarnwick-config: GeneratedConfig/" + key.encode() + EARLY_SAID)
    assert run(text, *SHOW, "--format=ini", "Config", "GeneratedConfig/Other").returncode == 0


def test_a_file_is_written_of_plain_texts_that_tell_whose_configuration_it_is(show):
    text = b"[GeneratedConfig]\nHome=/a$$b\nHome=/$$\n"
    assert show(text, "--format=ini") == (0, text)


# --- JSON ---


def test_json_has_the_current_value_and_all_values_with_their_origins(show):
    status, output = show(FILES, "--format=json")
    assert status == 0
    keys = valid_json("show", output)["keys"]
    assert [f"{key['group']}/{key['key']}={key['value']}" for key in keys] == [
        "B/K=3",
        "B/Home=$l/x",
        "/Early=e",
        "A/L=$l",
    ]
    assert keys[1]["values"] == [
        {"value": "$l/x", "raw": "${config:A/L}/x", "file": "conf.d/10-a.conf", "line": 3},
    ]
    assert [(value["value"], value["line"]) for value in keys[0]["values"]] == [("1", 2), ("2", 2), ("3", 5)]


def test_json_is_one_key_a_line_and_never_broken(show):
    assert show(FILES, "--format=json", "A")[1].count(b"\n") == 3
    said = FAULTY_SAID + b"tarnwick-config: conf.d/a.conf:2: Config/Ring: " + CIRCLE_SAID
    status, output = show(FAULTY, "--format=json", "Config/Ring", said=said)
    assert (status, valid_json("show", output)) == (1, {"keys": []})


def test_json_has_the_good_values_of_a_key_and_null_for_a_current_one_that_fails(show):
    status, output = show(EARLIER, "--format=json", said=EARLIER_SAID)
    keys = valid_json("show", output)["keys"]
    assert (status, [(key["key"], key["value"]) for key in keys]) == (1, [("K", "cur"), ("L", "xcur")])
    assert [[(value["value"], value["line"]) for value in key["values"]] for key in keys] == [
        [("cur", 3)],
        [("a", 4), ("xcur", 5)],
    ]
    said = FAULTY_SAID + b"tarnwick-config: conf.d/a.conf:2: Config/R: " + CIRCLE_SAID
    ring = in_config("R=a$$;${config:Config/R}")
    status, output = show(ring, "--format=json", said=said)
    [key] = valid_json("show", output)["keys"]
    assert (status, key["value"], [value["value"] for value in key["values"]]) == (1, None, ["a$"])


def test_json_of_nothing_is_an_empty_list(show):
    assert valid_json("show", show(in_config("A="), "--format=json")[1]) == {"keys": []}


def test_json_has_the_bytes_of_texts_that_are_no_utf8(run, directory):
    with open(os.fsencode(directory) + b"/\xff.conf", "wb") as file:
        file.write(b"[Config]\nA=a\xff$$\n")
    [key] = valid_json("show", run({}, *SHOW, "--format=json").stdout)["keys"]
    [value] = key["values"]
    assert base64.b64decode(key["valueBase64"]) == base64.b64decode(value["valueBase64"]) == b"a\xff$"
    assert base64.b64decode(value["rawBase64"]) == b"a\xff$$"
    assert base64.b64decode(value["fileBase64"]) == b"conf.d/\xff.conf"
    assert "keyBase64" not in key
