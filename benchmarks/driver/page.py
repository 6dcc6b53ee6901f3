"""docs/performance.md shows tables and plots of one run: each block after a mark is a table.

    <!-- bench: KEY -->
"""

import re

BLOCK = re.compile(r"(<!-- bench: ([\w-]+) -->\n\n?```[a-z]*\n)(.*?)(^```$)", re.MULTILINE | re.DOTALL)


def marks(text):
    return [found[2] for found in BLOCK.finditer(text)]


def updated(text, tables):
    """@param tables texts by key; other blocks stay"""
    return BLOCK.sub(lambda found: found[1] + tables.get(found[2], found[3]) + found[4], text)
