"""The syntax of configuration files: kinds of lines, names, values, faults and where they are."""

import string

import pytest
from e2e_helpers import lines, load_failure

NAME_CHARACTERS = " -.0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ_abcdefghijklmnopqrstuvwxyz"
KEY_STARTS = NAME_CHARACTERS.strip().encode()
COMMENT_STARTS = b"#;"


def fault(text, path, number, line):
    """The record of a faulty line; its number is one raw byte."""
    start = b"ERROR: " + text.encode() + str(path).encode()
    return start + b" (" + bytes([number & 0xFF]) + b"): '" + line + b"'\n"


def file_of(line):
    """A file of one line, which may be text or bytes."""
    return (line if isinstance(line, bytes) else line.encode()) + b"\n"


@pytest.mark.parametrize(
    ("text", "line"),
    [
        ("Unexpected line in ", " key=value"),
        ("Unexpected line in ", "\tkey=value"),
        ("Unexpected line in ", "=value"),
        ("Unexpected line in ", "\r"),
        ("Unexpected line in ", '"K"=1'),
        ("Unexpected line in ", "{K=1}"),
        ("Unexpected line in ", "ä=1"),
        ("Unexpected line in ", b"\xff\xfe"),
        ("Unexpected line in ", " [Config]"),
        ("Unexpected line in ", " # comment"),
        ("Could not parse line as group in ", "[Config"),
        ("Could not parse line as group in ", "["),
        ("Could not parse line as group in ", "[Config] "),
        ("Could not parse line as group in ", "[Config]\r"),
        ("Could not parse line as group in ", "[Config] # comment"),
        ("Group name contains invalid characters in ", "[a/b]"),
        ("Group name contains invalid characters in ", "[[Config]]"),
        ("Group name contains invalid characters in ", "[a\tb]"),
        ("Group name contains invalid characters in ", "[ä]"),
        ("Could not parse line as key in ", "key"),
        ("Could not parse line as key in ", "key: value"),
        ("Could not parse line as key in ", "ke/y"),
        ("Could not parse line as key in ", "K\r"),
        ("Key contains invalid characters in ", "ke/y=1"),
        ("Key contains invalid characters in ", "K\t=1"),
        ("Key contains invalid characters in ", "Kä=1"),
        ("Key contains invalid characters in ", "a:b=c"),
        ("Key contains invalid characters in ", b"a\0b=1"),
    ],
)
def test_a_faulty_line_is_quoted_with_its_file(ask, directory, text, line):
    content = file_of(line)
    path = directory / "a.conf"
    expected = fault(text, path, 1, content[:-1]) + load_failure(path)
    assert ask({"a.conf": content}) == (1, b"", expected)


@pytest.mark.parametrize("number", [1, 2, 65, 255, 256, 257, 266, 321, 65792])
def test_the_line_number_is_one_character_of_its_low_8_bits(ask, directory, number):
    path = directory / "a.conf"
    expected = fault("Could not parse line as group in ", path, number, b"[bad")
    assert ask("#\n" * (number - 1) + "[bad\n") == (1, b"", expected + load_failure(path))


def test_the_65th_line_is_numbered_a_capital_a(ask, directory):
    outcome = ask("\n" * 64 + "[bad\n")
    assert outcome.err.startswith(lines(f"ERROR: Could not parse line as group in {directory}/a.conf (A): '[bad'"))


def test_every_byte_that_starts_no_line_makes_it_unexpected(ask, directory):
    path = directory / "a.conf"
    known = KEY_STARTS + COMMENT_STARTS + b"[\n"
    starts = [bytes([code]) for code in range(256) if code not in known]
    content = b"".join(start + b"=x\n" for start in starts)
    faults = [fault("Unexpected line in ", path, number, start + b"=x") for number, start in enumerate(starts, 1)]
    assert ask({"a.conf": content}) == (1, b"", b"".join(faults) + load_failure(path))


