"""The JSON of each command fits the schema that is installed for it, and the schema fits nothing else."""

import base64
import copy

import jsonschema
import pytest
from config_helpers import in_config, schema_of, valid_json
from support.tool import run_config
from test_check_ids import ROWS

NO_UTF8 = b"\xff\xc3\xa9\xc0"


def report_of(command, result):
    """The JSON of a run that ended as runs do, and not by what watches over it."""
    assert result.returncode in (0, 1, 2), result.stderr
    return valid_json(command, result.stdout)


def listed_ids():
    return {line.split("\t")[0] for line in run_config("check", "--list-ids").stdout.decode().splitlines()}


def faults_of_files(directory):
    """Makes the faults of files and directories as a whole; returns the paths that have them."""
    others = directory / "others"
    (others / "folder.conf").mkdir(parents=True)
    others.chmod(0o777)
    for name in ("empty", "d[x]", "dx"):
        (directory / name).mkdir()
    return "conf.d/others", "conf.d/empty", "conf.d/d[x]"


def test_reports_with_faults_of_every_kind_fit_the_schema(run, directory):
    reports = []
    for number, (_, files, _, _) in enumerate(ROWS):
        files = files if isinstance(files, dict) else {"a.conf": files}
        run({f"{number}/{name}": content for name, content in files.items()}, "files")
        result = run_config("check", "--format=json", f"conf.d/{number}", cwd=directory.parent)
        reports.append(report_of("check", result))
    for path in faults_of_files(directory):
        reports.append(report_of("check", run({}, "check", "--format=json", path)))
    assert {fault["id"] for report in reports for fault in report["faults"]} == listed_ids()
    assert {fault["line"] is None for report in reports for fault in report["faults"]} == {True, False}


def test_the_schema_knows_the_ids_that_are_listed():
    assert set(schema_of("check").schema["$defs"]["id"]["enum"]) == listed_ids()


@pytest.mark.parametrize("arguments", [["conf.d"], ["nowhere"], ["nowhere", "conf.d", "-"]])
def test_a_report_fits_whatever_can_be_read(arguments, run):
    result = run(in_config("Arch=$"), "check", "--format=json", *arguments)
    report = report_of("check", result)
    assert (report["errors"], report["warnings"]) == (int("conf.d" in arguments), 0)


def test_texts_that_are_no_utf8_have_their_bytes_beside_them(run, tmp_path):
    name = NO_UTF8 + b".conf"
    (tmp_path / "conf.d" / "a.conf").write_bytes(b"[Config]\nArch=" + NO_UTF8 + b"$\nArch=${config:A/" + NO_UTF8 + b"}")
    with open(bytes(tmp_path / "conf.d") + b"/" + name, "wb") as file:
        file.write(b"Arch\n")
    report = report_of("check", run({}, "check", "--format=json", "conf.d"))
    read_back = {
        (member, base64.b64decode(fault[member])) for fault in report["faults"] for member in fault if "B" in member
    }
    assert ("pathBase64", b"conf.d/" + name) in read_back
    assert ("sourceBase64", b"Arch=" + NO_UTF8 + b"$") in read_back
    assert {fault["path"] for fault in report["faults"]} == {"conf.d/a.conf", "conf.d/\ufffd\u00e9\ufffd.conf"}


def test_bytes_stand_beside_no_other_text(run):
    report = report_of("check", run(in_config("Arch=\u00e9\0$"), "check", "--format=json", "conf.d"))
    assert [member for fault in report["faults"] for member in fault if "Base64" in member] == []


def test_lists_of_files_fit_the_schema(run, tmp_path):
    with open(bytes(tmp_path / "conf.d") + b"/" + NO_UTF8 + b".conf", "wb"):
        pass
    report = report_of("files", run({"a.conf": "", "b.ini": ""}, "files", "--format=json", "conf.d"))
    assert [file["isRead"] for file in report["files"]] == [True, False, True]
    assert base64.b64decode(report["files"][2]["pathBase64"]) == b"conf.d/" + NO_UTF8 + b".conf"
    assert report_of("files", run({}, "files", "--format=json", "nowhere")) == {"files": []}


