"""The cases of `compare_builds` reach every message and every exit status of the tool, and no other
status: that of a sanitizer, for one."""

import os

import pytest

from build_cases import cases
from build_comparing import Bench, Surroundings
from request_messages import REQUEST_MESSAGES
from support.generated import generate
from support.tool import EMULATOR, TOOL

pytestmark = pytest.mark.skipif(bool(EMULATOR), reason="builds are started without the emulator")

SAMPLE = 400

MESSAGES = [
    *REQUEST_MESSAGES,
    b"Failed to get seat0 user: ",
    b"Unsupported GVariant type '",
    b"CRITICAL: Cannot get '",
    b"Invalid logging level '",
    b"Invalid logging target '",
    b"USAGE:",
    b": unknown argument",
    b" needs value.",
    b"Needs at least one argument!",
]


@pytest.fixture(scope="module")
def sample(tmp_path_factory):
    """Some cases with the tool's answers."""
    directory = tmp_path_factory.mktemp("sample")
    before = os.getcwd()
    bench = Bench(directory, Surroundings(directory / "surroundings"))
    yield [(case, bench.answers(case, [TOOL])[0]) for case in generate(cases(), SAMPLE, 1)]
    os.chdir(before)


@pytest.mark.parametrize("message", MESSAGES)
def test_every_message_is_provoked(sample, message):
    assert any(message in answer.output + answer.errors + (answer.log or b"") for _, answer in sample)


def test_every_exit_status_is_provoked_often(sample):
    statuses = [answer.status for _, answer in sample]
    assert set(statuses) == {0, 1, 2}
    assert all(statuses.count(status) > SAMPLE // 20 for status in (0, 1, 2))
