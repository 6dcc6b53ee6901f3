"""Starting programs that may hang, take all memory or write without end."""

import os
import re
import signal
import subprocess
import tempfile
from dataclasses import dataclass

MOST_MEMORY = 12 << 30
MOST_WRITTEN = 1 << 30
LIMITS = ("prlimit", f"--as={MOST_MEMORY}", f"--fsize={MOST_WRITTEN}", "--core=0")
# AddressSanitizer reserves more addresses than there is memory, and sees containers that are made in one source with its
# calls and changed in another one without them.
SANITIZED_LIMITS = ("prlimit", f"--fsize={MOST_WRITTEN}", "--core=0")
SANITIZER_OPTIONS = f"detect_container_overflow=0:hard_rss_limit_mb={MOST_MEMORY >> 21}:abort_on_error=0"
PASSED = re.compile(r"^\[  PASSED  \] (\d+) tests?\.", re.MULTILINE)
FAILED = re.compile(r"^\[  FAILED  \] ([\w/.]+)", re.MULTILINE)
RUNS = re.compile(r"^\[ RUN      \] ([\w/.]+)", re.MULTILINE)


@dataclass(frozen=True)
class Outcome:
    """code is None if the program took too long; output is what it wrote on both streams."""

    code: int
    output: str


def run(command, folder, seconds, environment=None):
    """Runs it in a session of its own, which ends with it; or some time later, if this program is killed meanwhile."""
    process = subprocess.Popen(["timeout", "--signal=KILL", f"{seconds + 60}", *command], cwd=folder, env=environment, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                               stderr=subprocess.STDOUT, start_new_session=True)
    code = None
    try:
        output, _ = process.communicate(timeout=seconds)
        code = process.returncode
    except subprocess.TimeoutExpired:
        output = b""
    finally:
        try:
            os.killpg(process.pid, signal.SIGKILL)
        except ProcessLookupError:
            pass
        if code is None:
            output, _ = process.communicate()
    return Outcome(code, output.decode(errors="replace"))


def _environment(temporary, **more):
    return {**os.environ, "TMPDIR": temporary, "TEST_TMPDIR": temporary, **more}


def run_tests(program, names, folder, seconds, limits=LIMITS, **environment):
    """Runs these tests of a program, up to the first one that fails. folder is where it runs."""
    flags = folder / "flags"
    flags.write_text(f"--gtest_filter={':'.join(names)}\n--gtest_fail_fast\n--gtest_color=no\n", encoding="utf-8")
    command = [*limits, f"--cpu={int(seconds)}:{int(seconds) + 5}", str(program), f"--gtest_flagfile={flags}"]
    # With a short name: what the tests expect to read may name files there.
    with tempfile.TemporaryDirectory(prefix="sonavit.", ignore_cleanup_errors=True) as temporary:
        return run(command, folder, seconds, _environment(temporary, **environment))


def failure(outcome, count):
    """What has failed of count tests: the name of the test, or what happened; None if all have passed."""
    running = (RUNS.findall(outcome.output) or ["the start of the program"])[-1]
    if outcome.code in (None, 128 + signal.SIGXCPU, -signal.SIGXCPU):
        return f"{running} (hangs)"
    if outcome.code == 0:
        passed = PASSED.search(outcome.output)
        if passed is None or int(passed.group(1)) != count:
            return f"{running} (ends early)"
        return None
    failed = FAILED.search(outcome.output)
    if failed:
        return failed.group(1)
    return f"{running} (crashes)"
