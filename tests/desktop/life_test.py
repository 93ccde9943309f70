"""Starting, ending, the preferences file, and a tray that is late, restarted or absent."""

import os
import pathlib
import signal
import socket
import subprocess
import unittest

from stage.portal import Portal
from stage.processes import wait_until
from stage.program import IDENTIFIER, Program
from tests.desktop.harness import STARTED, DesktopTest

APPLICATION = "org.freedesktop.Application"
PATH = "/" + IDENTIFIER.replace(".", "/")


def can_mount():
    """Only root, and not in every container."""
    return subprocess.run(["unshare", "--mount", "true"], capture_output=True).returncode == 0


class LifeTest(DesktopTest):
    def test_a_second_start_hands_over_to_the_first(self):
        camera = self.desktop.camera()
        vistrel = self.start()
        for _ in range(2):
            self.start_again()
            self.screen.live_picture()
            vistrel.click()
            self.wait_closed(camera)
        self.desktop.bus.call(IDENTIFIER, PATH, APPLICATION, "Activate", "(a{sv})", {})
        self.screen.live_picture()
        self.assertEqual(len(vistrel.icons()), 1)

    def test_many_starts_at_once_are_one(self):
        self.desktop.camera()
        vistrel = self.start()
        for _ in range(50):
            self.desktop.bus.send(IDENTIFIER, PATH, APPLICATION, "Activate", "(a{sv})", {})
        # Answered after all of them.
        self.desktop.bus.call(IDENTIFIER, PATH, APPLICATION, "Open", "(asa{sv})", [], {})
        self.screen.live_picture(10)
        self.assertEqual(vistrel.lines.count(STARTED), 1)

    def test_a_start_during_the_launch_opens_the_mirror_after_it(self):
        self.desktop.camera()
        portal = Portal(self.desktop, -2)  # which the launch waits for
        self.addCleanup(portal.close)
        self.start(awaits_icon=False)
        wait_until(lambda: self.desktop.bus.has_owner(IDENTIFIER), "its name on the bus")
        self.start_again()
        self.screen.live_picture()

    def test_signals_end_it_in_an_orderly_way(self):
        camera = self.desktop.camera()
        for number in (signal.SIGTERM, signal.SIGINT):
            vistrel = self.start()
            self.open(vistrel)
            vistrel.process.signal(number)
            vistrel.process.wait()
            self.wait_closed(camera)

    def test_without_a_display_it_says_so_in_one_line(self):
        process = self.desktop.start([self.desktop.programs / "vistrel"], {"DISPLAY": ":99999"})
        self.assertEqual(process.wait(), 1)
        self.assertEqual(len(process.errors), 1, process.errors)
        self.assertEqual(process.lines, [])

    def test_who_never_answers_is_said(self):
        display = 10000 + os.getpid() % 50000  # no server has such a number
        path = f"/tmp/.X11-unix/X{display}"
        server = socket.socket(socket.AF_UNIX)
        self.addCleanup(server.close)
        self.addCleanup(os.unlink, path)
        server.bind(path)
        server.listen()
        for variable, value, whom in (("DISPLAY", f":{display}", "X server"),
                                      ("DBUS_SESSION_BUS_ADDRESS", f"unix:path={path}", "session bus")):
            process = self.desktop.start([self.desktop.programs / "vistrel"], {variable: value})
            process.wait_line(f"vistrel: the {whom} does not answer", errors=True)
            process.signal(signal.SIGKILL)

    def test_without_a_session_bus_it_says_so_once_and_runs(self):
        self.desktop.camera()
        self.open(self.start(complaints=1, environment={"DBUS_SESSION_BUS_ADDRESS": "unix:path=/nowhere"}))

    def test_what_it_is_started_with_may_be_missing_or_broken(self):
        self.desktop.camera()
        loop = self.desktop.folder / "loop"
        loop.symlink_to(loop)
        for prefix, environment in ((["sh", "-c", 'exec "$0" <&- >&-'], {}), ([], {"XDG_RUNTIME_DIR": str(loop)})):
            with self.subTest(environment=environment), \
                    Program(self.desktop, {}, prefix=prefix, environment=environment) as vistrel:  # libraries complain
                vistrel.click()
                wait_until(vistrel.windows, "the mirror")
                self.assertEqual(vistrel.terminate(), 0)

    def test_a_first_instance_that_hangs_is_said_and_one_that_dies_is_followed(self):
        first = Program(self.desktop, {})
        self.addCleanup(first.process.signal, signal.SIGKILL)
        first.process.signal(signal.SIGSTOP)
        second = Program(self.desktop, awaits_icon=False)
        self.assertEqual((second.process.wait(), len(second.process.errors)), (1, 1))
        third = Program(self.desktop, awaits_icon=False)
        self.addCleanup(third.process.end)
        first.process.signal(signal.SIGKILL)
        third.icon()
        self.assertEqual(third.terminate(), 0)

    def test_a_lock_that_somebody_holds_is_no_obstacle(self):
        camera = self.desktop.camera()
        vistrel = self.start({}, complaints=1)
        folder = vistrel.file.parent
        folder.mkdir(parents=True, exist_ok=True)
        holder = self.desktop.start(["sh", "-c", 'exec 9<"$0" && flock 9 && echo locked && exec sleep 1000', folder])
        self.addCleanup(holder.end)
        holder.wait_line("locked")
        vistrel.open_menu()
        vistrel.choose(0)
        wait_until(lambda: vistrel.process.errors, "the line about the lock")
        self.open(vistrel)
        self.assertEqual(self.desktop.readers(camera), 1)

    def test_a_preferences_file_that_makes_no_sense_is_set_aside(self):
        self.desktop.camera()
        for text in ("", "{", "[]", "\0\1", '{"a": 1} x'):
            with self.subTest(text=text), self.start(text, complaints=int(text != "")) as vistrel:
                self.open(vistrel)
                kept = [path.read_text() for path in vistrel.file.parent.iterdir() if path != vistrel.file]
                self.assertEqual(text in kept, text != "", kept)
                for path in vistrel.file.parent.iterdir():
                    path.unlink()

    def test_values_of_a_wrong_type_or_out_of_range_read_as_the_first(self):
        camera = self.desktop.camera()
        for values in ({"selectedUIIcon": 7, "selectedPopoverSize": -1, "dismissPreference": 7},
                       {"selectedUIIcon": "x", "selectedPopoverSize": {}, "defaultCameraPreference": 5}):
            with self.subTest(values=values), self.start(values) as vistrel:
                self.assertAlmostEqual(self.open(vistrel)["place"][2], 426, delta=2)
                vistrel.click()
                self.wait_closed(camera)

    def choose_twice(self, vistrel):
        """Writes a preference two times."""
        for _ in range(2):
            vistrel.click(button=3)
            since = len(vistrel.lines)
            vistrel.choose(0)
            vistrel.wait_line("⚠️ Saving default camera: Only", since)
            vistrel.wait_no_menu()

    @unittest.skipUnless(can_mount(), "may not mount a file system for one program here")
    def test_a_disk_that_takes_nothing_is_no_obstacle_and_loses_nothing(self):
        self.desktop.camera(name="Only")
        folder = self.desktop.folder / "config"
        kept = '{"selectedPopoverSize": 1}'
        file = folder / IDENTIFIER / "preferences.json"
        fill = f"mkdir {file.parent} && echo '{kept}' >{file} && ! cat /dev/zero >{folder}/full 2>/dev/null"
        for options, more in (("ro", "true"), ("size=64k", fill)):  # seen by this program alone
            script = f"mount -t tmpfs -o {options} none {folder} && {more} && exec \"$@\""
            with self.subTest(options=options), \
                    self.start(complaints=1, prefix=["unshare", "--mount", "sh", "-c", script, "sh"]) as vistrel:
                self.choose_twice(vistrel)
                width = self.open(vistrel)["place"][2]
                if options != "ro":
                    self.assertAlmostEqual(width, 852, delta=2)
                    seen = pathlib.Path(f"/proc/{vistrel.pid}/root{file}")
                    self.assertEqual([path.name for path in seen.parent.iterdir()], [file.name])
                    self.assertEqual(seen.read_text().strip(), kept)

    def test_what_is_no_file_in_the_place_of_the_preferences_is_left_alone(self):
        self.desktop.camera(name="Only")
        file = self.desktop.folder / "config" / IDENTIFIER / "preferences.json"
        file.parent.mkdir(exist_ok=True)
        for make, undo in ((os.mkfifo, os.unlink), (os.mkdir, os.rmdir)):
            file.unlink(missing_ok=True)
            make(file)
            with self.subTest(make=make), Program(self.desktop) as vistrel:
                self.choose_twice(vistrel)
                self.open(vistrel)
                self.assertEqual([path.name for path in file.parent.iterdir()], [file.name])
                self.assertEqual(len(vistrel.process.errors), 1, vistrel.process.errors)
            undo(file)


