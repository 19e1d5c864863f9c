"""What every test of the module shares: the example files and the built command-line tool."""

import json
import os
import subprocess
from pathlib import Path

import pytest

SOURCE = Path(os.environ.get("XUN_SOURCE_DIR", Path(__file__).resolve().parents[2]))
TOOL = os.environ.get("XUN_TOOL", "xuntemplate")
EXAMPLES = SOURCE / "examples" / "templates"
SCANS = SOURCE / "examples" / "scans"
TOOL_DATA = SOURCE / "tools" / "xuntemplate" / "tests" / "data"


def run_tool(*args, cwd=None):
    """Runs the command-line tool; fails the test when it does not succeed."""
    done = subprocess.run([TOOL, *map(str, args)], capture_output=True, text=True, cwd=cwd)
    assert done.returncode == 0, done.stderr
    return done.stdout


def tool_dump(path):
    return json.loads(run_tool("dump", path))


@pytest.fixture
def exam():
    import xuntemplate

    with xuntemplate.Template.read(str(EXAMPLES / "exam.omr"), for_edit=True) as t:
        yield t
