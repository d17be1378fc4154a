"""`files` lists what is read, in order, and marks what looks meant."""

import json
import os

FILES = {"b.conf": "", "10-a.conf": "", "9-a.conf": "", "c.conf.bak": "", ".d.conf": "", "notes": "", "sub/x.conf": ""}


def test_files_are_listed_in_the_order_of_reading_and_others_marked(run):
    result = run(FILES, "files", "conf.d")
    assert result.stdout.decode().splitlines() == [
        "conf.d/.d.conf\tnot read: its name begins with a dot",
        "conf.d/10-a.conf",
        "conf.d/9-a.conf",
        "conf.d/b.conf",
        "conf.d/c.conf.bak\tnot read: its name does not end in '.conf'",
    ]
    assert (result.returncode, result.stderr) == (0, b"")


def test_paths_are_listed_one_after_the_other(run):
    result = run({"d1/a.conf": "", "d2/a.conf": "", "single": ""}, "files", "conf.d/d2", "conf.d/single", "conf.d/d1")
    assert result.stdout == b"conf.d/d2/a.conf\nconf.d/single\nconf.d/d1/a.conf\n"


def test_raw_names_end_with_nul(run):
    result = run({"a\n\x1b\u00e9.conf": "", "b.ini": ""}, "files", "-z", "conf.d")
    assert result.stdout == "conf.d/a\n\x1b\u00e9.conf\0".encode()
    assert run({}, "files", "conf.d").stdout.splitlines()[0] == "conf.d/a\\x0A\\x1B\u00e9.conf".encode()


def test_json_lists_them_as_objects(run):
    report = json.loads(run({"a.conf": "", "b.ini": ""}, "files", "--format=json", "conf.d").stdout)
    assert report == {
        "files": [
            {"path": "conf.d/a.conf", "isRead": True, "reason": None},
            {"path": "conf.d/b.ini", "isRead": False, "reason": "its name does not end in '.conf'"},
        ]
    }
    assert json.loads(run({}, "files", "--format=json", "nowhere").stdout) == {"files": []}


def test_a_missing_path_is_status_2(run):
    result = run({"a.conf": ""}, "files", "nowhere", "conf.d")
    assert (result.returncode, result.stdout) == (2, b"conf.d/a.conf\n")
    assert result.stderr == b"tarnwick-config: nowhere: No such file or directory\n"


def test_names_are_the_keys_that_are_set_each_once(run):
    first = "Above=1\n[Own]\nA=1\nA=2\nB \n-b=\n[Config\nLost=1\n[Config]\nArch=$\n"
    result = run({"a.conf": first, "b.conf": "[Own]\nA=3\nLast", "b.ini": "[No]\nA=1\n"}, "files", "--names", "conf.d")
    assert result.stdout.decode().splitlines() == ["/Above", "Own/A", "Own/-b", "Config/Arch"]
    assert (result.returncode, result.stderr) == (0, b"")


def test_names_of_a_file_that_cannot_be_read_are_missed_and_it_is_said_why(run, directory):
    (directory / "a.conf").mkdir()
    os.mkfifo(directory / "b.conf")
    os.mkfifo(directory / "pipe")
    result = run({"c.conf": "[Own]\nA=1\n"}, "files", "--names", "conf.d", "conf.d/pipe")
    assert (result.returncode, result.stdout) == (2, b"Own/A\n")
    assert result.stderr.decode().splitlines() == [
        "tarnwick-config: conf.d/a.conf/: it is a directory",
        "tarnwick-config: conf.d/b.conf: it is no regular file",
        "tarnwick-config: conf.d/pipe: it is no regular file",
    ]
    assert run({}, "files", "conf.d").returncode == 0


def test_names_come_from_the_standard_input_too_and_end_with_nul(run, tmp_path):
    (tmp_path / "input").write_text("[Own]\nA b=1")
    with open(tmp_path / "input", "rb") as file:
        assert run({}, "files", "--names", "-z", "-", stdin=file).stdout == b"Own/A b\0"


def test_names_are_looked_for_in_nothing_but_regular_files(run, directory):
    os.mkfifo(directory / "a.conf")
    result = run({"b.conf": "[Own]\nA=1\n"}, "files", "--names", "conf.d")
    assert (result.returncode, result.stdout) == (2, b"Own/A\n")
