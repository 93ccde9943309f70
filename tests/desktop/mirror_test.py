"""The mirror: a click opens it with the live picture, and everything that closes it frees the camera."""

import signal
import unittest

from stage.processes import wait_until
from stage.program import centre
from tests.desktop.harness import REFRESHED, SIZES, STARTED, DesktopTest, plain

SIZE = "1680x900"
NORMAL = "\t\twindow state: Normal"
UNLISTED = {"_NET_WM_STATE_SKIP_TASKBAR", "_NET_WM_STATE_SKIP_PAGER"}  # in no list of windows


class TearingOff:
    def test_it_can_be_torn_off(self):
        camera = self.desktop.camera()
        vistrel = self.start({"dismissPreference": 1})
        x, y, width, height = self.open(vistrel)["place"]
        self.assertLessEqual(UNLISTED, self.states(vistrel))
        self.assertIn("UTILITY", self.kind(vistrel))
        start = (x + width // 2, y + height // 2)
        self.screen.drag(start, (start[0] - 300, start[1] + 200))
        vistrel.wait_line("Detached", vistrel.wait_line("Should Detach"))
        self.screen.move((100, 850))  # off the picture, so that no control covers its clock
        place = self.screen.live_picture()["place"]
        self.assertEqual(place, [x - 300, y + 200, width, height])
        self.screen.click((100, 850))
        self.screen.key("Escape")
        self.screen.live_picture(10)
        self.assertIn("_NET_WM_STATE_ABOVE", self.states(vistrel))
        self.assertFalse(UNLISTED & self.states(vistrel))
        wait_until(lambda: "UTILITY" not in self.kind(vistrel) and "window id" not in self.kind(vistrel),
                   "an ordinary window, which belongs to no other")
        vistrel.click()
        self.wait_closed(camera)

    def test_a_window_that_the_desktop_puts_aside_keeps_no_camera_on(self):
        camera = self.desktop.camera()
        for message in ("WM_CHANGE_STATE", "_NET_SHOWING_DESKTOP"):
            with self.subTest(message=message), self.start({"dismissPreference": 1}) as vistrel:
                start = centre(self.open(vistrel)["place"])
                self.screen.drag(start, (start[0] - 300, start[1] + 200))
                vistrel.wait_line("Detached")
                self.put_aside(message, self.window(vistrel))
                self.wait_closed(camera)
                self.open(vistrel)
                self.assertLessEqual(UNLISTED, self.states(vistrel))
                vistrel.click()
                self.wait_closed(camera)
                vistrel.open_menu()
                self.screen.click(centre(vistrel.menu_rows()[-2]))
                window = wait_until(lambda: vistrel.windows(name="Preferences"), "Preferences")[0]
                wait_until(lambda: self.screen.focus()["id"] == window["id"], "the focus on it")
                states = self.watch_states(window)
                since = len(states.lines)
                self.put_aside(message, window)
                if message == "WM_CHANGE_STATE":
                    # Told anew, and so put aside, though the word of that may be read when the window is back.
                    states.wait_line(NORMAL, since)
                else:
                    wait_until(lambda: not vistrel.windows(name="Preferences"), "the desktop")
                    self.screen.move((100, 850))  # off the picture, so that no control covers its clock
                    self.start_again()  # opens the mirror, since no window is on the screen
                    self.screen.live_picture()
                    vistrel.click()
                    self.wait_closed(camera)
                wait_until(lambda: vistrel.windows(name="Preferences"), "Preferences back")

    def test_a_virtual_desktop_that_is_left_keeps_no_camera_on_and_is_left_by_its_windows(self):
        camera = self.desktop.camera()
        self.screen.ask("request", "_NET_NUMBER_OF_DESKTOPS", 2)
        vistrel = self.start({"dismissPreference": 1})
        vistrel.open_menu()
        self.screen.click(centre(vistrel.menu_rows()[-2]))
        wait_until(lambda: vistrel.windows(name="Preferences"), "Preferences")
        self.open(vistrel)
        self.screen.ask("request", "_NET_CURRENT_DESKTOP", 1)
        self.wait_closed(camera)
        self.open(vistrel)  # after which Preferences would have come back
        self.assertEqual(vistrel.windows(name="Preferences"), [])
        vistrel.click()
        self.wait_closed(camera)
        self.screen.ask("request", "_NET_CURRENT_DESKTOP", 0)
        wait_until(lambda: vistrel.windows(name="Preferences"), "Preferences on their desktop")

    def put_aside(self, message, window):
        is_single = message == "WM_CHANGE_STATE"
        self.screen.ask("request", message, *((3, window["id"]) if is_single else (1,)))  # 3: to an icon

    def watch_states(self, window):
        """Says each state that it is told of; the first one before the server knows that it listens."""
        window = ["-id", window["id"], "-f", "_HEARD", "8s"]
        watch = self.desktop.start(["xprop", "-spy", *window, "WM_STATE", "_HEARD"])
        watch.wait_line("_HEARD")

        def hears():
            self.desktop.run("xprop", *window, "-set", "_HEARD", "yes")
            return any("yes" in line for line in watch.lines)

        wait_until(hears, "a change of the window that is heard")
        return watch

    def states(self, vistrel):
        return set(self.window(vistrel)["states"])

    def kind(self, vistrel):
        return self.desktop.run("xprop", "-id", self.window(vistrel)["id"], "_NET_WM_WINDOW_TYPE", "WM_TRANSIENT_FOR")

    def window(self, vistrel):
        """The one that has the program's name."""
        return next(window for window in vistrel.windows(managed=True, name="Vistrel") if window["states"])


class MirrorTest(TearingOff, DesktopTest):
    stage = {"size": SIZE}

    def test_a_click_shows_the_mirrored_picture_and_the_next_one_ends_it(self):
        # The daemon allocates the buffers, or the camera does, as the plugin for the kernel's drivers.
        cameras = (("mjpeg", ()), ("mjpeg", ("--memory", "dmabuf")), ("yuy2", ("--memory", "dmabuf")))
        for index, (size, (form, options)) in enumerate(zip(SIZES, cameras)):
            with self.subTest(size=size):
                self.desktop.camera(name="Other", node="z-other")
                camera = self.desktop.camera(name="Wanted", node="a-wanted", offers=[f"{form}:1280x720@30"],
                                             options=options)
                with self.start({"selectedPopoverSize": index, "defaultCameraPreference": "Wanted"}) as vistrel:
                    seen = self.open(vistrel)
                    self.assertTrue(seen["mirrored"] and seen["upright"])
                    for got, wanted in zip(seen["place"][2:], size):
                        self.assertAlmostEqual(got, wanted, delta=2)
                    self.assertEqual(self.desktop.readers(camera), 1)
                    x, y = centre(vistrel.icon())
                    left, top, width, _height = seen["place"]
                    self.assertTrue(left <= x <= left + width and 0 < top - y < 60, (seen["place"], x, y))
                    vistrel.click()
                    self.wait_closed(camera)
                self.desktop.unplug_all()

    def test_a_press_that_the_window_manager_holds_back_is_still_one_on_the_mirror(self):
        self.desktop.camera()
        vistrel = self.start()
        x, y, width, height = self.open(vistrel)["place"]
        middle, across = (x + width // 2, y + height // 2), (x, y + height // 2, width, 1)
        self.screen.move(middle)
        self.addCleanup(self.screen.ask, "release", 1)
        self.addCleanup(self.desktop.manager.signal, signal.SIGCONT)
        self.desktop.manager.signal(signal.SIGSTOP)
        self.screen.ask("press", 1)
        for _ in range(3):
            self.wait_next_frame(across)
        self.desktop.manager.signal(signal.SIGCONT)
        for step in range(1, 17):
            self.screen.move((middle[0] - 20 * step, middle[1] + 10 * step))
        vistrel.wait_line("Detached")

    def wait_next_frame(self, place):
        """Also where the pointer and the button are in the way of the clock."""
        before = self.screen.ask("pixels", *place)
        wait_until(lambda: self.screen.ask("pixels", *place) != before, "another frame")

    def test_the_lines_of_two_showings(self):
        camera = self.desktop.camera()
        vistrel = self.start()
        refreshed = REFRESHED + "[…]"
        wait_until(lambda: len(vistrel.lines) == 2, "the lines of the launch")
        self.assertEqual(plain(vistrel.lines), [refreshed] * 2)
        self.assertIn("Test Camera", vistrel.lines[0])
        self.open(vistrel)
        vistrel.wait_line(STARTED)
        vistrel.click()
        self.wait_closed(camera)
        self.open(vistrel)
        vistrel.terminate()
        self.assertEqual(plain(vistrel.lines), [refreshed] * 5 + [STARTED] + [refreshed] * 2 + [STARTED])

    def test_the_camera_lets_go_of_its_device_without_the_session_manager(self):
        camera = self.desktop.camera()
        vistrel = self.start()
        for _ in range(2):
            self.open(vistrel)
            since = len(camera.lines)
            manager = self.desktop.session_manager
            manager.signal(signal.SIGSTOP)
            self.addCleanup(manager.signal, signal.SIGCONT)
            vistrel.click()
            camera.wait_line("FORMAT none", since)
            manager.signal(signal.SIGCONT)

    def test_the_picture_is_as_the_camera_sends_it_when_the_user_wants_no_mirror(self):
        self.desktop.camera(offers=["nv12:640x480@30"])
        seen = self.open(self.start({"selectedMirroringPreference": False}))
        self.assertFalse(seen["mirrored"])
        self.assertTrue(seen["upright"])
        self.assertAlmostEqual(seen["place"][2], 320, delta=2)

    def test_a_camera_that_is_mounted_otherwise_shows_an_upright_picture(self):
        vistrel = self.start({"selectedPopoverSize": 1})
        for flip in ("", "flipped"):
            for turn in ("none", "90", "180", "270"):
                with self.subTest(flip=flip, turn=turn):
                    transform = "flipped" if flip and turn == "none" else flip + turn
                    camera = self.desktop.camera(offers=["yuy2:1280x720@30"], options=["--transform", transform])
                    seen = self.open(vistrel)
                    self.assertTrue(seen["mirrored"] and seen["upright"])
                    is_tall = turn in ("90", "270")
                    self.assertAlmostEqual(seen["place"][2], 270 if is_tall else 852, delta=2)
                    self.assertAlmostEqual(seen["place"][3], 480, delta=2)
                    vistrel.click()
                    self.wait_closed(camera)
                    self.desktop.unplug_all()

    def test_a_press_elsewhere_closes_it(self):
        camera = self.desktop.camera()
        for preference in (0, 1):
            with self.start({"dismissPreference": preference}) as vistrel:
                self.open(vistrel)
                self.screen.click((300, 700))
                self.wait_closed(camera)
                self.open(vistrel)
                self.screen.key("Escape")
                self.wait_closed(camera)
                self.open(vistrel)
                self.screen.click((300, 700))
                self.wait_closed(camera)

    def test_another_application_closes_it_when_the_user_wants_so(self):
        camera = self.desktop.camera()
        for preference in (0, 7):
            with self.start({"dismissPreference": preference}) as vistrel:
                self.open(vistrel)
                other = self.desktop.start(["xev"])
                wait_until(lambda: self.screen.focus()["pid"] != vistrel.pid, "the focus on the other application")
                if preference:
                    self.screen.live_picture(10)
                else:
                    self.wait_closed(camera)
                other.end()

    def test_a_press_of_any_button_in_another_window_of_its_own_closes_it(self):
        camera = self.desktop.camera()
        vistrel = self.start({"dismissPreference": 1})
        vistrel.click(button=3)
        self.screen.click(centre(vistrel.menu_rows()[-2]))
        place = wait_until(lambda: vistrel.windows(name="Preferences"), "Preferences")[0]["place"]
        for button in (2, 3):
            self.open(vistrel)
            self.screen.click((place[0] + place[2] // 2, place[1] + place[3] - 4), button)
            self.wait_closed(camera)


class ComposedDesktopsTest(DesktopTest):
    """A manager that leaves the windows of other virtual desktops mapped, as far as its properties tell."""

    stage = {"manager": None}

    def number(self, window, name, value):
        self.desktop.run("xprop", *window, "-f", name, "32c", "-set", name, str(value))

    def test_a_virtual_desktop_that_is_left_is_known_by_its_number(self):
        camera = self.desktop.camera()
        vistrel = self.start({"dismissPreference": 1})
        # The number alone says nothing where each monitor may have a desktop of its own.
        for own, composes, stays in ((0, False, True), (0xFFFFFFFF, True, True), (0, True, False)):
            if composes:
                self.screen.ask("compose")
            self.number(["-root"], "_NET_CURRENT_DESKTOP", 0)
            self.open(vistrel)
            window = vistrel.windows(name="Vistrel")[0]
            self.number(["-id", str(window["id"])], "_NET_WM_DESKTOP", own)
            self.number(["-root"], "_NET_CURRENT_DESKTOP", 1)
            if stays:
                self.screen.live_picture(10)
                vistrel.click()
            self.wait_closed(camera)


class TornOffUnderXfwmTest(TearingOff, DesktopTest):
    stage = {"size": SIZE, "manager": "xfwm4"}


if __name__ == "__main__":
    unittest.main()
