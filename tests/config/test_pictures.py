"""The pictures of the documents show what the program prints today."""

import html
import pathlib
import re
import shlex
import subprocess
import sys

import pytest
from support.tool import EMULATOR

ROOT = pathlib.Path(__file__).parents[2]
DRAW = ROOT / "scripts" / "draw-terminal"
PICTURES = sorted((ROOT / "docs" / "pictures").glob("*.svg"))


def draw(*words):
    return subprocess.run([sys.executable, DRAW, *words], capture_output=True, text=True, timeout=120, check=False)


def test_there_are_pictures():
    assert "check.svg" in [path.name for path in PICTURES]


@pytest.mark.skipif(bool(EMULATOR), reason="pictures are drawn by native programs")
@pytest.mark.parametrize("path", PICTURES, ids=lambda path: path.name)
def test_a_picture_shows_what_its_command_prints(path):
    picture = path.read_text()
    title = html.unescape(re.search("<title>(.*)</title>", picture)[1])
    drawn = draw(*shlex.split(title))
    assert (drawn.stdout, drawn.stderr) == (picture, "")


def test_only_commands_of_the_program_are_drawn():
    refused = draw("ls", "-l")
    assert (refused.returncode, refused.stdout) == (1, "")
    assert refused.stderr == "usage: draw-terminal tarnwick-config ARGUMENT...\n"
