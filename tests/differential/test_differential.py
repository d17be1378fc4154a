"""The tool against the naive implementation, on thousands of generated configurations.

TARNWICK_DIFFERENTIAL_CASES   how many cases (default 2000)
TARNWICK_DIFFERENTIAL_SEED    where the cases come from (default "tarnwick")
TARNWICK_DIFFERENTIAL_ONLY    the number of the only case to run

A failure prints the seed, the smallest configuration that still differs, and both answers.
"""

import os
import shutil
import tempfile

import pytest

from comparing import describe, difference
from generator import make_case
from shrink import shrink

CASES = int(os.environ.get("TARNWICK_DIFFERENTIAL_CASES", "2000"))
SEED = os.environ.get("TARNWICK_DIFFERENTIAL_SEED", "tarnwick")
ONLY = os.environ.get("TARNWICK_DIFFERENTIAL_ONLY")
BLOCKS = 1 if ONLY else 20


def numbers_of(block):
    return [int(ONLY)] if ONLY else range(block, CASES, BLOCKS)


@pytest.fixture
def root():
    """A directory in memory where there is one: thousands of small files are written below it."""
    memory = "/dev/shm" if os.access("/dev/shm", os.W_OK) else None
    parent = tempfile.mkdtemp(prefix="differential-", dir=memory)
    yield os.fsencode(os.path.join(os.path.realpath(parent), "case"))
    shutil.rmtree(parent)


@pytest.mark.parametrize("block", range(BLOCKS))
def test_the_tool_answers_as_the_naive_implementation_does(block, root):
    for number in numbers_of(block):
        case = make_case(f"{SEED}:{number}")
        answers = difference(case, root)
        if answers is not None:
            smallest = shrink(case, lambda smaller: difference(smaller, root) is not None)
            pytest.fail(
                f"case {number} differs.\n{describe(smallest)}\n{difference(smallest, root)}\n"
                f"before shrinking:\n{describe(case)}\n{answers}",
                pytrace=False,
            )
