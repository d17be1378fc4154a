"""Turns measurements into Markdown: tables of ratios, and how they stand to the targets."""

from typing import NamedTuple, Optional

from .programs import CAREFUL, KEY_FILE, LIMIT, TOOL

# Instructions of one request; bench/budget fails above the first.
MOST_INSTRUCTIONS, AIMED_INSTRUCTIONS = 1_060_000, 1_000_000

# Where a page shows what was measured last.
BEGIN, END = "<!-- measured: begin -->\n", "<!-- measured: end -->\n"

# Functions in which one request spends its instructions, and what they do.
PARTS = (
    ("_dl_start", "the dynamic linker, which binds the C library"),
    ("Init", "libstdc++'s locales and streams"),
    ("resolveUser", "the first pass, and the user's entry in the password database"),
    ("loadFile", "reads the files, in both passes"),
    ("glob", "finds the files, in both passes"),
    ("~ConfigParser", "frees what was stored"),
)


class Target(NamedTuple):
    """A figure, the most it may be, and what it had better be. One without either is shown."""

    what: str
    measured: Optional[float]
    most: Optional[float] = None
    aim: Optional[float] = None


def table(columns, rows):
    """A Markdown table; the first column is text, the others are numbers."""
    lines = ["| " + " | ".join(columns) + " |", "|---|" + "--:|" * (len(columns) - 1)]
    lines += ["| " + " | ".join(row) + " |" for row in rows]
    return "\n".join(lines)


def ratio(costs, name, peer, field="seconds"):
    """How often the peer's cost fits into the program's; None when one was not measured."""
    if name not in costs or peer not in costs:
        return None
    return getattr(costs[name], field) / getattr(costs[peer], field)


def number(value, decimals=2):
    return "–" if value is None else f"{value:,.{decimals}f}"


def startup_table(costs, calls, instructions):
    return table(
        [
            "program",
            f"time ({CAREFUL} = 1)",
            f"processor time ({CAREFUL} = 1)",
            "thousand instructions",
            "system calls",
            "peak MiB",
        ],
        [
            [
                name,
                number(ratio(costs, name, CAREFUL)),
                number(ratio(costs, name, CAREFUL, "processor_seconds")),
                number(instructions[name] / 1000, 0),
                str(calls[name]),
                number(run.peak_mib, 1),
            ]
            for name, run in costs.items()
        ],
    )


def parts_table(instructions):
    """`instructions`: function name to what it takes, with all that it calls."""
    thousands = {name: taken / 1000 for name, taken in instructions.items()}
    return table(
        ["function", "thousand instructions"],
        [[f"`{name}`: {what}", number(thousands.get(name), 0)] for name, what in PARTS],
    )


def large_table(costs, calls, keys):
    return table(
        ["program", f"time ({LIMIT} = 1)", f"time ({KEY_FILE} = 1)", "ns per key", "system calls", "peak MiB"],
        [
            [
                name,
                number(ratio(costs, name, LIMIT)),
                number(ratio(costs, name, KEY_FILE)),
                number(run.seconds / keys * 1e9, 0),
                str(calls[name]),
                number(run.peak_mib, 1),
            ]
            for name, run in costs.items()
        ],
    )


def sweep_table(sweep):
    """`sweep`: number of keys to costs. The peers' columns are multiples of the tool's time."""
    names = list(dict.fromkeys(name for costs in sweep.values() for name in costs if name != TOOL))
    return table(
        ["keys", f"{TOOL}, ms", "ns per key", "processor ns per key", *names],
        [
            [
                f"{keys:,}",
                number(costs[TOOL].seconds * 1e3),
                number(costs[TOOL].seconds / keys * 1e9, 0),
                number(costs[TOOL].processor_seconds / keys * 1e9, 0),
                *(number(ratio(costs, name, TOOL)) for name in names),
            ]
            for keys, costs in sweep.items()
        ],
    )


def growth(sweep, first=10_000):
    """Largest time per key over smallest, from `first` keys on, without the cost of the start.
    Processor time, which a busy machine disturbs least."""
    seconds = {keys: costs[TOOL].processor_seconds for keys, costs in sweep.items()}
    start = min(seconds.values())
    per_key = [(seconds[keys] - start) / keys for keys in seconds if keys >= first]
    return max(per_key) / min(per_key)


def verdict(target):
    if target.measured is None:
        return "not measured"
    if target.most is None:
        return ""
    if target.measured > target.most:
        return "**above**"
    return "met" if target.aim is None or target.measured <= target.aim else "met, not the aim"


def targets_table(targets):
    return table(
        ["target", "measured", "at most", "aim", ""],
        [
            [target.what, number(target.measured), number(target.most), number(target.aim), verdict(target)]
            for target in targets
        ],
    )


def companion_table(costs):
    """The commands of the people's program, and the tool where it does the same work."""
    return table(
        ["command", f"time ({TOOL} = 1)", "ms", "processor ms", "peak MiB"],
        [
            [
                name,
                number(ratio(costs, name, TOOL)),
                number(run.seconds * 1e3),
                number(run.processor_seconds * 1e3),
                number(run.peak_mib, 1),
            ]
            for name, run in costs.items()
        ],
    )


def references_table(listing, lookup):
    return table(
        ["request of the same file", "time (one plain value = 1)", "ms", "peak MiB"],
        [
            [name, number(run.seconds / lookup.seconds), number(run.seconds * 1e3, 0), number(run.peak_mib, 1)]
            for name, run in (("one plain value", lookup), ("the 10,000 values listed", listing))
        ],
    )


def with_measured_text(page, text):
    """The page with `text` between its two marks."""
    before, rest = page.split(BEGIN)
    _, after = rest.split(END)
    return f"{before}{BEGIN}\n{text}\n\n{END}{after}"
