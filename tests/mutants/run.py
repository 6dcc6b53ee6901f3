"""One run over some folders of the product."""

import atexit
import hashlib
import shutil
import tempfile
from functools import cached_property
from pathlib import Path

import report
from accepted import Accepted, entries_of
from changes import changes_of
from folders import FOLDERS, LEFT_OUT, ROOT
from recorded import Failure, coverage_of, digest_of
from results import Results
from search import Progress, Tried, search
from trial import Trial

ACCEPTED = ROOT / "tests/mutants/accepted.txt"


def texts_of(folder):
    """The texts of a folder's sources and headers, by their paths."""
    files = [*(ROOT / folder.path).rglob("*.cpp"), *(ROOT / folder.path).rglob("*.h")]
    paths = sorted(str(file.relative_to(ROOT)) for file in files)
    return {path: (ROOT / path).read_text(encoding="utf-8") for path in paths if path not in LEFT_OUT}


def changes_in(texts, build):
    """Of all headers, and of the sources that this system compiles."""
    return [change for path, text in texts.items() if path.endswith(".h") or str(ROOT / path) in build.sources
            for change in changes_of(path, text)]


class Run:
    """work is the folder for what outlives a run."""

    def __init__(self, build, work, jobs, again_survivors=False):
        self._build = build
        self._work = work
        self._jobs = jobs
        self._again_survivors = again_survivors
        self._scratch = None

    @cached_property
    def _accepted(self):
        texts = {path: text for folder in FOLDERS for path, text in texts_of(folder).items()}
        try:
            return Accepted(entries_of(ACCEPTED.read_text(encoding="utf-8")), texts, changes_of)
        except ValueError as error:
            raise Failure(str(error)) from error

    def check_accepted(self):
        """Refuses an accepted.txt with a mistake at once, not after hours."""
        return self._accepted is not None

    def _scratch_folder(self):
        """A folder of this run alone, as another one may be under way in the same build folder."""
        if self._scratch is None:
            self._work.mkdir(parents=True, exist_ok=True)
            self._scratch = Path(tempfile.mkdtemp(prefix="scratch.", dir=self._work))
            atexit.register(shutil.rmtree, self._scratch, ignore_errors=True)
        return self._scratch

    def _results(self, folder):
        programs = [digest_of(self._build.program(name)) for name in folder.tests]
        state = hashlib.sha256(" ".join(programs).encode()).hexdigest()[:16]
        keeps = self._again_survivors
        return Results(self._work / "results" / f"{folder.name}.jsonl", state,
                       lambda verdict: keeps and not verdict.has_survived)

    def folder(self, folder, texts, changes, count, least):
        """The report on the first count of these changes that have a verdict."""
        coverages = {name: coverage_of(self._build, name, self._work / "reached", self._jobs) for name in folder.tests}
        trial = Trial(self._build, coverages, self._scratch_folder())
        results = self._results(folder)
        progress = Progress(folder.name, min(count, len(changes)), lambda line: print(line, flush=True))

        def judge(change, worker):
            text = texts[change.path]
            known = results.of(change, text)
            return Tried(change, known or trial.judged(change, folder.tests, str(worker)), known is None)

        def tell(tried):
            if tried.is_new:
                results.add(tried.change, texts[tried.change.path], tried.verdict)
            progress.tell(tried)

        made = report.FolderReport(folder.name, least)
        for tried in search(changes, count, self._jobs, judge, tell):
            if tried.verdict.counts:
                made.mutants.append(self._mutant(tried, texts[tried.change.path]))
            else:
                made.thrown_away += 1
        return made

    def _mutant(self, tried, text):
        change, verdict = tried.change, tried.verdict
        entry = self._accepted.find(change)
        return report.Mutant(change.id, change.kind, verdict.outcome, verdict.test, tuple(change.diff(text)),
                             entry.reason if entry else "")

    def outdated(self):
        """The entries of accepted.txt that apply to no source any more."""
        return self._accepted.outdated
