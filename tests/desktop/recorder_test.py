"""The recorder of the global shortcut, with real keys."""

import contextlib
import unittest

from stage.processes import wait_until
from stage.program import centre
from tests.desktop.harness import STARTED, STOPPED
from tests.desktop.settings import SettingsTest

SHORTCUT = "KeyboardShortcuts_toggleShortcutMode"


class RecorderRules:
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
        self.stored(vistrel, SHORTCUT, stored)

    def expect_toggle(self, vistrel, camera, *keys):
        self.combination(*keys)
        self.screen.live_picture()
        self.combination(*keys)
        self.wait_closed(camera)

    def test_it_sees_and_refuses_what_the_window_manager_keeps_even_held(self):
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
            with self.repeating(), self.screen.holding("Alt_L"), self.screen.holding("F4"):  # closes a window here
                self.find(vistrel, "OK", "push button")
                self.wait_a_few_repeats()
            self.press(vistrel, "OK", "push button")
            self.wait_says(vistrel, "Press Shortcut", "")
            self.screen.key("Escape")
            self.expect(vistrel, "", None)
        self.combination("Alt_L", "F4")
        wait_until(lambda: not vistrel.windows(name="Preferences"), "the window closed by the window manager")

    @contextlib.contextmanager
    def repeating(self):
        """A key that is held repeats itself a hundred times a second."""
        self.desktop.run("xset", "r", "rate", "20", "100")
        try:
            yield
        finally:
            self.desktop.run("xset", "r", "rate")

    def wait_a_few_repeats(self):
        """Another window takes far longer to come and to go."""
        other = self.desktop.start(["xev"])
        wait_until(lambda: self.screen.windows(name="Event Tester"), "another window")
        other.end()

    def test_others_have_the_keyboard_while_the_pointer_is_elsewhere(self):
        vistrel = self.start()
        self.open_window(vistrel, "Preferences")
        self.record(vistrel)
        wait_until(lambda: not self.screen.is_keyboard_free(), "the keyboard at the recorder")
        self.screen.move(centre(vistrel.icon()))
        wait_until(self.screen.is_keyboard_free, "the keyboard at nobody")
        # No look at the keyboard here: it could be what the recorder is refused for.
        self.screen.move(centre(self.field(vistrel)["place"]))
        for _ in range(2):
            self.wait_says(vistrel, "Press Shortcut")  # an answer after the pointer came
        self.combination("Alt_L", "F4")
        self.press(vistrel, "OK", "push button")
        self.wait_says(vistrel, "Press Shortcut", "")
        self.screen.move(centre(vistrel.icon()))
        wait_until(self.screen.is_keyboard_free, "the keyboard at nobody")
        vistrel.open_menu()


class RecorderTest(RecorderRules, SettingsTest):
    def test_a_shortcut_is_recorded_replaced_and_cleared(self):
        camera = self.desktop.camera()
        vistrel = self.start({"dismissPreference": 1})
        self.open_window(vistrel, "Preferences")
        elsewhere = centre(self.find(vistrel, "Popover size:", "label")["place"])
        self.screen.move(elsewhere)
        arrow = self.screen.pointer()
        self.screen.move(centre(self.field(vistrel)["place"]))
        wait_until(lambda: self.screen.pointer() != arrow, "the pointer of a text")
        self.record(vistrel)
        self.screen.move(elsewhere)
        wait_until(lambda: self.screen.pointer() == arrow, "the pointer of a window, although the field has the focus")
        self.assertEqual(self.screen.bells(), 0)
        self.screen.key("a")
        wait_until(self.screen.bells, "a beep")
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
        # On to the next control, not to the first one: to the choice that is made.
        wait_until(lambda: "focused" in self.find(vistrel, "Click on the icon again", "radio button")["states"],
                   "the focus on the next control")
        x, y, width, height = self.field(vistrel)["place"]
        self.screen.drag((x + width // 2 - 20, y + height // 2), (x + width // 2 + 20, y + height // 2))
        self.wait_says(vistrel, "Press Shortcut")
        self.assertFalse(self.screen.owns_selection("PRIMARY"))
        self.screen.key("Num_Lock")  # a modifier, which beeps as little as Shift
        self.combination("Control_L", "Insert")
        self.expect(vistrel, "⌃?\u20dd", '{"carbonKeyCode":114,"carbonModifiers":4096}')
        self.assertEqual(self.screen.bells(), 0)
        self.screen.key("Num_Lock")
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
        self.stored(vistrel, SHORTCUT, False)
        self.screen.key("F7")
        self.expect(vistrel, "F7", '{"carbonKeyCode":98,"carbonModifiers":0}')
        x, y, width, height = self.field(vistrel)["place"]
        self.screen.click((x + width - height // 2, y + height // 2))  # the clear button
        self.wait_says(vistrel, "Press Shortcut", "")
        self.stored(vistrel, SHORTCUT, False)
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
        self.desktop.camera()
        vistrel = self.start({"dismissPreference": 1})
        self.desktop.run("xset", "r", "rate", "20", "100")
        self.addCleanup(self.desktop.run, "xset", "r", "rate")
        self.open_window(vistrel, "Preferences")
        self.record(vistrel)
        for key in ("Control_L", "Shift_L", "F6"):
            self.screen.ask("keydown", key)
        self.wait_says(vistrel, "Record Shortcut", "⌃⇧F6")
        self.wait_a_few_repeats()
        for key in ("F6", "Shift_L", "Control_L"):
            self.screen.ask("keyup", key)
        self.open(vistrel)  # had the keys opened the mirror, this would close it


class RecorderUnderXfwmTest(RecorderRules, SettingsTest):
    stage = {"accessible": True, "manager": "xfwm4"}


if __name__ == "__main__":
    unittest.main()
