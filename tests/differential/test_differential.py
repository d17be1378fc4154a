"""The tool against the naive implementation, on generated configurations.

TARNWICK_DIFFERENTIAL_CASES   how many cases (default 2000)
"""

import pytest
from hypothesis import given
from support.generated import on_cases

from comparing import difference
from generator import cases


@on_cases("TARNWICK_DIFFERENTIAL_CASES", 2000)
@given(case=cases())
def test_the_tool_answers_as_the_naive_implementation_does(root, case):
    answers = difference(case, root)
    if answers is not None:
        pytest.fail(answers)
