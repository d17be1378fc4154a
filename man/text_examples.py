"""Finds the examples in a manual page or a Markdown document and runs them.

Every literal block is announced by a comment before it, "; WORD REST" in a manual page and
"<!-- WORD REST -->" in Markdown:

    example: TITLE    what follows, up to the next such line, shares one fresh directory
    file PATH         the block is the content of a file
    program NAME      the block is a C++ program, compiled with the library
    transcript        the block is what a terminal shows: "$ " before a command, "> " before its
                      further lines, and after it the output, both streams in one
    idiom TITLE       the block is a piece of a script, to be copied: see `run_idiom`
    bash idiom TITLE  the same, for bash alone
    shown             the block is for reading only
"""

import dataclasses
import os
import re
import shlex
import stat
import subprocess

from support.tool import CONFIG_TOOL, config_command

FENCE = "```"
DIRECTIVE = re.compile(r"(?:; |<!-- )(example|file|program|transcript|(?:bash )?idiom|shown)\b:?(?: (.*?))?(?: -->)?$")
IDIOM_KINDS = {"idiom", "bash idiom"}
NOT_IN_EXAMPLES = {"shown", *IDIOM_KINDS}
TIME_LIMIT_SECONDS = 120


@dataclasses.dataclass
class Block:
    kind: str
    name: str
    text: str
    line: int


@dataclasses.dataclass
class Example:
    title: str
    blocks: list


def literal_text(path, lines):
    """The text that a reader sees: a manual page's source doubles its backslashes."""
    text = "".join(line + "\n" for line in lines)
    return re.sub(r"\\(.)", r"\1", text) if path.suffix == ".scd" else text


def blocks_of(path):
    """All directives with their blocks, in order; an `example` directive has no text."""
    directive = None
    opened_at = 0
    body = []
    for number, line in enumerate(path.read_text().splitlines(), start=1):
        if opened_at:
            if line == FENCE:
                if directive is None:
                    raise ValueError(f"{path.name}:{opened_at}: a block that nothing announces")
                yield Block(*directive, literal_text(path, body), opened_at)
                directive, opened_at, body = None, 0, []
            else:
                body.append(line)
        elif line.startswith(FENCE):
            opened_at = number
        elif match := DIRECTIVE.match(line):
            kind, name = match.group(1), match.group(2) or ""
            if kind == "example":
                yield Block(kind, name, "", number)
            else:
                directive = (kind, name)


def examples_in(path):
    """The examples of a document, each with its blocks."""
    examples = []
    for block in blocks_of(path):
        if block.kind == "example":
            examples.append(Example(block.name, []))
        elif block.kind not in NOT_IN_EXAMPLES:
            if not examples:
                raise ValueError(f"{path.name}:{block.line}: a block before the first example")
            examples[-1].blocks.append(block)
    return examples


def idioms_in(path):
    """The blocks of a document that are pieces of scripts."""
    return [block for block in blocks_of(path) if block.kind in IDIOM_KINDS]


# Prints what the real tool prints: values, the usage text, nothing. Like a command of a template it
# takes whatever its standard input has for it.
PRETENDED_TOOL = """#!/bin/sh
cat > /dev/null
echo asked >> "$ASKED"
case $STATUS in 0) echo 'one;two' ;; 1) echo usage ;; esac
exit "$STATUS"
"""


# What the real tarnwick-config reads in the place of the default directory, by the exit status that a
# request for any of its keys would have.
CONFIGURATIONS = {
    0: "[Config]\nHostname=one\nDataRoot=/data\n[Network]\nIPV4Address=10.8.0.2\n",
    1: "no key line\n",
    2: "[Config]\nArch=arm64\n",
}


@dataclasses.dataclass
class IdiomRun:
    went_on: bool
    status: int
    output: str
    requests: int


def run_idiom(idiom, shell, tool_status, directory):
    """Runs a piece of a script with a pretended tool that always ends with `tool_status`.

    tarnwick-config prints what is evaluated, so it is the real one, over a configuration to match.
    """
    write_script(directory / "bin" / "tarnwick-parse-config", PRETENDED_TOOL)
    if "tarnwick-config" in idiom.text:
        write_text(directory / "conf.d" / "10.conf", CONFIGURATIONS[tool_status])
        command = shlex.join(config_command("--config", "conf.d", "--user-id", "0"))
        script = f'#!/bin/sh\necho asked >> "$ASKED"\nexec {command} "$@"\n'
        write_script(directory / "bin" / "tarnwick-config", script)
    asked = directory / "asked"
    asked.touch()
    result = subprocess.run(
        [*shell, "-c", f"{idiom.text}\necho went-on"],
        cwd=directory,
        env={
            "PATH": f"{directory}/bin:{os.environ['PATH']}",
            "STATUS": str(tool_status),
            "ASKED": str(asked),
        },
        input=b"",
        stdout=subprocess.PIPE,
        timeout=TIME_LIMIT_SECONDS,
        check=False,
    )
    output = result.stdout.decode()
    requests = len(asked.read_text().splitlines())
    return IdiomRun(output.endswith("went-on\n"), result.returncode, output, requests)


