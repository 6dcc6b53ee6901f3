"""Reads what llvm-cov export prints: the segments of each source with how often they ran, and each condition with how
often it went either way.

A template has its conditions once for each of its instances: a way counts as taken if one of them takes it. A condition
that runs and goes neither way is a constant, and no branch. The conditions in the body of a macro are none of the
sources that use it."""

import json
from bisect import bisect_right
from dataclasses import dataclass, field
from pathlib import Path
from typing import Dict, Iterator, List, Optional, Tuple

Place = Tuple[int, int]  # line and column


@dataclass(frozen=True)
class Segment:
    """From its place to that of the next one the text runs as often as it says."""

    place: Place
    count: int
    has_count: bool
    begins: bool  # a region of the source; otherwise one ends
    is_gap: bool  # between two statements

    @classmethod
    def of(cls, values: list) -> "Segment":
        line, column, count, has_count, begins, is_gap = values
        return cls((line, column), count, has_count, begins, is_gap)

    def counts(self) -> bool:
        return self.has_count and not self.is_gap


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


class Segments:
    def __init__(self, values: list):
        self._all = [Segment.of(each) for each in values]
        self._places = [segment.place for segment in self._all]

    def at(self, place: Place) -> Optional[Segment]:
        """The one that the text at the place belongs to."""
        index = bisect_right(self._places, place)
        return self._all[index - 1] if index > 0 else None

    def beginning_in(self, line: int, after: int) -> Iterator[Segment]:
        first = bisect_right(self._places, (line, after))
        last = bisect_right(self._places, (line + 1, 0))
        return (segment for segment in self._all[first:last] if segment.begins)

    def ran(self, line: int, column: int) -> Optional[bool]:
        """Whether the line, whose text starts at the column, ran at least in part; none if it is no code."""
        first = self.at((line, column))
        found = ([first] if first is not None else []) + list(self.beginning_in(line, column))
        counts = [segment.count for segment in found if segment.counts()]
        return max(counts) > 0 if counts else None


def lines_of(text: str, segments: Segments) -> Dict[int, bool]:
    lines = {}
    for number, line in enumerate(text.splitlines(), 1):
        code = line.strip()
        if code == "" or code.startswith("//"):
            continue
        ran = segments.ran(number, len(line) - len(line.lstrip()) + 1)
        if ran is not None:
            lines[number] = ran
    return lines


def without_constants(source: Source, segments: Segments) -> None:
    for place, both in list(source.branches.items()):
        around = segments.at(place)
        if both == (False, False) and around is not None and around.count > 0:
            del source.branches[place]


def read_file(entry: dict, path: str, text: str) -> Source:
    segments = Segments(entry["segments"])
    source = Source(path, lines_of(text, segments))
    for line, column, _, _, went_true, went_false, *_ in entry["branches"]:
        source.add_branch((line, column), went_true > 0, went_false > 0)
    without_constants(source, segments)
    return source


def read(listing: str, root: str) -> List[Source]:
    """The files below the folder root; their paths are relative to it."""
    prefix = root.rstrip("/") + "/"
    sources: List[Source] = []
    for data in json.loads(listing)["data"]:
        for entry in data["files"]:
            if entry["filename"].startswith(prefix):
                text = Path(entry["filename"]).read_text(encoding="utf-8")
                sources.append(read_file(entry, entry["filename"][len(prefix):], text))
    return sources
