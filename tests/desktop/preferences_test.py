"""The Preferences and About windows, driven as a person drives them: what is read, by a screen reader's names;
what is done, by clicks and keys."""

import unittest

from stage.accessibility import Accessibility
from stage.processes import wait_until
from stage.program import centre, inside
from tests.desktop.harness import SIZES, STARTED, STOPPED, DesktopTest

LABEL = "org.vistrel.Vistrel-LaunchAtLoginHelper"
SHORTCUT = "KeyboardShortcuts_toggleShortcutMode"
ROWS = {"Preferences": -2, "About Vistrel": -3}  # of the menu, counted from its end


class SettingsTest(DesktopTest):
    stage = {"accessible": True}

    def setUp(self):
        super().setUp()
        self.reader = Accessibility(self.desktop)

    def open_window(self, vistrel, title):
        vistrel.open_menu()
        rows = vistrel.menu_rows()
        self.screen.click(centre(rows[ROWS[title]]))
        vistrel.wait_no_menu()
        window = wait_until(lambda: vistrel.windows(name=title), title)[-1]
        wait_until(lambda: self.screen.focus()["id"] == window["id"], f"the focus on {title}")
        return vistrel.windows(id=window["id"])[0]["place"]

    def close_window(self, title):
        x, y, width, _height = next(iter(self.screen.windows(name=title)))["place"]
        self.screen.click((x + width - 9, y - 10))
        wait_until(lambda: not self.screen.windows(name=title), f"the end of {title}")

    def find(self, vistrel, name, role):
        return wait_until(lambda: self.reader.objects(vistrel.pid, name=name, role=role), f"{role} {name}")[0]

    def press(self, vistrel, name, role):
        self.screen.click(centre(self.find(vistrel, name, role)["place"]))

    def wait_checked(self, vistrel, name, role, is_checked=True):
        wait_until(lambda: self.find(vistrel, name, role)["checked"] == is_checked, f"{name}: {is_checked}")

    def size_box(self, vistrel):
        """The combo box in the row of its label."""
        _x, y, _width, height = self.find(vistrel, "Popover size:", "label")["place"]
        return next(box for box in self.reader.objects(vistrel.pid, role="combo box")
                    if box["place"][1] <= y + height / 2 < box["place"][1] + box["place"][3])

    def choose_size(self, vistrel, name):
        box = self.size_box(vistrel)["place"]
        self.screen.click(centre(box))
        # A closed box keeps its items too; those of an open one lie on the screen beside it.
        rows = wait_until(lambda: [row["place"] for row in self.reader.objects(vistrel.pid, role="list item", name=name)
                                   if row["place"][0] >= box[0]], f"{name} in the open box")
        self.screen.click(centre(rows[0]))

    def stored(self, vistrel, key, value):
        wait_until(lambda: vistrel.preferences().get(key) == value, f"{key}: {value}")