@pytest.mark.parametrize(
    ("pattern", "text", "harmless"),
    [
        pytest.param("a{}b=1", "Key contains invalid characters in ", b"=\n", id="a key"),
        pytest.param("[a{}b]", "Group name contains invalid characters in ", b"\n", id="a group"),
    ],
)
def test_every_byte_outside_the_name_characters_is_refused_in(ask, directory, pattern, text, harmless):
    path = directory / "a.conf"
    before, after = pattern.encode().split(b"{}")
    permitted = NAME_CHARACTERS.encode() + harmless
    faulty = [before + bytes([code]) + after for code in range(256) if code not in permitted]
    faults = [fault(text, path, number, line) for number, line in enumerate(faulty, 1)]
    outcome = ask({"a.conf": b"".join(line + b"\n" for line in faulty)})
    assert outcome == (1, b"", b"".join(faults) + load_failure(path))


@pytest.mark.parametrize("start", KEY_STARTS.decode())
def test_a_key_may_start_with(ask, start):
    assert ask(f"[Config]\n{start}=1\n", "--key", start) == (0, b"1\n", b"")


def test_names_may_use_every_permitted_character(ask):
    key = NAME_CHARACTERS.strip() + " "
    text = f"[{NAME_CHARACTERS}]\n{key}=1\n"
    assert ask(text, "--group", NAME_CHARACTERS, "--key", key) == (0, b"1\n", b"")


@pytest.mark.parametrize(
    ("line", "key", "value"),
    [
        ("K=v", "K", "v"),
        ("K=a=b", "K", "a=b"),
        ("K==", "K", "="),
        ("K=x # note", "K", "x # note"),
        ("K=#", "K", "#"),
        ("K=[a]", "K", "[a]"),
        ('K="v"', "K", '"v"'),
        ("K=v\\", "K", "v\\"),
        ("K=a\\nb", "K", "a\\nb"),
        ("K=a\tb", "K", "a\tb"),
        ("my key = 1", "my key ", "1"),
        ("Name = x", "Name ", "x"),
        ("K=  v \t", "K", "v"),
        ("K=v\r", "K", "v"),
        ("K=ä€", "K", "ä€"),
        (b"K=\xff\xfe", "K", b"\xff\xfe"),
        (b"K=a\0b", "K", b"a\0b"),
        ("-=dash", "-", "dash"),
        (".=dot", ".", "dot"),
        ("0=digit", "0", "digit"),
    ],
)
def test_a_key_line_gives_its_key_the_rest_of_the_line(ask, line, key, value):
    outcome = ask({"a.conf": b"[Config]\n" + file_of(line)}, "--key", key)
    assert outcome == (0, file_of(value), b"")


def test_blanks_before_the_equals_sign_belong_to_the_key(ask):
    assert ask("[Config]\nK = 1\n") == (2, b"", b"")


@pytest.mark.parametrize(("header", "group"), [("[]", ""), ("[ a b ]", " a b "), ("[-]", "-"), ("[a.b]", "a.b")])
def test_the_group_is_everything_between_the_brackets(ask, header, group):
    assert ask(f"[X]\n{header}\nK=1\n", "--group", group) == (0, b"1\n", b"")


@pytest.mark.parametrize("skipped", ["", "# K=2", "; K=2", "#", ";", "#[Other]", ";[Other"])
def test_comments_and_blank_lines_are_skipped(ask, skipped):
    assert ask(f"{skipped}\n[Config]\n{skipped}\nK=1\n{skipped}\n", "--list") == (0, b"1\n", b"")


@pytest.mark.parametrize("content", ["", "\n", "#\n", "\n\n# a\n;b\n\n", "[Config]\n", "[]\n[A]\n"])
def test_a_file_without_keys_is_a_good_file(ask, content):
    assert ask(content) == (2, b"", b"")


def test_a_group_lasts_until_the_next_header(ask):
    text = "K=none\n[A]\nK=a\n\n# still in A\nL=l\n[B]\nK=b\n[A]\nM=m\n"
    assert ask(text, "--group", "A", "--key", "L") == (0, b"l\n", b"")
    assert ask(text, "--group", "A", "--key", "M") == (0, b"m\n", b"")
    assert ask(text, "--group", "B") == (0, b"b\n", b"")
    assert ask(text, "--group", "") == (0, b"none\n", b"")


def test_a_group_does_not_carry_over_to_the_next_file(ask):
    files = {"a.conf": "[Config]\nK=1\n", "b.conf": "K=2\n"}
    assert ask(files, "--list") == (0, b"1\n", b"")
    assert ask(files, "--list", "--group", "") == (0, b"2\n", b"")


