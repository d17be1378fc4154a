"""Types into real shells and looks at what their completion makes of the line.

TARNWICK_COMPLETIONS is the directory with the built completions.
"""

import ast
import functools
import os
import pathlib
import re
import shlex
import shutil
import subprocess

import pexpect
import pytest
from support.tool import config_command, run_config, run_tool

ROOT = pathlib.Path(__file__).parent.parent
BUILT = pathlib.Path(os.environ.get("TARNWICK_COMPLETIONS", ".")).resolve()
TIME_LIMIT_SECONDS = 60

# In each shell Control-X a puts every match into the line.
BASH_SETUP = r"""
unset PROMPT_COMMAND
bind '"\C-xa": insert-completions'
source {built}/tarnwick-parse-config.bash
source {built}/tarnwick-config.bash
"""
ZSH_SETUP = r"""
fpath=({built} $fpath)
autoload -Uz compinit && compinit -u -D
zle -C insert-matches complete-word _generic
zstyle ':completion:insert-matches:*' completer _all_matches _complete
zstyle ':completion:insert-matches:*' insert yes
zstyle ':completion:insert-matches:*' old-matches no
bindkey -e
bindkey '^Xa' insert-matches
"""
# The line that is typed shows none of the marks around the words.
SHOW_WORDS = r"""
show_words() { printf '%s\n' "words{" "$@" "}words"; }
"""
WORDS = r"words\{\r\n(.*?)\}words"
SHELLS = {
    "bash": ("bash --norc --noprofile -i", BASH_SETUP),
    "zsh": ("zsh -f -i", ZSH_SETUP),
}
# Whoever loads the second file runs a command; the third would run one in a shell that takes names
# for more than names.
NAMES_IN_FILES = {
    "vendor.conf.d/10-own.conf": "[Own]\nFirst=1\nSecond key=2\nSecond.key=2\n[Config]\nOwnKey=1\nArch=x\nno name\n",
    "user.conf.d/10-own.conf": "[Other]\nThird=${system:touch loaded}\n",
    "user.conf.d/20-hostile.conf": "[$(touch loaded)]\nA=1\n[Other]\n$(touch loaded)=1\nB`touch loaded`=1\n",
}
ALL_MATCHES, LINE_START = "\x18a", "\x01"


@pytest.fixture(scope="module", params=SHELLS)
def shell(request, tmp_path_factory):
    """A function that types a line, has it completed, and returns the words it then holds."""
    if not shutil.which(request.param):
        pytest.skip(f"{request.param} is not installed")
    command, setup = SHELLS[request.param]
    directory = tmp_path_factory.mktemp(request.param)
    for name in ["user.conf.d", "vendor.conf.d", "vendor data"]:
        (directory / "work" / name).mkdir(parents=True)
    (directory / "work" / "vendor-file").touch()
    for name, text in NAMES_IN_FILES.items():
        (directory / "work" / name).write_text(text)
    program = directory / "bin" / "tarnwick-config"
    program.parent.mkdir()
    program.write_text(f'#!/bin/sh\nexec {shlex.join(config_command())} "$@"\n')
    program.chmod(0o755)
    setup_file = directory / "setup"
    setup_file.write_text(SHOW_WORDS + setup.format(built=BUILT))
    environment = {**os.environ, "TERM": "dumb", "HOME": str(directory), "HISTFILE": ""}
    environment["PATH"] = f"{program.parent}:{environment['PATH']}"
    terminal = pexpect.spawn(
        command, cwd=directory / "work", env=environment, encoding="utf-8", timeout=TIME_LIMIT_SECONDS
    )
    terminal.delaybeforesend = None  # nothing here waits for a prompt

    def words_after_completing(line):
        terminal.sendline(line + ALL_MATCHES + LINE_START + "show_words ")
        terminal.expect(WORDS)
        return terminal.match[1].splitlines()

    terminal.sendline(f". {setup_file}")
    yield words_after_completing
    terminal.close(force=True)


@pytest.fixture
def offers(shell):
    """A function that returns what completion offers for the last word of `line`."""

    def offers_for(line):
        typed = line.split()
        kept = len(typed) if line.endswith(" ") else len(typed) - 1
        return shell(line)[kept:]

    return offers_for


