"""Runs every example of the manual and the documents, and holds the pages against the code."""

import itertools
import os
import pathlib
import re
import shutil
import subprocess

import pytest
from support.tool import EMULATOR, run_config, run_tool, tool_command

from text_examples import FENCE, IDIOM_KINDS, blocks_of, examples_in, idioms_in, literal_text, run_example, run_idiom

ROOT = pathlib.Path(__file__).parent.parent
PAGES = sorted((ROOT / "man").glob("*.scd"))
DOCUMENTS = [
    ROOT / "README.md",
    ROOT / "docs" / "file-format.md",
    ROOT / "docs" / "reference.md",
]
BUILD = os.environ.get("TARNWICK_BUILD", "")

EXAMPLES = [(path, example) for path in [*PAGES, *DOCUMENTS] for example in examples_in(path)]


def needs_build(example):
    """Whether the example has a program to compile or runs a program of the tree."""
    return any(b.kind == "program" or "example-generator" in b.text for b in example.blocks)


@pytest.mark.parametrize("example", [pytest.param(e, id=f"{p.name}: {e.title}") for p, e in EXAMPLES])
def test_the_example_shows_what_happens(example, tmp_path):
    if needs_build(example) and (EMULATOR or not BUILD):
        pytest.skip("needs TARNWICK_BUILD, a build tree for this machine")
    # Documents of the repository may show its own example configuration.
    (tmp_path / "examples").symlink_to(ROOT / "examples")

    results = run_example(example, tmp_path, tool_command(), BUILD)

    assert results, "an example without a transcript proves nothing"
    for line, written, seen in results:
        assert seen == written, f"the transcript at line {line}"


SHELLS = {
    "dash": ["dash"],
    "dash -eu": ["dash", "-eu"],
    "bash -euo pipefail": ["bash", "-euo", "pipefail"],
    "bash": ["bash"],
}
IDIOMS = [
    pytest.param(idiom, shell, id=f"{path.name}: {idiom.name}, {name}")
    for path in [*PAGES, *DOCUMENTS]
    for idiom in idioms_in(path)
    for name, shell in SHELLS.items()
    if name.startswith("bash") or idiom.kind != "bash idiom"
]


@pytest.mark.parametrize(("idiom", "shell"), IDIOMS)
def test_a_piece_of_a_script_goes_on_unless_the_tool_fails(idiom, shell, tmp_path):
    runs = []
    for status in (0, 1, 2):
        directory = tmp_path / str(status)
        directory.mkdir()
        runs.append(run_idiom(idiom, shell, status, directory))
    value, failure, no_value = runs

    assert (value.went_on, value.status) == (True, 0)
    assert (no_value.went_on, no_value.status) == (True, 0)
    assert (failure.went_on, failure.status) == (False, 1)
    assert "usage" not in failure.output
    if "list" in idiom.name:
        assert (value.output, no_value.output) == ("mount: one\nmount: two\nwent-on\n", "went-on\n")
    # The loops ask for two keys, whatever a request does with its standard input.
    assert value.requests == no_value.requests == (2 if "loop" in idiom.name else 1)


def test_only_idioms_take_a_program_s_output_into_a_variable():
    """Nothing else shows whether `set -e` or a failure would be noticed."""
    for path in [*PAGES, *DOCUMENTS]:
        for block in blocks_of(path):
            takes_output = re.search(r"=\$\((tarnwick-parse-config|tarnwick-config|ask)\b", block.text)
            assert block.kind in IDIOM_KINDS or not takes_output, f"{path.name}:{block.line}: make it an idiom"


def test_the_documents_have_idioms():
    assert {path.name for path in [*PAGES, *DOCUMENTS] if idioms_in(path)} >= {
        "README.md",
        "tarnwick-config.1.scd",
        "tarnwick-parse-config.1.scd",
    }


def text_before(path, block):
    """What a reader sees between the block before and this one."""
    lines = path.read_text().splitlines()[: block.line - 1]
    between = itertools.takewhile(lambda line: line != FENCE, reversed(lines))
    return [line for line in between if not re.match("; |<!-- ", line)]


def test_a_reader_sees_the_name_of_every_file():
    """The comments that name the files are for the tests: a rendered page does not show them."""
    for path in [*PAGES, *DOCUMENTS]:
        for block in files_of(path):
            text = literal_text(path, text_before(path, block))
            assert block.name in text, f"{path.name}:{block.line}: say that this is {block.name}"


