"""`check` over what nobody trusts yet: it ends, it stays small, and it runs and reads nothing else."""

import itertools
import os
import re
import shutil
import subprocess

import pytest
from config_helpers import in_config
from support.tool import CONFIG_TOOL, EMULATOR, clean_environment, config_command, is_watched, run_config

MEBIBYTE = 1 << 20


@pytest.fixture
def plain_program():
    if EMULATOR or is_watched(CONFIG_TOOL):
        pytest.skip("bounds on memory are for programs that run by themselves")


def peak_memory(command, **options):
    """Runs a command to its end; returns its status and the most memory that it held, in bytes."""
    process = subprocess.Popen(command, env=clean_environment(), **options)
    _, status, usage = os.wait4(process.pid, 0)
    process.returncode = os.waitstatus_to_exitcode(status)
    return process.returncode, usage.ru_maxrss * 1024


# --- Things in the place of files ---


def test_a_missing_path_is_status_2_and_the_others_are_checked(run):
    result = run(in_config("Arch=$"), "check", "--format=gcc", "nowhere", "conf.d")
    assert result.stderr == b"tarnwick-config: nowhere: No such file or directory\n"
    assert (result.returncode, len(result.stdout.splitlines())) == (2, 1)


def test_only_regular_files_are_opened(check, directory):
    (directory / "a.conf").symlink_to("/dev/zero")
    os.mkfifo(directory / "b.conf")
    (directory / "c.conf").symlink_to("c.conf")
    (directory / "d.conf").symlink_to("vanished")
    found = [f"{name}.conf:1:1 error unreadable" for name in "abcd"]
    assert check({}) == (1, found)


@pytest.mark.parametrize("name", ["/dev/zero", "pipe", "/dev/null"])
def test_a_path_that_is_no_regular_file_is_status_2(name, tmp_path):
    os.mkfifo(tmp_path / "pipe")
    result = run_config("check", name, cwd=tmp_path)
    assert (result.returncode, result.stdout) == (2, b"")
    assert result.stderr == f"tarnwick-config: {name}: it is no regular file\n".encode()


# --- References ---


def chained(template, count):
    return "[Config]\n" + "".join(template.format(number, number + 1) for number in range(count))


def test_a_ring_of_100000_references_is_one_fault(check):
    ring = chained("K{}=${{config:Config/K{}}}\n", 99999) + "K99999=${config:Config/K0}\n"
    assert check(ring, "--known=Config") == (1, ["a.conf:2:4 error reference-circle"])


def test_a_long_circle_shows_33_steps(run):
    ring = chained("K{}=${{config:Config/K{}}}\n", 99) + "K99=${config:Config/K0}\n"
    output = run(ring, "check", "--known=Config", "conf.d").stdout
    assert output.count(b" -> ") == 34
    assert b"-> Config/K32 (conf.d/a.conf:34) -> 67 more -> Config/K0 [" in output


def test_a_chain_that_doubles_60_times_is_one_fault(check):
    chain = chained("K{0}=${{config:Config/K{1}}}${{config:Config/K{1}}}\n", 60) + "K60=x\n"
    assert check(chain, "--known=Config") == (1, ["a.conf:57:5 error reference-too-many"])


def test_a_chain_of_100000_references_is_one_fault(check):
    chain = chained("K{}=${{config:Config/K{}}}\n", 100000) + "K100000=x\n"
    assert check(chain, "--known=Config") == (1, ["a.conf:99969:8 error reference-too-many"])


# --- Sizes ---


def test_a_line_of_100_megabytes_is_cut_in_the_report(directory):
    with open(directory / "a.conf", "wb") as file:
        file.write(b"[Config]\nArch=")
        file.write(b"x" * (50 * MEBIBYTE) + b"$." + b"y" * (50 * MEBIBYTE) + b"\n")
    result = run_config("check", "conf.d", cwd=directory.parent)
    column = len("Arch=") + 50 * MEBIBYTE + 1
    assert result.stdout.startswith(f"conf.d/a.conf:2:{column}: error: ".encode())
    assert len(result.stdout) < 1000
    assert b" | ..." in result.stdout


def test_a_million_faults_need_no_more_memory_than_a_thousand(directory, plain_program):
    line = b" indented\nArch=${NO}$\nNoSuchKey=1 # x\n"
    peaks = []
    for count in (1000, 250000):
        with open(directory / "a.conf", "wb") as file:  # a child begins with the memory of this process
            file.write(b"[Config]\n")
            file.writelines(itertools.repeat(line, count))
        command = config_command("check", "--format=gcc", directory)
        status, peak = peak_memory(command, stdout=subprocess.DEVNULL)
        assert status == 1
        peaks.append(peak)
    assert peaks[1] < peaks[0] + 16 * MEBIBYTE


