import contextlib
import io
import runpy
import tempfile
import unittest
from pathlib import Path

from test_listing import export

MAIN = Path(__file__).resolve().parent.parent / "__main__.py"
main = runpy.run_path(str(MAIN))["main"]


def run(*paths):
    """What the program answers and prints."""
    with tempfile.TemporaryDirectory() as folder:
        file = Path(folder) / "listing"
        file.write_text(export(folder), encoding="utf-8")
        output = io.StringIO()
        with contextlib.redirect_stdout(output), contextlib.redirect_stderr(output):
            result = main([folder, str(file), "7 suites", *paths])
    return result, output.getvalue().splitlines()


UNCOVERED = ["foundation/half.cpp:4:28: is never true", "foundation/half.cpp:5: never runs",
             "foundation/half.cpp:10: never runs"]


class Program(unittest.TestCase):
    def test_ends_with_a_line_of_its_own_name_and_fails_below_a_limit(self):
        result, output = run()
        self.assertEqual(1, result)
        self.assertEqual("coverage: 7 suites, 5 of 7 (71.42 %) lines, 3 of 4 (75.00 %) branches, "
                         "5 of 5 areas below their limits", output[-1])

    def test_lists_what_is_not_covered_in_a_folder(self):
        self.assertEqual((0, UNCOVERED), run("foundation/"))

    def test_lists_what_is_not_covered_in_a_file(self):
        self.assertEqual((0, UNCOVERED), run("foundation/half.cpp"))

    def test_refuses_a_path_without_sources(self):
        self.assertEqual((1, ["coverage: there is no counted source found"]), run("found"))

    def test_explains_itself_without_arguments(self):
        with contextlib.redirect_stderr(io.StringIO()) as output:
            self.assertEqual(2, main([]))
        self.assertIn("usage", output.getvalue())
