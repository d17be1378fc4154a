"""Strategies that take much from one draw: a draw is what the generated cases spend their time on.

What stands first is what a failing case shrinks to.
"""

from hypothesis import strategies as st


def weighted(*rows, slots=4096):
    """One of the alternatives of the rows; a row (weight, alternatives) comes as often as its weight says."""
    total = sum(weight for weight, _ in rows)
    table = []
    for weight, alternatives in rows:
        count = int(slots * weight / total)
        table += [alternatives[slot * len(alternatives) // count] for slot in range(count)]
    return st.sampled_from(table)


def often(percent):
    """True in so many of 100 cases."""
    return weighted((100 - percent, [False]), (percent, [True]), slots=256)


PLACES = 4096
PLACE = st.sampled_from(range(PLACES))


def place(draw, count):
    """A number below `count`, which may be another one in each case."""
    return draw(PLACE) * count // PLACES


def pick(draw, items):
    """One of a few items that only this case has."""
    return items[place(draw, len(items))]
