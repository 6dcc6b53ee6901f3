import unittest
from pathlib import Path

import headers

SOURCE = """# 0 "<stdin>"
# 1 "<stdin>"
# 1 "/root/qor/array.h" 1
# 3 "/root/qor/array.h"
# 1 "/usr/include/c++/12/functional" 1 3
# 40 "/usr/include/c++/12/functional" 3
int a;
# 1 "/usr/include/c++/12/vector" 1 3
int b;
int c;
# 5 "/usr/include/c++/12/functional" 2 3

# 5 "/root/qor/array.h" 2
struct Array;
# 2 "<stdin>" 2
"""


class HeadersShares(unittest.TestCase):
    def shares(self):
        return headers.shares(SOURCE.replace('"<stdin>"', '"/root/main"'), Path("/root"))

    def test_lines_belong_to_the_header_that_ours_include(self):
        lines, _ = self.shares()

        self.assertEqual({"functional": 3, headers.OWN: 1}, dict(lines))

    def test_bytes_are_without_marks_and_empty_lines(self):
        _, sizes = self.shares()

        self.assertEqual(3 * len("int a;\n"), sizes["functional"])
        self.assertEqual(len("struct Array;\n"), sizes[headers.OWN])

    def test_a_header_that_must_not_be_read_is_beyond(self):
        table = headers.table_of(*self.shares())

        self.assertEqual(["<functional>, and what it includes first"], [row.name for row in table.beyond])

    def test_a_header_that_is_not_read_is_shown_with_nothing(self):
        table = headers.table_of(headers.Counter({headers.OWN: 5}), headers.Counter({headers.OWN: 50}))

        self.assertEqual([], table.beyond)
        self.assertEqual(["0", "0", "0.0", "0"], table.rows[-1].cells)
