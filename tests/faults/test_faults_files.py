"""Configuration files that are no files, cannot be read, or change while they are read."""

import os
import resource
import signal
import threading
from pathlib import Path

import pytest

from support.preloading import compile_library, preload
from support.tool import TOOL
from watching import (
    MEGABYTE,
    NOBODY,
    SMALL,
    load_failure,
    one_critical_record,
    run,
    start,
    wait,
    wait_until,
)

ASK = ("--config", "d", "--key", "K")
NAME_CHARACTERS = " -.0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ_abcdefghijklmnopqrstuvwxyz"

# More than one buffer of any stream, so that a reader has to come back to the file for the rest.
FILLER = "# filler\n" * 100_000


def test_a_directory_in_place_of_a_file_fails_to_load(place):
    (place / "d/a.conf").mkdir()
    assert_fails_to_load(place, "d/a.conf/")


@pytest.mark.parametrize("target", ["nowhere", "a.conf", "/proc/self/fd/nothing"])
def test_a_link_that_leads_nowhere_fails_to_load(place, target):
    (place / "d/a.conf").symlink_to(target)
    assert_fails_to_load(place, "d/a.conf")


def test_two_links_to_each_other_fail_to_load(place):
    (place / "d/a.conf").symlink_to("b.conf")
    (place / "d/b.conf").symlink_to("a.conf")
    assert_fails_to_load(place, "d/a.conf")


def test_a_socket_fails_to_load(place):
    os.mknod(place / "d/a.conf", 0o140600)
    assert_fails_to_load(place, "d/a.conf")


def assert_fails_to_load(place, path):
    (place / "d/z.conf").write_text("[Config]\nK=never read\n")
    outcome = run(*ASK, place=place)
    assert (outcome.status, outcome.stdout, outcome.stderr) == (1, b"", load_failure(path))


def test_an_empty_device_is_an_empty_file(place):
    (place / "d/a.conf").symlink_to("/dev/null")
    (place / "d/b.conf").write_text("[Config]\nK=right\n")
    outcome = run(*ASK, place=place)
    assert (outcome.status, outcome.stdout, outcome.stderr) == (0, b"right\n", b"")


@pytest.mark.native
def test_an_endless_device_ends_with_the_memory(place, plain_build):
    (place / "d/a.conf").symlink_to("/dev/zero")
    limit = 256 * MEGABYTE
    bounds = SMALL.plus(peak_bytes=limit)
    outcome = run(*ASK, place=place, bounds=bounds, limits={resource.RLIMIT_AS: limit})
    assert (outcome.status, outcome.stdout) == (1, b"")
    assert one_critical_record(outcome.stderr)


def test_a_file_without_read_permission_fails_to_load(place, as_root, tool_for_everybody):
    (place / "d/a.conf").write_text("[Config]\nK=secret\n")
    (place / "d/a.conf").chmod(0o000)
    outcome = run(place=place, command=[tool_for_everybody, "--user-id", "0", *ASK], user=NOBODY)
    assert (outcome.status, outcome.stdout, outcome.stderr) == (1, b"", load_failure("d/a.conf"))


@pytest.mark.parametrize("mode", [0o000, 0o311])
def test_a_directory_that_cannot_be_listed_holds_no_configuration(place, as_root, tool_for_everybody, mode):
    (place / "d/a.conf").write_text("[Config]\nK=secret\n")
    (place / "d").chmod(mode)
    outcome = run(place=place, command=[tool_for_everybody, "--user-id", "0", *ASK], user=NOBODY)
    assert (outcome.status, outcome.stdout, outcome.stderr) == (1, b"", b"No configuration to read in d\n")


def test_a_directory_that_can_be_listed_but_not_entered_fails_to_load(place, as_root, tool_for_everybody):
    (place / "d/a.conf").write_text("[Config]\nK=secret\n")
    (place / "d").chmod(0o444)
    outcome = run(place=place, command=[tool_for_everybody, "--user-id", "0", *ASK], user=NOBODY)
    assert (outcome.status, outcome.stdout, outcome.stderr) == (1, b"", load_failure("d/a.conf"))


