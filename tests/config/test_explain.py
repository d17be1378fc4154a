"""`tarnwick-config explain`: the life of one key, assignment by assignment."""

import json
import os
import pty
import subprocess

import pytest
from config_helpers import in_config
from support.tool import clean_environment, config_command

USER = "--user-id=0"


@pytest.fixture
def explain(run):
    """Explains a key over files and returns the status and the lines of the output."""

    def explain_key(files, key, *arguments, **options):
        result = run(files, "explain", "--config=conf.d", USER, *arguments, key, **options)
        return result.returncode, result.stdout.decode().splitlines()

    return explain_key


@pytest.fixture
def rows(explain):
    """The lines of an explanation below its head, without the blanks that make columns."""

    def rows_of(files, key, *arguments, **options):
        _, lines = explain(files, key, *arguments, **options)
        assert lines[1] == ""
        return [" ".join(line.split()).removeprefix("conf.d/") for line in lines[2:]]

    return rows_of


# --- The page as a whole ---


def test_a_life_is_told_in_columns(run):
    files = {
        "vendor/10-config.conf": in_config("Name=container", "DataRoot=/data"),
        "vendor/90-model.conf": in_config("DataRoot=${env:E_NONE}"),
        "user/10-user.conf": in_config("DataRoot=", "DataRoot=${HOME}/.${config:Config/Name}"),
    }
    result = run(files, "explain", "--configs=conf.d/vendor:conf.d/user", USER, "DataRoot")
    assert (result.returncode, result.stderr) == (0, b"")
    assert result.stdout.decode().splitlines() == [
        "Config/DataRoot = '/root/.container'          (exit 0)",
        "",
        "conf.d/vendor/10-config.conf:3   = /data                          stored, then unset",
        "conf.d/vendor/90-model.conf:2    = ${env:E_NONE}                  dropped: E_NONE is not set",
        "conf.d/user/10-user.conf:2       =                                unset: 1 value gone",
        "conf.d/user/10-user.conf:3       = ${HOME}/.${config:Config/Name} current",
        "    HOME                      = /root              variable: password database, user 0",
        "    Config/Name               = container          conf.d/vendor/10-config.conf:2",
    ]


def test_the_head_tells_value_status_and_how_many_values_there_are(explain):
    text = in_config("K=1;2", "One=1", "Circle=${config:Config/Circle}", "Shift=x ${config:Config/One}")
    assert explain(text, "K")[1][0] == "Config/K = '2'          (exit 0, the last of 2 values)"
    assert explain(text, "One")[1][0] == "Config/One = '1'          (exit 0)"
    assert explain(text, "None")[1][0] == "Config/None has no value          (exit 2)"
    assert explain(text, "Circle")[1][0] == "Config/Circle = ''          (exit 0)"
    assert explain(text, "Shift")[1][0] == "Config/Shift has no answer          (exit 1)"


# --- What can become of an assignment ---


def test_values_are_stored_and_the_last_is_current(rows):
    assert rows(in_config("K=1", "K=2", "Other=3", "K=3"), "K") == [
        "a.conf:2 = 1 stored",
        "a.conf:3 = 2 stored",
        "a.conf:5 = 3 current",
    ]


def test_an_empty_value_unsets_what_stands_before_it(rows):
    assert rows(in_config("K=", "K=1;2", "K=", "K=3"), "K") == [
        "a.conf:2 = unset: there was no value",
        "a.conf:3 = 1;2 2 pieces",
        "; 1 stored, then unset",
        "; 2 stored, then unset",
        "a.conf:4 = unset: 2 values gone",
        "a.conf:5 = 3 current",
    ]


def test_a_value_that_was_dropped_leaves_the_one_before_it_current(rows):
    assert rows(in_config("K=1", "K=${env:E_NONE}"), "K")[0] == "a.conf:2 = 1 current"


def test_each_piece_of_a_value_has_its_own_fate(rows):
    assert rows(in_config("K=1;;${env:E_NONE};2;"), "K") == [
        "a.conf:2 = 1;;${env:E_NONE};2; 4 pieces",
        "; 1 stored",
        "; dropped: empty",
        "; ${env:E_NONE} dropped: E_NONE is not set",
        "; 2 current",
    ]