class PreferencesTest(SettingsTest):
    def icon_pixels(self, vistrel):
        return self.screen.ask("pixels", *vistrel.icon())["pixels"]

    def test_each_control_takes_effect_at_once_and_is_found_again(self):
        camera = self.desktop.camera()
        vistrel = self.start()
        self.open_window(vistrel, "Preferences")
        before = self.icon_pixels(vistrel)
        self.press(vistrel, "Icon 2", "radio button")
        self.stored(vistrel, "selectedUIIcon", 1)
        wait_until(lambda: self.icon_pixels(vistrel) != before, "another icon in the tray")
        self.choose_size(vistrel, "Medium")
        self.stored(vistrel, "selectedPopoverSize", 1)
        self.press(vistrel, "Mirror video", "check box")
        self.stored(vistrel, "selectedMirroringPreference", False)
        self.press(vistrel, "Click on the icon again", "radio button")
        self.stored(vistrel, "dismissPreference", 1)
        self.close_window("Preferences")

        seen = self.open(vistrel)
        self.assertFalse(seen["mirrored"])
        self.assertAlmostEqual(seen["place"][2], SIZES[1][0], delta=2)
        vistrel.click()
        self.wait_closed(camera)
        self.open_window(vistrel, "Preferences")
        self.wait_checked(vistrel, "Icon 2", "radio button")
        self.assertEqual(self.size_box(vistrel)["name"], "Medium")
        self.wait_checked(vistrel, "Click on the icon again", "radio button")
        self.wait_checked(vistrel, "Mirror video", "check box", False)

    def test_the_dismiss_choice_decides_over_a_torn_off_mirror(self):
        camera = self.desktop.camera()
        vistrel = self.start()
        for name, stays in (("Click on the icon again", True), ("Click away from the window", False)):
            self.open_window(vistrel, "Preferences")
            self.press(vistrel, name, "radio button")
            self.stored(vistrel, "dismissPreference", int(stays))
            self.close_window("Preferences")
            start = centre(self.open(vistrel)["place"])
            since = len(vistrel.lines)
            self.screen.drag(start, (start[0] - 300, start[1] + 200))
            vistrel.wait_line("Detached", since)
            other = self.desktop.start(["xev"])
            wait_until(lambda: self.screen.focus()["pid"] != vistrel.pid, "the focus on the other application")
            self.screen.move((40, 700))
            if stays:
                self.screen.live_picture(10)
                vistrel.click()
            self.wait_closed(camera)
            other.end()

    def test_the_login_box_makes_an_entry_and_takes_it_away(self):
        vistrel = self.start(complaints=1)
        folder = self.desktop.folder / "config" / "autostart"
        entry = folder / f"{LABEL}.desktop"
        self.open_window(vistrel, "Preferences")
        self.press(vistrel, "Open Vistrel at login", "check box")
        wait_until(entry.exists, "the autostart entry")
        self.desktop.run("desktop-file-validate", entry)
        self.assertIn(f"TryExec={self.desktop.programs / 'vistrel'}\n", entry.read_text())
        self.press(vistrel, "Open Vistrel at login", "check box")
        wait_until(lambda: not entry.exists(), "the end of the autostart entry")
        self.assertEqual(vistrel.preferences().keys() - {"NSWindow Frame Preferences Window"}, set())
        folder.rmdir()
        folder.write_text("no folder")
        self.addCleanup(folder.unlink)
        self.press(vistrel, "Open Vistrel at login", "check box")
        vistrel.process.wait_line("vistrel: the login item cannot be written", errors=True)
        self.wait_checked(vistrel, "Open Vistrel at login", "check box")
        self.close_window("Preferences")
        self.open_window(vistrel, "Preferences")
        self.wait_checked(vistrel, "Open Vistrel at login", "check box", False)

    def test_nothing_is_clipped_at_larger_sizes(self):
        # A desktop whose font is a quarter larger than the usual nine points.
        fonts = self.desktop.folder / "config" / "kdeglobals"
        fonts.write_text("[General]\nfont=DejaVu Sans,11.25,-1,5,50,0,0,0,0,0\n")
        self.addCleanup(fonts.unlink)
        large = {"XDG_CURRENT_DESKTOP": "KDE", "KDE_FULL_SESSION": "true", "KDE_SESSION_VERSION": "5"}
        reversed_ = ["sh", "-c", 'exec "$0" -reverse']
        for options in ({}, {"environment": {"QT_SCALE_FACTOR": "1.5"}}, {"environment": large},
                        {"environment": large, "prefix": reversed_}):
            with self.subTest(**options), self.start(**options) as vistrel:
                for title in ROWS:
                    self.open_window(vistrel, title)
                    window = self.find(vistrel, title, "filler")["place"]
                    shown = [entry for entry in self.reader.objects(vistrel.pid)
                             if entry["role"] in ("label", "push button", "radio button", "check box", "text")]
                    self.assertGreaterEqual(len(shown), 9)
                    for entry in shown:
                        self.assertTrue(inside(entry["place"], window), entry)
                    for one in shown:
                        overlapping = [other["name"] for other in shown if other is not one
                                       and self.overlap(one["place"], other["place"])]
                        self.assertEqual(overlapping, [], one["name"])
                    self.close_window(title)

    @staticmethod
    def overlap(a, b):
        return a[0] < b[0] + b[2] and b[0] < a[0] + a[2] and a[1] < b[1] + b[3] and b[1] < a[1] + a[3]

    def test_a_link_opens_in_the_browser_and_does_nothing_without_one(self):
        opened = self.desktop.folder / "opened"
        browser = self.desktop.folder / "browser" / "xdg-open"
        browser.parent.mkdir()
        browser.write_text(f'#!/bin/sh\necho "$1" >>{opened}\n')
        browser.chmod(0o755)
        for folder, is_there in (("/nowhere", False), (f"{browser.parent}:/usr/bin:/bin", True)):
            with self.subTest(is_there=is_there), \
                    self.start(complaints=int(not is_there), environment={"PATH": folder}) as vistrel:
                self.open_window(vistrel, "About Vistrel")
                self.press(vistrel, "FAQ", "push button")
                if is_there:
                    wait_until(lambda: opened.exists() and opened.read_text().endswith("/pages/faq.html\n"), "the page")
                self.close_window("About Vistrel")

    def test_a_moved_window_comes_back_to_its_place_and_quits_nothing(self):
        vistrel = self.start()
        x, y, width, height = self.open_window(vistrel, "About Vistrel")
        self.assertEqual((width, height), (480, 420))
        self.screen.drag((x + 200, y - 10), (x + 100, y + 50))
        moved = wait_until(lambda: [w["place"] for w in vistrel.windows(name="About Vistrel") if w["place"][0] != x],
                           "the window elsewhere")[0]
        self.close_window("About Vistrel")
        self.assertEqual(self.open_window(vistrel, "About Vistrel"), moved)
        vistrel.open_menu()
        self.screen.click(centre(vistrel.menu_rows()[ROWS["Preferences"]]))
        wait_until(lambda: vistrel.windows(name="Preferences"), "Preferences beside it")
        self.close_window("Preferences")
        self.close_window("About Vistrel")
        self.open_window(vistrel, "Preferences")


