"""Survivors that no test can kill, each with the reason: accepted.txt.

    <path of the source>
    - <a line as it is>
    + <that line, changed>
      <reason, on one line or more>

An empty line ends an entry; a line that begins with # is a comment.
"""

from dataclasses import dataclass


@dataclass(frozen=True)
class Entry:
    """diff is that of a Change."""

    path: str
    diff: tuple
    reason: str
    line: int


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
    number, path = lines[0]
    diff = tuple(line.rstrip() for _, line in lines[1:] if line.startswith(("- ", "+ ")))
    reason = " ".join(line.strip() for _, line in lines[1:] if line.startswith("  "))
    if len(diff) < 2 or not reason or len(lines) != 1 + len(diff) + sum(line.startswith("  ") for _, line in lines[1:]):
        raise ValueError(f"accepted.txt: line {number}: an entry has a path, a diff and a reason")
    return Entry(path, diff, reason, number)


def diff_of(change, text):
    return tuple(line.rstrip() for line in change.diff(text))


def find(entries, change, text):
    """The entry of the change, or None."""
    of_path = [entry for entry in entries if entry.path == change.path]
    if not of_path:
        return None
    diff = diff_of(change, text)
    return next((entry for entry in of_path if entry.diff == diff), None)


def outdated(entries, texts, changes_of):
    """The entries that apply to no source any more. texts has the text of each source by its path."""
    diffs = {}
    for path in {entry.path for entry in entries} & texts.keys():
        diffs[path] = {diff_of(change, texts[path]) for change in changes_of(path, texts[path])}
    return [entry for entry in entries if entry.diff not in diffs.get(entry.path, ())]
