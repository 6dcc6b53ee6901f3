import tempfile
import unittest
from pathlib import Path
from unittest.mock import patch

from recorded import Failure
from run import Run


class Scratch(unittest.TestCase):
    def test_two_runs_at_a_time_have_folders_of_their_own(self):
        with tempfile.TemporaryDirectory() as folder:
            first, second = (Run(None, Path(folder), 1) for _ in range(2))

            self.assertNotEqual(first._scratch_folder(), second._scratch_folder())
            self.assertEqual(first._scratch_folder(), first._scratch_folder())


class AcceptedFile(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)

    def test_each_entry_of_this_tree_means_one_change(self):
        run = Run(None, Path(self.folder.name), 1)

        self.assertTrue(run.check_accepted())
        self.assertEqual([], run.outdated())

    def test_a_mistake_in_it_ends_the_run(self):
        file = Path(self.folder.name) / "accepted.txt"
        file.write_text("d/x.cpp\n- a\n", encoding="utf-8")

        with patch("run.ACCEPTED", file), self.assertRaisesRegex(Failure, "accepted.txt: line 1"):
            Run(None, Path(self.folder.name), 1).check_accepted()
