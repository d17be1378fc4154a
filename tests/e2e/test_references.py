"""References between keys: what fills the holes, where it goes, how far a chain may reach."""

import pytest
from e2e_helpers import lines

TOO_DEEP = lines("ERROR: Max depth reached, possibly circular reference.")
PAST_THE_END = "a reference stands past the end of its trimmed value"


def cannot_get(key, cause):
    return lines(f"CRITICAL: Cannot get '{key}': {cause}")


@pytest.mark.parametrize(
    ("value", "answer"),
    [
        ("${config:A/B}", "b"),
        ("x${config:A/B}y", "xby"),
        ("${config:A/B}${config:A/C}", "bccc"),
        ("1${config:A/B}2${config:A/C}3${config:A/B}4", "1b2ccc3b4"),
        ("${config:A/B/}", "b"),
        ("$${config:A/B}", "${config:A/B}"),
        ("${config:A/Missing}", ""),
        ("x${config:A/Missing}y", "xy"),
        ("x${config:Missing/B}y${config:A/B}", "xyb"),
        ("x${config:a/B}${config:A/b}y", "xy"),
        ("x${config:A/Unset}y", "xy"),
        ("x${config:A/Failed}y", "xy"),
        ("x${config:A/B:C}y", "xy"),
        ("${config:A/Many}", "last"),
        ("${config:A/my key }", "blank"),
        ("${config: a b /B}", "spaced"),
        ("${config:A/Later}", "later"),
        ("${config:A/Chain}", "<<b>>"),
        ("${config:A/Dollar}", "${HOME}"),
        ("${INSTANCE}-${config:A/B}-${INSTANCE}", "default-b-default"),
        ("${config:A/Instance}", "default"),
    ],
)
def test_a_reference_is_filled_at_lookup(ask, value, answer):
    first = f"""[Config]
K={value}
[A]
B=b
C=ccc
Many=first
Many=second;last
Unset=x
Unset=
Failed=${{env:NO_SUCH_VARIABLE_HERE}}
my key =blank
Chain=<${{config:A/Link}}>
Link=<${{config:A/B}}>
Dollar=$${{HOME}}
Instance=${{INSTANCE}}
[ a b ]
B=spaced
"""
    later = "[A]\nLater=later\n"
    assert ask({"a.conf": first, "b.conf": later}) == (0, lines(answer), b"")


@pytest.mark.parametrize(
    ("value", "listed"),
    [
        ("a;${config:A/B};c", "a;1;2;c"),
        ("${config:A/Missing}", ""),
        ("a;${config:A/Missing};c", "a;c"),
        ("${config:A/B}${config:A/B}", "1;21;2"),
    ],
)
def test_a_list_keeps_the_references_that_resolve_to_a_text(ask, value, listed):
    text = f"[Config]\nK={value}\n[A]\nB=${{env:X}}\n"
    assert ask(text, "--list", env={"X": "1;2"}) == (0, lines(listed), b"")


@pytest.mark.parametrize("listing", [[], ["--list"]])
def test_a_key_that_resolves_to_nothing_is_an_empty_line(ask, listing):
    assert ask("[Config]\nK=${config:A/Missing}\n", *listing) == (0, b"\n", b"")


@pytest.mark.parametrize(
    ("value", "answer"),
    [
        pytest.param("  ab${config:A/B}cd", "abcdR", id="leading blanks move the text behind it"),
        pytest.param(" ab${config:A/B}cd", "abcRd", id="one leading blank moves it by one"),
        pytest.param("ab${config:A/B}cd  ", "abRcd", id="trailing blanks do not matter"),
        pytest.param("${config:A/B}  ab", "Rab", id="nor do blanks behind it, trimmed as leading"),
        pytest.param("ab ${config:A/B} cd", "ab R cd", id="nor do inner blanks"),
    ],
)
def test_the_place_of_a_reference_is_counted_before_trimming(ask, value, answer):
    outcome = ask(f"[Config]\nK={value}\n[A]\nB=R\n")
    assert outcome == (0, lines(answer), b"")