MILLION = 1000000
LARGE_FILES = {
    "keys of one unknown group": lambda number: b"%07d=1\n" % number,
    "values that refer to one key": lambda number: b"A=${config:Unknown/B}\n",
    "keys that refer to others": lambda number: b"K%d=${config:Unknown/K%d}\n" % (number, number + 1),
    "references to keys that no file sets": lambda number: b"A=${config:Unknown/K%d};\n" % number,
}


@pytest.mark.slow
@pytest.mark.parametrize("line", LARGE_FILES.values(), ids=LARGE_FILES)
def test_a_million_lines_need_less_memory_than_twenty_times_the_file(line, directory, plain_program):
    with open(directory / "a.conf", "wb") as file:  # a child begins with the memory of this process
        file.write(b"[Unknown]\n")
        file.writelines(map(line, range(MILLION)))
        size = file.tell()
    command = config_command("check", "--ignore=reference-undefined", directory)
    status, peak = peak_memory(command, stdout=subprocess.DEVNULL)
    assert status in (0, 1)
    assert peak < 20 * size + 16 * MEBIBYTE


@pytest.mark.slow
def test_a_line_full_of_cut_templates_is_looked_through_once(directory):
    # Looking through the rest for each one would take far longer than the limit on a run.
    (directory / "a.conf").write_bytes(in_config("Arch=" + "${;" * 4 * MILLION).encode())
    result = run_config("check", "--ignore=template-not-closed", "conf.d", cwd=directory.parent)
    assert (result.returncode, result.stdout) == (0, b"")


def test_faults_are_shown_at_the_pace_of_reading():
    command = config_command("check", "--format=gcc", "-")
    process = subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE, env=clean_environment())
    for number in (1, 2, 3):
        process.stdin.write(b" x\n")
        process.stdin.flush()
        assert process.stdout.readline().startswith(b"-:%d:1: error: " % number)
    process.stdin.close()
    assert process.wait(timeout=120) == 1
    process.stdout.close()


# --- What is shown ---

ESCAPES = "\x1b]0;title\x07\x1b[31m\u202egnp.\u0085\x7f"


def test_no_byte_of_a_file_or_of_its_name_drives_the_terminal(run):
    name = f"{ESCAPES}\n.conf"
    files = {name: in_config(f"Hostname{ESCAPES}=1", f"Arch=${{{ESCAPES}}}", "Arch=\t\u00e9$x"), "a.conf": ESCAPES}
    for form in ("text", "gcc", "json"):
        result = run(files, "check", f"--format={form}", "conf.d")
        assert result.returncode == 1
        assert not re.search(rb"[\x00-\x09\x0b-\x1f\x7f]", result.stdout)
        assert not {"\u202e", "\u0085"} & set(result.stdout.decode())
    assert b"conf.d/" in result.stdout


def test_the_mark_stands_below_the_fault_behind_tabs_and_characters_of_any_width(run):
    text = "Arch=\t\u00e9\u4e2de\u0301\xa0$x"
    result = run(in_config(text), "check", "conf.d").stdout.decode().splitlines()
    assert result[1] == "    2 | Arch=\\x09\u00e9\u4e2de\u0301\xa0$x"
    assert result[2] == "      | " + " " * len("Arch=\\x09e??e ") + "^"


def test_the_mark_stands_below_the_fault_behind_pictures_of_two_columns(run):
    pictures = "\U0001f680\U0001f7e2\U0001f9e9\U0001fa90"
    result = run(in_config(f"Arch={pictures}$x"), "check", "conf.d").stdout.decode().splitlines()
    assert result[2] == "      | " + " " * (len("Arch=") + 2 * len(pictures)) + "^"


def test_the_report_is_the_same_in_every_locale(run):
    text = in_config("Arch=\u00e9$x")
    reports = {run(text, "check", "conf.d", env={"LC_ALL": name}).stdout for name in ("C", "C.UTF-8", "POSIX")}
    assert len(reports) == 1 and "\u00e9" in reports.pop().decode()


