"""What was measured where, and by what."""

import os
import platform
import re
import subprocess
from pathlib import Path


def first_line(*command):
    done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
    return done.stdout.splitlines()[0] if done.stdout else "unknown"


def processor():
    for line in Path("/proc/cpuinfo").read_text().splitlines():
        if line.startswith("model name"):
            return line.split(":", 1)[1].strip()
    return platform.machine()


def cached(build, name):
    found = re.search(rf"^{name}(?::\w+)?=(.*)$", (build / "CMakeCache.txt").read_text(), re.MULTILINE)
    return found[1] if found else ""


def description(build):
    """@return names and values, all texts"""
    kind = cached(build, "CMAKE_BUILD_TYPE")
    flags = f'{cached(build, "CMAKE_CXX_FLAGS")} {cached(build, f"CMAKE_CXX_FLAGS_{kind.upper()}")}'.strip()
    load = " ".join(f"{each:.2f}" for each in os.getloadavg())
    return {
        "processor": f"{os.cpu_count()} x {processor()}",
        "load": load,
        "compiler": f'{first_line(cached(build, "CMAKE_CXX_COMPILER") or "c++", "--version")}, {kind} ({flags})',
        "C library": " ".join(platform.libc_ver()),
        "valgrind": first_line("valgrind", "--version"),
    }
