"""The fixtures of the end-to-end tests: a configuration to write, and requests to put to it."""

import pathlib
import tempfile

import pytest
from e2e_helpers import request
from support.tool import write_files


@pytest.fixture
def directory(tmp_path):
    """The configuration directory that `ask` reads."""
    path = tmp_path / "conf"
    path.mkdir()
    return path


@pytest.fixture
def ask(directory):
    """Writes files (a dict, or the text of a.conf) and asks for key K; more arguments override."""

    def ask_for_key(files, *arguments, **options):
        write_files(directory, files if isinstance(files, dict) else {"a.conf": files})
        return request("--config", str(directory), "--user-id", "0", "--key", "K", *arguments, **options)

    return ask_for_key


@pytest.fixture
def lower_case_directory():
    """A directory whose whole path is lower case, since log files are opened in lower case."""
    with tempfile.TemporaryDirectory(dir="/tmp") as path:
        yield pathlib.Path(path)
