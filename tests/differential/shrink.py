"""Makes a failing case small: takes away whatever can go while it still fails."""

from dataclasses import replace


def shrink(case, still_fails):
    """A case that fails as `case` does and from which nothing more can be taken."""
    while True:
        smaller = first_failing(smaller_cases(case), still_fails)
        if smaller is None:
            return case
        case = smaller


def first_failing(cases, still_fails):
    return next((case for case in cases if still_fails(case)), None)


def smaller_cases(case):
    """Every case with one thing less, the big things first."""
    for field in ("files", "links", "environment"):
        for name in getattr(case, field):
            kept = {other: content for other, content in getattr(case, field).items() if other != name}
            yield replace(case, **{field: kept})
    for field, least in (("directories", 1), ("arguments", 0)):
        yield from with_shorter_list(case, field, least)
    for separator in (b"\n", b";"):
        yield from smaller_files(case, separator)


def with_shorter_list(case, field, least):
    """Takes one item out of a list that the case has, as long as more than `least` are in it."""
    items = getattr(case, field, [])
    if len(items) > least:
        for index in range(len(items)):
            yield replace(case, **{field: without(items, index, 1)})


def smaller_files(case, separator):
    """Takes ever shorter runs of lines (or of value pieces) out of one file."""
    for name, content in case.files.items():
        if content is None:
            continue
        parts = content.split(separator)
        length = len(parts) // 2
        while length > 0:
            for index in range(0, len(parts), length):
                kept = separator.join(without(parts, index, length))
                if kept != content:
                    yield replace(case, files={**case.files, name: kept})
            length //= 2


def without(items, index, count):
    return items[:index] + items[index + count :]
