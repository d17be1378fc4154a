"""`explain` against the boot tool, on generated configurations: the same status, the same value and
the same log records, whatever is wrong with them.

TARNWICK_EXPLAIN_CASES   how many cases (default 200)
"""

import base64
import os

import pytest
from comparing import context_of, on_disk, tool_answer, variables_of
from config_helpers import valid_json
from generator import cases
from hypothesis import given
from support.generated import on_cases
from support.tool import run_config


def explanation(case, root):
    """How the run of explain ended, and what it printed."""
    arguments = [*context_of(case), b"--format=json", b"--", case.group + b"/" + case.key]
    result = run_config("explain", *map(os.fsdecode, arguments), cwd=root, env=variables_of(case))
    return result, valid_json("explain", result.stdout)


def value_of(report):
    if "valueBase64" in report:
        return base64.b64decode(report["valueBase64"])
    return None if report["value"] is None else report["value"].encode()


def outcomes(report):
    return [piece["outcome"] for row in report["assignments"] for piece in row["pieces"]]


def disagreement(case, root):
    """None when both agree, otherwise what they said."""
    with on_disk(case, root):
        tool = tool_answer(case, root)
        result, report = explanation(case, root)
    answer = tool.stdout[:-1] if tool.returncode == 0 else None
    agrees = (result.returncode, report["status"], value_of(report)) == (tool.returncode, tool.returncode, answer)
    has_one_current = outcomes(report).count("current") == int(report["values"] > 0)
    if agrees and has_one_current and result.stderr == tool.stderr:
        return None
    return f"tool: {tool}\nexplain: {result.returncode, result.stderr}\n{report}"


@on_cases("TARNWICK_EXPLAIN_CASES", 200)
@given(case=cases())
def test_explain_ends_as_the_tool_does(root, case):
    case.list_all = False
    found = disagreement(case, root)
    if found is not None:
        pytest.fail(found)
