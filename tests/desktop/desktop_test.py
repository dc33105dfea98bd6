#!/usr/bin/env python3
"""Starts the console as ./run does on a machine without a display, and opens its desktop with a viewer.

Usage: desktop_test.py FOLDER-OF-scripts BUILD-FOLDER [unittest options]
"""

import os
import re
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import time
import unittest

from viewer import Refused, Viewer

PATIENCE = 30  # seconds
SPANISH, ENGLISH = "0", "1"
HIDDEN = ("DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM", "QUERMO_VNC_PORT")


def until(found, what):
    end = time.monotonic() + PATIENCE
    while time.monotonic() < end:
        result = found()
        if result:
            return result
        time.sleep(0.05)
    raise AssertionError(f"waited in vain for {what}")


def output(*command, **options):
    return subprocess.run(command, capture_output=True, text=True, check=False, **options).stdout


class Session:
    """All that one start brings up, with a viewer on its desktop and a home of its own."""

    def __init__(self, language=None, port=None):
        self.home = tempfile.mkdtemp(prefix="desktop-test-")
        self.settings = os.path.join(self.home, "quermo.ini")
        if language is not None:
            with open(self.settings, "w", encoding="utf-8") as file:
                file.write(f"[Software]\nquermo\\Idioma={language}\n")
        environment = {name: value for name, value in os.environ.items() if name not in HIDDEN}
        environment.update(XDG_CONFIG_HOME=self.home, XDG_RUNTIME_DIR=self.home, TMPDIR=self.home)
        if port is not None:
            environment["QUERMO_VNC_PORT"] = str(port)
        self.start = subprocess.Popen([SCRIPTS + "/start-console", BUILD], env=environment, text=True,
                                      stdout=subprocess.PIPE, stderr=subprocess.STDOUT, start_new_session=True)
        told = re.compile(r"VNC desktop: 127\.0\.0\.1:(\d+)  password (\S+)\n")
        found = next(filter(None, map(told.fullmatch, self.start.stdout)), None)
        if not found:
            raise AssertionError("there was no desktop")
        self.port, self.password = int(found[1]), found[2]
        self.viewer = Viewer(self.port, self.password)
        console = until(lambda: next((pid for pid, name in self.processes().items() if name == "quermo"), None),
                        "the console")
        with open(f"/proc/{console}/environ", encoding="utf-8") as variables:
            own = dict(entry.split("=", 1) for entry in variables.read().split("\0") if "=" in entry)
        self.display = {**os.environ, "DISPLAY": own["DISPLAY"], "XAUTHORITY": own["XAUTHORITY"]}

    def close(self):
        if self.start.poll() is None:
            os.killpg(self.start.pid, signal.SIGTERM)
            self.start.wait(PATIENCE)
        self.start.stdout.close()
        if hasattr(self, "viewer"):
            self.viewer.close()
        shutil.rmtree(self.home)

    def processes(self):
        """The name of each process by its number."""
        lines = output("ps", "-s", str(self.start.pid), "-o", "pid=,comm=").splitlines()
        return {int(pid): name for pid, name in (line.split(maxsplit=1) for line in lines)}

    def window(self, title):
        found = output("xdotool", "search", "--onlyvisible", "--name", title, env=self.display).split()
        return found[-1] if found else None

    def shown(self, title):
        """The window of that title, once it shows and has the focus."""
        def active():
            window = self.window(title)
            focused = output("xdotool", "getactivewindow", env=self.display).strip()
            return window if window == focused else None
        return until(active, title)

    def gone(self, title):
        until(lambda: not self.window(title), f"the end of {title}")

    def language(self):
        with open(self.settings, encoding="utf-8") as file:
            return re.search(r"Idioma=(\S+)", file.read())[1]

    def click_close_button(self, window):
        told = output("xwininfo", "-id", window, env=self.display)
        x, y, width = (int(re.search(name + r":\s+(-?\d+)", told)[1])
                       for name in ("Absolute upper-left X", "Absolute upper-left Y", "Width"))
        extents = output("xprop", "-id", window, "_NET_FRAME_EXTENTS", env=self.display)
        title = int(re.findall(r"\d+", extents.split("=")[1])[2])
        assert title > 10, "the window has no title bar"
        self.viewer.click(x + width - title // 2, y - title // 2)

    def left_over(self):
        """Processes and temporary files that outlived the start."""
        self.start.wait(PATIENCE)
        return list(self.processes().values()) + [name for name in os.listdir(self.home) if name != "quermo.ini"]


class Desktop(unittest.TestCase):
    def begin(self, *arguments, **options):
        session = Session(*arguments, **options)
        self.addCleanup(session.close)
        return session

    def test_the_language_form_closes_by_its_frame_and_all_ends_with_the_main_window(self):
        session = self.begin()
        session.click_close_button(session.shown("Idioma / Language"))
        session.gone("Idioma / Language")
        main = session.shown("^Quermo$")
        self.assertEqual(session.language(), SPANISH)
        session.click_close_button(main)
        self.assertEqual(session.left_over(), [])
        self.assertEqual(session.start.returncode, 0)

    def test_the_language_form_closes_by_keys(self):
        for keys, language in ((["Return"], SPANISH), (["Down", "Escape"], ENGLISH)):
            session = self.begin()
            session.shown("Idioma / Language")
            for key in keys:
                session.viewer.press(key)
            session.gone("Idioma / Language")
            session.shown("^Quermo$")
            self.assertEqual(session.language(), language)
            session.viewer.press("Alt", "F4")
            self.assertEqual(session.left_over(), [])

    def test_only_the_password_opens_it_and_only_on_this_machine(self):
        session = self.begin(ENGLISH)
        session.shown("^Quermo$")
        for wrong in (session.password[:-1], session.password.swapcase(), ""):
            with self.assertRaises(Refused):
                Viewer(session.port, wrong)
        listening = [line.split()[3] for line in output("ss", "-Hltnp").splitlines()
                     if set(session.processes()) & set(map(int, re.findall(r"pid=(\d+)", line)))]
        self.assertIn(f"127.0.0.1:{session.port}", listening)
        self.assertEqual([place for place in listening if not place.startswith(("127.0.0.1:", "[::1]:"))], [])
        stranger = {**session.display, "XAUTHORITY": "/dev/null"}
        self.assertEqual(output("xprop", "-root", env=stranger), "")

    def test_the_port_is_the_one_asked_for_else_a_free_one(self):
        with socket.socket() as taken:
            taken.bind(("127.0.0.1", 0))
            taken.listen()
            port = taken.getsockname()[1]
            refused = subprocess.run([SCRIPTS + "/vnc-desktop", "true"], capture_output=True, text=True, check=False,
                                     env={**os.environ, "QUERMO_VNC_PORT": str(port)})
        self.assertEqual(refused.returncode, 1)
        self.assertIn(f"did not start on port {port}", refused.stderr)
        self.assertEqual(self.begin(SPANISH, port=port).port, port)
        self.assertNotEqual(self.begin(SPANISH).port, self.begin(SPANISH).port)

    def test_a_signal_ends_all(self):
        for sent in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            session = self.begin(SPANISH)
            session.shown("^Quermo$")
            if sent == signal.SIGINT:
                os.killpg(session.start.pid, sent)  # as Ctrl+C does
            else:
                session.start.send_signal(sent)
            self.assertEqual(session.left_over(), [])
            self.assertEqual(session.start.returncode, 128 + sent)


if __name__ == "__main__":
    SCRIPTS, BUILD = sys.argv[1:3]
    unittest.main(argv=sys.argv[:1] + sys.argv[3:])
