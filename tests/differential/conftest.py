"""What the tests of the comparisons share: builds that do not answer as the tool does."""

import pathlib

import pytest
from support.tool import TOOL


@pytest.fixture
def other_build(tmp_path):
    """A copy of the tool with one text in place of another of the same length."""

    def make(text, replacement):
        assert len(text) == len(replacement)
        content = pathlib.Path(TOOL).read_bytes()
        assert text in content
        build = tmp_path / "other-build"
        build.write_bytes(content.replace(text, replacement))
        build.chmod(0o755)
        return build

    return make
