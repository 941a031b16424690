# The kxtypes tests run in a private user directory (never ~/.kx) and on this build's content,
# both given by ctest through the environment; a run without them stops before importing kxtypes.
import os
import shutil
import subprocess

import pytest

for variable in ("KX_USER_DIR", "KX_CONTENT_DIR", "KX_CONSOLE"):
    if not os.environ.get(variable):
        pytest.exit(f"{variable} is not set: run these tests through ctest (python.kxtypes)", returncode=2)

shutil.rmtree(os.environ["KX_USER_DIR"], ignore_errors=True)
os.makedirs(os.environ["KX_USER_DIR"])


@pytest.fixture
def kx(tmp_path):
    """Runs the kx console, which makes the documents these tests open."""
    def run(*arguments):
        subprocess.run([os.environ["KX_CONSOLE"], *map(str, arguments)], check=True, capture_output=True)
    return run