@pytest.mark.native
def test_the_tool_waits_for_a_fifo_without_writer(place):
    os.mkfifo(place / "d/a.conf")
    process = start(*ASK, place=place)
    assert wait_until(lambda: is_asleep(process.pid))
    process.send_signal(signal.SIGTERM)
    status, _ = wait(process)
    assert status == -signal.SIGTERM


def is_asleep(process):
    """True when the tool itself, and not what started it, waits for something."""
    state = Path(f"/proc/{process}/stat").read_text().rpartition(")")[2].split()[0]
    return state == "S" and os.path.samefile(f"/proc/{process}/exe", TOOL)


def test_a_fifo_with_a_writer_is_read_like_a_file(place):
    os.mkfifo(place / "d/a.conf")
    with open(place / "out", "wb") as out, open(place / "err", "wb") as err:
        process = start(*ASK, place=place, stdout=out, stderr=err)
    feeder = threading.Thread(target=feed_until_end, args=(place / "d/a.conf", process))
    feeder.start()
    status, _ = wait(process, limit=60)
    feeder.join()
    assert status == 0
    assert ((place / "out").read_bytes(), (place / "err").read_bytes()) == (b"right\n", b"")


def feed_until_end(path, process):
    """Writes a whole file to every reader of the FIFO, for as long as the process lives."""
    while process.returncode is None:
        try:
            with open(os.open(path, os.O_WRONLY | os.O_NONBLOCK), "wb") as fifo:
                fifo.write(b"[Config]\nK=right\n")
        except OSError:
            wait_until(lambda: process.returncode is not None, limit=0.02)


# A command in the first value changes the files while the rest is still to be read.


def test_a_file_that_is_removed_while_it_is_read_is_read_to_its_end(place):
    (place / "d/a.conf").write_text("[Config]\nL=${system:rm d/a.conf}\n" + FILLER + "K=right\n")
    outcome = run(*ASK, place=place)
    assert (outcome.status, outcome.stdout, outcome.stderr) == (0, b"right\n", b"")


def test_a_file_that_is_replaced_while_it_is_read_is_the_old_one(place):
    (place / "new").write_text("[Config]\nK=new\n")
    (place / "d/a.conf").write_text("[Config]\nL=${system:mv new d/a.conf}\n" + FILLER + "K=right\n")
    outcome = run(*ASK, place=place)
    assert (outcome.status, outcome.stdout, outcome.stderr) == (0, b"right\n", b"")


def test_a_file_that_is_removed_before_its_turn_fails_to_load(place):
    (place / "d/a.conf").write_text("[Config]\nK=${system:rm d/b.conf && echo early}\n")
    (place / "d/b.conf").write_text("[Config]\nK=late\n")
    outcome = run(*ASK, place=place)
    assert (outcome.status, outcome.stdout, outcome.stderr) == (1, b"", load_failure("d/b.conf"))


def test_a_directory_that_is_removed_before_its_turn_is_passed_over(place):
    (place / "e").mkdir()
    (place / "e/a.conf").write_text("[Config]\nK=late\n")
    (place / "d/a.conf").write_text("[Config]\nK=${system:rm -r e && echo early}\n")
    outcome = run(*ASK, "--config", "e", place=place)
    assert (outcome.status, outcome.stdout, outcome.stderr) == (0, b"early\n", b"")


@pytest.mark.parametrize("size", [0, 9, 30, 5000, 500_000])
def test_a_file_that_is_truncated_while_it_is_read_ends_early(place, size):
    head = f"[Config]\nK=early\nL=${{system:truncate -s {size} d/a.conf}}\n"
    (place / "d/a.conf").write_text(head + FILLER + "K=late\n")
    outcome = run(*ASK, place=place)
    assert (outcome.status, outcome.stdout) in ((0, b"early\n"), (1, b""))
    if outcome.status == 1:
        assert outcome.stderr.endswith(load_failure("d/a.conf"))


