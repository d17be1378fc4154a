"""Android properties through the library that is opened at run time, and without it."""

import pytest

from support.preloading import preload

LIBRARY = "libandroid-properties.so.1"


@pytest.fixture
def ask(device):
    """Asks for one property with the library directory given, and returns the finished run."""

    def run(name, libraries, *arguments, env=None):
        device.configure("[Config]", f"Hostname=${{prop:{name}}}")
        return device.run(
            "--key", "Hostname", "--user-id", "0", *arguments,
            env={"LD_LIBRARY_PATH": str(libraries), **(env or {})},
        )  # fmt: skip

    return run


def test_a_property_is_read_from_the_library(ask, property_libraries):
    result = ask("ro.short", property_libraries)
    assert (result.stdout, result.stderr, result.returncode) == (b"amber\n", b"", 0)


def test_the_longest_property_has_91_characters(ask, property_libraries):
    assert ask("ro.longest", property_libraries).stdout == b"0123456789" * 9 + b"x\n"


def failed_to_read(name):
    return f"DEBUG: Failed to read '{name}' from properties for template 'prop:{name}'\n".encode()


@pytest.mark.parametrize("name", ["ro.zero", "ro.negative", "ro.unknown"])
def test_a_result_of_zero_or_less_means_no_value_whatever_the_buffer_holds(ask, property_libraries, name):
    result = ask(name, property_libraries, "--log-level", "debug")
    assert (result.stdout, result.stderr, result.returncode) == (b"", failed_to_read(name), 2)


def library_without_the_symbol(compile_library, tmp_path):
    return compile_library("without_symbol.c", LIBRARY).parent


def junk_in_place_of_the_library(compile_library, tmp_path):
    (tmp_path / LIBRARY).write_bytes(b"\x7fELF and then nothing of use\n" * 10)
    return tmp_path


def no_library(compile_library, tmp_path):
    return tmp_path


@pytest.mark.parametrize("make_libraries", [no_library, library_without_the_symbol, junk_in_place_of_the_library])
def test_without_a_usable_library_no_property_has_a_value(ask, compile_library, tmp_path, make_libraries):
    result = ask("ro.short", make_libraries(compile_library, tmp_path), "--log-level", "debug")
    assert (result.stdout, result.stderr, result.returncode) == (b"", failed_to_read("ro.short"), 2)


@pytest.fixture
def opened_libraries(device, compile_library, tmp_path):
    """Runs the tool and returns the names of the property libraries that it opened, in order."""
    log = tmp_path / "opened"

    def run(libraries):
        # Three requests in one value, and one more in another.
        three = "${prop:ro.short}" * 3
        device.configure("[Config]", f"Arch={three}", "Hostname=${prop:ro.short}", "AppIdPrefix=end")
        result = device.run(
            "--key", "AppIdPrefix", "--user-id", "0",
            env={
                "LD_LIBRARY_PATH": str(libraries), "DLOPEN_LOG": str(log),
                **preload(compile_library("dlopen_log.c", "dlopen_log.so")),
            },
        )  # fmt: skip
        assert result.stdout == b"end\n"
        names = log.read_text().splitlines() if log.exists() else []
        return [name for name in names if name == LIBRARY]

    return run


def test_however_many_templates_ask_the_library_is_opened_once(opened_libraries, property_libraries):
    assert opened_libraries(property_libraries) == [LIBRARY]


def test_an_absent_library_is_looked_for_once(opened_libraries, tmp_path):
    assert opened_libraries(tmp_path) == [LIBRARY]


def test_a_configuration_without_properties_never_opens_the_library(device, compile_library, tmp_path):
    log = tmp_path / "opened"
    device.configure("[Config]", "Hostname=plain")
    result = device.run(
        "--key", "Hostname", "--user-id", "0",
        env={"DLOPEN_LOG": str(log), **preload(compile_library("dlopen_log.c", "dlopen_log.so"))},
    )  # fmt: skip
    assert result.stdout == b"plain\n"
    assert not log.exists() or LIBRARY not in log.read_text()
