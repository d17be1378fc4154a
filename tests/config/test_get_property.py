"""`get` and `show` against the boot tool, on generated configurations: `get` prints what the tool
prints for each key, from one load, and the one file that `show` writes loads back to the same values.

The cases are those of the differential tests, with commands that count how often they run.

TARNWICK_GET_CASES        how many cases of `make test` (default 200)
TARNWICK_GET_SLOW_CASES   how many with the slow ones (default 12000)
TARNWICK_GET_SEED         where the cases come from (default "get")
TARNWICK_GET_ONLY         the number of the only case to run
"""

import json
import os
import pathlib
import random
import shutil
import subprocess
import sys
import tempfile
from concurrent.futures import ProcessPoolExecutor

import pytest
from support.tool import clean_environment, config_command, tool_command

sys.path.insert(0, str(pathlib.Path(__file__).parents[1] / "differential"))
from comparing import describe, write_case  # noqa: E402
from generator import GROUPS, KEYS, make_case  # noqa: E402

CASES = int(os.environ.get("TARNWICK_GET_CASES", "200"))
SLOW_CASES = int(os.environ.get("TARNWICK_GET_SLOW_CASES", "12000"))
SEED = os.environ.get("TARNWICK_GET_SEED", "get")
ONLY = os.environ.get("TARNWICK_GET_ONLY")

COUNTED = b"[Config]\nRuns=${system:echo x >> runs && echo word};${system:echo x >> runs && printf 'a b'}\n"
GENERATED = b"[GeneratedConfig]\nHome=${system:echo x >> runs && echo /home}\n"
TIME_LIMIT_SECONDS = 60


class Trial:
    """One case on the disk, and what is asked of it."""

    def __init__(self, number, root):
        self.root = root
        self.chance = random.Random(f"{SEED}:{number}:keys")
        self.case = make_case(f"{SEED}:{number}")
        self.case.files[b"d1/counted.conf"] = COUNTED + GENERATED * (self.chance.random() < 0.2)
        self.keys = [self.chance.choice(self.known_keys()) for _ in range(self.chance.choice([1, 1, 2, 2, 3, 5]))]
        variables = {os.fsdecode(name): os.fsdecode(text) for name, text in self.case.environment.items()}
        self.environment = clean_environment(**variables)
        self.context = [b"--user-id", b"%d" % self.case.user_id, b"--configs", b":".join(self.case.directories)]
        self.context += [b"--instance", self.case.instance]
        if self.case.level is not None:
            self.context += [b"--log-level", self.case.level]
        shutil.rmtree(root, ignore_errors=True)
        write_case(self.case, root)

    def known_keys(self):
        """Mostly keys that stand in a file."""
        found = [(b"Config", b"Runs"), (self.chance.choice(GROUPS), self.chance.choice(KEYS))]
        for name, content in sorted(self.case.files.items()):
            group = b""
            for line in content.split(b"\n") if content is not None and name.endswith(b".conf") else ():
                if line.startswith(b"["):
                    group = line[1:-1]
                elif b"=" in line and line[:1] not in b"#;":
                    found.append((group, line.split(b"=")[0]))
        # What no argument can hold, what the command line refuses, and what it would read otherwise.
        return [(group, key) for group, key in found if key and b"/" not in group and b"\0" not in group + key]

    def run(self, command):
        """Status, output and count of command runs."""
        counter = os.path.join(self.root, b"runs")
        if os.path.exists(counter):
            os.unlink(counter)
        result = subprocess.run(
            command,
            env=self.environment,
            cwd=self.root,
            stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE,
            stderr=subprocess.DEVNULL,
            timeout=TIME_LIMIT_SECONDS,
            close_fds=False,
            check=False,
        )
        runs = os.path.getsize(counter) if os.path.exists(counter) else 0
        return result.returncode, result.stdout, runs

    def ask_tool(self, group, key):
        wanted = [b"--list"] * self.case.list_all + [b"--group", group, b"--key", key]
        return self.run([*tool_command(), *self.context, *wanted])

    def ask_get(self):
        wanted = [b"--list"] * self.case.list_all + [b"--", *(b"/".join(name) for name in self.keys)]
        return self.run([*config_command("get"), *self.context, *wanted])

    def show(self, *arguments):
        return self.run([*config_command("show"), *self.context, *arguments])

    def get_difference(self):
        """None when both agree, otherwise what they said."""
        answers = [self.ask_tool(*name) for name in self.keys]
        worst = max((status for status, _, _ in answers), key=[0, 2, 1].index)
        expected = worst, b"".join(output for _, output, _ in answers), answers[0][2]
        seen = self.ask_get()
        return None if seen == expected else f"{self.keys}\ntool: {expected}\nget:  {seen}"

    def ini_difference(self):
        """None when the file that is written loads back to the same values, or none is written."""
        status, shown, _ = self.show("--format=json")
        written = self.show("--format=ini")
        if written[0] != 0:
            return None if written[1] == b"" else f"status {written[0]}, but {written[1]}"
        if status != 0:
            return f"{written[1]} was written of a configuration that cannot be shown"
        directory = os.path.join(self.root, b"written")
        os.mkdir(directory)
        with open(os.path.join(directory, b"all.conf"), "wb") as file:
            file.write(written[1])
        again = self.run([*config_command("show"), *self.context[:2], b"--config", directory, b"--format=json"])
        is_same = by_key(again[1]) == by_key(shown) and again[0] == 0
        return None if is_same else f"shown: {shown}\nwritten: {written[1]}\nread back: {again}"


def by_key(shown):
    """The values of each key; a file by groups has the keys in another order."""
    keys = json.loads(shown)["keys"]
    return {
        (key["group"], key["key"]): [value.get("valueBase64", value["value"]) for value in key["values"]]
        for key in keys
    }


def first_difference(numbers, is_whole):
    """Compares the cases; every fourth one also by the file that `show` writes, or all if that is wanted."""
    memory = "/dev/shm" if os.access("/dev/shm", os.W_OK) else None
    parent = tempfile.mkdtemp(prefix="get-", dir=memory)
    root = os.fsencode(os.path.join(os.path.realpath(parent), "case"))
    try:
        for number in numbers:
            trial = Trial(number, root)
            found = trial.get_difference()
            if found is None and (is_whole or number % 4 == 0):
                found = trial.ini_difference()
            if found is not None:
                return f"case {number}\n{describe(trial.case)}\n{found}"
        return None
    finally:
        shutil.rmtree(parent)


@pytest.mark.parametrize("block", range(1 if ONLY else 5))
def test_get_prints_what_the_tool_prints_and_show_writes_what_it_shows(block):
    found = first_difference([int(ONLY)] if ONLY else range(block, CASES, 5), is_whole=bool(ONLY))
    assert found is None, found


@pytest.mark.slow
def test_the_same_of_many_more_cases():
    blocks = 8 * (os.cpu_count() or 1)
    with ProcessPoolExecutor() as processes:
        parts = [range(CASES + block, SLOW_CASES, blocks) for block in range(blocks)]
        found = [text for text in processes.map(first_difference, parts, [False] * blocks) if text is not None]
    assert not found, found[0]
