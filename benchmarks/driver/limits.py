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
_RESERVED = "std::vector<unsigned>, reserved"
_HEADER = (
    "count and capacity are in the array's one block, before the elements, and not beside the pointer to it: each append "
    "reads them back from there, 0.3 to 0.5 ns for each element"
)
_DOUBLES = (
    "a new array has room for 8 elements, and doubles by copies; ensureCapacity() makes room, see the row below. " + _HEADER
)
_HASH = (
    "the hash number of such a key is a chain of 36 multiplications, 43 ns of the 72 that a look-up takes. Tables are "
    "written in the order of these numbers, so they stay"
)
_CHECKED = "keys and values are two arrays, and each access to the second one is checked: 0.3 to 0.45 ns for each entry"
FOOTNOTES = {
    ("text: make from 6 units", "std::u16string"): Footnote(
        3.6,
        "a string is as wide as one pointer, so that its units are in a block of their own, whose allocation takes 10 ns; "
        "a std::u16string is as wide as four, and has room for 7 units in itself",
    ),
    ("text: assign twice", "std::u16string"): Footnote(
        1.9,
        "copies of a string share a buffer, and may be used by different threads: four locked changes of counts, which "
        "take 8.1 ns alone",
    ),
    ("array of 8 numbers: append", _RESERVED): Footnote(1.5, _HEADER),
    ("array of 8 numbers: append to room", _RESERVED): Footnote(1.5, _HEADER),
    ("array of 64 numbers: append", _RESERVED): Footnote(3.4, _DOUBLES),
    ("array of 64 numbers: append to room", _RESERVED): Footnote(2.2, _HEADER),
    ("array of 1000 numbers: append", _RESERVED): Footnote(2.5, _DOUBLES),
    ("array of 1000 numbers: append to room", _RESERVED): Footnote(2.0, _HEADER),
    ("table of 8 keys: look up all", "std::unordered_map, word hash"): Footnote(1.9, _HASH),
    ("table of 64 keys: look up all", "std::unordered_map, word hash"): Footnote(1.9, _HASH),
    ("table of 1000 keys: look up all", "std::unordered_map, word hash"): Footnote(1.5, _HASH),
    ("table of 8 keys: walk", "std::vector of pairs"): Footnote(2.0, _CHECKED),
    ("table of 64 keys: walk", "std::vector of pairs"): Footnote(2.5, _CHECKED),
    ("COM handle: move, move back", "a plain pointer class"): Footnote(
        40,
        "a handle has no move: it is copied, so that the object counts 2 more references and as many less, 4 ns each time; "
        "callers rely on the counts",
    ),
    ("disabled trace scope", "an empty loop"): Footnote(
        2.6, "a scope reads the process-wide minimum and compares it, 0.3 ns, and does nothing else"
    ),
    ("disabled trace scope", "spdlog, should_log()"): Footnote(
        1.7, "a message of spdlog asks a logger that is at hand; the scope asks by way of another library, 0.1 ns more"
    ),
}

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
# Disabled trace scopes of a discovery, through the plain client's own instructions.
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
