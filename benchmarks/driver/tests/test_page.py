import unittest

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
