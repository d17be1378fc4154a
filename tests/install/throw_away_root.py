"""A copy of this machine's file system that is gone when the test ends.

An overlay over / in a private mount namespace, whose changes go to memory: packages are installed
into it, and it tells afterwards what they left behind. Needs root.
"""

import contextlib
import os
import pathlib
import subprocess
import typing

import pytest

from install_commands import run

# Says that it is ready, and keeps the namespace until its input ends.
SET_UP = r"""
set -eu
mount -t tmpfs tmpfs "$1"
mkdir "$1/changes" "$1/work" "$1/machine"
mount -t overlay overlay -o "lowerdir=/,upperdir=$1/changes,workdir=$1/work" "$1/machine"
for directory in dev proc sys; do mount --rbind "/$directory" "$1/machine/$directory"; done
echo ready
read -r _ || true
"""
ENVIRONMENT = ["env", "-i", "HOME=/", "LANG=C.UTF-8", "PATH=/usr/sbin:/usr/bin:/sbin:/bin"]

# What dpkg and the tools that it starts keep for themselves.
BOOKS = ("etc/ld.so.cache", "var/cache/", "var/lib/dpkg/", "var/log/")


class ThrowAwayRoot(typing.NamedTuple):
    place: pathlib.Path
    holder: int  # A process in the namespace.

    def beside(self, *command, **options):
        """Runs a command in the namespace, which sees this machine's files as they are."""
        return run("nsenter", "--mount", f"--target={self.holder}", *command, **options)

    def inside(self, *command):
        """Runs a command that takes the copy for the machine."""
        return self.beside("chroot", self.place / "machine", *ENVIRONMENT, *command)

    def copy_in(self, source, target):
        """Copies a file or directory of this machine to a path of the copy."""
        path = f"{self.place}/machine{target}"
        self.beside("mkdir", "-p", os.path.dirname(path))
        self.beside("cp", "--recursive", source, path)

    def changes(self):
        """The paths that were made, changed or removed, apart from dpkg's books."""
        find = ["find", self.place / "changes", "-mindepth", "1", "-printf", r"%y %P\n"]
        found = [line.split(" ", 1) for line in self.beside(*find).stdout.splitlines()]
        return {
            path
            for kind, path in found
            # A directory that was there before has only passed its changed files on.
            if not path.startswith(BOOKS) and not (kind == "d" and os.path.isdir(f"/{path}"))
        }


@contextlib.contextmanager
def throw_away_root(place):
    """Makes the copy, with its files mounted at `place`; skips the test where that can't be."""
    if os.geteuid() != 0:
        pytest.skip("a throw-away root directory needs root")
    with subprocess.Popen(
        ["unshare", "--mount", "sh", "-c", SET_UP, "sh", place],
        stdin=subprocess.PIPE,
        stdout=subprocess.PIPE,
        stderr=subprocess.PIPE,
        text=True,
    ) as holder:
        if holder.stdout.readline() != "ready\n":
            pytest.skip(f"no throw-away root directory here: {holder.stderr.read().strip()}")
        yield ThrowAwayRoot(place, holder.pid)  # Its input is closed behind this block.