def test_empty_pieces_alone_are_told(rows):
    assert rows(in_config("K=1", "K=;;"), "K") == [
        "a.conf:2 = 1 current",
        "a.conf:3 = ;; 2 pieces",
        "; dropped: empty",
        "; dropped: empty",
    ]


@pytest.mark.parametrize(
    "value,words",
    [
        ("${env:E_NONE}", "E_NONE is not set"),
        ("${env:E_EMPTY}", "E_EMPTY is set, but empty"),
        ("${envfile:none:X}", "none cannot be read: No such file or directory"),
        ("${envfile:conf.d/a.conf:X}", "no line of conf.d/a.conf assigns X"),
        ("${realpath:none}", "the path none does not exist or cannot be reached"),
        ("${dconf:/x/y}", "dconf has no value for /x/y"),
        ("${prop:ro.x}", "there is no Android property ro.x"),
        ("${system:exit 3}", "the command 'exit 3' did not end with status 0"),
        ("${HOM}", "no variable is named 'HOM'; did you mean 'HOME'?"),
        ("${confg:A/B}", "no source is named 'confg'; did you mean 'config'?"),
        ("${config:A}", "'A' names no group and key; write '${config:GROUP/KEY}'"),
        ("${envfile:x}", "'x' names no path and variable; write '${envfile:PATH:VARIABLE}'"),
        ("a$", "expected '{' or '$' after '$'; write '$$' for a '$'"),
        ("${HOME", "expected '}' at the end of the template"),
        ("${INSTANCE}", "its templates come to an empty text"),
    ],
)
def test_a_dropped_value_is_told_with_its_reason(run, value, words):
    result = run(in_config("K=" + value), "explain", "--config=conf.d", USER, "--instance=", "K", env={"E_EMPTY": ""})
    row = result.stdout.decode().splitlines()[2]
    assert row == f"conf.d/a.conf:2   = {value} dropped: {words}"


def test_a_template_that_a_semicolon_cut_is_told_as_such(rows):
    assert rows(in_config("K=${system:a;b}"), "K")[1] == (
        "; ${system:a dropped: expected '}' at the end of the template; a ';' ends the value, inside braces too"
    )


# --- Templates ---


def test_templates_tell_what_they_came_to_and_where_from(rows, tmp_path):
    (tmp_path / "vars").write_text("X=7\n")
    value = "${HOME}:${USER}:${USER_ID}:${INSTANCE}:${env:E_WORD}:${envfile:vars:X}:${realpath:/}:${system:echo c}"
    assert rows(in_config("K=" + value), "K", "--instance=work", env={"E_WORD": "w"})[1:] == [
        "HOME = /root variable: password database, user 0",
        "USER = root variable: password database, user 0",
        "USER_ID = 0 variable: command line",
        "INSTANCE = work variable: command line",
        "env:E_WORD = w environment",
        "envfile:vars:X = 7 environment file",
        "realpath:/ = / canonical path",
        "system:echo c = c command",
    ]


def test_the_default_instance_is_told_apart(rows):
    assert rows(in_config("K=${INSTANCE}"), "K")[1] == "INSTANCE = default variable: the default"


def test_templates_before_the_one_that_failed_are_told(rows):
    text = in_config("K=${USER}${config:Config/L}${env:E_NONE}", "L=1")
    assert rows(text, "K") == [
        "a.conf:2 = ${USER}${config:Config/L}${env:E_NONE} dropped: E_NONE is not set",
        "USER = root variable: password database, user 0",
        "Config/L not filled: the value is not asked for",
    ]


def test_every_command_runs_once(explain, tmp_path):
    text = in_config("K=${system:echo k | tee -a ran}", "L=${system:echo l | tee -a ran}", "M=${config:Config/L}")
    assert explain(text, "M")[0] == 0
    assert (tmp_path / "ran").read_text() == "k\nl\n"


# --- References ---


