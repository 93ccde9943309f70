"""A Wayland session: what XWayland and a compositor that places windows as it likes make of the mirror."""

import ctypes
import os
import signal
import unittest

from stage.processes import wait_until
from stage.program import Program, centre
from stage.sway import SwayDesktop, refusal
from tests.desktop.harness import DesktopTest

EMPTY_BAR = (600, 792)
NATIVE_CORNER = (20, 20)
WALL = 0x40000000  # waits for a thread that is being traced
COVER = "_NET_WM_WINDOW_TYPE_DROPDOWN_MENU"
PTRACE_DETACH, PTRACE_SEIZE, PTRACE_INTERRUPT = 17, 0x4206, 0x4207


def trace(request, vistrel):
    call = ctypes.CDLL(None, use_errno=True).ptrace
    call.argtypes = [ctypes.c_long, ctypes.c_long, ctypes.c_void_p, ctypes.c_void_p]
    assert call(request, vistrel.pid, None, None) == 0, os.strerror(ctypes.get_errno())


def hang(vistrel):
    """Stops the main thread, and no other."""
    trace(PTRACE_SEIZE, vistrel)
    trace(PTRACE_INTERRUPT, vistrel)
    os.waitpid(vistrel.pid, WALL)


def release(vistrel):
    trace(PTRACE_DETACH, vistrel)


def tell(number):
    return lambda vistrel: vistrel.process.signal(number)


class SwayTest(DesktopTest):
    make_desktop = SwayDesktop

    @classmethod
    def setUpClass(cls):
        if refusal():
            raise unittest.SkipTest(f"NOT TESTED, no Wayland session: {refusal()}")
        super().setUpClass()

    def setUp(self):
        super().setUp()
        self.camera = self.desktop.camera()
        # A window of Wayland's own, which fills the screen beside the bar.
        self.native = self.desktop.start(["foot", "sleep", "infinity"])
        self.addCleanup(self.native.end)
        wait_until(self.native_window, "the native window")

    def native_window(self):
        return next(iter(self.screen.windows(x11=False)), None)

    def start(self, preferences=None, **options):
        vistrel = super().start(preferences, awaits_icon=False, **options)
        self.icon = self.desktop.icon()
        return vistrel

    def click_icon(self):
        self.screen.click(centre(self.icon))

    def open(self, vistrel=None):
        self.click_icon()
        return self.look()

    def look(self, frames=3):
        """What is seen of the mirror with the pointer elsewhere, so that no control covers its clock."""
        wait_until(lambda: [window for window in self.screen.x11_windows(managed=False) if COVER in window["types"]],
                   "the cover, without which the X server knows no better than where the pointer was last")
        wait_until(lambda: self.screen.move(NATIVE_CORNER) or self.screen.picture(), "the picture without a control")
        return self.screen.live_picture(frames)

    def test_the_icon_a_second_start_and_escape_open_and_close_it(self):
        self.start()
        for _ in range(2):
            self.assertTrue(self.open()["mirrored"])
            self.click_icon()
            self.wait_closed(self.camera)
        self.start_again()
        self.look()
        self.start_again()
        self.wait_closed(self.camera)
        self.open()
        self.screen.key("Escape")
        self.wait_closed(self.camera)

    def test_a_press_anywhere_else_closes_it_once_and_one_on_it_does_not(self):
        for preference in (0, 1):
            with self.start({"dismissPreference": preference}):
                for place in (NATIVE_CORNER, EMPTY_BAR):
                    with self.subTest(preference=preference, place=place):
                        picture = self.open()["place"]
                        self.screen.click((picture[0] + 40, picture[1] + 60))
                        self.look(10)
                        self.screen.click(place)
                        self.wait_closed(self.camera)

    def test_a_program_that_hangs_is_stopped_or_dies_leaves_the_desktop_alive(self):
        for fate, end in ((hang, release), (tell(signal.SIGSTOP), tell(signal.SIGCONT)), (tell(signal.SIGKILL), None)):
            with self.subTest(fate=fate), Program(self.desktop, {}, awaits_icon=False) as vistrel:
                self.icon = self.desktop.icon()
                self.open()
                fate(vistrel)
                # Again, since the compositor may not have heard yet that the cover is off.
                wait_until(lambda: self.screen.click(NATIVE_CORNER) or self.native_window()["focused"],
                           "the focus on the pressed window")
                if end:
                    end(vistrel)

    def test_beside_its_tip_is_what_is_below(self):
        vistrel = self.start()
        self.open()
        x, y, width, height = self.mirror(vistrel)
        below = self.screen.colors(x - 3, y - 3, 1, 1)
        corners = [(left, top) for left in (x, x + width - 1) for top in (y, y + height - 1)]
        seen = [self.screen.colors(*corner, 1, 1) for corner in corners]
        self.assertEqual(seen.count(below), 2, seen)  # the other two are rounded, and so in between

    def test_a_torn_off_mirror_follows_the_pointer_and_stays(self):
        vistrel = self.start({"dismissPreference": 1})
        self.open()
        for _ in range(2):
            before = self.mirror(vistrel)
            self.drag((before[0] + 60, before[1] + 100), lambda: self.mirror(vistrel) != before)
        vistrel.wait_line("Detached")
        self.screen.click(NATIVE_CORNER)
        self.screen.live_picture(10)

    def test_a_press_elsewhere_closes_a_menu_of_ours_and_one_on_the_icon_is_the_last_for_that(self):
        vistrel = self.start()
        for place in (NATIVE_CORNER, centre(self.icon)):
            self.screen.click(centre(self.icon), 3)  # this bar draws no menus
            wait_until(lambda: self.menus(vistrel), "the menu")
            self.wait_covered()
            self.screen.click(place)
            wait_until(lambda: not self.menus(vistrel), "the end of the menu")
        self.open()

    def test_a_press_where_the_icon_was_pressed_is_one_on_it_wherever_it_is_by_now(self):
        vistrel = self.start()
        for button in (1, 3):
            vistrel.call_item("Activate", *EMPTY_BAR)
            self.look()
            self.screen.click(EMPTY_BAR, button)
            self.wait_closed(self.camera)
        wait_until(lambda: self.menus(vistrel), "the menu")
        wait_until(lambda: self.native_window()["focused"], "the focus off the mirror, which closes no menu of the icon")
        self.wait_covered()
        self.screen.click(NATIVE_CORNER)
        wait_until(lambda: not self.menus(vistrel), "the end of the menu")

    def wait_covered(self):
        """Until the X server hears of the pointer where it is over no window of X11."""
        for x in (40, 20):
            wait_until(lambda: self.screen.move((x, 20)) or self.screen.x11_pointer() == [x, 20], "the pointer")

    def mirror(self, vistrel):
        return self.screen.windows(pid=vistrel.pid)[0]["place"]

    def menus(self, vistrel):
        return self.screen.x11_windows(pid=vistrel.pid, managed=False)

    def drag(self, start, has_moved):
        """Holds the button until the window follows."""
        self.screen.move(start)
        self.screen.button(True)
        way = iter(range(1, 1000))

        def step():
            number = next(way) % 100
            self.screen.move((start[0] - number, start[1] - number))
            return has_moved()

        wait_until(step, "a window that follows the pointer")
        self.screen.button(False)


if __name__ == "__main__":
    unittest.main()
