"""What cameras and the media daemon do wrong, and that the mirror outlives it."""

import os
import resource
import signal
import unittest

from gi.repository import GLib

from stage.processes import wait_until
from stage.program import Program, centre
from tests.desktop.harness import FAILED, REFRESHED, SAVING, STARTED, DesktopTest

ODD_NAMES = ("", "x" * 500, "Fish & Chips", "<b>bold</b>", "two\nlines", "מצלמה קדמית", "Cafe\u0301 _under_", "Twin", "Twin")
LIES = ("huge-stride", "negative-stride", "odd-stride", "long-size", "short-size", "no-size", "far-offset", "corrupted",
        "formats", "huge-formats", "renegotiates", "short-choice", "empty-values", "huge-values")  # of the test camera, see its usage
ABOUT = 1  # in the menu, after the camera
NEUTRAL = (0xD9, 0xDA, 0xDD)  # the glass without a picture, on a light desktop
# With no descriptor left the sanitizers, which look at memory by way of a pipe, take every object for a wrong one.
NEEDS_DESCRIPTORS = "LSAN_OPTIONS" in os.environ
LOGIN_MANAGER = "org.freedesktop.login1.Manager"


class CameraFaultTest(DesktopTest):
    def test_without_a_camera_the_mirror_says_so_and_the_next_opening_has_one(self):
        vistrel = self.start()
        vistrel.click()
        wait_until(vistrel.windows, "the window without a picture")
        vistrel.click()
        wait_until(lambda: not vistrel.windows(), "the end of the window")
        self.desktop.camera()
        self.open(vistrel)
        self.assertEqual(vistrel.process.errors, [])

    def test_a_camera_that_dies_is_said_at_once_and_the_next_opening_shows_another(self):
        first, second = (self.desktop.camera(name=name, node=name) for name in ("a", "b"))
        vistrel = self.start()
        self.open(vistrel)
        first.unplug()
        vistrel.wait_line(FAILED)
        self.screen.wait_no_picture()
        self.assertEqual(self.desktop.readers(second), 0)
        vistrel.click()
        self.open(vistrel)
        self.assertEqual(self.desktop.readers(second), 1)

    def test_a_camera_that_sends_nothing_is_said_after_a_while(self):
        # Memory that its owner can cut short may not be touched.
        for fault in ("--silent", "--refuse", "--memory unsealed", "--memory short", "--memory shrinking",
                      "--memory foreign", "stall", "error broken"):
            with self.subTest(fault=fault), self.start() as vistrel:
                is_option = fault.startswith("--")
                camera = self.desktop.camera(options=fault.split() if is_option else [])
                vistrel.click()
                if not is_option:
                    self.screen.live_picture()
                    camera.tell(fault)
                # The link has the reason at once.
                vistrel.wait_line(FAILED + ("The camera reported an error: " if fault == "--memory foreign" else ""))
                self.screen.wait_no_picture()
                vistrel.click()
                wait_until(lambda: not vistrel.windows(), "the end of the window")
                self.desktop.unplug_all()

    def test_whatever_a_camera_says_of_itself_the_next_one_is_shown(self):
        vistrel = self.start()
        for lie in LIES:
            with self.subTest(lie=lie):
                self.desktop.camera(offers=["yuy2:640x480@30/15"], options=["--evil", lie])
                since = len(vistrel.lines)
                vistrel.click()
                vistrel.process.wait_line(lambda line: line.startswith((STARTED, FAILED)), since)
                wait_until(vistrel.windows, "the window")
                vistrel.click()
                wait_until(lambda: not vistrel.windows(), "the end of the window")
                self.desktop.unplug_all()
        self.desktop.camera()
        self.open(vistrel)

    def test_a_camera_whose_pictures_cannot_be_shown_is_said_to_be_one(self):
        camera = self.desktop.camera(offers=["mjpeg:1280x720@30"])
        vistrel = self.start()
        camera.tell("garbage")
        vistrel.click()
        vistrel.wait_line(FAILED + "The camera sends pictures that cannot be shown.")

    def test_a_hung_camera_holds_up_no_window(self):
        camera = self.desktop.camera()
        vistrel = self.start()
        os.kill(camera.pid, signal.SIGSTOP)
        self.addCleanup(os.kill, camera.pid, signal.SIGCONT)
        vistrel.click()
        window = wait_until(vistrel.windows, "the window")[0]
        place = centre(window["place"])
        wait_until(lambda: self.screen.color(place) == NEUTRAL, "a neutral surface")
        self.assertNotIn(STARTED, vistrel.lines)
        os.kill(camera.pid, signal.SIGCONT)
        self.screen.live_picture()
        vistrel.wait_line(STARTED)
        self.assertEqual(vistrel.windows()[0]["place"], window["place"])

    def test_broken_frames_are_dropped_and_the_next_good_one_is_shown(self):
        camera = self.desktop.camera(offers=["mjpeg:1280x720@30"])
        vistrel = self.start()
        self.open(vistrel)
        for _ in range(3):
            camera.tell("garbage")
            camera.tell("resume")
            self.screen.live_picture(5)
        self.assertNotIn(FAILED, [line[:len(FAILED)] for line in vistrel.lines])

    def test_black_first_frames_and_every_layout_are_shown(self):
        for layout in ("yuy2", "uyvy", "nv12", "i420", "yv12", "rgb", "bgr", "rgbx", "bgrx", "mjpeg"):
            with self.subTest(layout=layout):
                self.desktop.camera(offers=[f"{layout}:640x480@30"], options=["--black", "5"])
                with self.start() as vistrel:
                    seen = self.open(vistrel)
                    self.assertTrue(seen["upright"] and seen["mirrored"])
                self.desktop.unplug_all()

    def test_names_of_all_kinds_can_be_chosen(self):
        for index, name in enumerate(ODD_NAMES):
            self.desktop.camera(name=name, node=f"odd-{index}")
        vistrel = self.start()
        for index, name in enumerate(ODD_NAMES):
            vistrel.click(button=3)
            since = len(vistrel.lines)
            vistrel.choose(index)
            vistrel.wait_line(lambda line: line.startswith(SAVING), since)
            wait_until(lambda: vistrel.preferences().get("defaultCameraPreference") == name, name)
            vistrel.wait_no_menu()

    def start_logind(self):
        """A scripted one on the session's bus. Gives the environment in which that is the system's too, and a way to
        call its script."""
        name, path = "org.freedesktop.login1", "/org/freedesktop/login1"
        login = self.desktop.start(["/usr/bin/python3", "-m", "dbusmock", name, path, LOGIN_MANAGER])
        self.addCleanup(login.end)
        wait_until(lambda: self.desktop.bus.has_owner(name), "the scripted logind")

        def script(*call):
            self.desktop.bus.call(name, path, "org.freedesktop.DBus.Mock", *call)
        return {"DBUS_SYSTEM_BUS_ADDRESS": self.desktop.environment["DBUS_SESSION_BUS_ADDRESS"]}, script

    def test_behind_a_closed_lid_the_built_in_camera_is_not_listed(self):
        system, script = self.start_logind()

        def shut(is_closed, method="UpdateProperties"):
            script(method, "(sa{sv})", LOGIN_MANAGER, {"LidClosed": GLib.Variant("b", is_closed)})
        shut(True, "AddProperties")
        lid = self.desktop.camera(name="Lid", node="a", options=["--property", "api.libcamera.location=front"])
        dock = self.desktop.camera(name="Dock", node="b")
        vistrel = self.start(environment=system)
        for is_closed, shown in ((True, dock), (False, lid), (True, dock)):
            shut(is_closed)
            since = len(vistrel.lines)
            self.open(vistrel)
            self.assertEqual(self.desktop.readers(shown), 1)
            listed = vistrel.lines[vistrel.wait_line(lambda line: line.startswith(REFRESHED), since)]
            self.assertEqual(("Lid" in listed, "Dock" in listed), (not is_closed, True))
            vistrel.click()
            self.wait_closed(shown)

    def test_the_camera_is_let_go_while_the_computer_sleeps(self):
        system, script = self.start_logind()
        vistrel = self.start(environment=system)
        for offer in ("yuy2:1280x720@30", "mjpeg:1280x720@30"):
            camera = self.desktop.camera(offers=[offer])
            self.open(vistrel)
            said = list(vistrel.lines)
            for is_asleep in (True, False):
                script("EmitSignal", "(sssav)", LOGIN_MANAGER, "PrepareForSleep", "b",
                       [GLib.Variant("b", is_asleep)])
                if is_asleep:
                    self.wait_closed(camera)
                    self.assertTrue(vistrel.windows())
            self.screen.live_picture()
            self.assertEqual(vistrel.lines, said)
            vistrel.click()
            self.wait_closed(camera)
            self.desktop.unplug_all()


