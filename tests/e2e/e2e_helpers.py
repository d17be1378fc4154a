"""What the end-to-end tests share: outcomes of runs and the texts that the tool prints."""

import os
import pathlib
import re
import subprocess
import typing

import pytest
from support.tool import EMULATOR, TOOL, run_tool

PARSER_IDENTITY = "com.vexmoor.tarnwick.lib.ConfigParser"
DEFAULT_DIRECTORY = "/etc/tarnwick.conf.d"


def is_sanitized():
    """True for a build with the undefined-behaviour sanitizer."""
    return bool(TOOL) and b"__ubsan_handle" in pathlib.Path(TOOL).read_bytes()


def starts_by_itself():
    """False for a foreign program on a machine whose kernel does not know the emulator."""
    try:
        return not TOOL or subprocess.run([TOOL], capture_output=True).returncode == 1
    except OSError:
        return False


started_directly = pytest.mark.skipif(not starts_by_itself(), reason="the tool starts only with the emulator before it")
in_a_real_root = pytest.mark.skipif(
    bool(EMULATOR), reason="the emulator shows its sysroot in place of the root directory"
)


def is_watched():
    """True for a tool that a sanitizer or valgrind watches."""
    return is_sanitized() or any("valgrind" in word for word in EMULATOR)


plain_build_only = pytest.mark.skipif(is_watched(), reason="what watches the tool needs descriptors for its own checks")
without_default_directory = pytest.mark.skipif(
    os.path.exists(DEFAULT_DIRECTORY), reason="this machine has a configuration of its own"
)


class Outcome(typing.NamedTuple):
    """Everything a caller of the tool can see; equal to a plain (status, out, err) tuple."""

    status: int
    out: bytes
    err: bytes


def request(*arguments, **options):
    """Runs the tool and returns its `Outcome`; an output that went elsewhere shows as empty."""
    run = run_tool(*arguments, **options)
    return Outcome(run.returncode, run.stdout or b"", run.stderr or b"")


def one_key(value):
    """The text of a file that gives key K of group Config one value."""
    return f"[Config]\nK={value}\n"


def lines(*texts):
    """Each text with its line feed, as bytes."""
    return b"".join(os.fsencode(text) + b"\n" for text in texts)


def load_failure(path):
    """The two records that end the loading of a faulty file."""
    return lines(
        f"ERROR: Failed to load config from '{path}'",
        f"ERROR: Invalid configuration in {path}",
    )


def is_critical_record(text, *words):
    """True when `text` is the one record of a value that cannot be had, and holds all of `words`."""
    record = re.fullmatch(rb"CRITICAL: Cannot get '[^\n']+/[^\n']+': [^\n]+\n", text)
    return record is not None and all(os.fsencode(word) in text for word in words)


def usage(program=TOOL):
    """The usage text of the tool when it was started under the name `program`."""
    return lines(
        "Parse single key value from Tarnwick config.",
        "",
        "USAGE:",
        f"    {program} [OPTIONS] --key <config-key>",
        "",
        "OPTIONS:",
        "    --config <input_directory> Directory to read. Defaults to /etc/tarnwick.conf.d",
        "    --configs <directories>    Directories to read, separated by ':'.",
        "    --user-id <UID>            UID for user. Defaults to seat0 active user.",
        "    --instance <name>          Instance name for the container.",
        "    --log-level <level>        Log level. Defaults to warning.",
        "    --list                     Instead of printing the final value of the key, list all",
        "                               values defined for the key in a list. Value separator is ';'.",
        "    --group <group>            Config group for the key. Defaults to Config",
        "",
        "REQUIRED OPTIONS:",
        "    --key <name>               Config key name. Required.",
    )
