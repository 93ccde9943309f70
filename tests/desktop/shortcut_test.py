"""The global shortcut: real keys, pressed while another application has the focus."""

import json
import pathlib
import platform
import unittest

from stage.processes import wait_until
from stage.program import centre
from tests.desktop.harness import DesktopTest

CONTROL, ALT, Z, F4 = "evdev:29", "evdev:56", "evdev:44", "evdev:62"  # keys by their place
Z_KEY, F4_KEY = 6, 118  # the same as they are stored
CAPS, NUM, GROUP = "Caps_Lock", "Num_Lock", "ISO_Next_Group"
# Where the calls in which a thread sleeps have their patience in milliseconds: poll, epoll_wait, epoll_pwait; and
# where ppoll and futex have the address of theirs, which is none when they wait for ever.
PATIENCE = {"7": 2, "232": 3, "281": 3}
PLACE_OF_PATIENCE = {"271": 2, "202": 3}
FOR_EVER = 0xffffffff
LONG = 10000  # the toolkit looks over its pictures once half a minute after the last was drawn


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
        for layouts, *locks in (("us",), ("us", CAPS), ("us", NUM), ("us", CAPS, NUM), ("de",), ("us,ru", GROUP)):
            with self.subTest(layouts=layouts, locks=locks):
                self.lay_out(layouts, "grp:menu_toggle" if GROUP in locks else "")
                for lock in locks:
                    self.screen.key(lock)
                self.press()
                self.screen.live_picture()
                self.press()
                self.wait_closed(self.camera)
                for lock in locks:
                    self.screen.key(lock)

    def test_it_waits_for_the_release(self):
        vistrel = self.start(stored(Z_KEY, 0x1800))
        self.keys("keydown", CONTROL, ALT, Z)
        self.keys("keyup", ALT, CONTROL)
        vistrel.click()  # had the press opened the mirror, this would close it
        self.screen.live_picture()
        self.keys("keyup", Z)
        self.wait_closed(self.camera)

    @unittest.skipUnless(platform.machine() == "x86_64", "the numbers of the system calls are those of x86-64")
    def test_nothing_wakes_it_while_no_key_is_held(self):
        vistrel = self.start(stored(Z_KEY, 0x1800))
        self.press()
        self.screen.live_picture()
        self.press()
        self.wait_closed(self.camera)
        wait_until(lambda: self.patience(vistrel) > LONG, "every thread asleep")
        self.keys("keydown", CONTROL, ALT, Z)
        wait_until(lambda: self.patience(vistrel) < LONG, "a look at the held key")
        self.keys("keyup", Z, ALT, CONTROL)
        self.screen.live_picture()

    @staticmethod
    def patience(program):
        """How long the least patient of its threads sleeps at most, in milliseconds."""
        def of(task):
            number, *arguments = (task / "syscall").read_text().split()
            if number in PLACE_OF_PATIENCE:
                return FOR_EVER if int(arguments[PLACE_OF_PATIENCE[number]], 16) == 0 else 0
            return int(arguments[PATIENCE[number]], 16) & FOR_EVER if number in PATIENCE else 0
        return min(of(task) for task in pathlib.Path(f"/proc/{program.pid}/task").iterdir())


class TakenShortcutTest(ShortcutTest):
    stage = {"manager": "xfwm4"}
    test_it_opens_and_closes_the_mirror_whatever_is_locked = None
    test_it_waits_for_the_release = None
    test_nothing_wakes_it_while_no_key_is_held = None

    def test_a_taken_shortcut_is_left_to_its_owner(self):
        vistrel = self.start(stored(F4_KEY, 0x800), complaints=1)
        self.keys("keydown", ALT, F4)
        self.keys("keyup", F4, ALT)
        wait_until(lambda: not self.screen.windows(name="Event Tester"), "the window closed by the window manager")
        self.open(vistrel)  # had the keys opened the mirror, this would close it


if __name__ == "__main__":
    unittest.main()
