"""The icon and its menu, under tray hosts that draw the menu themselves and under ones that leave it to the program."""

import signal
import unittest

from stage.bus import WATCHER, GLib
from stage.processes import wait_until
from tests.desktop.harness import CHECKING, REFRESHED, SAVING, STARTED, DesktopTest, plain

CAMERAS = ("First Camera", "Second Camera")
ABOUT, QUIT = 2, 4  # after the cameras


class MenuRules:
    def plug(self):
        return [self.desktop.camera(name=name, node=name.replace(" ", "-").lower()) for name in CAMERAS]

    def test_the_chosen_item_acts_once_after_a_dismissal_and_a_reopening(self):
        self.plug()
        vistrel = self.start()
        vistrel.open_menu()
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
        self.stored(vistrel, "defaultCameraPreference", CAMERAS[1])
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

    def test_a_double_click_is_two_clicks(self):
        cameras = self.plug()
        vistrel = self.start({"dismissPreference": 1})
        for _ in range(2):
            vistrel.click()
        wait_until(lambda: len(vistrel.lines) >= 5, "the opening by the first click")
        self.wait_closed(cameras[0])
        self.open(vistrel)


class ClosingPresses:
    """The press that closes the mirror or a menu and the click that it belongs to, which some hosts tell earlier."""

    def test_every_click_after_another_press_closed_the_mirror_opens_it(self):
        camera = self.desktop.camera()
        vistrel = self.start({"dismissPreference": 1})
        self.open(vistrel)
        vistrel.click(button=2)
        self.wait_closed(camera)
        self.open(vistrel)
        self.screen.key("Down")  # the view's own menu, which the press closes, too
        vistrel.menu_rows()
        vistrel.click()
        vistrel.wait_no_menu()
        self.wait_closed(camera)
        self.open(vistrel)

    def test_the_click_that_closes_a_menu_of_the_programs_own_opens_nothing(self):
        camera = self.desktop.camera()
        vistrel = self.start({"dismissPreference": 1})
        with self.screen.holding("Control_L"):
            vistrel.click()
            vistrel.menu_rows()
        self.screen.ask("press", 1)
        vistrel.wait_no_menu()
        self.screen.ask("release", 1)
        self.open(vistrel)
        vistrel.click()
        self.wait_closed(camera)
        self.assertEqual(vistrel.lines.count(STARTED), 1)


class MenuUnderPanelTest(MenuRules, ClosingPresses, DesktopTest):
    def test_a_camera_that_came_is_listed_once_the_showing_before_has_ended(self):
        self.desktop.camera(name=CAMERAS[0], node="first")
        vistrel = self.start()
        self.desktop.camera(name=CAMERAS[1], node="second")
        vistrel.click(button=3)
        self.assertEqual(len(vistrel.menu_rows()), 4)
        self.screen.key("Escape")
        vistrel.wait_line(lambda line: line.startswith(CHECKING) and CAMERAS[1] in line)
        wait_until(lambda: CAMERAS[1] in self.told("label"), "the new camera on the bus")
        vistrel.click(button=3)
        self.assertEqual(len(vistrel.menu_rows()), 5)

    def test_the_panel_is_told_where_the_check_mark_moves(self):
        self.plug()
        vistrel = self.start()
        for index in (1, 0):
            vistrel.click(button=3)
            vistrel.choose(index)
            marks = [int(index == row) for row in range(len(CAMERAS))]
            wait_until(lambda: self.told("toggle-state")[:len(CAMERAS)] == marks, f"the check mark at {index}")
            vistrel.wait_no_menu()

    def told(self, fact):
        """What the panel is told of the menu's rows."""
        bus = self.desktop.bus
        item = bus.property(WATCHER, "/StatusNotifierWatcher", WATCHER, "RegisteredStatusNotifierItems")[0]
        name, path = item.split("/")[0], "/" + item.split("/", 1)[1]
        menu = bus.property(name, path, "org.kde.StatusNotifierItem", "Menu")
        layout = bus.call(name, menu, "com.canonical.dbusmenu", "GetLayout", "(iias)", 0, -1, [fact])[1]
        return [row[1].get(fact) for row in layout[2]]


class MenuUnderTrayerTest(MenuRules, ClosingPresses, DesktopTest):
    stage = {"host": "trayer"}

    def test_without_a_camera_a_menu_begins_with_its_separator(self):
        vistrel = self.start()
        vistrel.click(button=3)
        self.assertTrue(self.has_line_above(vistrel))
        self.screen.key("Escape")
        vistrel.wait_no_menu()
        vistrel.click()
        wait_until(lambda: vistrel.windows(name="Vistrel"), "the mirror")
        self.screen.key("Down")
        self.assertTrue(self.has_line_above(vistrel))

    def has_line_above(self, vistrel):
        """Whether a line lies between the menu's frame and its first text."""
        vistrel.menu_rows(3)
        x, y, _width, _height = vistrel.menu()
        column = [self.screen.color((x + 8, row)) for row in range(y + 1, y + 12)]  # where no text begins
        return any(above == below != line for above, line, below in zip(column, column[1:], column[2:]))


