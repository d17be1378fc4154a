"""The parts of the source tree stand in their order: see `floors` for the table."""

import os
import pathlib

import pytest

import checker
import floors

ROOT = pathlib.Path(__file__).parents[2]
RULES = checker.Rules(floors.FLOORS, floors.SHARED_ROOMS, floors.NAME_THE_PARSER, floors.DECLARE_THE_PARSER)


@pytest.fixture(scope="module")
def tree():
    return checker.Tree(ROOT)


def test_the_tree_is_read(tree):
    assert len(tree.files) > 40 and len(tree.includes) > 100 and len(tree.installed_headers()) > 5


def expect_none(findings):
    if findings:
        pytest.fail("\n".join(findings), pytrace=False)


def test_every_file_of_the_library_has_a_floor(tree):
    expect_none(checker.files_without_floor(tree, RULES))


def test_no_include_points_upward(tree):
    expect_none(checker.includes_upward(tree, RULES))


def test_no_rooms_form_a_circle(tree):
    expect_none(checker.circles(tree, RULES))


def test_installed_headers_include_installed_headers_alone(tree):
    expect_none(checker.installed_headers_that_need_others(tree))


def test_installed_headers_compile_alone(tree, tmp_path):
    compiler = os.environ.get("TARNWICK_CXX") or "c++"
    expect_none(checker.installed_headers_that_do_not_compile(tree, compiler, str(tmp_path)))


def test_nothing_below_the_roof_names_the_parser(tree):
    expect_none(checker.files_that_name_the_parser(tree, RULES))