def test_references_are_followed_to_the_end_of_the_chain(rows):
    text = in_config("A=${config:Config/B}!", "B=<${config:Config/C}>", "C=${USER}", "B=(${config:Config/C})")
    assert rows(text, "A") == [
        "a.conf:2 = ${config:Config/B}! current",
        "Config/B = (root) conf.d/a.conf:5 = (${config:Config/C})",
        "Config/C = root conf.d/a.conf:4 = ${USER}",
        "USER = root variable: password database, user 0",
    ]


@pytest.mark.parametrize(
    "lines,words",
    [
        ([], "no file sets it"),
        (["N=1", "N="], "conf.d/a.conf:4 unsets it"),
        (["N=${env:E_NONE}"], "conf.d/a.conf:3 was dropped: E_NONE is not set"),
        (["N=", "N=;"], "conf.d/a.conf:4 was dropped: empty"),
    ],
)
def test_a_reference_to_a_key_without_a_value_is_told_with_the_reason(rows, lines, words):
    assert rows(in_config("K=x${config:Config/N}", *lines), "K") == [
        "a.conf:2 = x${config:Config/N} current",
        "Config/N = empty: " + words,
    ]


def test_a_circle_is_shown_once_and_told_as_such(explain, rows):
    text = in_config("A=${config:Config/B}", "B=${config:Config/C}", "C=${config:Config/B}")
    assert explain(text, "A")[0] == 0
    assert rows(text, "A") == [
        "a.conf:2 = ${config:Config/B} current, but cannot be filled: a circle: leads back to Config/B",
        "Config/B conf.d/a.conf:3 = ${config:Config/C}",
        "Config/C conf.d/a.conf:4 = ${config:Config/B}",
        "Config/B a circle: leads back to Config/B, conf.d/a.conf:3",
    ]


def test_a_value_before_the_current_one_may_refer_to_its_own_key(rows):
    assert rows(in_config("K=${config:Config/K}!", "K=1"), "K") == [
        "a.conf:2 = ${config:Config/K}! stored",
        "Config/K = 1 conf.d/a.conf:3",
        "a.conf:3 = 1 current",
    ]


def test_one_reference_too_many_is_told(explain, rows):
    text = in_config("K=" + "${config:Config/L}" * 33, "L=1")
    assert rows(text, "K")[0].endswith("current, but cannot be filled: more than 32 other values: a request stops here")
    assert rows(text, "K")[-1] == "Config/L more than 32 other values: a request stops here, conf.d/a.conf:3"
    fitting = in_config("K=" + "${config:Config/L}${config:Config/None}" * 32, "L=1")
    assert explain(fitting, "K")[1][0] == f"Config/K = '{'1' * 32}'          (exit 0)"


def test_a_long_chain_ends_where_a_request_stops(explain):
    lines = [f"K{number}=${{config:Config/K{number + 1}}}" for number in range(100_000)]
    status, output = explain(in_config(*lines), "K0")
    assert status == 0
    assert len(output) == 3 + 33


def test_a_shift_is_told_with_the_key_and_what_to_do(explain, rows):
    text = in_config("K=${config:Config/L}", "L=x ${config:Config/M}", "M=1")
    shift = (
        "white space is trimmed from the value, and the reference '${config:Config/M}' then stands past its end; "
        "remove the white space, or put other characters before and behind it"
    )
    assert explain(text, "K")[0] == 1
    assert rows(text, "K")[:2] == [
        f"a.conf:2 = ${{config:Config/L}} current, but cannot be filled: Config/L: {shift}",
        f"Config/L conf.d/a.conf:3 = x ${{config:Config/M}}: {shift}",
    ]


@pytest.mark.parametrize("value", ["${config:Config/L} x", " ${config:Config/L}x", "${env:E_BLANK}${config:Config/L}x"])
def test_a_reference_that_trimming_moved_is_told(explain, value):
    lines = explain(in_config("K=" + value, "L=1", "M=${config:Config/K}"), "M", env={"E_BLANK": " "})[1]
    assert any(
        line.endswith(
            ": white space is trimmed from the value, and the reference '${config:Config/L}' no longer stands where it "
            "was written; remove the white space, or put other characters before and behind it"
        )
        for line in lines
    )


def test_white_space_that_moves_nothing_is_not_told(explain):
    for value in ("x${config:Config/L} ", " x ", "${config:Config/L}x y", "${config:Config/L}"):
        assert "trimmed" not in "".join(explain(in_config("K=" + value, "L=1"), "K")[1]), value


