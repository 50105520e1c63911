#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""The gallery in a real X server, driven by a real pointer and keyboard.

Starts Xvfb and the gallery with --trace (which prints where its controls
stand and what they do), then with xdotool: clicks into the day of an empty
date field, types a date, steps it with Up, opens the month calendar with
the field's button and closes it with Escape (the day keeps its selection,
so typing goes on over it), opens it again and picks a day, brings the
CommandBox page to the
front and presses Salva by its access key; and checks what the gallery
printed at each step. Clicks are aimed from the places the gallery prints.

usage: gallery_x11.py GALLERY    exit 0 passed, 1 failed, 77 skipped (no Xvfb or xdotool)
"""

import datetime
import os
import queue
import re
import select
import shutil
import subprocess
import sys
import tempfile
import threading
import time

SKIPPED = 77
STEP_SECONDS = 15  # the longest any one step may take, a slow sanitizer build included
TOTAL_SECONDS = 55


class Failure(Exception):
    pass


def end(process):
    """Ends a process this script started: politely, then for sure."""
    if process.poll() is None:
        process.terminate()
    try:
        process.wait(5)
    except subprocess.TimeoutExpired:
        process.kill()
        process.wait()


class XServer:
    """An Xvfb of its own, on the first free display, 1366 x 768."""

    def __enter__(self):
        read, write = os.pipe()
        self.process = subprocess.Popen(
            ["Xvfb", "-displayfd", str(write), "-screen", "0", "1366x768x24", "-nolisten", "tcp"],
            pass_fds=[write], stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
        os.close(write)
        number = b""
        deadline = time.monotonic() + STEP_SECONDS
        while not number.endswith(b"\n"):
            left = deadline - time.monotonic()
            if left <= 0 or not select.select([read], [], [], left)[0]:
                self.process.kill()
                raise Failure("Xvfb did not start")
            chunk = os.read(read, 16)
            if not chunk:
                raise Failure("Xvfb ended: " + self.process.stderr.read().decode(errors="replace"))
            number += chunk
        os.close(read)
        return ":" + number.decode().strip()

    def __exit__(self, *exc):
        end(self.process)


class Gallery:
    """The gallery with --trace; its lines arrive on a queue as it prints them."""

    def __init__(self, path, display):
        env = dict(os.environ, DISPLAY=display, QT_QPA_PLATFORM="xcb", LC_ALL="C.UTF-8")
        for name in ("WAYLAND_DISPLAY", "QT_SCALE_FACTOR", "QT_SCREEN_SCALE_FACTORS"):
            env.pop(name, None)
        self.errors = tempfile.TemporaryFile()
        self.process = subprocess.Popen(
            [path, "--page", "DateBox", "--size", "1280x700", "--trace"], env=env,
            stdout=subprocess.PIPE, stderr=self.errors, text=True)
        self.lines = queue.Queue()
        self.seen = []
        threading.Thread(target=self._read, daemon=True).start()

    def _read(self):
        for line in self.process.stdout:
            self.lines.put(line.rstrip("\n"))
        self.lines.put(None)

    def expect(self, pattern, what):
        """Waits for a line matching `pattern`; returns its match."""
        deadline = time.monotonic() + STEP_SECONDS
        while True:
            left = deadline - time.monotonic()
            try:
                line = self.lines.get(timeout=max(left, 0))
            except queue.Empty:
                raise Failure(f"no {what} within {STEP_SECONDS} s (waited for /{pattern}/)")
            if line is None:
                raise Failure(f"the gallery ended (status {self.process.wait()}) before {what}")
            self.seen.append(line)
            match = re.fullmatch(pattern, line)
            if match:
                return match

    def stop(self):
        end(self.process)

    def stderr(self):
        self.errors.seek(0)
        return self.errors.read().decode(errors="replace")


def xdotool(display, *args):
    result = subprocess.run(["xdotool", *map(str, args)], env=dict(os.environ, DISPLAY=display),
                            capture_output=True, text=True, timeout=STEP_SECONDS)
    if result.returncode != 0:
        raise Failure(f"xdotool {' '.join(map(str, args))}: {result.stderr.strip()}")
    return result.stdout


pointer = [None]  # where the last click left the pointer


def click_at(display, x, y):
    """A left click at a screen point. The pointer is moved there first and
    the move waited for, unless it is there already (xdotool would wait for
    a move that never comes)."""
    if pointer[0] != (x, y):
        xdotool(display, "mousemove", "--sync", x, y)
        pointer[0] = (x, y)
    xdotool(display, "click", 1)


def places(gallery, kind):
    """The last page's lines of one kind ("AT", "FIELDS", "TAB"), by name: numbers."""
    found = {}
    for line in gallery.seen:
        parts = line.split(" ")
        if parts[0] == kind and len(parts) == 6:
            found[parts[1]] = [int(p) for p in parts[2:]]
    return found


def cell_of(day, width, height):
    """Where a day of its month stands in the month calendar (the popup's
    pixels): seven columns from Monday by ten rows, of which rows 3 to 8
    are the weeks; a month that starts on a Monday starts in the second."""
    cw, rh = width // 7, height // 10
    first = day.replace(day=1)
    lead = first.isoweekday() if first.isoweekday() > 1 else 8  # days before `first` shown
    offset = (day - first).days + lead - 1  # from the grid's first cell
    column, row = offset % 7, offset // 7
    return column * cw + cw // 2, (row + 3) * rh + rh // 2


