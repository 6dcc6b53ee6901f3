"""Compares what a library printed and left with what the machine holds.

    compare.py LIBRARY MACHINE-FILE list|play RESULTS

RESULTS.output, .errors, .result, .journal and .census are what a program of the library printed, its exit code, and what
the machine recorded. Prints one line and, for each difference, a line below it. Exits with 1 if there are differences.

Expected is what the machine's file says: each active endpoint once, by its name; the default; the rate and the channels of
the mix format. The lists name no other endpoint: that is how they show states.
"""

import json
import re
import sys
from collections import Counter, namedtuple
from pathlib import Path

FULL_NAME = "{A45C254E-DF1C-4EFD-8020-67D146A850E0}/14"

Device = namedtuple("Device", "flow name default rate channels sample", defaults=(None, None, None, None))


class Machine:
    """The active endpoints of a machine file, as the libraries are to list them."""

    def __init__(self, path):
        self.name = path.stem
        self.data = json.loads(path.read_text(encoding="utf-8"))
        self.active = [each for each in self.data.get("endpoints", []) if self.is_active(each)]

    @staticmethod
    def is_active(endpoint):
        return endpoint.get("installed", True) and endpoint.get("state", "active") == "active"

    @staticmethod
    def full_name(endpoint):
        properties = endpoint.get("properties", {})
        if FULL_NAME in properties:
            return properties[FULL_NAME]
        return f'{properties.get("deviceDescription")} ({properties.get("friendlyName")})'

    @staticmethod
    def mix_format(endpoint):
        """Rate, channels and sample ("32f" is floating point); None if the machine names no readable format."""
        text = endpoint.get("mixFormat")
        sample = text.split("/")[0] if text else "32f"
        if text is None:
            device_format = endpoint.get("properties", {}).get("deviceFormat")
            text = device_format.get("format") if isinstance(device_format, dict) else None
        found = re.match(r"\d+f?/(\d+)/(\d+)$", text or "")
        return (int(found[1]), int(found[2]), sample) if found else (None, None, None)

    def defaults(self, flow, role):
        """The names that the default may have; empty if the machine has none."""
        of_flow = [each for each in self.data.get("endpoints", []) if each["flow"] == flow]
        if not any(role in each.get("defaultFor", []) for each in of_flow):
            return set()
        named = [each for each in of_flow if role in each.get("defaultFor", []) and self.is_active(each)]
        return {self.full_name(each) for each in named or [each for each in of_flow if self.is_active(each)]}

    def devices(self):
        return [Device(each["flow"], self.full_name(each), None, *self.mix_format(each)) for each in self.active]


def portaudio(text):
    for block in re.split(r"^-+ device #\d+$", text, flags=re.M)[1:]:
        inputs, outputs = map(int, re.search(r"Max inputs = (\d+), Max outputs = (\d+)", block).groups())
        rate = float(re.search(r"Default sample rate +=\s+([\d.]+)", block)[1])
        yield Device("capture" if inputs else "render", re.search(r"^Name += (.*)$", block, flags=re.M)[1],
                     re.search(r"\[ Default (Input|Output)", block) is not None, int(rate), inputs or outputs)


def rtaudio(text):
    for block in re.split(r"^Device Name = ", text, flags=re.M)[1:]:
        inputs = int(re.search(r"^Input Channels = (\d+)", block, flags=re.M)[1])
        outputs = int(re.search(r"^Output Channels = (\d+)", block, flags=re.M)[1])
        rate = int(re.search(r"Preferred sample rate = (\d+)", block)[1])
        yield Device("capture" if inputs else "render", block.splitlines()[0],
                     re.search(r"This is the default (input|output) device", block) is not None, rate, inputs or outputs,
                     sample_of(re.search(r"data formats:\n  (.*)", block)))


def libsoundio(text):
    """Each endpoint is listed twice: in shared and in exclusive mode ("raw"); the shared one has the mix format."""
    flow = None
    for block in re.split(r"\n\n+", text):
        if block.startswith("---"):
            flow = "capture" if "Input" in block else "render"
            continue
        heading = re.match(r"(.*?)( \(default\))?( \(raw\))?\n", block + "\n")
        if "  id: " not in block or heading[3]:
            continue
        rate = re.search(r"current sample rate: (\d+)", block)
        layout = re.search(r"current layout: (.*)", block)
        yield Device(flow, heading[1], heading[2] is not None, int(rate[1]) if rate else None,
                     channels_of(layout[1]) if layout else None, sample_of(re.search(r"current format: (.*)", block)))


def sample_of(found):
    """The sample of a mix format in words such as "32-bit float" or "signed 16-bit LE"."""
    if not found:
        return None
    bits = re.search(r"(\d+)-bit", found[1])[1]
    return bits + "f" if "float" in found[1] else bits


def channels_of(layout):
    """The channels of a layout, by the names that libsoundio prints."""
    known = {"Mono": 1, "Stereo": 2, "Quad": 4, "4.0": 4, "5.1": 6, "5.1 (side)": 6, "5.1 (back)": 6, "7.1": 8, "7.1 (wide)": 8}
    return known.get(layout, len(layout.split(", ")))


