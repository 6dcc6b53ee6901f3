import json
import tempfile
import unittest
from pathlib import Path
from unittest import mock

from build import Build, compiled_again, linked_again, without_precompiled

COMPILE = ("/usr/bin/clang++ -Ifolder -O0 -gline-tables-only -Wall -Werror -fsanitize-coverage=bb -std=c++17 "
           "-Xclang -include-pch -Xclang /b/pch.hxx.pch -Xclang -include -Xclang /b/pch.hxx -o old.o -c a.cpp").split()
LINK = "/usr/bin/clang++ -O0 first.o own.o -o bin/x_test lib.a".split()


class Commands(unittest.TestCase):
    def test_a_source_is_compiled_again_without_what_the_search_does_not_need(self):
        self.assertEqual("/usr/bin/clang++ -Ifolder -std=c++17 -c a.cpp -w -O0 -o new.o".split(),
                         without_precompiled(compiled_again(COMPILE, "new.o")))

    def test_it_may_be_optimized(self):
        words = compiled_again(COMPILE, "new.o", ("-O2",))

        self.assertIn("-O2", words)
        self.assertNotIn("-O0", words)

    def test_the_precompiled_header_remains_if_it_is_not_taken_away(self):
        self.assertIn("/b/pch.hxx.pch", compiled_again(COMPILE, "new.o"))

    def test_changed_objects_are_linked_first_and_their_originals_are_not(self):
        self.assertEqual("/usr/bin/clang++ new.o -O0 first.o lib.a -x -fuse-ld=lld-14 -Wl,--strip-debug -o x".split(),
                         linked_again(LINK, ["own.o", "other.o"], ["new.o"], "x", ["-x"]))


class Objects(unittest.TestCase):
    def test_a_precompiled_header_is_none_though_it_is_an_input_with_a_command(self):
        with tempfile.TemporaryDirectory() as folder:
            commands = [{"file": f"/s/{name}", "command": f"clang++ -o {name}.o -c /s/{name}"} for name in ("a.cpp", "b.cpp")]
            commands.append({"file": "/s/pch.cxx", "command": "clang++ -o pch.hxx.pch -c /s/pch.cxx"})
            Path(folder, "compile_commands.json").write_text(json.dumps(commands), encoding="utf-8")

            with mock.patch("build.output_of", return_value="a.cpp.o\npch.hxx.pch\nlib.a\n"):
                self.assertEqual(["a.cpp.o"], Build(folder).objects_of("x_test"))
