"""Trying a change: compiling what it must, linking, and running the tests that reach it."""

import json
import re
import threading
from dataclasses import dataclass
from functools import lru_cache
from pathlib import Path

import choosing
import order
from build import SANITIZERS, compiled_again, linked_again, without_precompiled
from folders import ROOT
from running import LIMITS, SANITIZED_LIMITS, SANITIZER_OPTIONS, failure, run, run_tests

COMPILE_SECONDS = 300

KILLED, SURVIVED, UNREACHED = "killed", "survived", "unreached"
# These are thrown away, and others take their place.
UNCOMPILABLE, EQUAL = "uncompilable", "equal"


@dataclass(frozen=True)
class Verdict:
    """test is the one that has failed, or what else a survivor has to be known for."""

    outcome: str
    test: str = ""

    @property
    def counts(self):
        return self.outcome in (KILLED, SURVIVED, UNREACHED)

    @property
    def has_survived(self):
        return self.outcome in (SURVIVED, UNREACHED)


@dataclass(frozen=True)
class Plan:
    """What is asked about a change in one program: the objects to compile again and the tests that reach it."""

    program: str
    objects: tuple
    tests: tuple


class Trial:
    """coverages has the coverage of each program by name. Several threads may try changes, each in a folder of its own."""

    def __init__(self, build, coverages, folder):
        self._build = build
        self._coverages = coverages
        self._folder = folder
        self._originals = {}
        self._lock = threading.Lock()

    def plans(self, change, program):
        """How the change is tried in a program, step by step: a header first in one object, which kills most, and then in
        all that are worth it. Empty if no test reaches the change."""
        coverage = self._coverages[program]
        objects = self._build.objects_of(program)
        own = [item for item in objects if self._build.source_of(item) == str(ROOT / change.path)]
        if own:
            steps = [(own, self._tests(change, coverage))]
        else:
            steps = self._steps_for_header(change, coverage, objects)
        return [Plan(program, tuple(items), tuple(tests)) for items, tests in steps if items and tests]

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

    def _steps_for_header(self, change, coverage, objects):
        """The objects whose functions have most of the blocks, and the tests that reach these functions."""
        blocks = self._blocks(change, coverage)
        reading = self._sorted(change, [item for item in objects if str(ROOT / change.path) in self._build.read_by(item)])
        if not blocks and not change.is_code:  # a value, which a few of these sources use
            own = reading[:choosing.MOST_OBJECTS]
            found = [test for item in own for test in self._tests_of_source(coverage, self._build.source_of(item))]
            return [(own, list(dict.fromkeys(found)))]
        weights = {}
        for block in blocks:
            name = coverage.functions.get(block, "")
            weights[name] = weights.get(name, 0) + len(coverage.tests_of([block]))
        candidates = {item: self._build.functions_in(item) for item in reading}
        own = choosing.objects_for({name: count for name, count in weights.items() if count}, candidates)
        steps = []
        for count in sorted({1, len(own)}):
            functions = set().union(*(candidates[item] for item in own[:count]))
            steps.append((own[:count], coverage.tests_of([block for block in blocks if coverage.functions.get(block) in functions])))
        return steps

    def _sorted(self, change, items):
        """Those come first whose sources have the names of the changed lines, then the products', then those of tests whose
        names begin as the header's."""
        text = (ROOT / change.path).read_text(encoding="utf-8").splitlines()
        names = set(re.findall(r"[A-Za-z_]\w{4,}", " ".join(text[change.line - 1:change.last_line])))
        stem = change.path.split("/")[-1].split(".")[0]

        def rank(item):
            source = self._build.source_of(item)
            words = self._words_of(source) if not change.is_code else set()
            return (-len(names & words), source.startswith(f"{ROOT}/tests/"), not source.split("/")[-1].startswith(stem), source)

        return sorted(items, key=rank)

    @lru_cache(maxsize=None)
    def _words_of(self, source):
        return frozenset(re.findall(r"[A-Za-z_]\w{4,}", Path(source).read_text(encoding="utf-8")))

    @staticmethod
    def _tests_of_source(coverage, source):
        own = [test for test in coverage.tests if test.source == source]
        if own:
            return own
        return coverage.tests_of(coverage.blocks_of_file(source[len(f"{ROOT}/"):]))

    def judged(self, change, programs, worker):
        """Tries a change in the programs, in their order. worker is the name of a folder that no other thread uses."""
        folder = self._folder / worker
        folder.mkdir(parents=True, exist_ok=True)
        text = (ROOT / change.path).read_text(encoding="utf-8")
        plans = [plan for program in programs for plan in self.plans(change, program)]
        overlay = self._overlay(change, text, folder)
        if not plans:
            return self._judged_unreached(change, programs, overlay, folder)
        for plan in plans:
            program = self._program(change, plan, overlay, folder)
            if program is None:
                return Verdict(UNCOMPILABLE)
            test = self._killing_together(change, plan, program, folder)
            if test is not None:
                return Verdict(KILLED, test)
        return self._judged_closely(change, plans, overlay, folder)

    def _judged_closely(self, change, plans, overlay, folder):
        """For a change that the tests have not noticed when they ran together: whether it is one, whether a test notices
        that is the first of its process, and whether sanitizers do, with which the tests run, too."""
        if all(self._is_equal(item, change, overlay, folder) for plan in plans for item in plan.objects):
            return Verdict(EQUAL)
        for plan in plans:
            program = self._program(change, plan, overlay, folder)
            for test in plan.tests:
                killing = failure(run_tests(program, [test.name], folder, self._seconds([test])), 1)
                if killing is not None:
                    return Verdict(KILLED, f"{killing}, alone")
        for plan in plans:
            killing = self._killing_sanitized(change, plan, overlay, folder)
            if killing is not None:
                return Verdict(KILLED, f"{killing}, with sanitizers")
        return Verdict(SURVIVED, f"{len({test for plan in plans for test in plan.tests})} tests")

    def _judged_unreached(self, change, programs, overlay, folder):
        """A change that no test reaches survives, if it is compiled into a program and makes a difference there."""
        for program in programs:
            for item in self._objects_with(change, program):
                if self._compiled(item, change, overlay, folder) is None:
                    return Verdict(UNCOMPILABLE)
                is_equal = self._is_equal(item, change, overlay, folder)
                return Verdict(EQUAL) if is_equal else Verdict(UNREACHED)
        return Verdict(UNCOMPILABLE)

    def _objects_with(self, change, program):
        """The objects of a program that the change is compiled into."""
        objects = self._build.objects_of(program)
        own = [item for item in objects if self._build.source_of(item) == str(ROOT / change.path)]
        if own:
            return own
        coverage = self._coverages[program]
        functions = {coverage.functions.get(block) for block in self._blocks(change, coverage)}
        reading = [item for item in objects if str(ROOT / change.path) in self._build.read_by(item)]
        return [item for item in self._sorted(change, reading) if functions & self._build.functions_in(item)]

    def _overlay(self, change, text, folder):
        """A file that makes clang read the changed text in place of the source."""
        changed = folder / "changed"
        changed.write_text(change.applied(text), encoding="utf-8")
        overlay = folder / "overlay.json"
        entry = {"type": "file", "name": str(ROOT / change.path), "external-contents": str(changed)}
        overlay.write_text(json.dumps({"version": 0, "use-external-names": False, "roots": [entry]}), encoding="utf-8")
        return overlay

    def _compiled(self, item, change, overlay, folder, options=("-O0",)):
        """The object that the change makes of this one, or None if it cannot be compiled. Without an overlay, that of the
        source as it is."""
        kind = f"{'changed' if overlay else 'original'}.{options[0].strip('-').split('=')[0]}"
        output = folder / (re.sub(r"\W", "_", item)[-150:] + f".{kind}.o")
        command = compiled_again(self._build.command_of(item), output, options)
        if options != ("-O0",) or self._build.reads_precompiled(item, str(ROOT / change.path)):
            command = without_precompiled(command)
        if overlay:
            command += ["-ivfsoverlay", str(overlay)]
        outcome = run([*LIMITS, *command], self._build.folder, COMPILE_SECONDS)
        return output if outcome.code == 0 else None

    def _program(self, change, plan, overlay, folder, options=("-O0",)):
        """The program of the plan with the change, or None if it cannot be compiled."""
        objects = [self._compiled(item, change, overlay, folder, options) for item in plan.objects]
        if None in objects:
            return None
        program = folder / plan.program
        command = linked_again(self._build.link_command(plan.program), plan.objects, objects, program, options)
        return program if run(command, self._build.folder, COMPILE_SECONDS).code == 0 else None

    @staticmethod
    def _seconds(tests):
        """How long they may take."""
        return 20 + 10 * sum(test.seconds for test in tests)

    def _killing_together(self, change, plan, program, folder):
        """The test that fails, of those that run in one process; None if all tests pass."""
        for batch in order.batches(plan.tests, change.path):
            outcome = run_tests(program, [test.name for test in batch], folder, self._seconds(batch))
            test = failure(outcome, len(batch))
            if test is not None and (test.endswith("(hangs)") or self._is_confirmed(test, batch, plan, program, folder)):
                return test
        return None

    def _is_confirmed(self, test, batch, plan, program, folder):
        """Whether the change makes the test fail and not its company: it fails alone, too, or only with the change."""
        names = [each.name for each in batch]
        first = [each for each in batch if each.name == test.split(" ")[0]]
        if first and failure(run_tests(program, [first[0].name], folder, self._seconds(first)), 1) is not None:
            return True
        original = run_tests(self._build.program(plan.program), names, folder, self._seconds(batch))
        return failure(original, len(batch)) is None

    def _killing_sanitized(self, change, plan, overlay, folder):
        """The test that fails if the changed objects are compiled with sanitizers, and passes if the original ones are."""

        def failing(overlay):
            program = self._program(change, plan, overlay, folder, SANITIZERS)
            if program is None:
                return None
            outcome = run_tests(program, [test.name for test in plan.tests], folder, 5 * self._seconds(plan.tests),
                                SANITIZED_LIMITS, ASAN_OPTIONS=SANITIZER_OPTIONS)
            return failure(outcome, len(plan.tests))

        test = failing(overlay)
        return test if test is not None and failing(None) is None else None

    def _is_equal(self, item, change, overlay, folder):
        """Whether an optimizing compiler makes the same of the changed source as of the original one."""
        changed = self._compiled(item, change, overlay, folder, ("-O2",))
        with self._lock:
            original = self._originals.get(item)
        if original is None:
            output = self._compiled(item, change, None, folder, ("-O2",))
            original = output.read_bytes() if output else b""
            with self._lock:
                self._originals[item] = original
        return changed is not None and changed.read_bytes() == original
