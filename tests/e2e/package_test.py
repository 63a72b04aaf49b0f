#!/usr/bin/env python3
"""What a packager and a user get from the build next to --app: a staged install
with every file in its place and each validator content, a Debian package that
lintian passes, and the program out of that package (unpacked, not installed)
showing a group on a virtual screen."""

import glob
import os
import subprocess
import sys
import tempfile

from x11_session import Skip, check, main, poll, write_data_file

APP_ID = "org.ostrivane.Ostrivane"
ICON_SIZES = (16, 22, 24, 32, 48, 64, 128, 256)
TOOLS = ("cpack", "lintian", "desktop-file-validate", "appstreamcli", "man", "dpkg-deb")


def run(*argv, **kw):
    return subprocess.run(argv, capture_output=True, text=True, errors="replace", timeout=600, **kw)


def staged_install(build, root):
    done = run("cmake", "--install", build, "--prefix", "/usr", env={**os.environ, "DESTDIR": root})
    check(done.returncode == 0, f"the staged install failed: {done.stderr}")
    usr = os.path.join(root, "usr")
    wanted = ["bin/ostrivane", f"share/applications/{APP_ID}.desktop", f"share/metainfo/{APP_ID}.metainfo.xml",
              "share/man/man1/ostrivane.1.gz", "share/doc/ostrivane/copyright", "share/doc/ostrivane/changelog.gz",
              f"share/icons/hicolor/scalable/apps/{APP_ID}.svg",
              *(f"share/icons/hicolor/{n}x{n}/apps/{APP_ID}.png" for n in ICON_SIZES)]
    missing = [w for w in wanted if not os.path.isfile(os.path.join(usr, w))]
    check(not missing, f"not installed: {missing}")
    check(os.access(os.path.join(usr, "bin/ostrivane"), os.X_OK), "the program is not executable")
    check(glob.glob(os.path.join(usr, "lib/**/ostrivane/libostrivane-desktop.so"), recursive=True),
          "the desktop module is not installed under lib/.../ostrivane")
    return usr


def validators_content(usr):
    share = os.path.join(usr, "share")
    entry = run("desktop-file-validate", os.path.join(share, "applications", f"{APP_ID}.desktop"))
    check(entry.returncode == 0 and not entry.stdout.strip(), f"desktop-file-validate: {entry.stdout}{entry.stderr}")
    meta = run("appstreamcli", "validate", "--no-net", os.path.join(share, "metainfo", f"{APP_ID}.metainfo.xml"))
    check(meta.returncode == 0, f"appstreamcli validate: {meta.stdout}{meta.stderr}")
    page = run("man", "--warnings", "-E", "UTF-8", "-l", os.path.join(share, "man/man1/ostrivane.1.gz"),
               env={**os.environ, "LC_ALL": "C.UTF-8", "MANWIDTH": "80", "MAN_KEEP_FORMATTING": ""})
    check(page.returncode == 0 and not page.stderr.strip(), f"man -l warned: {page.stderr}")
    for part in ("/show", "/stop", "/quit", "HOT KEYS", "settings.ini", "EXIT STATUS"):
        check(part in page.stdout, f"the manual page has no {part!r}")


def package(build, out):
    done = run("cpack", "-G", "DEB", "-B", out, "--config", os.path.join(build, "CPackConfig.cmake"))
    debs = glob.glob(os.path.join(out, "ostrivane_*.deb"))
    check(done.returncode == 0 and len(debs) == 1, f"cpack made {debs}: {done.stdout[-2000:]}{done.stderr}")
    lint = run("lintian", "--fail-on", "error", debs[0])
    check(lint.returncode == 0, f"lintian: {lint.stdout}{lint.stderr}")
    control = run("dpkg-deb", "-f", debs[0], "Depends").stdout
    check("libqt6widgets6" in control and "libcurl4" in control, f"the package depends on {control!r}")
    return debs[0]


def test(session):
    missing = [tool for tool in TOOLS if subprocess.run(["which", tool], capture_output=True).returncode]
    if missing:
        raise Skip(f"{' '.join(missing)} not installed (scripts/install-deps installs them)")
    build = os.path.dirname(os.path.abspath(session.app_path))
    with tempfile.TemporaryDirectory(prefix="ostrivane-package-") as tmp:
        usr = staged_install(build, os.path.join(tmp, "stage"))
        validators_content(usr)
        deb = package(build, os.path.join(tmp, "deb"))
        root = os.path.join(tmp, "root")
        check(run("dpkg-deb", "-x", deb, root).returncode == 0, "dpkg-deb -x failed")

        session.app_path = os.path.join(root, "usr/bin/ostrivane")
        marker = [800, 550, 100, 100, 0xFF0000, 1, 100, 0]
        write_data_file(session.data_file, {"Bench": ([0, 0, -1, -1, -1, -1, -1, -1], [marker], "")})
        app = session.start("Bench")
        poll(lambda: len(session.marker_windows()) == 2, "the packaged program's lines")
        check(app.running(), f"the packaged program ended: {app.output()}")


if __name__ == "__main__":
    sys.exit(main(test))
