"""Recording which tests reach which lines: each suite in a process of its own, once for each build of a program."""

import hashlib
import os
import pickle
import re
import shutil
from concurrent.futures import ThreadPoolExecutor

from build import LLVM, output_of
from coverage import Builder, Test
from folders import ROOT, folder_of
from linetable import rows
from recording import records
from running import run_tests

SUITE_SECONDS = 3600
TRIES = 3  # on a busy machine a test that waits for a thread may wait in vain
VERSION = 1


def digest_of(file):
    with open(file, "rb") as data:
        return hashlib.file_digest(data, "sha256").hexdigest()


def suites(program):
    """The suites of a test program, without those that are disabled."""
    result, suite = [], None
    for line in output_of([str(program), "--gtest_list_tests"], program.parent).splitlines():
        if match := re.match(r"([\w/]+)\.", line):
            suite = match.group(1)
        elif line.startswith("  ") and "DISABLED_" not in f"{suite}.{line.strip()}" and suite not in result:
            result.append(suite)
    return result


class Failure(Exception):
    """No run is possible: the unchanged program does not pass its tests, or accepted.txt has a mistake."""


def _recorded(program, suite, folder):
    file = folder / "reached"
    file.unlink(missing_ok=True)
    outcome = run_tests(program, [f"{suite}.*"], folder, SUITE_SECONDS, SONAVIT_REACHED=str(file))
    found = list(records(file.read_bytes()))
    file.unlink()
    return found, outcome


def _records_of(program, suite, folder):
    """The records of a suite, from the folder if it was recorded there before."""
    folder = folder / re.sub(r"\W", "_", suite)
    folder.mkdir(parents=True, exist_ok=True)
    kept = folder / "records"
    if kept.exists():
        return pickle.loads(kept.read_bytes())
    for _ in range(TRIES):
        found, outcome = _recorded(program, suite, folder)
        if outcome.code == 0:
            break
    else:
        raise Failure(f"{program.name}: {suite} fails without a change:\n{outcome.output[-3000:]}")
    written = folder / "written"
    written.write_bytes(pickle.dumps(found))
    written.rename(kept)
    return found


def _builder(build, name, places):
    builder = Builder(places)
    lines = output_of([f"{LLVM}/llvm-dwarfdump", "--debug-line", f"bin/{name}"], build.folder).splitlines()
    prefix = f"{ROOT}/"
    for begin, end, path, line in rows(lines, builder.first_address):
        path = os.path.normpath(path)
        if path.startswith(prefix) and folder_of(path[len(prefix):]):
            builder.add_stretch(begin, end, path[len(prefix):], line)
    builder.add_functions(build.symbols(name))
    return builder


def _record(build, name, scratch, jobs):
    program = build.program(name)
    builder = None
    with ThreadPoolExecutor(jobs) as pool:
        for found in pool.map(lambda suite: _records_of(program, suite, scratch), suites(program)):
            places, *tests = found
            if builder is None:
                builder = _builder(build, name, places.blocks)
            for record in tests:
                if not record.has_passed:  # it is skipped
                    continue
                builder.add_test(Test(record.name, record.seconds, record.source), record.blocks)
    return builder.coverage


def coverage_of(build, name, folder, jobs):
    """The coverage of a test program, from the folder if it was recorded there for the same build."""
    key = (VERSION, digest_of(build.program(name)))
    file = folder / f"{name}.pickle"
    if file.exists():
        kept = pickle.loads(file.read_bytes())
        if kept[0] == key:
            return kept[1]
    print(f"Recording which lines the tests of {name} reach", flush=True)
    scratch = folder / f"{name}.{key[1][:16]}"
    coverage = _record(build, name, scratch, jobs)
    file.write_bytes(pickle.dumps((key, coverage)))
    shutil.rmtree(scratch)
    return coverage
