import unittest

import client
from programs import FakePrograms

GROWTH = "endpoints:100\t{0}\t7560\t7560\t10\t447\t{3}\t100\t100\nendpoints:200\t{1}\t15120\t15120\t10\t847\t{4}\t200\t200\n" \
         "endpoints:400\t{2}\t30240\t30240\t10\t{6}\t{5}\t400\t400\n"


class ClientCalls(FakePrograms):
    def beyond(self, work, count):
        program = self.program("clientcost", rf"printf '{work}\t{count}\n'")
        return client.calls(program).beyond

    def test_each_work_has_its_limit(self):
        self.assertFalse(self.beyond("first snapshot, registrations included", 4200))
        self.assertTrue(self.beyond("first snapshot, registrations included", 4201))
        self.assertTrue(self.beyond("refresh after nothing", 1))

    def test_other_refreshes_have_one_limit(self):
        self.assertFalse(self.beyond("refresh after a change of volume", 60))
        self.assertTrue(self.beyond("refresh after a change of volume", 61))

    def test_a_program_that_fails_is_an_error(self):
        with self.assertRaises(RuntimeError):
            client.calls(self.program("clientcost", "exit 1"))


class ClientGrowthOfCalls(FakePrograms):
    def beyond(self, first=3528, second=7038, third=14058, paths=(3800, 7600, 15200), addition=1647):
        lines = GROWTH.format(first, second, third, *paths, addition)
        table = client.growth_of_calls(self.program("clientcost", f"printf '{lines}'"))
        return [row.name.strip() for row in table.beyond]

    def test_calls_that_double_with_the_machine_are_linear(self):
        self.assertEqual([], self.beyond())

    def test_calls_that_grow_faster_are_beyond(self):
        self.assertEqual(["growth of growth"], self.beyond(third=14300))

    def test_signal_paths_may_grow_with_the_square(self):
        self.assertEqual([], self.beyond(paths=(2450, 9900, 39800)))

    def test_an_addition_has_a_limit_of_its_own(self):
        self.assertIn("endpoints:400", self.beyond(addition=1701))
        self.assertNotIn("endpoints:400", self.beyond(addition=1700))


class ClientGrowth(unittest.TestCase):
    def test_is_two_for_what_doubles(self):
        self.assertEqual(2, client.growth_of((110, 210, 410)))

    def test_is_none_for_what_does_not_grow(self):
        self.assertEqual(0, client.growth_of((10, 10, 10)))

    def test_is_endless_for_what_begins_to_grow(self):
        self.assertEqual(float("inf"), client.growth_of((10, 10, 11)))


class ClientComparison(FakePrograms):
    def test_shows_the_calls_of_both(self):
        table = client.comparison(self.program("clientcost", "echo 3539"))

        self.assertEqual(["3,539"], table.rows[0].cells)

    def test_a_difference_is_an_error_that_names_it(self):
        with self.assertRaisesRegex(RuntimeError, "call 7"):
            client.comparison(self.program("clientcost", "echo 3539; echo '    call 7: a, b'; exit 1"))
