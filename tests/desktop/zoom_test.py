"""Looking closer, and seeing oneself as others do, read from the screen."""

import unittest

from gi.repository import GLib

from stage.accessibility import Accessibility
from stage.processes import wait_until
from tests.desktop.harness import DesktopTest

AWAY = (40, 700)
BUTTON = (70, 50)  # the size of the lower right corner, where a control may lie over the picture
WHEEL_UP, WHEEL_DOWN = 4, 5
TOLERANCE = 40  # of 255 in each color
SHARP = 70  # of 255 between two pixels; what is enlarged from the small picture has no such edge


def channels(pixel):
    return pixel >> 16, pixel >> 8 & 0xFF, pixel & 0xFF


def is_like(one, other):
    return all(abs(a - b) <= TOLERANCE for a, b in zip(channels(one), channels(other)))


class ClearPictureTest(DesktopTest):
    def open(self, vistrel):
        picture = super().open(vistrel)
        self.screen.move(AWAY)
        return picture

    def wait_mirrored(self, is_mirrored):
        wait_until(lambda: self.screen.live_picture()["mirrored"] == is_mirrored, f"mirrored: {is_mirrored}")


class ZoomTest(ClearPictureTest):
    def capture(self):
        return self.screen.ask("pixels", *self.place)["pixels"]

    def open_still(self, vistrel, camera):
        """Opens the mirror with a picture that does not change; keeps its place and its pixels."""
        self.place = self.open(vistrel)["place"]
        camera.tell("still")
        _x, _y, width, height = self.place

        def is_still():
            self.whole = self.capture()
            rows = [self.whole[(height - up) * width:][:width] for up in (height // 24, height // 8)]
            return all(is_like(one, other) for one, other in zip(*rows))  # the counter is the time
        wait_until(is_still, "a picture that stands still")

    def matches(self, left, top, size):
        """Whether what is seen is the part of the whole picture that begins there, all in fractions of it."""
        _x, _y, width, height = self.place
        seen, compared = self.capture(), 0
        for y in range(4, height - 4, 5):
            for x in range(4, width - 4, 5):
                from_x, from_y = (left + x / width * size) * width, (top + y / height * size) * height
                around = [self.whole[int(from_y + down) * width + int(from_x + across)]
                          for down in (-3, 0, 3) for across in (-3, 0, 3)
                          if 0 <= from_y + down < height and 0 <= from_x + across < width]
                if x > width - BUTTON[0] and y > height - BUTTON[1] or not all(is_like(a, around[0]) for a in around):
                    continue
                if not is_like(seen[y * width + x], around[0]):
                    return False
                compared += 1
        return compared > 500

    def wait_part(self, left, top, size):
        wait_until(lambda: self.matches(left, top, size), f"the part {left}, {top} of size {size}")

    def sharpest_edge(self):
        """The greatest difference of red between neighbours in a row: red meets blue in the middle."""
        width, red = self.place[2], [channels(pixel)[0] for pixel in self.capture()]
        return max(abs(red[i] - red[i + 1]) for i in range(len(red) - 1) if (i + 1) % width)

    def wheel(self, steps, at):
        for _ in range(abs(steps)):
            self.screen.click(at, WHEEL_UP if steps > 0 else WHEEL_DOWN)

    def control(self, key, times=1):
        with self.screen.holding("Control_L"):
            for _ in range(times):
                self.screen.key(key)

    def test_wheel_keys_and_secondary_button_look_closer_and_never_past_the_edge(self):
        for offer in ("yuy2:1280x720@30", "mjpeg:3840x2160@30"):
            with self.subTest(offer=offer), self.start() as vistrel:
                camera = self.desktop.camera(offers=[offer])
                self.open_still(vistrel, camera)
                x, y, width, height = self.place
                self.wheel(4, (x + width // 4, y + height // 4))
                self.wait_part(1 / 8, 1 / 8, 1 / 2)
                self.screen.move((x + width // 4, y + height // 4))
                self.screen.ask("press", 3)
                self.screen.move((x + width // 8, y + height // 4))
                self.wait_part(1 / 8 + 1 / 16, 1 / 8, 1 / 2)
                for corner, part in (((x + width + 200, y + height + 200), (0, 0)), ((2, 2), (1 / 2, 1 / 2))):
                    self.screen.move(corner)
                    self.wait_part(*part, 1 / 2)
                self.screen.ask("release", 3)
                self.screen.move(AWAY)
                self.control("Left", 12)
                self.wait_part(0, 1 / 2, 1 / 2)
                self.wheel(-9, (x + width // 2, y + height // 2))
                self.wait_part(0, 0, 1)
                self.screen.move(AWAY)
                self.control("plus", 6)
                self.wait_part(3 / 8, 3 / 8, 1 / 4)
                self.control("Down", 12)
                self.wait_part(3 / 8, 3 / 4, 1 / 4)
                if "3840" in offer:
                    self.assertGreater(self.sharpest_edge(), SHARP)
                self.control("0")
                self.wait_part(0, 0, 1)
                self.control("plus", 2)
                self.wait_part(1 / 4, 1 / 4, 1 / 2)
                vistrel.click()
                camera.tell("resume")
                self.wait_closed(camera)
                self.open(vistrel)  # where the whole picture is found
                self.desktop.unplug_all()

    def test_while_m_is_held_the_picture_is_as_the_camera_sends_it(self):
        self.desktop.camera()
        vistrel = self.start()
        self.open(vistrel)
        for _ in range(2):
            with self.screen.holding("m"):
                self.wait_mirrored(False)
            self.wait_mirrored(True)
        with self.screen.holding("m"):
            self.wait_mirrored(False)
            self.screen.key("Down")
            vistrel.menu()  # which has the keyboard, and the release of the key
        self.screen.key("Escape")
        vistrel.wait_no_menu()
        self.wait_mirrored(True)
        self.assertEqual(vistrel.preferences(), {})


class ScreenReaderTest(ClearPictureTest):
    stage = {"accessible": True}

    def test_with_a_screen_reader_each_press_of_m_turns_the_picture_over(self):
        Accessibility(self.desktop).objects()
        self.desktop.bus.call("org.a11y.Bus", "/org/a11y/bus", "org.freedesktop.DBus.Properties", "Set", "(ssv)",
                              "org.a11y.Status", "ScreenReaderEnabled", GLib.Variant("b", True))
        self.desktop.camera()
        vistrel = self.start()
        self.open(vistrel)
        for is_mirrored in (True, False, True):
            self.wait_mirrored(is_mirrored)
            self.screen.key("m")


if __name__ == "__main__":
    unittest.main()
