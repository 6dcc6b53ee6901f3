import re
import unittest
from pathlib import Path

import library
import page

TEXT = """# Run times

<!-- bench: one -->
```
old
```

Between them.

<!-- bench: two -->

```text
```
"""


class PageUpdated(unittest.TestCase):
    def test_replaces_the_content_of_a_block(self):
        text = page.updated(TEXT, {"one": "new\nlines\n", "two": "x\n"})

        self.assertEqual(TEXT.replace("old\n", "new\nlines\n").replace("```text\n", "```text\nx\n"), text)

    def test_blocks_of_other_tables_stay(self):
        self.assertEqual(TEXT, page.updated(TEXT, {"three": "new\n"}))

    def test_a_second_update_with_the_same_tables_changes_nothing(self):
        once = page.updated(TEXT, {"one": "a\\1 b\n"})

        self.assertEqual(once, page.updated(once, {"one": "a\\1 b\n"}))

    def test_names_the_marks(self):
        self.assertEqual(["one", "two"], page.marks(TEXT))


class PageOfThisProject(unittest.TestCase):
    def test_has_a_block_for_each_table(self):
        driver = Path(__file__).resolve().parents[1]
        sources = "".join(each.read_text() for each in driver.glob("*.py"))
        keys = set(re.findall(r'(?:\bTable|table_of)\("([\w-]+)"', sources))
        keys |= {f"growth-{each.key}" for each in library.GROWTHS} | {"host"}

        marks = page.marks((driver.parents[1] / "docs/performance.md").read_text(encoding="utf-8"))

        self.assertEqual(keys, set(marks))
        self.assertEqual(len(marks), len(set(marks)))
