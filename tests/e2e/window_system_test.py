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
    args = parser.parse_args()
    name = os.path.basename(sys.argv[0])
    if shutil.which("Xvfb") is None:
        print(f"SKIPPED {name}: Xvfb is not installed (scripts/install-deps installs it)")
        return SKIP
    if not os.access(args.check, os.X_OK):
        print(f"SKIPPED {name}: {args.check} is not built")
        return SKIP
    with Session(args.check, None) as session:
        try:
            done = subprocess.run([args.check], env=session.env, capture_output=True, text=True,
                                  errors="replace", timeout=TIMEOUT)
        except subprocess.TimeoutExpired:
            print(f"FAILED {name}: window_system_check still running after {TIMEOUT:.0f} s")
            return 1
    sys.stdout.write(done.stdout)
    if done.returncode != 0:
        sys.stdout.write(done.stderr)
        print(f"FAILED {name}: window_system_check ended with {done.returncode}")
        return 1
    print(f"PASSED {name}")
    return 0


if __name__ == "__main__":
    sys.exit(run())
