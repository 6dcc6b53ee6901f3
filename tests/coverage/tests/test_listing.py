import json
import tempfile
import unittest
from pathlib import Path

import listing

TEXT = """int half(int number)
{
    // even numbers alone
    if (number % 2 == 0 && number > 0)
        return number / 2;

    LOG("odd");
    return 0;
}
int never() { return 1; }
"""

# [line, column, count, has count, begins a region, is a gap]
SEGMENTS = [
    [2, 1, 7, True, True, False],
    [4, 9, 7, True, True, False],
    [4, 28, 5, True, True, False],
    [4, 38, 7, True, False, False],
    [4, 39, 0, True, False, True],
    [5, 9, 0, True, True, False],
    [5, 26, 7, True, False, False],
    [7, 16, 0, True, False, True],  # what clang puts after a macro with a loop that never repeats
    [8, 5, 7, True, False, False],
    [9, 2, 0, False, False, False],
    [10, 13, 0, True, True, False],
    [10, 26, 0, False, False, False],
]

# [line, column, end line, end column, true, false, ...]
BRANCHES = [[4, 9, 4, 24, 3, 0, 0, 0, 4], [4, 28, 4, 38, 0, 5, 0, 0, 4], [4, 9, 4, 24, 0, 2, 0, 0, 4]]


def half(branches=BRANCHES):
    return listing.read_file({"segments": SEGMENTS, "branches": branches}, "half.cpp", TEXT)


class Lines(unittest.TestCase):
    def test_run_if_a_part_of_them_does(self):
        self.assertEqual({2: True, 4: True, 5: False, 7: True, 8: True, 9: True, 10: False}, half().lines)

    def test_are_counted(self):
        self.assertEqual((5, 7), (half().lines_covered(), len(half().lines)))


class Branches(unittest.TestCase):
    def test_are_joined_over_the_instances_of_a_template(self):
        self.assertEqual((True, True), half().branches[(4, 9)])

    def test_are_two_for_each_condition(self):
        self.assertEqual((4, 3), (half().branch_count(), half().branches_covered()))

    def test_are_none_of_a_constant(self):
        self.assertNotIn((8, 5), half([[8, 5, 8, 9, 0, 0, 0, 0, 4]]).branches)

    def test_of_a_line_that_never_runs_are_not_taken(self):
        self.assertEqual((False, False), half([[10, 22, 10, 23, 0, 0, 0, 0, 4]]).branches[(10, 22)])


class Uncovered(unittest.TestCase):
    def test_names_lines_and_each_way_in_the_order_of_the_lines(self):
        self.assertEqual(["half.cpp:4:28: is never true", "half.cpp:5: never runs", "half.cpp:10: never runs"],
                         list(half().uncovered()))

    def test_names_no_branch_of_a_line_that_never_runs(self):
        self.assertEqual(["half.cpp:5: never runs", "half.cpp:10: never runs"],
                         list(half([[10, 22, 10, 23, 0, 0, 0, 0, 4]]).uncovered()))


def export(folder):
    """A listing of two files, and the first one on the disk."""
    path = Path(folder) / "foundation" / "half.cpp"
    path.parent.mkdir()
    path.write_text(TEXT, encoding="utf-8")
    files = [{"filename": str(path), "segments": SEGMENTS, "branches": BRANCHES},
             {"filename": "/usr/include/vector", "segments": [], "branches": []}]
    return json.dumps({"data": [{"files": files}]})


class Read(unittest.TestCase):
    def test_takes_the_files_below_the_root_alone(self):
        with tempfile.TemporaryDirectory() as folder:
            text = export(folder)
            for root in (folder, folder + "/"):
                self.assertEqual(["foundation/half.cpp"], [source.path for source in listing.read(text, root)])
