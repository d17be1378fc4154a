"""Whoever adds a template source or a template variable adds it everywhere: see `template_names`."""

import pathlib
import re

import pytest

from support.tool import write_files
from template_names import SOURCES, VARIABLES, differences

ROOT = pathlib.Path(__file__).parents[2]
PLACES = [(listing, place) for listing in (SOURCES, VARIABLES) for place in listing.places]
TAKEN = {SOURCES.one: "realpath", VARIABLES.one: "INSTANCE"}


@pytest.mark.parametrize("listing", [SOURCES, VARIABLES], ids=lambda listing: listing.one)
def test_every_place_lists_what_the_table_has(listing):
    findings = differences(ROOT, listing)
    if findings:
        pytest.fail("\n".join(findings), pytrace=False)


@pytest.fixture
def tree(tmp_path):
    """A copy of the files that list names."""
    files = {listing.table.file for listing, _ in PLACES} | {place.file for _, place in PLACES}
    return write_files(tmp_path, {file: (ROOT / file).read_bytes() for file in files})


def change(path, pattern, replacement):
    text, count = re.subn(pattern, replacement, path.read_text(), flags=re.IGNORECASE)
    assert count > 0
    path.write_text(text)


@pytest.mark.parametrize("listing, place", PLACES, ids=[f"{listing.one}: {place.file}" for listing, place in PLACES])
def test_a_place_without_one_of_the_names_is_found(tree, listing, place):
    taken = TAKEN[listing.one]
    change(tree / place.file, rf"\b(from)?{taken}\b", r"\1Lost")
    lost = "lost" if place.ignores_case else "Lost"
    findings = differences(tree, listing)
    assert f"{place.file} lacks the {listing.one} '{taken}'" in findings
    assert f"{place.file} has the {listing.one} '{lost}', which {listing.table.file} has not" in findings
    assert all(finding.startswith(f"{place.file} ") for finding in findings)


@pytest.mark.parametrize("listing", [SOURCES, VARIABLES], ids=lambda listing: listing.one)
def test_every_place_is_found_when_the_table_alone_has_a_name(tree, listing):
    taken = TAKEN[listing.one]
    change(tree / listing.table.file, rf'(\w+\{{)"{taken}"(.*)\n', r'\g<0>    \1"planted"\2\n')
    assert differences(tree, listing) == [f"{place.file} lacks the {listing.one} 'planted'" for place in listing.places]


@pytest.mark.parametrize("listing", [SOURCES, VARIABLES], ids=lambda listing: listing.one)
def test_every_place_is_found_when_the_table_alone_has_lost_a_name(tree, listing):
    taken = TAKEN[listing.one]
    change(tree / listing.table.file, rf'.*\{{"{taken}".*\n', "")
    ending = f"the {listing.one} '{taken}', which {listing.table.file} has not"
    assert differences(tree, listing) == [f"{place.file} has {ending}" for place in listing.places]
