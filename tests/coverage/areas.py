"""The parts of the product, their limits, and the table that compares the two."""

from dataclasses import dataclass
from typing import List

from listing import Source


@dataclass(frozen=True)
class Area:
    name: str
    folder: str
    lines: float  # percent, at least
    branches: float


AREAS = (
    Area("foundation", "foundation/", 95, 90),
    Area("modules", "modules/", 95, 90),
    Area("client", "client/", 95, 90),
    Area("simulator", "simulator/", 95, 80),
    Area("program", "tools/sonavit/", 95, 80),
)


@dataclass
class Share:
    """How much of something is covered."""

    covered: int = 0
    total: int = 0

    def percent(self) -> float:
        return 100.0 * self.covered / self.total if self.total else 0.0

    def reaches(self, limit: float) -> bool:
        """Without anything to cover nothing is reached: then something is wrong with the measurement."""
        return self.total > 0 and 100 * self.covered >= limit * self.total

    def __str__(self) -> str:
        hundredths = 10000 * self.covered // self.total if self.total else 0  # cut off, so that 100.00 means all
        return f"{self.covered:,} of {self.total:,} ({hundredths // 100}.{hundredths % 100:02} %)"


@dataclass
class Row:
    area: Area
    lines: Share
    branches: Share

    def is_good(self) -> bool:
        return self.lines.reaches(self.area.lines) and self.branches.reaches(self.area.branches)


def measure(sources: List[Source], area: Area) -> Row:
    row = Row(area, Share(), Share())
    for source in sources:
        if source.path.startswith(area.folder):
            row.lines.covered += source.lines_covered()
            row.lines.total += len(source.lines)
            row.branches.covered += source.branches_covered()
            row.branches.total += source.branch_count()
    return row


def rows(sources: List[Source]) -> List[Row]:
    return [measure(sources, area) for area in AREAS]


def table(measured: List[Row]) -> str:
    form = "{:12} {:>27} {:>9} {:>27} {:>9}  {}"
    text = [form.format("", "lines", "at least", "branches", "at least", "").rstrip()]
    for row in measured:
        verdict = "good" if row.is_good() else "TOO LOW"
        text.append(form.format(row.area.name, str(row.lines), f"{row.area.lines} %", str(row.branches),
                                f"{row.area.branches} %", verdict))
    return "\n".join(text)


def total(measured: List[Row]) -> str:
    """The closing line without its beginning."""
    lines = Share(sum(row.lines.covered for row in measured), sum(row.lines.total for row in measured))
    branches = Share(sum(row.branches.covered for row in measured), sum(row.branches.total for row in measured))
    low = sum(not row.is_good() for row in measured)
    return f"{lines} lines, {branches} branches, {low} of {len(measured)} areas below their limits"