def openal_soft(text):
    """The names of the playback and capture devices; OpenAL has no formats and no states."""
    flow = None
    for line in text.splitlines():
        if line.startswith("Available"):
            flow = "capture" if "capture" in line else "render"
        elif line.startswith("Default"):
            flow = None
        elif flow and line.startswith("    "):
            yield Device(flow, line.strip().removeprefix("OpenAL Soft on "))


READERS = {"portaudio19": portaudio, "rtaudio": rtaudio, "libsoundio": libsoundio, "openal-soft": openal_soft}
ROLES = {"portaudio19": "multimedia", "rtaudio": "console", "libsoundio": "console", "openal-soft": "multimedia"}


def list_differences(library, machine, output):
    found = list(READERS[library](output))
    expected = machine.devices()
    with_formats = library != "openal-soft"
    with_samples = library in ("rtaudio", "libsoundio")

    def key(device):
        return ((device.flow, device.name) + ((device.rate, device.channels) if with_formats else ())
                + ((device.sample,) if with_samples else ()))

    missing = Counter(map(key, expected)) - Counter(map(key, found))
    surplus = Counter(map(key, found)) - Counter(map(key, expected))
    yield from (f"not listed: {' '.join(map(str, each))}" for each in missing.elements())
    yield from (f"listed, but not on the machine: {' '.join(map(str, each))}" for each in surplus.elements())
    if with_formats:
        for flow in ("render", "capture"):
            names = {each.name for each in found if each.flow == flow and each.default}
            allowed = machine.defaults(flow, ROLES[library])
            if not names <= allowed or bool(names) != bool(allowed):
                yield f"default of {flow}: {sorted(names)}, expected one of {sorted(allowed)}"


# The calls that a stream of the library begins and ends with. RtAudio 5.2 stops a stream by releasing it.
STEPS = {"portaudio19": ("IAudioClient::Initialize", "IAudioClient::Start", "IAudioClient::Stop"),
         "rtaudio": ("IAudioClient3::InitializeSharedAudioStream", "IAudioClient::Start")}

# What a library leaves on every system, by its own fault: a pattern of the census, and the reason.
LEAKS = {("rtaudio", "play"): (r"references on IAudioClient [^;]*: 1(; task memory of IAudioClient::GetMixFormat [^;]*: 1)?",
                               "RtAudio keeps a stream's IAudioClient3, and does not wait for the thread that frees its format")}


# Lists that end early by the library's own fault, on a machine whose properties are wrong on purpose.
ENDS = {("portaudio19", "broken"): "it reads a device format that is a string as a block of bytes, and crashes",
        ("rtaudio", "broken"): "it ends with an exception at the first endpoint whose mix format cannot be read",
        ("libsoundio", "broken"): "it reads a device format that is not there, and crashes"}


def play_differences(library, journal):
    for operation in STEPS[library]:
        if not re.search(rf"{operation}\(.* -> 0x00000000", journal):
            yield f"{operation} has not succeeded"
    if len(re.findall(r"IAudioRenderClient::ReleaseBuffer\(.* -> 0x00000000", journal)) < 10:
        yield "hardly anything was written to the stream"


def leak(library, kind, census):
    """The reason of a leak that is the library's own; None if nothing is left, or something else."""
    pattern, reason = LEAKS.get((library, kind), (None, None))
    return reason if pattern and re.fullmatch(pattern, census) else None


def report_end(library, machine, is_complete):
    """The line about a list that ends early; it is a difference if the list does not. A crash writes no census, while
    Wine sometimes gives it the exit code 0."""
    what = f"{len(machine.active)} endpoints"
    print(f"{library:12} {machine.name:15} {what:14} "
          + ("DIFFERENT\n    the list does not end early" if is_complete else "ends: " + ENDS[library, machine.name]))
    return 1 if is_complete else 0


def main(library, machine_file, kind, results):
    def read(ending):
        path = Path(f"{results}.{ending}")
        return path.read_text(encoding="utf-8", errors="replace").replace("\r\n", "\n") if path.exists() else ""

    machine = Machine(Path(machine_file))
    if kind == "list" and (library, machine.name) in ENDS:
        return report_end(library, machine, int(read("result") or -1) == 0 and read("census") != "")
    differences = []
    if int(read("result") or -1) != 0:
        differences.append(f"the program ended with {read('result').strip()}: {read('errors').strip()[-300:]}")
    output = read("errors") if library == "libsoundio" else read("output")
    try:
        differences += list_differences(library, machine, output) if kind == "list" else play_differences(library, read("journal"))
    except (TypeError, ValueError, KeyError) as error:
        differences.append(f"its output cannot be read: {error!r}")
    census = read("census").strip().replace("\n", "; ")
    own = leak(library, kind, census)
    if census != "nothing" and not own:
        differences.append("left on the machine: " + (census or "no census was written"))
    what = f"{len(machine.active)} endpoints" if kind == "list" else "a stream"
    print(f"{library:12} {machine.name:15} {what:14} {'as expected' if not differences else 'DIFFERENT'}"
          + (f", but {own}" if own else ""))
    for difference in differences:
        print(f"    {difference}")
    return 1 if differences else 0


sys.exit(main(*sys.argv[1:]))
