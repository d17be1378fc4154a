"""The Debian packages: made by one command, installed, used and removed in a throw-away root."""

import re
import shutil
import subprocess
from pathlib import Path

import pytest

from install_commands import ROOT, project_version, run
from throw_away_root import throw_away_root

NAMES = ["libtarnwick-parser-dev", "libtarnwick-parser1", "tarnwick-config", "tarnwick-parse-config"]
AUTOPKGTESTS = re.findall(r"^Tests: (\S+)$", (ROOT / "debian" / "tests" / "control").read_text(), flags=re.MULTILINE)


@pytest.fixture(scope="session")
def native(packages):
    """This machine's packages by name."""
    return packages(run("dpkg", "--print-architecture").stdout.strip())


@pytest.fixture(scope="module")
def machine(native, tmp_path_factory):
    """A throw-away root directory with the packages installed."""
    with throw_away_root(tmp_path_factory.mktemp("machine")) as root:
        install(root, native)
        root.copy_in(ROOT / "debian" / "tests", "/source/debian/tests")
        root.copy_in(ROOT / "tests" / "install", "/source/tests/install")
        yield root


@pytest.fixture
def fresh_machine(tmp_path):
    """A throw-away root directory without the packages. It shows what this machine has."""
    if Path("/etc/tarnwick.conf.d").exists():
        pytest.skip("this machine has a configuration of its own")
    with throw_away_root(tmp_path) as root:
        yield root


def install(root, packages):
    for path in packages.values():
        root.copy_in(path, f"/packages/{path.name}")
    root.inside("sh", "-c", "dpkg --install /packages/*.deb")
    root.inside("rm", "--recursive", "/packages")


def field(package, name):
    return run("dpkg-deb", "--field", package, name).stdout.strip()


def test_one_command_makes_three_packages_of_the_projects_version(native):
    assert sorted(native) == NAMES
    assert {field(path, "Version") for path in native.values()} == {project_version()}


def test_a_package_of_another_version_is_refused(tmp_path):
    shutil.copytree(ROOT / "debian", tmp_path / "debian")
    shutil.copy(ROOT / "CMakeLists.txt", tmp_path)
    changelog = tmp_path / "debian" / "changelog"
    changelog.write_text(changelog.read_text().replace(f"({project_version()})", "(99.7)", 1))
    result = subprocess.run(
        ["make", "-f", "debian/rules", "override_dh_auto_configure"],
        cwd=tmp_path,
        capture_output=True,
        text=True,
        check=False,
    )
    assert result.returncode != 0
    assert "CMakeLists.txt has another version than debian/changelog" in result.stderr


def rules(*arguments):
    """What debian/rules would run."""
    command = ["make", "--dry-run", "-f", "debian/rules", *arguments]
    return run(*command, cwd=ROOT, env={"DEB_BUILD_OPTIONS": ""}).stdout


def test_a_build_without_checks_runs_no_tests():
    assert "ctest" in rules("override_dh_auto_test")
    assert "ctest" not in rules("override_dh_auto_test", "DEB_BUILD_OPTIONS=nocheck")


def test_another_build_at_another_place_makes_the_same_bytes(native, tmp_path):
    if Path(next(iter(native.values()))).parent.parent != ROOT / "build" / "packages":
        pytest.skip("the packages were made from another tree")
    tree = tmp_path / "elsewhere"  # dpkg hides no path that has a blank in it
    tree.mkdir()
    archive = "git ls-files -z --cached --others --exclude-standard | tar -c --null -T - | tar -x -C"
    run("sh", "-c", f'{archive} "$1"', "sh", tree, cwd=ROOT)
    run(
        *["sh", "-c", "umask 077 && exec dpkg-buildpackage -b -us -uc -Pnocheck"],
        cwd=tree,
        env={"DEB_BUILD_OPTIONS": "nocheck noautodbgsym", "TZ": "Asia/Tokyo", "LC_ALL": "C"},
    )
    for package in native.values():
        assert (tmp_path / package.name).read_bytes() == package.read_bytes(), package.name


