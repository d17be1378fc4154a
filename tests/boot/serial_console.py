"""The emulated machine as it is seen from outside: what comes over its serial console."""

import contextlib
import os
import pathlib
import queue
import re
import signal
import subprocess
import threading
import time
import typing

ROOT = pathlib.Path(__file__).parents[2]
RUN = ROOT / "scripts" / "run-boot-machine"
# Of the machine's whole life, and far above what it takes on a busy machine.
LIFE_LIMIT_SECONDS = 3600
LINES_OF_LOG = 60

RESULT = re.compile(r"@ (?P<how>passed|failed|skipped) (?P<name>\w+) ?(?P<text>.*)")


class Result(typing.NamedTuple):
    how: str  # "passed", "failed" or "skipped"
    text: str  # why it was skipped, or all that the machine showed of a failure


class Machine:
    """A machine that runs checks. Results are read as they come, in the order of the checks."""

    def __init__(self, process, log):
        self.process = process
        self.log = log
        self.results = {}
        self.figures = []
        self.report = []  # What a check that failed shows, until its result comes.
        self.deadline = time.monotonic() + LIFE_LIMIT_SECONDS
        self.lines = queue.Queue()
        threading.Thread(target=self._read, daemon=True).start()

    def _read(self):
        with self.log.open("w", encoding="utf-8") as log:
            for line in self.process.stdout:
                text = line.decode(errors="replace").rstrip("\r\n")
                log.write(text + "\n")
                log.flush()
                self.lines.put(text)
        self.lines.put(None)

    def result(self, name):
        """How a check ended; None when the machine ended, or hung, without a word about it."""
        while name not in self.results and self._take_line():
            pass
        return self.results.get(name)

    def end(self):
        """The exit status of a machine that powers off by itself; None when it does not."""
        while self._take_line():
            pass
        with contextlib.suppress(subprocess.TimeoutExpired):
            return self.process.wait(timeout=max(1, self.deadline - time.monotonic()))

    def _take_line(self):
        try:
            line = self.lines.get(timeout=max(0, self.deadline - time.monotonic()))
        except queue.Empty:
            return False
        if line is None:
            self.lines.put(None)
            return False
        self._sort(line)
        return True

    def _sort(self, line):
        if line.startswith("@| "):
            self.report.append(line[3:])
        elif line.startswith("@ figure "):
            self.figures.append(line.removeprefix("@ figure "))
        elif found := RESULT.fullmatch(line):
            text = "\n".join([*self.report, found["text"]])
            self.results[found["name"]] = Result(found["how"], text.strip())
            self.report = []

    def end_of_log(self):
        lines = self.log.read_text(encoding="utf-8").splitlines()
        return "\n".join([f"--- the end of {self.log}", *lines[-LINES_OF_LOG:]])


@contextlib.contextmanager
def booted(architecture, log):
    """A machine on its way through the checks; it ends with this block at the latest."""
    process = subprocess.Popen(
        ["setpriv", "--pdeathsig", "TERM", RUN, architecture, "systemd.getty_auto=no", "tarnwick.checks"],
        stdin=subprocess.DEVNULL,
        stdout=subprocess.PIPE,
        stderr=subprocess.STDOUT,
    )
    try:
        yield Machine(process, log)
    finally:
        if process.poll() is None:
            process.send_signal(signal.SIGTERM)
        process.wait()


def architecture():
    return os.environ.get("TARNWICK_BOOT_ARCHITECTURE", "arm64")
