"""The controls over the picture, the view's own menu, and the torn-off window."""

import unittest

from stage.accessibility import Accessibility
from stage.portal import Portal
from stage.processes import wait_until
from stage.program import centre
from tests.desktop.harness import SAVING, STARTED, DesktopTest

OPTIONS = "Cameras and options"
COMMANDS = ["About Vistrel", "Preferences…", "Quit Vistrel"]
AWAY = (40, 700)


class ControlsTest(DesktopTest):
    stage = {"accessible": True}

    def setUp(self):
        super().setUp()
        self.reader = Accessibility(self.desktop)
        self.screen.move(AWAY)

    def open(self, vistrel):
        picture = super().open(vistrel)["place"]
        self.screen.move(AWAY)
        return picture

    def find(self, vistrel, name):
        return next(iter(self.reader.objects(vistrel.pid, name=name)), None)

    def wait_shown(self, vistrel, name):
        return wait_until(lambda: self.find(vistrel, name), f"{name} on the screen")

    def wait_hidden(self, vistrel, name):
        wait_until(lambda: not self.find(vistrel, name), f"the end of {name}")

    def items(self, vistrel):
        """The open menu's titles and whether each has the check mark."""
        rows = self.reader.objects(vistrel.pid)
        return [(row["name"], row["checked"]) for row in rows if row["role"].endswith("menu item")]

    def wait_items(self, vistrel, rows):
        wait_until(lambda: self.items(vistrel) == rows, f"the menu {rows}")

    def wait_frame(self, picture):
        """The bar that wanders through the picture has moved."""
        x, y, width, _height = picture

        def row():
            return [self.screen.color((x + step, y + 20)) for step in range(5, width, 20)]
        before = row()
        wait_until(lambda: row() != before, "another frame")

    def tear_off(self, vistrel, picture):
        since = len(vistrel.lines)
        start = centre(picture)
        self.screen.drag(start, (start[0] - 250, start[1] + 180))
        vistrel.wait_line("Detached", since)

    def test_the_pointer_shows_the_button_and_takes_it_away(self):
        self.desktop.camera()
        portal = Portal(self.desktop, 1)
        self.addCleanup(portal.close)
        vistrel = self.start()
        picture = self.open(vistrel)
        for scheme, is_dark in ((1, True), (2, False)):
            portal.set_scheme(scheme)
            self.wait_hidden(vistrel, OPTIONS)
            self.screen.move(centre(picture))
            x, y, _width, height = self.wait_shown(vistrel, OPTIONS)["place"]
            # Whatever the picture is there: dark on the dark backing, light on the light face.
            face = (x + 5, y + height // 2)

            def is_drawn():
                color = self.screen.color(face)
                return max(color) < 80 if is_dark else min(color) > 190
            wait_until(is_drawn, f"the button of scheme {scheme}")
            self.wait_frame(picture)
            self.assertTrue(is_drawn())
            self.screen.move(AWAY)
        self.wait_hidden(vistrel, OPTIONS)

    def test_a_resting_pointer_is_seen(self):
        self.desktop.camera()
        vistrel = self.start()
        picture = self.open(vistrel)
        vistrel.click()
        self.screen.wait_no_picture()
        self.screen.move(centre(picture))
        self.start_again()  # opens the running one's mirror, under the pointer
        self.wait_shown(vistrel, OPTIONS)
        self.screen.move(AWAY)
        self.screen.live_picture()

    def test_the_menu_tells_the_cameras_and_chooses_by_keyboard_alone(self):
        first = self.desktop.camera(name="First", node="a")
        second = self.desktop.camera(name="Second", node="b")
        vistrel = self.start({"defaultCameraPreference": "First"})
        picture = self.open(vistrel)
        self.assertIsNone(self.find(vistrel, OPTIONS))
        self.screen.key("Down")
        self.wait_items(vistrel, [("First", True), ("Second", False)] + [(name, False) for name in COMMANDS])
        self.assertTrue(self.find(vistrel, OPTIONS))
        self.screen.key("Escape")
        self.wait_items(vistrel, [])
        self.wait_hidden(vistrel, OPTIONS)  # with the pointer away; the menu's Escape is not the mirror's
        self.screen.key("a")
        self.screen.key("space")
        wait_until(lambda: self.items(vistrel), "the menu")
        since = len(vistrel.lines)
        self.screen.key("Down")
        self.screen.key("Return")
        vistrel.wait_line(STARTED, vistrel.wait_line(SAVING, since))
        self.screen.move(centre(picture))
        self.screen.move(AWAY)
        self.wait_hidden(vistrel, OPTIONS)
        self.screen.live_picture()
        self.assertEqual((self.desktop.readers(first), self.desktop.readers(second)), (0, 1))
        self.stored(vistrel, "defaultCameraPreference", "Second")
        self.screen.move(centre(picture))
        self.reader.act(self.wait_shown(vistrel, OPTIONS), "Press")
        self.wait_items(vistrel, [("First", False), ("Second", True)] + [(name, False) for name in COMMANDS])
        self.screen.key("Escape")
        self.wait_items(vistrel, [])
        self.screen.key("Escape")
        self.wait_closed(second)

    def test_the_view_s_menu_quits(self):
        camera = self.desktop.camera()
        vistrel = self.start()
        picture = self.open(vistrel)
        self.screen.move(centre(picture))
        self.screen.click(centre(self.wait_shown(vistrel, OPTIONS)["place"]))
        vistrel.choose(3)
        self.assertEqual(vistrel.process.wait(), 0)
        self.wait_closed(camera)

    def test_each_tearing_off_gives_a_window_that_its_button_closes(self):
        camera = self.desktop.camera()
        vistrel = self.start({"dismissPreference": 1})
        for _ in range(2):
            picture = self.open(vistrel)
            self.assertIsNone(self.find(vistrel, "Close"))
            self.tear_off(vistrel, picture)
            place = centre(self.wait_shown(vistrel, "Close")["place"])
            self.screen.move(AWAY)
            self.wait_hidden(vistrel, "Close")
            self.screen.move(place)  # on the button the pointer is still in the view
            self.wait_shown(vistrel, "Close")
            self.assertTrue(self.find(vistrel, OPTIONS))
            self.screen.click(place)
            self.wait_closed(camera)

    def test_without_a_camera_it_says_what_to_do(self):
        vistrel = self.start()
        vistrel.click()
        text = wait_until(lambda: [entry["name"] for entry in self.reader.objects(vistrel.pid, role="label")], "a text")
        self.assertIn("camera", text[0])
        self.screen.key("Down")
        self.wait_items(vistrel, [(name, False) for name in COMMANDS])


if __name__ == "__main__":
    unittest.main()
