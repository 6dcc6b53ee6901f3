import tempfile
import threading
import unittest
from pathlib import Path

from changes import changes_of
from results import Results
from search import Progress, Tried, search
from trial import KILLED, SURVIVED, UNCOMPILABLE, UNREACHED, Verdict

SOURCE = "void f() { " + " ".join(f"a{each} = b{each} == 1;" for each in range(6)) + " }"
CHANGES = [change for change in changes_of("x.cpp", SOURCE) if change.kind == "condition"]
DEAD, ALIVE = Verdict(KILLED, "S.One"), Verdict(SURVIVED, "3 tests")


class ResultsOnDisk(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        self.file = Path(self.folder.name) / "new" / "x.jsonl"

    def test_a_verdict_is_there_in_the_next_run(self):
        Results(self.file, "one").add(CHANGES[0], SOURCE, DEAD)

        self.assertEqual(DEAD, Results(self.file, "one").of(CHANGES[0], SOURCE))
        self.assertIsNone(Results(self.file, "one").of(CHANGES[1], SOURCE))

    def test_another_source_or_another_state_has_none(self):
        Results(self.file, "one").add(CHANGES[0], SOURCE, DEAD)

        self.assertIsNone(Results(self.file, "one").of(CHANGES[0], SOURCE + " "))
        self.assertIsNone(Results(self.file, "two").of(CHANGES[0], SOURCE))

    def test_a_verdict_that_was_cut_off_is_made_again(self):
        results = Results(self.file, "one")
        results.add(CHANGES[0], SOURCE, DEAD)
        results.add(CHANGES[1], SOURCE, ALIVE)
        text = self.file.read_text(encoding="utf-8")
        self.file.write_text(text[:-20], encoding="utf-8")

        again = Results(self.file, "one")
        self.assertEqual(DEAD, again.of(CHANGES[0], SOURCE))
        self.assertIsNone(again.of(CHANGES[1], SOURCE))
        again.add(CHANGES[1], SOURCE, ALIVE)
        self.assertEqual(text, self.file.read_text(encoding="utf-8"))

    def test_those_that_are_to_be_kept_outlive_the_state(self):
        results = Results(self.file, "one")
        results.add(CHANGES[0], SOURCE, DEAD)
        results.add(CHANGES[1], SOURCE, ALIVE)

        kept = Results(self.file, "two", lambda verdict: not verdict.has_survived)
        self.assertEqual(DEAD, kept.of(CHANGES[0], SOURCE))
        self.assertIsNone(kept.of(CHANGES[1], SOURCE))

    def test_the_last_verdict_counts(self):
        Results(self.file, "one").add(CHANGES[0], SOURCE, ALIVE)
        Results(self.file, "two").add(CHANGES[0], SOURCE, DEAD)

        self.assertEqual(DEAD, Results(self.file, "two").of(CHANGES[0], SOURCE))
        self.assertIsNone(Results(self.file, "one").of(CHANGES[0], SOURCE))


class Search(unittest.TestCase):
    def found(self, count, jobs, judge):
        return [(CHANGES.index(tried.change), tried.verdict.outcome)
                for tried in search(CHANGES, count, jobs, lambda change, worker: Tried(change, judge(change), True))]

    def test_it_ends_with_the_first_ones_that_count(self):
        self.assertEqual([(0, KILLED), (1, KILLED)], self.found(2, 1, lambda change: DEAD))

    def test_one_that_does_not_count_is_replaced_by_the_next_one(self):
        outcomes = [Verdict(UNCOMPILABLE), DEAD, Verdict(UNCOMPILABLE), ALIVE, DEAD, DEAD]

        self.assertEqual([(0, UNCOMPILABLE), (1, KILLED), (2, UNCOMPILABLE), (3, SURVIVED)],
                         self.found(2, 1, lambda change: outcomes[CHANGES.index(change)]))

    def test_which_ones_does_not_depend_on_how_long_they_take(self):
        others = threading.Event()

        def judge(change):
            index = CHANGES.index(change)
            if index == 0:
                others.wait(60)
            elif index == 2:
                others.set()
            return DEAD

        self.assertEqual([(0, KILLED), (1, KILLED), (2, KILLED)], self.found(3, 2, judge))

    def test_it_ends_if_there_are_no_more(self):
        self.assertEqual([(index, KILLED) for index in range(6)], self.found(100, 2, lambda change: DEAD))

    def test_workers_have_numbers_of_their_own(self):
        together, numbers = threading.Barrier(2), []

        def judge(change, worker):
            together.wait(60)
            numbers.append(worker)
            return Tried(change, DEAD, True)

        search(CHANGES[:4], 4, 2, judge)
        self.assertEqual([0, 0, 1, 1], sorted(numbers))

    def test_a_failure_ends_it(self):
        def judge(change, worker):
            raise OSError("no space")

        with self.assertRaises(OSError):
            search(CHANGES, 1, 1, judge)


class ProgressOfSearch(unittest.TestCase):
    def test_it_says_how_long_the_rest_takes_after_ten_new_ones_and_then_at_times(self):
        now, said = [0], []
        progress = Progress("client", 100, said.append, lambda: now[0], 60)
        for _ in range(20):
            progress.tell(Tried(None, DEAD, False))
        for _ in range(40):
            now[0] += 3
            progress.tell(Tried(None, Verdict(UNREACHED), True))

        self.assertEqual(["client: 30 of 100, 10 have survived; 3.0 s for each, 4 min left",
                          "client: 50 of 100, 30 have survived; 3.0 s for each, 2 min left"], said)
