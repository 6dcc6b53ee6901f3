"""The client layer: its platform calls and its own instructions."""

import subprocess

import callgrind
import limits
from table import Table, number

SNAPSHOT = ["bench::measureSnapshot*", "sonavit::watching::Watcher::start*"]
# glibc puts small freed blocks aside, and sorts all of them in one go now and then: 25,000 instructions, which would belong
# to whatever asks for memory at that moment.
STEADY_HEAP = {"GLIBC_TUNABLES": "glibc.malloc.mxfast=0"}
REFRESH = ["bench::measureRefresh*", "sonavit::watching::Watcher::refresh*", "sonavit::watching::Watcher::step*"]
COLUMNS = ["snapshot", "controls", "graph", "volume", "addition", "paths"]
COUNTED = {
    "allocations": r"^(malloc|calloc|realloc|operator new)",
    "locks": r"^pthread_mutex_lock",
    "wake-ups": r"^std::condition_variable::notify",
}


def lines_of(program, what):
    done = subprocess.run([str(program), what], stdout=subprocess.PIPE, text=True)
    if done.returncode != 0:
        raise RuntimeError(f"{program} {what} ended with {done.returncode}\n{done.stdout}")
    return [line.split("\t") for line in done.stdout.splitlines()]


def calls(program):
    table = Table("client-calls", 'Platform calls on the machine "crowded"', ["calls", "limit"])
    for work, count in lines_of(program, "calls"):
        table.judge(work, int(count), limits.CLIENT_CALLS.get(work, limits.CLIENT_REFRESH))
    return table


def growth_of(sizes):
    """How much faster something grows from the second size to the third than from the first to the second; 0 if it does
    not grow."""
    first, second, third = sizes
    return 0 if third == second else (third - second) / (second - first) if second != first else float("inf")


def growth_of_calls(program):
    table = Table("client-growth", "Calls grow", COLUMNS)
    lines = lines_of(program, "growth")
    for start in range(0, len(lines), 3):
        sizes = [[int(each) for each in line[1:]] for line in lines[start:start + 3]]
        for line, size in zip(lines[start:], sizes):
            counts = dict(zip(COLUMNS, size))
            endpoints, active = size[len(COLUMNS):]
            # the one that is most of its limit is judged
            used = max(counts["volume"] / limits.CLIENT_REFRESH,
                       counts["addition"] / limits.client_addition(endpoints, active))
            table.add(line[0], [number(counts[each]) for each in COLUMNS], used, 1)
        growth = [growth_of([size[column] for size in sizes]) for column in range(len(COLUMNS))]
        # signal paths grow with the square of the connectors of an adapter
        judged = max(each for name, each in zip(COLUMNS, growth) if name != "paths")
        table.add("    growth of growth", [number(each, 2) for each in growth], judged, limits.CLIENT_GROWTH_OF_CALLS)
    return table


def notifications(program):
    table = Table("client-notification", "Notification on the platform's thread", ["count", "limit"])
    for kind in ("volume", "property"):
        for noted in (159, 119, 0):
            profile = callgrind.run(program, kind, "-", noted, toggles=["bench::measure*Notification*"])
            table.judge(f"{kind}, {noted} others noted: instructions", profile.own,
                        limits.CLIENT_NOTIFICATION["instructions"])
        for name, pattern in COUNTED.items():
            table.judge(f"{kind}: {name}", profile.calls_of(pattern), limits.CLIENT_NOTIFICATION[name])
    return table


def own_of(program, work, machine, subscribers=0):
    toggles = {"snapshot": SNAPSHOT, "plain": ["bench::measurePlain*"], "refresh": REFRESH}[work]
    return callgrind.run(program, work, machine, subscribers, toggles=toggles, environment=STEADY_HEAP).own


def instructions(program, pool):
    table = Table("client-instructions", 'Own instructions on the machine "crowded"', ["count", "ratio", "limit"])
    snapshot, plain, refresh = pool.map(lambda work: own_of(program, work, "crowded"), ("snapshot", "plain", "refresh"))
    table.add("plain client", [number(plain), "", ""])
    table.add("first snapshot, through the plain client",
              [number(snapshot), number(snapshot / plain, 3), number(limits.CLIENT_SNAPSHOT, 3)],
              snapshot / plain, limits.CLIENT_SNAPSHOT)
    table.add("refresh that changes one volume, through the first snapshot",
              [number(refresh), number(refresh / snapshot, 3), number(limits.CLIENT_CHANGE_OF_VOLUME, 3)],
              refresh / snapshot, limits.CLIENT_CHANGE_OF_VOLUME)
    return table


def growth_of_instructions(program, pool):
    table = Table("client-growth-of-instructions", "Own instructions grow", ["first", "second", "third", "of growth"])
    works = [(work, kind, (100, 200, 400)) for work in ("snapshot", "refresh")
             for kind in ("endpoints", "adapters", "connectors")] + [("refresh", "subscribers", (200, 400, 800))]

    def own_at(question):
        work, kind, size = question
        machine, subscribers = ("crowded", size) if kind == "subscribers" else (f"{kind}:{size}", 0)
        return own_of(program, work, machine, subscribers)

    counts = iter(list(pool.map(own_at, [(work, kind, size) for work, kind, sizes in works for size in sizes])))
    for work, kind, sizes in works:
        owns = [next(counts) for _ in sizes]
        growth = growth_of(owns)
        table.add(f"{work}, {kind}: {', '.join(map(str, sizes))}", [*map(number, owns), number(growth, 2)], growth,
                  limits.CLIENT_GROWTH)
    return table


def comparison(program):
    """@exception RuntimeError with the differences, if the plain client reads or calls anything else"""
    (line,) = lines_of(program, "compare")
    table = Table("client-comparison", "A client without the layer", ["calls"])
    table.add("reads the same values with the same calls in the same order", [number(int(line[0]))])
    return table


def counted_tables(programs):
    """Those without callgrind."""
    program = programs / "sonavit-clientcost"
    yield calls(program)
    yield growth_of_calls(program)
    yield comparison(program)


def tables(programs, pool):
    program = programs / "sonavit-clientcost"
    yield from counted_tables(programs)
    yield notifications(program)
    yield instructions(program, pool)
    yield growth_of_instructions(program, pool)
