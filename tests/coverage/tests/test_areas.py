import unittest

import areas
from listing import Source

AREA = areas.Area("foundation", "foundation/", 95, 90)


def source(path, lines_run, lines, branches_taken=9, branches=10):
    made = Source(path, {number: number < lines_run for number in range(lines)})
    for number in range(branches // 2):
        made.add_branch((number, 1), 2 * number < branches_taken, 2 * number + 1 < branches_taken)
    return made


class Measure(unittest.TestCase):
    def test_adds_the_sources_of_the_folder_up(self):
        row = areas.measure([source("foundation/a.h", 5, 10), source("foundation/b.h", 7, 10), source("client/c.h", 1, 1)],
                            AREA)
        self.assertEqual((12, 20, 18, 20),
                         (row.lines.covered, row.lines.total, row.branches.covered, row.branches.total))

    def test_is_good_at_the_limits(self):
        self.assertTrue(areas.measure([source("foundation/a.h", 95, 100)], AREA).is_good())

    def test_is_not_good_with_a_line_or_a_branch_less(self):
        self.assertFalse(areas.measure([source("foundation/a.h", 94, 100)], AREA).is_good())
        self.assertFalse(areas.measure([source("foundation/a.h", 95, 100, 8)], AREA).is_good())

    def test_is_not_good_without_anything_to_cover(self):
        self.assertFalse(areas.measure([], AREA).is_good())


class ShareText(unittest.TestCase):
    def test_says_100_percent_of_all_alone(self):
        self.assertEqual("19,999 of 20,000 (99.99 %)", str(areas.Share(19999, 20000)))
        self.assertEqual("99,999 of 100,000 (99.99 %)", str(areas.Share(99999, 100000)))
        self.assertEqual("20,000 of 20,000 (100.00 %)", str(areas.Share(20000, 20000)))

    def test_of_nothing_is_0_percent(self):
        self.assertEqual("0 of 0 (0.00 %)", str(areas.Share()))


class Table(unittest.TestCase):
    def test_has_a_row_for_each_area_and_names_those_that_are_too_low(self):
        text = areas.table(areas.rows([source("foundation/a.h", 95, 100), source("modules/b.h", 1, 100)])).splitlines()
        self.assertEqual(1 + len(areas.AREAS), len(text))
        self.assertTrue(text[1].startswith("foundation") and text[1].endswith("good"), text[1])
        self.assertTrue(text[2].startswith("modules") and text[2].endswith("TOO LOW"), text[2])

    def test_ends_in_the_sums(self):
        rows = areas.rows([source("foundation/a.h", 95, 100), source("modules/b.h", 5, 100)])
        self.assertEqual("100 of 200 (50.00 %) lines, 18 of 20 (90.00 %) branches, 4 of 5 areas below their limits",
                         areas.total(rows))
