"""Judges the coverage of the product.

usage: python3 tests/coverage ROOT LISTING WHAT-RAN [PATH...]

LISTING is a file with the output of llvm-cov export. Without a PATH prints the table of all areas and the closing line,
which begins with WHAT-RAN, and fails if an area is below a limit. With them prints what is not covered in these files
and folders, relative to ROOT, and fails if there is no such source."""

import sys
from pathlib import Path

import areas
import listing


def is_below(source: str, path: str) -> bool:
    folder = path.rstrip("/")
    return source == folder or source.startswith(folder + "/")


def print_uncovered(sources, paths) -> int:
    unknown = [path for path in paths if not any(is_below(source.path, path) for source in sources)]
    for path in unknown:
        print(f"coverage: there is no counted source {path}", file=sys.stderr)
    for source in sorted(sources, key=lambda source: source.path):
        if any(is_below(source.path, path) for path in paths):
            for text in source.uncovered():
                print(text)
    return 1 if unknown else 0


def main(arguments) -> int:
    if len(arguments) < 3:
        print(__doc__, file=sys.stderr)
        return 2
    root, path, ran, *paths = arguments
    sources = listing.read(Path(path).read_text(encoding="utf-8"), root)
    if paths:
        return print_uncovered(sources, paths)
    measured = areas.rows(sources)
    print(areas.table(measured))
    print(f"coverage: {ran}, {areas.total(measured)}")
    return 0 if all(row.is_good() for row in measured) else 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
