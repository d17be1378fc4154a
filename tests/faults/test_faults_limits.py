"""A machine that has run out of descriptors, memory, processes, file size, or a shell."""

import re
import resource
import shutil
import subprocess

import pytest

from support.tool import TOOL
from watching import MEGABYTE, NOBODY, one_critical_record, run

ASK = ("--config", "d", "--key", "K")
ENOUGH_TO_START = {resource.RLIMIT_AS: 128 * MEGABYTE}


def descriptor_counts(end):
    """From the standard three upward; with three alone an emulator cannot open the program."""
    return [pytest.param(3, marks=pytest.mark.native), *range(4, end)]


@pytest.mark.parametrize("count", descriptor_counts(40))
def test_with_few_descriptors_the_value_is_right_or_missing_with_a_reason(place, count):
    (place / "d/a.conf").write_text("[Config]\nK=old\n")
    (place / "d/b.conf").write_text("[Config]\nK=right\n")
    outcome = run(*ASK, place=place, limits={resource.RLIMIT_NOFILE: count})
    if outcome.status == 0:
        assert (outcome.stdout, outcome.stderr) == (b"right\n", b"")
    else:
        assert outcome.status > 0 and outcome.stdout == b"" and outcome.stderr != b""


@pytest.mark.parametrize("source", ["system:echo right", "envfile:names:NAME", "realpath:right"])
@pytest.mark.parametrize("count", descriptor_counts(16))
def test_with_few_descriptors_no_source_fails_without_a_record(place, count, source):
    (place / "right").write_text("")
    (place / "names").write_text("NAME=right\n")
    (place / "d/a.conf").write_text("[Config]\nK=old;${%s}\n" % source)
    outcome = run(*ASK, "--log-level", "debug", place=place, limits={resource.RLIMIT_NOFILE: count})
    if outcome.stdout.endswith(b"right\n"):
        assert (outcome.status, outcome.stderr) == (0, b"")
    else:
        assert outcome.stdout in (b"", b"old\n") and outcome.stderr != b""


def test_enough_descriptors_are_few(place):
    (place / "d/a.conf").write_text("[Config]\nK=${system:echo right}\n")
    outcome = run(*ASK, place=place, limits={resource.RLIMIT_NOFILE: 10})
    assert (outcome.status, outcome.stdout, outcome.stderr) == (0, b"right\n", b"")


INPUTS = {
    "one long value": "K=" + "x" * (8 * MEGABYTE),
    "much output": "K=${system:head -c 8000000 /dev/zero | tr '\\000' x}",
    "many pieces": "K=" + "x;" * 100_000,
    "many keys": "".join(f"K{number}=x\n" for number in range(20_000)) + "K=x",
}


@pytest.mark.native
@pytest.mark.parametrize(
    "shape",
    [
        "one long value",
        "much output",
        pytest.param("many pieces", marks=pytest.mark.slow),
        pytest.param("many keys", marks=pytest.mark.slow),
    ],
)
def test_with_little_memory_the_value_is_right_or_missing_with_a_reason(place, plain_build, shape):
    (place / "d/a.conf").write_text(f"[Config]\n{INPUTS[shape]}\n")
    unlimited = run(*ASK, place=place, small=False)
    assert unlimited.status == 0
    statuses = set()
    for limit in memory_limits(place):
        outcome = run(*ASK, place=place, small=False, limits={resource.RLIMIT_AS: limit})
        statuses.add(outcome.status)
        if outcome.status == 0:
            assert outcome.stdout == unlimited.stdout and outcome.stderr == b""
        else:
            assert outcome.status in (1, 2) and outcome.stdout == b"" and outcome.stderr != b""
    assert {0, 1} <= statuses


def memory_limits(place):
    """Address spaces from one that the tool can just start in to one that is enough for all."""
    starting = next(
        limit
        for limit in range(2 * MEGABYTE, 256 * MEGABYTE, MEGABYTE)
        if run(place=place, limits={resource.RLIMIT_AS: limit}).status == 1
    )
    return [starting + step * MEGABYTE for step in (1, 2, 3, 4, 6, 8, 10, 13, 16, 20, 25, 30, 40, 60, 100)]


