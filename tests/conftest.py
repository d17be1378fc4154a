"""Makes the shared `support` package importable from every suite below this directory."""

import pathlib
import sys

sys.path.insert(0, str(pathlib.Path(__file__).parent))