@pytest.mark.parametrize("value", [" x${config:A/B}", "x  ${config:A/B}", "x ${config:A/B} ", "\tx${config:A/B}"])
@pytest.mark.parametrize("listing", [[], ["--list"]])
def test_a_place_past_the_end_of_the_text_ends_the_request(ask, value, listing):
    outcome = ask(f"[Config]\nK={value}\n[A]\nB=R\n", *listing)
    assert outcome[:2] == (1, b"")
    assert outcome.err == cannot_get("Config/K", f"Config/K: {PAST_THE_END}")


def test_a_place_past_the_end_harms_nobody_who_does_not_look(ask):
    assert ask("[Config]\nK=1\nBad= x${config:A/B}\n") == (0, b"1\n", b"")


def test_a_place_past_the_end_ends_the_request_of_a_key_that_draws_on_it(ask):
    outcome = ask("[Config]\nK=${config:A/Bad}\n[A]\nBad= x${config:A/B}\n")
    assert outcome[:2] == (1, b"")
    assert outcome.err == cannot_get("Config/K", f"A/Bad: {PAST_THE_END}")


def test_a_place_past_the_end_of_a_generated_key_is_told_by_that_key(ask):
    generated = "UserId=0\nUser=x\nBaseUid=1\nHome=  a${config:GeneratedConfig/User}\n"
    outcome = ask(f"[GeneratedConfig]\n{generated}[Config]\nK=1\n")
    assert outcome[:2] == (1, b"")
    assert outcome.err == cannot_get("Config/K", f"GeneratedConfig/Home: {PAST_THE_END}")


def chain(length):
    """A configuration in which K draws on a chain of `length` keys; the last one is plain."""
    links = [f"C{number}=${{config:A/C{number + 1}}}" for number in range(1, length)]
    return "\n".join(["[Config]", "K=${config:A/C1}", "[A]", *links, f"C{length}=end", ""])


def fan(width):
    """A configuration in which K draws `width` times on one plain key."""
    return "[Config]\nK=" + "${config:A/B}" * width + "\n[A]\nB=b\n"


@pytest.mark.parametrize(
    ("text", "outcome"),
    [
        pytest.param(chain(32), (0, b"end\n", b""), id="a chain of 32 below it"),
        pytest.param(chain(33), (0, b"\n", TOO_DEEP), id="a chain of 33 below it"),
        pytest.param(fan(32), (0, b"b" * 32 + b"\n", b""), id="32 plain keys"),
        pytest.param(fan(33), (0, b"\n", TOO_DEEP), id="33 plain keys"),
        pytest.param("[Config]\nK=${config:Config/K}\n", (0, b"\n", TOO_DEEP), id="itself"),
        pytest.param(
            "[Config]\nK=x${config:Config/L}\nL=${config:Config/K}\n",
            (0, b"\n", TOO_DEEP),
            id="a key that draws on it",
        ),
        pytest.param(
            "[Config]\nK=x" + "${config:A/Missing}" * 100 + "\n",
            (0, b"x\n", b""),
            id="100 missing keys, which do not count",
        ),
    ],
)
def test_a_value_may_draw_on_33_values_with_itself(ask, text, outcome):
    assert ask(text) == outcome


def test_each_value_of_a_list_is_counted_on_its_own(ask):
    text = fan(32) + "[Config]\nK=" + "${config:A/B}" * 32 + "\n"
    assert ask(text, "--list") == (0, b";".join([b"b" * 32] * 2) + b"\n", b"")


def test_a_circular_value_is_dropped_from_the_list(ask):
    outcome = ask("[Config]\nK=a;${config:Config/K}\n", "--list")
    assert outcome == (0, b"a\n", TOO_DEEP)


def test_an_earlier_value_that_draws_on_the_last_one_is_no_circle(ask):
    assert ask("[Config]\nK=<${config:Config/K}>;b\n", "--list") == (0, b"<b>;b\n", b"")


def test_a_circle_that_nobody_asks_for_is_not_reported(ask):
    assert ask("[Config]\nK=1\nL=${config:Config/L}\n") == (0, b"1\n", b"")
