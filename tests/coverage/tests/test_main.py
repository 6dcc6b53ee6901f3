import contextlib
import importlib.util
import io
import tempfile
import unittest
from pathlib import Path

from test_listing import SHOWN

MAIN = Path(__file__).resolve().parent.parent / "__main__.py"
spec = importlib.util.spec_from_file_location("coverage_main", MAIN)
program = importlib.util.module_from_spec(spec)
spec.loader.exec_module(program)


def run(*paths, text=SHOWN):
    """What the program answers and prints."""
    with tempfile.TemporaryDirectory() as folder:
        listing = Path(folder) / "listing"
        listing.write_text(text, encoding="utf-8")
        output = io.StringIO()
        with contextlib.redirect_stdout(output), contextlib.redirect_stderr(output):
            result = program.main(["/root", str(listing), "7 suites", *paths])
    return result, output.getvalue().splitlines()


class Program(unittest.TestCase):
    def test_ends_with_a_line_of_its_own_name_and_fails_below_a_limit(self):
        result, output = run()
        self.assertEqual(1, result)
        self.assertEqual("coverage: 7 suites, 5 of 7 (71.42 %) lines, 4 of 6 (66.66 %) branches, "
                         "5 of 5 areas below their limits", output[-1])

    def test_lists_what_is_not_covered_in_a_folder(self):
        self.assertEqual((0, ["foundation/qor/word.h:4: never runs"]), run("foundation/"))

    def test_lists_what_is_not_covered_in_a_file(self):
        self.assertEqual((0, ["client/sonavit/card.cpp:7: never runs"]), run("client/sonavit/card.cpp"))

    def test_refuses_a_path_without_sources(self):
        self.assertEqual((1, ["coverage: there is no counted source clien"]), run("clien"))

    def test_explains_itself_without_arguments(self):
        with contextlib.redirect_stderr(io.StringIO()) as output:
            self.assertEqual(2, program.main([]))
        self.assertIn("usage", output.getvalue())
