"""The object model against a plain client, and how the work of both grows with the machine."""

import re
import subprocess
from dataclasses import dataclass

import callgrind
import limits
from table import Table, number

SIDES = ("library", "direct")
REGISTRATION = ["SoundCard::registerConnectors(qor::Array<AudioDevice>*"]
EVENT = ["SoundCard::SoundCardDeviceUpdater::OnDeviceStateChanged*", "direct::*OnDeviceStateChanged*"]

# Work and machine: see sonavit-cost, benchmarks/cost/main.cpp
ROWS = {
    "discovery of crowded, 120 endpoints": "discovery crowded",
    "discovery of 1,000 endpoints, 10 on each card": "discovery cards:100",
    "discovery of 1 adapter with 200 connectors": "discovery connectors:200",
    "discovery of 1 card of 5 adapters": "discovery adapters:5",
    "discovery of 1 card of 20 adapters": "discovery adapters:20",
    "discovery of 1 card of 80 adapters": "discovery adapters:80",
    "state lists of crowded": "lists crowded",
    "all hardware controls of crowded": "controls crowded",
    "controls of all endpoints of 1 card of 25": "controls endpoints:25",
    "controls of all endpoints of 1 card of 50": "controls endpoints:50",
    "controls of all endpoints of 1 card of 100": "controls endpoints:100",
    "an event, 50 cards": "event cards:50",
}

WHOLE_LISTS = ("discovery crowded", "discovery adapters:5", "discovery adapters:20", "discovery adapters:80")


@dataclass(frozen=True)
class Growth:
    """One plot: work on machines of a kind; unit is how many of what the plot counts each of the sizes stands for."""

    key: str
    title: str
    axis: str
    work: str
    kind: str
    sizes: tuple
    unit: int = 1

    @property
    def operations(self):
        return [f"{self.work} {self.kind}:{size}" for size in self.sizes]


GROWTHS = (
    Growth("endpoints", "Discovery, 10 endpoints on each card", "endpoints", "discovery", "cards", (5, 10, 25, 50, 100), 10),
    Growth("connectors", "Discovery of 1 adapter", "connectors", "discovery", "connectors", (25, 50, 100, 150, 200)),
    Growth("adapters", "Discovery of 1 card", "adapters", "discovery", "adapters", (5, 10, 20, 40, 60, 80)),
    Growth("cards", "An event", "cards", "event", "cards", (5, 10, 25, 50, 100)),
    Growth("controls", "Controls of all endpoints of 1 card", "endpoints", "controls", "endpoints", (10, 25, 50, 75, 100)),
)


@dataclass(frozen=True)
class Cost:
    """own and platform are instructions; calls, those of the platform but for references; the others are counts."""

    own: int
    platform: int
    calls: int
    addref: int
    release: int
    query: int
    allocations: int
    bytes: int

    def text(self):
        return " ".join(f"{name}={value}" for name, value in vars(self).items())

    @property
    def per_call(self):
        return self.own / self.calls


def profile_of(programs, side, operation, environment=None, toggles=None):
    work, machine = operation.split()
    toggles = toggles or (EVENT if work == "event" else ["bench::measure*"])
    return callgrind.run(programs / "sonavit-cost", side, work, machine, toggles=toggles, starts=False,
                         environment=environment)


def allocated(text):
    """Allocations and bytes from a line "allocations=1 bytes=20"."""
    found = re.search(r"allocations=(\d+) bytes=(\d+)", text)
    if not found:
        raise ValueError(f'"{text.strip()}" names no allocations')
    return int(found[1]), int(found[2])


def cost_of(programs, side, operation):
    profile = profile_of(programs, side, operation)
    done = subprocess.run([str(programs / "sonavit-allocations"), side, *operation.split()], stdout=subprocess.PIPE,
                          text=True, check=True)
    references = profile.references
    return Cost(profile.own, profile.platform, profile.platform_calls, references["AddRef"], references["Release"],
                references["QueryInterface"], *allocated(done.stdout))


class Costs:
    """Measures each operation once, some at a time."""

    def __init__(self, programs, pool):
        self._programs = programs
        self._pool = pool
        self._costs = {}

    def measure(self, operations):
        missing = [(side, each) for each in dict.fromkeys(operations) for side in SIDES
                   if (side, each) not in self._costs]
        measured = self._pool.map(lambda question: cost_of(self._programs, *question), missing)
        self._costs.update(zip(missing, measured))

    def library(self, operation):
        return self._costs["library", operation]

    def plain(self, operation):
        return self._costs["direct", operation]


def ratios(costs):
    table = Table("library", "Own instructions", ["library", "plain", "ratio", "limit", "calls", "platform alone"])
    for name, operation in ROWS.items():
        ours, theirs = costs.library(operation), costs.plain(operation)
        ratio = ours.own / theirs.own
        limit = limits.RATIOS.get(operation)
        cells = [number(ours.own), number(theirs.own), number(ratio, 2), number(limit, 2), number(ours.calls),
                 number(ours.platform)]
        table.add(name, cells, ratio, limit)
    return table