# Has the compiler expand the rows of the vocabulary as the library does.
LISTING = """
#include "vocabulary_names.h"
#define KEY(name, type) #name,
#define GROUP(name, KEYS) #name: [KEYS(KEY)],
{TARNWICK_GROUPS(GROUP)}
"""


@functools.cache
def vocabulary():
    """The keys of each group, as the compiler reads them."""
    command = [os.environ.get("TARNWICK_CC") or "cc", "-E", "-P", f"-I{ROOT}/src", "-x", "c", "-"]
    expanded = subprocess.run(command, input=LISTING, capture_output=True, text=True, check=True)
    return ast.literal_eval(expanded.stdout.strip())


def usage_options():
    usage = run_tool("--user-id", "0").stdout.decode()
    return re.findall(r"^    (--[a-z-]+)", usage, flags=re.MULTILINE)


def test_a_dash_offers_every_option_of_the_usage_text(offers):
    assert sorted(offers("tarnwick-parse-config --")) == sorted(usage_options())


def test_an_unfinished_option_offers_the_options_that_begin_so(offers):
    assert sorted(offers("tarnwick-parse-config --co")) == ["--config", "--configs"]


def test_log_level_offers_the_levels(offers):
    levels = ["critical", "debug", "error", "info", "warning"]
    assert sorted(offers("tarnwick-parse-config --log-level ")) == levels


@pytest.mark.parametrize("level", ["critical", "debug", "error", "info", "warning"])
def test_the_tool_accepts_each_level_that_is_offered(level, tmp_path):
    (tmp_path / "a.conf").write_text("[Config]\nArch=arm64\n")
    result = run_tool("--user-id", "0", "--config", str(tmp_path), "--log-level", level, "--key", "Arch")
    assert result.returncode == 0


def test_group_offers_the_groups_of_the_vocabulary(offers):
    assert sorted(offers("tarnwick-parse-config --group ")) == sorted(vocabulary())


@pytest.mark.parametrize("group", ["Audio", "Config", "Devices", "Features", "GeneratedConfig", "Network"])
def test_key_offers_the_keys_of_the_group_given(offers, group):
    offered = offers(f"tarnwick-parse-config --list --group {group} --user-id 0 --key ")
    assert sorted(offered) == sorted(vocabulary()[group])


def test_key_offers_the_keys_of_the_default_group_when_none_is_given(offers):
    assert sorted(offers("tarnwick-parse-config --key ")) == sorted(vocabulary()["Config"])


def test_key_narrows_down_to_what_was_typed(offers):
    offered = offers("tarnwick-parse-config --group Audio --key BufferSizeOutD")
    assert sorted(offered) == ["BufferSizeOutDeepBuffer", "BufferSizeOutDefault"]


def test_the_last_group_counts(offers):
    offered = offers("tarnwick-parse-config --group Audio --group Network --key ")
    assert sorted(offered) == sorted(vocabulary()["Network"])


def test_an_unknown_group_offers_no_key(offers):
    assert offers("tarnwick-parse-config --group Nothing --key ") == []


def test_config_offers_directories_and_no_files(offers):
    offered = offers("tarnwick-parse-config --config vendor.")
    assert [name.rstrip("/") for name in offered] == ["vendor.conf.d"]


def test_a_directory_with_a_blank_in_its_name_stays_one_word(shell):
    words = shell("tarnwick-parse-config --config vendor\\ ")
    assert [word.rstrip("/") for word in words[1:]] == ["--config", "vendor data"]


def test_configs_offers_directories_behind_each_colon(shell):
    words = shell("tarnwick-parse-config --configs vendor.conf.d:us")
    assert [word.rstrip("/") for word in words[1:]] == ["--configs", "vendor.conf.d:user.conf.d"]


def test_an_option_stands_behind_a_finished_value(offers):
    assert offers("tarnwick-parse-config --configs a:b --key Arch --li") == ["--list"]


def test_a_value_that_looks_like_an_option_is_a_value(offers):
    assert sorted(offers("tarnwick-parse-config --instance --group --group N")) == ["Network"]


