"""A private X server with the program on it, for the end-to-end tests.

Each test gets an Xvfb of its own (a free display number chosen by the
server), its own config, data and runtime directories in a temp dir, and
tools to look at what the server holds: the top-level windows with their
geometry, map state, WM_CLASS and opacity, and the pixels of the screen.
Every process started here is ended when the session closes.
"""

import argparse
import os
import collections
import re
import shutil
import struct
import subprocess
import sys
import tempfile
import threading
import time

SKIP = 77
SCREEN_W, SCREEN_H = 1280, 800
TIMEOUT = 20.0  # seconds for any one thing to happen; the sanitized build is slow


class Skip(Exception):
    pass


class Failure(AssertionError):
    pass


def check(condition, message):
    if not condition:
        raise Failure(message)


def main(test, tools=("xwininfo", "xprop", "xwd", "xdotool")):
    """Runs test(session) with --app and --probe; 0 passed, 1 failed, 77 skipped."""
    parser = argparse.ArgumentParser()
    parser.add_argument("--app", required=True)
    parser.add_argument("--probe")
    args = parser.parse_args()
    name = os.path.basename(sys.argv[0])
    try:
        for tool in ("Xvfb", *tools):
            if shutil.which(tool) is None:
                raise Skip(f"{tool} is not installed (scripts/install-deps installs it)")
        if not os.access(args.app, os.X_OK):
            raise Skip(f"{args.app} is not built")
        with Session(args.app, args.probe) as session:
            test(session)
    except Skip as e:
        print(f"SKIPPED {name}: {e}")
        return SKIP
    except Failure as e:
        print(f"FAILED {name}: {e}")
        return 1
    print(f"PASSED {name}")
    return 0


def poll(condition, what, timeout=TIMEOUT, interval=0.05):
    """condition() until it gives something true; its value, or a failure naming what."""
    deadline = time.monotonic() + timeout
    while True:
        value = condition()
        if value:
            return value
        if time.monotonic() > deadline:
            raise Failure(f"timed out after {timeout:.0f} s waiting for {what}")
        time.sleep(interval)


def stop(proc):
    if proc is not None and proc.poll() is None:
        proc.terminate()
        try:
            proc.wait(5)
        except subprocess.TimeoutExpired:
            proc.kill()
            proc.wait()


Window = collections.namedtuple("Window", "id name wm_class rect")
WINDOW_LINE = re.compile(
    r'^\s+(0x[0-9a-f]+) (?:\(has no name\)|"(.*)"): \((.*)\)\s+(\d+)x(\d+)\+(-?\d+)\+(-?\d+)')


class App:
    def __init__(self, args, popen, log):
        self.args, self.popen, self.pid, self.log = args, popen, popen.pid, log

    def running(self):
        return self.popen.poll() is None

    def wait(self, timeout=TIMEOUT):
        """The exit status, once it has ended."""
        try:
            return self.popen.wait(timeout)
        except subprocess.TimeoutExpired:
            raise Failure(f"ostrivane {self.args} still running after {timeout:.0f} s") from None

    def output(self):
        with open(self.log, errors="replace") as f:
            return f.read()


