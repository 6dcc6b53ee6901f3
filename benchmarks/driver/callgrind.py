"""Runs programs under callgrind and reads its profiles; nothing else does."""

import os
import re
import subprocess
import tempfile
from collections import Counter
from pathlib import Path

# The platform's functions off Windows: the classes of the simulated machine, and the runtime functions that it defines.
SIMULATOR = re.compile(
    r"^((non-virtual|virtual) thunk to )?sim::|[^a-zA-Z_:]sim::|^libOSWindows::ConfigManager::"
    r"|^(CoCreateInstance|CoInitialize(Ex)?|CoUninitialize|CoTaskMem(Alloc|Free)|PropVariantClear)$"
    r"|^(CLSIDFromString|PostMessageW)$|^wave(In|Out)(Message|GetNumDevs)$"
)
# Who the machine calls back.
CLIENT = re.compile(r"(sonavit|plain|direct)::|^((non-virtual|virtual) thunk to )?(SoundCard|VolumeChangeNotification)::")
REFERENCES = re.compile(r"::(AddRef|Release|QueryInterface)\(")

NAME = re.compile(r"\((\d+)\)(?: (.*))?$", re.DOTALL)


def is_simulator(name):
    """Functions of the benchmarks may have the machine among their parameters."""
    return SIMULATOR.search(name) is not None and "bench::" not in name


def is_client(name):
    return CLIENT.search(name) is not None and not is_simulator(name)


class Profile:
    """The instructions of a run, or of a part of it, as callgrind wrote them.

    own             instructions of all but the simulated machine and what it calls; the clients that it calls are in
    total           all of them
    platform_calls  calls from outside of the machine into it, but for those of IUnknown
    references      those of IUnknown: a Counter of "AddRef", "Release" and "QueryInterface"
    """

    def __init__(self, text):
        self.own = 0
        self.total = 0
        self.platform_calls = 0
        self.references = Counter()
        self.trigger = ""
        self.objects = set()
        self._inclusive = Counter()
        self._calls = Counter()
        self._names = {"fn": {}, "ob": {}}
        self._read(iter(text.splitlines()))
        if not self.total:
            raise ValueError("the profile counts no instruction")

    @property
    def platform(self):
        """Instructions of the machine and of what it calls."""
        return self.total - self.own

    def calls_of(self, pattern):
        """How often functions whose names match were called while instructions were counted."""
        return sum(count for name, count in self._calls.items() if re.search(pattern, name))

    def inclusive(self, pattern):
        """Instructions of functions whose names match, and of what they call; calls of themselves are left out."""
        return sum(cost for name, cost in self._inclusive.items() if re.search(pattern, name))

    def _read(self, lines):
        positions = 1
        caller = callee = ""
        for line in lines:
            if line.startswith("fn="):
                caller = self._name("fn", line[3:])
            elif line.startswith("cfn="):
                callee = self._name("fn", line[4:])
            elif line.startswith("calls="):
                self._add_call(caller, callee, int(line[6:].split()[0]), self._cost(next(lines), positions))
            elif line[:1] in "0123456789+-*" and line:
                cost = self._cost(line, positions)
                self.total += cost
                self.own += cost
            elif line.startswith(("ob=", "cob=")):
                self.objects.add(self._name("ob", line.split("=", 1)[1]))
            elif line.startswith("positions:"):
                positions = len(line.split()) - 1
            elif line.startswith("desc: Trigger:"):
                self.trigger = line.split(":", 2)[2].strip()

    def _name(self, kind, text):
        """Names are written once and then by their numbers: "(12) name", "(12)"."""
        found = NAME.match(text)
        if not found:
            return text
        if found[2] is not None:
            self._names[kind][found[1]] = found[2]
        return self._names[kind][found[1]]

    @staticmethod
    def _cost(line, positions):
        """Costs of nothing may be left out."""
        fields = line.split()
        return int(fields[positions]) if len(fields) > positions else 0

    def _add_call(self, caller, callee, count, cost):
        if cost == 0:  # calls are counted where instructions are not, too; those have no cost
            return
        self._calls[callee] += count
        if caller != callee:
            self._inclusive[callee] += cost
        if is_simulator(caller):
            self.own += cost if is_client(callee) else 0
        elif is_simulator(callee):
            self.own -= cost
            operation = REFERENCES.search(callee)
            if operation:
                self.references[operation[1]] += count
            else:
                self.platform_calls += count


def run(program, *arguments, toggles=(), starts=True, environment=None):
    """The profile of a program; of the functions that toggles name alone, if there are any.

    starts is False if the program itself says when counting begins.
    """
    with tempfile.TemporaryDirectory() as folder:
        run_into(Path(folder) / "profile", program, *arguments, toggles=toggles, starts=starts, environment=environment)
        return Profile((Path(folder) / "profile").read_text(errors="replace"))


def dumps(program, *arguments):
    """The profiles that a program asks for, in their order."""
    with tempfile.TemporaryDirectory() as folder:
        output = run_into(Path(folder) / "profile", program, *arguments)
        files = [each for each in Path(folder).iterdir() if re.search(r"\.\d+$", each.name)]
        files.sort(key=lambda each: int(each.suffix[1:]))
        texts = [each.read_text(errors="replace") for each in files]
        return output, [Profile(each) for each in texts if "desc: Trigger: Client Request" in each]


def run_into(profile, program, *arguments, toggles=(), starts=True, environment=None):
    """@return standard output of the program"""
    command = ["valgrind", "-q", "--tool=callgrind", f"--callgrind-out-file={profile}"]
    command += [f"--toggle-collect={each}" for each in toggles]
    if not starts:
        command.append("--instr-atstart=no")
    settings = {**os.environ, "LD_BIND_NOW": "1", **(environment or {})}
    command += [str(program), *map(str, arguments)]
    done = subprocess.run(command, env=settings, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
    if done.returncode != 0:
        raise RuntimeError(f"{' '.join(command)} ended with {done.returncode}\n{done.stderr}")
    return done.stdout
