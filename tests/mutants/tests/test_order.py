import random
import unittest

from changes import KINDS, changes_of
from coverage import Test
from drawing import drawn
from order import batches
from planning import objects_for

SOURCE = 'void f() { if (a == b) g("x"); h(1 + 2); i(3); p->Release(); SONAVIT_LOG(m, LOG_INFO, out); }'


class Drawn(unittest.TestCase):
    def test_it_depends_on_the_seed_and_the_name_alone(self):
        changes = changes_of("x.cpp", SOURCE)
        shuffled = list(changes)
        random.shuffle(shuffled)

        self.assertEqual(drawn(changes, 1, "a"), drawn(shuffled, 1, "a"))
        self.assertNotEqual(drawn(changes, 1, "a"), drawn(changes, 2, "a"))
        self.assertNotEqual(drawn(changes, 1, "a"), drawn(changes, 1, "b"))

    def test_the_others_keep_their_order_when_a_source_is_edited(self):
        def constants(source):
            return [change.replacement for change in drawn(changes_of("x.cpp", source), 1, "a") if change.kind == "constant"]

        source = "".join(f"int f{number}() {{ return {number}; }}\n" for number in range(10, 30))
        edited = "// a comment\n\n" + source + "int g() { return 99; }\n"

        self.assertEqual(constants(source), [each for each in constants(edited) if each != "100"])

    def test_equal_lines_have_places_of_their_own(self):
        changes = changes_of("x.cpp", "void f() {\n  g(1);\n}\nvoid h() {\n  g(1);\n}\n")

        self.assertEqual(len(changes), len({change.mark for change in changes}))

    def test_all_kinds_come_before_one_comes_again(self):
        changes = changes_of("x.cpp", SOURCE)
        kinds = [change.kind for change in drawn(changes, 1, "a")]

        self.assertEqual(sorted(KINDS), sorted(kinds[:len(KINDS)]))
        self.assertEqual(len(changes), len(kinds))


class Batches(unittest.TestCase):
    def names(self, tests, path="client/x.cpp"):
        return [[test.name for test in batch] for batch in batches(tests, path)]

    def test_mirrored_tests_come_first_then_quick_ones(self):
        tests = [Test("A.slow", 0.2, "y_test.cpp"), Test("B.quick", 0.01, "y_test.cpp"), Test("C.near", 0.05, "/t/xmore_test.cpp")]

        self.assertEqual([["C.near", "B.quick", "A.slow"]], self.names(tests))

    def test_each_batch_has_its_time(self):
        tests = [Test(f"A.{second}", second, "y_test.cpp") for second in (0.1, 0.15, 0.3, 2.5, 4.0, 15.0, 16.0, 50.0)]

        self.assertEqual([["A.0.1", "A.0.15"], ["A.0.3", "A.2.5"], ["A.4.0", "A.15.0"], ["A.16.0"], ["A.50.0"]],
                         self.names(tests))

    def test_a_batch_has_at_least_one_test(self):
        self.assertEqual([["A.9"]], self.names([Test("A.9", 9, "y_test.cpp")]))
        self.assertEqual([], self.names([]))


class Objects(unittest.TestCase):
    def test_the_one_with_the_most_comes_first_and_no_other_without_need(self):
        candidates = {"a": {"f"}, "b": {"f", "g"}, "c": {"h"}, "d": {"g", "h"}}

        self.assertEqual(["b", "c"], objects_for({"f": 5, "g": 1, "h": 1}, candidates))

    def test_functions_that_none_has_are_left_out(self):
        self.assertEqual(["a"], objects_for({"f": 1, "x": 9}, {"a": {"f"}}))
        self.assertEqual([], objects_for({"x": 9}, {"a": {"f"}}))

    def test_only_a_few_are_taken(self):
        candidates = {str(each): {f"f{each}"} for each in range(9)}

        self.assertEqual(["0", "1", "2", "3"], objects_for({f"f{each}": 9 - each for each in range(9)}, candidates))
