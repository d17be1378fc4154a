"""An installation that is given its prefix when it is made, and how it is removed again."""

import pytest

from install_commands import BUILD, ROOT, run

CONSUMER = ROOT / "tests" / "install" / "consumer"


@pytest.fixture
def staged(stage, tmp_path):
    """The root directory of an installation below /opt/elsewhere, from the build for /usr."""
    run("cmake", "--install", BUILD, "--prefix", "/opt/elsewhere", env={"DESTDIR": str(tmp_path)})
    return tmp_path


def uninstall(staged):
    run("cmake", "--build", BUILD, "--target", "uninstall", env={"DESTDIR": str(staged)})


def files_below(directory):
    return sorted(str(path.relative_to(directory)) for path in directory.rglob("*") if not path.is_dir())


def test_pkg_config_names_the_directories_that_the_file_lies_beside(staged, tmp_path_factory):
    [file] = staged.rglob("tarnwick-parser.pc")
    place = {"PKG_CONFIG_PATH": str(file.parent)}
    flags = run("pkg-config", "--cflags", "--libs", "tarnwick-parser", env=place).stdout.split()
    program = tmp_path_factory.mktemp("program") / "consumer"
    run("g++", "-std=c++20", CONSUMER / "main.cpp", *flags, "-o", program)
    libraries = {"LD_LIBRARY_PATH": str(file.parents[1])}
    assert run(program, CONSUMER / "conf.d", env=libraries).stdout == "2\n"


def test_cmake_finds_the_library_below_the_prefix(staged, tmp_path_factory):
    build = tmp_path_factory.mktemp("build")
    package = f"-DCMAKE_PREFIX_PATH={staged}/opt/elsewhere"
    run("cmake", "-G", "Ninja", "-S", CONSUMER, "-B", build, package)
    run("cmake", "--build", build)
    assert run(build / "consumer", CONSUMER / "conf.d").stdout == "2\n"


def test_the_completions_for_zsh_are_where_zsh_looks_below_the_prefix(staged):
    directory = "opt/elsewhere/share/zsh/site-functions"
    completions = [f"{directory}/_tarnwick-config", f"{directory}/_tarnwick-parse-config"]
    assert [file for file in files_below(staged) if "zsh" in file] == completions


def test_uninstalling_removes_all_files_and_the_projects_directories(staged):
    assert files_below(staged)
    uninstall(staged)
    assert files_below(staged) == []
    assert [path for path in staged.rglob("*") if "tarnwick" in path.name.lower()] == []


def test_uninstalling_leaves_what_users_added(staged):
    added = ["etc/tarnwick.conf.d/50-user.conf", "opt/elsewhere/include/tarnwick/mine.h"]
    for file in added:
        (staged / file).touch()
    uninstall(staged)
    assert files_below(staged) == added
