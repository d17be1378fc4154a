"""The generated cases are worth running: they reach every outcome, a tool with any one of a list of
mistakes would have been caught, and what is caught is told well."""

import collections
import os
import pathlib
import re
import subprocess
import sys
from types import SimpleNamespace

import pytest
from support.generated import generate

import naive_tool
from comparing import agrees, difference, expected_answer, is_critical_record, write_case
from generator import cases
from request_messages import REQUEST_MESSAGES

SAMPLE = 1000


@pytest.fixture(scope="module")
def sample(root):
    """Some cases on disk with the right answers: (case, root, answer)."""
    written = []
    for number, case in enumerate(generate(cases(), SAMPLE, 1)):
        place = root + b"-%d" % number
        write_case(case, place)
        written.append((case, place, expected_answer(case, place)))
    return written


@pytest.mark.parametrize("message", REQUEST_MESSAGES)
def test_every_message_is_provoked(sample, message):
    assert any(message in answer.stderr for _, _, answer in sample)


def test_every_exit_status_is_provoked_often(sample):
    statuses = collections.Counter(answer.status for _, _, answer in sample)
    assert set(statuses) == {0, 1, 2}
    assert min(statuses.values()) > SAMPLE // 20
    assert sum(1 for _, _, answer in sample if answer.named) > SAMPLE // 50


def test_a_seed_always_gives_the_same_cases():
    assert generate(cases(), 20, 1) == generate(cases(), 20, 1)
    assert generate(cases(), 20, 1) != generate(cases(), 20, 2)


def stays_silent(run, level, message):
    pass


def strips_all(text):
    return text.strip(naive_tool.WHITE_SPACE)


def never_trims(text):
    return text


def forgets_to_unset(run, store, group, key, text, real=naive_tool.take_entry):
    if text != b"":
        real(run, store, group, key, text)


def reads_numbers_as_names(root, directory, real=naive_tool.configuration_files):
    return sorted(real(root, directory), key=lambda path: (len(path), path))


def reads_the_oldest(run, store, group, key):
    return naive_tool.whole_text(run, store, store.values[group, key][0])


def is_case_blind(run, store, name, real=naive_tool.resolve_template):
    return real(run, store, name.upper() if b":" not in name else name)


def trims_positions(run, store, text, real=naive_tool.parse_templates):
    value = real(run, store, text)
    if value is None:
        return None
    return naive_tool.Value(value.text, [(min(at, len(value.text)), *name) for at, *name in value.holes])


MISTAKES = {
    "visits 32 values": ("MOST_VISITS", 32),
    "visits 34 values": ("MOST_VISITS", 34),
    "allows a slash in names": ("NAME_CHARACTERS", naive_tool.NAME_CHARACTERS | set(b"/")),
    "takes NEL for white space": ("WHITE_SPACE", naive_tool.WHITE_SPACE + b"\x85"),
    "takes vertical tab for text": ("WHITE_SPACE", b" \t\n\f\r"),
    "gives blank texts an answer": ("trim", strips_all),
    "does not trim": ("trim", never_trims),
    "mends positions after the trim": ("parse_templates", trims_positions),
    "does not unset": ("take_entry", forgets_to_unset),
    "sorts files by length": ("configuration_files", reads_numbers_as_names),
    "prints the first value": ("last_text", reads_the_oldest),
    "ignores the case of variables": ("resolve_template", is_case_blind),
    "forgets the Instance key": ("GENERATED_KEYS", [b"BaseUid", b"Home", b"UserId", b"User"]),
    "logs nothing": ("Run.log", stays_silent),
}


@pytest.mark.parametrize("mistake", MISTAKES)
def test_a_tool_with_a_mistake_would_be_caught(sample, monkeypatch, mistake):
    name, wrong = MISTAKES[mistake]
    monkeypatch.setattr(f"naive_tool.{name}", wrong)
    assert any(not agrees(expected_answer(case, root), as_a_run(answer)) for case, root, answer in sample)


def as_a_run(answer):
    """An answer in the form that a finished process has."""
    record = b"CRITICAL: " + b" ".join(answer.named) + b"\n" if answer.named else b""
    return SimpleNamespace(returncode=answer.status, stdout=answer.stdout, stderr=answer.stderr + record)


def test_right_answers_agree_with_themselves(sample):
    assert all(agrees(answer, as_a_run(answer)) for _, _, answer in sample)


def test_a_critical_record_is_one_line_that_names_the_place():
    assert is_critical_record(b"CRITICAL: text in f, A/K\n", [b"f", b"A", b"K"])
    assert not is_critical_record(b"CRITICAL: text in f, A\n", [b"f", b"A", b"K"])
    assert not is_critical_record(b"CRITICAL: A K\nERROR: more\n", [b"A", b"K"])
    assert not is_critical_record(b"", [])


def test_a_tool_that_hangs_differs(sample, tmp_path, monkeypatch):
    tool = tmp_path / "tool"
    tool.write_text("#!/bin/sh\nexec sleep 1000\n")
    tool.chmod(0o755)
    monkeypatch.setattr("support.tool.TOOL", str(tool))
    monkeypatch.setattr("support.tool.EMULATOR", [])
    monkeypatch.setattr("comparing.TIME_LIMIT_SECONDS", 2)
    case, _, _ = sample[0]
    assert "('hangs', b'', b'')" in difference(case, os.fsencode(tmp_path / "case"))


def test_a_mistake_is_told_by_its_smallest_case_and_both_answers(other_build):
    tool = other_build(b"'$' must be followed by", b"'$' must be Followed by")
    test = pathlib.Path(__file__).with_name("test_differential.py")
    result = subprocess.run(
        [sys.executable, "-m", "pytest", "-q", "-p", "no:cacheprovider", test],
        env={**os.environ, "TARNWICK_TOOL": tool},
        capture_output=True,
        text=True,
        check=False,
    )
    assert result.returncode == 1, result.stdout + result.stderr
    assert "naive: Answer(status=" in result.stdout and "'$' must be followed by" in result.stdout
    assert "tool:  (" in result.stdout and "'$' must be Followed by" in result.stdout
    assert "@reproduce_failure(" in result.stdout
    lines = [line for content in configuration_in(result.stdout) for line in content.split("\\n")]
    assert len(lines) <= 6 and any("$" in line for line in lines), lines


def configuration_in(report):
    """What is in the configuration files of the case that a report names last."""
    _, case = report.rsplit("Falsifying example: ", 1)
    return re.findall(r"file b'd\d/[^']*': b['\"](.*)['\"]", case)
