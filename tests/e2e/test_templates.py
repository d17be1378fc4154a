"""The template language: text, dollars, template variables and every complaint about a template."""

import os

import pytest
from e2e_helpers import is_critical_record, lines, one_key

ODM_DIRECTORY = "/odm" if os.path.exists("/odm/lib") else "/vendor"


@pytest.mark.parametrize(
    ("value", "answer"),
    [
        ("plain", "plain"),
        ("a$$b", "a$b"),
        ("$$", "$"),
        ("$$$$", "$$"),
        ("$${HOME}", "${HOME}"),
        ("$$${INSTANCE}", "$name"),
        ("${INSTANCE}", "name"),
        ("<${INSTANCE}>", "<name>"),
        ("${INSTANCE}${INSTANCE}", "namename"),
        ("${INSTANCE}-${USER_ID}", "name-0"),
        ("{INSTANCE}", "{INSTANCE}"),
        ("${INSTANCE}}", "name}"),
        ("}{", "}{"),
        ("${ODM_DIR}", ODM_DIRECTORY),
        ("  ${env:X}", "ab"),
        ("${env:X}\t ", "ab"),
        ("${env:X} ${env:X}", "ab ab"),
    ],
)
def test_a_value_is_expanded(ask, value, answer):
    outcome = ask(one_key(value), "--instance", "name", env={"X": "ab"})
    assert outcome == (0, lines(answer), b"")


@pytest.mark.parametrize(
    ("value", "message"),
    [
        ("${HOME", "Invalid template substitution, missing '}': ${HOME"),
        ("a ${HOME", "Invalid template substitution, missing '}': a ${HOME"),
        ("${", "Invalid template substitution, missing '}': ${"),
        ("${HOME} ${", "Invalid template substitution, missing '}': ${HOME} ${"),
        ("abc$", "'$' must be followed by '{' or '$': abc$"),
        ("$", "'$' must be followed by '{' or '$': $"),
        ("$$$", "'$' must be followed by '{' or '$': $$$"),
        ("$HOME", "'$' must be followed by '{' or '$': $HOME"),
        ("a$ {HOME}", "'$' must be followed by '{' or '$': a$ {HOME}"),
        (" $) ", "'$' must be followed by '{' or '$':  $) "),
        ("${}", "No such template ''"),
        ("${HOM}", "No such template 'HOM'"),
        ("${home}", "No such template 'home'"),
        ("${ HOME}", "No such template ' HOME'"),
        ("${HOME }", "No such template 'HOME '"),
        ("${${HOME}}", "No such template '${HOME'"),
        ("${$${HOME}", "No such template '$${HOME'"),
        ("${{HOME}}", "No such template '{HOME'"),
        ("${env}", "No such template 'env'"),
        ("${foo:bar}", "Invalid template 'foo:bar'"),
        ("${:}", "Invalid template ':'"),
        ("${:HOME}", "Invalid template ':HOME'"),
        ("${Env:HOME}", "Invalid template 'Env:HOME'"),
        ("${ env:HOME}", "Invalid template ' env:HOME'"),
        ("${env :HOME}", "Invalid template 'env :HOME'"),
        ("${HOME:}", "Invalid template 'HOME:'"),
        ("${config:A}", "Invalid format 'A' for conf template 'config:A'"),
        ("${config:}", "Invalid format '' for conf template 'config:'"),
        ("${config:/}", "Invalid format '/' for conf template 'config:/'"),
        ("${config:/B}", "Invalid format '/B' for conf template 'config:/B'"),
        ("${config:A/}", "Invalid format 'A/' for conf template 'config:A/'"),
        ("${config://}", "Invalid format '//' for conf template 'config://'"),
        ("${config:A//}", "Invalid format 'A//' for conf template 'config:A//'"),
        ("${config:A//B}", "Invalid format 'A//B' for conf template 'config:A//B'"),
        ("${config:A/B/C}", "Invalid format 'A/B/C' for conf template 'config:A/B/C'"),
        ("${config:A/B//}", "Invalid format 'A/B//' for conf template 'config:A/B//'"),
        ("${envfile:NAME}", "Invalid envfile definition 'envfile:NAME'"),
        ("${envfile:}", "Invalid envfile definition 'envfile:'"),
    ],
)
def test_a_faulty_template_fails_its_whole_value(ask, value, message):
    assert ask(one_key(value)) == (2, b"", lines("ERROR: " + message))


