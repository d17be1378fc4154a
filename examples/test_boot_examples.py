"""Runs the boot script that reads many settings at once, and has systemd read its unit."""

import os
import pathlib
import pwd
import shlex
import shutil
import subprocess
import sys

import pytest

ROOT = pathlib.Path(__file__).parent.parent
sys.path.insert(0, str(ROOT / "tests"))
from support.tool import clean_environment, config_command

CONTEXT = ["--user-id", str(os.getuid()), "--instance", "work"]


@pytest.fixture
def start(tmp_path):
    """Runs the script with tarnwick-config on the path."""
    script = tmp_path / "bin" / "tarnwick-config"
    script.parent.mkdir()
    script.write_text(f'#!/bin/sh\nexec {shlex.join(config_command())} "$@"\n')
    script.chmod(0o755)
    environment = clean_environment(containerHostname="inherited", LANG="C.UTF-8")
    environment["PATH"] = f"{script.parent}:{environment['PATH']}"

    def run(*arguments):
        command = [ROOT / "examples" / "start-container", *CONTEXT, *arguments]
        return subprocess.run(
            command, cwd=ROOT, env=environment, capture_output=True, text=True, timeout=120, check=False
        )

    return run


def test_the_script_reads_ten_settings(start):
    result = start("--configs", "examples/vendor.conf.d:examples/user.conf.d")
    assert (result.returncode, result.stderr) == (0, "")
    settings = dict(line.split(" ", 1) for line in result.stdout.splitlines())
    assert len(settings) == 10
    assert settings["hostname"].endswith("-work")
    assert settings["storage"] == f"{settings['root']}/{pwd.getpwuid(os.getuid()).pw_name}/storage"
    assert settings["address"] == "192.168.7.20/24"


def test_a_setting_that_no_file_has_is_empty(start, tmp_path):
    (tmp_path / "conf.d").mkdir()
    (tmp_path / "conf.d" / "a.conf").write_text("[Config]\nArch=it's\n")
    result = start("--config", str(tmp_path / "conf.d"))
    assert (result.returncode, result.stderr) == (0, "")
    assert result.stdout.splitlines()[:2] == ["hostname ", "architecture it's"]


def test_a_configuration_with_a_fault_starts_nothing(start):
    result = start("--config", "examples/broken.conf.d")
    assert (result.returncode, result.stdout) == (1, "")
    assert "Invalid configuration in examples/broken.conf.d" in result.stderr


@pytest.mark.skipif(not shutil.which("systemd-analyze"), reason="systemd is not installed")
def test_systemd_takes_the_unit(tmp_path):
    text = (ROOT / "examples" / "container@.service").read_text()
    unit = tmp_path / "container@work.service"
    unit.write_text(text.replace("/usr/local/libexec/", f"{ROOT}/examples/"))
    result = subprocess.run(
        ["systemd-analyze", "verify", "--man=no", unit], capture_output=True, text=True, timeout=120, check=False
    )
    assert (result.returncode, [line for line in result.stderr.splitlines() if "container" in line]) == (0, [])
