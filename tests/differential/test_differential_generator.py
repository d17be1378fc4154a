"""The generated cases are worth running: they reach every outcome, and a tool with any one of a
list of mistakes would have been caught. The tool itself is not run here."""

import collections
import os
import tempfile
from dataclasses import replace

import pytest

import naive_tool
from comparing import agrees, difference, expected_answer, is_critical_record, write_case
from generator import make_case
from request_messages import REQUEST_MESSAGES
from shrink import shrink
from types import SimpleNamespace

SAMPLE = 1000


@pytest.fixture(scope="module")
def sample():
    """Some cases on disk with the right answers: (case, root, answer)."""
    with tempfile.TemporaryDirectory(prefix="differential-") as parent:
        cases = []
        for number in range(SAMPLE):
            root = os.fsencode(os.path.join(os.path.realpath(parent), str(number)))
            case = make_case(f"tarnwick:{number}")
            write_case(case, root)
            cases.append((case, root, expected_answer(case, root)))
        yield cases


@pytest.mark.parametrize("message", REQUEST_MESSAGES)
def test_every_message_is_provoked(sample, message):
    assert any(message in answer.stderr for _, _, answer in sample)


def test_every_exit_status_is_provoked_often(sample):
    statuses = collections.Counter(answer.status for _, _, answer in sample)
    assert set(statuses) == {0, 1, 2}
    assert min(statuses.values()) > SAMPLE // 20
    assert sum(1 for _, _, answer in sample if answer.named) > SAMPLE // 50


def test_a_seed_always_gives_the_same_case():
    assert make_case("x:1") == make_case("x:1")
    assert make_case("x:1") != make_case("x:2")


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


def test_a_tool_that_hangs_differs_and_its_case_is_shrunk(tmp_path, monkeypatch):
    tool = tmp_path / "tool"
    tool.write_text("#!/bin/sh\ngrep -rqs endless d2 && exec sleep 1000\nprintf 'end\\n'\n")
    tool.chmod(0o755)
    monkeypatch.setattr("support.tool.TOOL", str(tool))
    monkeypatch.setattr("support.tool.EMULATOR", [])
    monkeypatch.setattr("comparing.TIME_LIMIT_SECONDS", 2)
    root = os.fsencode(tmp_path / "case")
    files = {b"d2/a.conf": b"[A]\nK=endless\nK=end\n"}
    case = replace(make_case("tarnwick:3"), files=files, directories=[b"d2"], group=b"A", key=b"K", list_all=False)
    assert "('hangs', b'', b'')" in difference(case, root)
    smallest = shrink(replace(case, links={}, environment={}), lambda smaller: hangs(smaller, root))
    assert smallest.files == {b"d2/a.conf": b"K=endless"}


def hangs(case, root):
    return "'hangs'" in (difference(case, root) or "")


def test_shrinking_keeps_only_what_makes_the_case_fail():
    case = make_case("tarnwick:3")
    case.files[b"d2/extra.conf"] = b"[A]\nx=1\ny=good;bad\nz=3\n"

    def has_bad_piece(smaller):
        return any(content and b"bad" in content for content in smaller.files.values())

    smallest = shrink(case, has_bad_piece)
    assert smallest.files == {b"d2/extra.conf": b"bad"} or smallest.files == {b"d2/extra.conf": b"y=good;bad"}
    assert smallest.environment == {} and smallest.links == {} and len(smallest.directories) == 1
