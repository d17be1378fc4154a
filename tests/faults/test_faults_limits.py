"""A machine that has run out of descriptors, memory, processes, file size, or a shell."""

import os
import re
import resource
import shutil
import subprocess

import pytest

from support.tool import TOOL
from watching import MEGABYTE, NOBODY, RECORD, is_told_in_records, one_critical_record, run

ASK = ("--config", "d", "--key", "K")
ENOUGH_TO_START = {resource.RLIMIT_AS: 128 * MEGABYTE}
NO_FILE_GROWS = {resource.RLIMIT_FSIZE: 0}


@pytest.mark.native
def test_with_three_descriptors_the_program_loader_gives_up(place):
    (place / "d/a.conf").write_text("[Config]\nK=right\n")
    outcome = run(*ASK, place=place, limits={resource.RLIMIT_NOFILE: 3})
    assert (outcome.status, outcome.stdout) == (127, b"")
    assert re.fullmatch(rb"[^\n]+: error while loading shared libraries: [^\n]+\n", outcome.stderr)


@pytest.mark.parametrize("count", range(4, 40))
def test_with_four_descriptors_or_more_a_plain_value_is_right(place, count):
    (place / "d/a.conf").write_text("[Config]\nK=old\n")
    (place / "d/b.conf").write_text("[Config]\nK=right\n")
    outcome = run(*ASK, place=place, limits={resource.RLIMIT_NOFILE: count})
    assert (outcome.status, outcome.stdout, outcome.stderr) == (0, b"right\n", b"")


# Each source, and how many descriptors are enough for it: beside the three and the file that is
# being read, a command has both ends of a pipe.
SOURCES = {"realpath:right": 4, "envfile:names:NAME": 5, "system:echo right": 6}


@pytest.mark.parametrize("source", SOURCES)
@pytest.mark.parametrize("count", range(4, 16))
def test_with_few_descriptors_a_source_gives_its_value_or_a_record(place, count, source):
    (place / "right").write_text("")
    (place / "names").write_text("NAME=right\n")
    (place / "d/a.conf").write_text("[Config]\nK=old;${%s}\n" % source)
    outcome = run(*ASK, "--log-level", "debug", place=place, limits={resource.RLIMIT_NOFILE: count})
    if count < SOURCES[source]:
        assert (outcome.status, outcome.stdout) == (0, b"old\n")
        assert is_told_in_records(outcome.stderr)
    else:
        right = f"{place}/right\n" if source == "realpath:right" else "right\n"
        assert (outcome.status, outcome.stdout, outcome.stderr) == (0, right.encode(), b"")


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
    unlimited = run(*ASK, place=place)
    assert unlimited.status == 0
    statuses = set()
    for limit in memory_limits(place):
        outcome = run(*ASK, place=place, limits={resource.RLIMIT_AS: limit})
        statuses.add(outcome.status)
        if outcome.status == 0:
            assert outcome.stdout == unlimited.stdout and outcome.stderr == b""
        else:
            assert outcome.status in (1, 2) and outcome.stdout == b""
            assert has_record(outcome.stderr)
    assert {0, 1} <= statuses


def has_record(text):
    """The commands that the tool runs may complain as well: the limit is theirs too."""
    return any(RECORD.match(line) for line in text.splitlines())


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
    outcome = run(*ASK, place=place, limits=ENOUGH_TO_START)
    assert (outcome.status, outcome.stdout) == (1, b"")
    assert one_critical_record(outcome.stderr, b"Config", b"K")


@pytest.mark.native
def test_a_command_is_waited_for_when_memory_runs_out_under_its_output(place, plain_build):
    endless = "yes " + "x" * 1000
    (place / "d/a.conf").write_text("[Config]\nK=${system:%s || sleep 1 && touch done}\n" % endless)
    outcome = run(*ASK, place=place, limits=ENOUGH_TO_START, expected_files=["done"])
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


@pytest.fixture
def pipe():
    """Both ends of a pipe, which no limit on the size of files is about."""
    reader, writer = os.pipe()
    with open(reader, "rb") as reading, open(writer, "wb") as writing:
        yield reading, writing


def text_of(pipe):
    reading, writing = pipe
    writing.close()
    return reading.read()


def test_an_output_file_that_may_not_grow_is_a_failure_with_a_record(place, plain_build, pipe):
    (place / "d/a.conf").write_text("[Config]\nK=right\n")
    outcome = run(*ASK, place=place, stderr=pipe[1], limits=NO_FILE_GROWS)
    assert (outcome.status, outcome.stdout) == (1, b"")
    assert one_critical_record(text_of(pipe))


def test_a_log_file_that_may_not_grow_does_not_harm_the_value(place, plain_build, pipe):
    (place / "d/a.conf").write_text("[Config]\nK=right\nL=${system:exit 3}\n")
    log = {"TARNWICK_LOGGING_TARGET": f"{place}/log"}
    outcome = run(*ASK, place=place, env=log, stdout=pipe[1], limits=NO_FILE_GROWS, expected_files=["log"])
    assert (outcome.status, text_of(pipe), outcome.stderr) == (0, b"right\n", b"")
    assert (place / "log").read_bytes() == b""


def test_a_command_whose_file_may_not_grow_dies_of_it(place, plain_build, pipe):
    (place / "file").write_text("")
    (place / "d/a.conf").write_text("[Config]\nK=early;${system:echo x > file || true && echo survived}\n")
    outcome = run(*ASK, place=place, stdout=pipe[1], limits=NO_FILE_GROWS)
    assert (outcome.status, text_of(pipe), outcome.stderr) == (0, b"early\n", b"")


def test_a_small_stack_is_enough(place):
    chain = "".join(f"N{n}=<${{config:Config/N{n + 1}}}>\n" for n in range(31))
    (place / "d/a.conf").write_text(f"[Config]\n{chain}N31=end\nK=${{config:Config/N0}}\n")
    outcome = run(*ASK, place=place, limits={resource.RLIMIT_STACK: 256 * 1024})
    assert (outcome.status, outcome.stdout, outcome.stderr) == (0, b"<" * 31 + b"end" + b">" * 31 + b"\n", b"")
