#!/usr/bin/env python3
"""The X11 window system under the library's window helpers: runs
window_system_check on a private Xvfb with no window manager."""

import argparse
import os
import shutil
import subprocess
import sys

from x11_session import SKIP, TIMEOUT, Session


def run():
    parser = argparse.ArgumentParser()
    parser.add_argument("--check", required=True, help="the window_system_check binary")
    check = parser.parse_args().check
    name = os.path.basename(sys.argv[0])
    missing = ("Xvfb is not installed (scripts/install-deps installs it)" if shutil.which("Xvfb") is None
               else f"{check} is not built" if not os.access(check, os.X_OK) else None)
    if missing:
        print(f"SKIPPED {name}: {missing}")
        return SKIP
    with Session(check, None) as session:  # a timeout ends the test with its traceback
        done = subprocess.run([check], env=session.env, capture_output=True, text=True, errors="replace",
                              timeout=TIMEOUT)
    sys.stdout.write(done.stdout + (done.stderr if done.returncode else ""))
    print(f"{'PASSED' if done.returncode == 0 else 'FAILED'} {name}")
    return 0 if done.returncode == 0 else 1


if __name__ == "__main__":
    sys.exit(run())
