"""Each kind of fault: where it is found, how bad it is, and a near thing that is fine."""

import pathlib

import pytest
from config_helpers import in_config
from support.tool import run_config

ROOT = pathlib.Path(__file__).parents[2]
RING = in_config("DataRoot=a${config:Config/StoragePath}", "StoragePath=${config:Config/DataRoot}b")


def references(count):
    return in_config("Arch=x", "DataRoot=" + "${config:Config/Arch}" * count)


# Each row: id, files at fault, all that is found, files that are fine.
ROWS = [
    ("unexpected-line", " K=1\n", ["a.conf:1:1 error unexpected-line"], "# K=1\n"),
    (
        "unexpected-line",
        in_config("\u201cArch\u201d=1"),
        ["a.conf:2:1 error unexpected-line"],
        in_config("Arch=\u201c1\u201d"),
    ),
    ("group-not-closed", "[Config\n", ["a.conf:1:8 error group-not-closed"], "[Config]\n"),
    ("group-not-closed", "[Config] # x\n", ["a.conf:1:9 error group-not-closed"], "[Config]\n# x\n"),
    ("group-characters", "[Con/fig]\n", ["a.conf:1:5 error group-characters"], "[Config]\n"),
    ("key-without-value", in_config("Arch 1"), ["a.conf:2:5 error key-without-value"], in_config("Arch=1")),
    ("key-characters", in_config("Ar/ch=1"), ["a.conf:2:3 error key-characters"], in_config("Arch=/1")),
    ("template-dollar", in_config("Arch=a$ b"), ["a.conf:2:7 error template-dollar"], in_config("Arch=a$$ b")),
    ("template-dollar", in_config("Arch=a;b$"), ["a.conf:2:9 error template-dollar"], in_config("Arch=a;b$$")),
    (
        "template-not-closed",
        in_config("Arch=${HOME"),
        ["a.conf:2:12 error template-not-closed"],
        in_config("Arch=${HOME}"),
    ),
    ("unknown-variable", in_config("Arch=a${HOM}"), ["a.conf:2:7 error unknown-variable"], in_config("Arch=a${HOME}")),
    (
        "unknown-source",
        in_config("Arch=${confg:A/B}"),
        ["a.conf:2:6 error unknown-source"],
        in_config("Arch=${env:A/B}"),
    ),
    (
        "reference-form",
        in_config("Arch=${config:A}"),
        ["a.conf:2:6 error reference-form"],
        in_config("Hostname=x", "Arch=${config:Config/Hostname/}"),
    ),
    (
        "envfile-form",
        in_config("Arch=${envfile:a}"),
        ["a.conf:2:6 error envfile-form"],
        in_config("Arch=${envfile:a:b}"),
    ),
    (
        "generated-template",
        "[GeneratedConfig]\nHome=${HOME}\n",
        ["a.conf:2:6 error generated-template"],
        "[GeneratedConfig]\nHome=${env:HOME}\nDefaultLxc=${HOME}\n",
    ),
    ("blank-value", in_config("Arch=a; ;b"), ["a.conf:2:8 error blank-value"], in_config("Arch=a;;b", "Arch=")),
    (
        "blank-value",
        in_config("Arch= ${config:Config/Arch} "),
        ["a.conf:2:6 error blank-value"],
        in_config("Arch= ${HOME} "),
    ),
    (
        "reference-shift",
        in_config("Hostname=h", "Arch=x ${config:Config/Hostname}"),
        ["a.conf:3:8 error reference-shift"],
        in_config("Hostname=h", "Arch=x${config:Config/Hostname} "),
    ),
    (
        "reference-shift",
        in_config("Hostname=h", "Arch= x${config:Config/Hostname}"),
        ["a.conf:3:8 error reference-shift"],
        in_config("Hostname=h", "Arch= x${config:Config/Hostname}", "Arch="),
    ),
    (
        "reference-shift",
        in_config("Hostname=h", "Arch=${config:Config/Hostname} x"),
        ["a.conf:3:6 warning reference-shift"],
        in_config("Hostname=h", "Arch=y${config:Config/Hostname} x"),
    ),
    (
        "reference-shift",
        in_config("Hostname=h", "Arch= x${config:Config/Hostname}y"),
        ["a.conf:3:8 warning reference-shift"],
        in_config("Hostname=h", "Arch= x${env:A}y"),
    ),
    ("reference-circle", RING, ["a.conf:2:11 error reference-circle"], RING + "DataRoot=end\n"),
    (
        "reference-circle",
        in_config("Arch=${config:Config/Arch}"),
        ["a.conf:2:6 error reference-circle"],
        in_config("Arch=${config:Config/Arch}x", "Arch=1"),
    ),
    ("reference-too-many", references(33), ["a.conf:3:10 error reference-too-many"], references(32)),
    (
        "reference-undefined",
        in_config("Arch=${config:Config/Hostname}"),
        ["a.conf:2:6 warning reference-undefined"],
        in_config("Arch=${config:GeneratedConfig/Home}"),
    ),
    (
        "reference-undefined",
        in_config("Hostname=x", "Hostname=", "Arch=${config:Config/Hostname}"),
        ["a.conf:4:6 warning reference-undefined"],
        in_config("Hostname=", "Hostname=x", "Arch=${config:Config/Hostname}"),
    ),
    ("unknown-group", "[Confg]\nA=1\nB=2\n", ["a.conf:1:2 warning unknown-group"], "[Logging]\ntest.Name=debug\n"),
    ("unknown-group", "Arch=1\nB=2\n", ["a.conf:1:1 warning unknown-group"], "[Config]\nArch=1\n"),
    ("unknown-key", in_config("Hostnmae=1"), ["a.conf:2:1 warning unknown-key"], in_config("Hostname=1")),
    ("key-blank", in_config("Hostname = x"), ["a.conf:2:1 warning key-blank"], in_config("Hostname= x")),
    (
        "comment-in-value",
        in_config("Arch=x # note"),
        ["a.conf:2:8 warning comment-in-value"],
        in_config("Arch=x#1", "Arch=${system:a # b}"),
    ),
    ("quoted-value", in_config('Arch="x;y"'), ["a.conf:2:6 warning quoted-value"], in_config('Arch=a "x" b', 'Arch="')),
    ("carriage-return", in_config("Arch=x\r", "Arch=y\r"), ["a.conf:2:7 warning carriage-return"], in_config("Arch=x")),
    (
        "not-utf8",
        b"[Config]\nArch=a\xff\nArch=\xc3\n",
        ["a.conf:2:7 warning not-utf8"],
        in_config("Arch=\u00e9\U0001f600"),
    ),
    ("nul-byte", in_config("Arch=a\0"), ["a.conf:2:7 warning nul-byte"], in_config("Arch=a0")),
    ("no-final-newline", "[Config]\nArch=x", ["a.conf:2:7 warning no-final-newline"], "[Config]\nArch=x\n"),
    (
        "bad-number",
        "[GeneratedConfig]\nBaseUid=1x\n",
        ["a.conf:2:9 warning bad-number"],
        "[GeneratedConfig]\nBaseUid=0x1F\nUserId=${env:ID}\n",
    ),
    (
        "mount-entry",
        in_config("Mounts=/a b none rw 0 0;/a b"),
        ["a.conf:2:25 warning mount-entry"],
        in_config("Mounts=/a b none rw 0 0;${env:MOUNT}"),
    ),
    (
        "logging-level",
        "[Logging]\ntest.Name=loud\n",
        ["a.conf:2:11 warning logging-level"],
        "[Logging]\ntest.Name=Debug\ntest.Other=4\n",
    ),
    (
        "logging-target",
        "[Logging]\nLogTarget=journal\n",
        ["a.conf:2:11 warning logging-target"],
        "[Logging]\nLogTarget=/var/log/x\n",
    ),
    (
        "file-order",
        {"10-a.conf": "", "9-b.conf": ""},
        ["9-b.conf:1:1 warning file-order"],
        {"09-b.conf": "", "10-a.conf": ""},
    ),
    (
        "file-not-read",
        {"a.conf": "", "x.CONF": "", ".y.conf": "", "z.conf.bak": "", "z.ini": ""},
        [f"{name}:1:1 warning file-not-read" for name in (".y.conf", "x.CONF", "z.conf.bak", "z.ini")],
        {"a.conf": "", "a.conf.dpkg-old": "", ".a.conf.swp": "", "README": ""},
    ),
]