# --- The generated user ---

GENERATED = "[GeneratedConfig]\nUserId=0\nUser=root\nHome=/root\nBaseUid=1\nInstance=gen\n"


def test_generated_keys_that_change_the_user_are_told(run):
    text = GENERATED + in_config("K=${USER_ID}${INSTANCE}")
    result = run(text, "explain", "--config=conf.d", "--user-id=77777", "--instance=typed", "K")
    assert [" ".join(line.split()) for line in result.stdout.decode().splitlines()] == [
        "Config/K = '0gen' (exit 0)",
        "",
        "conf.d/a.conf:8 = ${USER_ID}${INSTANCE} current",
        "USER_ID = 0 variable: generated configuration, conf.d/a.conf:2",
        "INSTANCE = gen variable: generated configuration, conf.d/a.conf:6",
        "",
        "The generated configuration names the user, and the command line does not count:",
        "GeneratedConfig/UserId = 0 conf.d/a.conf:2",
        "GeneratedConfig/Instance = gen conf.d/a.conf:6",
    ]


def test_a_generated_user_without_an_instance_empties_it(rows):
    lines = rows(GENERATED.replace("Instance=gen\n", "") + in_config("K=x${INSTANCE}"), "K", "--instance=typed")
    assert "INSTANCE = variable: generated configuration, which does not set it" in lines
    assert lines[-1] == "GeneratedConfig/Instance = no file sets it"


def test_who_asks_for_a_generated_key_is_told_why_it_does_not_count(rows):
    lines = rows(GENERATED.replace("BaseUid=1\n", ""), "GeneratedConfig/UserId")
    assert lines[-1] == (
        "GeneratedConfig/BaseUid has no value before variables are known, so the generated configuration names no user."
    )


# --- Loads that fail ---


def test_a_rejected_line_is_told_with_all_that_was_read_before(explain):
    files = {"a.conf": in_config("K=${system:touch ran}1"), "b.conf": in_config("K=;2", "oops", "K=3"), "c.conf": "K"}
    assert explain(files, "K") == (
        1,
        [
            "Config/K has no answer          (exit 1)",
            "",
            "conf.d/b.conf:3:5: expected '=' after the key",
            "    3 | oops",
            "'tarnwick-config check' finds all faults, also those behind this one.",
            "",
            "conf.d/a.conf:2   = ${system:touch ran}1 read, not expanded",
            "conf.d/b.conf:2   = ;2                   read, not expanded",
        ],
    )


def test_nothing_runs_when_a_line_is_rejected(explain, tmp_path):
    explain({"a.conf": in_config("K=${system:touch ran}1", "oops")}, "K")
    assert not (tmp_path / "ran").exists()


def test_every_rejected_line_up_to_the_next_key_is_told(explain):
    lines = explain("[Config]\n x\n[a\n[b]\nK=1\n?\n", "K")[1]
    assert [line for line in lines if line.startswith("conf.d/")] == [
        "conf.d/a.conf:2:1: no line begins with ' '",
        "conf.d/a.conf:3:3: expected ']' at the end of the line",
    ]


def test_a_directory_named_as_a_file_is_told(explain):
    lines = explain({"a.conf": in_config("K=1"), "b.conf/x": ""}, "K")[1]
    assert "conf.d/b.conf: cannot be read: it is a directory" in [line.replace("b.conf/:", "b.conf:") for line in lines]
    assert lines[-1] == "conf.d/a.conf:2   = 1 read, not expanded"


def test_a_blank_value_ends_the_load_half_way(explain):
    text = in_config("K=${USER}", "K= ", "K=3")
    status, lines = explain(text, "K")
    assert status == 1
    assert lines[2] == "conf.d/a.conf:3:3: the value is white space alone: every request fails"
    assert [" ".join(line.split()) for line in lines[6:]] == [
        "conf.d/a.conf:2 = ${USER} stored",
        "USER = root variable: password database, user 0",
        "conf.d/a.conf:3 = ends the request: the value is white space alone: every request fails",
    ]


