"""Runs two builds of the tool on one case, one after the other in the same tree, and says how
their answers differ."""

import os
import re
import shutil
import signal
import subprocess
from dataclasses import dataclass

from build_requests import ROOT

# A run takes milliseconds.
TIME_LIMIT_SECONDS = 20

# What an exception says is the one text that may be left out of a comparison.
EXCEPTION_TEXT = re.compile(rb"(CRITICAL: Cannot get '[^\n]*?': )[^\n]*")

PROPERTY_LIBRARY = os.path.join(os.path.dirname(__file__), "../platform/native/property_stand_in.c")
DATABASE = """[tw]
text='text'
number=-5
byte=byte 0x80
real=0.5
flag=true
list=[1, 2]
blank=' '
empty=''
template='${HOME};$$'
"""


class Surroundings:
    """What every run finds outside its own tree: a library of Android properties, a dconf
    database, and a login library that cannot be loaded, so that nobody is waited for."""

    def __init__(self, directory):
        libraries = os.path.join(directory, "libraries")
        keys = os.path.join(directory, "keys")
        for new in (libraries, keys):
            os.makedirs(new)
        write(os.path.join(libraries, "libsystemd.so.0"), b"")
        compiler = os.environ.get("TARNWICK_CC") or "cc"
        library = os.path.join(libraries, "libandroid-properties.so.1")
        subprocess.run([compiler, "-shared", "-fPIC", "-o", library, PROPERTY_LIBRARY], check=True)
        write(os.path.join(keys, "values"), DATABASE.encode())
        database = os.path.join(directory, "database")
        subprocess.run(["dconf", "compile", database, keys], check=True)
        profile = os.path.join(directory, "profile")
        write(profile, f"file-db:{database}\n".encode())
        # Builds with a sanitizer are told by these what to do about a finding.
        kept = {name: text for name, text in os.environ.items() if name.endswith("SAN_OPTIONS")}
        self.environment = {**kept, "PATH": "/usr/bin:/bin", "LD_LIBRARY_PATH": libraries, "DCONF_PROFILE": profile}


@dataclass
class Answer:
    """What a run left behind. A status below 0 is the number of the signal that ended the run."""

    status: int
    output: bytes
    errors: bytes
    log: bytes | None

    def without_exception_text(self):
        texts = (self.output, self.errors, self.log)
        return Answer(self.status, *(text and EXCEPTION_TEXT.sub(rb"\1", text) for text in texts))


def difference(answers, ignores_exception_text=False):
    """None when the two answers are alike, otherwise both of them as a text."""
    first, second = answers
    if first == second:
        return None
    if ignores_exception_text and first.without_exception_text() == second.without_exception_text():
        return None
    return f"first:  {first}\nsecond: {second}"


class Bench:
    """A directory in which builds run, each case on the same paths. Takes the process's working
    directory, which the paths of the cases are relative to, and its alarm."""

    def __init__(self, directory, surroundings):
        self.root = os.path.join(os.path.realpath(directory), "case")
        self.environment = surroundings.environment
        self.streams = [open_stream(os.path.join(directory, name)) for name in ("output", "errors")]
        os.mkdir(self.root)
        os.chdir(self.root)

    def answers(self, case, builds):
        """What each of the builds says to the case."""
        write_tree(case, self.root)
        return [self.run(case, build) for build in builds]

    def run(self, case, build):
        for stream in self.streams:
            os.truncate(stream, 0)
        if os.path.exists("log"):
            os.unlink("log")
        status = wait(self.start(case, build))
        log = read("log") if os.path.exists("log") else None
        return Answer(status, *map(content_of, self.streams), log)

    def start(self, case, build):
        output, errors = self.streams
        root = os.fsencode(self.root)
        variables = {name: text.replace(ROOT, root) for name, text in case.environment.items()}
        return os.posix_spawn(
            build,
            [b"tarnwick-parse-config", *case.arguments],
            {**self.environment, **variables},
            file_actions=[
                (os.POSIX_SPAWN_OPEN, 0, os.devnull, os.O_RDONLY, 0),
                (os.POSIX_SPAWN_DUP2, output, 1),
                (os.POSIX_SPAWN_DUP2, output if case.one_stream else errors, 2),
            ],
            setpgroup=0,
            setsigdef=[signal.SIGPIPE, signal.SIGXFSZ],  # Python ignores them
        )


def open_stream(path):
    # Commands open it too: what is written goes to its end, whoever writes.
    return os.open(path, os.O_RDWR | os.O_CREAT | os.O_APPEND, 0o600)


def content_of(stream):
    return os.pread(stream, os.fstat(stream).st_size, 0)


def wait(process_id):
    """The exit status. A run without an end is killed with its commands, and so has a status too."""

    def kill(number, frame):
        os.killpg(process_id, signal.SIGKILL)

    signal.signal(signal.SIGALRM, kill)
    signal.alarm(TIME_LIMIT_SECONDS)
    status = os.waitpid(process_id, 0)[1]
    signal.alarm(0)
    return os.waitstatus_to_exitcode(status)


def write_tree(case, root):
    """Makes the directory `root` hold the files and links of the case and nothing else."""
    for entry in os.scandir(root):
        if entry.is_dir(follow_symlinks=False):
            shutil.rmtree(entry.path)
        else:
            os.unlink(entry.path)
    for directory in ("d1", "d2", "d3", "env"):
        os.mkdir(os.path.join(root, directory))
    root = os.fsencode(root)
    for name, content in case.files.items():
        path = os.path.join(root, name)
        if content is None:
            os.mkdir(path)
        else:
            write(path, content)
    for name, target in case.links.items():
        os.symlink(target, os.path.join(root, name))


def write(path, content):
    with open(path, "wb", buffering=0) as file:
        file.write(content)


def read(path):
    with open(path, "rb", buffering=0) as file:
        return file.read()
