"""Vistrel on a private desktop: its icon, its menus, its windows, its lines and its preferences."""

import json
import signal

from stage.bus import WATCHER
from stage.processes import wait_until

IDENTIFIER = "org.vistrel.Vistrel"
ICON_SIZE = 16  # what a tray icon has at least, in pixels
TEXT_HEIGHT = 5  # what a line of text in a menu has at least, in pixels


def centre(place):
    x, y, width, height = place
    return x + width // 2, y + height // 2


def inside(place, outer):
    return (place[0] >= outer[0] and place[1] >= outer[1] and place[0] + place[2] <= outer[0] + outer[2]
            and place[1] + place[3] <= outer[1] + outer[3])


def docks_among(windows):
    return [window["place"] for window in windows if "_NET_WM_WINDOW_TYPE_DOCK" in window["types"]]


class Program:
    """`preferences` are written first; `awaits_icon` false: does not wait for the icon in the tray; `prefix` is
    the start of the command line, such as a program that replaces itself by Vistrel."""

    def __init__(self, desktop, preferences=None, environment=None, awaits_icon=True, prefix=()):
        self.desktop = desktop
        self.screen = desktop.screen
        self.file = desktop.folder / "config" / IDENTIFIER / "preferences.json"
        if preferences is not None:
            self.write_preferences(preferences)
        calls = len(desktop.menu_calls.lines) if desktop.menu_calls else 0
        self.process = desktop.start([*prefix, desktop.programs / "vistrel"], environment)
        if awaits_icon:
            self.icon()
            self.wait_menu_known(calls)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.process.end()

    @property
    def pid(self):
        return self.process.pid

    @property
    def lines(self):
        return self.process.lines

    def wait_line(self, text, since=0):
        return self.process.wait_line(text, since)

    def terminate(self):
        """Asks it to end; gives the exit status."""
        self.process.signal(signal.SIGTERM)
        return self.process.wait()

    def write_preferences(self, values):
        self.file.parent.mkdir(parents=True, exist_ok=True)
        self.file.write_text(values if isinstance(values, str) else json.dumps(values))

    def preferences(self):
        return json.loads(self.file.read_text()) if self.file.exists() else {}

    # The tray

    def icons(self):
        """Where its icons are in the tray."""
        windows = self.screen.windows()
        docks = docks_among(windows)
        embedded = []
        for window in windows:
            place = window["place"]
            is_icon = window["pid"] == self.pid and place[2] >= ICON_SIZE and any(inside(place, dock) for dock in docks)
            if is_icon and place not in embedded:  # while it is being embedded it is there with its window inside
                embedded.append(place)
        return embedded + self._hosted_icons()

    def _hosted_icons(self):
        if not self.desktop.bus or not self.desktop.bus.has_owner(WATCHER):
            return []
        items = self.desktop.bus.property(WATCHER, "/StatusNotifierWatcher", WATCHER, "RegisteredStatusNotifierItems")
        windows = self.screen.windows()
        docks = docks_among(windows)
        mine = [index for index, item in enumerate(items) if self._process_of(item.split("/")[0]) == self.pid]
        trays = [(window["place"], dock) for window in windows if window["class"] == "Wrapper-2.0"
                 for dock in docks if inside(window["place"], dock)]
        if not trays or not items:
            return []
        (x, y, width, height), dock = trays[0]
        is_upright = dock[3] > dock[2]
        step = (height if is_upright else width) // len(items)
        if step < ICON_SIZE:  # not laid out yet
            return []
        if is_upright:
            return [[x, y + step * index, width, step] for index in mine]
        return [[x + step * index, y, step, height] for index in mine]

    def tooltip(self):
        """What the bus says of its icon."""
        name, _, path = self._items()[0].partition("/")
        return self.desktop.bus.property(name, "/" + path, "org.kde.StatusNotifierItem", "ToolTip")[2]

    def call_item(self, method, x, y):
        """What a tray host calls when its icon is pressed at that place."""
        name, _, path = self._items()[0].partition("/")
        self.desktop.bus.call(name, "/" + path, "org.kde.StatusNotifierItem", method, "(ii)", x, y)

    def _items(self):
        items = self.desktop.bus.property(WATCHER, "/StatusNotifierWatcher", WATCHER, "RegisteredStatusNotifierItems")
        return [item for item in items if self._process_of(item.split("/")[0]) == self.pid]

    def wait_menu_known(self, calls):
        """Until the panel has read the icon's menu, a secondary click opens the panel's own."""
        if self._hosted_icons():
            self.desktop.menu_calls.wait_line(lambda line: "member=GetLayout" in line, calls)

    def _process_of(self, name):
        bus = "org.freedesktop.DBus"
        return self.desktop.bus.call(bus, "/org/freedesktop/DBus", bus, "GetConnectionUnixProcessID", "(s)", name)[0]

    def icon(self):
        """Its icon's place; there is never a second one."""
        found = wait_until(self.icons, "the icon in the tray")
        assert len(found) == 1, f"one icon, not {found}"
        return found[0]

    def click(self, button=1):
        self.screen.click(centre(self.icon()), button)

    # Menus

    def open_menu(self):
        """A secondary click, and another one where the panel has not built the icon's menu yet and opened its own."""
        since = len(self.desktop.menu_calls.lines)
        self.click(button=3)
        self.menu()
        is_ours = any("member=AboutToShow" in line for line in self.desktop.menu_calls.lines[since:])
        if self._hosted_icons() and not is_ours:
            self.screen.key("Escape")
            self.wait_no_menu()
            self.click(button=3)

    def menu(self):
        """The place of the open menu, drawn by the tray host or by the program."""
        return wait_until(self._find_menu, "an open menu")

    def _find_menu(self):
        icons = self.icons()
        for window in self.screen.windows(managed=False):
            hosts = window["class"] == "Wrapper-2.0" and "_NET_WM_WINDOW_TYPE_POPUP_MENU" in window["types"]
            if (hosts or window["pid"] == self.pid) and window["place"] not in icons:
                return window["place"]
        return None

    def wait_no_menu(self):
        wait_until(lambda: self._find_menu() is None, "the end of the menu")

    def menu_rows(self, least=1):
        """The places of the open menu's texts, `least` or more, from the top; what is a few pixels high is a separator."""
        def rows():
            x, y, width, height = self.menu()
            pixels = self.screen.ask("pixels", x + 3, y + 3, width - 6, height - 6)["pixels"]
            width, height = width - 6, height - 6
            ground = max(set(pixels), key=pixels.count)
            inked = [any(pixel != ground for pixel in pixels[row * width:(row + 1) * width]) for row in range(height)]
            found, start = [], None
            for row in range(height + 1):
                is_inked = row < height and any(inked[row:row + 2])
                if is_inked and start is None:
                    start = row
                elif not is_inked and start is not None:
                    if row - start >= TEXT_HEIGHT:
                        found.append([x, y + 3 + start, width, row - start])
                    start = None
            return found if len(found) >= least else None
        return wait_until(rows, "the menu's texts")

    def choose(self, index):
        """Clicks the item at `index` of the open menu, separators not counted."""
        self.screen.click(centre(self.menu_rows(index + 1)[index]))

    # Windows

    def windows(self, **facts):
        """Its windows of its own, without the icon."""
        icons = self.icons()
        return [window for window in self.screen.windows(pid=self.pid, **facts) if window["place"] not in icons]
