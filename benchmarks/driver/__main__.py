"""Measures, prints tables, writes them and plots to a folder, and judges: ./bench builds and runs this.

    python3 benchmarks/driver --build FOLDER [--results FOLDER] [--update-docs] [PART...] [OPTION...]
    python3 benchmarks/driver --build FOLDER cost SIDE WORK MACHINE

Further options are those of Google Benchmark. The parts "client-calls" and "program-growth" are those of "client" and of
"program" that ctest runs: they take seconds, and measure no time.
"""

import argparse
import datetime
import json
import os
import sys
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

import client
import foundation
import headers
import host
import library
import page
import plots
import program

ROOT = Path(__file__).resolve().parents[2]
PARTS = ("foundation", "library", "plots", "client", "program", "headers")
TESTS = ("client-calls", "program-growth")


def tables_of(part, build, folder, pool, costs, options):
    programs = build / "bin"
    if part == "foundation":
        return foundation.tables(programs, options)
    if part == "library":
        return library.tables(programs, costs)
    if part == "plots":
        return plots.tables(library.GROWTHS, costs, folder)
    if part == "client":
        return client.tables(programs, pool)
    if part == "client-calls":
        return client.counted_tables(programs)
    if part == "program-growth":
        return [program.growth_of_files(programs, pool)]
    if part == "program":
        return program.tables(programs, folder, pool)
    return headers.tables(host.cached(build, "CMAKE_CXX_COMPILER"), ROOT)


def measured(parts, build, folder, options):
    """Prints each table when it is there."""
    with ThreadPoolExecutor(os.cpu_count()) as pool:
        costs = library.Costs(build / "bin", pool)
        for part in parts:
            for table in tables_of(part, build, folder, pool, costs, options):
                print(f"\n{table.text()}", end="", flush=True)
                yield table


def host_text(description):
    width = max(len(name) for name in description)
    return "".join(f"{name.ljust(width)}  {value}\n" for name, value in description.items())


def write_results(folder, description, tables):
    date = datetime.datetime.now(datetime.timezone.utc).isoformat(timespec="seconds")
    data = {"date": date, "host": description, "tables": [table.data() for table in tables]}
    (folder / "bench.json").write_text(json.dumps(data, indent=2, ensure_ascii=False) + "\n", encoding="utf-8")
    texts = [host_text(description), *(table.text() for table in tables)]
    (folder / "bench.txt").write_text("\n".join(texts), encoding="utf-8")


def update_docs(docs, folder, description, tables):
    texts = {"host": host_text(description), **{table.key: table.text() for table in tables}}
    text = (docs / "performance.md").read_text(encoding="utf-8")
    missing = sorted(set(texts) - set(page.marks(text)))
    if missing:
        raise RuntimeError(f"docs/performance.md has no block for {', '.join(missing)}")
    (docs / "performance.md").write_text(page.updated(text, texts), encoding="utf-8")
    drawn = docs / "performance"
    drawn.mkdir(exist_ok=True)
    for table in tables:
        plot = f"{table.key}.svg"
        if (folder / plot).exists():
            (drawn / plot).write_bytes((folder / plot).read_bytes())


def conclusion(tables):
    """What is beyond its limit, a line for each row."""
    return [f"{table.title}: {row.name}: {row.value:,.5g} is more than {row.limit:,.5g}"
            for table in tables for row in table.beyond]


def arguments_of(words):
    parser = argparse.ArgumentParser(prog="./bench", add_help=False, usage="./bench [PART...] [OPTION...], see ./bench --help")
    parser.add_argument("--build", type=Path, required=True)
    parser.add_argument("--results", type=Path)
    parser.add_argument("--update-docs", action="store_true")
    parser.add_argument("parts", nargs="*")
    known, options = parser.parse_known_args(words)
    if known.parts[:1] == ["cost"] and len(known.parts) == 4 and not options:
        return known, options
    unknown = [each for each in known.parts if each not in PARTS + TESTS]
    unknown += [each for each in options if not each.startswith("--benchmark_")]
    if unknown:
        parser.error(f"unknown: {' '.join(unknown)}")
    if known.update_docs and (known.parts or options):
        parser.error("the documentation shows one run of all parts")
    if options and not known.parts:
        known.parts = ["foundation"]
    return known, options


def main(words):
    known, options = arguments_of(words)
    if known.parts[:1] == ["cost"]:
        side, *operation = known.parts[1:]
        print(library.cost_of(known.build / "bin", side, " ".join(operation)).text())
        return 0
    folder = known.results or known.build / "results"
    folder.mkdir(parents=True, exist_ok=True)
    description = host.description(known.build)
    print(host_text(description), end="")
    tables = list(measured(known.parts or PARTS, known.build, folder, options))
    write_results(folder, description, tables)
    if known.update_docs:
        update_docs(ROOT / "docs", folder, description, tables)
    beyond = conclusion(tables)
    print(f"\nTables and plots are in {folder}")
    for line in beyond:
        print(line)
    return 1 if beyond else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