def test_the_reader_goes_on_to_the_next_key_and_reports_what_it_meets(ask, directory):
    path = directory / "a.conf"
    outcome = ask("[Config]\n=1\nbad\n[x/y]\nK=1\n=never read\n")
    faults = [
        fault("Unexpected line in ", path, 2, b"=1"),
        fault("Could not parse line as key in ", path, 3, b"bad"),
        fault("Group name contains invalid characters in ", path, 4, b"[x/y]"),
    ]
    assert outcome == (1, b"", b"".join(faults) + load_failure(path))


def test_no_key_is_taken_from_a_file_after_its_first_fault(ask, directory, tmp_path):
    mark = tmp_path / "mark"
    outcome = ask(f"[GeneratedConfig]\nHome=/x\n=bad\nUser=${{system:touch {mark}}}\n")
    path = directory / "a.conf"
    expected = fault("Unexpected line in ", path, 3, b"=bad") + load_failure(path)
    assert outcome == (1, b"", expected)
    assert not mark.exists()


@pytest.mark.parametrize(
    ("content", "answer"),
    [
        pytest.param("[Config]\nK=1", "1", id="a key"),
        pytest.param("[Config]\nK=1\nK=2", "1;2", id="a second value"),
        pytest.param("[Config]\nK=a;b", "a;b", id="a value of two pieces"),
        pytest.param("[Config]\nK=1\n# comment", "1", id="a comment"),
        pytest.param("[Config]\nK=1\n;", "1", id="an empty comment"),
        pytest.param("[Config]\nK=1\n[B]", "1", id="a group header"),
        pytest.param("[Config]\nK=1\n[]", "1", id="the empty group"),
        pytest.param("[Config]\nK=1\nOther=2", "1", id="another key"),
        pytest.param("[Config]\nK=1\nOther=", "1", id="another key that it unsets"),
    ],
)
def test_a_last_line_without_line_feed_is_taken_once_when_it_is(ask, content, answer):
    assert ask(content, "--list") == (0, lines(answer), b"")


@pytest.mark.parametrize("arguments", [["--group", "B"], ["--group", "B", "--list"], ["--group", ""], ["--key", "B"]])
def test_an_unterminated_header_invents_no_key(ask, arguments):
    assert ask("[Config]\nK=1\n[B]", *arguments) == (2, b"", b"")


def test_an_unterminated_line_can_unset_the_key(ask):
    assert ask("[Config]\nK=1\nK=") == (2, b"", b"")


@pytest.mark.parametrize("content", ["#", ";x", "[Config]", "[Config]\nX=1", "[Config]\n#"])
def test_an_unterminated_file_without_the_key_is_a_good_file(ask, content):
    assert ask(content) == (2, b"", b"")


def test_a_lone_unterminated_key_stands_in_the_empty_group(ask):
    assert ask("K=1", "--group", "") == (0, b"1\n", b"")


@pytest.mark.parametrize(
    ("last", "text"),
    [
        (b"bad", "Could not parse line as key in "),
        (b"=1", "Unexpected line in "),
        (b" ", "Unexpected line in "),
        (b"[B", "Could not parse line as group in "),
        (b"[B/C]", "Group name contains invalid characters in "),
        (b"a/b=1", "Key contains invalid characters in "),
    ],
)
@pytest.mark.parametrize("start", [b"", b"[Config]\nK=1\n"])
def test_an_unterminated_faulty_line_is_reported_once(ask, directory, start, last, text):
    path = directory / "a.conf"
    number = start.count(b"\n") + 1
    expected = fault(text, path, number, last) + load_failure(path)
    assert ask({"a.conf": start + last}) == (1, b"", expected)


def test_a_command_in_an_unterminated_line_runs_once(ask, tmp_path):
    log = tmp_path / "log"
    ask(f"[Config]\nK=${{system:echo run >> {log}}}")
    assert log.read_text() == "run\n"


def test_printable_bytes_survive_from_file_to_output(ask):
    value = "".join(c for c in string.printable if c not in "$;" + string.whitespace)
    assert ask(f"[Config]\nK={value}\n") == (0, lines(value), b"")


def test_a_value_of_a_mebibyte_is_printed_whole(ask):
    value = "x" * 2**20
    assert ask(f"[Config]\nK={value}\n") == (0, lines(value), b"")
