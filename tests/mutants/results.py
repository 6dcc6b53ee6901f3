"""The verdicts on the changes of a folder, kept on disk, so that a run that was interrupted goes on where it was."""

import hashlib
import json

from trial import Verdict


class Results:
    """One line of JSON for each verdict. state says what the verdicts depend on besides the changed source: those of
    another state are not used, unless is_kept is true for them."""

    def __init__(self, file, state, is_kept=lambda verdict: False):
        self._file = file
        self._state = state
        self._verdicts = {}
        if file.exists():
            lines = file.read_text(encoding="utf-8").split("\n")
            if lines.pop():  # a run ended while it wrote this one
                file.write_text("".join(f"{line}\n" for line in lines), encoding="utf-8")
            for line in lines:
                entry = json.loads(line)
                verdict = Verdict(entry["outcome"], entry["test"])
                if entry["state"] == state or is_kept(verdict):
                    self._verdicts[entry["id"], entry["source"]] = verdict
                else:
                    self._verdicts.pop((entry["id"], entry["source"]), None)

    @staticmethod
    def _digest(change, text):
        return hashlib.sha256(f"{change.replacement}\0{text}".encode()).hexdigest()[:16]

    def of(self, change, text):
        """The verdict, or None."""
        return self._verdicts.get((change.id, self._digest(change, text)))

    def add(self, change, text, verdict):
        digest = self._digest(change, text)
        self._verdicts[change.id, digest] = verdict
        entry = {"id": change.id, "source": digest, "state": self._state, "outcome": verdict.outcome, "test": verdict.test}
        self._file.parent.mkdir(parents=True, exist_ok=True)
        with open(self._file, "a", encoding="utf-8") as out:
            out.write(json.dumps(entry) + "\n")
