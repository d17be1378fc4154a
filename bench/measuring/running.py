"""Runs programs and counts: time, memory, system calls, instructions, allocations."""

import json
import random
import re
import statistics
import subprocess
import tempfile
from typing import NamedTuple

from . import programs


class Run(NamedTuple):
    seconds: float
    processor_seconds: float
    peak_mib: float


class WrongAnswer(Exception):
    """A program did not find the key's value, so its time would mean nothing."""


def run(arguments, environment):
    """The finished process, with its output; raises when the program fails."""
    return subprocess.run(
        arguments,
        env=environment,
        stdin=subprocess.DEVNULL,
        capture_output=True,
        text=True,
        check=True,
    )


def shortened(text):
    return repr(text if len(text) <= 60 else text[:60] + "...")


def check_answer(program, source):
    """A fast wrong answer is none: every program proves that it finds the value."""
    printed = run(*programs.invocation(program, source)).stdout
    if program.answers and not program.is_right(source, printed):
        raise WrongAnswer(f"{program.name} printed {shortened(printed)} instead of {shortened(source.answer)}")


def run_once(stopwatch, arguments, environment):
    nanoseconds, microseconds, kibibytes, status = map(int, run([stopwatch, *arguments], environment).stdout.split())
    if status != 0:
        raise subprocess.CalledProcessError(status, arguments)
    return Run(nanoseconds / 1e9, microseconds / 1e6, kibibytes / 1024)


def median_run(runs):
    return Run(*map(statistics.median, zip(*runs)))


def measure_interleaved(stopwatch, jobs, rounds):
    """Runs every job, a program with an input, `rounds` times. Each round has an order of its own,
    drawn by lot, so that the machine's noise falls on all alike. A job that is listed several
    times runs as often in each round.

    Returns input name to program name to the medians as a `Run`."""
    runs = {}
    for program, source in dict.fromkeys(jobs):
        check_answer(program, source)
        runs.setdefault(source.name, {})[program.name] = []
    for _ in range(rounds):
        for program, source in random.sample(jobs, len(jobs)):
            taken = run_once(stopwatch, *programs.invocation(program, source))
            runs[source.name][program.name].append(taken)
    return {
        source: {program: median_run(taken) for program, taken in by_program.items()}
        for source, by_program in runs.items()
    }


def measure_micro(program, names, rounds):
    """Micro benchmark name to the median of its processor time in seconds, of several runs in an
    order drawn by lot."""
    options = [
        "--benchmark_filter=^(" + "|".join(names) + ")$",
        "--benchmark_format=json",
        f"--benchmark_repetitions={rounds}",
        "--benchmark_enable_random_interleaving=true",
    ]
    taken = {name: [] for name in names}
    for found in json.loads(run([program, *options], {}).stdout)["benchmarks"]:
        if found.get("error_occurred"):
            raise WrongAnswer(f"{found['name']}: {found['error_message']}")
        if found["run_type"] == "iteration":
            taken[found["run_name"]].append(found["cpu_time"] * 1e-9)
    return {name: statistics.median(times) for name, times in taken.items()}


def count_system_calls(arguments, environment):
    with tempfile.NamedTemporaryFile("r") as table:
        run(["/usr/bin/strace", "-f", "-c", "-o", table.name, *arguments], environment)
        (total,) = re.findall(r"^100\.00 +\S+ +\S+ +(\d+) .*total$", table.read(), re.MULTILINE)
    return int(total)


def count_with_valgrind(options, pattern, arguments, environment):
    """Valgrind may follow into no child: a program's own work is what counts."""
    message = run(["/usr/bin/valgrind", *options, *arguments], environment).stderr
    (number,) = re.findall(pattern, message)
    return int(number.replace(",", ""))


def count_instructions(arguments, environment):
    """Instructions in user space, from the first of the dynamic linker to the exit."""
    options = ["--tool=callgrind", "--callgrind-out-file=/dev/null"]
    return count_with_valgrind(options, r"Collected : (\d+)", arguments, environment)


def profile_instructions(arguments, environment):
    """Yields instructions, their share in percent, and the function they are spent in, with all
    that it calls; the dearest function first."""
    with tempfile.NamedTemporaryFile("r") as profile:
        output = f"--callgrind-out-file={profile.name}"
        run(["/usr/bin/valgrind", "--tool=callgrind", output, *arguments], environment)
        text = run(["/usr/bin/callgrind_annotate", "--inclusive=yes", profile.name], environment).stdout
    line = re.compile(r"^ *([\d,]+) \( *([\d.]+)%\)  [^:\n]*:(.*?)(?: \[.*)?$", re.MULTILINE)
    for number, percent, function in line.findall(text):
        yield int(number.replace(",", "")), float(percent), function


def bare_name(function):
    """The name alone, without its scope, parameters and symbol version."""
    return re.split(r"[(@]", function.replace("(anonymous namespace)::", ""))[0].split("::")[-1]


def instructions_by_name(arguments, environment):
    """Bare function name to instructions with all that it calls; the dearest of several."""
    found = {}
    for number, _, function in profile_instructions(arguments, environment):
        found.setdefault(bare_name(function), number)
    return found


def count_allocations(arguments, environment):
    pattern = r"total heap usage: ([\d,]+) allocs"
    return count_with_valgrind(["--tool=memcheck"], pattern, arguments, environment)
