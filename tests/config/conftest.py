"""The fixtures of the tests of tarnwick-config: a configuration to write, and a check of it."""

import pathlib
import sys

import pytest
from config_helpers import faults_of
from support.tool import run_config, write_files

# Where the generated cases come from.
sys.path.insert(0, str(pathlib.Path(__file__).parents[1] / "differential"))


@pytest.fixture
def directory(tmp_path):
    """The directory that `check` writes and reads, by the name conf.d."""
    path = tmp_path / "conf.d"
    path.mkdir(mode=0o755)
    return path


@pytest.fixture
def run(directory):
    """Writes files below conf.d (a dict, or the text of a.conf) and runs tarnwick-config there."""

    def run_over(files, *arguments, **options):
        write_files(directory, files if isinstance(files, dict) else {"a.conf": files})
        return run_config(*arguments, cwd=directory.parent, **options)

    return run_over


@pytest.fixture
def check(run):
    """Writes files and returns the status and the faults of `check conf.d`, without their paths."""

    def check_directory(files, *arguments):
        result = run(files, "check", "--format=gcc", "conf.d", *arguments)
        assert result.stderr == b""
        return result.returncode, faults_of(result.stdout)

    return check_directory