@pytest.mark.parametrize("filler", ["", FILLER], ids=["short", "long"])
def test_a_file_that_grows_while_it_is_read_is_read_once(place, filler):
    head = "[Config]\nL=${system:printf 'K=grown\\nK=more\\n' >> d/a.conf}\n"
    (place / "d/a.conf").write_text(head + filler + "K=right\n")
    outcome = run(*ASK, "--list", place=place)
    assert (outcome.status, outcome.stderr) == (0, b"")
    assert outcome.stdout in (b"right\n", b"right;grown;more\n")


def test_a_file_that_keeps_growing_ends_the_tool_all_the_same(place):
    (place / "d/a.conf").write_text("[Config]\nK=right\n" + FILLER)
    stop = threading.Event()
    writer = threading.Thread(target=append_until, args=(place / "d/a.conf", stop))
    writer.start()
    try:
        outcome = run(*ASK, place=place)
    finally:
        stop.set()
        writer.join()
    assert (outcome.status, outcome.stdout, outcome.stderr) == (0, b"right\n", b"")


def append_until(path, stop):
    with open(path, "ab", buffering=0) as file:
        while not stop.wait(0.0005):
            file.write(b"# one more\n")


def long_name(start):
    """255 bytes of permitted characters, every one of them at least three times."""
    return (start + NAME_CHARACTERS * 4)[:255]


@pytest.fixture
def with_failing_files(place):
    """The environment in which reading a file named `failing...` fails where the file ends."""
    source = Path(__file__).parent.parent / "support" / "failing_read.cpp"
    return preload(compile_library(source, place / "failing_read.so"))


@pytest.mark.parametrize("last_line", ["", "K=cut off"])
def test_a_file_that_cannot_be_read_to_its_end_fails_to_load(place, with_failing_files, last_line):
    (place / "d/failing.conf").write_text("[Config]\nK=1\n" + last_line)
    outcome = run(*ASK, place=place, env=with_failing_files)
    assert (outcome.status, outcome.stdout, outcome.stderr) == (1, b"", load_failure("d/failing.conf"))


def test_an_environment_file_that_cannot_be_read_to_its_end_still_gives_what_was_found(place, with_failing_files):
    (place / "failing.env").write_text("NAME=found\nNAME=cut off")
    (place / "d/a.conf").write_text("[Config]\nK=${envfile:failing.env:NAME}\n")
    outcome = run(*ASK, place=place, env=with_failing_files)
    assert (outcome.status, outcome.stdout, outcome.stderr) == (0, b"found\n", b"")


def test_names_of_255_bytes_may_use_every_permitted_character(place):
    group, key = long_name(" "), long_name("K")
    assert set(group) == set(key) == set(NAME_CHARACTERS)
    file_name = long_name("")[:250] + ".conf"
    (place / "d" / file_name).write_text(f"[{group}]\n{key}=right\n[Config]\nK=${{config:{group}/{key}}}\n")
    direct = run("--config", "d", "--group", group, "--key", key, place=place)
    assert (direct.status, direct.stdout, direct.stderr) == (0, b"right\n", b"")
    referenced = run(*ASK, place=place)
    assert (referenced.status, referenced.stdout, referenced.stderr) == (0, b"right\n", b"")


def test_file_names_may_use_every_byte(place):
    every_byte = bytes(byte for byte in range(1, 256) if byte != ord("/"))
    for number, name in enumerate((b"x" + every_byte[:120] + b".conf", b"x" + every_byte[120:] + b".conf")):
        (place / "d" / os.fsdecode(name)).write_text(f"[Config]\nK={number}\n")
    outcome = run(*ASK, "--list", place=place)
    assert (outcome.status, outcome.stdout, outcome.stderr) == (0, b"0;1\n", b"")


def test_a_directory_name_that_is_too_long_holds_no_configuration(place):
    outcome = run("--config", "x" * 5000, "--key", "K", place=place)
    assert (outcome.status, outcome.stdout) == (1, b"")
    assert outcome.stderr == b"No configuration to read in " + b"x" * 5000 + b"\n"
