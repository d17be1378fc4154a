"""The example of a listener prints where each value comes from."""

import os
import pathlib
import subprocess

import pytest

from support.tool import EMULATOR, clean_environment

ORIGINS = pathlib.Path(os.environ["TARNWICK_BUILD"]) / "examples" / "origins" / "example-origins"


def origins(*arguments, **environment):
    return subprocess.run(
        [*EMULATOR, ORIGINS, *arguments],
        env=clean_environment(**environment),
        capture_output=True,
        check=False,
    )


@pytest.fixture
def directory(tmp_path):
    (tmp_path / "10-a.conf").write_text("[Config]\nName=one;two\nData=${HOME}/x${config:Config/Name}\n")
    (tmp_path / "20-b.conf").write_text("# overrides\n[Config]\nName=\nName=${env:TW_NOT_SET}\n")
    return tmp_path


def test_each_value_is_printed_with_its_file_and_line(directory):
    result = origins(str(directory), HOME="/home/ada")
    expected = [
        "{}/10-a.conf:2: Config/Name = one",
        "{}/10-a.conf:2: Config/Name = two",
        "{}/10-a.conf:3: Config/Data = ${{HOME}}/x${{config:Config/Name}}",
        "    ${{HOME}} is '/home/ada'",
        "    ${{config:Config/Name}} is looked up later",
        "{}/20-b.conf:3: Config/Name = (2 removed)",
        "{}/20-b.conf:4: Config/Name = ${{env:TW_NOT_SET}} (dropped)",
        "    ${{env:TW_NOT_SET}} has no text",
    ]
    assert result.stdout.decode().splitlines() == [line.format(directory) for line in expected]
    assert (result.returncode, result.stderr) == (0, b"")


def test_what_was_read_before_a_failure_is_printed(directory):
    (directory / "15-bad.conf").write_text("bad\n")
    result = origins(str(directory))
    assert result.returncode == 1
    assert result.stdout.count(b"10-a.conf:") == 3
    assert b"20-b.conf" not in result.stdout
    assert result.stderr.startswith(b"ERROR: Could not parse line as key in ")


def test_a_blank_value_is_told_with_its_place(directory):
    (directory / "10-a.conf").write_text("K= \n")
    result = origins(str(directory))
    assert result.returncode == 1
    place = f"{directory}/10-a.conf:1: key 'K' of group ''"
    assert result.stderr.decode().startswith(f"Loading failed: {place}: ")
