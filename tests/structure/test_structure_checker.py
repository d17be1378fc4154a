"""Each rule finds its violation in a small tree made for it, and nothing in one that keeps it."""

import os

import pytest

import checker
from support.tool import write_files

COMPILER = os.environ.get("TARNWICK_CXX") or "c++"
INSTALL = "set(TARNWICK_PUBLIC_HEADERS\n  face.h\n  group/low.h)\n"
RULES = checker.Rules(
    [["group/", "one/", "low"], ["middle"], ["face", "face_data", "user"]],
    {"one/": "one"},
    ["face.h", "face.cpp"],
    ["low.h"],
)


@pytest.fixture
def make_tree(tmp_path):
    """The tree with these files, in which an installed header stands at src/face.h."""

    def make(files):
        usual = {"cmake/PublicHeaders.cmake": INSTALL, "src/face.h": "", "src/group/low.h": ""}
        return checker.Tree(write_files(tmp_path / "tree", {**usual, **files}))

    return make


def test_includes_are_found_however_they_are_written(make_tree):
    text = '#include "a.h"\n  #  include  "b.h" // why\n// #include "c.h"\n/*\n#include "d.h"\n*/\n#include <e.h>\n'
    tree = make_tree({"src/face.cpp": text})
    assert [written for _, file, written, _ in tree.includes if file == "face.cpp"] == ["a.h", "b.h"]


def test_an_include_leads_to_the_file_beside_it_before_any_other(make_tree):
    tree = make_tree({"src/group/x.cpp": '#include "low.h"\n#include "../low.h"\n', "src/low.h": ""})
    assert [target for *_, target in tree.includes] == [("src", "group/low.h"), ("src", "low.h")]


# --- floors ---


def test_a_file_without_a_floor_is_found(make_tree):
    tree = make_tree({"src/new.cpp": "", "src/group/x.h": "", "src/other/low.h": "", "tools/main.cpp": ""})
    assert checker.files_without_floor(tree, RULES) == [
        "src/new.cpp stands on no floor",
        "src/other/low.h stands on no floor",
    ]


def test_an_include_that_points_upward_is_found(make_tree):
    tree = make_tree({"src/middle.h": '#include "face.h"\n', "src/group/x.cpp": '#include "../middle.h"\n'})
    assert checker.includes_upward(tree, RULES) == [
        'src/group/x.cpp includes "../middle.h", which stands above it: floor 1 above floor 0',
        'src/middle.h includes "face.h", which stands above it: floor 2 above floor 1',
    ]


def test_includes_of_the_same_floor_and_of_lower_ones_are_fine(make_tree):
    text = '#include "face.h"\n#include "middle.h"\n#include "group/low.h"\n#include <tarnwick/gone.h>\n'
    tree = make_tree({"src/user.cpp": text, "src/middle.h": "", "tools/main.cpp": '#include "face.h"\n'})
    assert checker.includes_upward(tree, RULES) == []


@pytest.mark.parametrize("written", ["login.h", "../tools/login.h"])
def test_an_include_of_the_tool_in_the_library_is_found(make_tree, written):
    tree = make_tree({"src/user.cpp": f'#include "{written}"\n', "tools/login.h": ""})
    assert checker.includes_upward(tree, RULES) == [
        f'src/user.cpp includes "{written}", which is no part of the library'
    ]


def test_an_include_of_a_file_that_is_gone_is_found(make_tree):
    tree = make_tree({"tools/main.cpp": '#include "gone.h"\n'})
    assert checker.includes_upward(tree, RULES) == ['tools/main.cpp includes "gone.h", which is nowhere']


# --- rooms ---


def test_a_circle_of_rooms_is_found_also_through_their_sources(make_tree):
    tree = make_tree({
        "src/group/a.cpp": '#include "group/b.h"\n',
        "src/group/b.h": '#include "c.h"\n',
        "src/group/c.cpp": '#include "group/a.h"\n',
        "src/group/a.h": "",
        "src/group/c.h": "",
    })  # fmt: skip
    (finding,) = checker.circles(tree, RULES)
    assert sorted(finding.removesuffix(": a circle").split(" and ")) == [
        'src/group/a.cpp includes "group/b.h"',
        'src/group/b.h includes "c.h"',
        'src/group/c.cpp includes "group/a.h"',
    ]


