"""The packages on a booted ARM machine. The checks stand in machine/srv/checks/suites and run there."""

import re

import pytest

from serial_console import ROOT

SUITES = ROOT / "tests" / "boot" / "machine" / "srv" / "checks" / "suites"
CHECKS = [
    name
    for suite in sorted(SUITES.iterdir())
    for name in re.findall(r"^test_([a-z0-9_]*)\(\) \{$", suite.read_text(), flags=re.MULTILINE)
]


@pytest.mark.parametrize("check", CHECKS)
def test_on_the_machine(check, machine):
    result = machine.result(check)
    if result is None:
        pytest.fail(f"the machine told nothing of this check\n{machine.end_of_log()}", pytrace=False)
    if result.how == "skipped":
        pytest.skip(result.text)
    if result.how == "failed":
        pytest.fail(f"{result.text}\n{machine.end_of_log()}", pytrace=False)


def test_the_machine_powers_off_when_it_is_told_to(machine):
    assert machine.end() == 0, machine.end_of_log()