class WindowFaultTest(DesktopTest):
    def test_a_window_that_is_destroyed_from_outside_frees_the_camera_and_comes_again(self):
        camera = self.desktop.camera()
        vistrel = self.start()
        for _ in range(2):
            self.open(vistrel)
            self.screen.destroy(vistrel.windows()[0])
            self.wait_closed(camera)
        self.assertTrue(self.open(vistrel)["mirrored"])

    def test_a_window_that_never_comes_to_the_screen_frees_the_camera(self):
        camera = self.desktop.camera()
        vistrel = self.start(complaints=1)
        manager = self.desktop.manager
        manager.signal(signal.SIGSTOP)
        self.addCleanup(manager.signal, signal.SIGCONT)
        self.start_again()  # a manager that hangs takes the pointer along
        vistrel.wait_line(STARTED)
        vistrel.process.wait_line("vistrel: ", errors=True)
        wait_until(lambda: self.desktop.readers(camera) == 0, "the end of the stream")
        manager.signal(signal.SIGCONT)
        self.open(vistrel)


class ResourceFaultTest(DesktopTest):
    def test_without_the_plugins_of_pipewire_it_goes_on_without_its_cameras(self):
        self.desktop.camera()
        with Program(self.desktop, {}, environment={"SPA_PLUGIN_DIR": "/nowhere"}) as vistrel:  # which complains
            vistrel.click()
            wait_until(vistrel.windows, "the window without a picture")
            self.assertEqual(vistrel.terminate(), 0)

    @unittest.skipIf(NEEDS_DESCRIPTORS, "sanitizers need descriptors")
    def test_without_descriptors_it_goes_on_without_a_picture(self):
        camera = self.desktop.camera(offers=["mjpeg:1280x720@30"])
        vistrel = Program(self.desktop, {})
        self.addCleanup(vistrel.process.end)
        used = len(os.listdir(f"/proc/{vistrel.pid}/fd"))
        resource.prlimit(vistrel.pid, resource.RLIMIT_NOFILE, (used + 2, 1024))  # libraries need two
        vistrel.click()
        vistrel.wait_line(FAILED)
        wait_until(lambda: self.desktop.readers(camera) == 0, "the end of the stream")
        vistrel.click()
        wait_until(lambda: not vistrel.windows(), "the end of the window")
        self.assertEqual(vistrel.terminate(), 0)

    @unittest.skipIf(NEEDS_DESCRIPTORS, "sanitizers need descriptors")
    def test_a_start_without_descriptors_says_so(self):
        vistrel = Program(self.desktop, {}, prefix=["prlimit", "--nofile=20:1024"], awaits_icon=False)
        vistrel.process.wait()
        self.assertIn("Too many open files", "".join(vistrel.process.errors))


