"""Fixtures of the fault tests: a place to work in, and what this machine allows."""

import os
import shutil
import stat
import tempfile
from pathlib import Path

import pytest

from support.tool import EMULATOR, TOOL, is_watched
from watching import close_sessions


def pytest_configure(config):
    config.addinivalue_line("markers", "native: under an emulator the fault hits the emulator")


def pytest_collection_modifyitems(items):
    """An emulator that fails says nothing about the tool."""
    for item in items:
        if EMULATOR and item.get_closest_marker("native"):
            item.add_marker(pytest.mark.skip(reason="the fault would hit the emulator"))


@pytest.fixture
def place():
    """An empty directory that every user of the machine may enter; `d` in it is for files. What the
    test starts there leaves neither processes nor files behind."""
    directory = Path(os.path.realpath(tempfile.mkdtemp(prefix="faults-")))
    directory.chmod(0o755)
    (directory / "d").mkdir()
    yield directory
    try:
        close_sessions()
    finally:
        shutil.rmtree(directory)


@pytest.fixture
def as_root():
    if os.geteuid() != 0:
        pytest.skip("needs root")


@pytest.fixture
def plain_build():
    """What watches over a build needs memory, processes and files of its own, where the tool does not."""
    if is_watched(TOOL):
        pytest.skip("limits are for builds without sanitizers and counters")


def is_open_to_everybody(directory):
    return all(place.stat().st_mode & stat.S_IXOTH for place in [directory, *directory.parents])


@pytest.fixture
def tool_for_everybody(place, plain_build):
    """A copy of the tool that a user without rights can start."""
    if EMULATOR and not is_open_to_everybody(Path(EMULATOR[-1])):
        pytest.skip("other users have no way to the emulator's sysroot")
    return shutil.copy(TOOL, place / "tool")
