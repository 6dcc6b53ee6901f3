"""Which addresses of a program belong to which lines, read from what llvm-dwarfdump --debug-line prints."""

import re

FILE = re.compile(r"file_names\[\s*(\d+)\]:")
FOLDER = re.compile(r'include_directories\[\s*(\d+)\] = "(.*)"')
VALUE = re.compile(r'\s+(name|dir_index): "?(.*?)"?$')
ROW = re.compile(r"0x([0-9a-f]{16})\s+(\d+)\s+(\d+)\s+(\d+)\s.*")


def _joined(folder, name):
    return name if name.startswith("/") else f"{folder}/{name}"


class _Unit:
    """The files of one compiled source."""

    def __init__(self):
        self.folders = {}
        self.names = {}
        self.number = 0

    def read(self, line):
        if match := FOLDER.match(line):
            self.folders[int(match.group(1))] = match.group(2)
        elif match := FILE.match(line):
            self.number = int(match.group(1))
            self.names[self.number] = ["", 0]
        elif match := VALUE.match(line):
            name, value = match.groups()
            self.names[self.number][name == "dir_index"] = int(value) if name == "dir_index" else value

    def path(self, number):
        name, folder = self.names.get(number, ("", 0))
        return _joined(_joined(self.folders.get(0, ""), self.folders.get(folder, "")), name)


def rows(lines, first):
    """(begin, end, path, line) for each stretch of code that begins at the address first or later: what the linker has left
    out begins before it."""
    unit, paths, last = _Unit(), {}, None
    for line in lines:
        if line.startswith("debug_line["):
            unit, paths, last = _Unit(), {}, None
        elif match := ROW.match(line):
            address = int(match.group(1), 16)
            if last is not None and last[0] >= first and address > last[0] and last[2]:
                yield last[0], address, last[1], last[2]
            number = int(match.group(4))
            if number not in paths:
                paths[number] = unit.path(number)
            last = None if "end_sequence" in line else (address, paths[number], int(match.group(2)))
        elif not line.startswith("0x"):
            unit.read(line)
