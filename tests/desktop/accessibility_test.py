"""The whole program through a screen reader and the keyboard: the pointer is not used."""

import unittest

from stage.accessibility import Listener
from stage.processes import wait_until
from tests.desktop.settings import SettingsTest

COMMANDS = ["About Vistrel", "Preferences…", "Quit Vistrel"]
BUTTON = "Cameras and options"
# What is worked by the keyboard or by an action.
CONTROLS = {"push button", "button", "push button menu", "button menu", "radio button", "check box", "combo box",
            "text"}


class ScreenReaderTest(SettingsTest):
    def setUp(self):
        super().setUp()
        self.screen.move((40, 700))
        self.heard = Listener(self.desktop)

    def objects(self, vistrel, **facts):
        return self.reader.objects(vistrel.pid, **facts)

    def wait_object(self, vistrel, **facts):
        return wait_until(lambda: self.objects(vistrel, **facts), str(facts))[0]

    def open_mirror(self):
        since = self.heard.mark()
        self.start_again()
        self.heard.wait("window", "Vistrel", since)

    def choose(self, vistrel, title):
        """An item of the menu over the picture, which a key opens."""
        self.screen.key("Down")
        self.wait_object(vistrel, name="Quit Vistrel")
        self.check(vistrel, {BUTTON})
        items = [row for row in self.objects(vistrel) if row["role"].endswith("menu item")]
        self.assertEqual([row["name"] for row in items][-3:], COMMANDS)
        since = self.heard.mark()
        self.reader.act(next(row for row in items if row["name"] == title), "Press")
        return since

    def check(self, vistrel, names):
        """Every control that is shown says all that there is to say of it; these are among them."""
        shown = [entry for entry in self.objects(vistrel) if entry["role"] in CONTROLS]
        self.assertLessEqual(names, {entry["name"] for entry in shown})
        for entry in shown:
            self.assertTrue(entry["name"] and entry["description"] and entry["actions"], entry)
            # The close button's place is taken by its window's action, and by a key of the window manager.
            self.assertTrue("focusable" in entry["states"] or entry["name"] == "Close", entry)
        for entry in self.objects(vistrel):
            self.assertNotIn(entry["role"], ("unknown", "invalid"), entry)

    def walk(self, vistrel):
        """Tab from control to control until the first one has the focus again; gives them in order. Each of them looks
        different with the focus."""
        stops, picture = [], None
        while True:
            self.screen.key("Tab")
            last = stops[-1] if stops else {"path": None}
            stop = wait_until(lambda: next((control for control in self.focused(vistrel)
                                            if control["path"] != last["path"]), None), "the next control")
            if stops:
                wait_until(lambda: self.pixels(last) != picture, f"the end of the focus of {last['name']}")
            if stop["path"] in [other["path"] for other in stops]:
                return stops
            stops.append(stop)
            picture = self.pixels(stop)

    def focused(self, vistrel):
        return [entry for entry in self.objects(vistrel, focused=True) if entry["role"] in CONTROLS]

    def pixels(self, entry):
        return self.screen.ask("pixels", *entry["place"])["pixels"]

    def assert_reading_order(self, stops):
        """Round and round, from wherever the focus was."""
        places = [(y + height // 2, x) for x, y, _width, height in (stop["place"] for stop in stops)]
        first = places.index(min(places))
        self.assertEqual(places[first:] + places[:first], sorted(places), [stop["name"] for stop in stops])

    def close(self, vistrel, title):
        self.reader.act(self.wait_object(vistrel, name=title, role="frame"), "Close")
        wait_until(lambda: not self.screen.windows(name=title, pid=vistrel.pid), f"the end of {title}")

    def test_the_mirror_says_what_it_is_and_is_torn_off_and_closed(self):
        camera = self.desktop.camera(name="Only")
        vistrel = self.start({"dismissPreference": 1})
        self.open_mirror()
        mirror = self.wait_object(vistrel, name="Vistrel", role="frame")
        self.assertEqual(mirror["actions"][:2], ["Tear off", "Close"])
        self.assertTrue(self.objects(vistrel, name="Camera picture", role="image"))
        self.screen.key("Down")
        self.assertTrue(self.wait_object(vistrel, name="Only")["checked"])
        self.check(vistrel, {BUTTON})
        self.screen.key("Escape")
        since = len(vistrel.lines)
        self.reader.act(self.wait_object(vistrel, name="Vistrel", role="frame"), "Tear off")
        vistrel.wait_line("Detached", since)
        self.check(vistrel, {"Close"})
        mirror = self.wait_object(vistrel, name="Vistrel", role="frame")
        self.assertNotIn("Tear off", mirror["actions"])
        self.reader.act(mirror, "Close")
        self.heard.wait("announcement", "Mirror closed")
        self.wait_closed(camera)
        self.desktop.unplug_all()
        self.open_mirror()
        self.heard.wait("announcement", "No camera was found.")
        self.wait_object(vistrel, role="label", name="No camera found. Plug one in, then open the mirror again.")

    def test_the_preferences_are_read_walked_and_changed(self):
        vistrel = self.start()
        self.open_mirror()
        since = self.choose(vistrel, "Preferences…")
        self.heard.wait("window", "Preferences", since)
        self.check(vistrel, {"Icon 1", "Small", "Keyboard shortcut:", "Click on the icon again", "Mirror video",
                             "Open Vistrel at login"})
        stops = self.walk(vistrel)
        self.assertEqual(len(stops), 5)  # the recorder takes the focus by its action only, or Tab would be a shortcut
        self.assert_reading_order(stops)
        for stop in [*stops[1:], stops[0]]:
            if self.focused(vistrel)[0]["role"] == "combo box":
                break
            self.screen.key("Tab")
            wait_until(lambda: [control["path"] for control in self.focused(vistrel)] == [stop["path"]], "the next one")
        self.screen.key("Down")
        self.stored(vistrel, "selectedPopoverSize", 1)
        for name, role, key, value in (("Icon 2", "radio button", "selectedUIIcon", 1),
                                       ("Click on the icon again", "radio button", "dismissPreference", 1),
                                       ("Mirror video", "check box", "selectedMirroringPreference", False)):
            self.reader.act(self.find(vistrel, name, role), "Toggle")
            self.stored(vistrel, key, value)
        self.close(vistrel, "Preferences")

    def test_a_refused_shortcut_is_said(self):
        for name, kind, value in (("override", "bool", "true"), ("<Primary><Alt>m", "string", "true")):
            self.desktop.run("xfconf-query", "-c", "xfce4-keyboard-shortcuts", "-p", f"/commands/custom/{name}", "-n",
                             "-t", kind, "-s", value)
        vistrel = self.start()
        self.open_mirror()
        since = self.choose(vistrel, "Preferences…")
        self.heard.wait("window", "Preferences", since)
        field = self.find(vistrel, "Keyboard shortcut:", "text")
        self.reader.act(field, "SetFocus")
        self.wait_object(vistrel, path=field["path"], description="Press Shortcut")
        since = self.heard.mark()
        with self.screen.holding("Control_L"), self.screen.holding("Alt_L"):
            self.screen.key("m")
        self.heard.wait("window", "This keyboard shortcut cannot be used because the desktop already uses it.", since)
        self.screen.key("Return")
        self.heard.wait("window", "Preferences", since)

    def test_the_about_window_is_read_and_walked(self):
        vistrel = self.start()
        self.open_mirror()
        since = self.choose(vistrel, "About Vistrel")
        self.heard.wait("window", "About Vistrel", since)
        self.check(vistrel, {"FAQ"})
        stops = self.walk(vistrel)
        self.assertEqual(len(stops), 2)
        self.assert_reading_order(stops)
        for title in ("About Vistrel", "Vistrel"):
            self.close(vistrel, title)
        self.open_mirror()
        self.choose(vistrel, "Quit Vistrel")
        self.assertEqual(vistrel.process.wait(), 0)


if __name__ == "__main__":
    unittest.main()
