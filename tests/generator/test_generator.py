"""The example generator writes a file, and the tool finds in it what the hooks asked for."""

import os
import pathlib
import shlex
import subprocess

import pytest

from support.tool import EMULATOR, clean_environment, run_tool

SOURCE = pathlib.Path(__file__).parents[2] / "examples" / "generator"
GENERATOR = pathlib.Path(os.environ["TARNWICK_BUILD"]) / "examples" / "generator" / "example-generator"

MOUNTS = [
    b"tmpfs /dev/shm tmpfs rw,nosuid,nodev 0 0",
    b"/userdata/containers/c1/media /data/media none bind,rw 0 0",
    b"/userdata/containers/c1/cache /cache none bind,rw 0 0",
]


def generate(*arguments, **environment):
    return subprocess.run(
        [*EMULATOR, GENERATOR, *arguments],
        env=clean_environment(CONTAINER="c1", **environment),
        capture_output=True,
        check=False,
    )


@pytest.fixture
def generated(tmp_path):
    """The generator's result, over the example's own data."""
    return generate(SOURCE / "config", SOURCE, tmp_path)


def test_the_tool_lists_the_mounts_that_the_hooks_printed(generated, tmp_path):
    assert generated.returncode == 0
    listed = run_tool("--user-id", "0", "--config", str(tmp_path), "--list", "--key", "Mounts")
    assert (listed.returncode, listed.stdout) == (0, b";".join(MOUNTS) + b"\n")


def test_the_tool_finds_the_defaults_that_were_merged(generated, tmp_path):
    asked = ("--user-id", "0", "--config", str(tmp_path), "--group", "Network", "--list")
    assert run_tool(*asked, "--key", "DNSServers").stdout == b"9.9.9.9;149.112.112.112\n"


def test_the_request_that_the_generator_names_works_as_it_is_printed(generated, tmp_path):
    words = shlex.split(generated.stdout.decode())
    assert words[0] == "tarnwick-parse-config"
    assert run_tool("--user-id", "0", *words[1:]).stdout == b";".join(MOUNTS) + b"\n"


def test_what_the_hooks_did_wrong_is_logged(generated):
    hooks = SOURCE / "hooks"
    refused = "proc /proc proc defaults 0 0"
    assert generated.stderr.decode("latin-1").splitlines() == [
        f"ERROR: Mount entry must begin with '/' or be 'tmpfs' or 'none': {refused}",
        f"WARNING: Invalid mount entry from {hooks}/10-shared-memory.sh: {refused}",
        f"WARNING: {hooks}/20-storage.sh exited with non-zero status: \x03",
        "ERROR: Not enough parts in mount entry: ",
        f"WARNING: Invalid mount entry from {hooks}/20-storage.sh: ",
    ]


def test_the_generated_file_is_the_owners_alone(generated, tmp_path):
    assert (tmp_path / "50-generated.conf").stat().st_mode & 0o777 == 0o600


def test_every_section_stands_between_its_markers(generated, tmp_path):
    text = (tmp_path / "50-generated.conf").read_text()
    path = SOURCE / "defaults" / "20-network.conf"
    section = f"\n# {path} content\n{path.read_text()}\n# end of {path} content\n"
    assert section in text


LOGGER = "com.vexmoor.tarnwick.lib.ConfigParser"
NODES = b"Required device nodes: "


@pytest.mark.parametrize(
    "level, record",
    [
        ("info", b"INFO: " + NODES + b"[/dev/binder, /dev/ashmem]\n"),
        ("debug", b"INFO: " + NODES + b"[/dev/binder, /dev/ashmem]\n"),
    ],
)
def test_a_whole_list_is_logged_when_the_environment_asks_for_it(tmp_path, level, record):
    asked = generate(SOURCE / "config", SOURCE, tmp_path, TARNWICK_LOGGING=f"{LOGGER}={level}")
    assert record in asked.stderr


def test_an_output_directory_that_is_not_there_is_a_failure(tmp_path):
    failed = generate(SOURCE / "config", SOURCE, tmp_path / "nowhere")
    assert (failed.returncode, failed.stdout) == (1, b"")
    missing = tmp_path / "nowhere" / "50-generated.conf"
    assert failed.stderr.endswith(f"ERROR: Failed to load config from '{missing}'\n".encode())


def test_a_configuration_that_is_invalid_generates_nothing(tmp_path):
    (tmp_path / "broken.conf").write_text("no key\n")
    assert generate(tmp_path, SOURCE, tmp_path).returncode == 1
    assert not (tmp_path / "50-generated.conf").exists()


def test_a_value_of_white_space_alone_is_told_and_generates_nothing(tmp_path):
    (tmp_path / "blank.conf").write_text("[Config]\nStoragePath= \n")
    failed = generate(tmp_path, SOURCE, tmp_path)
    assert (failed.returncode, failed.stdout) == (1, b"")
    assert failed.stderr.startswith(f"example-generator: {tmp_path}/blank.conf".encode())
    assert not (tmp_path / "50-generated.conf").exists()


def test_marks_of_the_format_in_a_mount_entry_are_read_as_such_later(tmp_path):
    hooks = tmp_path / "hooks"
    hooks.mkdir()
    hook = hooks / "10-marks.sh"
    hook.write_text(
        """#!/bin/sh
printf '%s\\n' '/srv/a;b media none bind 0 0' '/srv/$c media none bind 0 0' \\
    '/srv/$$d media none bind 0 0'
"""
    )
    hook.chmod(0o755)
    assert generate(SOURCE / "config", tmp_path, tmp_path).returncode == 0
    listed = run_tool("--user-id", "0", "--config", str(tmp_path), "--key", "Mounts", "--list")
    assert listed.stdout == b"/srv/a;b media none bind 0 0;/srv/$d media none bind 0 0\n"
    last = run_tool("--user-id", "0", "--config", str(tmp_path), "--key", "Mounts")
    assert b"'$' must be followed by '{' or '$': /srv/$c" in last.stderr


def test_any_other_number_of_arguments_shows_the_usage():
    assert generate(SOURCE).returncode == 1
    assert generate(SOURCE).stderr.startswith(b"usage: example-generator ")