class DaemonFaultTest(DesktopTest):
    stage = {"pipewire": False}

    def test_the_daemon_may_come_late_and_go_and_come_again(self):
        vistrel = self.start()
        for number in (signal.SIGTERM, signal.SIGKILL):
            vistrel.click()
            wait_until(vistrel.windows, "the window without a picture")
            vistrel.click()
            wait_until(lambda: not vistrel.windows(), "the end of the window")
            self.desktop.start_pipewire()
            self.desktop.camera()
            self.open(vistrel)
            since = len(vistrel.lines)
            self.desktop.stop_pipewire(number)
            vistrel.wait_line(FAILED, since)
            self.screen.wait_no_picture()
            self.desktop.unplug_all()
            vistrel.click()
            wait_until(lambda: not vistrel.windows(), "the end of the window")
        self.assertIsNone(vistrel.process.status)

    def test_a_hung_daemon_holds_up_neither_the_window_nor_the_menu_nor_the_end(self):
        self.desktop.start_pipewire()
        self.addCleanup(self.desktop.stop_pipewire)
        self.desktop.camera()
        vistrel = self.start()
        daemon = self.desktop.pipewire
        daemon.signal(signal.SIGSTOP)
        self.addCleanup(daemon.signal, signal.SIGCONT)
        vistrel.click()
        wait_until(vistrel.windows, "the window")
        vistrel.click(button=3)
        vistrel.choose(ABOUT)
        wait_until(lambda: vistrel.windows(name="About Vistrel"), "an answer of the menu")
        vistrel.wait_no_menu()
        self.assertNotIn(STARTED, vistrel.lines)
        vistrel.click()
        wait_until(lambda: vistrel.windows(name="Vistrel"), "the window")
        daemon.signal(signal.SIGCONT)
        self.screen.live_picture()
        vistrel.wait_line(STARTED)
        daemon.signal(signal.SIGSTOP)
        self.assertEqual(vistrel.terminate(), 0)


if __name__ == "__main__":
    unittest.main()
