"""The places that list the template sources and the template variables, and what each lacks.

A name that only the product's own table has is a source that nobody documents, tests or fuzzes.
"""

import pathlib
import re
from dataclasses import dataclass


@dataclass(frozen=True)
class Place:
    """A file, and how it writes the names: each match of `name` in what `part` matches is one."""

    file: str
    name: str
    part: str = ".*"
    left_out: frozenset = frozenset()  # what belongs elsewhere
    ignores_case: bool = False

    def names(self, root):
        text = (pathlib.Path(root) / self.file).read_text(encoding="utf-8")
        flags = re.DOTALL | re.MULTILINE
        found = {name for part in re.finditer(self.part, text, flags) for name in re.findall(self.name, part[0], flags)}
        return {name.lower() for name in found} if self.ignores_case else found


@dataclass(frozen=True)
class Listing:
    """What has the names, what it calls one, and the places that have to have them all."""

    one: str
    table: Place
    places: list


WORD_OF_A_LIST = r"\b(?!and\b)\w+"
TEMPLATE_WITH_SOURCE = r"\$\{(\w+):"
TEMPLATE_WITHOUT_SOURCE = r"\$\{(\w+)\}"
README_ROWS = r"^\| `\$\{[^\n]*"
WELL_FORMED_OF_GENERATOR = r"^GOOD_TEMPLATES = .*?^BROKEN|^def .*"
# A reference is no source that is read: it waits until all files are.
REFERENCE = frozenset({"config"})

SOURCES = Listing(
    "template source",
    Place("src/template_text.cpp", r'SourceRow\{"(\w+)"'),
    [
        Place("src/template_text.h", r'"(\w+)"', r"///     source   = [^\n]*"),
        Place("src/template_text.h", WORD_OF_A_LIST, r"(?<=TemplateSource : std::int32_t \{)[^}]*", REFERENCE, True),
        Place("src/config_parser.h", WORD_OF_A_LIST, r"(?<=    /// of )config,[^.]*"),
        Place("src/template_expander.cpp", r"\bfrom(\w+)", r"(?<=kSources\{)\n(?:    SourceRow.*\n)*", REFERENCE, True),
        Place("README.md", TEMPLATE_WITH_SOURCE, README_ROWS),
        Place("docs/file-format.md", TEMPLATE_WITH_SOURCE),
        Place("docs/architecture.md", WORD_OF_A_LIST, r"(?<=E->>S: )[^\n]*", REFERENCE),
        Place("man/tarnwick.conf.5.scd", r"^## (\w+):"),
        Place("man/tarnwick-parse-config.1.scd", WORD_OF_A_LIST, r"(?<=The sources are )[^.]*"),
        Place("tests/differential/naive_tool.py", r'b"(\w+)"(?::$|: \w)', r"^def resolve_template.*?^def "),
        Place("tests/differential/generator.py", TEMPLATE_WITH_SOURCE, WELL_FORMED_OF_GENERATOR),
        Place("tests/fuzz/dictionaries/templates.dict", TEMPLATE_WITH_SOURCE),
        Place("tests/fuzz/dictionaries/configuration.dict", TEMPLATE_WITH_SOURCE),
    ],
)  # fmt: skip

VARIABLES = Listing(
    "template variable",
    Place("tools/template_variables.cpp", r'TemplateVariable\{"(\w+)"'),
    [
        Place("tools/config/explain/user_story.cpp", r'VariableRow\{"(\w+)"'),
        Place("README.md", TEMPLATE_WITHOUT_SOURCE, README_ROWS),
        Place("man/tarnwick.conf.5.scd", r"^\*(\w+)\*$", r"^## Variables$.*?^## "),
        Place("man/tarnwick-parse-config.1.scd", WORD_OF_A_LIST, r"(?<=The variables are )[^;]*"),
        Place("tests/differential/naive_tool.py", r'^ +b"(\w+)": ', r"^    store = Store\(.*?^    \)"),
        Place("tests/differential/generator.py", TEMPLATE_WITHOUT_SOURCE, WELL_FORMED_OF_GENERATOR),
        Place("bench/peers/careful.cpp", r'\{"(\w+)", ', r"(?<=return \{)\{.*?;"),
    ],
)


def differences(root, listing):
    """A text for each name that a place of the tree lacks, or has and the table has not."""
    known = listing.table.names(root)
    findings = []
    for place in listing.places:
        found = place.names(root)
        findings += [
            f"{place.file} lacks the {listing.one} '{name}'" for name in sorted(known - place.left_out - found)
        ]
        findings += [
            f"{place.file} has the {listing.one} '{name}', which {listing.table.file} has not"
            for name in sorted(found - known)
        ]
    return findings
