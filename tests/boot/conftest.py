"""The machine that the checks of this suite run on; scripts/test-boot makes it."""

import pytest

from serial_console import ROOT, architecture, booted

FIGURES = pytest.StashKey()


@pytest.fixture(scope="session")
def machine(request):
    """The machine, booted once; it runs the checks whose tests were selected."""
    directory = ROOT / "build" / f"boot-{architecture()}"
    selected = [item.callspec.params["check"] for item in request.session.items if hasattr(item, "callspec")]
    (directory / "additions/srv/checks/selected").write_text("".join(f"{name}\n" for name in selected))
    with booted(architecture(), directory / "serial.log") as machine:
        request.config.stash[FIGURES] = machine.figures
        yield machine


def pytest_terminal_summary(terminalreporter, config):
    for figure in config.stash.get(FIGURES, []):
        terminalreporter.write_line(figure)
