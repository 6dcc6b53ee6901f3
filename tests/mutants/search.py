"""Trying changes, several at a time, until as many as are wanted have a verdict."""

import time
from concurrent.futures import FIRST_COMPLETED, ThreadPoolExecutor, wait
from dataclasses import dataclass


@dataclass(frozen=True)
class Tried:
    """is_new says whether the verdict was not known before."""

    change: object
    verdict: object
    is_new: bool


def search(changes, count, jobs, judge, tell=lambda tried: None):
    """Judges the changes in their order up to the first count of them whose verdict counts. Which these are does not
    depend on how long each takes.

    @param judge: called with a change and a number below jobs that no other call has at that time, returns a Tried
    @param tell: called with each Tried, in the order in which they end"""
    waiting = list(reversed(changes))
    running, found, free = {}, [], list(range(jobs))
    with ThreadPoolExecutor(jobs) as pool:
        counted = 0
        while True:
            while waiting and free and counted + len(running) < count:
                change, worker = waiting.pop(), free.pop()
                running[pool.submit(judge, change, worker)] = worker
            if not running:
                return sorted(found, key=lambda tried: changes.index(tried.change))
            for future in wait(running, return_when=FIRST_COMPLETED).done:
                worker = running.pop(future)
                free.append(worker)
                tried = future.result()
                found.append(tried)
                counted += tried.verdict.counts
                tell(tried)


class Progress:
    """Says how far a search has come, and how long the rest will take: a line after the first ten verdicts that were not
    known before, and then every some seconds."""

    def __init__(self, name, count, say=print, clock=time.monotonic, seconds=60):
        self._name, self._count, self._say, self._clock, self._seconds = name, count, say, clock, seconds
        self._done = self._new = self._survivors = 0
        self._start = clock()
        self._said = None

    def tell(self, tried):
        self._done += tried.verdict.counts
        self._new += tried.is_new
        self._survivors += tried.verdict.has_survived
        now = self._clock()
        if self._new < 10 or (self._said is not None and now - self._said < self._seconds):
            return
        self._said = now
        each = (now - self._start) / self._new
        left = max(self._count - self._done, 0) * each
        self._say(f"{self._name}: {self._done} of {self._count}, {self._survivors} have survived; "
                  f"{each:.1f} s for each, {left / 60:.0f} min left")
