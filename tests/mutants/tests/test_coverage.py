import unittest
from array import array

from coverage import Builder, Test
from recording import records

PLACES = [0x300, 0x100, 0x110, 0x200]


def built():
    builder = Builder(PLACES)
    builder.add_stretch(0x100, 0x118, "a.cpp", 5)
    builder.add_stretch(0x118, 0x120, "a.cpp", 6)
    builder.add_stretch(0x200, 0x208, "b.h", 2)
    builder.add_functions([(0x100, "f"), (0x1F0, "g")])
    builder.add_test(Test("S.One", 0.1, "one_test.cpp"), [1, 0])
    builder.add_test(Test("S.Two", 0.2, "two_test.cpp"), [1, 2, 3])
    return builder.coverage


class CoverageOfLines(unittest.TestCase):
    def names(self, *lines, **more):
        coverage = built()
        return [test.name for test in coverage.tests_of(coverage.blocks_of(*lines, **more))]

    def test_a_line_has_the_blocks_that_begin_in_it_and_the_one_before(self):
        coverage = built()

        self.assertEqual({1, 2}, coverage.blocks_of("a.cpp", 5, 5))
        self.assertEqual({2}, coverage.blocks_of("a.cpp", 6, 6))
        self.assertEqual({3}, coverage.blocks_of("b.h", 1, 2))

    def test_tests_that_reach_one_of_the_blocks_are_found(self):
        self.assertEqual(["S.One", "S.Two"], self.names("a.cpp", 5, 5))
        self.assertEqual(["S.Two"], self.names("a.cpp", 6, 6))

    def test_a_line_without_code_belongs_to_the_one_before_if_that_is_wanted(self):
        self.assertEqual([], self.names("a.cpp", 8, 9))
        self.assertEqual(["S.Two"], self.names("a.cpp", 8, 9, is_nearest=True))
        self.assertEqual([], self.names("c.cpp", 8, 9, is_nearest=True))

    def test_a_file_has_all_blocks_of_its_lines(self):
        self.assertEqual({1, 2}, built().blocks_of_file("a.cpp"))
        self.assertEqual(set(), built().blocks_of_file("c.cpp"))

    def test_blocks_have_the_names_of_their_functions(self):
        self.assertEqual({1: "f", 2: "f", 3: "g"}, built().functions)


def record(title, numbers):
    return title.encode() + b"\n" + numbers.tobytes()


class Records(unittest.TestCase):
    PLACES = record("places 0 passed 2 -", array("Q", [0x0A0A0A0A0A, 7]))
    ONE = record("S/I.One/0 1500 passed 3 /src/a b_test.cpp", array("I", [1, 10, 0x0A0A]))

    def test_they_are_read_with_their_numbers(self):
        places, one = records(self.PLACES + self.ONE)

        self.assertEqual([0x0A0A0A0A0A, 7], list(places.blocks))
        self.assertEqual(("S/I.One/0", 0.0015, True, "/src/a b_test.cpp", [1, 10, 0x0A0A]),
                         (one.name, one.seconds, one.has_passed, one.source, list(one.blocks)))

    def test_one_that_is_cut_off_is_left_out(self):
        self.assertEqual(["places"], [each.name for each in records(self.PLACES + self.ONE[:-1])])
