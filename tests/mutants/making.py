"""Making the programs with a change: compiling what it must, and linking."""

import json
import re
import threading
from dataclasses import dataclass
from pathlib import Path

from build import compiled_again, linked_again, without_precompiled
from folders import ROOT
from running import LIMITS, run

SECONDS = 300

PLAIN = ("-O0",)
OPTIMIZED = ("-O2",)
SANITIZED = ("-fsanitize=address,undefined", "-fno-sanitize-recover=all")


@dataclass(frozen=True)
class Attempt:
    """A change, and the folder for its files, which no other thread uses. overlay is a file that makes clang read the changed
    text in place of the source; None for the source as it is."""

    path: str
    folder: Path
    overlay: Path = None

    @property
    def original(self):
        return Attempt(self.path, self.folder)


def attempt(change, folder):
    folder.mkdir(parents=True, exist_ok=True)
    changed, overlay = folder / "changed", folder / "overlay.json"
    changed.write_text(change.applied((ROOT / change.path).read_text(encoding="utf-8")), encoding="utf-8")
    entry = {"type": "file", "name": str(ROOT / change.path), "external-contents": str(changed)}
    overlay.write_text(json.dumps({"version": 0, "use-external-names": False, "roots": [entry]}), encoding="utf-8")
    return Attempt(change.path, folder, overlay)


class Maker:
    """Several threads may use it."""

    def __init__(self, build):
        self._build = build
        self._originals = {}
        self._lock = threading.Lock()

    def compiled(self, item, attempt, options=PLAIN):
        """The object that the attempt makes of this one, or None if it cannot be compiled."""
        kind = f"{'changed' if attempt.overlay else 'original'}.{options[0].strip('-').split('=')[0]}"
        output = attempt.folder / (re.sub(r"\W", "_", item)[-150:] + f".{kind}.o")
        command = compiled_again(self._build.command_of(item), output, options)
        if options != PLAIN or self._build.reads_precompiled(item, str(ROOT / attempt.path)):
            command = without_precompiled(command)
        if attempt.overlay:
            command += ["-ivfsoverlay", str(attempt.overlay)]
        outcome = run([*LIMITS, *command], self._build.folder, SECONDS)
        return output if outcome.code == 0 else None

    def program(self, plan, attempt, options=PLAIN):
        """The program of the plan, or None if it cannot be made."""
        objects = [self.compiled(item, attempt, options) for item in plan.objects]
        if None in objects:
            return None
        program = attempt.folder / plan.program
        command = linked_again(self._build.link_command(plan.program), plan.objects, objects, program, options)
        return program if run(command, self._build.folder, SECONDS).code == 0 else None

    def is_equal(self, item, attempt):
        """Whether an optimizing compiler makes the same of the changed source as of the original one."""
        changed = self.compiled(item, attempt, OPTIMIZED)
        with self._lock:
            original = self._originals.get(item)
        if original is None:
            output = self.compiled(item, attempt.original, OPTIMIZED)
            original = output.read_bytes() if output else b""
            with self._lock:
                self._originals[item] = original
        return changed is not None and changed.read_bytes() == original
