"""All limits, and the sentences about the rows of the foundation that may take more."""

from dataclasses import dataclass


@dataclass(frozen=True)
class Footnote:
    """A row that takes more than the others may, up to limit: text says with a number which promise costs the rest."""

    limit: float
    text: str


# Ours through theirs, while the process has many threads.
FOUNDATION = 1.1

# By name of the row and of what it is compared with. ./bench prints the numbers of the rows.
FOOTNOTES = {}

# The object model: own instructions of the library through those of the plain client, by operation and machine.
RATIOS = {
    "discovery crowded": 1.0,
    "lists crowded": 1.5,
    "controls crowded": 1.4,
    "event cards:50": 1.1,
}
# The same through a plain client that registers whole lists of connectors, as the library has to.
RATIOS_WITH_WHOLE_LISTS = {"discovery adapters:80": 1.0}
ALLOCATIONS_OF_CROWDED = 45_000
# Own instructions for each platform call, on a card of 80 adapters through those on a card of 5.
PER_CALL_OF_ADAPTERS = 1.2
# Own instructions for each platform call, controls of all endpoints of a card of 100 through those of a card of 25.
PER_CALL_OF_CONTROLS = 1.2
# Own instructions of a discovery that are those of disabled trace scopes.
TRACES = 0.01

# The client layer: platform calls on the machine "crowded".
CLIENT_CALLS = {
    "first snapshot, registrations included": 4200,
    "controls of each endpoint": 8000,
    "refresh after nothing": 0,
    "refresh after a removal": 312,
    "refresh after an addition": 312,
}
CLIENT_REFRESH = 60  # all other refreshes
CLIENT_GROWTH_OF_CALLS = 2.01  # sizes double, so that 2 is linear


def client_addition(endpoints, active):
    """Of the calls of a refresh after an addition: the numbers of active ones are asked for with two calls each."""
    return int(2.1 * endpoints + CLIENT_REFRESH) + 2 * active


CLIENT_NOTIFICATION = {"instructions": 1500, "allocations": 1, "locks": 1, "wake-ups": 1}
CLIENT_SNAPSHOT = 1.0  # through the plain client
CLIENT_CHANGE_OF_VOLUME = 0.05  # through the first snapshot
CLIENT_GROWTH = 2.15  # the allocator is not quite linear; n log n would be 2.23

# The program: instructions of "sonavit list --machine".
PROGRAM = {"desktop": 23_300_000, "crowded": 40_000_000, "crowded --via model": 284_000_000}
MACHINE_FILE = 1000.0  # milliseconds to read a large machine file and to begin its simulation
# Four times the machine through the machine. What the C library does when it frees many blocks comes in steps, so that
# what is linear is 3.5 to 4.5; something quadratic comes near 16.
MACHINE_FILE_GROWTH = 5.0

# Lines of standard headers that a source of a user reads for nothing.
HEADERS = {"functional": 0}