class RecorderTest(SettingsTest):
    NAME = "Keyboard shortcut:"

    def field(self, vistrel):
        return self.find(vistrel, self.NAME, "text")

    def record(self, vistrel):
        self.press(vistrel, self.NAME, "text")
        self.wait_says(vistrel, "Press Shortcut")

    def wait_says(self, vistrel, hint, text=None):
        wait_until(lambda: self.field(vistrel)["description"] == hint and text in (None, self.field(vistrel)["text"]),
                   f"{hint}, {text}")

    def combination(self, *keys):
        for key in keys[:-1]:
            self.screen.ask("keydown", key)
        self.screen.key(keys[-1])
        for key in reversed(keys[:-1]):
            self.screen.ask("keyup", key)

    def expect(self, vistrel, text, stored):
        self.wait_says(vistrel, "Record Shortcut", text)
        self.assertEqual(vistrel.preferences().get(SHORTCUT), stored)

    def expect_toggle(self, vistrel, camera, *keys):
        self.combination(*keys)
        self.screen.live_picture()
        self.combination(*keys)
        self.wait_closed(camera)

    def test_a_shortcut_is_recorded_replaced_and_cleared(self):
        camera = self.desktop.camera()
        vistrel = self.start({"dismissPreference": 1})
        self.open_window(vistrel, "Preferences")
        self.record(vistrel)
        self.screen.key("a")
        self.wait_says(vistrel, "Press Shortcut", "")
        self.combination("Control_L", "Alt_L", "space")
        space = '{"carbonKeyCode":49,"carbonModifiers":6144}'
        self.expect(vistrel, "⌃⌥⎵", space)
        other = self.desktop.start(["xev"])
        wait_until(lambda: self.screen.focus()["pid"] != vistrel.pid, "the focus on the other application")
        self.expect_toggle(vistrel, camera, "Control_L", "Alt_L", "space")
        other.end()

        self.record(vistrel)
        since = len(vistrel.lines)
        self.screen.key("Escape")
        self.expect(vistrel, "⌃⌥⎵", space)
        self.record(vistrel)
        self.screen.key("Tab")
        self.expect(vistrel, "⌃⌥⎵", space)
        self.record(vistrel)
        self.combination("Control_L", "Shift_L", "F6")
        f6 = '{"carbonKeyCode":97,"carbonModifiers":4608}'
        self.expect(vistrel, "⌃⇧F6", f6)
        self.record(vistrel)
        self.combination("Control_L", "Shift_L", "F6")  # heard by the recorder alone
        self.expect(vistrel, "⌃⇧F6", f6)
        self.combination("Control_L", "Alt_L", "space")  # nobody's any more
        self.expect_toggle(vistrel, camera, "Control_L", "Shift_L", "F6")
        self.assertEqual([line for line in vistrel.lines[since:] if line in (STARTED, STOPPED)], [STARTED])

        self.record(vistrel)
        self.screen.key("Delete")
        self.wait_says(vistrel, "Press Shortcut", "")
        self.assertIs(vistrel.preferences()[SHORTCUT], False)
        self.screen.key("F7")
        self.expect(vistrel, "F7", '{"carbonKeyCode":98,"carbonModifiers":0}')
        x, y, width, height = self.field(vistrel)["place"]
        self.screen.click((x + width - height // 2, y + height // 2))  # the clear button
        self.wait_says(vistrel, "Press Shortcut", "")
        self.assertIs(vistrel.preferences()[SHORTCUT], False)
        self.screen.key("Escape")
        self.expect(vistrel, "", False)
        since = len(vistrel.lines)
        self.screen.key("F7")  # removed: had it opened the mirror, the click would close it
        self.open(vistrel)
        self.assertEqual(vistrel.lines[since:].count(STARTED), 1)

    def test_another_program_gets_its_keys_when_it_takes_the_focus(self):
        vistrel = self.start()
        self.open_window(vistrel, "Preferences")
        self.record(vistrel)
        other = self.desktop.start(["xev", "-event", "keyboard"])
        wait_until(lambda: self.screen.focus()["pid"] != vistrel.pid, "the focus on the other application")

        def types():
            self.screen.key("b")
            return any("keysym 0x62, b" in line for line in other.lines)
        wait_until(types, "a key at the other application")
        other.end()


    def test_nothing_opens_while_recording_nor_after_the_removal(self):
        camera = self.desktop.camera()
        keys = "Control_L", "Shift_L", "F6"
        f6 = '{"carbonKeyCode":97,"carbonModifiers":4608}'
        vistrel = self.start({"dismissPreference": 1, SHORTCUT: f6})

        def in_another_program(work):
            other = self.desktop.start(["xev"])
            wait_until(lambda: self.screen.focus()["pid"] != vistrel.pid, "the focus on the other application")
            work()
            other.end()
            wait_until(lambda: self.screen.focus()["pid"] == vistrel.pid, "the focus back in the window")

        self.open_window(vistrel, "Preferences")
        self.record(vistrel)
        in_another_program(lambda: self.combination(*keys))
        self.record(vistrel)
        self.screen.key("Escape")
        self.expect(vistrel, "⌃⇧F6", f6)
        in_another_program(lambda: self.expect_toggle(vistrel, camera, *keys))
        self.assertEqual(vistrel.lines.count(STARTED), 1)

        self.record(vistrel)
        self.screen.key("Delete")
        self.wait_says(vistrel, "Press Shortcut", "")
        self.screen.key("Escape")
        self.expect(vistrel, "", False)
        in_another_program(lambda: self.combination(*keys))
        self.open(vistrel)  # had the keys opened the mirror, this would close it
        self.assertEqual(vistrel.lines.count(STARTED), 2)

    def test_it_works_while_a_box_of_ours_has_the_keyboard(self):
        camera = self.desktop.camera()
        vistrel = self.start({"dismissPreference": 1, SHORTCUT: '{"carbonKeyCode":97,"carbonModifiers":4608}'})
        self.open_window(vistrel, "Preferences")
        self.screen.click(centre(self.size_box(vistrel)["place"]))
        wait_until(lambda: vistrel.windows(managed=False), "the open box")
        self.expect_toggle(vistrel, camera, "Control_L", "Shift_L", "F6")

    def test_keys_held_a_while_are_recorded_and_open_nothing(self):
        vistrel = self.start({"dismissPreference": 1})
        self.desktop.camera()
        self.desktop.run("xset", "r", "rate", "20", "100")
        self.addCleanup(self.desktop.run, "xset", "r", "rate")
        self.open_window(vistrel, "Preferences")
        self.record(vistrel)
        for key in ("Control_L", "Shift_L", "F6"):
            self.screen.ask("keydown", key)
        self.wait_says(vistrel, "Record Shortcut", "⌃⇧F6")
        other = self.desktop.start(["xev"])  # takes far longer to come than a few repeats
        wait_until(lambda: self.screen.windows(name="Event Tester"), "another window")
        other.end()
        for key in ("F6", "Shift_L", "Control_L"):
            self.screen.ask("keyup", key)
        self.open(vistrel)  # had the keys opened the mirror, this would close it


class RecorderUnderBindingsTest(RecorderTest):
    stage = {"accessible": True, "manager": "xfwm4"}
    test_nothing_opens_while_recording_nor_after_the_removal = None
    test_it_works_while_a_box_of_ours_has_the_keyboard = None
    test_keys_held_a_while_are_recorded_and_open_nothing = None
    test_a_shortcut_is_recorded_replaced_and_cleared = None
    test_another_program_gets_its_keys_when_it_takes_the_focus = None

    def test_the_recorder_sees_and_refuses_what_the_window_manager_keeps(self):
        vistrel = self.start()
        self.open_window(vistrel, "Preferences")
        for has_box in (False, True):
            self.record(vistrel)
            if has_box:  # opened by a screen reader, which leaves the focus where it is
                self.reader.act(self.size_box(vistrel), "ShowMenu")
                wait_until(lambda: vistrel.windows(managed=False), "the open box")
                self.screen.key("Escape")
                wait_until(lambda: not vistrel.windows(managed=False), "the end of the box")
                self.wait_says(vistrel, "Press Shortcut")
            self.combination("Alt_L", "F4")  # closes a window here
            self.press(vistrel, "OK", "push button")
            self.wait_says(vistrel, "Press Shortcut", "")
            self.screen.key("Escape")
            self.expect(vistrel, "", None)
        self.combination("Alt_L", "F4")
        wait_until(lambda: not vistrel.windows(name="Preferences"), "the window closed by the window manager")


if __name__ == "__main__":
    unittest.main()
