import tempfile
import unittest
from pathlib import Path

from run import Run


class Scratch(unittest.TestCase):
    def test_two_runs_at_a_time_have_folders_of_their_own(self):
        with tempfile.TemporaryDirectory() as folder:
            first, second = (Run(None, Path(folder), 1) for _ in range(2))

            self.assertNotEqual(first._scratch_folder(), second._scratch_folder())
            self.assertEqual(first._scratch_folder(), first._scratch_folder())
