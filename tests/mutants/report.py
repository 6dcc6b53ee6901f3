"""What a run has found, as text and as data."""

from dataclasses import dataclass, field

from trial import KILLED, UNREACHED


@dataclass(frozen=True)
class Mutant:
    """A change that has a verdict. diff is that of the change; reason is why it is accepted, or empty."""

    id: str
    kind: str
    outcome: str
    test: str
    diff: tuple
    reason: str = ""


@dataclass
class FolderReport:
    """least is how many of a hundred have to be killed, or None if the folder is not judged; thrown_away are the changes
    that cannot be compiled or that make no difference."""

    name: str
    least: int
    mutants: list = field(default_factory=list)
    thrown_away: int = 0

    @property
    def killed(self):
        return [mutant for mutant in self.mutants if mutant.outcome == KILLED]

    @property
    def survivors(self):
        return [mutant for mutant in self.mutants if mutant.outcome != KILLED and not mutant.reason]

    @property
    def accepted(self):
        return [mutant for mutant in self.mutants if mutant.outcome != KILLED and mutant.reason]

    @property
    def wrongly_accepted(self):
        return [mutant for mutant in self.killed if mutant.reason]

    @property
    def count(self):
        """Those that a test has to kill."""
        return len(self.killed) + len(self.survivors)

    @property
    def is_good(self):
        """Not without a verdict: the compiler or the tests may not run."""
        return not self.wrongly_accepted and bool(self.mutants) and 100 * len(self.killed) >= (self.least or 0) * self.count

    def line(self):
        if not self.mutants:
            return f"{self.name}: no mistake has a verdict; {self.thrown_away} thrown away  NOT ENOUGH"
        share = 100 * len(self.killed) / self.count if self.count else 100
        text = f"{self.name}: {len(self.killed)} of {self.count} killed, {share:.1f} %"
        if self.least is not None:
            text += f" (at least {self.least} %)"
        if self.accepted:
            text += f", {len(self.accepted)} accepted"
        return text + f"; {self.thrown_away} thrown away" + ("" if self.is_good else "  NOT ENOUGH")


def mutant_text(mutant):
    what = "no test reaches it" if mutant.outcome == UNREACHED else f"{mutant.test} pass"
    return "\n".join([f"{mutant.id}  ({what})", *(f"    {line}" for line in mutant.diff)])


def text_of(folders, outdated):
    """Everything that needs a look, then a line for each folder."""
    lines = []
    for folder in folders:
        lines += [mutant_text(mutant) for mutant in folder.survivors]
        lines += [f"{mutant.id} is accepted, but {mutant.test} kills it" for mutant in folder.wrongly_accepted]
    lines += [f"accepted.txt: line {entry.line}: {entry.path} has no such change any more" for entry in outdated]
    return "\n".join(lines + [folder.line() for folder in folders]) + "\n"


def closing_line(folders, outdated):
    killed = sum(len(folder.killed) for folder in folders)
    count = sum(folder.count for folder in folders)
    parts = ", ".join(f"{folder.name} {len(folder.killed)}/{folder.count}" for folder in folders)
    accepted = sum(len(folder.accepted) for folder in folders)
    line = f"mutants: {killed:,} of {count:,} killed ({parts}), {count - killed:,} survived, {accepted:,} accepted with a reason"
    return line + (f", {len(outdated):,} of the accepted ones outdated" if outdated else "")


def is_good(folders, outdated):
    return not outdated and all(folder.is_good for folder in folders)


def data_of(folders, outdated, seed):
    return {
        "seed": seed,
        "folders": [
            {"name": folder.name, "least": folder.least, "killed": len(folder.killed), "count": folder.count,
             "thrownAway": folder.thrown_away, "mutants": [vars(mutant) for mutant in folder.mutants]}
            for folder in folders
        ],
        "outdated": [vars(entry) for entry in outdated],
    }