def memory(costs):
    table = Table("library-memory", "Allocations", ["library", "plain", "limit", "library bytes", "plain bytes"])
    for name, operation in ROWS.items():
        ours, theirs = costs.library(operation), costs.plain(operation)
        limit = limits.ALLOCATIONS_OF_CROWDED if operation == "discovery crowded" else None
        cells = [number(ours.allocations), number(theirs.allocations), number(limit), number(ours.bytes),
                 number(theirs.bytes)]
        table.add(name, cells, ours.allocations, limit)
    return table


def references(costs):
    table = Table("library-references", "References",
                  ["AddRef", "plain AddRef", "Release", "plain Release", "QueryInterface", "plain QueryInterface"])
    for name, operation in ROWS.items():
        ours, theirs = costs.library(operation), costs.plain(operation)
        table.add(name, [number(each) for each in (ours.addref, theirs.addref, ours.release, theirs.release, ours.query,
                                                   theirs.query)])
    return table


def per_call(costs):
    """Own instructions for each platform call of the library, at the last size through those at the first."""
    table = Table("library-per-call", "Own instructions for each platform call",
                  ["first", "second", "third", "growth", "limit"])

    def add(name, operations, limit):
        each = [costs.library(operation).per_call for operation in operations]
        growth = each[-1] / each[0]
        table.add(name, [*(number(one) for one in each), number(growth, 2), number(limit, 2)], growth, limit)

    add("discovery of 1 card of 5, 20 and 80 adapters", [f"discovery adapters:{size}" for size in (5, 20, 80)],
        limits.PER_CALL_OF_ADAPTERS)
    add("controls of all endpoints of 1 card of 25, 50 and 100", [f"controls endpoints:{size}" for size in (25, 50, 100)],
        limits.PER_CALL_OF_CONTROLS)
    return table


def whole_lists(programs, costs):
    """The library registers the connectors of all devices again for each new one. So does a plain client here."""
    table = Table("library-registration", "Registration of whole lists",
                  ["library", "plain", "plain, whole lists", "registration, % of own", "ratio", "limit"])
    names = {operation: name for name, operation in ROWS.items()}
    for operation in WHOLE_LISTS:
        ours, plain = costs.library(operation).own, costs.plain(operation).own
        whole = profile_of(programs, "direct-wholelist", operation).own
        limit = limits.RATIOS_WITH_WHOLE_LISTS.get(operation)
        registration = profile_of(programs, "library", operation, toggles=REGISTRATION).own
        cells = [number(ours), number(plain), number(whole), number(100 * registration / ours, 1),
                 number(ours / whole, 2), number(limit, 2)]
        table.add(names[operation], cells, ours / whole, limit)
    return table


def traces(programs, costs):
    """The same program with a library that is compiled without trace scopes."""
    folder = programs.parent / "untraced"
    profile = profile_of(programs, "library", "discovery crowded", {"LD_LIBRARY_PATH": str(folder)})
    if not any(str(folder) in each for each in profile.objects):
        raise RuntimeError(f"the library in {folder} was not loaded")
    return table_of_traces(costs.library("discovery crowded").own, profile.own, costs.plain("discovery crowded").own)


def table_of_traces(traced, untraced, plain):
    """Judged by the plain client's own instructions: the library's become fewer with everything else that does."""
    table = Table("library-traces", "Disabled trace scopes",
                  ["own", "without", "% of own", "plain client's own", "% of that", "limit %"])
    scopes = traced - untraced
    table.add("discovery of crowded",
              [number(traced), number(untraced), number(100 * scopes / traced, 2), number(plain),
               number(100 * scopes / plain, 2), number(100 * limits.TRACES, 2)], scopes / plain, limits.TRACES)
    return table


def discovered(text):
    """Endpoints, cards, calls and microseconds."""
    found = re.fullmatch(r"(\d+) endpoints (\d+) cards (\d+) calls (\d+) us\n", text)
    if not found:
        raise ValueError(f'"{text.strip()}" is no discovery')
    return [int(each) for each in found.groups()]


def times(programs):
    """Of the library with the simulated machine."""
    table = Table("library-time", "Discovery, its result destroyed", ["endpoints", "cards", "calls", "us"])
    for machine in ("desktop", "crowded"):
        done = subprocess.run([str(programs / "sonavit-discovery"), machine], stdout=subprocess.PIPE, text=True,
                              check=True)
        table.add(machine, [number(each) for each in discovered(done.stdout)])
    return table


def tables(programs, costs):
    yield times(programs)
    costs.measure(ROWS.values())
    yield ratios(costs)
    yield memory(costs)
    yield references(costs)
    yield per_call(costs)
    yield whole_lists(programs, costs)
    yield traces(programs, costs)
