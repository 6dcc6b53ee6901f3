"""Plots of growth: own instructions of both sides on the left, those for each platform call on the right."""

import subprocess

from table import Table, number

SCRIPT = """set terminal svg size 900,360 font "sans-serif,13" background "white"
set output "{output}"
set multiplot layout 1,2 title "{title}" font "sans-serif,15"
set xlabel "{axis}"
set key top left reverse Left
set grid
set xrange [0:*]
set yrange [0:*]
set style line 1 linecolor rgb "#1f5fa8" linewidth 2 pointtype 7 pointsize 0.6
set style line 2 linecolor rgb "#d07020" linewidth 2 pointtype 5 pointsize 0.6 dashtype 2
set ylabel "own instructions, millions"
plot "{data}" using 1:2 with linespoints linestyle 1 title "library", \\
     "" using 1:3 with linespoints linestyle 2 title "plain client"
unset key
set ylabel "own instructions for each platform call"
plot "{data}" using 1:4 with linespoints linestyle 1 title "library", \\
     "" using 1:5 with linespoints linestyle 2 title "plain client"
unset multiplot
"""


def points(growth, costs):
    """For each size: what the plot counts, own instructions of both in millions, and for each platform call."""
    for size, operation in zip(growth.sizes, growth.operations):
        ours, theirs = costs.library(operation), costs.plain(operation)
        yield size * growth.unit, ours.own / 1e6, theirs.own / 1e6, ours.per_call, theirs.per_call


def draw(growth, rows, folder):
    """Writes growth-KEY.dat and growth-KEY.svg."""
    data = folder / f"growth-{growth.key}.dat"
    output = folder / f"growth-{growth.key}.svg"
    data.write_text("".join(" ".join(f"{each:.6g}" for each in row) + "\n" for row in rows))
    script = SCRIPT.format(output=output, data=data, title=growth.title, axis=growth.axis)
    subprocess.run(["gnuplot"], input=script, text=True, check=True)


def table_of(growth, rows):
    table = Table(f"growth-{growth.key}", f"{growth.title}: {growth.axis}",
                  ["library M", "plain M", "library per call", "plain per call"])
    for size, *values in rows:
        table.add(number(size), [number(each, 2 if column < 2 else 0) for column, each in enumerate(values)])
    return table


def tables(growths, costs, folder):
    costs.measure([operation for growth in growths for operation in growth.operations])
    for growth in growths:
        rows = list(points(growth, costs))
        draw(growth, rows, folder)
        yield table_of(growth, rows)
