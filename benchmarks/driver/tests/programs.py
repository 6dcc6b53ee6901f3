"""Programs that print what a test says, in place of those that measure."""

import tempfile
import unittest
from pathlib import Path


class FakePrograms(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)

    def program(self, name, script):
        """A shell script: "$1" and so on are its arguments."""
        path = self.folder / name
        path.write_text(f"#!/bin/sh\n{script}\n")
        path.chmod(0o755)
        return path
