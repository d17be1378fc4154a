"""The scripts that a newcomer meets first: what they say when this machine lacks something."""

import stat
import subprocess

import pytest

from install_commands import ROOT

SCRIPTS = ROOT / "scripts"


@pytest.fixture
def machine(tmp_path):
    """Runs a script on a pretended machine: programs are those given here, and a few of the real one."""
    programs = tmp_path / "programs"
    programs.mkdir()
    for name in ("awk", "cat", "cmp", "dirname", "env", "readlink", "sh", "sort", "bash"):
        (programs / name).symlink_to(f"/usr/bin/{name}")

    def run_there(*command, **pretended):
        for name, text in pretended.items():
            program = programs / name.replace("_", "-")
            program.write_text(f"#!/bin/sh\n{text}\n")
            program.chmod(program.stat().st_mode | stat.S_IXUSR)
        return subprocess.run(
            command, env={"PATH": str(programs)}, cwd=tmp_path, capture_output=True, text=True, check=False
        )

    return run_there


MISSING = "echo 'error: Unmet build dependencies: scdoc' >&2; exit 1"


def test_without_root_and_sudo_the_missing_packages_and_the_way_out_are_named(machine):
    result = machine(SCRIPTS / "install-build-deps", "test", id="echo 1000", dpkg_checkbuilddeps=MISSING)
    assert result.returncode == 1
    assert "Unmet build dependencies: scdoc" in result.stderr
    assert "install sudo, or run as root: scripts/install-build-deps test" in result.stderr


def test_packages_are_asked_for_by_the_profiles_of_all_purposes(machine):
    result = machine(
        SCRIPTS / "install-build-deps",
        "package",
        "arm",
        dpkg_checkbuilddeps='echo "$@"; exit 1',
        id="echo 0",
        apt_get='echo "$@"',
    )
    profiles = "nocheck,pkg.tarnwick-parse-config.package,pkg.tarnwick-parse-config.arm"
    assert result.returncode == 0
    assert f"--build-profiles={profiles} build-dep ./" in result.stdout


@pytest.mark.parametrize("words", [[], ["tests"], ["build", "tests"]])
def test_a_purpose_that_is_not_known_shows_the_usage(machine, words):
    result = machine(SCRIPTS / "install-build-deps", *words)
    assert result.returncode == 2
    assert result.stderr.startswith("usage: install-build-deps ")


@pytest.mark.parametrize(
    ("command", "purpose"),
    [(["try-bare-machine", "make", "test"], "bare"), (["make-sysroot", "arm64", "x"], "arm")],
)
def test_a_script_that_needs_mmdebstrap_says_how_to_get_it(machine, command, purpose):
    result = machine(SCRIPTS / command[0], *command[1:], id="echo 0")
    assert result.returncode == 1
    assert result.stderr == (f"{command[0]}: needs mmdebstrap: run scripts/install-build-deps {purpose}\n")


def test_without_root_and_sudo_the_machine_that_boots_is_not_made_and_the_way_out_is_named(machine):
    result = machine(SCRIPTS / "make-boot-base", "arm64", "base", id="echo 1000")
    assert result.returncode == 1
    assert result.stderr.endswith("install sudo, or run as root: scripts/make-boot-base arm64 base\n")
    assert "not found" not in result.stderr


LOG = r"""
SKIPPED [3] tests/faults/test_faults_limits.py:20: limits do not hold here
SKIPPED [21] tests/platform/conftest.py:28: booting a container needs root
SKIPPED [2] tests/faults/test_faults_limits.py:31: limits do not hold here
/tree/tests/unit/value_sources_test.cpp:203: Skipped
the sanitizer needs a descriptor itself
"""


@pytest.mark.parametrize("status", [0, 8])
def test_what_was_left_out_is_told_with_its_reason_at_the_end(machine, tmp_path, status):
    directory = tmp_path / "build" / "Testing" / "Temporary"
    directory.mkdir(parents=True)
    (directory / "LastTest.log").write_text(LOG)
    result = machine(SCRIPTS / "run-tests", "build", ctest=f"echo tested; exit {status}")
    assert result.returncode == status
    assert result.stdout.splitlines() == [
        "tested",
        "",
        "Left out on this machine:",
        "  5 in tests/faults/test_faults_limits.py: limits do not hold here",
        "  21 in tests/platform/conftest.py: booting a container needs root",
        "  1 in unit tests: the sanitizer needs a descriptor itself",
    ]


def test_nothing_is_said_when_nothing_was_left_out(machine, tmp_path):
    directory = tmp_path / "build" / "Testing" / "Temporary"
    directory.mkdir(parents=True)
    (directory / "LastTest.log").write_text("12 passed\n")
    assert machine(SCRIPTS / "run-tests", "build", ctest="echo tested").stdout == "tested\n"


def test_every_package_of_a_profile_has_a_purpose_that_installs_it():
    control = (ROOT / "debian" / "control").read_text()
    script = (SCRIPTS / "install-build-deps").read_text()
    for word in control.replace("<", " ").replace(">", " ").split():
        if word.startswith("pkg.tarnwick-parse-config."):
            assert word.rpartition(".")[2] in script
