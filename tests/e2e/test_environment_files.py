"""Environment files: which lines assign, how names and values are trimmed and unquoted."""

import pytest
from e2e_helpers import is_critical_record, lines, one_key


@pytest.fixture
def ask_file(ask, tmp_path):
    """Writes an environment file and asks for the value of one variable, in angle brackets."""

    def ask_for_variable(content, name="NAME", *arguments):
        path = tmp_path / "x.env"
        path.write_bytes(content if isinstance(content, bytes) else content.encode())
        return ask(one_key(f"<${{envfile:{path}:{name}}}>"), *arguments)

    return ask_for_variable


@pytest.mark.parametrize(
    ("content", "value"),
    [
        ("NAME=x\n", "x"),
        ("NAME=x", "x"),
        ("NAME=a=b\n", "a=b"),
        ("NAME=a=\n", "a="),
        ("NAME==\n", "="),
        ("NAME=\n", ""),
        ("NAME=", ""),
        ('NAME=""\n', ""),
        ('NAME="\n', '"'),
        ('NAME="x"\n', "x"),
        ('NAME=""x""\n', '"x"'),
        ('NAME="a" b"\n', 'a" b'),
        ('NAME="x\n', '"x'),
        ('NAME=x"\n', 'x"'),
        ('NAME=" x "\n', " x "),
        ('NAME=" "\n', " "),
        ('NAME = "hello world"\n', "hello world"),
        (" \tNAME\v=\f x \r\n", "x"),
        ("NAME='x'\n", "'x'"),
        ("NAME=a\\nb\n", "a\\nb"),
        ("NAME=$HOME\n", "$HOME"),
        ("NAME=${HOME}\n", "${HOME}"),
        ("NAME=a;b\n", "a;b"),
        ("NAME=x # note\n", "x # note"),
        ("NAME=a\\\nb\n", "a\\"),
        ("NAME=1\nNAME=2\n", "2"),
        ("NAME=1\nNAME=2", "2"),
        ("NAME=1\nNAME=\n", ""),
        ("NAME=1\nNAME\n", "1"),
        ("NAME=1\nname=2\nNAMES=3\nexport NAME=4\n#NAME=5\n", "1"),
        ("\n\n  \nno assignment\n=nameless\nNAME=1\n", "1"),
        ("OTHER=   \nNAME=1\n", "1"),
    ],
)
def test_an_environment_file_gives_the_value_of(ask_file, content, value):
    assert ask_file(content) == (0, lines(f"<{value}>"), b"")


@pytest.mark.parametrize(
    ("content", "name", "value"),
    [
        ("export NAME=x\n", "export NAME", "x"),
        ("#NAME=x\n", "#NAME", "x"),
        ("=x\n", "", "x"),
        ("=\n", "", ""),
        ("A:B=x\n", "A:B", "x"),
        ("a b=x\n", "a b", "x"),
        ("ä=€\n", "ä", "€"),
    ],
)
def test_a_variable_may_have_an_odd_name(ask_file, content, name, value):
    assert ask_file(content, name) == (0, lines(f"<{value}>"), b"")


@pytest.mark.parametrize(
    ("content", "name"),
    [
        ("", "NAME"),
        ("NAME\n", "NAME"),
        ("name=x\n", "NAME"),
        ("export NAME=x\n", "NAME"),
        ("#NAME=x\n", "NAME"),
        ("NAME=x\n", "NAME "),
        ("NAME=x\n", " NAME"),
        ("NAME=x\n", ""),
        ("NAME=x\n", "NAM"),
    ],
)
def test_a_variable_that_no_line_assigns_fails(ask_file, tmp_path, content, name):
    path = tmp_path / "x.env"
    template = f"envfile:{path}:{name}"
    message = f"Failed to read '{name}' from environment file '{path}' for template '{template}'"
    assert ask_file(content, name) == (2, b"", b"")
    outcome = ask_file(content, name, "--log-level", "debug")
    assert outcome == (2, b"", lines(f"DEBUG: {message}"))


@pytest.mark.parametrize("path", ["/missing/x.env", "/", "", "missing"])
def test_a_file_that_cannot_be_read_has_no_variables(ask, tmp_path, path):
    text = one_key(f"${{envfile:{path}:NAME}}")
    message = f"DEBUG: Failed to read 'NAME' from environment file '{path}' for template 'envfile:{path}:NAME'"
    assert ask(text, "--log-level", "debug", cwd=tmp_path) == (2, b"", lines(message))


def test_an_empty_value_alone_is_found_but_not_stored(ask, tmp_path):
    (tmp_path / "x.env").write_text("NAME=\n")
    text = one_key("${envfile:x.env:NAME}")
    assert ask(text, "--log-level", "debug", cwd=tmp_path) == (2, b"", b"")


@pytest.mark.parametrize(
    "content",
    [
        pytest.param("NAME=   \n", id="a blank value"),
        pytest.param("NAME=1\nNAME=\t\n", id="a blank value after a good one"),
        pytest.param("NAME=\r\n", id="an empty value before a carriage return"),
        pytest.param("NAME= \nNAME=1\n", id="a blank value before a good one"),
        pytest.param("NAME=1\n =x\n", id="a blank name on another line"),
    ],
)
def test_white_space_only_ends_the_request_for(ask_file, directory, content):
    outcome = ask_file(content)
    assert outcome[:2] == (1, b"")
    assert is_critical_record(outcome.err, "Config", "K", str(directory / "a.conf"))
