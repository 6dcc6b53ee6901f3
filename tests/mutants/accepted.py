"""Survivors that no test can kill, each with the reason: accepted.txt.

    <path of the source>
    @ <number>
    - <a line as it is>
    + <that line, changed>
      <reason, on one line or more>

The line with @ says which of the equal changes of that source is meant, from 1 on; it is there if and only if there are more
than one. An empty line ends an entry; a line that begins with # is a comment.
"""

import re
from dataclasses import dataclass

PLACE = re.compile(r"@ ([1-9][0-9]*)")


@dataclass(frozen=True)
class Entry:
    """diff is that of a Change; place is its number among those of equal diff, or None if there is one alone."""

    path: str
    diff: tuple
    reason: str
    line: int
    place: int = None


def entries_of(text):
    result, lines = [], []
    for number, line in enumerate([*text.splitlines(), ""], 1):
        if line.startswith("#"):
            continue
        if line.strip():
            lines.append((number, line))
        elif lines:
            result.append(_entry(lines))
            lines = []
    return result


def _entry(lines):
    (number, path), texts = lines[0], [line for _, line in lines[1:]]
    place = PLACE.fullmatch(texts[0].rstrip()) if texts else None
    texts = texts[1:] if place else texts
    diff = tuple(line.rstrip() for line in texts if line.startswith(("- ", "+ ")))
    reasons = [line.strip() for line in texts if line.startswith("  ")]
    if len(diff) < 2 or not reasons or len(texts) != len(diff) + len(reasons):
        raise ValueError(f"accepted.txt: line {number}: an entry has a path, a diff and a reason")
    return Entry(path, diff, " ".join(reasons), number, int(place.group(1)) if place else None)


def diff_of(change, text):
    return tuple(line.rstrip() for line in change.diff(text))


class Accepted:
    """The changes that entries mean. texts has the text of each source by its path; changes_of finds the changes of one.
    outdated are the entries that apply to no source any more."""

    def __init__(self, entries, texts, changes_of):
        self.outdated = []
        self._entry_of = {}
        places = {path: _places(changes_of(path, texts[path]), texts[path])
                  for path in {entry.path for entry in entries} & texts.keys()}
        for entry in entries:
            equal = places.get(entry.path, {}).get(entry.diff, [])
            self._add(entry, equal)

    def _add(self, entry, equal):
        if entry.place is None and len(equal) > 1:
            lines = ", ".join(str(change.line) for change in equal)
            raise ValueError(f"accepted.txt: line {entry.line}: {entry.path} has such a change in lines {lines}:"
                             " a line with @ says which one is meant")
        if entry.place is not None and len(equal) == 1:
            raise ValueError(f"accepted.txt: line {entry.line}: {entry.path} has one such change: no line with @ is needed")
        if (entry.place or 1) > len(equal):
            self.outdated.append(entry)
            return
        change = equal[(entry.place or 1) - 1]
        if change.id in self._entry_of:
            raise ValueError(f"accepted.txt: line {entry.line}: there is such an entry in line {self._entry_of[change.id].line}")
        self._entry_of[change.id] = entry

    def find(self, change):
        """The entry of the change, or None."""
        return self._entry_of.get(change.id)


def _places(changes, text):
    """The changes of each diff, in their order in the source."""
    result = {}
    for change in changes:
        result.setdefault(diff_of(change, text), []).append(change)
    return result
