#!/usr/bin/env python3
"""The installed program's start with the simulated meter and its end.

Unpacks the package into a folder of its own and starts what lies there. With PULSEMOD_ROOT the root of
another system, in which the package is installed, is entered instead (packaging/try)."""

import os
import signal
import socket
import subprocess
import tempfile
import time
import unittest
from pathlib import Path

from support import BUILD, main, need, package, run

PATIENCE = 60  # seconds; a loaded machine is slow, and no test is about speed
USER = 1000    # in the other system
OWN_STORE = "[Comms]\nCommsType=2\nGPIBAddress=29\n"


class Robot:
    """Works the program's windows; tour/Wire.h has its language."""

    def __init__(self, connection):
        self.connection = connection
        self.connection.settimeout(PATIENCE)
        self.lines = connection.makefile("r", encoding="utf-8", newline="\n")

    def ask(self, *fields):
        self.connection.sendall(("\t".join(fields) + "\n").encode())
        how, _, text = self.lines.readline().rstrip("\n").partition("\t")
        if how != "ok":
            raise AssertionError(f"{fields}: {how} {text}")
        return text


class Start(unittest.TestCase):
    def setUp(self):
        other = os.environ.get("PULSEMOD_ROOT")
        self.enter = []
        if other:
            self.root = Path(other)
            self.enter = ["/usr/sbin/chroot", f"--userspec={USER}:{USER}", other]
            folder = tempfile.TemporaryDirectory(prefix="pulsemod-", dir=self.root / "tmp")
        else:
            folder = tempfile.TemporaryDirectory(prefix="pulsemod-")
            self.root = Path(folder.name) / "root"
            run("dpkg-deb", "-x", package(), self.root)
        self.addCleanup(folder.cleanup)
        self.home = Path(folder.name) / "home"
        self.config = self.home / ".config"
        self.config.mkdir(parents=True)
        self.home.chmod(0o700)
        self.own_store = self.config / "Pelmora PulseMod.ini"
        self.own_store.write_text(OWN_STORE, encoding="utf-8")
        self.transcript = self.home / "transcript"
        self.started = []
        if other:
            run("chown", "-R", f"{USER}:{USER}", folder.name)
        self.addCleanup(self.end_all)

    def end_all(self):
        for process in self.started:
            process.kill()
            process.wait()

    def seen(self, path):
        """A path as the started program sees it."""
        return "/" + str(path.relative_to(self.root)) if self.enter else str(path)

    def environment(self):
        plugins = self.home / "plugins/generic"
        if not plugins.exists():
            plugins.mkdir(parents=True)
            plugin = BUILD / "plugins/generic/robotplugin.so"
            (plugins / plugin.name).write_bytes(plugin.read_bytes())
        environment = {
            "HOME": self.seen(self.home),
            "PATH": "/usr/bin:/bin",
            "LC_ALL": "C.UTF-8",
            "XDG_RUNTIME_DIR": self.seen(self.home),
            "QT_QPA_PLATFORM": os.environ.get("PULSEMOD_PLATFORM", "offscreen"),
            "QT_PLUGIN_PATH": self.seen(plugins.parent),
            "QT_QPA_GENERIC_PLUGINS": "pulsemodrobot:" + self.seen(self.home / "robot"),
            "SIMULATED_METER_TRANSCRIPT": self.seen(self.transcript),
            "ASAN_OPTIONS": "exitcode=99:detect_leaks=0",
        }
        if "DISPLAY" in os.environ:
            environment["DISPLAY"] = os.environ["DISPLAY"]
        return environment

    def order(self, *arguments):
        folder = Path("/") if self.enter else self.root
        return [*self.enter, str(folder / "usr/bin" / arguments[0]), *arguments[1:]]

    def start(self, *arguments, **variables):
        """Starts an installed program and gives the process and the robot in it."""
        path = self.home / "robot"
        path.unlink(missing_ok=True)
        with socket.socket(socket.AF_UNIX) as listener:
            listener.bind(str(path))
            path.chmod(0o777)
            listener.listen(1)
            listener.settimeout(0.1)
            with open(self.home / "errors", "wb") as errors:
                process = subprocess.Popen(self.order(*arguments), stdin=subprocess.DEVNULL,
                                           stdout=errors, stderr=errors, start_new_session=True,
                                           env=self.environment() | variables)
            self.started.append(process)
            limit = time.monotonic() + PATIENCE
            while time.monotonic() < limit and process.poll() is None:
                try:
                    connection = listener.accept()[0]
                except TimeoutError:
                    continue
                self.addCleanup(connection.close)
                return process, Robot(connection)
        self.fail(f"{arguments} did not come up: {process.poll()} {self.errors()}")

    def errors(self):
        text = (self.home / "errors").read_text(encoding="utf-8", errors="replace")
        return [line for line in text.splitlines()
                if line and not line.startswith("This plugin does not support ")]

    def expect_end(self, process):
        self.assertEqual(process.wait(PATIENCE), 0)
        self.assertEqual(self.errors(), [])

    def store(self, link):
        return self.config / f"Pelmora PulseMod (simulated meter)/{link}/Pelmora PulseMod.ini"

    def port(self):
        return self.store("serial").parent / "Pelmora PulseMod/ports/com1"

    def wait_for(self, condition, what):
        limit = time.monotonic() + PATIENCE
        while not condition():
            self.assertLess(time.monotonic(), limit, what)
            time.sleep(0.02)

    def load_and_leave(self, process, robot):
        """From the first window to the main one, which shows the meter's settings; then out."""
        robot.ask("until", "frmConfigureQuestion", "visible", "true")
        robot.ask("click", "frmConfigureQuestion/cmdLoadPM")
        robot.ask("until", "frmMain", "visible", "true")
        self.assertEqual(robot.ask("get", "frmMain/lblCapture", "text"), "2ms")
        robot.ask("close", "frmMain")
        self.expect_end(process)

    def test_simulated_meter_answers_from_the_installed_place(self):
        for arguments, link, stored in (((), "gpib", "CommsType=2"),
                                        (("--serial",), "serial", "CommsType=1")):
            with self.subTest(link):
                process, robot = self.start("pulsemod-simulated", *arguments)
                self.load_and_leave(process, robot)
                self.assertIn("*IDN?", self.transcript.read_text(encoding="utf-8"))
                self.transcript.unlink()
                self.assertIn(stored, self.store(link).read_text(encoding="utf-8"))
        self.assertEqual(self.own_store.read_text(encoding="utf-8"), OWN_STORE)
        self.assertEqual({path.name for path in self.config.iterdir()},
                         {self.own_store.name, "Pelmora PulseMod (simulated meter)"})
        self.wait_for(lambda: not self.port().is_symlink(), "the serial meter did not end")

    def test_first_window_can_be_closed(self):
        process, robot = self.start("pulsemod-simulated")
        robot.ask("until", "frmConfigureQuestion", "visible", "true")
        robot.ask("close", "frmConfigureQuestion")
        self.expect_end(process)

    def screen(self):
        """The environment of a virtual screen; this test's own where none is given."""
        if os.environ.get("PULSEMOD_PLATFORM", "xcb") != "xcb":
            raise unittest.SkipTest("the virtual screen has a run of its own")
        if "PULSEMOD_PLATFORM" in os.environ:
            return {"DISPLAY": os.environ["DISPLAY"]}
        need("Xvfb", "xvfb")
        screen = subprocess.Popen(["Xvfb", "-displayfd", "1", "-nolisten", "tcp"],
                                  stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
        self.started.append(screen)
        self.addCleanup(screen.stdout.close)
        return {"DISPLAY": f":{screen.stdout.readline().strip()}", "QT_QPA_PLATFORM": "xcb"}

    def test_windows_bear_the_icon(self):
        need("xprop", "x11-utils")
        screen = self.screen()
        process, robot = self.start("pulsemod-simulated", **screen)
        robot.ask("until", "frmConfigureQuestion", "visible", "true")
        title = robot.ask("get", "frmConfigureQuestion", "windowTitle")
        end = time.monotonic() + 10
        said = ""
        # It follows the first window.
        while "_NET_WM_ICON = " not in said and time.monotonic() < end:
            time.sleep(0.1)
            said = run("xprop", "-display", screen["DISPLAY"], "-name", title, "-notype", "-len", "99999",
                       "-f", "WM_CLASS", "8s", "-f", "_NET_WM_ICON", "32c", "WM_CLASS", "_NET_WM_ICON")
        # The class is what StartupWMClass of the menu entry says.
        self.assertIn('WM_CLASS = "pulsemod", "pulsemod"', said)
        self.assertIn("_NET_WM_ICON = ", said)
        numbers = [int(word) for word in said.partition("_NET_WM_ICON = ")[2].split(", ")]
        sizes, trace = [], 0xFFFFE14A
        while numbers:
            width, height = numbers[:2]
            sizes.append((width, height))
            self.assertGreater(numbers[2:2 + width * height].count(trace), width, sizes)
            numbers = numbers[2 + width * height:]
        self.assertEqual(sizes, [(size, size) for size in (16, 32, 48, 128)])
        robot.ask("close", "frmConfigureQuestion")
        self.expect_end(process)

    def test_settings_of_the_simulated_runs_stay(self):
        self.store("gpib").parent.mkdir(parents=True)
        self.store("gpib").write_text("[Comms]\nCommsType=2\nGPIBAddress=14\n", encoding="utf-8")
        if self.enter:
            run("chown", "-R", f"{USER}:{USER}", self.config)
        process, robot = self.start("pulsemod-simulated")
        robot.ask("until", "frmConfigureQuestion", "visible", "true")
        robot.ask("click", "frmConfigureQuestion/cmdLoadPM")
        # Nobody answers at that address: the program says so, and ends.
        robot.ask("until", "messageBox", "visible", "true")
        self.assertIn("Could not read Power Meter Identity",
                      robot.ask("get", "messageBox", "text"))
        robot.ask("key", "messageBox", "Return")
        self.expect_end(process)
        self.assertIn("GPIBAddress=14", self.store("gpib").read_text(encoding="utf-8"))

    def test_folder_that_is_not_absolute_counts_as_none(self):
        process, robot = self.start("pulsemod-simulated", XDG_CONFIG_HOME="somewhere")
        self.load_and_leave(process, robot)
        self.assertTrue(self.store("gpib").is_file())

    def test_folder_of_the_users_choice_is_used(self):
        chosen = self.config / "chosen one"
        process, robot = self.start("pulsemod-simulated", XDG_CONFIG_HOME=self.seen(chosen))
        self.load_and_leave(process, robot)
        self.assertTrue(
            (chosen / "Pelmora PulseMod (simulated meter)/gpib/Pelmora PulseMod.ini").is_file())
        self.assertFalse(self.store("gpib").exists())

    def test_second_serial_run_is_refused_and_disturbs_nothing(self):
        process, robot = self.start("pulsemod-simulated", "--serial")
        robot.ask("until", "frmConfigureQuestion", "visible", "true")
        device = os.readlink(self.port())
        second = subprocess.run(self.order("pulsemod-simulated", "--serial"), capture_output=True,
                                text=True, timeout=PATIENCE, check=False, env=self.environment())
        self.assertEqual((second.returncode, second.stderr),
                         (1, "pulsemod-simulated --serial is running already.\n"))
        self.assertEqual(os.readlink(self.port()), device)
        self.load_and_leave(process, robot)

    def test_end_from_outside_ends_program_and_meter(self):
        process, robot = self.start("pulsemod-simulated", "--serial")
        robot.ask("until", "frmConfigureQuestion", "visible", "true")
        process.send_signal(signal.SIGTERM)
        self.assertEqual(process.wait(PATIENCE), 128 + signal.SIGTERM)
        self.assertEqual(robot.lines.readline(), "")
        self.wait_for(lambda: not self.port().is_symlink(), "the serial meter did not end")

    def test_meter_ends_with_a_killed_launcher(self):
        process, robot = self.start("pulsemod-simulated", "--serial")
        robot.ask("until", "frmConfigureQuestion", "visible", "true")
        process.kill()
        process.wait(PATIENCE)
        self.wait_for(lambda: not self.port().is_symlink(), "the serial meter did not end")
        robot.ask("close", "frmConfigureQuestion")
        self.assertEqual(robot.lines.readline(), "")

    def test_wrong_option_is_told(self):
        second = subprocess.run(self.order("pulsemod-simulated", "--gpib"), capture_output=True,
                                text=True, timeout=PATIENCE, check=False, env=self.environment())
        self.assertEqual((second.returncode, second.stdout), (2, ""))
        self.assertIn("Usage: pulsemod-simulated [--serial]\n", second.stderr)
        self.assertFalse(self.store("gpib").exists())


if __name__ == "__main__":
    main()
