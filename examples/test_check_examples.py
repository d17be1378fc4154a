"""Runs the examples of tarnwick-config as somebody does who has copied them."""

import json
import pathlib
import shlex
import shutil
import subprocess
import sys

import pytest

ROOT = pathlib.Path(__file__).parent.parent
sys.path.insert(0, str(ROOT / "tests"))
from support.tool import clean_environment, config_command

GOOD = "[Config]\nArch=arm64\n"
BAD = "[Config]\nArch arm64\n"


@pytest.fixture
def environment(tmp_path):
    """An environment in which tarnwick-config is on the path, and git knows an author."""
    script = tmp_path / "bin" / "tarnwick-config"
    script.parent.mkdir()
    script.write_text(f'#!/bin/sh\nexec {shlex.join(config_command())} "$@"\n')
    script.chmod(0o755)
    own = clean_environment(HOME=str(tmp_path), GIT_CONFIG_NOSYSTEM="1")
    return {**own, "PATH": f"{script.parent}:{own['PATH']}"}


def run(command, environment, **options):
    return subprocess.run(command, env=environment, capture_output=True, text=True, timeout=120, check=False, **options)


def test_the_check_of_make_run_shows_what_it_announces(environment, tmp_path):
    result = run([ROOT / "examples" / "check", tmp_path / "bin" / "tarnwick-config"], environment, cwd="/")
    assert result.returncode == 0, result.stdout + result.stderr
    assert "examples/broken.conf.d/20-broken.conf:42:12: error: " in result.stdout


def test_the_explanation_of_make_run_ends_with_the_current_value(environment, tmp_path):
    result = run([ROOT / "examples" / "explain", tmp_path / "bin" / "tarnwick-config"], environment, cwd="/")
    assert (result.returncode, result.stderr) == (0, "")
    lines = [" ".join(line.split()) for line in result.stdout.splitlines()]
    assert "examples/user.conf.d/40-storage.conf:3 = unset: 1 value gone" in lines
    assert "examples/user.conf.d/40-storage.conf:4 = ${HOME}/.${config:Config/Hostname} current" in lines


@pytest.mark.skipif(not shutil.which("git"), reason="git is not installed")
def test_the_hook_refuses_what_is_staged_and_lets_the_rest_pass(environment, tmp_path):
    repository = tmp_path / "repository"
    (repository / "conf.d").mkdir(parents=True)
    file = repository / "conf.d" / "a.conf"

    def git(*arguments):
        author = ["-c", "user.name=A", "-c", "user.email=a@b.invalid"]
        return run(["git", *author, *arguments], environment, cwd=repository)

    git("init", "--quiet")
    shutil.copy(ROOT / "examples" / "pre-commit", repository / ".git" / "hooks" / "pre-commit")
    file.write_text(BAD)
    git("add", ".")
    file.write_text(GOOD)
    refused = git("commit", "--message=bad")
    assert refused.returncode != 0
    assert "conf.d/a.conf:2:5: error: expected '=' after the key" in refused.stdout + refused.stderr
    git("add", ".")
    assert git("commit", "--message=good").returncode == 0


@pytest.mark.parametrize("text,status", [(GOOD, 0), (BAD, 1)])
def test_the_job_prints_faults_as_compilers_do_and_keeps_the_report(text, status, environment, tmp_path):
    (tmp_path / "conf.d").mkdir(mode=0o755)
    (tmp_path / "conf.d" / "a.conf").write_text(text)
    result = run([ROOT / "examples" / "ci-job", "report.json", "conf.d"], environment, cwd=tmp_path)
    assert (result.returncode, result.stderr) == (status, "")
    assert len(result.stdout.splitlines()) == status
    assert json.loads((tmp_path / "report.json").read_text())["errors"] == status


def vim(commands, environment, directory):
    """Runs Vim's command mode over conf.d/a.conf; returns what it writes to the file "out"."""
    command = ["vim", "-es", "-N", "-u", "NONE", "--cmd", f"set runtimepath^={ROOT}/vim"]
    command += ["-c", "filetype on", "-c", "edit conf.d/a.conf", *(word for text in commands for word in ("-c", text))]
    run([*command, "-c", "qall!"], environment, cwd=directory)
    return (directory / "out").read_text().splitlines()


@pytest.mark.skipif(not shutil.which("vim"), reason="vim is not installed")
def test_vims_error_list_has_the_faults_in_their_places(environment, tmp_path):
    (tmp_path / "conf.d").mkdir(mode=0o755)
    (tmp_path / "conf.d" / "a.conf").write_text(BAD + "Hostnmae=x\n")
    columns = "printf('%d:%d %s %s', v:val.lnum, v:val.col, v:val.type, fnamemodify(bufname(v:val.bufnr), ':t'))"
    commands = ["compiler tarnwick", "silent make", f'call writefile(map(getqflist(), "{columns}"), "out")']
    found = vim(commands, environment, tmp_path)
    assert found == ["2:5 e a.conf", "3:1 w a.conf"]


@pytest.mark.skipif(not shutil.which("vim"), reason="vim is not installed")
def test_vims_syntax_tells_the_parts_of_a_line(environment, tmp_path):
    (tmp_path / "conf.d").mkdir()
    text = "# note\n[Config]\nArch=a;$$${env:A}$\n indented\n"
    (tmp_path / "conf.d" / "a.conf").write_text(text)
    name = "synIDattr(synID({}, {}, 1), 'name')"
    places = [(1, 3), (2, 2), (3, 2), (3, 5), (3, 6), (3, 7), (3, 8), (3, 12), (3, 18), (4, 2)]
    names = ", ".join(name.format(*place) for place in places)
    commands = ["syntax on", "setfiletype tarnwick", f'call writefile([{names}], "out")']
    assert vim(commands, environment, tmp_path) == [
        f"tarnwick{part}" for part in "Comment Group Key Equals Value Separator Escape Template Dollar Fault".split()
    ]


@pytest.mark.skipif(not shutil.which("vim"), reason="vim is not installed")
@pytest.mark.parametrize("path", ["tarnwick.conf.d/a.conf", "tarnwick.conf.d/a.txt", "other.conf.d/a.conf"])
def test_vim_knows_files_of_the_directories_that_are_read(path, environment, tmp_path):
    (tmp_path / path).parent.mkdir()
    (tmp_path / path).write_text(GOOD)
    [found] = vim([f"edit! {path}", 'call writefile([&filetype], "out")'], environment, tmp_path)
    assert (found == "tarnwick") == (path == "tarnwick.conf.d/a.conf")
