import signal
import sys
import tempfile
import time
import unittest
from pathlib import Path

from running import Outcome, failure, run, run_tests

RAN = "[ RUN      ] S.One\n[       OK ] S.One (0 ms)\n[ RUN      ] S.Two/0\n"


class Failure(unittest.TestCase):
    def test_none_if_all_tests_have_passed(self):
        self.assertIsNone(failure(Outcome(0, RAN + "[  PASSED  ] 2 tests.\n"), 2))
        self.assertIsNone(failure(Outcome(0, RAN + "[  PASSED  ] 1 test.\n"), 1))

    def test_tests_that_did_not_run_have_not_passed(self):
        self.assertEqual("S.Two/0 (ends early)", failure(Outcome(0, RAN + "[  PASSED  ] 1 test.\n"), 2))
        self.assertEqual("the start of the program (ends early)", failure(Outcome(0, ""), 2))

    def test_the_first_test_that_has_failed_is_named(self):
        self.assertEqual("S.Two/0", failure(Outcome(1, RAN + "[  FAILED  ] S.Two/0, where x\n[  FAILED  ] S.X\n"), 2))

    def test_crashes_and_hangs_are_those_of_the_test_that_runs(self):
        self.assertEqual("S.Two/0 (crashes)", failure(Outcome(-11, RAN), 2))
        self.assertEqual("S.Two/0 (hangs)", failure(Outcome(None, RAN), 2))
        self.assertEqual("S.Two/0 (hangs)", failure(Outcome(128 + signal.SIGXCPU, RAN), 2))
        self.assertEqual("S.Two/0 (hangs)", failure(Outcome(-signal.SIGXCPU, RAN), 2))


class Run(unittest.TestCase):
    def python(self, program, seconds=60):
        return run([sys.executable, "-c", program], "/", seconds)

    def test_both_streams_and_the_code_are_returned(self):
        outcome = self.python("import sys; print('a', flush=True); print('b', file=sys.stderr); sys.exit(3)")

        self.assertEqual(Outcome(3, "a\nb\n"), outcome)

    def test_what_takes_too_long_is_ended_with_its_children(self):
        start = time.monotonic()
        outcome = self.python("import os, time; os.fork(); print('x', flush=True); time.sleep(600)", 0.5)

        self.assertIsNone(outcome.code)
        self.assertLess(time.monotonic() - start, 60)


class RunTests(unittest.TestCase):
    def test_the_program_gets_the_names_in_a_file_and_an_empty_folder_of_its_own(self):
        with tempfile.TemporaryDirectory() as name:
            folder = Path(name)
            program = folder / "program"
            program.write_text('#!/bin/sh\ncat "${1#--gtest_flagfile=}"\n[ "$TMPDIR" = "$TEST_TMPDIR" ] && ls -A "$TMPDIR"\necho "$MORE"\npwd\n', encoding="utf-8")
            program.chmod(0o755)

            outcome = run_tests(program, ["S.One", "S.Two/0"], folder, 60, MORE="more")

            self.assertEqual(Outcome(0, "--gtest_filter=S.One:S.Two/0\n--gtest_fail_fast\n--gtest_color=no\n"
                                        f"more\n{folder}\n"), outcome)
