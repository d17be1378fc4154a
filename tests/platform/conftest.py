"""Fixtures for the tests of what surrounds the tool; see docs/testing.md for the layers."""

import pathlib
import socket

import pytest

import container
from device import Device, reason_against_namespaces
from journal_socket import received
from support import preloading
from support.tool import EMULATOR


reasons_to_skip = set()


def skip(reason):
    reasons_to_skip.add(reason)
    pytest.skip(reason)


def pytest_terminal_summary(terminalreporter):
    """What cannot run here says why, in one line for all the tests that it concerns."""
    for reason in sorted(reasons_to_skip):
        terminalreporter.write_line(f"skipped: {reason}")


@pytest.fixture
def device(tmp_path):
    """Surroundings of the test's own, in a private mount namespace."""
    reason = reason_against_namespaces()
    if reason:
        skip(reason)
    return Device(tmp_path)


@pytest.fixture
def journal(device):
    """A socket of our own at the journal's address; calling it returns the entries received."""
    (device.login / "journal").mkdir()
    with socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM) as listener:
        listener.bind(str(device.login / "journal" / "socket"))
        listener.setblocking(False)
        yield lambda: list(received(listener))


@pytest.fixture(scope="session")
def machine(tmp_path_factory, pytestconfig):
    """The container with the real services, booted once for all tests that ask for it."""
    if EMULATOR:
        skip("the container with the real services is of this machine's architecture")
    in_debugger = pytestconfig.option.usepdb or pytestconfig.option.trace
    limit = container.DEBUGGER_LIFE_LIMIT_SECONDS if in_debugger else container.LIFE_LIMIT_SECONDS
    try:
        with container.boot(tmp_path_factory.mktemp("machine"), limit) as booted:
            yield booted
    except container.CannotBoot as reason:
        skip(str(reason))


@pytest.fixture(scope="session")
def compile_library(tmp_path_factory):
    """Compiles a file of `native/` to a shared object of the given name; returns its path."""
    sources = pathlib.Path(__file__).with_name("native")

    def compile_to(source, name):
        return preloading.compile_library(sources / source, tmp_path_factory.mktemp("native") / name)

    return compile_to


@pytest.fixture(scope="session")
def property_libraries(compile_library):
    """The directory of a stand-in for the property library."""
    return compile_library("property_stand_in.c", "libandroid-properties.so.1").parent
