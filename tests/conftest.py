"""What every suite below this directory shares: the `support` package, a mark, and a place in memory."""

import os
import pathlib
import sys
import tempfile

import pytest

sys.path.insert(0, str(pathlib.Path(__file__).parent))


def pytest_configure(config):
    config.addinivalue_line("markers", "slow: run by the longer checks only")


@pytest.fixture(scope="session")
def root():
    """Where a generated case is written to: in memory where that can be, as thousands are."""
    memory = "/dev/shm" if os.access("/dev/shm", os.W_OK) else None
    with tempfile.TemporaryDirectory(prefix="case-", dir=memory) as parent:
        yield os.fsencode(os.path.join(os.path.realpath(parent), "case"))