def drive(gallery, display):
    started = time.monotonic()
    steps = []

    def step(name):
        if time.monotonic() - started > TOTAL_SECONDS:
            raise Failure(f"over {TOTAL_SECONDS} s before: {name}")
        steps.append(name)
        print(f"- {name}", flush=True)

    step("the window comes up")
    gallery.expect(r"READY", "READY")
    window = xdotool(display, "search", "--sync", "--onlyvisible", "--name",
                     "^Kelvarin Gallery$").split()[0]
    xdotool(display, "windowfocus", "--sync", window)
    at, fields = places(gallery, "AT"), places(gallery, "FIELDS")
    if "nullable" not in at or "nullable" not in fields:
        raise Failure("the DateBox page does not show the empty date field")
    x, y, w, h = at["nullable"]
    left, top, _, height = fields["nullable"]

    step("a click on the day of the empty field")
    click_at(display, x + left + 6, y + top + height // 2)
    gallery.expect(r"EVENT nullable MouseUp\(1, 0, .*\)", "the field's MouseUp")
    gallery.expect(r'VALUE nullable "__/__/____" empty Null', "the empty value after the click")

    step("typing 25122007 fills day, month and year")
    xdotool(display, "type", "--delay", "60", "25122007")
    gallery.expect(r"EVENT nullable KeyDown\(55, 0\)", "the KeyDown of the last 7")
    gallery.expect(r'VALUE nullable "25/12/2007" 2007-12-25 00:00:00 2007-12-25 00:00:00',
                   "25/12/2007 once the year is typed")

    step("Up steps the day, where typing left the focus")
    xdotool(display, "key", "Up")
    gallery.expect(r"EVENT nullable Change\(\)", "a Change for the step")
    gallery.expect(r'VALUE nullable "26/12/2007" 2007-12-26 00:00:00 2007-12-26 00:00:00',
                   "26/12/2007 after Up")

    step("Escape closes the calendar, and typing goes on over the day")
    click_at(display, x + w - 10, y + h // 2)
    gallery.expect(r"POPUP .*", "the calendar popup")
    xdotool(display, "key", "Escape")
    gallery.expect(r"POPUP closed", "the calendar closing")
    xdotool(display, "type", "--delay", "60", "26")
    gallery.expect(r'VALUE nullable "2_/12/2007" .*', "a 2 typed over the selected day")
    gallery.expect(r'VALUE nullable "26/12/2007" 2007-12-26 00:00:00 2007-12-26 00:00:00',
                   "26/12/2007 again")

    step("the calendar button opens the month calendar")
    click_at(display, x + w - 10, y + h // 2)
    popup = gallery.expect(r"POPUP (-?\d+) (-?\d+) (\d+) (\d+)", "the calendar popup")
    px, py, pw, ph = map(int, popup.groups())

    step("a click on the 10th picks it")
    cx, cy = cell_of(datetime.date(2007, 12, 10), pw, ph)
    click_at(display, px + cx, py + cy)
    gallery.expect(r"POPUP closed", "the calendar closing")
    gallery.expect(r"EVENT nullable Change\(\)", "a Change for the picked day")
    gallery.expect(r'VALUE nullable "10/12/2007" 2007-12-10 00:00:00 2007-12-10 00:00:00',
                   "10/12/2007 after the pick")

    step("the CommandBox page, and Alt+S presses Salva")
    tabs = places(gallery, "TAB")
    if "CommandBox" not in tabs:
        raise Failure("no CommandBox tab")
    tx, ty, tw, th = tabs["CommandBox"]
    click_at(display, tx + tw // 2, ty + th // 2)
    gallery.expect(r"PAGE CommandBox", "the CommandBox page in front")
    xdotool(display, "key", "alt+s")
    gallery.expect(r"EVENT cmdSalva Click\(\)", "Salva's Click")
    return steps, time.monotonic() - started


def failed(failure, gallery):
    """Says what failed and what the gallery printed last; returns the exit status."""
    print(f"FAILED: {failure}")
    if gallery:
        print("The last lines the gallery printed:")
        for line in gallery.seen[-40:]:
            print("  " + line)
        errors = gallery.stderr().strip()
        if errors:
            print("and on standard error:\n" + errors[-3000:])
    print("0 passed, 1 failed")
    return 1


def main():
    if len(sys.argv) != 2:
        print(__doc__.strip().splitlines()[-1], file=sys.stderr)
        return 2
    missing = [tool for tool in ("Xvfb", "xdotool") if shutil.which(tool) is None]
    if missing:
        print(f"skipped: {' and '.join(missing)} not installed")
        return SKIPPED
    gallery = None
    try:
        with XServer() as display:
            gallery = Gallery(sys.argv[1], display)
            try:
                steps, seconds = drive(gallery, display)
            finally:
                gallery.stop()
        print(f"{len(steps)} passed, 0 failed  ({seconds:.1f} s)")
        return 0
    except (Failure, subprocess.TimeoutExpired) as failure:
        return failed(failure, gallery)


if __name__ == "__main__":
    sys.exit(main())
