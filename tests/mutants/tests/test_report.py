import unittest

from accepted import Accepted, entries_of
from changes import changes_of
from report import FolderReport, Mutant, closing_line, is_good, text_of
from trial import KILLED, SURVIVED, UNREACHED

SOURCE = "bool f(int a)\n{\n    return a == 1;\n}\n"
ENTRY = """\
# A comment.
d/x.cpp
- return a == 1;
+ return a != 1;
  It makes no difference,
  as a is never read.

"""


def mutant(outcome, reason="", name="d/x.cpp:3:14:condition"):
    return Mutant(name, "condition", outcome, "S.One" if outcome == KILLED else "3 tests", ("- a", "+ b"), reason)


TWICE = "bool f(int a)\n{\n    return a == 1;\n}\nbool g(int a)\n{\n    return a == 1;\n}\n"
SECOND = ENTRY.replace("x.cpp\n", "x.cpp\n@ 2\n")


def accepted(text, source=SOURCE):
    return Accepted(entries_of(text), {"d/x.cpp": source}, changes_of)


class AcceptedChanges(unittest.TestCase):
    def lines(self, text, source):
        """The lines of the accepted changes in the source."""
        found = accepted(text, source)
        return [change.line for change in changes_of("d/x.cpp", source) if found.find(change)]

    def test_an_entry_is_found_for_its_change_alone(self):
        reasons = {change.kind: accepted(ENTRY).find(change) for change in changes_of("d/x.cpp", SOURCE)}

        self.assertEqual("It makes no difference, as a is never read.", reasons["condition"].reason)
        self.assertIsNone(reasons["constant"])

    def test_an_entry_applies_wherever_its_lines_are(self):
        moved = "// more\n\n" + SOURCE.replace("    return", "        return")

        self.assertEqual([], accepted(ENTRY, moved).outdated)

    def test_an_entry_without_its_change_is_outdated(self):
        entries = entries_of(ENTRY)

        self.assertEqual(entries, accepted(ENTRY, SOURCE.replace("a ==", "b ==")).outdated)
        self.assertEqual(entries, Accepted(entries, {}, changes_of).outdated)
        other = ENTRY.replace("!=", "<=")
        self.assertEqual(entries_of(other), accepted(other).outdated)

    def test_an_entry_needs_a_reason_and_a_diff(self):
        for text in ("d/x.cpp\n- a\n+ b\n", "d/x.cpp\n  why\n", "d/x.cpp\n- a\n+ b\nwhy\n", "d/x.cpp\n"):
            with self.assertRaises(ValueError):
                entries_of(text)

    def test_a_place_is_a_number_from_1_on_behind_the_path(self):
        for place in ("@", "@ 0", "@ -1", "@ x", "@2"):
            with self.assertRaises(ValueError):
                entries_of(ENTRY.replace("x.cpp\n", f"x.cpp\n{place}\n"))
        with self.assertRaises(ValueError):
            entries_of(ENTRY.replace("  It", "@ 2\n  It"))

    def test_an_entry_with_a_place_means_that_one_of_the_equal_changes(self):
        self.assertEqual([7], self.lines(SECOND, TWICE))
        self.assertEqual([3], self.lines(SECOND.replace("2", "1", 1), TWICE))
        self.assertEqual([3, 7], self.lines(SECOND.replace("2", "1", 1) + SECOND, TWICE))

    def test_an_entry_without_a_place_that_fits_two_is_refused(self):
        with self.assertRaisesRegex(ValueError, "line 2: d/x.cpp has such a change in lines 3, 7"):
            accepted(ENTRY, TWICE)

    def test_an_entry_with_a_place_that_fits_one_is_refused(self):
        with self.assertRaisesRegex(ValueError, "line 2: d/x.cpp has one such change"):
            accepted(SECOND)

    def test_a_place_that_is_not_there_is_outdated(self):
        third = SECOND.replace("@ 2", "@ 3")

        self.assertEqual(entries_of(third), accepted(third, TWICE).outdated)

    def test_an_entry_that_is_there_twice_is_refused(self):
        with self.assertRaisesRegex(ValueError, "line 9: there is such an entry in line 2"):
            accepted(ENTRY + ENTRY)


class Judgement(unittest.TestCase):
    def folder(self, killed, survived, least=95, **more):
        return FolderReport("client", least, [mutant(KILLED)] * killed + [mutant(SURVIVED)] * survived, **more)

    def test_as_many_as_are_asked_for_are_enough(self):
        self.assertTrue(is_good([self.folder(95, 5)], []))
        self.assertFalse(is_good([self.folder(94, 5)], []))

    def test_a_folder_without_a_verdict_is_not_enough(self):
        folder = FolderReport("client", 95, [], thrown_away=57)

        self.assertFalse(is_good([folder], []))
        self.assertEqual("client: no mistake has a verdict; 57 thrown away  NOT ENOUGH", folder.line())

    def test_each_folder_is_judged(self):
        self.assertFalse(is_good([self.folder(100, 0), self.folder(0, 1)], []))

    def test_accepted_survivors_do_not_count(self):
        folder = FolderReport("client", 95, [mutant(KILLED), mutant(UNREACHED, "why")])

        self.assertTrue(folder.is_good)
        self.assertEqual("client: 1 of 1 killed, 100.0 % (at least 95 %), 1 accepted; 0 thrown away", folder.line())

    def test_an_accepted_one_that_a_test_kills_is_an_error(self):
        folder = FolderReport("client", 0, [mutant(KILLED, "why")])

        self.assertFalse(folder.is_good)
        self.assertIn("is accepted, but S.One kills it", text_of([folder], []))

    def test_an_outdated_entry_is_an_error(self):
        entries = entries_of(ENTRY)

        self.assertFalse(is_good([self.folder(1, 0)], entries))
        self.assertIn("accepted.txt: line 2: d/x.cpp has no such change any more", text_of([self.folder(1, 0)], entries))


class Text(unittest.TestCase):
    def test_survivors_are_shown_with_their_diffs(self):
        folder = FolderReport("client", 95, [mutant(SURVIVED), mutant(UNREACHED, name="y.cpp:1:1:call"), mutant(KILLED)],
                              thrown_away=2)

        self.assertEqual("d/x.cpp:3:14:condition  (3 tests pass)\n    - a\n    + b\n"
                         "y.cpp:1:1:call  (no test reaches it)\n    - a\n    + b\n"
                         "client: 1 of 3 killed, 33.3 % (at least 95 %); 2 thrown away  NOT ENOUGH\n", text_of([folder], []))

    def test_the_closing_line_has_all_counts(self):
        folders = [FolderReport("client", 95, [mutant(KILLED)] * 1100 + [mutant(SURVIVED)]),
                   FolderReport("program", 90, [mutant(SURVIVED, "why")])]

        self.assertEqual("mutants: 1,100 of 1,101 killed (client 1100/1101, program 0/0), 1 survived, 1 accepted with a reason",
                         closing_line(folders, []))
