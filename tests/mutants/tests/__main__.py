"""Runs the tests of this folder; fails if one fails, and if there is none."""

import sys
import unittest
from pathlib import Path

HERE = Path(__file__).resolve().parent

sys.path.insert(0, str(HERE.parent))
result = unittest.TextTestRunner().run(unittest.defaultTestLoader.discover(str(HERE), top_level_dir=str(HERE)))
sys.exit(0 if result.wasSuccessful() and result.testsRun else 1)
