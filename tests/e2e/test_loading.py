"""Which files are read, in which order, how their values add up, and what a faulty file stops."""

import os

import pytest
from e2e_helpers import lines, load_failure, one_key, request
from support.tool import write_files


@pytest.mark.parametrize(
    "names",
    [
        ["a", "b"],
        ["10", "9"],
        ["B", "a"],
        ["a-b", "a"],
        ["a", "aa"],
        ["a", "a.conf"],
        ["-", "0", "Z", "_", "a", "z", "ä"],
    ],
)
def test_files_are_read_in_the_order_of_their_bytes(ask, names):
    files = {f"{name}.conf": one_key(name) for name in reversed(names)}
    assert ask(files, "--list") == (0, lines(";".join(names)), b"")
    assert ask(files) == (0, lines(names[-1]), b"")


@pytest.mark.parametrize("name", [".conf", ".a.conf", "a.conf.bak", "a.CONF", "conf", "a.con"])
def test_a_file_that_does_not_match_the_pattern_is_left_alone(ask, name):
    assert ask({name: "bad line\n", "x.conf": one_key("1")}) == (0, b"1\n", b"")


def test_all_files_of_a_directory_come_before_those_of_the_next(tmp_path):
    write_files(tmp_path, {"one/z.conf": one_key("z"), "two/a.conf": one_key("a")})
    arguments = ["--user-id", "0", "--list", "--key", "K"]
    assert request("--configs", "one:two", *arguments, cwd=tmp_path) == (0, b"z;a\n", b"")
    assert request("--configs", "two:one", *arguments, cwd=tmp_path) == (0, b"a;z\n", b"")


@pytest.mark.parametrize("first", ["missing", "empty", "file"])
def test_a_directory_without_files_is_passed_over(tmp_path, first):
    write_files(tmp_path, {"file": "", "conf/a.conf": one_key("1")})
    (tmp_path / "empty").mkdir()
    arguments = ["--config", first, "--config", "conf", "--user-id", "0", "--key", "K"]
    assert request(*arguments, cwd=tmp_path) == (0, b"1\n", b"")


def test_only_missing_and_empty_directories_are_no_configuration(tmp_path):
    (tmp_path / "empty").mkdir()
    arguments = ["--configs", "missing:empty", "--user-id", "0", "--key", "K"]
    expected = lines("No configuration to read in missing,empty")
    assert request(*arguments, cwd=tmp_path) == (1, b"", expected)


@pytest.mark.parametrize(
    ("pattern", "answer"),
    [("d[12]", "1b;2a"), ("d?", "1b;2a;3"), ("*", "1b;2a;3"), ("d[!2]/", "1b;3"), ("{d1,d2}", "")],
)
def test_a_directory_name_is_part_of_the_pattern(tmp_path, pattern, answer):
    files = {"d1/b.conf": "1b", "d2/a.conf": "2a", "d3/a.conf": "3"}
    write_files(tmp_path, {name: one_key(value) for name, value in files.items()})
    arguments = ["--config", pattern, "--user-id", "0", "--list", "--key", "K"]
    expected = (0, lines(answer), b"")
    if not answer:
        expected = (1, b"", lines("No configuration to read in " + pattern))
    assert request(*arguments, cwd=tmp_path) == expected


@pytest.mark.parametrize(
    ("files", "listed", "last"),
    [
        pytest.param(["K=A", "K=B"], "A;B", "B", id="a value in each of two files"),
        pytest.param(["K=A\nK=B"], "A;B", "B", id="two lines"),
        pytest.param(["K=one;;two"], "one;two", "two", id="two separators between two words"),
        pytest.param(["K=a;"], "a", "a", id="a separator at the end"),
        pytest.param(["K=;a"], "a", "a", id="a separator at the start"),
        pytest.param(["K=a", "K=;"], "a", "a", id="a lone separator leaves the key as it was"),
        pytest.param(["K=a", "K=;;;"], "a", "a", id="so do several"),
        pytest.param(["K= a ; b "], "a;b", "b", id="blanks around the pieces"),
        pytest.param(["K=a", "K=", "K=b"], "b", "b", id="set again after an empty value"),
        pytest.param(["K=a\nK=\nK=b;c"], "b;c", "c", id="unset and set again in one file"),
        pytest.param(["K=a", "[Other]\nK="], "a", "a", id="unset in another group only"),
        pytest.param(["K=a", "k="], "a", "a", id="unset in another case only"),
        pytest.param(["K=a;a", "K=a"], "a;a;a", "a", id="equal values"),
        pytest.param(["K=a;${nope};b"], "a;b", "b", id="a piece whose template fails"),
        pytest.param(["K=a", "K=${nope}"], "a", "a", id="a failed template unsets nothing"),
        pytest.param(["K=a", "K=${system:true}"], "a", "a", id="an empty expansion adds nothing"),
        pytest.param(["K=${config:X/Y};b"], "b", "b", id="a reference to nothing is not listed"),
    ],
)
def test_values_add_up_from(ask, files, listed, last):
    texts = {f"{number}.conf": f"[Config]\n{text}\n" for number, text in enumerate(files)}
    assert ask(texts, "--list")[:2] == (0, lines(listed))
    assert ask(texts)[:2] == (0, lines(last))


