"""A staged installation: which files there are, and what a programmer builds with them."""

import os
import sys

import pytest

from install_commands import ROOT, project_version, run

CONSUMER = ROOT / "tests" / "install" / "consumer"
GENERATOR_TESTS = ROOT / "tests" / "generator"

HEADERS = [
    "api.h",
    "config_parser.h",
    "config_value.h",
    "config_writer.h",
    "diagnostic.h",
    "generator_helpers.h",
    "load_event.h",
    "logging/log_record.h",
    "logging/logger_config.h",
    "parser_types.h",
    "template_text.h",
    "vocabulary.h",
    "vocabulary_names.h",
]
LIBRARY_FILES = [
    "cmake/TarnwickParser/TarnwickParserConfig.cmake",
    "cmake/TarnwickParser/TarnwickParserConfigVersion.cmake",
    "cmake/TarnwickParser/TarnwickParserTargets-release.cmake",
    "cmake/TarnwickParser/TarnwickParserTargets.cmake",
    "libtarnwick-parser.a",
    "libtarnwick-parser.so",
    f"libtarnwick-parser.so.{project_version().split('.')[0]}",
    f"libtarnwick-parser.so.{project_version()}",
    "pkgconfig/tarnwick-parser.pc",
]
OTHER_FILES = [
    "usr/bin/tarnwick-config",
    "usr/bin/tarnwick-parse-config",
    "usr/share/bash-completion/completions/tarnwick-config",
    "usr/share/bash-completion/completions/tarnwick-parse-config",
    "usr/share/man/man1/tarnwick-config.1",
    "usr/share/man/man1/tarnwick-parse-config.1",
    "usr/share/man/man3/libtarnwick-parser.3",
    "usr/share/man/man5/tarnwick.conf.5",
    *(f"usr/share/tarnwick-config/{path.name}" for path in (ROOT / "schema").iterdir()),
    "usr/share/vim/vimfiles/compiler/tarnwick.vim",
    "usr/share/vim/vimfiles/ftdetect/tarnwick.vim",
    "usr/share/vim/vimfiles/syntax/tarnwick.vim",
    "usr/share/zsh/vendor-completions/_tarnwick-config",
    "usr/share/zsh/vendor-completions/_tarnwick-parse-config",
]

# What the consumer says about its two device nodes.
ANSWER = "2\n"
RECORD = "WARNING: [/dev/binder, /dev/ashmem]\n"


def test_these_files_are_installed_and_no_others(stage, library_directory):
    expected = [
        *(stage / file for file in OTHER_FILES),
        *(stage / "usr" / "include" / "tarnwick" / header for header in HEADERS),
        *(library_directory / file for file in LIBRARY_FILES),
    ]
    assert sorted(path for path in stage.rglob("*") if not path.is_dir()) == sorted(expected)


def test_the_default_configuration_directory_is_there_and_empty(stage):
    assert list((stage / "etc" / "tarnwick.conf.d").iterdir()) == []


def test_no_installed_text_names_a_path_of_this_machine(stage):
    texts = [path for path in stage.rglob("*") if path.suffix in {".cmake", ".pc", ".h"}]
    assert texts
    assert [path for path in texts if str(ROOT) in path.read_text()] == []


@pytest.fixture(scope="module", params=["package", "tree"])
def consumers(request, stage, tmp_path_factory):
    """The directory of the consumers, built with the installed package or with the source tree."""
    directory = tmp_path_factory.mktemp(request.param)
    library = {
        "package": f"-DCMAKE_PREFIX_PATH={stage}/usr",
        "tree": f"-DTARNWICK_SOURCE_TREE={ROOT}",
    }
    run("cmake", "-G", "Ninja", "-S", CONSUMER, "-B", directory, library[request.param])
    run("cmake", "--build", directory)
    return directory


@pytest.mark.parametrize("program", ["consumer", "consumer-static"])
def test_a_program_finds_and_links_the_library_with_cmake(program, consumers):
    result = run(consumers / program, CONSUMER / "conf.d")
    assert (result.stdout, result.stderr) == (ANSWER, RECORD)


# Tells for each version in WANTED whether the package serves a program that asks for it.
VERSION_QUESTIONS = """
foreach(PACKAGE_FIND_VERSION IN LISTS WANTED)
  string(REGEX MATCH "^[0-9]+" PACKAGE_FIND_VERSION_MAJOR ${PACKAGE_FIND_VERSION})
  set(PACKAGE_VERSION_COMPATIBLE FALSE)
  include(${FILE})
  message(NOTICE ${PACKAGE_VERSION_COMPATIBLE})
endforeach()
"""


