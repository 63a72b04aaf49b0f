#!/usr/bin/env python3
"""The X11 window system under the library's window helpers: runs
window_system_check (as --app) on a private Xvfb with no window manager."""

import subprocess
import sys

from x11_session import TIMEOUT, Failure, main


def test(session):
    done = subprocess.run([session.app_path], env=session.env, capture_output=True, text=True, errors="replace",
                          timeout=TIMEOUT)
    sys.stdout.write(done.stdout + done.stderr)
    if done.returncode != 0:
        raise Failure(f"window_system_check ended with {done.returncode}")


if __name__ == "__main__":
    sys.exit(main(test, tools=()))
