"""Libraries that are loaded into the tool before its own."""

import os
import subprocess

import pytest

from support.tool import EMULATOR


def compile_library(source, library):
    """Compiles a C or C++ file for the tool's machine to the shared object `library`; returns its path."""
    compiler = os.environ.get("TARNWICK_CC") or "gcc"
    subprocess.run([compiler, "-shared", "-fPIC", "-Wall", "-Werror", "-o", library, source], check=True)
    return library


def preload(library):
    """The environment that loads `library` first; sanitizers would otherwise insist on that place."""
    if EMULATOR:
        pytest.skip("the tool's native commands would load the library as well")
    options = ":".join(filter(None, [os.environ.get("ASAN_OPTIONS"), "verify_asan_link_order=0"]))
    return {"LD_PRELOAD": str(library), "ASAN_OPTIONS": options}
