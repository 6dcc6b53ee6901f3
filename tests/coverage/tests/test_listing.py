import unittest

import listing

SHOWN = """/root/foundation/qor/word.h:
    1|       |#pragma once
    2|     12|template<class T> bool isEven(T number)
    3|  1.20k|{
    4|      0|    return number % 2 == 0 && number != 4;
  ------------------
  |  Branch (4:12): [True: 3, False: 0]
  |  Branch (4:31): [True: 2.5k, False: 1]
  ------------------
  |  Branch (4:12): [True: 0, False: 9]
  ------------------
    5|     12|}
    6|     12|while (true)
  ------------------
  |  Branch (6:8): [Folded - Ignored]
  ------------------

/usr/include/c++/12/vector:
    1|      0|int a;

/root/client/sonavit/card.cpp:
    7|      0|void never() { if (other) return; }
  ------------------
  |  Branch (7:20): [True: 0, False: 0]
  ------------------
    8|      1|// Branch (8:1): [True: 0, False: 0]
"""


def shown():
    return listing.read(SHOWN.splitlines(), "/root")


class Read(unittest.TestCase):
    def test_takes_the_files_below_the_root_alone(self):
        self.assertEqual(["foundation/qor/word.h", "client/sonavit/card.cpp"], [source.path for source in shown()])

    def test_takes_a_root_that_ends_in_a_slash(self):
        self.assertEqual("foundation/qor/word.h", listing.read(SHOWN.splitlines(), "/root/")[0].path)

    def test_counts_no_line_without_code(self):
        self.assertEqual({2: True, 3: True, 4: False, 5: True, 6: True}, shown()[0].lines)

    def test_joins_the_instances_of_a_template(self):
        self.assertEqual((True, True), shown()[0].branches[(4, 12)])

    def test_leaves_constant_conditions_out(self):
        self.assertEqual({(4, 12), (4, 31)}, set(shown()[0].branches))

    def test_finds_no_branch_in_a_comment(self):
        self.assertEqual({(7, 20)}, set(shown()[1].branches))


class SourceFigures(unittest.TestCase):
    def test_have_two_branches_for_each_condition(self):
        self.assertEqual((4, 4), (shown()[0].branch_count(), shown()[0].branches_covered()))
        self.assertEqual((2, 0), (shown()[1].branch_count(), shown()[1].branches_covered()))

    def test_have_the_lines_that_ran(self):
        self.assertEqual(4, shown()[0].lines_covered())


class Uncovered(unittest.TestCase):
    def test_names_lines(self):
        self.assertEqual(["foundation/qor/word.h:4: never runs"], list(shown()[0].uncovered()))

    def test_names_no_branch_of_a_line_that_never_runs(self):
        self.assertEqual(["client/sonavit/card.cpp:7: never runs"], list(shown()[1].uncovered()))

    def test_names_each_side_of_a_branch_in_the_order_of_the_lines(self):
        source = listing.Source("a.cpp", {2: True, 9: True, 10: False})
        source.add_branch((9, 3), False, False)
        source.add_branch((2, 1), True, False)
        self.assertEqual(["a.cpp:2:1: is never false", "a.cpp:9:3: is never false", "a.cpp:9:3: is never true",
                          "a.cpp:10: never runs"], list(source.uncovered()))