class MenuUnderPanelAndXfwmTest(ClosingPresses, DesktopTest):
    stage = {"manager": "xfwm4"}


class MenuUnderTrayerAndXfwmTest(ClosingPresses, DesktopTest):
    stage = {"host": "trayer", "manager": "xfwm4"}


class ScriptedHostTest(DesktopTest):
    """A tray host that does on the bus what panels of other desktops do, and draws nothing."""
    stage = {"host": None}

    def setUp(self):
        super().setUp()
        path, mock = "/StatusNotifierWatcher", "org.freedesktop.DBus.Mock"
        self.watcher = self.desktop.start(["/usr/bin/python3", "-m", "dbusmock", WATCHER, path, WATCHER])
        self.addCleanup(self.watcher.end)
        bus = self.desktop.bus
        wait_until(lambda: bus.has_owner(WATCHER), "the scripted watcher")
        methods = [(f"RegisterStatusNotifier{what}", "s", "", "") for what in ("Item", "Host")]
        bus.call(WATCHER, path, mock, "AddMethods", "(sa(ssss))", WATCHER, methods)
        facts = {"IsStatusNotifierHostRegistered": GLib.Variant("b", False),
                 "ProtocolVersion": GLib.Variant("i", 0), "RegisteredStatusNotifierItems": GLib.Variant("as", [])}
        bus.call(WATCHER, path, mock, "AddProperties", "(sa{sv})", WATCHER, facts)
        self.cameras = [self.desktop.camera(name=name, node=f"scripted-{name[0]}") for name in CAMERAS]
        # At a busy login the watcher takes its time; that starts open and close the mirror tells that it held up nothing.
        self.watcher.signal(signal.SIGSTOP)
        self.vistrel = self.start(awaits_icon=False)
        wait_until(lambda: len(self.vistrel.lines) == 2, "the end of the launch")
        self.start_again()
        self.screen.live_picture()
        self.start_again()
        self.screen.wait_no_picture()
        self.watcher.signal(signal.SIGCONT)
        # The watcher was first, as at the start of a desktop; now comes the host.
        bus.call(WATCHER, path, mock, "UpdateProperties", "(sa{sv})", WATCHER,
                 {"IsStatusNotifierHostRegistered": GLib.Variant("b", True)})
        bus.call(WATCHER, path, mock, "EmitSignal", "(sssav)", WATCHER, "StatusNotifierHostRegistered", "", [])
        line = self.watcher.lines[self.watcher.wait_line(lambda line: "RegisterStatusNotifierItem " in line)]
        self.name = line.split('"')[1]

    def item(self, method):
        self.desktop.bus.call(self.name, "/StatusNotifierItem", "org.kde.StatusNotifierItem", method, "(ii)", 1200, 10)

    def menu(self, method, signature, *arguments):
        path = self.desktop.bus.property(self.name, "/StatusNotifierItem", "org.kde.StatusNotifierItem", "Menu")
        return self.desktop.bus.call(self.name, path, "com.canonical.dbusmenu", method, signature, *arguments)

    def send(self, row, event):
        self.menu("Event", "(isvu)", row, event, GLib.Variant("i", 0), 0)

    def test_activation_and_the_menu_as_the_bus_tells_them(self):
        vistrel = self.vistrel
        for _ in range(2):
            self.item("Activate")
            self.screen.live_picture()
            self.item("SecondaryActivate")
            self.screen.live_picture(5)
            self.item("Activate")
            self.wait_closed(self.cameras[0])
        self.item("Activate")
        self.screen.live_picture()
        self.menu("AboutToShow", "(i)", 0)
        self.send(0, "opened")
        self.wait_closed(self.cameras[0])
        self.assertFalse([line for line in vistrel.lines if line.startswith(CHECKING)])
        self.desktop.camera(name="Third Camera", node="scripted-T")
        self.send(0, "closed")
        since = vistrel.wait_line(CHECKING)
        self.menu("AboutToShow", "(i)", 0)  # at once: the rows are those of the last build all the same
        rows = self.menu("GetLayout", "(iias)", 0, -1, ["label", "toggle-state"])[1][2]
        self.assertEqual([row[1].get("toggle-state") for row in rows[:3]], [1, 0, 0])
        second = next(row[0] for row in rows if row[1].get("label") == CAMERAS[1])
        self.send(second, "clicked")
        self.send(0, "closed")
        vistrel.wait_line(SAVING + CAMERAS[1], since)
        self.item("Activate")
        self.screen.live_picture()
        self.assertEqual(self.desktop.readers(self.cameras[1]), 1)
        closings = [line for line in vistrel.lines if line.startswith(CHECKING)]
        self.assertEqual(len(closings), 3)  # two showings, and the check mark that moved
        self.item("ContextMenu")
        vistrel.choose(ABOUT + 1)  # after the third camera
        wait_until(lambda: vistrel.windows(name="About Vistrel"), "the window that was chosen")


if __name__ == "__main__":
    unittest.main()
