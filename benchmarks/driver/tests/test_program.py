import unittest
from unittest import mock

import limits
import program
from programs import FakePrograms


class ProgramLargeFiles(FakePrograms):
    def beyond(self, reading, simulating):
        self.program("sonavit-machinefile", f"""if [ "$1" = write ]; then echo '{{}}' >"$3"; else
            echo "2 endpoints: reading {reading} ms, simulating {simulating} ms (median of 3)"; fi""")
        return program.large_files(self.folder, self.folder).beyond

    def test_reading_and_simulating_together_have_a_limit(self):
        self.assertEqual(0, len(self.beyond(600.0, 400.0)))
        self.assertEqual(2, len(self.beyond(600.0, 400.1)))

    def test_leaves_no_file_behind(self):
        self.beyond(1.0, 1.0)

        self.assertEqual([], list(self.folder.glob("*.json")))

    def test_a_program_that_prints_no_times_is_an_error(self):
        with self.assertRaises(ValueError):
            program.times_of("reading")


class ProgramStart(unittest.TestCase):
    def start(self, total, reading):
        profile = mock.Mock(total=total)
        profile.inclusive.return_value = reading
        with mock.patch("callgrind.run", return_value=profile), mock.patch.object(limits, "PROGRAM", {"desktop": 100}):
            return program.start(program.Path("bin"), mock.Mock(map=map))

    def test_instructions_have_a_limit(self):
        self.assertEqual([], self.start(100, 20).beyond)
        self.assertEqual(1, len(self.start(101, 20).beyond))

    def test_shows_the_share_of_the_machine_file(self):
        self.assertEqual(["80", "20", "25.0", "100"], self.start(80, 20).rows[0].cells)

    def test_a_profile_that_does_not_name_the_reading_is_an_error(self):
        with self.assertRaises(RuntimeError):
            self.start(80, 0)


class ProgramGrowthOfFiles(FakePrograms):
    def beyond(self, large):
        def run(_, __, file, *___, toggles):
            return mock.Mock(total=large if toggles == ["simulateOnce"] and "events-400" in file.name else 100)

        self.program("sonavit-machinefile", 'echo "{}" >"$3"')
        with mock.patch("callgrind.run", side_effect=run):
            return [row.name for row in program.growth_of_files(self.folder, mock.Mock(map=map)).beyond]

    def test_four_times_the_machine_may_take_five_times_the_instructions(self):
        self.assertEqual([], self.beyond(500))

    def test_what_grows_faster_is_beyond(self):
        self.assertEqual(["simulate, events: 100, 400"], self.beyond(501))