def test_cmake_takes_the_package_for_earlier_versions_of_the_same_major_one(library_directory, tmp_path):
    script = tmp_path / "ask.cmake"
    script.write_text(VERSION_QUESTIONS)
    file = library_directory / "cmake" / "TarnwickParser" / "TarnwickParserConfigVersion.cmake"
    major, minor, patch = map(int, project_version().split("."))
    same = [f"{major}", f"{major}.{minor}", f"{major}.{minor}.{patch}"]
    other = [f"{major - 1}", f"{major - 1}.9", f"{major + 1}", f"{major}.{minor + 1}"]
    wanted = f"-DWANTED={';'.join(same + other)}"
    answers = run("cmake", wanted, f"-DFILE={file}", "-P", script).stderr.split()
    assert answers == ["TRUE"] * len(same) + ["FALSE"] * len(other)


def needs_our_library(program):
    return "libtarnwick-parser.so" in run("readelf", "--dynamic", program).stdout


def test_each_name_of_the_library_is_of_one_kind(consumers):
    assert needs_our_library(consumers / "consumer")
    assert not needs_our_library(consumers / "consumer-static")


def test_a_program_finds_and_links_the_library_with_pkg_config(stage, library_directory, tmp_path):
    staged = {
        "PKG_CONFIG_PATH": f"{library_directory}/pkgconfig",
        "PKG_CONFIG_SYSROOT_DIR": str(stage),
        # The default directories count as staged ones here, so none is left out.
        "PKG_CONFIG_ALLOW_SYSTEM_CFLAGS": "1",
        "PKG_CONFIG_ALLOW_SYSTEM_LIBS": "1",
    }
    flags = run("pkg-config", "--cflags", "--libs", "tarnwick-parser", env=staged).stdout.split()
    program = tmp_path / "consumer"
    run("g++", "-std=c++20", CONSUMER / "main.cpp", *flags, "-o", program)
    result = run(program, CONSUMER / "conf.d", env={"LD_LIBRARY_PATH": str(library_directory)})
    assert (result.stdout, result.stderr) == (ANSWER, RECORD)


def test_pkg_config_names_what_the_static_library_needs(stage, library_directory, tmp_path):
    directory = {"PKG_CONFIG_PATH": f"{library_directory}/pkgconfig"}
    asked = ["pkg-config", "--static", "--libs-only-l", "--libs-only-other", "tarnwick-parser"]
    others = [flag for flag in run(*asked, env=directory).stdout.split() if "tarnwick" not in flag]
    program = tmp_path / "consumer"
    sources = [CONSUMER / "main.cpp", library_directory / "libtarnwick-parser.a"]
    run("g++", "-std=c++20", f"-I{stage}/usr/include", *sources, *others, "-o", program)
    result = run(program, CONSUMER / "conf.d")
    assert (result.stdout, result.stderr) == (ANSWER, RECORD)
    assert others == ["-ldl", "-pthread"]


def test_pkg_config_knows_the_version(library_directory):
    directory = {"PKG_CONFIG_PATH": f"{library_directory}/pkgconfig"}
    version = run("pkg-config", "--modversion", "tarnwick-parser", env=directory).stdout
    assert version == project_version() + "\n"


def test_the_example_programs_build_alone_and_pass_their_tests(stage, tmp_path):
    for name in ["generator", "origins"]:
        build = tmp_path / "examples" / name
        configure = ["cmake", "-G", "Ninja", "-S", ROOT / "examples" / name, "-B", build]
        run(*configure, f"-DCMAKE_PREFIX_PATH={stage}/usr")
        run("cmake", "--build", build)
        linked = run("ldd", build / f"example-{name}").stdout
        assert f"{stage}/usr/lib" in linked
    run(
        *[sys.executable, "-m", "pytest", "-q", "-p", "no:cacheprovider", GENERATOR_TESTS],
        env={
            "TARNWICK_BUILD": str(tmp_path),
            "TARNWICK_TOOL": str(stage / "usr" / "bin" / "tarnwick-parse-config"),
        },
        cwd=ROOT,
    )


@pytest.mark.parametrize("header", HEADERS)
def test_each_header_compiles_alone(header, stage, tmp_path):
    source = tmp_path / "alone.cpp"
    source.write_text(f"#include <tarnwick/{header}>\n#include <tarnwick/{header}>\n")
    compiler = os.environ.get("CXX", "g++")
    warnings = ["-Wall", "-Wextra", "-Wpedantic", "-Werror"]
    run(compiler, "-std=c++20", *warnings, "-fsyntax-only", f"-I{stage}/usr/include", source)
