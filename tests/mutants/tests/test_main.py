import contextlib
import importlib.util
import io
import unittest
from pathlib import Path

from folders import FOLDERS, LEFT_OUT, ROOT, folder_of
from run import texts_of

SPEC = importlib.util.spec_from_file_location("program", Path(__file__).resolve().parents[1] / "__main__.py")
program = importlib.util.module_from_spec(SPEC)
SPEC.loader.exec_module(program)


def printed(*words):
    with contextlib.redirect_stdout(io.StringIO()) as out:
        program.main(list(words))
    return out.getvalue().split()


class Arguments(unittest.TestCase):
    def test_without_any_all_folders_are_searched(self):
        tests = {test for folder in FOLDERS for test in folder.tests}
        targets = printed("--targets")
        self.assertEqual(tests, set(targets))
        self.assertEqual(len(tests), len(targets))

    def test_a_folder_a_file_and_a_name_say_which_programs_are_asked(self):
        self.assertEqual(["program_test"], printed("--targets", "--folder", "program"))
        self.assertEqual(["client_test", "program_test"], printed("--targets", "--file", "client/sonavit/volume.h"))
        self.assertEqual(["foundation_test"], printed("--targets", "--id", "foundation/qor/string.cpp:1:2:call"))

    def test_wrong_ones_are_refused(self):
        for words in (["--count", "0"], ["--folder", "docs"], ["--file", "tests/README.md"], ["--nothing"]):
            with self.assertRaises(SystemExit), contextlib.redirect_stderr(io.StringIO()):
                program.arguments_of(words)


class Folders(unittest.TestCase):
    def test_each_has_sources(self):
        for folder in FOLDERS:
            self.assertTrue(texts_of(folder), folder.name)

    def test_a_file_belongs_to_one_of_them_or_none(self):
        self.assertEqual("modules", folder_of("modules/src/windows/common/COM/comptr.h").name)
        self.assertIsNone(folder_of("tests/mutants/folders.py"))
        self.assertIsNone(folder_of("clients/x.cpp"))

    def test_what_is_left_out_exists(self):
        for path in LEFT_OUT:
            self.assertTrue((ROOT / path).is_file(), path)
            self.assertIsNone(folder_of(path))