def test_a_circle_in_the_tool_is_found(make_tree):
    tree = make_tree({"tools/a.h": '#include "b.h"\n', "tools/b.h": "", "tools/b.cpp": '#include "a.h"\n'})
    (finding,) = checker.circles(tree, RULES)
    assert 'tools/a.h includes "b.h"' in finding and 'tools/b.cpp includes "a.h"' in finding


def test_a_header_with_its_source_and_a_shared_room_are_no_circle(make_tree):
    tree = make_tree({
        "src/face.cpp": '#include "face.h"\n#include "one/a.h"\n',
        "src/one/a.h": "",
        "src/one/a.cpp": '#include "one/b.h"\n',
        "src/one/b.h": '#include "a.h"\n',
    })  # fmt: skip
    assert checker.circles(tree, RULES) == []


# --- installed headers ---


def test_an_installed_header_that_includes_one_that_is_not_is_found(make_tree):
    tree = make_tree({"src/face.h": '#include "group/low.h"\n#include "middle.h"\n', "src/middle.h": ""})
    assert checker.installed_headers_that_need_others(tree) == [
        'src/face.h is installed and includes "middle.h", which is not'
    ]


def test_an_installed_header_that_does_so_through_another_is_found(make_tree):
    tree = make_tree({
        "src/face.h": '#include "group/low.h"\n',
        "src/group/low.h": '#include "../middle.h"\n',
        "src/middle.h": "",
    })  # fmt: skip
    assert checker.installed_headers_that_need_others(tree) == [
        'src/group/low.h is installed and includes "../middle.h", which is not'
    ]


def test_an_installed_header_that_does_not_exist_is_found(make_tree):
    tree = make_tree({"cmake/PublicHeaders.cmake": "set(TARNWICK_PUBLIC_HEADERS\n  gone.h)\n"})
    assert checker.installed_headers_that_need_others(tree) == [
        "cmake/PublicHeaders.cmake names src/gone.h, which is nowhere"
    ]


def test_an_installed_header_that_needs_another_before_it_is_found(make_tree, tmp_path):
    tree = make_tree({
        "src/face.h": '#include "group/low.h"\ninline int take(std::string) { return low(); }\n',
        "src/group/low.h": "inline int low() { return 0; }\n",
    })  # fmt: skip
    (finding,) = checker.installed_headers_that_do_not_compile(tree, COMPILER, str(tmp_path / "alone"))
    assert finding.startswith("src/face.h does not compile alone: ") and "std" in finding


def test_installed_headers_are_compiled_without_the_source_tree(make_tree, tmp_path):
    tree = make_tree({"src/face.h": '#include "middle.h"\n', "src/middle.h": ""})
    (finding,) = checker.installed_headers_that_do_not_compile(tree, COMPILER, str(tmp_path / "alone"))
    assert finding.startswith("src/face.h does not compile alone: ") and "middle.h" in finding


# --- the parser's name ---


@pytest.mark.parametrize(
    "text", ["class ConfigParser;", "void f(const ConfigParser& parser);", "auto x = Parser::ConfigParser(1);"]
)
def test_the_name_of_the_parser_below_the_roof_is_found(make_tree, text):
    tree = make_tree({"src/middle.h": text + "\n"})
    assert checker.files_that_name_the_parser(tree, RULES) == ["src/middle.h names ConfigParser"]


def test_a_comment_a_text_a_longer_name_and_the_roof_may_name_the_parser(make_tree):
    tree = make_tree({
        "src/middle.h": '// ConfigParser\n/* of\n ConfigParser */ int x = 1\'000; auto* name = "lib.ConfigParser";\n'
        "struct ConfigParserData;  // \"\nchar quote = '\"';  // ConfigParser\n",
        "src/face.cpp": "ConfigParser parser;\n",
        "tools/main.cpp": "ConfigParser parser;\n",
    })  # fmt: skip
    assert checker.files_that_name_the_parser(tree, RULES) == []


def test_a_file_that_declares_the_parser_may_take_pointers_to_it_and_no_more(make_tree):
    declared = "class ConfigParser;\nbool take(const ConfigParser* config);\n"
    assert checker.files_that_name_the_parser(make_tree({"src/low.h": declared}), RULES) == []
    used = declared + "inline bool use(const ConfigParser& config) { return config.is(); }\n"
    assert checker.files_that_name_the_parser(make_tree({"src/low.h": used}), RULES) == ["src/low.h names ConfigParser"]