@pytest.mark.parametrize("name,faulty,found,fine", ROWS)
def test_a_fault_is_found_in_its_place_and_what_is_near_is_fine(name, faulty, found, fine, check, directory):
    status = 1 if any(" error " in fault for fault in found) else 0
    assert check(faulty) == (status, found)
    assert check(faulty, "--strict") == (1, found)
    assert check(faulty, f"--ignore={name}") == (0, [])
    for path in directory.iterdir():
        path.unlink()
    assert check(fine, "--strict") == (0, [])


def test_every_id_has_a_row_or_a_test_of_its_own():
    own = {"unreadable", "no-configuration", "path-pattern", "writable-by-others"}
    listed = run_config("check", "--list-ids").stdout.decode().splitlines()
    assert {line.split("\t")[0] for line in listed} == {row[0] for row in ROWS} | own


def test_a_file_that_cannot_be_read_is_an_error(check, directory):
    (directory / "b.conf").mkdir()
    (directory / "c.conf").symlink_to("nowhere")
    assert check("") == (1, ["b.conf/:1:1 error unreadable", "c.conf:1:1 error unreadable"])


def test_directories_without_a_file_are_an_error(run, directory):
    result = run({"README": ""}, "check", "--format=gcc", "conf.d")
    assert result.stdout == b"conf.d:1:1: error: no directory holds a file named '*.conf' [no-configuration]\n"
    assert result.returncode == 1
    assert run({}, "check", "conf.d", "-").returncode == 0


