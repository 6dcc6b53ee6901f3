"""Which tests of a program reach which lines of the product."""

from bisect import bisect_left, bisect_right
from dataclasses import dataclass, field


@dataclass(frozen=True)
class Test:
    """source is the file that has the test, seconds is how long the processor worked for it."""

    name: str
    seconds: float
    source: str

    @property
    def suite(self):
        return self.name.split(".")[0]


@dataclass
class Coverage:
    """tests are the tests of the program; sets of them are integers in which bit n is tests[n]. lines has the blocks of each
    line of each file, reached the tests that reach a block, functions the name of a block's function."""

    tests: list = field(default_factory=list)
    lines: dict = field(default_factory=dict)
    reached: dict = field(default_factory=dict)
    functions: dict = field(default_factory=dict)

    def blocks_of(self, path, first, last, is_nearest=False):
        """The blocks of the lines from first to last. If these have none and is_nearest is true, those of the nearest line
        before them that has code."""
        table = self.lines.get(path, {})
        blocks = {block for line in range(first, last + 1) for block in table.get(line, ())}
        while is_nearest and not blocks and first > 1 and table:
            first -= 1
            blocks = set(table.get(first, ()))
        return blocks

    def blocks_of_file(self, path):
        return {block for blocks in self.lines.get(path, {}).values() for block in blocks}

    def tests_of(self, blocks):
        reached = 0
        for block in blocks:
            reached |= self.reached.get(block, 0)
        return [test for index, test in enumerate(self.tests) if reached >> index & 1]


class Builder:
    """Puts a Coverage together: places are the addresses of the blocks."""

    def __init__(self, places):
        self._order = sorted(range(len(places)), key=lambda block: places[block])
        self._addresses = [places[block] for block in self._order]
        self._kept = set()
        self.coverage = Coverage()

    @property
    def first_address(self):
        return self._addresses[0]

    def add_stretch(self, begin, end, path, line):
        """The code from begin to end is that of the line: a part of the block before, and the blocks that begin in it."""
        first = max(bisect_right(self._addresses, begin) - 1, 0)
        blocks = self._order[first:max(bisect_left(self._addresses, end), first + 1)]
        self.coverage.lines.setdefault(path, {}).setdefault(line, set()).update(blocks)
        self._kept.update(blocks)

    def add_functions(self, symbols):
        """symbols are (address, name), sorted. For the blocks of the stretches that were added before."""
        starts = [address for address, _ in symbols]
        for address, block in zip(self._addresses, self._order):
            if block in self._kept:
                index = bisect_right(starts, address) - 1
                self.coverage.functions[block] = symbols[index][1] if index >= 0 else ""

    def add_test(self, test, blocks):
        bit = 1 << len(self.coverage.tests)
        self.coverage.tests.append(test)
        reached = self.coverage.reached
        for block in self._kept.intersection(blocks):
            reached[block] = reached.get(block, 0) | bit
