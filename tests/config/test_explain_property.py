"""`explain` against the boot tool, on generated configurations: the same status, the same value and
the same log records, whatever is wrong with them.

TARNWICK_EXPLAIN_CASES   how many cases of `make test` (default 200)
TARNWICK_EXPLAIN_SLOW_CASES   how many with the slow ones (default 2000)
TARNWICK_EXPLAIN_ONLY    the number of the only case to run
"""

import base64
import os
import pathlib
import shutil
import sys
import tempfile

import pytest
from config_helpers import valid_json
from support.tool import run_config

sys.path.insert(0, str(pathlib.Path(__file__).parents[1] / "differential"))
from comparing import describe, tool_answer, write_case  # noqa: E402
from generator import make_case  # noqa: E402

CASES = int(os.environ.get("TARNWICK_EXPLAIN_CASES", "200"))
SLOW_CASES = int(os.environ.get("TARNWICK_EXPLAIN_SLOW_CASES", "2000"))
ONLY = os.environ.get("TARNWICK_EXPLAIN_ONLY")
BLOCKS = 10


def explanation(case, root):
    """How the run of explain ended, and what it printed."""
    arguments = [b"--user-id", b"%d" % case.user_id, b"--configs", b":".join(case.directories)]
    arguments += [b"--instance", case.instance] + ([b"--log-level", case.level] if case.level else [])
    arguments += [b"--format=json", b"--", case.group + b"/" + case.key]
    environment = {os.fsdecode(name): os.fsdecode(text) for name, text in case.environment.items()}
    result = run_config("explain", *map(os.fsdecode, arguments), cwd=root, env=environment)
    return result, valid_json("explain", result.stdout)


def value_of(report):
    if "valueBase64" in report:
        return base64.b64decode(report["valueBase64"])
    return None if report["value"] is None else report["value"].encode()


def outcomes(report):
    return [piece["outcome"] for row in report["assignments"] for piece in row["pieces"]]


def disagreement(case, root):
    """None when both agree, otherwise what they said. Leaves nothing at `root`."""
    case.list_all = False
    shutil.rmtree(root, ignore_errors=True)
    write_case(case, root)
    tool = tool_answer(case, root)
    result, report = explanation(case, root)
    shutil.rmtree(root)
    answer = tool.stdout[:-1] if tool.returncode == 0 else None
    agrees = (result.returncode, report["status"], value_of(report)) == (tool.returncode, tool.returncode, answer)
    has_one_current = outcomes(report).count("current") == int(report["values"] > 0)
    if agrees and has_one_current and result.stderr == tool.stderr:
        return None
    return f"tool: {tool}\nexplain: {result.returncode, result.stderr}\n{report}"


@pytest.fixture
def root():
    memory = "/dev/shm" if os.access("/dev/shm", os.W_OK) else None
    parent = tempfile.mkdtemp(prefix="explain-", dir=memory)
    yield os.fsencode(os.path.join(os.path.realpath(parent), "case"))
    shutil.rmtree(parent)


def compare(numbers, root):
    for number in numbers:
        case = make_case(f"explain:{number}")
        found = disagreement(case, root)
        assert found is None, f"case {number}\n{describe(case)}\n{found}"


@pytest.mark.parametrize("block", range(1 if ONLY else BLOCKS))
def test_explain_ends_as_the_tool_does(block, root):
    compare([int(ONLY)] if ONLY else range(block, CASES, BLOCKS), root)


@pytest.mark.slow
@pytest.mark.parametrize("block", range(BLOCKS))
def test_the_same_of_many_more_cases(block, root):
    compare(range(CASES + block, SLOW_CASES, BLOCKS), root)
