"""The order in which the tests that reach a change are asked."""

from pathlib import PurePosixPath

# Seconds of tests in the first batches, and in each of the others.
BATCHES = (0.3, 3.0, 20.0)


def is_near(test, path):
    """Whether the source of a test mirrors the file at path: tests/client/x_test.cpp and client/x.cpp."""
    return PurePosixPath(test.source).name.startswith(PurePosixPath(path).stem)


def batches(tests, path):
    """Lists of tests, each to be run by one process: those of the mirrored source first, then the quickest ones."""
    ordered = sorted(tests, key=lambda test: (not is_near(test, path), test.seconds, test.name))
    result, total = [[]], 0.0
    for test in ordered:
        if result[-1] and total + test.seconds > BATCHES[min(len(result), len(BATCHES)) - 1]:
            result.append([])
            total = 0.0
        result[-1].append(test)
        total += test.seconds
    return [batch for batch in result if batch]
