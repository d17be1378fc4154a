"""The packages for ARM machines: cross-built, and run under emulation."""

import typing

import pytest

from install_commands import ROOT, run

CONSUMER = ROOT / "tests" / "install" / "consumer"


class Target(typing.NamedTuple):
    triplet: str
    emulator: str
    machine: str  # As readelf calls it.


TARGETS = {
    "arm64": Target("aarch64-linux-gnu", "qemu-aarch64-static", "AArch64"),
    "armhf": Target("arm-linux-gnueabihf", "qemu-arm-static", "ARM"),
}


class Device(typing.NamedTuple):
    """The packages of one architecture and what is in them."""

    target: Target
    packages: dict
    root: typing.Any
    sysroot: typing.Any

    def run(self, program, *arguments):
        emulated = [self.target.emulator, "-L", self.sysroot]
        libraries = f"LD_LIBRARY_PATH={self.root}/usr/lib/{self.target.triplet}"
        return run(*emulated, "-E", libraries, program, *arguments)


@pytest.fixture(scope="module", params=TARGETS)
def device(request, packages, tmp_path_factory):
    found = packages(request.param)
    root = tmp_path_factory.mktemp(request.param)
    for package in found.values():
        run("dpkg-deb", "--extract", package, root)
    sysroot = ROOT / "build" / f"sysroot-{request.param}"
    return Device(TARGETS[request.param], found, root, sysroot)


def test_the_same_four_packages_are_made(device):
    names = ["libtarnwick-parser-dev", "libtarnwick-parser1", "tarnwick-config", "tarnwick-parse-config"]
    assert sorted(device.packages) == names


def test_the_libraries_that_are_needed_are_packages_that_are_named(device):
    depends = run("dpkg-deb", "--field", device.packages["libtarnwick-parser1"], "Depends").stdout
    assert sorted(entry.split()[0] for entry in depends.split(",")) == [
        "libc6",
        "libgcc-s1",
        "libstdc++6",
    ]


@pytest.mark.parametrize("file", ["usr/bin/tarnwick-parse-config", "usr/lib/*/libtarnwick-parser.so"])
def test_program_and_library_are_of_that_machine(file, device):
    [path] = device.root.glob(file)
    header = run("readelf", "--file-header", path).stdout
    [machine] = [line.split(":")[1].strip() for line in header.splitlines() if "Machine:" in line]
    assert machine == device.target.machine


def test_the_tool_answers_under_emulation(device, tmp_path):
    (tmp_path / "10-vendor.conf").write_text("[Config]\nArch=arm\nArch=${config:Config/Hostname}-64\nHostname=x\n")
    tool = device.root / "usr" / "bin" / "tarnwick-parse-config"
    answer = device.run(tool, "--user-id", "0", "--config", tmp_path, "--key", "Arch")
    assert (answer.stdout, answer.stderr) == ("x-64\n", "")


def test_a_program_links_the_library_and_runs_under_emulation(device, tmp_path):
    program = tmp_path / "consumer"
    run(
        *[f"{device.target.triplet}-g++", "-std=c++20", f"--sysroot={device.sysroot}"],
        *[CONSUMER / "main.cpp", f"-I{device.root}/usr/include"],
        *[f"-L{device.root}/usr/lib/{device.target.triplet}", "-ltarnwick-parser", "-o", program],
    )
    result = device.run(program, CONSUMER / "conf.d")
    assert (result.stdout, result.stderr) == ("2\n", "WARNING: [/dev/binder, /dev/ashmem]\n")
