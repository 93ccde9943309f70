"""Where the mirror opens: beside its icon, on whichever edge of whichever monitor the panel is; and that it closes
when these change."""

import unittest

from stage.bus import WATCHER, GLib
from stage.processes import wait_until
from stage.program import centre, inside
from tests.desktop.harness import SIZES, DesktopTest

CHANGED = "🖥 Changed Display"
UNRESERVED = 64  # how thick a panel is taken to be that reserves no room, in points
TIP = 12  # what may lie between the panel and the picture, in pixels


class ShrinkingTest(DesktopTest):
    stage = {"size": "1024x600", "edge": "bottom", "host": "trayer"}

    def test_what_is_too_large_shrinks_beside_its_icon_and_stays_sharp(self):
        self.desktop.camera(offers=["mjpeg:1280x720@30"])
        for scale, index in ((1, 0), (1, 2), (2, 0), (2, 1)):
            environment = {"QT_SCALE_FACTOR": str(scale)}
            with self.subTest(scale=scale, index=index), \
                    self.start({"selectedPopoverSize": index}, environment=environment) as vistrel:
                left, top, width, height = self.open(vistrel)["place"]
                self.assertTrue(0 <= left and 0 <= top and left + width <= 1024, (left, top, width, height))
                self.assertLessEqual(top + height, vistrel.icon()[1])
                self.assertAlmostEqual(width / height, 426 / 240, delta=0.02)
                self.assertAlmostEqual(width, min(SIZES[index][0] * scale, 960), delta=40)
                self.assertLess(self.screen.live_picture()["softness"], 2)


