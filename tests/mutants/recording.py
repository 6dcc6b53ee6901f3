"""What a test program writes while it records which blocks of code each test reaches; see recorder/listener.cpp."""

from array import array
from dataclasses import dataclass


@dataclass(frozen=True)
class Record:
    """blocks are numbers of blocks, or in the first record of a file their addresses."""

    name: str
    seconds: float
    has_passed: bool
    source: str
    blocks: array


def records(data):
    """The records of a file, of which the last one may be cut off, if the program has crashed."""
    position = 0
    while (end := data.find(b"\n", position)) >= 0:
        name, microseconds, result, count, source = data[position:end].decode().split(" ", 4)
        blocks = array("Q" if name == "places" else "I")
        size = int(count) * blocks.itemsize
        if end + 1 + size > len(data):
            return
        blocks.frombytes(data[end + 1:end + 1 + size])
        yield Record(name, int(microseconds) / 1e6, result == "passed", source, blocks)
        position = end + 1 + size
