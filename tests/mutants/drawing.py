"""The order in which changes are tried: at random, each kind as often as the others while there are enough of it."""

import hashlib

from changes import KINDS


def drawn(changes, seed, name):
    """All changes in an order that depends on them, on seed and on name alone. Those that an edited source still has remain
    in their order."""

    def place(change):
        return hashlib.sha256(f"{seed} {name} {change.mark}".encode()).digest()

    heaps = [sorted((change for change in changes if change.kind == kind), key=place, reverse=True) for kind in KINDS]
    result = []
    while any(heaps):
        for heap in heaps:
            if heap:
                result.append(heap.pop())
    return result
