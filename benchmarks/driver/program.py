"""The program: its start and large machine files."""

import re
import subprocess
import tempfile
from pathlib import Path

import callgrind
import limits
from table import Table, number

READING = r"^sim::findMachine\("
KINDS = ("endpoints", "adapters", "connectors", "events", "chain")
SMALL = 100
LARGE = {"10,000 endpoints": "endpoints:10000", "a chain of 1,600 adapters": "chain:1600"}


def start(programs, pool):
    table = Table("program", "sonavit list --machine", ["instructions", "machine file", "share %", "limit"])
    lines = list(limits.PROGRAM)
    profiles = pool.map(lambda line: callgrind.run(programs / "sonavit", "list", "--machine", *line.split()), lines)
    for line, profile in zip(lines, profiles):
        reading = profile.inclusive(READING)
        if not reading:
            raise RuntimeError(f"no function {READING} in a profile of sonavit list --machine {line}")
        table.add(line, [number(profile.total), number(reading), number(100 * reading / profile.total, 1),
                         number(limits.PROGRAM[line])], profile.total, limits.PROGRAM[line])
    return table


def times_of(text):
    """Milliseconds of reading and of beginning a simulation."""
    found = re.search(r"reading ([\d.]+) ms, simulating ([\d.]+) ms", text)
    if not found:
        raise ValueError(f'"{text.strip()}" names no times')
    return float(found[1]), float(found[2])


def large_files(programs, folder):
    table = Table("program-files", "Large machine files, milliseconds", ["bytes", "reading", "simulating", "sum", "limit"])
    program = str(programs / "sonavit-machinefile")
    for name, machine in LARGE.items():
        file = folder / f"{machine.replace(':', '-')}.json"
        subprocess.run([program, "write", machine, str(file)], check=True)
        done = subprocess.run([program, "measure", str(file), "3"], stdout=subprocess.PIPE, text=True, check=True)
        reading, simulating = times_of(done.stdout)
        both = reading + simulating
        table.add(name, [number(file.stat().st_size), number(reading, 1), number(simulating, 1), number(both, 1),
                         number(limits.MACHINE_FILE)], both, limits.MACHINE_FILE)
        file.unlink()
    return table


def growth_of_files(programs, pool):
    """Own functions of sonavit-machinefile, on machines of one size and of four times that size."""
    table = Table("program-growth", "Machine files grow: instructions", ["small", "large", "ratio", "limit"])
    program = programs / "sonavit-machinefile"
    with tempfile.TemporaryDirectory() as folder:
        files = {}
        for kind in KINDS:
            for size in (SMALL, 4 * SMALL):
                files[kind, size] = Path(folder) / f"{kind}-{size}.json"
                subprocess.run([str(program), "write", f"{kind}:{size}", str(files[kind, size])], check=True)

        def total(question):
            function, kind, size = question
            return callgrind.run(program, "measure", files[kind, size], 1, toggles=[function]).total

        questions = [(function, kind) for kind in KINDS for function in ("readOnce", "simulateOnce")]
        totals = list(pool.map(total, [(*each, size) for each in questions for size in (SMALL, 4 * SMALL)]))
    for (function, kind), small, large in zip(questions, totals[::2], totals[1::2]):
        name = f"{'read' if function == 'readOnce' else 'simulate'}, {kind}: {SMALL}, {4 * SMALL}"
        table.add(name, [number(small), number(large), number(large / small, 2), number(limits.MACHINE_FILE_GROWTH, 2)],
                  large / small, limits.MACHINE_FILE_GROWTH)
    return table


def tables(programs, folder, pool):
    yield start(programs, pool)
    yield large_files(programs, folder)
    yield growth_of_files(programs, pool)
