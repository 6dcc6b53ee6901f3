import unittest

from linetable import rows

PRINTED = """\
debug_line[0x00000000]
include_directories[  0] = "/build"
include_directories[  1] = "/root/src"
include_directories[  2] = "relative"
file_names[  0]:
           name: "/root/src/a.cpp"
      dir_index: 0
file_names[  1]:
           name: "a.cpp"
      dir_index: 1
   md5_checksum: abc
file_names[  2]:
           name: "b.h"
      dir_index: 2

Address            Line   Column File   ISA Discriminator Flags
------------------ ------ ------ ------ --- ------------- -------------
0x0000000000000100      3      0      0   0             0  is_stmt
0x0000000000000108      0      5      1   0             0  is_stmt prologue_end
0x0000000000000110      7      2      2   0             0  is_stmt
0x0000000000000120      9      1      1   0             0  is_stmt
0x0000000000000130      9      1      1   0             0  is_stmt end_sequence
0x0000000000000000      4      1      1   0             0  is_stmt
0x0000000000000050      4      1      1   0             0  is_stmt end_sequence

debug_line[0x00000080]
include_directories[  0] = "/build"
file_names[  0]:
           name: "c.cpp"
      dir_index: 0
0x0000000000000200      1      0      0   0             0  is_stmt
0x0000000000000210      1      0      0   0             0  is_stmt end_sequence
"""


class Rows(unittest.TestCase):
    def test_each_stretch_has_its_file_and_line(self):
        self.assertEqual([(0x100, 0x108, "/root/src/a.cpp", 3),
                          (0x110, 0x120, "/build/relative/b.h", 7),
                          (0x120, 0x130, "/root/src/a.cpp", 9),
                          (0x200, 0x210, "/build/c.cpp", 1)], list(rows(PRINTED.splitlines(), 0x100)))