@pytest.mark.native
def test_running_out_of_memory_is_told_in_a_record(place, plain_build):
    endless = "yes " + "x" * 1000
    (place / "d/a.conf").write_text("[Config]\nK=${system:%s}\n" % endless)
    outcome = run(*ASK, place=place, small=False, limits=ENOUGH_TO_START)
    assert (outcome.status, outcome.stdout) == (1, b"")
    assert one_critical_record(outcome.stderr, b"Config", b"K")


@pytest.mark.native
def test_a_command_is_waited_for_when_memory_runs_out_under_its_output(place, plain_build):
    endless = "yes " + "x" * 1000
    (place / "d/a.conf").write_text("[Config]\nK=${system:%s || sleep 1 && touch done}\n" % endless)
    outcome = run(*ASK, place=place, small=False, limits=ENOUGH_TO_START, expected_files=["done"])
    assert (outcome.status, outcome.stdout) == (1, b"")
    assert (place / "done").exists()


@pytest.mark.native
def test_without_processes_a_command_fails_with_a_record(place, as_root, tool_for_everybody):
    (place / "d/a.conf").write_text("[Config]\nK=${system:echo hello}\nL=plain\n")
    outcome = run_without_processes(place, tool_for_everybody, "K")
    assert (outcome.status, outcome.stdout) == (2, b"")
    assert cannot_execute(outcome.stderr)


@pytest.mark.native
def test_without_processes_a_plain_value_is_printed(place, as_root, tool_for_everybody):
    (place / "d/a.conf").write_text("[Config]\nL=plain\n")
    outcome = run_without_processes(place, tool_for_everybody, "L")
    assert (outcome.status, outcome.stdout, outcome.stderr) == (0, b"plain\n", b"")


def cannot_execute(text):
    """One record whose reason is the C library's: some of its versions say ENOMEM for any cause."""
    return re.fullmatch(rb"ERROR: Failed to execute 'echo hello': [A-Z][a-z ]+\n", text)


def run_without_processes(place, tool, key):
    """The limit holds for the user, so the tool must not be root; its own process is the only one."""
    command = [tool, "--user-id", "0", "--config", "d", "--key", key]
    return run(place=place, command=command, user=NOBODY, limits={resource.RLIMIT_NPROC: 1})


@pytest.mark.native
def test_without_a_shell_a_command_fails_with_a_record(place, as_root, plain_build):
    copy_tool_with_its_libraries(place)
    (place / "d/a.conf").write_text("[Config]\nK=${system:echo hello}\n")
    command = ["/tool", "--user-id", "0", "--config", "d", "--key", "K"]
    outcome = run(place=place, command=command, root=place)
    assert (outcome.status, outcome.stdout) == (2, b"")
    assert cannot_execute(outcome.stderr)


def copy_tool_with_its_libraries(place):
    """Makes `place` a root directory that holds the tool, what it is linked to, and one account."""
    shutil.copy(TOOL, place / "tool")
    listing = subprocess.run(["ldd", TOOL], check=True, capture_output=True, text=True).stdout
    for library in re.findall(r"(/\S+) \(0x", listing):
        (place / library.lstrip("/")).parent.mkdir(parents=True, exist_ok=True)
        shutil.copy(library, place / library.lstrip("/"))
    (place / "etc").mkdir()
    (place / "etc/passwd").write_text("root:x:0:0:root:/:/bin/sh\n")


def test_an_output_file_that_may_not_grow_is_a_failure(place):
    (place / "d/a.conf").write_text("[Config]\nK=right\n")
    outcome = run(*ASK, place=place, limits={resource.RLIMIT_FSIZE: 0})
    assert outcome.status != 0
    assert outcome.stdout == b""


def test_a_small_stack_is_enough(place):
    chain = "".join(f"N{n}=<${{config:Config/N{n + 1}}}>\n" for n in range(31))
    (place / "d/a.conf").write_text(f"[Config]\n{chain}N31=end\nK=${{config:Config/N0}}\n")
    outcome = run(*ASK, place=place, limits={resource.RLIMIT_STACK: 256 * 1024})
    assert (outcome.status, outcome.stdout, outcome.stderr) == (0, b"<" * 31 + b"end" + b">" * 31 + b"\n", b"")