def test_the_empty_path_is_shown_as_the_root_directory():
    if list(pathlib.Path("/").glob("*.conf")):
        pytest.skip("the root directory holds a configuration here")
    result = run_config("check", "--format=gcc", "--config=")
    assert result.stdout.decode().splitlines()[-1].startswith("/:1:1: error: no directory holds a file")


def test_a_directory_that_is_a_pattern_is_a_warning(run, directory):
    (directory / "d[x]").mkdir()
    (directory / "dx").mkdir()
    files = {"dx/a.conf": in_config("Arch=$")}
    result = run(files, "check", "--format=gcc", "conf.d/d[x]")
    assert [line.split()[-1] for line in result.stdout.decode().splitlines()] == ["[path-pattern]", "[template-dollar]"]


def test_a_path_that_is_only_a_pattern_is_read_as_the_tool_reads_it(run):
    result = run({"d1/a.conf": "", "d2/a.conf": ""}, "check", "--format=gcc", "conf.d/d[12]")
    assert (result.returncode, result.stdout.count(b"\n")) == (0, 1)


def test_every_directory_that_fits_a_pattern_is_checked_by_itself(run, directory):
    (directory / "p?").mkdir()
    files = {"pa/20-x.conf": "", "pa/foo.ini": "", "pb/10-y.conf": "", "pb/9-z.conf": ""}
    run(files, "--version")
    (directory / "pb").chmod(0o777)
    result = run({}, "check", "--format=gcc", "conf.d/p?")
    assert [line.split()[0] + line.split()[-1] for line in result.stdout.decode().splitlines()] == [
        "conf.d/p?:1:1:[path-pattern]",
        "conf.d/pa/foo.ini:1:1:[file-not-read]",
        "conf.d/pb:1:1:[writable-by-others]",
        "conf.d/pb/9-z.conf:1:1:[file-order]",
    ]


def test_what_everybody_may_write_is_a_warning(check, directory):
    (directory / "a.conf").touch()
    (directory / "a.conf").chmod(0o666)
    assert check({}) == (0, ["a.conf:1:1 warning writable-by-others"])
    (directory / "a.conf").chmod(0o664)
    directory.chmod(0o777)
    assert check({}) == (0, ["conf.d:1:1 warning writable-by-others"])
    directory.chmod(0o755)
    assert check({}) == (0, [])


# --- Faults that draw no others after them ---


def test_keys_below_a_rejected_header_or_in_an_unknown_group_are_not_judged(check):
    status, found = check("[Config\nNoSuchKey=1\nArch = 1\n[Other]\nNoSuchKey=1\nArch = 1\n")
    assert found == ["a.conf:1:8 error group-not-closed", "a.conf:4:2 warning unknown-group"]


def test_keys_below_a_rejected_header_do_not_belong_to_the_group_above(check):
    above = "[Logging]\n[Config x\nHostname=foo\n[Config]\n[Other\nMounts=/a\n"
    assert check(above)[1] == ["a.conf:2:10 error group-not-closed", "a.conf:5:7 error group-not-closed"]
    generated = "[GeneratedConfig]\n[Confi$]\nUser=${HOME}\nUserId=abc\n"
    assert check(generated)[1] == ["a.conf:2:7 error group-characters"]


def test_keys_below_a_rejected_header_unset_nothing(check):
    ring = in_config("Arch=${config:Config/Arch}", "[Other", "Arch=")
    assert check(ring)[1] == ["a.conf:3:7 error group-not-closed", "a.conf:2:6 error reference-circle"]


