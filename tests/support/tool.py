"""Runs the built program the way its users do: real arguments, exact bytes, real exit status."""

import os
import pathlib
import shlex
import subprocess

TOOL = os.environ.get("TARNWICK_TOOL", "")
CONFIG_TOOL = os.environ.get("TARNWICK_CONFIG_TOOL", "")
EMULATOR = shlex.split(os.environ.get("TARNWICK_EMULATOR", ""))

# A test that hangs is a failed test; emulated programs get their time too.
TIME_LIMIT_SECONDS = 120


def tool_command(*arguments):
    """The argument vector that starts the tool, under the emulator when there is one."""
    if not TOOL:
        raise RuntimeError("set TARNWICK_TOOL to the path of the built tarnwick-parse-config")
    return [*EMULATOR, TOOL, *arguments]


def config_command(*arguments):
    """The argument vector that starts tarnwick-config."""
    if not CONFIG_TOOL:
        raise RuntimeError("set TARNWICK_CONFIG_TOOL to the path of the built tarnwick-config")
    return [*EMULATOR, CONFIG_TOOL, *arguments]


def run_config(*arguments, env=None, **options):
    """Runs tarnwick-config as `run_tool` runs the tool."""
    return run_command(config_command(*arguments), env, options)


def is_watched(program):
    """Whether sanitizers or counters of lines are built in: they need memory and files of their own."""
    content = pathlib.Path(program).read_bytes()
    return any(watcher in content for watcher in (b"__asan_init", b"__tsan_init", b"__gcov_exit"))


def clean_environment(**variables):
    """The caller's environment without this product's own variables, plus `variables`."""
    kept = {name: text for name, text in os.environ.items() if not name.startswith("TARNWICK_")}
    return {**kept, **variables}


def run_tool(*arguments, env=None, **options):
    """Runs the tool; the result has `returncode`, and `stdout` and `stderr` as bytes."""
    return run_command(tool_command(*arguments), env, options)


def run_command(command, env, options):
    """Runs a program with this product's variables from `env` alone; nothing waits for input."""
    options.setdefault("timeout", TIME_LIMIT_SECONDS)
    options.setdefault("stdin", subprocess.DEVNULL)
    if "stdout" not in options:
        options["stdout"] = subprocess.PIPE
    if "stderr" not in options:
        options["stderr"] = subprocess.PIPE
    return subprocess.run(command, env=clean_environment(**(env or {})), check=False, **options)


def write_files(directory, files):
    """Writes `files` (name to text or bytes) below `directory` and returns the directory."""
    for name, content in files.items():
        path = directory / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(content if isinstance(content, bytes) else content.encode())
    return directory
