"""The foundation against the standard library, a plain pointer class and spdlog."""

import re
import subprocess

import callgrind
import limits
from table import Table, number

HEADS = ["ours ns", "theirs ns", "ratio", "ours instr.", "theirs instr.", "theirs<"]
MANY = "While the process has a second thread, which sleeps"
ONE = "While the process has one thread"


def timed(program, threads, options):
    """Nanoseconds, ours and theirs, by name and by what it is compared with."""
    command = [str(program), threads, *options]
    done = subprocess.run(command, stdout=subprocess.PIPE, text=True)
    if done.returncode != 0:
        raise RuntimeError(f"{' '.join(command)} ended with {done.returncode}")
    rows = [line.split("\t") for line in done.stdout.splitlines()]
    return {(name, peer): (float(ours), float(theirs)) for name, peer, ours, theirs in rows}


def counted(program):
    """Instructions of one repetition, likewise: those of many without those of few."""
    output, profiles = callgrind.dumps(program, "count")
    lines = output.splitlines()
    if len(profiles) != 6 * len(lines):
        raise RuntimeError(f"{len(profiles)} counts for {len(lines)} rows")
    counts = {}
    for line in lines:
        name, peer, *numbers, repetitions = line.split("\t")
        few = [int(each) - 1 for each in numbers]
        counts[name, peer] = tuple((profiles[each + 1].total - profiles[each].total) / int(repetitions) for each in few)
    return counts


def limit_of(key):
    footnote = limits.FOOTNOTES.get(key)
    return footnote.limit if footnote else limits.FOUNDATION


def filter_of(keys):
    """The option that chooses these rows."""
    names = "|".join(sorted({re.escape(name).replace(r"\ ", " ").replace(r"\-", "-") for name, _ in keys}))
    return f"--benchmark_filter=^({names}), against "


def measured_again(program, times, options):
    """Rows beyond their limits are measured once more, and the lower ratio counts: others use the processor, too."""
    beyond = [key for key, (ours, theirs) in times.items() if ours / theirs > limit_of(key)]
    if not beyond or any("benchmark_filter" in each for each in options):
        return times
    again = timed(program, "many", [*options, filter_of(beyond)])
    lower = {key: min(times[key], again[key], key=lambda each: each[0] / each[1]) for key in beyond}
    return {**times, **lower}


def table_of(key, title, times, counts, is_judged):
    table = Table(key, title, HEADS)
    for row, (ours, theirs) in times.items():
        footnote = limits.FOOTNOTES.get(row) if is_judged else None
        our_count, their_count = counts.get(row, (None, None))
        cells = [number(ours, 2), number(theirs, 2), number(ours / theirs, 2), number(our_count), number(their_count),
                 row[1]]
        table.add(row[0], cells, ours / theirs, limit_of(row) if is_judged else None, footnote and footnote.text)
    return table


def tables(programs, options):
    program = programs / "sonavit-benchmark"
    many = measured_again(program, timed(program, "many", options), options)
    one = timed(program, "one", options)
    counts = {} if options else counted(program)
    yield table_of("foundation-many", MANY, many, counts, True)
    yield table_of("foundation-one", ONE, one, {}, False)
