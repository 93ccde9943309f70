"""The context menu under tray hosts that draw it themselves and under ones that leave it to the program."""

import unittest

from stage.desktop import WATCHER
from stage.processes import wait_until
from tests.desktop.harness import CHECKING, REFRESHED, SAVING, DesktopTest, plain

CAMERAS = ("First Camera", "Second Camera")
ABOUT, QUIT = 2, 4  # after the cameras


class MenuRules:
    def plug(self):
        return [self.desktop.camera(name=name, node=name.replace(" ", "-").lower()) for name in CAMERAS]

    def test_the_chosen_item_acts_once_after_a_dismissal_and_a_reopening(self):
        self.plug()
        vistrel = self.start()
        vistrel.click(button=3)
        self.assertEqual(len(vistrel.menu_rows()), 5)
        self.screen.key("Escape")
        vistrel.wait_no_menu()
        if self.stage:  # the panel never tells of a close
            vistrel.wait_line(CHECKING)
        vistrel.click(button=3)
        vistrel.menu()
        before = len(vistrel.lines)
        vistrel.choose(1)
        chosen = vistrel.wait_line(SAVING, before)
        vistrel.wait_line(CHECKING, chosen)
        wait_until(lambda: len(vistrel.lines) >= chosen + 4, "the menu built again")
        closed = [REFRESHED + "[…]", CHECKING + "[…]", REFRESHED + "[…]"]
        self.assertEqual(plain(vistrel.lines[chosen - 3:chosen]), closed)
        self.assertEqual(vistrel.lines[chosen], SAVING + CAMERAS[1])
        self.assertEqual(plain(vistrel.lines[chosen + 1:]), closed)
        self.assertEqual(vistrel.preferences()["defaultCameraPreference"], CAMERAS[1])
        self.assertEqual(sum(line.startswith(SAVING) for line in vistrel.lines), 1)

    def test_every_choice_of_several_showings_is_the_one_that_was_clicked(self):
        cameras = self.plug()
        vistrel = self.start()
        for index in (1, 0, 0, 1):
            since = len(vistrel.lines)
            vistrel.click(button=3)
            vistrel.choose(index)
            vistrel.wait_line(SAVING + CAMERAS[index], since)
        self.open(vistrel)
        self.assertEqual([self.desktop.readers(camera) for camera in cameras], [0, 1])
        vistrel.click(button=3)  # the menu closes the mirror first
        self.wait_closed(cameras[1])
        vistrel.choose(QUIT)
        self.assertEqual(vistrel.process.wait(), 0)

    def test_control_and_option_open_the_menu_and_others_the_mirror(self):
        camera = self.plug()[0]
        vistrel = self.start()
        for key in ("Control_L", "Alt_L"):
            self.open(vistrel)
            with self.screen.holding(key):
                vistrel.click()
                vistrel.menu_rows()
            self.wait_closed(camera)
            since = len(vistrel.lines)
            vistrel.choose(0)
            vistrel.wait_line(SAVING + CAMERAS[0], since)
        with self.screen.holding("Shift_L"):
            self.open(vistrel)


class MenuUnderPanelTest(MenuRules, DesktopTest):
    def test_a_camera_that_came_is_listed_once_the_showing_before_has_ended(self):
        self.desktop.camera(name=CAMERAS[0], node="first")
        vistrel = self.start()
        self.desktop.camera(name=CAMERAS[1], node="second")
        vistrel.click(button=3)
        self.assertEqual(len(vistrel.menu_rows()), 4)
        self.screen.key("Escape")
        vistrel.wait_line(lambda line: line.startswith(CHECKING) and CAMERAS[1] in line)
        wait_until(lambda: CAMERAS[1] in self.labels_on_the_bus(), "the new camera on the bus")
        vistrel.click(button=3)
        self.assertEqual(len(vistrel.menu_rows()), 5)

    def labels_on_the_bus(self):
        """What the panel is told of the menu."""
        bus = self.desktop.bus
        item = bus.property(WATCHER, "/StatusNotifierWatcher", WATCHER, "RegisteredStatusNotifierItems")[0]
        name, path = item.split("/")[0], "/" + item.split("/", 1)[1]
        menu = bus.property(name, path, "org.kde.StatusNotifierItem", "Menu")
        layout = bus.call(name, menu, "com.canonical.dbusmenu", "GetLayout", "(iias)", 0, -1, ["label"])[1]
        return [row[1].get("label") for row in layout[2]]


class MenuUnderTrayerTest(MenuRules, DesktopTest):
    stage = {"host": "trayer"}


if __name__ == "__main__":
    unittest.main()