def test_a_blank_value_of_another_key_is_told_all_the_same(explain):
    lines = explain(in_config("K=1", "L= ", "K=2"), "K")[1]
    assert lines[2] == "conf.d/a.conf:3:3: the value is white space alone: every request fails"
    assert lines[6:] == ["conf.d/a.conf:2   = 1 stored"]


def test_a_blank_generated_key_ends_the_first_reading(explain):
    files = {"a.conf": in_config("K=1"), "b.conf": "[GeneratedConfig]\nUser= \n[Config]\nK=2\n"}
    status, lines = explain(files, "K")
    assert status == 1
    assert lines[2].startswith("conf.d/b.conf:2:6: the value is white space alone")
    assert lines[6:] == ["conf.d/a.conf:2   = 1 read, not expanded"]


def test_a_blank_environment_file_is_named(explain, tmp_path):
    (tmp_path / "vars").write_text("X= \n")
    lines = explain(in_config("K=${envfile:vars:X}"), "K")[1]
    assert "the environment file vars has a name or the value asked for of white space alone" in lines[2]


def test_no_file_at_all_is_told(run):
    result = run({}, "explain", "--config=nowhere", USER, "K")
    assert result.returncode == 1
    assert b"\nno directory holds a file named '*.conf': nowhere\n" in result.stdout


def test_a_user_without_an_entry_is_told(explain):
    status, lines = explain(in_config("K=1"), "K", "--user-id=4242424")
    assert status == 1
    assert lines[2:] == [
        "user 4242424 (command line) has no entry in the password database",
        "",
        "conf.d/a.conf:2   = 1 read, not expanded",
    ]


# --- Keys without a value ---


def near(explain, text, key):
    return explain(text, key)[1][-1].removeprefix("Near names that have a value: ")


def test_near_names_that_have_a_value_are_offered(explain):
    text = "[Network]\nHostnmae=1\n[Config]\nHostname=2\nHostnam=3\nHostnam=\nArch =4\n"
    assert explain(text, "Hostnmae") == (
        2,
        [
            "Config/Hostnmae has no value          (exit 2)",
            "",
            "No line in 1 file assigns it.",
            "",
            "Near names that have a value: 'Config/Hostname' 'Network/Hostnmae'",
        ],
    )
    assert near(explain, text, "Arch") == "'Config/Arch '"
    assert near(explain, text, "Confg/Hostname") == "'Config/Hostname' 'Network/Hostnmae'"
    assert near(explain, text, "Network/Hostname") == "'Config/Hostname' 'Network/Hostnmae'"


def test_no_name_is_offered_that_has_no_likeness(explain):
    assert explain(in_config("Arch=1"), "Hostname")[1][-1] == "No line in 1 file assigns it."


# --- Streams ---


def test_nothing_can_forge_a_line_or_drive_a_terminal(run):
    text = in_config("K=a\x1b[1m\r\u202e${env:E_BYTES}")
    result = run({"x\n\x1b.conf": text}, "explain", "--config=conf.d", USER, "K", env={"E_BYTES": "1\n2\x7f"})
    output = result.stdout.decode()
    assert output.splitlines()[2].startswith(
        "conf.d/x\\x0A\\x1B.conf:2   = a\\x1B[1m\\x0D\\xE2\\x80\\xAE${env:E_BYTES} current"
    )
    assert "env:E_BYTES               = 1\\x0A2\\x7F" in output
    assert all(character == "\n" or character.isprintable() for character in output)


def test_colours_are_for_terminals(run):
    text = in_config("K=1", "K=${env:E_NONE}")
    assert b"\x1b" not in run(text, "explain", "--config=conf.d", USER, "K").stdout
    colored = run(text, "explain", "--color=always", "--config=conf.d", USER, "K").stdout
    assert b"\x1b[1m'1'\x1b[0m" in colored
    assert b"\x1b[1;32mcurrent\x1b[0m\n" in colored
    assert b"\x1b[1;31mdropped: E_NONE is not set\x1b[0m\n" in colored


