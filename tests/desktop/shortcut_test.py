"""The global shortcut: real keys, pressed while another application has the focus."""

import json
import unittest

from stage.processes import wait_until
from stage.program import centre
from tests.desktop.harness import DesktopTest

CONTROL, ALT, Z, F4 = "evdev:29", "evdev:56", "evdev:44", "evdev:62"  # keys by their place
Z_KEY, F4_KEY = 6, 118  # the same as they are stored


def stored(key, modifiers):
    text = json.dumps({"carbonKeyCode": key, "carbonModifiers": modifiers}, separators=(",", ":"))
    return {"KeyboardShortcuts_toggleShortcutMode": text}


class ShortcutTest(DesktopTest):
    def setUp(self):
        super().setUp()
        self.camera = self.desktop.camera()
        self.other = self.desktop.start(["xev", "-event", "keyboard"])
        self.addCleanup(self.other.end)
        window = wait_until(lambda: self.screen.windows(name="Event Tester"), "the other application")[0]
        self.screen.click(centre(window["place"]))
        wait_until(self.types, "a key at the other application")

    def types(self):
        self.screen.key("b")
        return any("keysym 0x62, b" in line for line in self.other.lines)

    def keys(self, action, *names):
        for name in names:
            self.screen.ask(action, name)

    def press(self):
        self.keys("keydown", CONTROL, ALT, Z)
        self.keys("keyup", Z, ALT, CONTROL)

    def lay_out(self, layouts, option=""):
        self.desktop.run("setxkbmap", "-option", "", "-layout", layouts, *(["-option", option] if option else []))

    def test_it_opens_and_closes_the_mirror_whatever_is_locked(self):
        self.start(stored(Z_KEY, 0x1800))
        self.addCleanup(self.lay_out, "us")
        for layouts, lock in (("us", None), ("us", "Caps_Lock"), ("us", "Num_Lock"), ("de", None),
                              ("us,ru", "ISO_Next_Group")):
            with self.subTest(layouts=layouts, lock=lock):
                self.lay_out(layouts, "grp:menu_toggle" if lock == "ISO_Next_Group" else "")
                if lock:
                    self.screen.key(lock)
                self.press()
                self.screen.live_picture()
                self.press()
                self.wait_closed(self.camera)
                if lock:
                    self.screen.key(lock)

    def test_it_waits_for_the_release(self):
        vistrel = self.start(stored(Z_KEY, 0x1800))
        self.keys("keydown", CONTROL, ALT, Z)
        self.keys("keyup", ALT, CONTROL)
        vistrel.click()  # had the press opened the mirror, this would close it
        self.screen.live_picture()
        self.keys("keyup", Z)
        self.wait_closed(self.camera)


class TakenShortcutTest(ShortcutTest):
    stage = {"manager": "xfwm4"}
    test_it_opens_and_closes_the_mirror_whatever_is_locked = None
    test_it_waits_for_the_release = None

    def test_a_taken_shortcut_is_left_to_its_owner(self):
        vistrel = self.start(stored(F4_KEY, 0x800))
        self.keys("keydown", ALT, F4)
        self.keys("keyup", F4, ALT)
        wait_until(lambda: not self.screen.windows(name="Event Tester"), "the window closed by the window manager")
        self.open(vistrel)  # had the keys opened the mirror, this would close it


if __name__ == "__main__":
    unittest.main()
