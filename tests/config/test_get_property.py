"""`get` and `show` against the boot tool, on generated configurations: `get` prints what the tool
prints for each key, from one load, and the one file that `show` writes loads back to the same values.

The cases are those of the differential tests, with commands that count how often they run.

TARNWICK_GET_CASES   how many cases (default 200)
"""

import json
import os
import subprocess

import pytest
from comparing import context_of, on_disk, variables_of
from draws import often, pick
from generator import GROUPS, KEYS, cases, entries_of
from hypothesis import given
from hypothesis import strategies as st
from support.generated import on_cases
from support.tool import clean_environment, config_command, tool_command

COUNTED = b"[Config]\nRuns=${system:echo x >> runs && echo word};${system:echo x >> runs && printf 'a b'}\n"
GENERATED = b"[GeneratedConfig]\nHome=${system:echo x >> runs && echo /home}\n"
TIME_LIMIT_SECONDS = 60


@st.composite
def counted_cases(draw):
    case = draw(cases())
    case.files[b"d1/counted.conf"] = COUNTED + GENERATED * draw(often(20))
    return case


COUNTS = st.sampled_from([1, 1, 2, 2, 3, 5])
ANY_KEY = st.tuples(st.sampled_from(GROUPS), st.sampled_from(KEYS))


@st.composite
def requests(draw):
    """A case and the keys that are asked for, mostly some that stand in a file."""
    case = draw(counted_cases())
    found = [(b"Config", b"Runs"), draw(ANY_KEY), *((group, key) for group, key, _ in entries_of(case.files))]
    # What no argument can hold, what the command line refuses, and what it would read otherwise.
    known = [(group, key) for group, key in found if key and b"/" not in group and b"\0" not in group + key]
    return case, [pick(draw, known) for _ in range(draw(COUNTS))]


class Trial:
    """A case that lies on the disk, and its runs."""

    def __init__(self, case, root):
        self.root = root
        self.context = context_of(case)
        self.wanted = [b"--list"] * case.list_all
        self.environment = clean_environment(**variables_of(case))

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
        return self.run([*tool_command(), *self.context, *self.wanted, b"--group", group, b"--key", key])

    def ask_get(self, keys):
        return self.run([*config_command("get"), *self.context, *self.wanted, b"--", *map(b"/".join, keys)])

    def show(self, *arguments):
        return self.run([*config_command("show"), *self.context, *arguments])

    def get_difference(self, keys):
        """None when both agree, otherwise what they said."""
        answers = [self.ask_tool(*name) for name in keys]
        worst = max((status for status, _, _ in answers), key=[0, 2, 1].index)
        expected = worst, b"".join(output for _, output, _ in answers), answers[0][2]
        seen = self.ask_get(keys)
        return None if seen == expected else f"{keys}\ntool: {expected}\nget:  {seen}"

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


@on_cases("TARNWICK_GET_CASES", 200)
@given(request=requests(), is_shown=often(25))
def test_get_prints_what_the_tool_prints_and_show_writes_what_it_shows(root, request, is_shown):
    case, keys = request
    with on_disk(case, root):
        trial = Trial(case, root)
        found = trial.get_difference(keys)
        if found is None and is_shown:
            found = trial.ini_difference()
    if found is not None:
        pytest.fail(found)