def test_a_document_that_shows_a_users_file_says_what_its_writer_can_do():
    showing = [path for path in [*PAGES, *DOCUMENTS] if any("user" in block.name for block in files_of(path))]
    assert len(showing) >= 4
    for path in showing:
        text = " ".join(path.read_text().split())
        assert "can run commands with the rights of everybody who reads it" in text, path.name


def files_of(path):
    return [block for block in blocks_of(path) if block.kind in ("file", "program")]


def page_text(name):
    """A page's source without its markup."""
    source = (ROOT / "man" / name).read_text()
    return without_markup(re.sub(r"\+\+$", "", source, flags=re.MULTILINE))


def without_markup(text):
    return re.sub(r"[*_\\]", "", text)


def usage_options():
    usage = run_tool("--user-id", "0").stdout.decode()
    return re.findall(r"^    (--[a-z-]+)", usage, flags=re.MULTILINE)


def test_every_option_of_the_usage_text_is_a_heading_of_the_options_section():
    section = (ROOT / "man" / "tarnwick-parse-config.1.scd").read_text()
    section = section[section.index("# OPTIONS") : section.index("# THE USER")]
    headings = re.findall(r"^\*(--[a-z-]+)\*", section, flags=re.MULTILINE)
    assert sorted(headings) == sorted(usage_options())


def help_of(*command):
    return run_config(*command, "--help").stdout.decode()


def options_in(help_text):
    return re.findall(r"^  (--?[a-z-]+)", help_text, flags=re.MULTILINE)


def commands_of_tarnwick_config():
    names = re.findall(r"^  ([a-z]+) ", help_of(), flags=re.MULTILINE)
    assert "check" in names
    return names


def section_of(page, title):
    """The text below a title, up to the next one; empty when there is no such title."""
    found = re.search(rf"^# {title}\n(.*?)(?=^# )", page, flags=re.MULTILINE | re.DOTALL)
    return found[1] if found else ""


def headings_in(section):
    return re.findall(r"^\*([a-z-]+)\*(?: _.*)?$", section, flags=re.MULTILINE)


def test_every_command_of_tarnwick_config_is_in_its_manual_and_in_the_readme():
    page = (ROOT / "man" / "tarnwick-config.1.scd").read_text()
    readme = (ROOT / "README.md").read_text()
    commands = commands_of_tarnwick_config()
    synopsis = section_of(page, "SYNOPSIS")
    assert re.findall(r"^\*tarnwick-config\* \[_context_\] \*(\w+)\*", synopsis, flags=re.MULTILINE) == commands
    assert headings_in(section_of(page, "DESCRIPTION")) == commands
    assert [name for name in commands if f"`tarnwick-config {name}" not in readme] == []


def test_every_option_of_a_command_is_a_heading_of_its_section():
    page = (ROOT / "man" / "tarnwick-config.1.scd").read_text()
    assert sorted(headings_in(section_of(page, "CONTEXT"))) == sorted(options_in(help_of()))
    for command in commands_of_tarnwick_config():
        section = section_of(page, f"OPTIONS OF {command.upper()}")
        assert sorted(headings_in(section)) == sorted(set(options_in(help_of(command))) - {"--help"}), command


def test_every_source_that_explain_names_is_in_its_manual():
    source = (ROOT / "tools" / "config" / "explain" / "user_story.cpp").read_text()
    [rows] = re.findall(r"kSources\{(.*?)\}", source, flags=re.DOTALL)
    section = section_of((ROOT / "man" / "tarnwick-config.1.scd").read_text(), "EXPLANATIONS")
    shown = [line.split(",")[0] for line in section.splitlines()]
    names = re.findall(r'"(.*?)"', rows)
    assert "environment" in names
    assert [name for name in names if name not in shown] == []


def test_every_kind_of_fault_is_a_heading_with_its_severity_and_meaning():
    page = (ROOT / "man" / "tarnwick-config.1.scd").read_text()
    listed = run_config("check", "--list-ids").stdout.decode().splitlines()
    headings = re.findall(
        r"^\*([a-z0-9-]+)\* \((error|warning|error, warning)\)\n\t(.*)\.\+\+$", page, flags=re.MULTILINE
    )
    documented = [(name, severities.replace(" ", ""), without_markup(text)) for name, severities, text in headings]
    assert documented == [tuple(map(without_markup, line.split("\t"))) for line in listed]


# What is no message: comments, and the C++ character constant of a quote.
NO_MESSAGE = re.compile(r"""//[^\n]*|'"'""")


# Stands for a field of a diagnostic in the words of its record.
PLACEHOLDER = re.compile(r"\{[a-z]+\}")


