"""Trying a change: making the programs that have it, and running the tests that reach it."""

from dataclasses import dataclass
from functools import lru_cache

import order
from making import SANITIZED, Maker, attempt
from planning import Planner
from running import SANITIZED_LIMITS, SANITIZER_OPTIONS, failure, run_tests

KILLED, SURVIVED, UNREACHED = "killed", "survived", "unreached"
# These are thrown away, and others take their place.
UNCOMPILABLE, EQUAL = "uncompilable", "equal"

# How many batches of tests are quick.
QUICK = 2


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


def _seconds(tests):
    """How long they may take."""
    return 20 + 10 * sum(test.seconds for test in tests)


def _quick(plan, path):
    """The tests of the quick batches, for what takes long."""
    return [test for batch in order.batches(plan.tests, path)[:QUICK] for test in batch]


class Trial:
    """coverages has the coverage of each program by name. Several threads may try changes, each in a folder of its own."""

    def __init__(self, build, coverages, folder):
        self._build = build
        self._planner = Planner(build, coverages)
        self._maker = Maker(build)
        self._folder = folder

    def judged(self, change, programs, worker):
        """Tries a change in the programs, in their order. worker is the name of a folder that no other thread uses."""
        plans = [plan for program in programs for plan in self._planner.plans(change, program)]
        tried = attempt(change, self._folder / worker)
        if not plans:
            return self._judged_unreached(change, programs, tried)
        is_equal = lru_cache(maxsize=None)(lambda item: self._maker.is_equal(item, tried))
        for plan in plans:
            program = self._maker.program(plan, tried)
            if program is None:
                return Verdict(UNCOMPILABLE)
            test = self._killing_together(plan, program, tried, is_equal)
            if test is not None:
                return Verdict(KILLED, test)
        return self._judged_closely(plans, tried, is_equal)

    def _judged_unreached(self, change, programs, tried):
        """A change that no test reaches survives, if it is compiled into a program and makes a difference there."""
        for program in programs:
            for item in self._planner.objects_with(change, program):
                if self._maker.compiled(item, tried) is None:
                    return Verdict(UNCOMPILABLE)
                return Verdict(EQUAL) if self._maker.is_equal(item, tried) else Verdict(UNREACHED)
        return Verdict(UNCOMPILABLE)

    def _judged_closely(self, plans, tried, is_equal):
        """For a change that the tests have not noticed when they ran together: whether it is one, whether a test notices
        that is the first of its process, and whether sanitizers do, with which the tests run, too."""
        if all(is_equal(item) for plan in plans for item in plan.objects):
            return Verdict(EQUAL)
        for killing, how in ((self._killing_alone, "alone"), (self._killing_sanitized, "with sanitizers")):
            for plan in plans:
                test = killing(plan, tried)
                if test is not None:
                    return Verdict(KILLED, f"{test}, {how}")
        return Verdict(SURVIVED, f"{len({test for plan in plans for test in plan.tests})} tests")

    def _killing_together(self, plan, program, tried, is_equal):
        """The test that fails, of those that run in one process; None if all tests pass. The slow ones are not asked about
        what is the same."""
        folder = tried.folder
        for number, batch in enumerate(order.batches(plan.tests, tried.path)):
            if number == QUICK and all(is_equal(item) for item in plan.objects):
                return None
            outcome = run_tests(program, [test.name for test in batch], folder, _seconds(batch))
            test = failure(outcome, len(batch))
            if test is not None and self._is_confirmed(test, batch, plan, program, folder):
                return test
        return None

    def _is_confirmed(self, test, batch, plan, program, folder):
        """Whether the change makes the test fail, and not its company or a busy machine: it fails alone, too, or its company
        passes without the change and fails again with it. What hangs is not tried again with it."""
        names = [each.name for each in batch]
        if test.endswith("(hangs)"):
            original = self._build.program(plan.program)
            return failure(run_tests(original, names, folder, _seconds(batch)), len(batch)) is None
        first = [each for each in batch if each.name == test.split(" ")[0]]
        if first and failure(run_tests(program, [first[0].name], folder, _seconds(first)), 1) is not None:
            return True
        original, again = (failure(run_tests(each, names, folder, _seconds(batch)), len(batch))
                           for each in (self._build.program(plan.program), program))
        return original is None and again is not None

    def _killing_alone(self, plan, tried):
        """The test that fails in a process of its own."""
        program = self._maker.program(plan, tried)
        for test in _quick(plan, tried.path):
            killing = failure(run_tests(program, [test.name], tried.folder, _seconds([test])), 1)
            if killing is not None:
                return killing
        return None

    def _killing_sanitized(self, plan, tried):
        """The test that fails if the changed objects are compiled with sanitizers, while none does if the original ones
        are."""

        def failing(attempt):
            program = self._maker.program(plan, attempt, SANITIZED)
            if program is None:
                return None
            tests = _quick(plan, tried.path)
            outcome = run_tests(program, [test.name for test in tests], tried.folder, 5 * _seconds(tests), SANITIZED_LIMITS,
                                ASAN_OPTIONS=SANITIZER_OPTIONS)
            return failure(outcome, len(tests))

        test = failing(tried)
        return test if test is not None and failing(tried.original) is None else None
