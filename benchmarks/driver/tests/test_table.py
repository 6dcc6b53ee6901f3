import unittest

from table import Table, number


class TableText(unittest.TestCase):
    def test_columns_are_as_wide_as_their_widest_cell(self):
        table = Table("key", "Title", ["count", "name<"])
        table.add("a row that is long", ["1", "x"])
        table.add("b", ["1,000,000", "long"])

        self.assertEqual("Title                   count  name\n"
                         "a row that is long          1  x\n"
                         "b                   1,000,000  long\n", table.text())

    def test_a_row_beyond_its_limit_is_marked(self):
        table = Table("key", "Title", ["count", "limit"])
        table.judge("good", 10, 10)
        table.judge("bad", 11, 10)

        lines = table.text().splitlines()
        self.assertNotIn("MORE", lines[1])
        self.assertTrue(lines[2].endswith("  MORE"))

    def test_footnotes_are_numbered_and_shown_once(self):
        table = Table("key", "Title", ["ratio"])
        table.add("a", ["3"], 3, 4, "first")
        table.add("b", ["2"], 2, 4, "second")
        table.add("c", ["2"], 2, 4, "first")

        lines = table.text().splitlines()
        self.assertEqual(["[1]", "[2]", "[1]"], [each.split()[-1] for each in lines[1:4]])
        self.assertEqual(["[1] first", "[2] second"], lines[4:])

    def test_a_row_needs_a_cell_for_each_head(self):
        with self.assertRaises(ValueError):
            Table("key", "Title", ["count"]).add("a", [])

    def test_heads_have_names_of_their_own(self):
        with self.assertRaises(ValueError):
            Table("key", "Title", ["count", "count"])


class TableJudgement(unittest.TestCase):
    def test_only_what_is_more_than_its_limit_is_beyond(self):
        table = Table("key", "Title", ["count"])
        table.add("at", ["1"], 1.0, 1.0)
        table.add("above", ["1"], 1.001, 1.0)
        table.add("without a limit", ["9"], 9)

        self.assertEqual(["above"], [row.name for row in table.beyond])

    def test_the_data_say_what_is_beyond(self):
        table = Table("key", "Title", ["count", "limit"])
        table.judge("bad", 11, 10)

        (row,) = table.data()["rows"]
        self.assertEqual({"name": "bad", "count": "11", "limit": 10, "value": 11, "isBeyond": True, "footnote": None}, row)


class Number(unittest.TestCase):
    def test_thousands_are_separated(self):
        self.assertEqual("1,234,568", number(1234567.8))
        self.assertEqual("1.23", number(1.234, 2))
        self.assertEqual("-", number(None))
