import unittest

import callgrind
from programs import FakePrograms

HEAD = "# callgrind format\nversion: 1\npositions: line\nevents: Ir\n"

# measure: 10 itself; it calls malloc (100), the machine (1,000 with a malloc of its own and a call back of 50) and AddRef
PROFILE = HEAD + """
ob=(1) /build/libSonavit.so
fl=(1) work.cpp
fn=(1) bench::measureLibraryDiscovery()
1 4
+2 6
cob=(2) /usr/lib/libc.so.6
cfi=(2) malloc.c
cfn=(2) malloc
calls=3 0
+1 100
cob=(3) /build/libSonavitSimulator.so
cfn=(3) sim::Enumerator::EnumAudioEndpoints(unsigned int)
calls=2 0
* 1000
cfn=(4) non-virtual thunk to sim::Device::AddRef()
calls=7 0
* 21
cfn=(5) sim::Device::Activate()
calls=9 0
* 0

fn=(2)
5 160

fn=(3)
8 890
cfn=(2)
calls=1 0
+1 60
cfn=(6) SoundCard::SoundCardDeviceUpdater::OnDeviceStateChanged(wchar_t const*, unsigned int)
calls=1 0
+1 50

fn=(4)
9 21

fn=(6)
9 50
"""


class CallgrindProfile(unittest.TestCase):
    def test_adds_up_all_instructions(self):
        self.assertEqual(10 + 160 + 890 + 21 + 50, callgrind.Profile(PROFILE).total)

    def test_own_instructions_are_without_the_machine_and_what_it_calls_but_with_whom_it_calls_back(self):
        self.assertEqual(10 + 100 + 50, callgrind.Profile(PROFILE).own)

    def test_the_platform_has_the_rest(self):
        self.assertEqual(890 + 60 + 21, callgrind.Profile(PROFILE).platform)

    def test_counts_calls_into_the_machine_apart_from_references(self):
        profile = callgrind.Profile(PROFILE)

        self.assertEqual(2, profile.platform_calls)
        self.assertEqual({"AddRef": 7}, dict(profile.references))

    def test_calls_without_instructions_are_not_counted(self):
        self.assertEqual(0, callgrind.Profile(PROFILE).calls_of("Activate"))

    def test_counts_calls_of_functions_by_pattern(self):
        self.assertEqual(4, callgrind.Profile(PROFILE).calls_of("^malloc$"))

    def test_adds_up_what_functions_and_their_callees_took(self):
        self.assertEqual(1000, callgrind.Profile(PROFILE).inclusive(r"^sim::Enumerator::"))

    def test_a_function_that_calls_itself_is_counted_once(self):
        text = HEAD + "fn=a\n1 1\ncfn=f\ncalls=1 0\n1 30\n\nfn=f\n2 30\ncfn=f\ncalls=4 0\n2 20\n"

        self.assertEqual(30, callgrind.Profile(text).inclusive("^f$"))

    def test_names_may_be_written_out(self):
        text = HEAD + "fn=(anonymous namespace)::work()\n1 5\ncfn=sim::Device::Activate()\ncalls=1 0\n1 7\n\nfn=sim::Device::Activate()\n3 7\n"

        self.assertEqual(5, callgrind.Profile(text).own)

    def test_positions_may_have_more_than_one_column(self):
        text = HEAD.replace("positions: line", "positions: instr line") + "fn=f\n0x10 1 5\n+4 * 6\n"

        self.assertEqual(11, callgrind.Profile(text).total)

    def test_names_the_loaded_objects(self):
        self.assertIn("/build/libSonavitSimulator.so", callgrind.Profile(PROFILE).objects)

    def test_a_profile_that_counts_nothing_is_an_error(self):
        with self.assertRaisesRegex(ValueError, "counts no instruction"):
            callgrind.Profile(HEAD)


class CallgrindNames(unittest.TestCase):
    def test_the_machine_is_its_classes_and_the_functions_that_it_defines(self):
        for name in ("sim::Device::Activate()", "virtual thunk to sim::Part::Release()", "CoTaskMemFree", "waveOutMessage",
                     "std::vector<sim::Endpoint>::push_back(sim::Endpoint const&)", "libOSWindows::ConfigManager::parent()"):
            self.assertTrue(callgrind.is_simulator(name), name)

    def test_names_that_only_look_alike_are_not_the_machine(self):
        for name in ("malloc", "asim::f()", "bench::measureEvent(std::vector<sim::Endpoint>&)", "SoundCard::SoundCard()", "CoCreateInstanceEx"):
            self.assertFalse(callgrind.is_simulator(name), name)

    def test_clients_are_what_the_machine_calls_back(self):
        self.assertTrue(callgrind.is_client("SoundCard::SoundCardDeviceUpdater::OnDeviceAdded(wchar_t const*)"))
        self.assertTrue(callgrind.is_client("direct::Card::OnDeviceStateChanged(wchar_t const*, unsigned int)"))
        self.assertFalse(callgrind.is_client("std::vector<sim::Endpoint>::push_back(sonavit::Id)"))
        self.assertFalse(callgrind.is_client("malloc"))


class CallgrindRun(FakePrograms):
    def test_a_program_that_fails_is_an_error_with_its_message(self):
        program = self.program("failing", "echo 'no such machine' >&2; exit 3")

        with self.assertRaisesRegex(RuntimeError, "(?s)ended with .*no such machine|valgrind"):
            callgrind.run(program)
