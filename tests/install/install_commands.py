"""Runs the commands of this suite, and says what they printed when they fail."""

import os
import pathlib
import shlex
import subprocess

ROOT = pathlib.Path(__file__).parents[2]
BUILD = ROOT / "build" / "install"


def run(*command, env=None, **options):
    """Runs a command that must succeed; the result has `stdout` and `stderr` as text.

    `env` adds to the environment, which is otherwise the caller's with plain English messages.
    """
    words = [str(word) for word in command]
    result = subprocess.run(
        words,
        env={**os.environ, "LC_ALL": "C.UTF-8", **(env or {})},
        capture_output=True,
        text=True,
        check=False,
        **({"stdin": subprocess.DEVNULL} if "input" not in options else {}),
        **options,
    )
    assert (
        result.returncode == 0
    ), f"{shlex.join(words)} ended with status {result.returncode}\n{result.stdout}\n{result.stderr}"
    return result


def project_version():
    """The version that CMakeLists.txt names, the one place where it stands."""
    [line] = [line for line in (ROOT / "CMakeLists.txt").read_text().splitlines() if line.startswith("project(")]
    words = line.split()
    return words[words.index("VERSION") + 1]
