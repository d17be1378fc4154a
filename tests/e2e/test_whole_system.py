"""Requests inside a root directory of their own, where files at fixed places can be laid out."""

import os
import pathlib
import subprocess

import pytest
from e2e_helpers import Outcome, in_a_real_root, lines, one_key
from support.tool import (
    TIME_LIMIT_SECONDS,
    TOOL,
    clean_environment,
    tool_command,
    write_files,
)

# All build trees: the sysroot of an emulated tool stands beside its own.
BUILD_DIRECTORY = str(pathlib.Path(TOOL).parent.parent.parent)
PASSWD = "root:x:0:0::/root:/bin/sh\nodd name:x:1000:1000::/home/Odd Home:/bin/sh\n"
WHO = one_key("${USER_ID} ${USER} ${HOME}")

# The bind mounts live in a mount namespace of their own and vanish with it.
SCRIPT = """
root=$1; build=$2; shift 2
for directory in /usr /proc /dev "$build"; do mount --rbind "$directory" "$root$directory"; done
exec chroot "$root" "$@"
"""


def unshare_command():
    """The command that gives its child a private mount namespace; without root, also a user."""
    return ["unshare", "-m"] if os.geteuid() == 0 else ["unshare", "-rm"]


@pytest.fixture(scope="module")
def namespaces():
    """Skips where the machine does not let its users have namespaces."""
    if subprocess.run([*unshare_command(), "true"], capture_output=True).returncode != 0:
        pytest.skip("no mount namespaces here")


@pytest.fixture
def ask_in_root(namespaces, tmp_path):
    """Lays out files below a root directory and asks for key K in it."""
    # An emulator in the tool's place wants to leave files in /tmp.
    for directory in ("usr", "proc", "dev", "tmp", BUILD_DIRECTORY.lstrip("/")):
        (tmp_path / directory).mkdir(parents=True, exist_ok=True)
    for link in ("bin", "lib", "lib64"):
        (tmp_path / link).symlink_to(f"usr/{link}")

    def ask(files, *arguments):
        write_files(tmp_path, {"etc/passwd": PASSWD, **files})
        command = [*unshare_command(), "sh", "-ec", SCRIPT, "sh", str(tmp_path), BUILD_DIRECTORY]
        run = subprocess.run(
            [*command, *tool_command("--user-id", "0", "--key", "K", *arguments)],
            env=clean_environment(),
            capture_output=True,
            timeout=TIME_LIMIT_SECONDS,
        )
        return Outcome(run.returncode, run.stdout, run.stderr)

    return ask


@pytest.mark.parametrize("arguments", [[], ["--configs", ""]])
def test_the_default_directory_answers_when_none_is_named(ask_in_root, arguments):
    files = {"etc/tarnwick.conf.d/a.conf": one_key("default")}
    assert ask_in_root(files, *arguments) == (0, b"default\n", b"")


def test_the_default_directory_is_left_out_when_another_is_named(ask_in_root):
    files = {"etc/tarnwick.conf.d/a.conf": "bad\n", "other/a.conf": one_key("other")}
    assert ask_in_root(files, "--config", "/other") == (0, b"other\n", b"")


@in_a_real_root
@pytest.mark.parametrize(
    ("arguments", "answer"),
    [
        (["--config", ""], "root"),
        (["--configs", ":"], "root"),
        (["--configs", "/a::/b"], "a;root;b"),
        (["--configs", "/a:"], "a"),
        (["--config", "/"], "root"),
    ],
)
def test_an_empty_directory_name_stands_for_the_root(ask_in_root, arguments, answer):
    values = {"a/x.conf": "a", "b/x.conf": "b", "x.conf": "root"}
    files = {name: one_key(value) for name, value in values.items()}
    assert ask_in_root(files, "--list", *arguments) == (0, lines(answer), b"")


def test_an_empty_directory_name_without_files_is_named_as_it_is(ask_in_root):
    outcome = ask_in_root({}, "--configs", ":/x")
    assert outcome == (1, b"", b"No configuration to read in ,/x\n")


@pytest.mark.parametrize(
    ("files", "answer"),
    [
        pytest.param({}, "/vendor", id="neither partition"),
        pytest.param({"odm/lib/x": ""}, "/odm", id="a library directory"),
        pytest.param({"odm/lib": ""}, "/odm", id="a plain file"),
        pytest.param({"odm/x": ""}, "/vendor", id="a partition without libraries"),
        pytest.param({"vendor/lib/x": ""}, "/vendor", id="the vendor partition only"),
    ],
)
def test_the_vendor_directory_depends_on_the_odm_libraries(ask_in_root, files, answer):
    files = {**files, "conf/a.conf": one_key("${ODM_DIR}")}
    assert ask_in_root(files, "--config", "/conf") == (0, lines(answer), b"")


@pytest.mark.parametrize(("user_id", "answer"), [("0", "0 root /root"), ("1000", "1000 odd name /home/Odd Home")])
def test_the_password_file_gives_name_and_home(ask_in_root, user_id, answer):
    files = {"conf/a.conf": WHO}
    assert ask_in_root(files, "--config", "/conf", "--user-id", user_id) == (0, lines(answer), b"")


def test_a_user_that_the_password_file_does_not_know_is_refused(ask_in_root):
    outcome = ask_in_root({"conf/a.conf": WHO}, "--config", "/conf", "--user-id", "1001")
    expected = lines("ERROR: Failed to get user information for uid 1001: Success")
    assert outcome == (1, b"", expected)
