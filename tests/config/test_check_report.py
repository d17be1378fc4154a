"""The forms of the report, and the exit status."""

import base64
import json

import pytest
from config_helpers import in_config

TWO_FAULTS = in_config("IPV4Address 10.8.0.2/24", "Hostnmae=tablet")


def test_the_text_form_shows_place_line_and_count(run):
    result = run({"20-broken.conf": TWO_FAULTS, "10.conf": ""}, "check", "conf.d")
    assert result.stdout.decode().splitlines() == [
        "conf.d/20-broken.conf:2:12: error: expected '=' after the key [key-without-value]",
        "    2 | IPV4Address 10.8.0.2/24",
        "      |            ^",
        "conf.d/20-broken.conf:3:1: warning: no reader knows the key 'Hostnmae'; did you mean 'Hostname'? [unknown-key]",  # noqa: E501
        "    3 | Hostnmae=tablet",
        "      | ^~~~~~~~",
        "1 error, 1 warning in 2 files",
    ]
    assert (result.returncode, result.stderr) == (1, b"")


def test_without_a_fault_there_is_no_output(run):
    result = run(in_config("Arch=x"), "check", "conf.d")
    assert (result.returncode, result.stdout, result.stderr) == (0, b"", b"")


@pytest.mark.parametrize(
    "text,summary",
    [("[Nobody]\n", "1 warning in 1 file"), (" \n \n", "2 errors in 1 file")],
)
def test_the_summary_counts_what_there_is(text, summary, run):
    assert run(text, "check", "conf.d").stdout.decode().splitlines()[-1] == summary


def test_a_fault_of_a_file_has_no_line(run, directory):
    (directory / "a.conf").mkdir()
    assert run({}, "check", "conf.d").stdout.decode().splitlines() == [
        "conf.d/a.conf/:1:1: error: cannot be read: it is a directory [unreadable]",
        "1 error in 1 file",
    ]


def test_the_form_for_editors_has_one_line_a_fault(run):
    lines = run(TWO_FAULTS, "check", "--format=gcc", "conf.d").stdout.decode().splitlines()
    assert [line.split(" ")[0] for line in lines] == ["conf.d/a.conf:2:12:", "conf.d/a.conf:3:1:"]


def test_the_form_for_programs_is_one_object(run):
    result = run(TWO_FAULTS, "check", "--format=json", "conf.d")
    report = json.loads(result.stdout)
    assert (report["errors"], report["warnings"], report["files"]) == (1, 1, 1)
    assert report["faults"][1] == {
        "path": "conf.d/a.conf",
        "line": 3,
        "column": 1,
        "lastColumn": 8,
        "severity": "warning",
        "id": "unknown-key",
        "message": "no reader knows the key 'Hostnmae'; did you mean 'Hostname'?",
        "hint": None,
        "source": "Hostnmae=tablet",
        "sourceColumn": 1,
    }
    assert json.loads(run("", "check", "--format=json", "conf.d").stdout) == {
        "faults": [],
        "errors": 0,
        "warnings": 0,
        "files": 1,
    }


def test_json_has_null_where_there_is_no_line(run, directory):
    (directory / "b.conf").mkdir()
    [fault] = json.loads(run({}, "check", "--format=json", "conf.d").stdout)["faults"]
    assert [fault[name] for name in ("line", "column", "lastColumn", "source")] == [None] * 4


def test_json_has_the_bytes_of_a_text_that_is_no_utf8(run):
    line = b"Arch=\xff\xc3\xa9$"
    [fault, _] = json.loads(run(b"[Config]\n" + line + b"\n", "check", "--format=json", "conf.d").stdout)["faults"]
    assert fault["source"] == "Arch=\ufffd\u00e9$"
    assert base64.b64decode(fault["sourceBase64"]) == line
    assert "messageBase64" not in fault


def test_warnings_are_no_failure_unless_they_are_asked_to_be(run):
    assert run("[Nobody]\n", "check", "conf.d").returncode == 0
    assert run("[Nobody]\n", "check", "--strict", "conf.d").returncode == 1


def test_what_is_ignored_does_not_count(run):
    arguments = ["check", "--strict", "--ignore=key-without-value", "--ignore", "nul-byte,unknown-key", "conf.d"]
    result = run(TWO_FAULTS, *arguments)
    assert (result.returncode, result.stdout) == (0, b"")


def test_a_path_that_is_missing_outweighs_errors(run):
    assert run(TWO_FAULTS, "check", "conf.d", "nowhere").returncode == 2


def test_paths_are_one_configuration_in_their_order(run):
    files = {"d1/a.conf": in_config("Arch=${config:Config/Hostname}"), "d2/a.conf": in_config("Hostname=x")}
    assert run(files, "check", "--strict", "conf.d/d1", "conf.d/d2").returncode == 0
    assert run(files, "check", "--strict", "conf.d/d1").returncode == 1
    unset_last = {**files, "d0/a.conf": in_config("Hostname=")}
    assert run(unset_last, "check", "--strict", "conf.d/d0", "conf.d/d1", "conf.d/d2").returncode == 0
    assert run(unset_last, "check", "--strict", "conf.d/d1", "conf.d/d2", "conf.d/d0").returncode == 1


def test_the_standard_input_is_a_path(run, tmp_path):
    (tmp_path / "input").write_text(TWO_FAULTS)
    with open(tmp_path / "input", "rb") as file:
        result = run({}, "check", "--format=gcc", "-", stdin=file)
    assert result.stdout.startswith(b"-:2:12: error: ")


def test_ids_are_listed_with_severity_and_meaning(run):
    lines = run({}, "check", "--list-ids").stdout.decode().splitlines()
    rows = [line.split("\t") for line in lines]
    assert ["unknown-key", "warning", "a key outside the vocabulary of its group"] in rows
    assert all(len(row) == 3 and row[1] in ("error", "warning", "error,warning") and row[2] for row in rows)
    assert [row[0] for row in rows if "," in row[1]] == ["reference-shift"]
    assert len({row[0] for row in rows}) == len(rows) == 36


def test_a_long_line_is_cut_around_the_fault(run):
    lines = run(in_config("Arch=" + "\u00e9" * 500 + "$." + "y" * 500), "check", "conf.d").stdout.decode().splitlines()
    shown, mark = lines[1], lines[2]
    assert shown.startswith("    2 | ...\u00e9") and shown.endswith("y...")
    assert shown[mark.index("^")] == "$"
