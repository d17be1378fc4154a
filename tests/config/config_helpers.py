"""What the tests of tarnwick-config share."""

import re


def faults_of(output):
    """The faults of a report in the form gcc, as "a.conf:LINE:COLUMN severity id"."""
    faults = []
    for line in output.decode().splitlines():
        found = re.fullmatch(r"(?:conf\.d/)?(.*?):(\d+):(\d+): (error|warning): .* \[([a-z0-9-]+)\]", line)
        assert found, line
        path, number, column, severity, name = found.groups()
        faults.append(f"{path}:{number}:{column} {severity} {name}")
    return faults


def in_config(*lines):
    """The text of a file with these lines in the group Config, which is line 1."""
    return "".join(line + "\n" for line in ("[Config]", *lines))
