"""What has to be compiled and which tests have to run for a change."""

import re
from dataclasses import dataclass
from functools import lru_cache
from pathlib import Path

import order
from folders import ROOT

MOST_OBJECTS = 4
NAME = re.compile(r"[A-Za-z_]\w{4,}")


@dataclass(frozen=True)
class Plan:
    """What is asked about a change in one program: the objects to compile again and the tests that reach it."""

    program: str
    objects: tuple
    tests: tuple


def objects_for(functions, candidates):
    """The objects that define the most of these functions, the ones first that define what no other of them has.

    @param functions: how many tests reach each function, by name
    @param candidates: the functions of each object, by its name, the cheaper ones first"""
    chosen, left = [], dict(functions)
    while left and len(chosen) < MOST_OBJECTS:
        best = max(candidates, key=lambda item: sum(left.get(name, 0) for name in candidates[item]), default=None)
        gained = candidates[best] & left.keys() if best is not None else ()
        if not gained:
            break
        chosen.append(best)
        for name in gained:
            del left[name]
    return chosen


@lru_cache(maxsize=None)
def _names_in(source):
    return frozenset(NAME.findall(Path(source).read_text(encoding="utf-8")))


class Planner:
    """coverages has the coverage of each program by name."""

    def __init__(self, build, coverages):
        self._build = build
        self._coverages = coverages

    def plans(self, change, program):
        """How the change is tried in a program, step by step: a header first in one object, which kills most, and then in
        all that are worth it. Empty if no test reaches the change."""
        coverage = self._coverages[program]
        own = self._own_objects(change, program)
        if own:
            steps = [(own, self._tests(change, coverage))]
        else:
            steps = self._steps_for_header(change, coverage, self._reading(change, program))
        return [Plan(program, tuple(items), tuple(tests)) for items, tests in steps if items and tests]

    def objects_with(self, change, program):
        """The objects of a program that the change is compiled into."""
        own = self._own_objects(change, program)
        if own:
            return own
        coverage = self._coverages[program]
        functions = {coverage.functions.get(block) for block in self._blocks(change, coverage)}
        return [item for item in self._reading(change, program) if functions & self._build.functions_in(item)]

    def _own_objects(self, change, program):
        return [item for item in self._build.objects_of(program) if self._build.source_of(item) == str(ROOT / change.path)]

    def _reading(self, change, program):
        """The objects whose sources read the changed header. Those come first whose sources have the names of the changed
        value, then the products', then those of tests whose names begin as the header's."""
        text = (ROOT / change.path).read_text(encoding="utf-8").splitlines()
        names = set(NAME.findall(" ".join(text[change.line - 1:change.last_line])))
        stem = change.path.split("/")[-1].split(".")[0]

        def rank(item):
            source = self._build.source_of(item)
            known = _names_in(source) if not change.is_code else set()
            return (-len(names & known), source.startswith(f"{ROOT}/tests/"), not source.split("/")[-1].startswith(stem), source)

        objects = self._build.objects_of(program)
        return sorted((item for item in objects if str(ROOT / change.path) in self._build.read_by(item)), key=rank)

    @staticmethod
    def _blocks(change, coverage):
        """Those of the changed lines; what is in no function may matter to all functions of its source."""
        if not change.is_code and not change.path.endswith(".h"):
            return coverage.blocks_of_file(change.path)
        return coverage.blocks_of(change.path, change.line, change.last_line, change.is_code)

    def _tests(self, change, coverage):
        """Those that reach the change, and if it is a value, which other sources may use, those of the mirrored source."""
        tests = coverage.tests_of(self._blocks(change, coverage))
        near = [] if change.is_code else [test for test in coverage.tests if order.is_near(test, change.path)]
        return list(dict.fromkeys([*tests, *near]))

    def _steps_for_header(self, change, coverage, reading):
        """The objects whose functions have most of the blocks, and the tests that reach these functions."""
        blocks = self._blocks(change, coverage)
        if not blocks and not change.is_code:  # a value, which a few of these sources use
            own = reading[:MOST_OBJECTS]
            found = [test for item in own for test in self._tests_of_source(coverage, self._build.source_of(item))]
            return [(own, list(dict.fromkeys(found)))]
        weights = {}
        for block in blocks:
            name = coverage.functions.get(block, "")
            weights[name] = weights.get(name, 0) + len(coverage.tests_of([block]))
        candidates = {item: self._build.functions_in(item) for item in reading}
        own = objects_for({name: count for name, count in weights.items() if count}, candidates)
        steps = []
        for count in sorted({1, len(own)}):
            functions = set().union(*(candidates[item] for item in own[:count]))
            steps.append((own[:count], coverage.tests_of({block for block in blocks
                                                          if coverage.functions.get(block) in functions})))
        return steps

    @staticmethod
    def _tests_of_source(coverage, source):
        own = [test for test in coverage.tests if test.source == source]
        return own or coverage.tests_of(coverage.blocks_of_file(source[len(f"{ROOT}/"):]))
