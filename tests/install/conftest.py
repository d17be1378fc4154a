"""What the suite shares: a staged installation of a build of its own (build/install), and packages.

TARNWICK_PACKAGES, when it is set, is a directory with packages that scripts/build-packages made
already; otherwise the suite makes them.
"""

import os
import pathlib

import pytest

from install_commands import BUILD, ROOT, run


@pytest.fixture(scope="session")
def stage(tmp_path_factory):
    """The root directory of an installation below /usr, made from the release preset."""
    directory = tmp_path_factory.mktemp("stage")
    configure = ["cmake", "--preset", "release", "-B", BUILD, "-DCMAKE_INSTALL_PREFIX=/usr"]
    run(*configure, "-DTARNWICK_TESTS=OFF", "-DTARNWICK_EXAMPLES=OFF", cwd=ROOT)
    run("cmake", "--build", BUILD, "--parallel", "2")
    run("cmake", "--install", BUILD, env={"DESTDIR": str(directory)})
    return directory


@pytest.fixture(scope="session")
def library_directory(stage):
    """Where the staged library is: /usr/lib, or a directory in it that names the architecture."""
    [link] = (stage / "usr" / "lib").rglob("libtarnwick-parser.so")
    return link.parent


@pytest.fixture(scope="session")
def packages():
    """A function that returns the packages of an architecture by name."""

    def packages_for(architecture):
        made = os.environ.get("TARNWICK_PACKAGES")
        if not made:
            run(ROOT / "scripts" / "build-packages", architecture)
        directory = pathlib.Path(made or ROOT / "build" / "packages").resolve()
        return {path.name.split("_")[0]: path for path in directory.rglob(f"*_{architecture}.deb")}

    return packages_for
