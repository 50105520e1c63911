#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""What a screen reader reads from the gallery, through AT-SPI.

Starts a D-Bus session, the accessibility bus, Xvfb and the gallery with
its accessibility always on, then reads the gallery's accessible tree as a
screen reader does (pyatspi): a date field is editable text with its date
and the Increase and Decrease actions, a bar a progress bar with its value
and range, a button a push button named by its caption with a Press action.
Then it opens the month calendar of a date field with F4 and checks that
the calendar shows up under the field as a table named by its current date,
that the name follows the days as Right moves on (and the change is
announced), and that the table goes when Escape closes the calendar.

usage: gallery_atspi.py GALLERY    exit 0 passed, 1 failed, 77 skipped
(no Xvfb, xdotool, D-Bus session tools, AT-SPI bus or pyatspi)
"""

import os
import shutil
import subprocess
import sys
import time

try:  # Debian's python3-pyatspi, for Debian's own python3
    import pyatspi
    from gi.repository import GLib
except ImportError:
    pyatspi = None

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from gallery_x11 import (SKIPPED, STEP_SECONDS, Failure, Gallery, XServer, click_at, end,  # noqa: E402
                         failed, places, xdotool)

BUS_LAUNCHER = "/usr/libexec/at-spi-bus-launcher"
INSIDE_SESSION = "KELVARIN_ATSPI_SESSION"


def missing_tools():
    missing = [tool for tool in ("Xvfb", "xdotool", "dbus-run-session") if not shutil.which(tool)]
    if not os.access(BUS_LAUNCHER, os.X_OK):
        missing.append("at-spi2-core")
    if pyatspi is None:
        missing.append("pyatspi for " + sys.executable)
    return missing


def wait_for(what, probe):
    """Polls `probe` until it returns something true; returns that."""
    deadline = time.monotonic() + STEP_SECONDS
    while time.monotonic() < deadline:
        found = probe()
        if found:
            return found
        time.sleep(0.1)
    raise Failure(f"no {what} within {STEP_SECONDS} s")


def nodes(node, depth=0):
    """The accessible tree under `node`, depth first."""
    yield node
    if depth < 40:
        for i in range(node.childCount):
            child = node.getChildAtIndex(i)
            if child is not None:
                yield from nodes(child, depth + 1)


def text_of(node):
    try:
        text = node.queryText()
    except NotImplementedError:
        return None
    return text.getText(0, -1)


def actions_of(node):
    try:
        action = node.queryAction()
    except NotImplementedError:
        return []
    return [action.getName(i) for i in range(action.nActions)]


def find(app, role, test=lambda node: True):
    return next((n for n in nodes(app) if n.getRoleName() == role and test(n)), None)


def drive(gallery, display):
    steps = []

    def step(name):
        steps.append(name)
        print(f"- {name}", flush=True)

    step("the gallery's window in the accessible tree")
    gallery.expect(r"READY", "READY")
    desktop = pyatspi.Registry.getDesktop(0)
    app = wait_for("gallery in the AT-SPI registry", lambda: next(
        (a for a in desktop if a is not None and "gallery" in (a.name or "")), None))

    step("a date field is editable text with its date and stepping actions")
    field = wait_for("the 25/12/2007 field", lambda: find(
        app, "text", lambda n: text_of(n) == "25/12/2007"))
    states = field.getState()
    if not states.contains(pyatspi.STATE_EDITABLE) or not states.contains(pyatspi.STATE_FOCUSABLE):
        raise Failure("the date field is not editable and focusable")
    if not {"Increase", "Decrease"} <= set(actions_of(field)):
        raise Failure(f"the date field's actions are {actions_of(field)}")

    step("a bar is a progress bar with its value and range")
    bar = find(app, "progress bar")
    if bar is None:
        raise Failure("no progress bar")
    value = bar.queryValue()
    if not (value.minimumValue <= value.currentValue <= value.maximumValue < float("inf")):
        raise Failure(f"the bar's value {value.currentValue} in "
                      f"{value.minimumValue}..{value.maximumValue}")

    step("a button is a push button named by its caption, without the access key's &")
    button = find(app, "push button", lambda n: n.name == "Salva")
    if button is None:
        raise Failure("no push button named Salva")
    if "Press" not in actions_of(button):
        raise Failure(f"Salva's actions are {actions_of(button)}")

    step("F4 drops the calendar, a table under its field named by the current date")
    heard = []
    pyatspi.Registry.registerEventListener(
        lambda event: heard.append((event.source_name, event.type)),
        "object:property-change:accessible-name")
    x, y, _, _ = places(gallery, "AT")["patternDate"]
    left, top, _, height = places(gallery, "FIELDS")["patternDate"]
    window = xdotool(display, "search", "--sync", "--onlyvisible", "--name",
                     "^Kelvarin Gallery$").split()[0]
    xdotool(display, "windowfocus", "--sync", window)
    click_at(display, x + left + 6, y + top + height // 2)
    gallery.expect(r"EVENT patternDate MouseUp\(1, 0, .*\)", "the field's MouseUp")
    xdotool(display, "key", "F4")
    gallery.expect(r"POPUP -?\d+ -?\d+ \d+ \d+", "the calendar popup")
    table = wait_for("the calendar under its field", lambda: find(field, "table"))
    if table.name != "Tuesday, 25 December 2007":
        raise Failure(f"the calendar is named {table.name!r}")
    if table.parent != field:
        raise Failure("the calendar's parent is not its field")

    step("Right moves to the 26th; the name follows and the change is announced")
    xdotool(display, "key", "Right")

    def announced():
        # Events are delivered by GLib's main loop, which nothing else runs here.
        while GLib.MainContext.default().iteration(False):
            pass
        return table.name == "Wednesday, 26 December 2007" and any(
            name == "Wednesday, 26 December 2007" for name, _ in heard)

    wait_for("the 26th named and announced", announced)

    step("Escape closes the calendar and takes it out of the tree")
    xdotool(display, "key", "Escape")
    gallery.expect(r"POPUP closed", "the calendar closing")
    wait_for("the calendar gone from the tree", lambda: find(field, "table") is None)
    return steps


def main():
    if len(sys.argv) != 2:
        print(__doc__.strip().splitlines()[-2], file=sys.stderr)
        return 2
    missing = missing_tools()
    if missing:
        print(f"skipped: {', '.join(missing)} not installed")
        return SKIPPED
    if not os.environ.get(INSIDE_SESSION):
        # A D-Bus session of our own, so that nothing of the machine's is read.
        return subprocess.call(["dbus-run-session", "--", sys.executable, *sys.argv],
                               env=dict(os.environ, **{INSIDE_SESSION: "1"}))

    gallery = launcher = None
    started = time.monotonic()
    try:
        with XServer() as display:
            launcher = subprocess.Popen([BUS_LAUNCHER, "--launch-immediately"],
                                        env=dict(os.environ, DISPLAY=display),
                                        stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            os.environ["QT_LINUX_ACCESSIBILITY_ALWAYS_ON"] = "1"
            gallery = Gallery(sys.argv[1], display)
            try:
                steps = drive(gallery, display)
            finally:
                gallery.stop()
                end(launcher)
        print(f"{len(steps)} passed, 0 failed  ({time.monotonic() - started:.1f} s)")
        return 0
    except (Failure, subprocess.TimeoutExpired) as failure:
        return failed(failure, gallery)


if __name__ == "__main__":
    sys.exit(main())