def test_a_key_that_ends_in_a_blank_is_told_in_every_known_group(check):
    assert check("[Logging]\nLogTarget = journal\ntest = loud\n")[1] == [
        "a.conf:2:1 warning key-blank",
        "a.conf:3:1 warning key-blank",
    ]
    assert check("[Mine]\nA =1\n", "--known=Mine")[1] == ["a.conf:2:1 warning key-blank"]
    assert check("[Mine]\nA =1\n", "--known=Mine", "--known=Mine/A ") == (0, [])


def test_a_reference_to_a_known_name_that_is_not_set_gets_no_suggestion(run):
    output = run(in_config("Arch=${config:Config/Hostname}"), "check", "conf.d").stdout
    assert b"reference-undefined" in output and b"did you mean" not in output


def test_who_refers_to_a_key_at_fault_has_no_fault_of_its_own(check):
    chain = [f"N{number}=${{config:Config/N{number + 1}}}" for number in range(100)] + ["N100=x"]
    status, found = check(in_config(*chain), "--known=Config")
    assert found == ["a.conf:69:5 error reference-too-many"]
    status, found = check({"b.conf": RING + "Arch=${config:Config/DataRoot}\n", "a.conf": ""})
    assert found == ["b.conf:2:11 error reference-circle"]


@pytest.mark.parametrize(
    "value,fault", [("${HOM}", "unknown-variable"), (" ", "blank-value"), ("$(x)", "template-dollar")]
)
def test_who_refers_to_a_key_whose_value_was_rejected_has_no_fault_of_its_own(value, fault, check):
    reference, faulty = "Arch=${config:Config/Hostname}", f"Hostname={value}"
    assert check(in_config(reference, faulty))[1] == [f"a.conf:3:10 error {fault}"]
    assert check(in_config(reference, faulty, "Hostname="))[1] == [
        f"a.conf:3:10 error {fault}",
        "a.conf:2:6 warning reference-undefined",
    ]


def test_a_rejected_value_ends_a_circle(check):
    assert check(RING + "DataRoot=$(x)\n")[1] == ["a.conf:4:10 error template-dollar"]


@pytest.mark.parametrize(
    "lines,words",
    [
        ([], "no file sets the key 'Config/Hostname'"),
        (["Hostname="], "a file unsets the key 'Config/Hostname'"),
        (["Hostname=x", "Hostname="], "a file unsets the key 'Config/Hostname'"),
    ],
)
def test_a_reference_to_a_key_without_a_value_says_what_the_files_do_to_it(lines, words, run):
    output = run(in_config("Arch=${config:Config/Hostname}", *lines), "check", "--format=gcc", "conf.d").stdout
    assert output.decode() == f"conf.d/a.conf:2:6: warning: {words} [reference-undefined]\n"


def test_one_knot_of_many_circles_is_one_fault(check):
    keys = range(20)
    lines = [f"K{key}=" + "".join(f"${{config:Config/K{other}}}" for other in keys) for key in keys]
    assert check(in_config(*lines), "--known=Config") == (1, ["a.conf:2:4 error reference-circle"])


def test_a_circle_is_shown_with_every_file_and_line(run):
    result = run(RING, "check", "conf.d")
    steps = b"Config/DataRoot (conf.d/a.conf:2) -> Config/StoragePath (conf.d/a.conf:3) -> Config/DataRoot"
    assert steps in result.stdout


def test_only_the_last_value_of_a_key_is_referred_to(check):
    assert check(in_config("Arch=${config:Config/Hostname}", "Hostname=${config:Config/Arch}", "Hostname=x")) == (0, [])


def test_values_of_a_list_are_judged_too(check):
    assert check(in_config("Hostname=h", "Arch=x ${config:Config/Hostname};last"))[1] == [
        "a.conf:3:8 error reference-shift"
    ]


@pytest.mark.parametrize(
    "value,columns",
    [('"a";b', [6]), ("a; 'b'", [9]), ('"a";"b"', [6, 10]), ('"a;b"', [6]), ('"a;b', []), ('a"b;c"d', [])],
)
def test_quotes_around_each_value_of_a_list_are_told_or_those_around_all(value, columns, check):
    found = [f"a.conf:2:{column} warning quoted-value" for column in columns]
    assert check(in_config(f"Arch={value}"))[1] == found


def test_a_word_of_unknown_length_behind_a_reference_may_keep_it_inside(check):
    assert check(in_config("Hostname=h", "Arch=  ${config:Config/Hostname}${HOME}"))[1] == [
        "a.conf:3:8 warning reference-shift"
    ]


def test_a_missing_key_costs_no_visit(check):
    text = in_config("DataRoot=" + "${config:GeneratedConfig/Home}" * 50)
    assert check(text) == (0, [])


