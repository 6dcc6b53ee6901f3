"""Tables with limits: one for each group of rows, as text and as data."""

from dataclasses import dataclass, field


@dataclass
class Row:
    """name and cells are shown as they are. value is judged by limit, unless that is None."""

    name: str
    cells: list
    value: float = None
    limit: float = None
    footnote: str = None

    @property
    def is_beyond(self):
        return self.limit is not None and self.value > self.limit


@dataclass
class Table:
    """heads are the titles of the cells; those of texts end with "<" and are set to the left."""

    key: str
    title: str
    heads: list
    rows: list = field(default_factory=list)

    def __post_init__(self):
        if len(set(self.heads)) != len(self.heads):
            raise ValueError(f"{self.title} has two heads of one name")

    def add(self, name, cells, value=None, limit=None, footnote=None):
        row = Row(name, list(cells), value, limit, footnote)
        if len(row.cells) != len(self.heads):
            raise ValueError(f"{self.title}, {name}: {len(row.cells)} cells for {len(self.heads)} heads")
        self.rows.append(row)
        return row

    def judge(self, name, value, limit, decimals=0):
        """A row of a value and its limit, for a table with these two heads."""
        return self.add(name, [number(value, decimals), number(limit, decimals)], value, limit)

    @property
    def beyond(self):
        return [row for row in self.rows if row.is_beyond]

    def text(self):
        heads = [self.title] + [each.rstrip("<") for each in self.heads]
        lines = [[row.name, *row.cells] for row in self.rows]
        widths = [max(len(line[column]) for line in [heads, *lines]) for column in range(len(heads))]
        is_left = [True] + [each.endswith("<") for each in self.heads]
        notes = []
        shown = [self._line(heads, widths, is_left)]
        for row, line in zip(self.rows, lines):
            marks = "  MORE" if row.is_beyond else ""
            if row.footnote:
                if row.footnote not in notes:
                    notes.append(row.footnote)
                marks += f"  [{notes.index(row.footnote) + 1}]"
            shown.append(self._line(line, widths, is_left) + marks)
        shown += [f"[{index + 1}] {note}" for index, note in enumerate(notes)]
        return "\n".join(each.rstrip() for each in shown) + "\n"

    @staticmethod
    def _line(cells, widths, is_left):
        return "  ".join(cell.ljust(width) if left else cell.rjust(width)
                         for cell, width, left in zip(cells, widths, is_left))

    def data(self):
        """For the file that programs read."""
        rows = [
            {
                "name": row.name,
                **dict(zip((each.rstrip("<") for each in self.heads), row.cells)),
                "value": row.value,
                "limit": row.limit,
                "isBeyond": row.is_beyond,
                "footnote": row.footnote,
            }
            for row in self.rows
        ]
        return {"key": self.key, "title": self.title, "rows": rows}


def number(value, decimals=0):
    """A number with separators between thousands; "-" for None."""
    return "-" if value is None else f"{value:,.{decimals}f}"
