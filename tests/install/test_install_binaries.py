"""What the linker and the loader see of the installed program and library."""

import re

import pytest

from install_commands import project_version, run

C_LIBRARY = {"libc.so.6", "ld-linux-x86-64.so.2", "ld-linux-aarch64.so.1", "ld-linux-armhf.so.3"}
CXX_RUN_TIME = {"libstdc++.so.6", "libgcc_s.so.1", "libm.so.6"}


@pytest.fixture
def tool(stage):
    return stage / "usr" / "bin" / "tarnwick-parse-config"


@pytest.fixture
def library(library_directory):
    return library_directory / "libtarnwick-parser.so"


def major_version():
    return project_version().split(".")[0]


def dynamic_entries(path, tag):
    """The bracketed values of the dynamic section's entries of one kind, such as NEEDED."""
    section = run("readelf", "--dynamic", "--wide", path).stdout
    return set(re.findall(rf"\({tag}\).*\[(.*)\]", section))


def shown_symbols(path):
    """The demangled names that other programs can link."""
    lines = run("nm", "--dynamic", "--demangle", "--defined-only", path).stdout.splitlines()
    return [line.split(maxsplit=2)[2] for line in lines]


def words_of_headers(stage):
    """Every word of the public headers, with the vocabulary's macros expanded."""
    directory = stage / "usr" / "include"
    includes = "".join(f"#include <{path.relative_to(directory)}>\n" for path in sorted(directory.rglob("*.h")))
    preprocess = ["g++", "-std=c++20", "-E", "-x", "c++", "-", f"-I{directory}"]
    words = set()
    is_ours = False
    for line in run(*preprocess, input=includes).stdout.splitlines():
        if line.startswith("# "):  # Says which file the next lines are from.
            is_ours = str(directory) in line
        elif is_ours:
            words.update(re.findall(r"\w+", line))
    return words


def own_name(symbol):
    """The words of a symbol's qualified name: without parameters and the mark of its ABI."""
    name = re.sub(r"\[abi:\w+\]", "", symbol).split("(")[0]
    return re.findall(r"\w+", name)


def test_the_library_has_the_name_that_programs_load_it_by(library):
    assert dynamic_entries(library, "SONAME") == {f"libtarnwick-parser.so.{major_version()}"}


def test_the_library_needs_the_cxx_run_time_and_nothing_else(library):
    needed = dynamic_entries(library, "NEEDED")
    assert "libc.so.6" in needed
    assert needed <= C_LIBRARY | CXX_RUN_TIME


def test_the_tool_needs_the_c_library_and_nothing_else(tool):
    needed = dynamic_entries(tool, "NEEDED")
    assert "libc.so.6" in needed
    assert needed <= C_LIBRARY


def test_the_library_shows_only_what_the_headers_declare(library, stage):
    declared = words_of_headers(stage)
    symbols = shown_symbols(library)
    assert any("ConfigParser::loadConfigs" in symbol for symbol in symbols)
    strangers = [
        symbol
        for symbol in symbols
        if not symbol.startswith("Tarnwick::Parser::") or not declared.issuperset(own_name(symbol))
    ]
    assert strangers == []


def test_the_tool_shows_no_symbol_of_its_own(tool):
    assert [symbol for symbol in shown_symbols(tool) if "Tarnwick" in symbol] == []
