"""References in circles, chains and fans: at most 33 values are visited, the first one included."""

import pytest

from watching import run

ASK = ("--config", "d", "--key", "K")
TOO_MANY = b"ERROR: Max depth reached, possibly circular reference.\n"


def refer(name):
    return f"${{config:Config/{name}}}"


def write(place, lines):
    (place / "d/a.conf").write_text("[Config]\n" + "\n".join(lines) + "\n")


@pytest.mark.parametrize("length", [1, 2, 3, 32, 33, 34, 1000])
def test_a_cycle_of_any_length_ends_with_a_record_and_no_text(place, length):
    names = ["K"] + [f"N{number}" for number in range(1, length)]
    write(place, [f"{name}=x{refer(after)}" for name, after in zip(names, names[1:] + names[:1])])
    outcome = run(*ASK, place=place)
    assert (outcome.status, outcome.stdout, outcome.stderr) == (0, b"\n", TOO_MANY)


@pytest.mark.parametrize("visits", [1, 2, 31, 32, 33])
def test_a_chain_of_up_to_33_values_is_followed(place, visits):
    write(place, chain(visits))
    outcome = run(*ASK, place=place)
    assert (outcome.status, outcome.stdout, outcome.stderr) == (0, b"x" * (visits - 1) + b"end\n", b"")


@pytest.mark.parametrize("visits", [34, 35, 1000])
def test_a_chain_of_34_values_or_more_is_refused(place, visits):
    write(place, chain(visits))
    outcome = run(*ASK, place=place)
    assert (outcome.status, outcome.stdout, outcome.stderr) == (0, b"\n", TOO_MANY)


def chain(length):
    names = ["K"] + [f"N{number}" for number in range(1, length)]
    return [f"{name}=x{refer(after)}" for name, after in zip(names, names[1:])] + [f"{names[-1]}=end"]


@pytest.mark.parametrize("visits", [2, 32, 33])
def test_a_fan_of_up_to_33_visits_is_filled(place, visits):
    write(place, ["Leaf=l", f"K=<{refer('Leaf') * (visits - 1)}>"])
    outcome = run(*ASK, place=place)
    assert (outcome.status, outcome.stdout, outcome.stderr) == (0, b"<" + b"l" * (visits - 1) + b">\n", b"")


@pytest.mark.parametrize("visits", [34, 35, 10_000])
def test_a_fan_of_34_visits_or_more_is_refused(place, visits):
    write(place, ["Leaf=l", f"K=<{refer('Leaf') * (visits - 1)}>"])
    outcome = run(*ASK, place=place)
    assert (outcome.status, outcome.stdout, outcome.stderr) == (0, b"\n", TOO_MANY)


def test_missing_keys_are_no_visits(place):
    write(place, ["Leaf=l", f"K=<{refer('Missing') * 10_000}{refer('Leaf') * 32}>"])
    outcome = run(*ASK, place=place)
    assert (outcome.status, outcome.stdout, outcome.stderr) == (0, b"<" + b"l" * 32 + b">\n", b"")


def test_doubling_at_every_level_does_not_run_away(place):
    write(place, ["N0=x"] + [f"N{n}={refer(f'N{n - 1}') * 2}" for n in range(1, 64)] + [f"K={refer('N63')}"])
    outcome = run(*ASK, place=place)
    assert (outcome.status, outcome.stdout, outcome.stderr) == (0, b"\n", TOO_MANY)


def test_every_value_of_a_list_has_33_visits_of_its_own(place):
    write(place, ["Leaf=l", "K=" + ";".join([refer("Leaf") * 32] * 3 + [refer("Leaf") * 33, "plain"])])
    outcome = run(*ASK, "--list", place=place)
    expected = b";".join([b"l" * 32] * 3 + [b"plain"]) + b"\n"
    assert (outcome.status, outcome.stdout, outcome.stderr) == (0, expected, TOO_MANY)