class SessionTest(DesktopTest):
    stage = {"host": None}

    def test_the_end_of_the_session_ends_it_in_an_orderly_way_and_for_good(self):
        camera = self.desktop.camera()
        manager = self.desktop.start_session_manager()
        vistrel = self.start(awaits_icon=False)
        wait_until(lambda: len(vistrel.lines) == 2, "the end of the launch")
        self.start_again()
        self.screen.live_picture()
        self.desktop.end_session()
        vistrel.process.wait()
        self.wait_closed(camera)
        manager.wait()
        saved = "".join(path.read_text() for path in (self.desktop.folder / "cache" / "sessions").iterdir())
        self.assertIn("Client0_Program=", saved)
        self.assertNotIn("vistrel", saved.replace(str(self.desktop.folder), ""))


class TrayTest(DesktopTest):
    stage = {"host": None}

    def test_without_a_tray_it_opens_by_itself_where_one_would_be_unless_it_started_at_login(self):
        camera = self.desktop.camera()
        self.screen.move((40, 700))  # off the picture, so that no control covers its clock
        nowhere = {"DBUS_SESSION_BUS_ADDRESS": "unix:path=/nowhere"}
        quiet = self.start(awaits_icon=False, environment=nowhere | {"VISTREL_AUTOSTART": "1"}, complaints=1)
        wait_until(lambda: len(quiet.lines) == 2, "the end of its launch")
        vistrel = self.start(awaits_icon=False, complaints=1)
        x, y, width, _ = self.screen.live_picture()["place"]
        self.assertEqual((x + width, y), (1280 - 4, 4))
        self.assertIn("finds no tray", vistrel.process.errors[0])
        self.assertNotIn(STARTED, quiet.lines)
        self.screen.key("Escape")
        self.wait_closed(camera)
        self.start_again()
        self.screen.live_picture()

    def test_a_tray_that_comes_late_or_is_restarted_gets_one_icon(self):
        camera = self.desktop.camera()
        vistrel = self.start(awaits_icon=False)
        wait_until(lambda: len(vistrel.lines) == 2, "the end of the launch")
        self.start_again()  # opens the mirror without an icon
        self.screen.live_picture()
        vistrel.wait_line(STARTED)
        for host in ("xfce4-panel", "xfce4-panel", "trayer"):
            self.desktop.start_host(host)
            vistrel.icon()
            self.screen.live_picture()
            vistrel.click()
            self.wait_closed(camera)
            vistrel.click()
            self.screen.live_picture()
            self.desktop.stop_host()


if __name__ == "__main__":
    unittest.main()
