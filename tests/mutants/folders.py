"""The folders of the product: whose tests have to notice a change there, and how many of the changes."""

from dataclasses import dataclass
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]


@dataclass(frozen=True)
class Folder:
    """path is relative to the root; tests are the executables that are asked, in this order; least is in percent."""

    name: str
    path: str
    tests: tuple
    least: int


FOLDERS = (
    Folder("foundation", "foundation/qor", ("foundation_test",), 95),
    Folder("modules", "modules/src/windows/common", ("library_test", "regression_test"), 95),
    Folder("client", "client", ("client_test", "program_test"), 95),
    Folder("simulator", "simulator", ("machine_test", "simulator_test"), 90),
    Folder("program", "tools/sonavit", ("program_test",), 90),
)

NAMES = tuple(folder.name for folder in FOLDERS)

# The program itself, which the tests start as it was built; they call all that it does in their own process.
LEFT_OUT = ("tools/sonavit/main.cpp",)


def named(names):
    return [folder for folder in FOLDERS if folder.name in names]


def folder_of(path):
    """The folder that has the file, or None."""
    for folder in FOLDERS:
        if path.startswith(folder.path + "/") and path not in LEFT_OUT:
            return folder
    return None
