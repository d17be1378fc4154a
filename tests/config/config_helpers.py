"""What the tests of tarnwick-config share."""

import functools
import json
import pathlib
import re

import jsonschema
import pytest

ROOT = pathlib.Path(__file__).parents[2]


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


@functools.cache
def schema_of(command):
    """The validator of the schema that is installed for the JSON of a command."""
    schema = json.loads((ROOT / "schema" / f"{command}.schema.json").read_text())
    jsonschema.Draft202012Validator.check_schema(schema)
    return jsonschema.Draft202012Validator(schema)


def valid_json(command, output):
    """What `command --format=json` printed, read by a strict reader and held against its schema."""
    assert output.isascii()
    value = json.loads(output, parse_constant=pytest.fail)
    schema_of(command).validate(value)
    return value