@pytest.mark.parametrize(
    "files",
    [
        pytest.param(["K="], id="never set"),
        pytest.param(["K=a", "K="], id="unset in a later file"),
        pytest.param(["K=a;b\nK="], id="unset in a later line"),
        pytest.param(["K=;"], id="a lone separator"),
        pytest.param(["K=${system:true}"], id="an expansion to nothing"),
        pytest.param(["K=$$;x", "K="], id="unset with several values"),
    ],
)
def test_there_is_no_key_when_it_is(ask, files):
    texts = {f"{number}.conf": f"[Config]\n{text}\n" for number, text in enumerate(files)}
    assert ask(texts) == (2, b"", b"")
    assert ask(texts, "--list") == (2, b"", b"")


def test_names_that_differ_in_case_are_different_names(ask):
    text = "[Config]\nK=upper\nk=lower\n[config]\nK=other\n"
    assert ask(text, "--list") == (0, b"upper\n", b"")
    assert ask(text, "--list", "--key", "k") == (0, b"lower\n", b"")


def test_a_value_that_holds_a_separator_cannot_be_told_from_two(ask):
    outcome = ask(one_key("${env:X}"), "--list", env={"X": "a;b"})
    assert outcome == ask(one_key("a;b"), "--list") == (0, b"a;b\n", b"")


def test_a_faulty_file_ends_the_loading(ask, directory, tmp_path):
    mark = tmp_path / "mark"
    late = f"[GeneratedConfig]\nHome=${{system:touch {mark}}}\n"
    outcome = ask({"1.conf": one_key("1"), "2.conf": "[bad\n", "3.conf": late})
    path = directory / "2.conf"
    fault = lines(f"ERROR: Could not parse line as group in {path} (\1): '[bad'")
    assert outcome == (1, b"", fault + load_failure(path))
    assert not mark.exists()


def test_a_faulty_file_keeps_later_directories_from_being_read(tmp_path):
    write_files(tmp_path, {"a/x.conf": "=\n", "b/x.conf": "=\n"})
    outcome = request("--configs", "a:b", "--user-id", "0", "--key", "K", cwd=tmp_path)
    fault = lines("ERROR: Unexpected line in a/x.conf (\1): '='")
    assert outcome == (1, b"", fault + load_failure("a/x.conf"))


def test_a_file_from_after_2038_is_read(directory, ask):
    (directory / "a.conf").write_text(one_key("later"))
    os.utime(directory / "a.conf", (2**32, 2**32))
    assert ask({}) == (0, lines("later"), b"")


def test_a_path_in_a_message_is_the_directory_as_given_with_one_slash(tmp_path):
    write_files(tmp_path, {"a/x.conf": "=\n"})
    outcome = request("--config", "./a/", "--user-id", "0", "--key", "K", cwd=tmp_path)
    assert outcome.err.endswith(load_failure("./a/x.conf"))


def test_a_directory_named_like_a_file_fails_like_an_unreadable_file(ask, directory):
    (directory / "x.conf").mkdir()
    assert ask({}) == (1, b"", load_failure(f"{directory}/x.conf/"))


def test_a_directory_named_like_a_file_keeps_later_files_from_being_read(ask, directory):
    (directory / "b.conf").mkdir()
    outcome = ask({"a.conf": one_key("1"), "c.conf": "=\n"})
    assert outcome == (1, b"", load_failure(f"{directory}/b.conf/"))


def test_a_link_to_nowhere_fails_like_an_unreadable_file(ask, directory):
    (directory / "x.conf").symlink_to("nowhere")
    assert ask({}) == (1, b"", load_failure(directory / "x.conf"))


@pytest.mark.skipif(os.geteuid() == 0, reason="root reads every file")
def test_a_file_without_read_permission_fails(ask, directory):
    (directory / "x.conf").touch(mode=0)
    assert ask({}) == (1, b"", load_failure(directory / "x.conf"))


def test_a_link_to_a_file_is_read_in_the_order_of_its_own_name(ask, directory):
    (directory / "z.conf").symlink_to("a.conf")
    assert ask({"a.conf": one_key("a"), "b.conf": one_key("b")}, "--list") == (0, b"a;b;a\n", b"")


def test_many_files_are_all_read(ask):
    files = {f"{number:04}.conf": one_key(number) for number in range(1000)}
    assert ask(files, "--list") == (0, lines(";".join(map(str, range(1000)))), b"")