def test_colours_come_when_they_are_asked_for(run):
    def colored(*arguments, **environment):
        return b"\x1b[" in run(in_config("Arch=$"), *arguments, "check", "conf.d", env=environment).stdout

    assert not colored()
    assert colored("--color=always")
    assert colored("--color=always", NO_COLOR="1")
    assert not colored("--color=never")


# --- Output that nobody takes ---


@pytest.mark.skipif(not os.path.exists("/dev/full"), reason="no full device here")
def test_a_full_output_is_status_2_and_said(run):
    with open("/dev/full", "wb") as full:
        result = run(in_config("Arch=$"), "check", "conf.d", stdout=full)
    assert result.returncode == 2
    assert result.stderr == b"tarnwick-config: cannot write to the standard output\n"


def test_closed_streams_do_no_harm(run, directory):
    run(in_config("Arch=$"), "--version")
    for closed, status in ((">&-", 2), ("2>&-", 1), ("<&-", 1), (">&- 2>&- <&-", 2)):
        line = " ".join(config_command("check", "conf.d")) + " " + closed
        result = subprocess.run(["sh", "-c", line], cwd=directory.parent, env=clean_environment(), capture_output=True)
        assert result.returncode == status, closed


@pytest.mark.parametrize("command", [("check", "-"), ("files", "--names", "-")])
def test_a_closed_standard_input_is_a_path_that_cannot_be_read(command):
    line = " ".join(config_command(*command)) + " <&-"
    result = subprocess.run(["sh", "-c", line], env=clean_environment(), capture_output=True)
    assert (result.returncode, result.stdout) == (2, b"")
    assert result.stderr == b"tarnwick-config: -: the standard input is closed\n"


def test_a_reader_that_has_seen_enough_ends_it_quietly(directory):
    (directory / "a.conf").write_bytes(b" x\n" * 1000000)
    line = " ".join(config_command("check", "conf.d")) + " | head -n 1"
    result = subprocess.run(["sh", "-c", line], cwd=directory.parent, env=clean_environment(), capture_output=True)
    assert (result.stdout.count(b"\n"), result.stderr) == (1, b"")


# --- What it asks ---


@pytest.mark.skipif(not shutil.which("strace") or EMULATOR, reason="strace watches native programs")
def test_it_runs_nothing_and_opens_nothing_but_the_files(directory):
    (directory / "secret").write_text("NAME=x\n")
    (directory / "a.conf").write_text(
        in_config(
            f"Arch=${{system:touch {directory}/ran}}${{env:HOME}}${{realpath:/tmp}}",
            f"Hostname=${{envfile:{directory}/secret:NAME}}${{dconf:/a/b}}${{prop:ro.x}}${{USER}}",
        )
        + f"[Logging]\nLogTarget={directory}/log\n"
    )
    trace = directory.parent / "trace"
    command = [
        "strace",
        "-f",
        "-o",
        trace,
        "-e",
        "trace=execve,open,openat,connect,socket,fork,vfork,clone,clone3,unlink,rename",
    ]
    environment = clean_environment(TARNWICK_LOGGING_TARGET=f"{directory}/target", TARNWICK_LOGGING="x=debug")
    result = subprocess.run([*command, *config_command("check", directory)], env=environment, capture_output=True)
    if not trace.exists() or b"ptrace" in result.stderr:
        pytest.skip("this machine lets nobody trace")
    calls = trace.read_text().splitlines()
    assert sum("execve(" in call for call in calls) == 1
    assert not [call for call in calls if re.search(r" (connect|socket|v?fork|clone3?|unlink|rename)\(", call)]
    opened = [re.search(r'"([^"]*)"', call)[1] for call in calls if " open" in call and "= -1" not in call]
    # The loader's files, and the counters of a build that counts lines.
    foreign = re.compile(r"/lib|/usr/lib|/etc/ld\.so|.*\.gcda$")
    own = [path for path in opened if not foreign.match(path)]
    assert [path.rstrip("/") for path in own if path.startswith(str(directory))] == own or own == []
    assert set(own) <= {str(directory), f"{directory}/", f"{directory}/a.conf"}
    assert f"{directory}/a.conf" in own
    assert sorted(path.name for path in directory.iterdir()) == ["a.conf", "secret"]


def test_logging_settings_are_not_looked_at(run, directory):
    environment = {"TARNWICK_LOGGING_TARGET": str(directory / "log"), "TARNWICK_LOGGING": "a=b"}
    assert run(in_config("Arch=x"), "check", "conf.d", env=environment).stdout == b""
    assert not (directory / "log").exists()