class Session:
    def __init__(self, app, probe):
        self.app_path, self.probe = app, probe
        self.apps, self.extra, self.xvfb = [], [], None

    def __enter__(self):
        self.tmp = tempfile.mkdtemp(prefix="ostrivane-e2e-")
        self.config, self.data, self.runtime = (os.path.join(self.tmp, d) for d in ("config", "data", "run"))
        for d in (self.config, self.data, self.runtime):
            os.makedirs(d, mode=0o700)
        self.data_file = os.path.join(self.data, "Ostrivane", "ostrivane.ini")
        self.env = {k: v for k, v in os.environ.items()
                    if not k.startswith(("XDG_", "QT_", "DBUS_SESSION", "WAYLAND"))}
        self.env.update(HOME=self.tmp, XDG_CONFIG_HOME=self.config, XDG_DATA_HOME=self.data,
                        XDG_RUNTIME_DIR=self.runtime, QT_QPA_PLATFORM="xcb", NO_AT_BRIDGE="1")
        self.new_screen(SCREEN_W, SCREEN_H)
        return self

    def new_screen(self, width, height):
        """A fresh Xvfb of that size in place of the one before, whose clients go with it."""
        stop(self.xvfb)
        read_end, write_end = os.pipe()
        self.xvfb = subprocess.Popen(
            ["Xvfb", "-displayfd", str(write_end), "-screen", "0", f"{width}x{height}x24",
             "-nolisten", "tcp", "-noreset"],
            pass_fds=(write_end,), stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(write_end)
        # The server writes its display number once it accepts connections.
        with os.fdopen(read_end, "rb") as f:
            number = f.readline().strip()
        if not number:
            raise Failure("Xvfb did not start")
        self.env["DISPLAY"] = ":" + number.decode()

    def __exit__(self, *exc):
        for proc in self.extra + [app.popen for app in self.apps]:
            stop(proc)
        for app in self.apps if exc[0] is not None else []:
            if out := app.output().strip():
                print(f"--- output of ostrivane {app.args} ---\n{out}")
        stop(self.xvfb)
        shutil.rmtree(self.tmp, ignore_errors=True)
        return False

    def start(self, *args, env=None):
        """env: variables to change for this start, None to take one away."""
        log = os.path.join(self.tmp, f"app{len(self.apps)}.log")
        changed = {k: v for k, v in {**self.env, **(env or {})}.items() if v is not None}
        with open(log, "wb") as out:
            popen = subprocess.Popen([self.app_path, *args], env=changed, stdout=out,
                                     stderr=subprocess.STDOUT, stdin=subprocess.DEVNULL)
        app = App(list(args), popen, log)
        self.apps.append(app)
        return app

    def start_other(self, argv, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL):
        """Another program on this display, ended with the session; a piped output comes as text."""
        proc = subprocess.Popen(argv, env=self.env, stdout=stdout, stderr=stderr, stdin=subprocess.DEVNULL, text=True)
        self.extra.append(proc)
        return proc

    def x(self, *argv, check_rc=True):
        """Output of an X tool run on this display."""
        done = subprocess.run(argv, env=self.env, capture_output=True, text=True,
                              errors="replace", timeout=TIMEOUT)
        if check_rc and done.returncode != 0:
            raise Failure(f"{' '.join(argv)} failed: {done.stderr.strip()}")
        return done.stdout

    def probe_run(self, *args):
        return subprocess.run([self.probe, *args], env=self.env, capture_output=True,
                              text=True, errors="replace", timeout=TIMEOUT)

    def windows(self):
        """The top-level windows, topmost first."""
        out = self.x("xwininfo", "-root", "-children")
        return [Window(m[1], m[2], re.findall(r'"([^"]*)"', m[3]), (int(m[6]), int(m[7]), int(m[4]), int(m[5])))
                for m in map(WINDOW_LINE.match, out.splitlines()) if m]

    def viewable(self, wid):
        return "Map State: IsViewable" in self.x("xwininfo", "-id", wid, check_rc=False)

    def marker_windows(self):
        return [w for w in self.windows() if w.wm_class[:1] == ["marker"] and self.viewable(w.id)]

    def titled(self, title):
        return [w for w in self.windows() if w.name == title and self.viewable(w.id)]

    def cardinal(self, wid, name):
        m = re.search(r"=\s*(\d+)", self.x("xprop", "-id", wid, name))
        return int(m.group(1)) if m else None

    def screenshot(self):
        path = os.path.join(self.tmp, "root.xwd")
        with open(path, "wb") as f:
            subprocess.run(["xwd", "-root", "-silent"], env=self.env, stdout=f, check=True, timeout=TIMEOUT)
        return Image(path)

    def close_box(self, wid):
        done = self.probe_run("close", wid)
        check(done.returncode == 0, f"x11_probe close failed: {done.stderr}")

    def clipboard(self):
        done = self.probe_run("clipboard")
        return done.stdout if done.returncode == 0 else None

    def start_wm(self):
        if shutil.which("openbox") is None:
            raise Skip("openbox is not installed (scripts/install-deps installs it)")
        self.start_other(["openbox"])
        poll(lambda: "_NET_SUPPORTING_WM_CHECK(WINDOW)" in self.x("xprop", "-root", "_NET_SUPPORTING_WM_CHECK"),
             "openbox to manage the screen")

    def client(self, title):
        """A managed window by its exact title, once it shows."""
        return poll(lambda: self.x("xdotool", "search", "--onlyvisible", "--name", f"^{title}$", check_rc=False).split(),
                    f"the window {title!r}")[0]

    def click(self, wid, x, y, button=1):
        """A click at x, y inside a window, with real pointer events."""
        self.x("xdotool", "mousemove", "--window", wid, str(x), str(y))
        self.x("xdotool", "click", str(button))


class Target:
    """x11_probe's "target" window under the given rectangle: the key and
    button events it receives, as lines."""

    def __init__(self, session, rect):
        self.proc = session.start_other([session.probe, "target", *map(str, rect)], stdout=subprocess.PIPE, stderr=None)
        self.lines, self.lock = [], threading.Lock()
        threading.Thread(target=self._read, daemon=True).start()
        self.id = poll(lambda: session.titled("target"), "the target window")[0].id

    def _read(self):
        for line in self.proc.stdout:
            with self.lock:
                self.lines.append(line.strip())

    def take(self, count=0, settle=0.4):
        """What came since the last take, once count lines (and any in flight) have arrived."""
        poll(lambda: len(self.lines) >= count, f"{count} events at the target")
        time.sleep(settle)
        with self.lock:
            got, self.lines[:] = list(self.lines), []
        return got


class Image:
    """The root window as xwd writes it: a ZPixmap in the visual's masks."""

    def __init__(self, path):
        with open(path, "rb") as f:
            data = f.read()
        h = struct.unpack(">25I", data[:100])
        self.byte_order, self.bpp, self.bpl, self.masks = h[7], h[11], h[12], h[14:17]
        check(self.bpp in (24, 32), f"unexpected xwd pixel size {self.bpp} (depth {h[3]})")
        self.pixels = data[h[0] + h[19] * 12:]  # after the header and the colour map

    def rgb(self, x, y):
        size = self.bpp // 8
        o = y * self.bpl + x * size
        v = int.from_bytes(self.pixels[o:o + size], "little" if self.byte_order == 0 else "big")
        shifts = [(m & -m).bit_length() - 1 for m in self.masks]
        return tuple(((v & m) >> shift) * 255 // (m >> shift) for m, shift in zip(self.masks, shifts))


def rgb_of(colour):
    """A colour of the data file (red in the low byte) as (r, g, b)."""
    return (colour & 0xFF, (colour >> 8) & 0xFF, (colour >> 16) & 0xFF)


def write_data_file(path, groups, settings=()):
    """The data file in its own layout: CR LF line ends, a Defaults section (with
    settings, "Key=value"), then one section per group of (defaults row, markers, notes)."""
    os.makedirs(os.path.dirname(path), exist_ok=True)
    lines = ["[Defaults]", *settings, "Defaults=0,0,-2,-2,255,1,100,0,", "DataFormat=1",
             f"ScreenRes={SCREEN_W}x{SCREEN_H}", "PC=e2e"]
    for name, (row0, markers, notes) in groups.items():
        lines += [f"[{name}]", "DataFormat=1", "Defaults=" + "".join(f"{v}," for v in row0)]
        for n, marker in enumerate(markers, 1):
            lines.append(f"{n}=" + "".join(f"{v}," for v in marker))
        lines.append(f"Notes={notes}")
    with open(path, "wb") as f:
        f.write(("\r\n".join(lines) + "\r\n").encode("latin-1"))