def test_references_to_other_files_are_judged_only_over_whole_directories(run):
    text = in_config("Arch=${config:Config/Hostname}")
    for paths in (["conf.d/a.conf"], ["conf.d", "-"]):
        assert run(text, "check", *paths).stdout == b""


# --- Hints and suggestions ---


@pytest.mark.parametrize(
    "text,hint",
    [
        (" K=1\n", "nothing is indented"),
        ("\ufeff[Config]\n", "byte-order mark"),
        ("[Config]\r\n", "line feeds alone"),
        ("\r\n", "line feeds alone"),
        ("[Config]\nArch=\r\n", "line feeds alone"),
        ("\u201cArch\u201d=1\n", "a quote pasted from a document"),
        ("A\u2013B=1\n", "a dash pasted from a document"),
        ("[Config] # x\n", "behind the ']'"),
        (in_config("Arch=${system:a;b}"), "a ';' ends the value"),
        (in_config("Arch=$x"), "write '$$'"),
        (in_config("Arch=$HOME/x"), "'${NAME}' for a variable"),
        (in_config("Arch=$(id)"), "'${system:COMMAND}' for a command"),
        (in_config("Arch=1$"), "write '$$' for a '$'"),
        (in_config("Arch=${env}"), "write '${SOURCE:NAME}'"),
        (in_config("Arch= ${config:Config/Hostname}"), "remove the white space"),
        (in_config("Ho\u00a0st=1"), "a blank pasted from a document"),
        (in_config("Host\u200bname=1"), "a blank pasted from a document"),
        ("Arch=1\n", "write a group such as '[Config]'"),
        (in_config("Mounts=/a /b"), "SOURCE TARGET TYPE OPTIONS"),
    ],
)
def test_a_hint_names_the_cause(text, hint, run):
    result = run(text, "check", "conf.d")
    assert "      = hint: " in result.stdout.decode() and hint in result.stdout.decode()
    assert b"hint" not in run(text, "check", "--format=gcc", "conf.d").stdout


@pytest.mark.parametrize("line", ["[Foo", "DataRoot x"])
def test_a_carriage_return_is_no_cause_of_what_is_missing_without_it_too(line, run):
    faults = run(line + "\r\n", "check", "--ignore=carriage-return", "conf.d").stdout
    assert b"expected '" in faults and b"hint" not in faults


@pytest.mark.parametrize(
    "text,suggested",
    [
        (in_config("Hostnmae=1"), "'Hostname'"),
        (in_config("hostname=1"), "'Hostname'"),
        (in_config("DEX2OATMAXHEAPSIZE=1"), "'Dex2oatMaxHeapSize'"),
        ("[config]\n", "'Config'"),
        (in_config("Arch=${HOM}"), "'HOME'"),
        (in_config("Arch=${home}"), "'HOME'"),
        (in_config("Arch=${confg:A/B}"), "'config'"),
        (in_config("Arch=${config:Config/Hostnmae}"), "'Hostname'"),
        (in_config("Arch=${config:config/Hostname}"), "'Config'"),
    ],
)
def test_a_near_name_is_suggested_in_the_message(text, suggested, run):
    output = run(text, "check", "--format=gcc", "conf.d").stdout.decode()
    assert f"; did you mean {suggested}? [" in output


def test_a_name_like_no_other_gets_no_suggestion(run):
    assert b"did you mean" not in run(in_config("Qqqqqqqq=1"), "check", "conf.d").stdout


@pytest.mark.parametrize("known,status", [("Config/Mine", 0), ("Config", 0), ("Config/Other", 1), ("Mine", 1)])
def test_names_of_ones_own_can_be_made_known(known, status, check):
    assert check(in_config("Mine=1"), "--strict", f"--known={known}")[0] == status


@pytest.mark.parametrize("known", ["", "Foo/", "/"])
def test_a_name_of_ones_own_has_a_group_or_a_key(known, run):
    result = run("", "check", f"--known={known}", "conf.d")
    assert result.returncode == 64
    assert f"--known: '{known}' is not GROUP or GROUP/KEY" in result.stderr.decode()


def test_a_name_of_ones_own_may_stand_above_any_group(check):
    assert check("Mine=1\n", "--strict", "--known=/Mine") == (0, [])


# --- The project's own files ---


def test_the_examples_have_no_fault():
    result = run_config("check", "--strict", "examples/vendor.conf.d", "examples/user.conf.d", cwd=ROOT)
    assert (result.returncode, result.stdout, result.stderr) == (0, b"", b"")
