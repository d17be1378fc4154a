"""Runs examples/show the way `make run` does and holds its answers against the example files."""

import os
import pathlib
import pwd
import re
import shlex
import subprocess
import sys

import pytest

ROOT = pathlib.Path(__file__).parent.parent
sys.path.insert(0, str(ROOT / "tests"))
from support.tool import clean_environment, tool_command


@pytest.fixture(scope="module")
def shown(tmp_path_factory):
    """What the script prints. The tool gets its installed name, under an emulator too."""
    tool = tmp_path_factory.mktemp("bin") / "tarnwick-parse-config"
    tool.write_text(f'#!/bin/sh\nexec {shlex.join(tool_command())} "$@"\n')
    tool.chmod(0o755)
    result = subprocess.run(
        [ROOT / "examples" / "show", tool],
        cwd="/",
        env=clean_environment(LANG="C.UTF-8"),
        stdin=subprocess.DEVNULL,
        stdout=subprocess.PIPE,
        stderr=subprocess.STDOUT,
        timeout=300,
        check=False,
    )
    output = result.stdout.decode()
    assert result.returncode == 0, output
    return output


def answers(shown, pattern):
    """The (answer, status) pairs of the requests whose command line ends in `pattern`."""
    found = re.findall(rf"^\$ .*{pattern}\n((?:[^$\[].*\n)*)\[exit status (\d)\]$", shown, flags=re.MULTILINE)
    return [(answer.rstrip("\n"), int(status)) for answer, status in found]


def test_the_user_overrides_the_model_which_overrides_the_family(shown):
    assert answers(shown, "vendor.conf.d --group Audio --key BufferSizeOutFast") == [("384", 0)]
    assert answers(shown, "user.conf.d --group Audio --key BufferSizeOutFast") == [("192", 0)]
    assert answers(shown, "--list --group Audio --key BufferSizeOutFast") == [("256;384;192", 0)]


def test_mounts_of_all_files_add_up(shown):
    home = pwd.getpwuid(os.getuid()).pw_dir
    [(mounts, status)] = answers(shown, "--list --key Mounts")
    assert status == 0
    assert mounts.split(";")[1:] == [
        "tmpfs cache tmpfs mode=0755 0 0",
        f"{home}/Music media/music none bind 0 0",
    ]


def test_a_value_draws_on_keys_that_later_files_set(shown):
    assert answers(shown, "vendor.conf.d --group Network --key NetConfig") == [("tarn0,10.8.0.2/24,10.8.0.1", 0)]
    assert answers(shown, "user.conf.d --group Network --key NetConfig") == [("tarn0,192.168.7.20/24,192.168.7.1", 0)]


def test_an_environment_variable_wins_over_its_fallback(shown):
    assert answers(shown, "--key LanguageOverride") == [("fi_FI.UTF-8", 0), ("en_US.UTF-8", 0)]


def test_each_source_that_a_pc_has_gives_its_answer(shown):
    assert answers(shown, "--key Arch") == [(os.uname().machine, 0)]
    assert answers(shown, "--key BatteryCapacity") == [("7040", 0)]
    assert answers(shown, "--key WaylandSocketPath") == [(f"/run/user/{os.getuid()}/wayland-0", 0)]
    assert answers(shown, "--key OnScreenKeyboardEnabled") == [("true;false", 0)]


def test_unset_and_unknown_keys_have_status_2_and_no_output(shown):
    assert answers(shown, "user.conf.d --group Audio --key UsbHostProxy") == [("", 2)]
    assert answers(shown, "--key CrashLoggerLogLevel") == [("", 2)]


def test_the_syntax_error_is_on_the_line_that_its_character_names(shown):
    [(records, status)] = answers(shown, "broken.conf.d --key Hostname")
    lines = (ROOT / "examples/broken.conf.d/20-broken.conf").read_text().splitlines()
    assert status == 1
    assert records.splitlines() == [
        "ERROR: Could not parse line as key in examples/broken.conf.d/20-broken.conf (*): " f"'{lines[ord('*') - 1]}'",
        "ERROR: Failed to load config from 'examples/broken.conf.d/20-broken.conf'",
        "ERROR: Invalid configuration in examples/broken.conf.d/20-broken.conf",
    ]
