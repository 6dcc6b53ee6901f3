"""The order in which changes are tried: at random, each kind as often as the others while there are enough of it."""

import random

from changes import KINDS


def drawn(changes, seed, name):
    """All changes in an order that depends on them, on seed and on name alone."""
    source = random.Random(f"{seed} {name}")
    heaps = []
    for kind in KINDS:
        heap = sorted((change for change in changes if change.kind == kind), key=lambda change: change.id)
        source.shuffle(heap)
        heaps.append(heap)
    result = []
    while any(heaps):
        for heap in heaps:
            if heap:
                result.append(heap.pop())
    return result
