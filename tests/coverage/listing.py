"""Reads what llvm-cov show prints: each line of a source with how often it ran, and each branch with how often it went
either way.

A template is shown once for each of its instances; a branch counts as taken if one of them takes it. A condition that
is a constant has no branches. The branches in the body of a macro count where the macro is defined, not at each use."""

import re
from dataclasses import dataclass, field
from typing import Dict, Iterable, Iterator, List, Tuple

FILE = re.compile(r"^(/\S+):$")
LINE = re.compile(r"^ *(\d+)\| *([\d.]+[kMGTPEZY]?)\|")
BRANCH = re.compile(r"^[ |]*Branch \((\d+):(\d+)\): \[True: ([^,]+), False: ([^\]]+)\]")

Place = Tuple[int, int]  # line and column


@dataclass
class Source:
    """The figures of one file."""

    path: str
    lines: Dict[int, bool] = field(default_factory=dict)  # whether it ran
    branches: Dict[Place, Tuple[bool, bool]] = field(default_factory=dict)  # whether it went true, and false

    def add_branch(self, place: Place, went_true: bool, went_false: bool) -> None:
        """Adds what one instance did there."""
        before = self.branches.get(place, (False, False))
        self.branches[place] = (before[0] or went_true, before[1] or went_false)

    def lines_covered(self) -> int:
        return sum(self.lines.values())

    def branches_covered(self) -> int:
        return sum(sum(both) for both in self.branches.values())

    def branch_count(self) -> int:
        return 2 * len(self.branches)

    def uncovered(self) -> Iterator[str]:
        """One text for each line that never ran and each branch that was never taken, in the order of the lines."""
        found: List[Tuple[int, int, str]] = []
        for number, ran in self.lines.items():
            if not ran:
                found.append((number, 0, f"{self.path}:{number}: never runs"))
        for (number, column), both in self.branches.items():
            if self.lines.get(number, True):
                for name, taken in zip(("true", "false"), both):
                    if not taken:
                        found.append((number, column, f"{self.path}:{number}:{column}: is never {name}"))
        return (text for _, _, text in sorted(found))


def read(text: Iterable[str], root: str) -> List[Source]:
    """The files below the folder root; their paths are relative to it."""
    prefix = root.rstrip("/") + "/"
    sources: List[Source] = []
    current = None
    for line in text:
        named = FILE.match(line)
        if named:
            path = named.group(1)
            current = Source(path[len(prefix):]) if path.startswith(prefix) else None
            if current is not None:
                sources.append(current)
            continue
        if current is None:
            continue
        branch = BRANCH.match(line)
        if branch:
            place = (int(branch.group(1)), int(branch.group(2)))
            current.add_branch(place, branch.group(3) != "0", branch.group(4) != "0")
            continue
        counted = LINE.match(line)
        if counted:
            current.lines[int(counted.group(1))] = counted.group(2) != "0"
    return sources
