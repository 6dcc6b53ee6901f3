import unittest
from concurrent.futures import ThreadPoolExecutor
from dataclasses import replace
from unittest import mock

import library
import limits
import plots

COST = library.Cost(own=1000, platform=5000, calls=10, addref=1, release=2, query=3, allocations=4, bytes=5)


class FakeCosts:
    """Costs of the plain client are COST; those of the library are COST but for what the test says."""

    def __init__(self, **own):
        self._own = {name.replace("_", " ").replace(" of ", ":"): value for name, value in own.items()}

    def library(self, operation):
        return self._own.get(operation, COST)

    def plain(self, operation):
        return COST


def beyond(table):
    return [row.name for row in table.beyond]


class LibraryRatios(unittest.TestCase):
    def test_a_library_like_the_plain_client_is_within_all_limits(self):
        self.assertEqual([], library.ratios(FakeCosts()).beyond)

    def test_own_instructions_are_judged_by_those_of_the_plain_client(self):
        costs = FakeCosts(discovery_crowded=replace(COST, own=1001), lists_crowded=replace(COST, own=1500),
                          controls_crowded=replace(COST, own=1401), event_cards_of_50=replace(COST, own=1101))

        self.assertEqual(["discovery of crowded, 120 endpoints", "all hardware controls of crowded",
                          "an event, 50 cards"], beyond(library.ratios(costs)))

    def test_each_limit_is_of_a_row(self):
        self.assertLessEqual(set(limits.RATIOS), set(library.ROWS.values()))


class LibraryMemory(unittest.TestCase):
    def test_allocations_of_crowded_have_a_limit(self):
        most = replace(COST, allocations=limits.ALLOCATIONS_OF_CROWDED)
        more = replace(COST, allocations=limits.ALLOCATIONS_OF_CROWDED + 1)

        self.assertEqual([], library.memory(FakeCosts(discovery_crowded=most)).beyond)
        self.assertEqual(1, len(library.memory(FakeCosts(discovery_crowded=more)).beyond))


class LibraryPerCall(unittest.TestCase):
    def test_work_that_grows_as_the_calls_do_is_linear(self):
        costs = FakeCosts(discovery_adapters_of_80=replace(COST, own=100_000, calls=1000))

        self.assertEqual([], library.per_call(costs).beyond)

    def test_work_that_grows_faster_than_the_calls_is_beyond(self):
        costs = FakeCosts(discovery_adapters_of_80=replace(COST, own=121_000, calls=1000),
                          controls_endpoints_of_100=replace(COST, own=121_000, calls=1000))

        self.assertEqual(2, len(library.per_call(costs).beyond))


class LibraryWholeLists(unittest.TestCase):
    def table(self, own, registration=100, **costs):
        def profile_of(_, side, operation, toggles=None):
            return mock.Mock(own=own if side == "direct-wholelist" else registration)

        with mock.patch("library.profile_of", side_effect=profile_of) as self.profile:
            return library.whole_lists("bin", FakeCosts(**costs))

    def test_shows_what_a_plain_client_pays_and_the_share_of_the_library_s_own(self):
        table = self.table(1100, discovery_crowded=replace(COST, own=2000))

        self.assertEqual(["2,000", "1,000", "1,100", "5.0", "1.82", "-"], table.rows[0].cells)
        self.profile.assert_any_call("bin", "direct-wholelist", "discovery adapters:80")

    def test_the_largest_card_is_judged_by_a_plain_client_that_registers_whole_lists(self):
        self.assertEqual([], self.table(1000).beyond)
        self.assertEqual(["discovery of 1 card of 80 adapters"], beyond(self.table(999)))

    def test_each_limit_is_of_a_row(self):
        self.assertLessEqual(set(limits.RATIOS_WITH_WHOLE_LISTS), set(library.WHOLE_LISTS))


class LibraryTraces(unittest.TestCase):
    def test_a_hundredth_of_the_instructions_is_the_limit(self):
        self.assertEqual([], library.table_of_traces(1000, 990, 1000).beyond)
        self.assertEqual(1, len(library.table_of_traces(1000, 989, 1000).beyond))


class LibraryCosts(unittest.TestCase):
    def test_measures_each_operation_once_on_both_sides(self):
        with ThreadPoolExecutor(1) as pool, mock.patch("library.cost_of", side_effect=lambda *question: question) as cost:
            costs = library.Costs("bin", pool)
            costs.measure(["lists crowded", "lists crowded"])
            costs.measure(["lists crowded"])

        self.assertEqual(2, cost.call_count)
        self.assertEqual(("bin", "direct", "lists crowded"), costs.plain("lists crowded"))

    def test_reads_allocations(self):
        self.assertEqual((12, 3456), library.allocated("allocations=12 bytes=3456\n"))

    def test_a_program_that_prints_no_allocations_is_an_error(self):
        with self.assertRaises(ValueError):
            library.allocated("")

    def test_reads_a_discovery(self):
        self.assertEqual([11, 3, 5592, 1434], library.discovered("11 endpoints 3 cards 5592 calls 1434 us\n"))


class PlotsPoints(unittest.TestCase):
    def test_a_point_has_the_size_both_sides_and_both_per_call(self):
        growth = library.Growth("endpoints", "Title", "axis", "discovery", "cards", (5, 10), 10)
        costs = FakeCosts(discovery_cards_of_10=replace(COST, own=3_000_000, calls=1000))

        self.assertEqual([(50, 0.001, 0.001, 100, 100), (100, 3, 0.001, 3000, 100)], list(plots.points(growth, costs)))
