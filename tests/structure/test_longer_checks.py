"""`scripts/check` runs every check whatever fails, and tells at its end what failed, and how."""

import pathlib
import re
import shutil
import subprocess

import pytest

SCRIPT = pathlib.Path(__file__).parents[2] / "scripts" / "check"
PARTS = re.findall(r"^    run (.+)$", SCRIPT.read_text(), re.MULTILINE)


@pytest.fixture
def run_checks(tmp_path):
    """Runs the script in a tree whose checks do nothing but what is given here, by their names."""
    (tmp_path / "scripts").mkdir()
    (tmp_path / "bench").mkdir()
    shutil.copy(SCRIPT, tmp_path / "scripts")

    def run(**checks):
        for part in PARTS:
            program = tmp_path / part.split()[0]
            program.write_text(f"#!/bin/bash\n{checks.get(program.name.replace('-', '_'), '')}\n")
            program.chmod(0o755)
        command = [tmp_path / "scripts" / "check"]
        return subprocess.run(command, capture_output=True, text=True, check=False, timeout=120)

    return run


def outcomes(result):
    """What the table at the end tells of each part."""
    table = result.stdout.partition("=== the longer checks\n")[2]
    return {part: outcome for outcome, part in re.findall(r"^(\w+) +\d+ s \(.*?\)  (.+)$", table, re.MULTILINE)}


def test_all_checks_run_and_pass(run_checks):
    result = run_checks()
    assert result.returncode == 0
    assert outcomes(result) == dict.fromkeys(PARTS, "passed")
    assert "=== the end of" not in result.stdout


@pytest.mark.parametrize("part", ["scripts/check-static", "scripts/check-install"], ids=["first", "beside"])
def test_a_check_that_fails_is_told_once_more_with_its_last_lines(part, run_checks):
    name = part.rpartition("/")[2].replace("-", "_")
    result = run_checks(**{name: "seq 1000 1029; echo wrong >&2; exit 3"})
    assert result.returncode == 1
    assert outcomes(result) == {**dict.fromkeys(PARTS, "passed"), part: "FAILED"}
    before_the_table = result.stdout.partition("\n=== the longer checks\n")[0]
    assert before_the_table.splitlines()[-21:] == [f"=== the end of {part}", *map(str, range(1011, 1030)), "wrong"]


def test_the_row_beside_costs_a_check_no_processor_time(run_checks):
    result = run_checks(
        test_arm="for ((i = 0; i < 500000; i++)); do :; done; touch burned",
        check_abi="until [ -e burned ]; do sleep 0.5; done; sleep 1",
    )
    assert re.search(r"\(0 \+ 0 s\)  scripts/check-abi$", result.stdout, re.MULTILINE), result.stdout