def test_the_tool_depends_on_the_c_library_alone(native):
    depends = field(native["tarnwick-parse-config"], "Depends")
    assert [entry.split()[0] for entry in depends.split(",")] == ["libc6"]


def test_programs_depend_on_the_library_of_the_version_that_they_were_built_with(native, tmp_path):
    run("dpkg-deb", "--control", native["libtarnwick-parser1"], tmp_path)
    [line] = (tmp_path / "shlibs").read_text().splitlines()
    assert line == f"libtarnwick-parser 1 libtarnwick-parser1 (>= {project_version()})"


def test_the_copyright_file_says_that_no_licence_has_been_chosen(machine):
    for name in NAMES:
        text = machine.inside("cat", f"/usr/share/doc/{name}/copyright").stdout
        assert "License: not-chosen" in text
        assert "has not chosen a public licence" in text


def test_the_installed_tool_answers(machine):
    conf = "/etc/tarnwick.conf.d/10-vendor.conf"
    machine.inside("sh", "-c", f"printf '[Config]\\nArch=arm64\\n' > {conf}")
    answer = machine.inside("tarnwick-parse-config", "--user-id", "0", "--key", "Arch")
    assert (answer.stdout, answer.stderr) == ("arm64\n", "")


@pytest.mark.parametrize(
    "section, page",
    [("1", "tarnwick-config"), ("1", "tarnwick-parse-config"), ("3", "libtarnwick-parser"), ("5", "tarnwick.conf")],
)
def test_man_renders_the_page(section, page, machine):
    shown = machine.inside("man", "--pager=cat", "--warnings", section, page)
    assert shown.stderr == ""
    assert re.search(rf"^{page}\({section}\)", shown.stdout)
    assert re.search(r"^SEE ALSO$", shown.stdout, flags=re.MULTILINE)


def test_the_installed_completion_for_bash_registers_itself(machine):
    completions = "/usr/share/bash-completion/completions/tarnwick-parse-config"
    show = f". {completions} && complete -p tarnwick-parse-config"
    registered = machine.inside("bash", "-c", show)
    assert registered.stdout.startswith("complete ")


def test_zsh_finds_the_completion_of_the_installed_tool(machine):
    show = "autoload -Uz compinit && compinit -u -D && print $_comps[tarnwick-parse-config]"
    assert machine.inside("zsh", "-fc", show).stdout == "_tarnwick-parse-config\n"


@pytest.mark.parametrize("name", ["tarnwick-config", "tarnwick-parse-config"])
def test_a_packaged_program_is_hardened(name, native, tmp_path):
    run("dpkg-deb", "--extract", native[name], tmp_path)
    run(ROOT / "scripts" / "check-hardening", tmp_path / "usr" / "bin" / name)


def test_the_installed_checker_checks_the_default_directory(machine):
    answer = machine.inside("tarnwick-config", "check", "--strict")
    assert (answer.stdout, answer.stderr) == ("", "")


@pytest.mark.parametrize("name", AUTOPKGTESTS)
def test_the_packages_own_test_passes(name, machine):
    machine.inside(f"/source/debian/tests/{name}")


def test_purging_the_packages_leaves_nothing_behind(native, fresh_machine):
    install(fresh_machine, native)
    assert "usr/bin/tarnwick-parse-config" in fresh_machine.changes()
    fresh_machine.inside("dpkg", "--purge", *NAMES)
    assert fresh_machine.changes() == set()


def test_removing_the_packages_leaves_the_users_files(native, fresh_machine):
    install(fresh_machine, native)
    fresh_machine.inside("touch", "/etc/tarnwick.conf.d/50-user.conf")
    fresh_machine.inside("dpkg", "--remove", *NAMES)
    assert fresh_machine.changes() == {
        "etc/tarnwick.conf.d",
        "etc/tarnwick.conf.d/50-user.conf",
    }
