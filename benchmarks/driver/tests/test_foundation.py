import re
import unittest
from unittest import mock

import foundation
import limits
from programs import FakePrograms

COPY = ("text: copy", "std::u16string")
VISIT = ("array of 8 numbers: visit", "std::vector<unsigned>")


class FoundationTimes(FakePrograms):
    def test_reads_a_line_for_each_pair(self):
        program = self.program("benchmark", r"printf 'text: copy\tstd::u16string\t18.5\t16.75\n'")

        self.assertEqual({COPY: (18.5, 16.75)}, foundation.timed(program, "many", []))

    def test_passes_options_on(self):
        program = self.program("benchmark", r'''printf '%s\t%s\t1\t2\n' "$1" "$2"''')

        self.assertEqual({("one", "--benchmark_filter=text"): (1, 2)},
                         foundation.timed(program, "one", ["--benchmark_filter=text"]))

    def test_a_measurement_that_fails_is_an_error(self):
        with self.assertRaises(RuntimeError):
            foundation.timed(self.program("benchmark", "exit 1"), "many", [])


class FoundationCounted(unittest.TestCase):
    def counted(self, lines, *totals):
        dumps = (lines, [mock.Mock(total=each) for each in totals])
        with mock.patch("callgrind.dumps", return_value=dumps):
            return foundation.counted("benchmark")

    def test_many_repetitions_without_few_give_one(self):
        lines = "text: copy\tstd::u16string\t2\t5\t20\n"

        self.assertEqual({COPY: (30, 60)}, self.counted(lines, 9999, 1300, 1900, 8888, 2600, 3800))

    def test_each_row_has_counts_of_its_own(self):
        lines = "text: copy\tstd::u16string\t2\t5\t10\narray of 8 numbers: visit\tstd::vector<unsigned>\t8\t11\t10\n"

        self.assertEqual({COPY: (1, 2), VISIT: (3, 4)},
                         self.counted(lines, 0, 10, 20, 0, 10, 30, 0, 10, 40, 0, 10, 50))

    def test_a_missing_count_is_an_error(self):
        with self.assertRaises(RuntimeError):
            self.counted("text: copy\tstd::u16string\t2\t5\t20\n", 1300, 1900, 2600)


class FoundationMeasuredAgain(FakePrograms):
    def again(self, times, line, options=()):
        program = self.program("benchmark", f"echo \"$@\" >{self.folder}/arguments; printf '{line}'")
        return foundation.measured_again(program, times, list(options))

    def test_rows_within_their_limits_are_left_alone(self):
        times = {COPY: (10.0, 10.0)}

        self.assertEqual(times, self.again(times, "not asked for"))
        self.assertFalse((self.folder / "arguments").exists())

    def test_the_lower_ratio_of_a_row_beyond_its_limit_counts(self):
        times = self.again({COPY: (20.0, 10.0), VISIT: (1.0, 1.0)}, r"text: copy\tstd::u16string\t11\t10\n")

        self.assertEqual({COPY: (11.0, 10.0), VISIT: (1.0, 1.0)}, times)

    def test_a_second_time_that_is_worse_does_not_count(self):
        times = self.again({COPY: (20.0, 10.0)}, r"text: copy\tstd::u16string\t90\t10\n")

        self.assertEqual({COPY: (20.0, 10.0)}, times)

    def test_the_filter_chooses_both_sides_of_the_row_alone(self):
        pattern = foundation.filter_of([("text: ==, equal", "std::memcmp")]).split("=", 1)[1]

        self.assertTrue(re.search(pattern, "text: ==, equal, against std::memcmp: ours"))
        self.assertFalse(re.search(pattern, "text: ==, other case, against std::memcmp: ours"))


class FoundationTable(unittest.TestCase):
    def table(self, ours, footnotes=None):
        with mock.patch.dict(limits.FOOTNOTES, footnotes or {}, clear=True):
            return foundation.table_of("foundation-many", "Many", {COPY: (ours, 10.0)}, {COPY: (30.0, 60.0)}, True)

    def test_a_row_may_take_a_tenth_more(self):
        self.assertEqual([], self.table(11.0).beyond)
        self.assertEqual(1, len(self.table(11.1).beyond))

    def test_a_footnote_has_a_limit_of_its_own(self):
        footnotes = {COPY: limits.Footnote(2.0, "Counting costs 9 ns.")}

        self.assertEqual([], self.table(20.0, footnotes).beyond)
        self.assertEqual(1, len(self.table(20.1, footnotes).beyond))
        self.assertIn("[1] Counting costs 9 ns.", self.table(20.0, footnotes).text())

    def test_a_footnote_is_of_one_peer(self):
        footnotes = {("text: copy", "std::memcmp"): limits.Footnote(2.0, "Another row.")}

        self.assertEqual(1, len(self.table(20.0, footnotes).beyond))

    def test_the_table_for_one_thread_is_not_judged(self):
        table = foundation.table_of("foundation-one", "One", {COPY: (90.0, 10.0)}, {}, False)

        self.assertEqual([], table.beyond)

    def test_shows_times_ratio_and_instructions(self):
        self.assertEqual(["12.00", "10.00", "1.20", "30", "60", "std::u16string"], self.table(12.0).rows[0].cells)


class FoundationLimits(unittest.TestCase):
    def test_each_footnote_has_a_number_and_a_limit_above_that_of_all_rows(self):
        for key, footnote in limits.FOOTNOTES.items():
            self.assertGreater(footnote.limit, limits.FOUNDATION, key)
            self.assertRegex(footnote.text, r"\d", key)