def test_a_terminal_gets_colours_unless_no_color_is_set(directory):
    (directory / "a.conf").write_text(in_config("K=1"))
    for environment, has_color in (({}, True), ({"NO_COLOR": "1"}, False)):
        leader, follower = pty.openpty()
        command = config_command("explain", "--config=conf.d", USER, "K")
        env = {name: text for name, text in clean_environment(**environment).items()}
        subprocess.run(command, cwd=directory.parent, stdout=follower, env=env, check=True)
        assert (b"\x1b[" in os.read(leader, 4096)) == has_color
        for descriptor in (leader, follower):
            os.close(descriptor)


def test_what_cannot_be_written_is_a_failure(run):
    with open("/dev/full", "wb") as full:
        result = run(in_config("K=1"), "explain", "--config=conf.d", USER, "K", stdout=full)
    assert (result.returncode, result.stderr) == (1, b"tarnwick-config: cannot write to the standard output\n")


def test_a_reader_that_has_seen_enough_is_no_news(run, directory):
    (directory / "a.conf").write_text(in_config(*(f"K={number}" for number in range(50_000))))
    command = " ".join(config_command("explain", "--config=conf.d", USER, "K")) + " | head -1"
    result = subprocess.run(["sh", "-c", command], cwd=directory.parent, env=clean_environment(), capture_output=True)
    assert result.stdout == b"Config/K = '49999'          (exit 0, the last of 50000 values)\n"
    assert result.stderr == b""


@pytest.mark.parametrize("keys", [[], ["A", "B"]])
def test_one_key_is_explained(run, keys):
    assert run("", "explain", "--config=conf.d", *keys).returncode == 64


# --- JSON ---


def test_json_tells_the_same(run):
    text = in_config("N=x", "K=1", "K=", "K=;${USER}${config:Config/N}")
    report = json.loads(run(text, "explain", "--format=json", "--config=conf.d", USER, "K").stdout)
    assert [report[name] for name in ("group", "key", "status", "value", "values")] == ["Config", "K", 0, "rootx", 1]
    assert [(row["path"], row["line"], row["text"], row["removed"]) for row in report["assignments"]] == [
        ("conf.d/a.conf", 3, "1", None),
        ("conf.d/a.conf", 4, "", 1),
        ("conf.d/a.conf", 5, ";${USER}${config:Config/N}", None),
    ]
    assert [piece["outcome"] for row in report["assignments"] for piece in row["pieces"]] == [
        "unset",
        "dropped",
        "current",
    ]
    user, reference = report["assignments"][2]["pieces"][1]["templates"]
    assert (user["kind"], user["text"], user["words"]) == ("source", "root", "variable: password database, user 0")
    assert (reference["name"], reference["kind"], reference["line"]) == ("Config/N", "reference", 2)


def test_a_value_whose_sources_are_blank_is_told_with_what_they_came_to(explain, rows):
    text = in_config("K=${env:E_BLANK}")
    assert rows(text, "K", env={"E_BLANK": " "})[:4] == [
        "a.conf:2:3: its templates come to white space alone",
        "2 | K=${env:E_BLANK}",
        "",
        "a.conf:2 = ${env:E_BLANK} ends the request: its templates come to white space alone",
    ]
    assert not any("tarnwick-config check" in line for line in explain(text, "K", env={"E_BLANK": " "})[1])


def test_white_space_beside_references_is_told_as_such(rows):
    assert "white space and references alone" in rows(in_config("K= ${config:A/B}"), "K")[0]


def test_a_fault_of_a_generated_key_is_told_with_its_line_and_what_was_stored(rows):
    lines = ["UserId=0", "User=q", "Home=/root", "BaseUid=1", "Instance=x ${config:GeneratedConfig/Home}"]
    told = rows("[GeneratedConfig]\n" + "".join(line + "\n" for line in lines), "GeneratedConfig/Instance")
    assert told[0].startswith("a.conf:6: GeneratedConfig/Instance: a reference stands past the end")
    assert told[2] == "a.conf:6 = x ${config:GeneratedConfig/Home} stored"


def test_a_directory_in_the_place_of_an_environment_file_is_called_one(rows, directory):
    told = rows(in_config("K=${envfile:conf.d:X}"), "K")
    assert told[0] == "a.conf:2 = ${envfile:conf.d:X} dropped: conf.d cannot be read: it is a directory"
