"""Trying changes of sources of the product, with a build that has no compiler."""

import tempfile
import unittest
from pathlib import Path
from unittest import mock

import making
import trial
from changes import changes_of
from coverage import Coverage, Test
from folders import ROOT
from planning import Planner
from running import Outcome

SOURCE = "foundation/qor/qorvalue.cpp"
HEADER = "foundation/qor/unitword.h"
TESTS = [Test("A.One", 0.1, "/t/a_test.cpp"), Test("B.Two", 0.1, "/t/b_test.cpp")]
PASSED = Outcome(0, "[  PASSED  ] 1 test.\n")
BOTH_PASSED = Outcome(0, "[  PASSED  ] 2 tests.\n")
FAILED = Outcome(1, "[  FAILED  ] A.One\n")
HANGS = Outcome(None, "[ RUN      ] A.One\n")


class FakeBuild:
    """A program of the object of SOURCE and of three objects that read HEADER."""

    folder = Path("/build")
    sources = {"own.o": SOURCE, "first.o": "tests/first_test.cpp", "second.o": "tests/second_test.cpp",
               "third.o": "tests/third_test.cpp"}
    functions = {"own.o": {"f"}, "first.o": {"g"}, "second.o": {"g", "h"}, "third.o": {"l"}}

    def objects_of(self, program):
        return list(self.sources)

    def source_of(self, item):
        return str(ROOT / self.sources[item])

    def program(self, name):
        return self.folder / "bin" / name

    def command_of(self, item):
        return ["clang++", "-O0", "-o", item, "-c", self.sources[item]]

    def link_command(self, program):
        return ["clang++", *self.sources, "-o", program]

    def read_by(self, item):
        return {str(ROOT / HEADER)} if item != "own.o" else set()

    def reads_precompiled(self, item, path):
        return False

    def functions_in(self, item):
        return self.functions[item]


def coverage():
    """Line 10 of both files is in block 0, which both tests reach; line 20 in block 1, which only B.Two reaches; line 30 of
    the header is in the function h, and its line 50 in g, for A.One, and in l, for B.Two."""
    lines = {10: {0}, 20: {1}, 40: {3}}
    return Coverage(list(TESTS), {SOURCE: lines, HEADER: {**lines, 30: {2}, 50: {4, 5}}},
                    {0: 0b11, 1: 0b10, 2: 0b10, 4: 0b01, 5: 0b10}, {0: "g", 1: "g", 2: "h", 3: "k", 4: "g", 5: "l"})


def change(path, line, is_code=True):
    head = "void f() { " if is_code else ""
    return next(each for each in changes_of(path, "\n" * (line - 1) + head + "a = 1;") if each.kind == "constant")


class TrialTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        self.coverage = coverage()
        self.trial = trial.Trial(FakeBuild(), {"p_test": self.coverage}, self.folder)
        self.commands = []
        self.codes = {}
        self.bytes = {"": b"plain", "changed": b"changed"}

    def run_compiler(self, command, folder, seconds):
        self.commands.append(command)
        output = Path(command[command.index("-o") + 1] if "-ivfsoverlay" in command else command[-1])
        output.write_bytes(self.bytes["changed" if "-ivfsoverlay" in command else ""])
        is_link = "-fuse-ld=lld-14" in command
        return Outcome(self.codes.get("link" if is_link else "compile", 0), "")

    def judged(self, tried, *outcomes):
        with mock.patch.object(making, "run", self.run_compiler), \
                mock.patch.object(trial, "run_tests", side_effect=outcomes) as self.run_tests:
            return self.trial.judged(tried, ["p_test"], "0")


class Plans(TrialTest):
    def plans(self, *where, **more):
        plans = Planner(FakeBuild(), {"p_test": self.coverage}).plans(change(*where, **more), "p_test")
        return [(plan.objects, [test.name for test in plan.tests]) for plan in plans]

    def test_a_source_has_its_object_and_the_tests_that_reach_the_line(self):
        self.assertEqual([(("own.o",), ["A.One", "B.Two"])], self.plans(SOURCE, 10))
        self.assertEqual([(("own.o",), ["B.Two"])], self.plans(SOURCE, 20))

    def test_a_value_outside_of_functions_has_the_tests_of_its_file(self):
        self.assertEqual([(("own.o",), ["A.One", "B.Two"])], self.plans(SOURCE, 21, is_code=False))

    def test_a_value_outside_of_functions_has_the_tests_of_its_mirrored_source_too(self):
        self.coverage.tests.append(Test("C.Near", 0.1, "/t/qorvalue_test.cpp"))

        self.assertEqual([(("own.o",), ["A.One", "B.Two", "C.Near"])], self.plans(SOURCE, 21, is_code=False))

    def test_a_line_that_no_test_reaches_has_none(self):
        self.assertEqual([], self.plans(SOURCE, 40))

    def test_a_header_has_the_objects_that_define_its_functions(self):
        self.assertEqual([(("second.o",), ["B.Two"])], self.plans(HEADER, 30))
        self.assertEqual([(("first.o",), ["B.Two"])], self.plans(HEADER, 20))

    def test_a_header_is_tried_in_one_object_before_all(self):
        self.assertEqual([(("first.o",), ["A.One"]), (("first.o", "third.o"), ["A.One", "B.Two"])], self.plans(HEADER, 50))