def messages_of(source):
    """The literal texts of three words and more in a C++ source file."""
    literals = re.findall(r'"((?:[^"\\\n]|\\.)*)"', NO_MESSAGE.sub("", source))
    pieces = (piece for literal in literals for piece in PLACEHOLDER.split(literal))
    texts = (piece.replace("\\n", "").strip() for piece in pieces)
    return [text for text in texts if len(text.split()) >= 3 and "%s" not in text]


def test_every_message_of_the_sources_is_in_the_manual():
    manual = "".join(page_text(page.name) for page in PAGES)
    texts = {
        text: path.name
        for path in [*ROOT.glob("src/**/*.cpp"), *ROOT.glob("tools/**/*.cpp")]
        for text in messages_of(path.read_text())
    }
    assert len(texts) > 60, "the sources' messages were not found"
    # Markup is gone from the manual's text, so it must be from the messages as well.
    missing = {text: file for text, file in texts.items() if without_markup(text) not in manual}
    assert not missing


def heading_anchors(document):
    headings = re.findall(r"^#+ (.*)$", document.read_text(), flags=re.MULTILINE)
    return {re.sub(r"[^a-z0-9 _-]", "", h.lower()).replace(" ", "-") for h in headings}


@pytest.mark.parametrize(
    "document",
    [*ROOT.glob("*.md"), *ROOT.glob("docs/*.md")],
    ids=lambda document: str(document.relative_to(ROOT)),
)
def test_every_link_of_the_document_leads_somewhere(document):
    for link in re.findall(r"\]\(([^)\s]+)\)", document.read_text()):
        if re.match(r"[a-z]+:", link):
            continue
        path, _, anchor = link.partition("#")
        target = document.parent / path if path else document
        assert target.exists(), link
        assert not anchor or anchor in heading_anchors(target), link


def built_pages(directory):
    for page in PAGES:
        target = directory / page.name.removesuffix(".scd")
        target.write_bytes(
            subprocess.run(["scdoc"], input=page.read_bytes(), stdout=subprocess.PIPE, check=True).stdout
        )
        yield target


@pytest.mark.skipif(not shutil.which("man"), reason="man-db is not installed")
def test_the_pages_render_without_a_warning(tmp_path):
    for page in built_pages(tmp_path):
        result = subprocess.run(
            ["man", "--warnings", "-l", str(page)],
            stdout=subprocess.DEVNULL,
            stderr=subprocess.PIPE,
            env={**os.environ, "MANWIDTH": "100", "LC_ALL": "C.UTF-8"},
            check=True,
        )
        assert result.stderr.decode() == "", page.name


@pytest.mark.skipif(not shutil.which("mandoc"), reason="mandoc is not installed")
def test_the_pages_have_no_error_for_mandoc(tmp_path):
    for page in built_pages(tmp_path):
        subprocess.run(["mandoc", "-T", "lint", "-W", "error", str(page)], check=True)


def test_every_page_names_the_others():
    names = {page.name.removesuffix(".scd") for page in PAGES}
    for page in PAGES:
        see_also = page.read_text().split("# SEE ALSO")[1]
        for name in names - {page.name.removesuffix(".scd")}:
            stem, section = name.rsplit(".", 1)
            assert f"*{stem}*({section})" in see_also, page.name


def test_the_finder_refuses_a_block_that_nothing_announces(tmp_path):
    page = tmp_path / "page.md"
    page.write_text("```\nunannounced\n```\n")
    with pytest.raises(ValueError, match="page.md:1"):
        list(blocks_of(page))


def test_the_runner_sees_a_wrong_answer(tmp_path):
    page = tmp_path / "page.md"
    page.write_text(
        "<!-- example: two commands -->\n<!-- transcript -->\n```\n$ echo one; false\none\n$ echo $?\n0\n```\n"
    )
    work = tmp_path / "work"
    work.mkdir()
    [(_, written, seen)] = run_example(examples_in(page)[0], work, ["/bin/true"])
    assert seen == written.replace("0\n", "1\n")


@pytest.mark.parametrize("shell", SHELLS.values(), ids=SHELLS)
@pytest.mark.parametrize(
    "text",
    [
        # Both go on after a failure; the second also under "set -e".
        "value=$(tarnwick-parse-config --key K) || [ $? -ne 2 ] || value=none",
        "value=$(tarnwick-parse-config --key K) || { [ $? -eq 2 ] && value=none; }",
    ],
)
def test_the_idiom_s_runner_sees_one_that_loses_the_status(text, shell, tmp_path):
    page = tmp_path / "page.md"
    page.write_text(f"<!-- idiom: wrong -->\n```\n{text}\n```\n")
    [idiom] = idioms_in(page)
    assert run_idiom(idiom, shell, 1, tmp_path).went_on