def explained(run, files, *arguments, **options):
    result = run(files, "explain", "--format=json", "--config=conf.d", "--user-id=0", *arguments, **options)
    return valid_json("explain", result.stdout)


def members(report, name):
    """Every value of the member, at any depth."""
    if isinstance(report, list):
        return [value for each in report for value in members(each, name)]
    if not isinstance(report, dict):
        return []
    own = [report[name]] if name in report else []
    return own + members(list(report.values()), name)


def test_explanations_with_all_that_can_become_of_a_value_fit_the_schema(run):
    lines = ["K=1", "K=", "K=;${env:E_NONE}${config:A/B};2", "K=${USER}${config:Config/L}${config:A/B}", "L=1"]
    lines += [f"K={'${config:Config/L}' * 33}", "K=${config:Config/K}"]
    reports = [explained(run, in_config(*lines), "K"), explained(run, in_config("K=1", "K= "), "K")]
    reports.append(explained(run, in_config("K=${env:E_NONE}${config:A/B}", "K=${config:A/B}${env:E_NONE}"), "K"))
    reports.append(explained(run, in_config("K=1", "oops"), "K"))
    reports.append(explained(run, "[GeneratedConfig]\nUserId=0\nUser=\nHome=/\nBaseUid=1\nUser=u\n", "Nope"))
    reports.append(explained(run, "[GeneratedConfig]\nUserId=0\n", "GeneratedConfig/UserId"))
    defined = schema_of("explain").schema["$defs"]
    assert set(members(reports, "outcome")) == set(defined["piece"]["properties"]["outcome"]["enum"])
    assert set(members(reports, "kind")) == set(defined["template"]["properties"]["kind"]["enum"])
    assert set(members(reports, "status")) == {0, 1, 2}


def test_an_explanation_has_the_bytes_of_texts_that_are_no_utf8(run):
    text = b"[Config]\nK=" + NO_UTF8 + b"${system:printf '\\377'}\n"
    report = explained(run, {"a.conf": text}, "K")
    assert base64.b64decode(report["valueBase64"]) == NO_UTF8 + b"\xff"
    assert len(members(report, "textBase64")) == 3


@pytest.mark.parametrize("change", [{"status": 3}, {"value": None}, {"values": 0}, {"near": [1]}, {"other": 1}])
def test_the_schema_takes_no_explanation_that_is_none(change, run):
    report = explained(run, in_config("K=1"), "K")
    with pytest.raises(jsonschema.ValidationError):
        schema_of("explain").validate({**report, **change})


FAULT = {
    "path": "a.conf",
    "line": 1,
    "column": 2,
    "lastColumn": 2,
    "severity": "error",
    "id": "nul-byte",
    "message": "m",
    "hint": None,
    "source": "A",
    "sourceColumn": 1,
}


@pytest.mark.parametrize(
    "change",
    [
        {"line": None},
        {"line": 0},
        {"source": None},
        {"severity": "note"},
        {"id": "other"},
        {"hint": 1},
        {"sourceBase64": "A"},
        {"other": 1},
    ],
)
def test_the_schema_takes_no_report_that_is_none(change):
    report = {"faults": [FAULT], "errors": 1, "warnings": 0, "files": 1}
    schema_of("check").validate(report)
    broken = copy.deepcopy(report)
    broken["faults"][0].update(change)
    with pytest.raises(jsonschema.ValidationError):
        schema_of("check").validate(broken)


@pytest.mark.parametrize("file", [{"isRead": True, "reason": "r"}, {"isRead": False, "reason": None}, {"isRead": True}])
def test_the_schema_takes_no_list_that_is_none(file):
    with pytest.raises(jsonschema.ValidationError):
        schema_of("files").validate({"files": [{"path": "a", **file}]})
