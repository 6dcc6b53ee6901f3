"""The build folder: how each object and each test program is made."""

import json
import shlex
import subprocess
from functools import cached_property, lru_cache
from pathlib import Path

LLVM = "/usr/lib/llvm-14/bin"


def output_of(command, folder):
    return subprocess.run(command, cwd=folder, check=True, stdout=subprocess.PIPE).stdout.decode(errors="replace")


def compiled_again(command, output, options=("-O0",)):
    """The command without instrumentation, warnings and debug information, for another object file, with these options."""
    words = []
    skips = 0
    for word in command:
        if skips:
            skips -= 1
        elif word == "-o":
            skips = 1
        elif not word.startswith(("-W", "-fsanitize-coverage", "-g", "-O")):
            words.append(word)
    return words + ["-w", *options, "-o", str(output)]


def without_precompiled(command):
    """clang is told to read a precompiled header by "-Xclang -include-pch -Xclang FILE -Xclang -include -Xclang FILE"."""
    words, index = [], 0
    while index < len(command):
        if command[index] == "-Xclang" and command[index + 1] in ("-include-pch", "-include"):
            index += 4
        else:
            words.append(command[index])
            index += 1
    return words


def linked_again(command, replaced, added, output, options=()):
    """The command with other objects in place of replaced, all of them in front, so that they are taken for what a library
    has, too; linked by LLVM's linker, which is quick, without debug information."""
    compiler, words, index = command[0], [], 1
    while index < len(command):
        if command[index] == "-o":
            index += 1
        elif command[index] not in replaced:
            words.append(command[index])
        index += 1
    return [compiler, *map(str, added), *words, *options, "-fuse-ld=lld-14", "-Wl,--strip-debug", "-o", str(output)]


class Build:
    def __init__(self, folder):
        self.folder = Path(folder)

    @cached_property
    def _commands(self):
        """Each object file, relative to the folder: its source and its command."""
        entries = json.loads((self.folder / "compile_commands.json").read_text(encoding="utf-8"))
        result = {}
        for entry in entries:
            command = shlex.split(entry["command"])
            result[command[command.index("-o") + 1]] = (entry["file"], command)
        return result

    @cached_property
    def sources(self):
        return {source for source, _ in self._commands.values()}

    def source_of(self, item):
        return self._commands[item][0]

    def command_of(self, item):
        return self._commands[item][1]

    def program(self, name):
        return self.folder / "bin" / name

    @lru_cache(maxsize=None)
    def objects_of(self, program):
        """The object files of a program and of its libraries; no precompiled headers, which are inputs, too."""
        inputs = output_of(["ninja", "-t", "inputs", program], self.folder).splitlines()
        return [each for each in inputs if each in self._commands and not each.endswith(".pch")]

    @lru_cache(maxsize=None)
    def link_command(self, program):
        line = output_of(["ninja", "-t", "commands", program], self.folder).splitlines()[-1]
        words = shlex.split(line)
        return words[words.index("&&") + 1:words.index("&&", words.index("&&") + 1)]

    @lru_cache(maxsize=None)
    def read_by(self, item):
        """The files that the compilation of an object or of a precompiled header has read."""
        lines = output_of(["ninja", "-t", "deps", item], self.folder).splitlines()
        return {str((self.folder / line.strip()).resolve()) for line in lines[1:] if line.strip()}

    def reads_precompiled(self, item, path):
        """Whether the object is compiled with a precompiled header that contains the file at path."""
        command = self.command_of(item)
        for index, word in enumerate(command):
            if word == "-include-pch":
                precompiled = Path(command[index + 2])
                return path in self.read_by(str(precompiled.relative_to(self.folder)))
        return False

    @lru_cache(maxsize=None)
    def functions_in(self, item):
        """The names of the functions that an object defines."""
        lines = output_of([f"{LLVM}/llvm-nm", "--defined-only", "--format=just-symbols", item], self.folder)
        return frozenset(lines.split())

    def symbols(self, program):
        """(address, name) of each function of the program, sorted."""
        result = []
        for line in output_of([f"{LLVM}/llvm-nm", "--defined-only", "--numeric-sort", f"bin/{program}"], self.folder).splitlines():
            address, kind, name = line.split(" ", 2)
            if kind in "tTwWvVi":
                result.append((int(address, 16), name))
        return result
