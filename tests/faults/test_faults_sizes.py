"""Inputs far larger than any real one: the answer stays right, and time and memory follow the size.

Each shape is answered once small, in every run of the tests, and once as large as it gets, in the
longer checks. The large one may cost so many times more than a small one as it is larger, with room
for a noisy machine; a cost that grows with the square of the size is far outside."""

import pytest

from watching import MEGABYTE, SMALL, run

ASK = ("--config", "d", "--key", "K")

# Bounds of the peak: what one byte of input, one piece, one key may take, far above what they do.
COPIES_OF_A_LINE = 10
BYTES_PER_PIECE = 600
BYTES_PER_KEY = 1500
BASE_BYTES = 100 * MEGABYTE

# Of the processor time: what the largest input of a shape may take, twenty times what any does.
CPU_SECONDS_OF_THE_LARGEST = 60
ROOM_FOR_NOISE = 4


def write_lines(path, head, lines):
    """Writes a file without ever holding it in memory, which the tool's peak would inherit."""
    with open(path, "w") as file:
        file.write(head)
        file.writelines(lines)


def write_long_line(place, size):
    write_lines(place / "d/a.conf", "[Config]\nK=", (block * "x" for block in blocks(size)))
    with open(place / "d/a.conf", "a") as file:
        file.write("end\n")


def blocks(size):
    return [MEGABYTE] * (size // MEGABYTE) + [size % MEGABYTE]


def write_pieces(place, count):
    write_lines(place / "d/a.conf", "[Config]\nK=", (f"{number};" for number in range(count)))
    with open(place / "d/a.conf", "a") as file:
        file.write("end\n")


def write_keys(place, count):
    write_lines(place / "d/a.conf", "[Config]\nK=end\n", (f"Key{number}=value\n" for number in range(count)))


def write_templates(place, count):
    write_lines(place / "d/a.conf", "[Config]\nK=", ("${USER_ID}" for _ in range(count)))
    with open(place / "d/a.conf", "a") as file:
        file.write("end\n")


def write_groups(place, count):
    write_lines(place / "d/a.conf", "[Config]\nK=end\n", (f"[Group{number}]\nK=value\n" for number in range(count)))


def write_comments(place, count):
    write_lines(place / "d/a.conf", "[Config]\n", ("# nothing\n" for _ in range(count)))
    with open(place / "d/a.conf", "a") as file:
        file.write("K=end\n")


def write_files(place, count):
    for number in range(count):
        (place / f"d/{number:06}.conf").write_text(f"[Config]\nKey{number}=value\n")
    (place / "d/z.conf").write_text("[Config]\nK=end\n")


def write_values(place, count):
    write_lines(place / "d/a.conf", "[Config]\n", (f"K={number}\n" for number in range(count)))
    with open(place / "d/a.conf", "a") as file:
        file.write("K=end\n")


# Shape: how it is written, sizes (small, large), bytes of peak that one more unit may take.
SHAPES = {
    "a line of 100 MB": (write_long_line, 2 * MEGABYTE, 100 * MEGABYTE, COPIES_OF_A_LINE),
    "10,000,000 pieces": (write_pieces, 200_000, 10_000_000, BYTES_PER_PIECE),
    "10,000,000 templates": (write_templates, 200_000, 10_000_000, BYTES_PER_PIECE),
    "1,000,000 keys": (write_keys, 50_000, 1_000_000, BYTES_PER_KEY),
    "1,000,000 groups": (write_groups, 50_000, 1_000_000, BYTES_PER_KEY),
    "1,000,000 values of one key": (write_values, 50_000, 1_000_000, BYTES_PER_KEY),
    "10,000,000 comments": (write_comments, 200_000, 10_000_000, 1),
    "100,000 files": (write_files, 2_000, 100_000, BYTES_PER_KEY),
}


def answer(place, shape, size, *options):
    write, _, largest, bytes_per_unit = SHAPES[shape]
    write(place, size)
    bounds = SMALL.plus(CPU_SECONDS_OF_THE_LARGEST * size / largest, bytes_per_unit * size)
    outcome = run(*ASK, *options, place=place, bounds=bounds)
    assert (outcome.status, outcome.stderr) == (0, b"")
    return outcome


@pytest.mark.parametrize("shape", SHAPES)
def test_a_large_input_is_answered(place, shape):
    outcome = answer(place, shape, SHAPES[shape][1])
    assert outcome.stdout.endswith(b"end\n")


@pytest.mark.slow
@pytest.mark.parametrize("shape", SHAPES)
def test_time_and_memory_follow_the_size(place, plain_build, shape):
    _, small, large, bytes_per_unit = SHAPES[shape]
    before = answer(place, shape, small)
    after = answer(place, shape, large)
    assert after.stdout.endswith(b"end\n")
    assert after.cpu_seconds < (before.cpu_seconds + 0.02) * (large / small) * ROOM_FOR_NOISE
    assert after.peak_bytes < BASE_BYTES + bytes_per_unit * large


def test_a_long_line_is_printed_byte_for_byte(place):
    outcome = answer(place, "a line of 100 MB", 5 * MEGABYTE)
    assert outcome.stdout == b"x" * (5 * MEGABYTE) + b"end\n"


@pytest.mark.slow
def test_every_one_of_ten_million_pieces_is_listed(place, plain_build):
    outcome = answer(place, "10,000,000 pieces", 10_000_000, "--list")
    assert outcome.stdout.count(b";") == 10_000_000
    assert outcome.stdout == b";".join(b"%d" % number for number in range(10_000_000)) + b";end\n"


@pytest.mark.parametrize("size", [8190, 8191, 8192, 8193, 16383, 65535, 65536])
def test_lines_around_the_size_of_a_buffer_are_whole(place, size):
    value = "x" * (size - len("K=") - 1) + "y"
    (place / "d/a.conf").write_text(f"[Config]\nK={value}\nL=other\nK={value}\n")
    outcome = run(*ASK, "--list", place=place)
    assert (outcome.status, outcome.stdout, outcome.stderr) == (0, f"{value};{value}\n".encode(), b"")


@pytest.mark.parametrize("size", [1022, 1023, 1024, 1025, 2046, 2047])
def test_command_output_around_the_size_of_a_read_is_whole(place, size):
    (place / "d/a.conf").write_text("[Config]\nK=${system:head -c %d /dev/zero | tr '\\000' x && echo y}\n" % size)
    outcome = run(*ASK, place=place)
    assert (outcome.status, outcome.stdout, outcome.stderr) == (0, b"x" * size + b"y\n", b"")


def test_three_hundred_directories_are_read_in_their_order(place):
    for number in range(300):
        (place / f"d{number}").mkdir()
        (place / f"d{number}/a.conf").write_text(f"[Config]\nK={number}\n")
    directories = ":".join(f"d{number}" for number in range(300))
    outcome = run("--configs", directories, "--key", "K", "--list", place=place)
    assert (outcome.status, outcome.stderr) == (0, b"")
    assert outcome.stdout == b";".join(b"%d" % number for number in range(300)) + b"\n"


def test_the_longest_argument_of_the_system_is_answered(place):
    (place / "d/a.conf").write_text("[Config]\nK=right\n")
    outcome = run("--config", "d", "--key", "x" * 130_000, place=place)
    assert (outcome.status, outcome.stdout, outcome.stderr) == (2, b"", b"")
