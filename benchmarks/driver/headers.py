"""What a source of a user reads that includes the object model and nothing else."""

import re
import subprocess
from collections import Counter
from pathlib import Path

import limits
from table import Table, number

FOLDERS = ("", "foundation", "modules/src/windows/common")
SHOWN = 8
MARK = re.compile(r'^# \d+ "([^"]*)"((?: \d)*)$')
OWN = "libSonavit's own headers"


def shares(text, root):
    """Lines and bytes of a preprocessed source by the system's header that one of ours includes."""
    lines, sizes = Counter(), Counter()
    stack = []
    for line in text.splitlines():
        mark = MARK.match(line)
        if mark:
            name, flags = mark[1], mark[2].split()
            if "1" in flags:
                stack.append(name)
            elif "2" in flags and stack:
                stack.pop()
        elif line.strip():
            system = next((each for each in stack if not Path(each).is_relative_to(root)), None)
            name = Path(system).name if system else OWN
            lines[name] += 1
            sizes[name] += len(line) + 1
    return lines, sizes


def preprocessed(compiler, root):
    includes = [f"-I{root / each}" for each in FOLDERS]
    done = subprocess.run([compiler, "-std=c++17", "-E", *includes, "-x", "c++", "-"], stdout=subprocess.PIPE,
                          input="#include <libSonavit/libsonavit.h>\n", text=True, check=True)
    return done.stdout


def table_of(lines, sizes):
    table = Table("headers", "A source that includes <libSonavit/libsonavit.h>", ["lines", "bytes", "share %", "limit"])
    total = sum(sizes.values())
    table.add("all", [number(sum(lines.values())), number(total), number(100, 1), ""])
    names = [name for name, _ in sizes.most_common(SHOWN)]
    names += [name for name in limits.HEADERS if name not in names]
    for name in names:
        limit = limits.HEADERS.get(name)
        table.add(name if name == OWN else f"<{name}>, and what it includes first",
                  [number(lines[name]), number(sizes[name]), number(100 * sizes[name] / total, 1), number(limit)],
                  lines[name], limit)
    return table


def tables(compiler, root):
    yield table_of(*shares(preprocessed(compiler, root), root))