@pytest.mark.parametrize("value", ["${nope}${later}", "${nope}$", "${nope}${", "${nope}${a:b}"])
def test_nothing_is_scanned_after_a_failed_template(ask, value):
    assert ask(one_key(value)) == (2, b"", lines("ERROR: No such template 'nope'"))


def test_a_message_quotes_only_the_piece_that_failed(ask):
    outcome = ask(one_key("a;b$;c"))
    assert outcome == (0, b"c\n", lines("ERROR: '$' must be followed by '{' or '$': b$"))


def test_each_failed_piece_is_reported_and_the_others_stay(ask):
    outcome = ask(one_key("${x};1;${y};2"), "--list")
    expected = lines("ERROR: No such template 'x'", "ERROR: No such template 'y'")
    assert outcome == (0, b"1;2\n", expected)


def test_a_value_is_split_before_its_templates_are_looked_at(ask):
    outcome = ask(one_key("${system:a;b}"), "--list")
    message = "ERROR: Invalid template substitution, missing '}': ${system:a"
    assert outcome == (0, b"b}\n", lines(message))


@pytest.mark.parametrize("text", ["$$", "$", "${HOME}", "${", "a;b", "%s", "\\n"])
def test_text_from_a_source_is_not_scanned_again(ask, text):
    assert ask(one_key("${env:X}"), env={"X": text}) == (0, lines(text), b"")


def test_a_template_in_the_value_of_another_key_is_reported_too(ask):
    outcome = ask("[Other]\nX=${nope}\n[Config]\nK=1\n")
    assert outcome == (0, b"1\n", lines("ERROR: No such template 'nope'"))


@pytest.mark.parametrize(
    "line",
    [
        pytest.param("K= ", id="a lone blank"),
        pytest.param("K=\t \r", id="several white-space characters"),
        pytest.param("K=a; ;b", id="a blank piece"),
        pytest.param("K=${env:BLANK}", id="a blank variable"),
        pytest.param("K= ${env:BLANK} ", id="blanks around a blank variable"),
        pytest.param("K= ${system:true}", id="a blank beside nothing"),
        pytest.param("K= ${config:Config/X}", id="a blank beside a reference"),
        pytest.param("K=${config:Config/X} ${config:Config/X}", id="a blank between references"),
        pytest.param("K=${system:echo}", id="a command that prints white space only"),
    ],
)
def test_a_value_of_white_space_only_ends_the_request(ask, directory, line):
    outcome = ask(f"[Config]\nX=x\n{line}\n", env={"BLANK": "  "})
    assert outcome[:2] == (1, b"")
    assert is_critical_record(outcome.err, "Config", "K", str(directory / "a.conf"))


def test_a_blank_value_ends_the_request_for_any_other_key_too(ask, directory):
    outcome = ask("[Config]\nK=1\n[Other]\nName = \n")
    assert outcome[:2] == (1, b"")
    assert is_critical_record(outcome.err, "Other", "Name ", str(directory / "a.conf"))


def test_a_blank_generated_value_is_met_before_any_other(ask, directory):
    outcome = ask("[Config]\nA= \n[GeneratedConfig]\nUser= \n")
    assert outcome[:2] == (1, b"")
    assert is_critical_record(outcome.err, "GeneratedConfig", "User", str(directory / "a.conf"))


def test_a_blank_value_of_an_unregistered_key_is_first_met_in_the_main_pass(ask, directory):
    outcome = ask({"1.conf": "[Config]\nK= \n", "2.conf": "[bad\n"})
    assert outcome.err.startswith(b"ERROR: Could not parse line as group in ")
