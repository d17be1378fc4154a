"""Draws time against number of keys, with gnuplot."""

import shutil
import subprocess

COLOURS = {
    "tarnwick-parse-config": "#c0392b",
    "careful C++ reader": "#f1c40f",
    "slices in C": "#7f8c8d",
    "libinih": "#27ae60",
    "GKeyFile": "#2980b9",
    "git config": "#e67e22",
    "kreadconfig5": "#8e44ad",
    "crudini": "#16a085",
}

SETTINGS = """
set terminal svg size 860,560 font "sans-serif,13" background "white"
set logscale xy
set format x "10^{%T}"
set format y "%g"
set xlabel "keys in one file"
set ylabel "milliseconds until the answer"
set key left top
set grid
set style data linespoints
set pointsize 0.6
set for [number=1:9] linetype number pt 7 lw 2
"""


def curves(sweep):
    """From number of keys to costs, to program name to its list of (keys, seconds)."""
    series = {}
    for keys, costs in sweep.items():
        for name, run in costs.items():
            series.setdefault(name, []).append((keys, run.seconds))
    return series


def gnuplot_text(series):
    """`series`: program name to a list of (keys, seconds)."""
    blocks, lines = [], []
    for number, (name, points) in enumerate(series.items()):
        rows = "".join(f"{keys} {seconds * 1000:.3f}\n" for keys, seconds in points)
        blocks.append(f"$data{number} << END\n{rows}END\n")
        colour = COLOURS.get(name, "#000000")
        lines.append(f'$data{number} lc rgb "{colour}" title "{name}"')
    return SETTINGS + "".join(blocks) + "plot " + ", \\\n".join(lines) + "\n"


def draw(series, path):
    """Writes the SVG; without gnuplot there is none, and False is returned."""
    if not shutil.which("gnuplot"):
        return False
    picture = subprocess.run(["gnuplot"], input=gnuplot_text(series), stdout=subprocess.PIPE, text=True, check=True)
    path.write_text(picture.stdout)
    return True