class Judged(TrialTest):
    def test_a_change_is_killed_by_the_test_that_fails(self):
        self.assertEqual(trial.Verdict(trial.KILLED, "A.One"), self.judged(change(SOURCE, 10), FAILED, FAILED))
        self.assertEqual(["A.One"], self.run_tests.call_args.args[1])

    def test_it_is_killed_if_the_test_fails_with_others_and_only_with_the_change(self):
        verdict = self.judged(change(SOURCE, 10), FAILED, PASSED, BOTH_PASSED, FAILED)

        self.assertEqual(trial.Verdict(trial.KILLED, "A.One"), verdict)
        self.assertEqual([self.folder / "0" / "p_test"] * 2 + [Path("/build/bin/p_test"), self.folder / "0" / "p_test"],
                         [call.args[0] for call in self.run_tests.call_args_list])

    def test_a_test_that_others_make_fail_says_nothing(self):
        for company in ([FAILED, FAILED], [BOTH_PASSED, BOTH_PASSED]):
            verdict = self.judged(change(SOURCE, 10), FAILED, PASSED, *company, PASSED, PASSED, BOTH_PASSED)

            self.assertEqual(trial.Verdict(trial.SURVIVED, "2 tests"), verdict)

    def test_a_test_that_hangs_is_asked_again_without_the_change_alone(self):
        self.assertEqual(trial.Verdict(trial.KILLED, "A.One (hangs)"), self.judged(change(SOURCE, 10), HANGS, BOTH_PASSED))
        self.assertEqual([self.folder / "0" / "p_test", Path("/build/bin/p_test")],
                         [call.args[0] for call in self.run_tests.call_args_list])

    def test_a_test_that_hangs_without_the_change_says_nothing(self):
        verdict = self.judged(change(SOURCE, 10), HANGS, HANGS, PASSED, PASSED, BOTH_PASSED)

        self.assertEqual(trial.Verdict(trial.SURVIVED, "2 tests"), verdict)

    def test_the_changed_object_is_linked_in_place_of_the_original(self):
        self.judged(change(SOURCE, 10), FAILED, FAILED)

        link = next(command for command in self.commands if "-fuse-ld=lld-14" in command)
        self.assertEqual([str(self.folder / "0" / "own_o.changed.O0.o"), "first.o", "second.o", "third.o"], link[1:5])

    def test_the_compiler_reads_the_changed_text_in_place_of_the_source(self):
        self.judged(change(SOURCE, 10), FAILED, FAILED)

        self.assertIn(str(self.folder / "0" / "overlay.json"), self.commands[0])
        self.assertIn(f'"name": "{ROOT / SOURCE}"', (self.folder / "0" / "overlay.json").read_text(encoding="utf-8"))

    def test_it_survives_if_all_tests_pass(self):
        self.assertEqual(trial.Verdict(trial.SURVIVED, "1 tests"), self.judged(change(SOURCE, 20), PASSED, PASSED, PASSED))
        self.assertEqual(["B.Two"], self.run_tests.call_args.args[1])

    def test_tests_that_pass_together_are_asked_alone(self):
        self.assertEqual(trial.Verdict(trial.KILLED, "A.One, alone"), self.judged(change(SOURCE, 10), BOTH_PASSED, FAILED))
        self.assertEqual(["A.One"], self.run_tests.call_args.args[1])

    def test_sanitizers_are_asked_at_the_end(self):
        verdict = self.judged(change(SOURCE, 20), PASSED, PASSED, FAILED, PASSED)

        self.assertEqual(trial.Verdict(trial.KILLED, "A.One, with sanitizers"), verdict)
        self.assertEqual(["-fsanitize=address,undefined" in command for command in self.commands[-4:]], [True] * 4)

    def test_what_fails_with_sanitizers_and_without_a_change_says_nothing(self):
        verdict = self.judged(change(SOURCE, 20), PASSED, PASSED, FAILED, FAILED)

        self.assertEqual(trial.Verdict(trial.SURVIVED, "1 tests"), verdict)

    def test_one_of_which_an_optimizing_compiler_makes_the_same_is_thrown_away(self):
        self.bytes["changed"] = self.bytes[""]

        self.assertEqual(trial.Verdict(trial.EQUAL), self.judged(change(SOURCE, 20), PASSED))

    def test_the_slow_tests_are_not_asked_about_what_is_the_same(self):
        self.coverage.tests += [Test("C.Near", 5, "/t/qorvalue_test.cpp"), Test("D.Near", 30, "/t/qorvalue_test.cpp")]
        self.bytes["changed"] = self.bytes[""]

        self.assertEqual(trial.Verdict(trial.EQUAL), self.judged(change(SOURCE, 21, is_code=False), PASSED, PASSED))
        self.assertEqual([["C.Near"], ["D.Near"]], [call.args[1] for call in self.run_tests.call_args_list])

    def test_one_that_cannot_be_compiled_or_linked_is_thrown_away(self):
        for step in ("compile", "link"):
            self.codes = {step: 1}
            self.assertEqual(trial.Verdict(trial.UNCOMPILABLE), self.judged(change(SOURCE, 10)))

    def test_one_that_no_test_reaches_survives_at_once(self):
        self.assertEqual(trial.Verdict(trial.UNREACHED), self.judged(change(SOURCE, 40)))
        self.run_tests.assert_not_called()

    def test_one_that_no_program_contains_is_thrown_away(self):
        self.assertEqual(trial.Verdict(trial.UNCOMPILABLE), self.judged(change(HEADER, 40)))
