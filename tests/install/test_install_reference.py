"""The library's reference: it covers the installed headers, and what it lacks is an error."""

import re
import shutil
import subprocess

import pytest

from install_commands import ROOT, project_version, run

PARTS = ["CMakeLists.txt", "cmake", "docs", "scripts/build-docs", "src"]


@pytest.fixture
def tree(tmp_path):
    """A copy of what the reference is made of."""
    for name in PARTS:
        source, target = ROOT / name, tmp_path / name
        target.parent.mkdir(exist_ok=True)
        (shutil.copytree if source.is_dir() else shutil.copy)(source, target)
    return tmp_path


def page_of(header):
    """The page of a header, as Doxygen calls it."""
    return header.rsplit("/", 1)[-1].removesuffix(".h").replace("_", "__") + "_8h_source.html"


def first_page(tree):
    return (tree / "build" / "docs" / "index.html").read_text()


@pytest.fixture
def installed(stage):
    """The installed headers, by their paths inside `tarnwick`."""
    directory = stage / "usr" / "include" / "tarnwick"
    return {str(path.relative_to(directory)) for path in directory.rglob("*.h")}


def test_the_reference_is_made_from_the_installed_headers(installed, tree):
    run(tree / "scripts" / "build-docs")
    pages = {path.name for path in (tree / "build" / "docs").glob("*_8h_source.html")}
    assert pages == {page_of(header) for header in installed}


def test_the_reference_is_made_without_a_warning(tree):
    result = run(tree / "scripts" / "build-docs")
    assert result.stderr == ""
    assert project_version() in first_page(tree)


def test_the_first_page_links_the_headers_and_shows_the_readme_s_program(installed, tree):
    run(tree / "scripts" / "build-docs")
    page = first_page(tree)
    for header in installed - {"api.h", "vocabulary_names.h"}:
        link = header.rpartition("/")[2].replace("_", "__").replace(".h", "_8h")
        assert re.search(rf'href="{link}[^"]*".*{re.escape(f"tarnwick/{header}")}', page), header
        assert list((tree / "build" / "docs").glob(f"{link}*.html"))
    [program] = re.findall(r"<!-- program ask -->\n```cpp\n(.*?)```", (ROOT / "README.md").read_text(), flags=re.DOTALL)
    assert program in (ROOT / "docs" / "reference.md").read_text()
    assert 'class="fragment"' in page


def test_the_reference_has_every_constant_of_the_vocabulary(tree):
    run(tree / "scripts" / "build-docs")
    page = (tree / "build" / "docs" / "namespaceTarnwick_1_1Parser.html").read_text()
    rows = re.findall(r"ROW\((\w+)", (ROOT / "src" / "vocabulary_names.h").read_text())
    shown = re.findall(r"\bk(?:Group|Key|Value)(\w+)\b", page)
    assert "UserId" in rows
    assert set(rows) - {"name"} == set(shown)


def test_a_public_name_without_a_description_is_an_error(tree):
    header = tree / "src" / "config_writer.h"
    text = header.read_text()
    header.write_text(text.replace("private:", "    void writeNothing();\n\nprivate:"))
    result = subprocess.run([tree / "scripts" / "build-docs"], capture_output=True, text=True, check=False)
    assert result.returncode != 0
    assert "writeNothing" in result.stderr