def test_an_instance_name_is_left_to_the_user(offers):
    assert offers("tarnwick-parse-config --instance ") == []


def test_a_variable_before_the_command_does_no_harm(offers):
    assert offers("LANG=C tarnwick-parse-config --log-level d") == ["debug"]


# --- tarnwick-config ---


def help_options(*command):
    """The long options that the help text of a command lists."""
    text = run_config(*command, "--help").stdout.decode()
    return set(re.findall(r"^  (--?[a-z-]+)", text, flags=re.MULTILINE))


def command_names():
    """The commands that the help text lists."""
    names = re.findall(r"^  ([a-z]+) ", run_config("--help").stdout.decode(), flags=re.MULTILINE)
    assert "check" in names
    return names


def test_the_commands_are_offered_first(offers):
    assert sorted(offers("tarnwick-config ")) == sorted(command_names())
    assert offers("tarnwick-config --config vendor.conf.d --instance check ch") == ["check"]


def test_a_dash_offers_the_options_of_the_command_and_of_every_command(offers):
    for command in command_names():
        expected = help_options() | help_options(command)
        assert set(offers(f"tarnwick-config {command} -")) | {"--help", "--version"} == expected, command


def test_ignore_offers_every_id(offers):
    ids = [line.split("\t")[0] for line in run_config("check", "--list-ids").stdout.decode().splitlines()]
    assert sorted(word.rstrip(",") for word in offers("tarnwick-config check --ignore ")) == sorted(ids)


def test_ignore_offers_ids_behind_a_comma(shell):
    words = shell("tarnwick-config check --ignore nul-byte,bad-n")
    assert words[-1].rstrip(",") == "nul-byte,bad-number"


def test_forms_are_those_of_the_command(offers):
    assert sorted(offers("tarnwick-config check --format ")) == ["gcc", "json", "text"]
    assert sorted(offers("tarnwick-config files --format ")) == ["json", "text"]
    assert sorted(offers("tarnwick-config get --default --list --format ")) == ["json", "shell", "text"]
    assert sorted(offers("tarnwick-config show --format ")) == ["ini", "json", "text"]


def test_a_path_is_a_file_or_a_directory(offers):
    offered = offers("tarnwick-config check vendor-")
    assert offered == ["vendor-file"]


def test_known_offers_groups(offers):
    assert sorted(offers("tarnwick-config check --known ")) == sorted(vocabulary())


def test_known_offers_the_keys_of_a_group_behind_the_slash(offers):
    assert sorted(offers("tarnwick-config check --known Network/")) == sorted(
        f"Network/{key}" for key in vocabulary()["Network"]
    )


def test_known_offers_the_names_in_the_files_in_reach(offers):
    line = "tarnwick-config --config vendor.conf.d check --config user.conf.d --known "
    assert sorted(offers(line)) == sorted([*vocabulary(), "Own", "Other"])
    assert sorted(offers(line + "Own/")) == ["Own/First", "Own/Second.key"]
    assert sorted(offers(line + "Config/Ow")) == ["Config/OwnKey"]
    lists = "tarnwick-config check --configs vendor.conf.d:user.conf.d --known O"
    assert sorted(offers(lists)) == ["Other", "Own"]


def test_completion_loads_nothing_and_runs_nothing(shell):
    words = shell("tarnwick-config --config user.conf.d check --known Other/")
    assert words[-1] == "Other/Third"
    assert shell("tarnwick-config check lo")[-1] == "lo"


def test_an_option_of_every_command_may_stand_behind_the_command(offers):
    assert sorted(offers("tarnwick-config check --instance x --format ")) == ["gcc", "json", "text"]


def test_explain_offers_groups_and_keys_in_reach(offers):
    line = "tarnwick-config explain --config user.conf.d "
    assert sorted(word.rstrip("/") for word in offers(line)) == sorted([*vocabulary(), "Other"])
    assert sorted(offers("tarnwick-config --config vendor.conf.d explain Config/Ow")) == ["Config/OwnKey"]
    assert sorted(offers("tarnwick-config explain --format ")) == ["json", "text"]