class MonitorsTest(DesktopTest):
    stage = {"size": "2048x800", "host": None,
             "monitors": (("left", "1024/270x800/210+0+0"), ("right", "1024/270x600/160+1024+0"))}
    places = {"left": [0, 0, 1024, 800], "right": [1024, 0, 1024, 600]}

    def open_without_icon(self, monitor):
        """The desktop asks for the mirror while the pointer is in the monitor; gives the pointer's place."""
        x, y, width, height = self.places[monitor]
        pointer = [x + width // 2, y + height // 2, 0, 0]  # where the picture does not come to lie
        self.screen.move(pointer[:2])
        self.start_again()
        return pointer

    def test_it_opens_beside_the_panel_on_whichever_edge(self):
        self.desktop.camera()
        for edge in ("top", "bottom", "left", "right"):
            self.desktop.start_host("xfce4-panel", edge)
            try:
                dock = self.docks()[0]
                with self.subTest(edge=edge), self.start({"dismissPreference": 1}) as vistrel:
                    if edge != "right":  # between two monitors a panel reserves no room
                        self.check("left", edge, dock, self.open_without_icon("left"))
                        vistrel.click()
                        self.screen.wait_no_picture()
                    vistrel.click()
                    self.check("left", edge, dock, vistrel.icon())
            finally:
                self.desktop.stop_host()

    def test_without_an_icon_it_opens_beside_the_panel_of_the_pointers_monitor(self):
        self.desktop.camera()
        panel = self.desktop.start(["xev", "-geometry", "1024x40+1024+560"])
        self.addCleanup(panel.end)
        wait_until(lambda: self.screen.windows(name="Event Tester"), "the panel")
        for name, value in (("_NET_WM_STRUT_PARTIAL", "0,0,0,240,0,0,0,0,0,0,1024,2047"),
                            ("_NET_WM_STRUT", "0,0,0,240")):
            self.desktop.run("xprop", "-name", "Event Tester", "-f", name, "32c", "-set", name, value)
            with self.subTest(name=name), self.start(awaits_icon=False) as vistrel:
                wait_until(lambda: len(vistrel.lines) == 2, "the end of the launch")
                self.open_without_icon("right")
                self.check("right", "bottom", [1024, 560, 1024, 40], [2020, 560, 10, 10])  # where a tray would be
                self.assertNotIn(CHANGED, vistrel.lines)
            self.desktop.run("xprop", "-name", "Event Tester", "-remove", name)

    def docks(self):
        return wait_until(lambda: [window["place"] for window in self.screen.windows()
                                   if "_NET_WM_WINDOW_TYPE_DOCK" in window["types"]], "the panel")

    def check(self, monitor, edge, dock, anchor):
        place = self.screen.live_picture()["place"]
        self.assertTrue(inside(place, self.places[monitor]), place)
        gap = {"top": place[1] - dock[1] - dock[3], "bottom": dock[1] - place[1] - place[3],
               "left": place[0] - dock[0] - dock[2], "right": dock[0] - place[0] - place[2]}[edge]
        self.assertTrue(0 < gap <= TIP, (gap, place, dock))
        along = 0 if edge in ("top", "bottom") else 1
        self.assertTrue(place[along] <= centre(anchor)[along] <= place[along] + place[along + 2], (place, anchor))


class StalePointerTest(DesktopTest):
    """A Wayland session, as far as the X server tells: the pointer is wherever it last was over a window of X11."""

    stage = {"size": "1280x800", "host": None, "manager": None}

    def setUp(self):
        super().setUp()
        path, mock, bus = "/StatusNotifierWatcher", "org.freedesktop.DBus.Mock", self.desktop.bus
        self.watcher = self.desktop.start(["/usr/bin/python3", "-m", "dbusmock", WATCHER, path, WATCHER])
        self.addCleanup(self.watcher.end)
        wait_until(lambda: bus.has_owner(WATCHER), "the scripted watcher")
        bus.call(WATCHER, path, mock, "AddMethod", "(sssss)", WATCHER, "RegisterStatusNotifierItem", "s", "", "")
        facts = {"IsStatusNotifierHostRegistered": GLib.Variant("b", True), "ProtocolVersion": GLib.Variant("i", 0),
                 "RegisteredStatusNotifierItems": GLib.Variant("as", [])}
        bus.call(WATCHER, path, mock, "AddProperties", "(sa{sv})", WATCHER, facts)

    def press(self, since, place):
        """A press on the icon, as the host tells it."""
        line = self.watcher.lines[self.watcher.wait_line(lambda line: "RegisterStatusNotifierItem " in line, since)]
        self.desktop.bus.call(line.split('"')[1], "/StatusNotifierItem", "org.kde.StatusNotifierItem", "Activate",
                              "(ii)", *place)

    def test_it_opens_where_the_host_says_that_the_press_was(self):
        self.desktop.camera()
        self.screen.move((5, 795))  # off every picture, so that no control covers its clock
        edges = {"top": (900, 12), "bottom": (900, 790), "left": (12, 500), "right": (1270, 500)}
        for scale, desktop in ((1, "GNOME"), (1.5, "KDE"), (1.5, "GNOME"), (2, "KDE"), (2, "GNOME")):
            environment = {"QT_SCALE_FACTOR": str(scale), "WAYLAND_DISPLAY": "none", "XDG_CURRENT_DESKTOP": desktop}
            since = len(self.watcher.lines)
            with self.start({"dismissPreference": 1}, environment=environment, awaits_icon=False):
                for edge, pixel in edges.items():
                    with self.subTest(scale=scale, desktop=desktop, edge=edge):
                        told = pixel if desktop == "KDE" else [int(number / scale) for number in pixel]
                        self.press(since, told)
                        self.check_beside(self.screen.live_picture()["place"], edge, pixel, scale)
                        self.press(since, told)
                        self.screen.wait_no_picture()

    def test_a_work_area_at_the_scale_before_is_understood(self):
        """As KWin 6 tells it once the scale was doubled: the panel has 80 pixels."""
        self.desktop.camera()
        self.screen.move((5, 795))  # off the picture, so that no control covers its clock
        for name, value in (("_NET_DESKTOP_GEOMETRY", "640,400"), ("_NET_WORKAREA", "0,0,640,360")):
            self.desktop.run("xprop", "-root", "-f", name, "32c", "-set", name, value)
            self.addCleanup(self.desktop.run, "xprop", "-root", "-remove", name)
        environment = {"QT_SCALE_FACTOR": "2", "WAYLAND_DISPLAY": "none", "XDG_CURRENT_DESKTOP": "KDE"}
        since = len(self.watcher.lines)
        with self.start({"dismissPreference": 1}, environment=environment, awaits_icon=False):
            self.press(since, (900, 760))
            self.check_beside(self.screen.live_picture()["place"], "bottom", (900, 760), 2, 80)

    def test_without_a_press_it_opens_where_the_icon_was_last_or_would_be(self):
        self.camera = self.desktop.camera()
        self.screen.move((5, 400))
        since = len(self.watcher.lines)
        with self.start({"dismissPreference": 1}, environment={"WAYLAND_DISPLAY": "none"}, awaits_icon=False):
            self.watcher.wait_line(lambda line: "RegisterStatusNotifierItem " in line, since)  # else it is no second one
            self.check_second_start("top", (1270, 0))
            panel = self.desktop.start(["xev", "-geometry", "1280x40+0+760"])  # it keeps no room for itself
            self.addCleanup(panel.end)
            wait_until(lambda: self.screen.windows(name="Event Tester"), "the panel")
            self.desktop.run("xprop", "-name", "Event Tester", "-f", "_NET_WM_WINDOW_TYPE", "32a", "-set",
                             "_NET_WM_WINDOW_TYPE", "_NET_WM_WINDOW_TYPE_DOCK")
            self.check_second_start("bottom", (1270, 790), 40)
            self.press(since, (300, 780))
            self.screen.live_picture()
            self.press(since, (300, 780))
            self.screen.wait_no_picture()
            self.check_second_start("bottom", (300, 780), 40)

    def check_second_start(self, edge, press, covered=0):
        self.start_again()
        self.check_beside(self.screen.live_picture()["place"], edge, press, 1, covered)
        self.start_again()
        self.wait_closed(self.camera)

    def check_beside(self, place, edge, press, scale, covered=0):
        x, y, width, height = place
        gap = {"top": y, "bottom": 800 - y - height, "left": x, "right": 1280 - x - width}[edge]
        self.assertTrue(covered < gap <= (UNRESERVED + TIP) * scale, (gap, place))
        along = 0 if edge in ("top", "bottom") else 1
        self.assertTrue(place[along] <= press[along] <= place[along] + place[along + 2], (place, press))


class BarTest(DesktopTest):
    """A tiling manager that tells no work area, with its bar at the bottom."""

    stage = {"manager": "i3", "host": "i3bar"}

    def test_bar_and_icon_stay_free_the_focus_comes_and_a_torn_off_mirror_follows_the_pointer(self):
        camera = self.desktop.camera()
        vistrel = self.start()
        for _ in range(2):
            bottom = self.open(vistrel)["place"][1] + self.screen.live_picture()["place"][3]
            self.assertTrue(0 < vistrel.icon()[1] - bottom <= TIP, (vistrel.icon(), bottom))
            vistrel.click()
            self.wait_closed(camera)
        other = self.desktop.start(["xev"])
        self.addCleanup(other.end)
        wait_until(lambda: self.screen.windows(name="Event Tester"), "the other application")
        self.open(vistrel)
        self.screen.key("Escape")
        self.wait_closed(camera)
        x, y, _width, _height = self.open(vistrel)["place"]
        self.screen.ask("drag", x + 60, y + 100, x - 140, y - 100)
        vistrel.wait_line("Detached")  # before the focus follows the pointer to the other application
        self.screen.move((5, 5))
        self.assertEqual(self.screen.live_picture()["place"][:2], [x - 200, y - 200])


class DisplayChangeTest(DesktopTest):
    stage = {"host": None}

    def test_each_change_of_the_display_closes_it_and_one_of_a_panels_room_does_not(self):
        camera = self.desktop.camera()
        panel = self.desktop.start(["xev"])
        self.addCleanup(panel.end)
        wait_until(lambda: self.screen.windows(name="Event Tester"), "the panel")
        self.desktop.start_settings()
        self.desktop.run("xrandr", "--newmode", "less", *"61.5 1024 1072 1176 1328 700 703 713 728".split())
        self.desktop.run("xrandr", "--addmode", "screen", "less")
        vistrel = self.start({"dismissPreference": 1}, awaits_icon=False)
        wait_until(lambda: len(vistrel.lines) == 2, "the end of the launch")
        self.screen.move((1010, 600))  # off every picture, so that no control covers its clock
        changes = (("rescaled", ["xfconf-query", "-c", "xsettings", "-p", "/Xft/DPI", "-n", "-t", "int", "-s", "192"]),
                   ("resized", ["xrandr", "--output", "screen", "--mode", "less"]),  # Xvfb moves none
                   ("added", ["xrandr", "--setmonitor", "other", "200/53x200/53+0+0", "none"]),
                   ("removed", ["xrandr", "--delmonitor", "other"]))
        for room, (what, change) in enumerate(changes, 100):
            with self.subTest(what=what):
                self.start_again()
                self.screen.live_picture()
                area = self.screen.property("_NET_WORKAREA")
                self.desktop.run("xprop", "-name", "Event Tester", "-f", "_NET_WM_STRUT", "32c", "-set",
                                 "_NET_WM_STRUT", f"{room},0,0,0")
                wait_until(lambda: self.screen.property("_NET_WORKAREA") != area, "other room for windows")
                self.screen.live_picture(10)
                since = len(vistrel.lines)
                self.desktop.run(*change)
                vistrel.wait_line(CHANGED, since)
                self.wait_closed(camera)
        self.assertEqual(vistrel.lines.count(CHANGED), len(changes))


if __name__ == "__main__":
    unittest.main()
