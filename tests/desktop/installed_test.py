"""The program in a prefix, started by its desktop entry and by the bus."""

import os
import shlex
import signal
import unittest

from stage.bus import WATCHER
from stage.processes import wait_until
from stage.program import IDENTIFIER
from tests.desktop.harness import DesktopTest

APPLICATION = "org.freedesktop.Application"
PATH = "/" + IDENTIFIER.replace(".", "/")


class Installed:
    """The program in a prefix, and the bus that starts it."""

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        prefix, build = cls.desktop.folder / "usr", cls.desktop.programs
        prefix.mkdir()
        (prefix / "share").symlink_to(cls.desktop.folder / "data")  # where the bus looks for what it can start
        cls.desktop.run("cmake", "--install", build, "--prefix", prefix)
        cls.program = prefix / "bin" / "vistrel"
        cls.entry = prefix / "share" / "applications" / f"{IDENTIFIER}.desktop"
        cls.ask_bus("ReloadConfig")

    @classmethod
    def ask_bus(cls, method, *arguments):
        daemon = "org.freedesktop.DBus"
        return cls.desktop.bus.call(daemon, "/org/freedesktop/DBus", daemon, method, *arguments)

    def ask(self, method, *arguments):
        self.desktop.bus.call(IDENTIFIER, PATH, APPLICATION, method, *arguments)

    def wait_owner(self):
        """Until the program, which the bus has started, has its name; gives the process."""
        bus = self.desktop.bus
        wait_until(lambda: bus.has_owner(IDENTIFIER), "its name on the bus")
        pid = self.ask_bus("GetConnectionUnixProcessID", "(s)", IDENTIFIER)[0]
        self.addCleanup(lambda: bus.has_owner(IDENTIFIER) and os.kill(pid, signal.SIGKILL))
        self.assertEqual(os.readlink(f"/proc/{pid}/exe"), str(self.program))
        return pid

    def end(self, pid):
        os.kill(pid, signal.SIGTERM)
        wait_until(lambda: not self.desktop.bus.has_owner(IDENTIFIER), "the end of the program")


class InstalledTest(Installed, DesktopTest):
    stage = {"accessible": True}

    def wait_started(self):
        pid = self.wait_owner()
        wait_until(lambda: self.desktop.bus.property(WATCHER, "/StatusNotifierWatcher", WATCHER,
                                                     "RegisteredStatusNotifierItems"), "the icon")
        return pid

    def test_the_bus_and_the_entry_start_it_and_it_opens_at_the_next_start(self):
        camera = self.desktop.camera()
        self.assertNotIn(str(self.desktop.programs).encode(), self.program.read_bytes())
        self.assertTrue(os.access(self.program.parents[1] / "libexec" / "vistrel" / "vistrel-cover", os.X_OK))
        for start in (lambda: self.ask("Activate", "(a{sv})", {}),
                      lambda: self.desktop.start(["gio", "launch", self.entry])):
            start()
            pid = self.wait_started()
            self.start_again()  # had the start opened the mirror, this would close it
            self.screen.live_picture()
            self.end(pid)
            self.wait_closed(camera)

    def test_the_action_of_the_entry_opens_the_preferences_and_starts_it_for_them(self):
        def choose(action):
            self.ask("ActivateAction", "(sava{sv})", action, [], {})
        choose("preferences")
        pid = self.wait_started()
        window = wait_until(lambda: self.screen.windows(name="Preferences", pid=pid), "the preferences")[0]
        icon = self.desktop.run("xprop", "-id", str(window["id"]), "-len", "8", "-notype", "32c", "_NET_WM_ICON")
        self.assertTrue(icon.startswith("_NET_WM_ICON = 16"), icon)
        with self.assertRaisesRegex(Exception, "no such action"):
            choose("sing")
        self.screen.key("Escape")
        action = self.entry.read_text().split("[Desktop Action preferences]")[1]
        command = next(line[5:] for line in action.splitlines() if line.startswith("Exec="))
        self.desktop.run(*shlex.split(command))  # what desktops run that do not speak with programs
        wait_until(lambda: len(self.screen.windows(name="Preferences", pid=pid)) == 2, "the preferences again")
        self.end(pid)


class InstalledWithoutTrayTest(Installed, DesktopTest):
    stage = {"host": None}

    def test_the_bus_opens_the_mirror_for_whom_wants_the_program_and_for_nobody_else(self):
        self.desktop.camera()
        self.screen.move((40, 700))
        self.ask_bus("StartServiceByName", "(su)", IDENTIFIER, 0)
        pid = self.wait_owner()
        self.start(awaits_icon=False, environment={"DBUS_SESSION_BUS_ADDRESS": "unix:path=/nowhere"}, complaints=2)
        self.screen.live_picture()  # of the later start, which waits as long for a tray
        self.assertEqual(self.screen.windows(pid=pid), [])
        self.screen.key("Escape")
        self.screen.wait_no_picture()
        self.end(pid)
        self.ask("Activate", "(a{sv})", {})
        pid = self.wait_owner()
        self.screen.live_picture()
        self.end(pid)


if __name__ == "__main__":
    unittest.main()