def steps_of(transcript):
    """Splits a transcript into (command, expected output) pairs."""
    steps = []
    for line in transcript.splitlines():
        if line.startswith("$ "):
            steps.append((line[2:], ""))
        elif line.startswith("> ") and steps and not steps[-1][1]:
            steps[-1] = (steps[-1][0] + "\n" + line[2:], "")
        else:
            command, output = steps[-1]
            steps[-1] = (command, output + line + "\n")
    return steps


def run_transcript(transcript, directory, environment):
    """Runs all commands of a transcript in one shell; returns it as the terminal showed it."""
    steps = steps_of(transcript)
    mark = "--end-of-one-answer--"
    script = "".join(
        # The subshell hands the command's exit status on, for a "$?" in the next command.
        f"{command}\nstatus=$?; echo '{mark}'; (exit $status)\n"
        for command, _ in steps
    )
    result = subprocess.run(
        ["/bin/sh", "-c", script],
        cwd=directory,
        env=environment,
        stdin=subprocess.DEVNULL,
        stdout=subprocess.PIPE,
        stderr=subprocess.STDOUT,
        timeout=TIME_LIMIT_SECONDS,
        check=False,
    )
    answers = result.stdout.decode("utf-8", "backslashreplace").split(mark + "\n")
    shown = ""
    for (command, _), answer in zip(steps, answers):
        shown += "$ " + command.replace("\n", "\n> ") + "\n" + answer
    return shown


def compile_program(name, text, directory, build):
    """Compiles a C++ program with the headers and the static library of a build tree."""
    source = directory / f"{name}.cpp"
    source.write_text(text)
    program = directory / "bin" / name
    program.parent.mkdir(exist_ok=True)
    subprocess.run(
        [
            *shlex.split(os.environ.get("CXX", "c++")),
            "-std=c++20",
            *shlex.split(os.environ.get("CXXFLAGS", "-Wall -Wextra -Werror")),
            f"-I{build}/include",
            str(source),
            f"{build}/src/libtarnwick-parser.a",
            "-ldl",
            "-lpthread",
            "-o",
            str(program),
        ],
        timeout=TIME_LIMIT_SECONDS,
        check=True,
    )


def write_text(path, text):
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_text(text)


def write_script(path, text):
    write_text(path, text)
    path.chmod(path.stat().st_mode | stat.S_IXUSR)


def environment_for(directory, tool_command, build):
    """The programs are found by their names, and this product's variables are not set."""
    commands = {"tarnwick-parse-config": tool_command}
    if CONFIG_TOOL:
        commands["tarnwick-config"] = config_command()
    for name, command in commands.items():
        # exec -a keeps the name that the usage text shows.
        write_script(directory / "bin" / name, f"#!/bin/bash\n{wrapper_line(name, command)}\n")
    kept = {name: text for name, text in os.environ.items() if not name.startswith("TARNWICK_")}
    return {
        **kept,
        "PATH": f"{directory}/bin:{build}/examples/generator:{os.environ['PATH']}",
        "PWD": str(directory),
        "XDG_RUNTIME_DIR": str(directory / "bin"),
    }


def wrapper_line(name, command):
    *emulator, tool = command
    if not emulator:
        return f'exec -a {name} {shlex.quote(tool)} "$@"'
    # "-0" is the emulator's own way to give the name.
    return f'exec {shlex.join([*emulator, "-0", name, tool])} "$@"'


def run_example(example, directory, tool_command, build=None):
    """Runs one example in `directory`; returns (line, written, seen) of its transcripts."""
    environment = environment_for(directory, tool_command, build)
    results = []
    for block in example.blocks:
        if block.kind == "file":
            write_text(directory / block.name, block.text)
        elif block.kind == "program":
            compile_program(block.name, block.text, directory, build)
        else:
            seen = run_transcript(block.text, directory, environment)
            results.append((block.line, block.text, seen))
    return results
