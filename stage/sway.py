"""A private Wayland desktop: sway without a screen, its bar with a tray, and its server for programs of X11."""

import json
import os
import subprocess

from stage.bus import WATCHER
from stage.desktop import Desktop
from stage.processes import PATIENCE, NeverCame, wait_until
from stage.screen import Screen
from stage.seat import Seat

# sway refuses to run as root; in a user namespace of its own it is somebody else, with root's files.
AS_SOMEBODY = ["unshare", "--user", "--map-user=1000", "--map-group=1000"]
HEADLESS = {"WLR_BACKENDS": "headless", "WLR_LIBINPUT_NO_DEVICES": "1", "WLR_RENDERER": "pixman"}
BAR = 60  # how much of the end of the bar may be icons, in points
BAR_HEIGHT = 16  # at least
CONFIGURATION = """focus_follows_mouse no
output HEADLESS-1 resolution {size}
bar {{
    position bottom
    tray_output *
}}
exec "echo $WAYLAND_DISPLAY $SWAYSOCK $DISPLAY > {told}.new && mv {told}.new {told}"
"""


def refusal():
    """Why sway cannot run here; empty when it can."""
    if os.getuid() != 0:
        return ""
    result = subprocess.run([*AS_SOMEBODY, "true"], capture_output=True, text=True)
    return "" if result.returncode == 0 else f"sway runs for no root, and {result.stderr.strip()}"


class SwayScreen:
    """What is to be seen of the desktop, and its pointer and keyboard."""

    def __init__(self, desktop, seat):
        self._desktop = desktop
        self._x11 = Screen(desktop)
        self._picture = desktop.folder / "screen.png"
        self.click, self.move, self.button, self.key = seat.click, seat.move, seat.button, seat.key

    def windows(self, **facts):
        """The windows of which all the facts hold: `pid=1`."""
        found = []

        def take(node):
            if node.get("pid"):
                rectangle = node["rect"]
                found.append({"pid": node["pid"], "focused": node["focused"], "x11": node.get("window") is not None,
                              "place": [rectangle[key] for key in ("x", "y", "width", "height")]})
            for inner in node.get("nodes", []) + node.get("floating_nodes", []):
                take(inner)

        take(json.loads(self._desktop.run("swaymsg", "-t", "get_tree", "-r")))
        return [window for window in found if all(window[key] == value for key, value in facts.items())]

    def save(self, path):
        path.parent.mkdir(parents=True, exist_ok=True)
        self._desktop.run("grim", path)

    def picture(self):
        """The test picture, wherever it is: its place, its counter, its way round; none when it is not there."""
        self.save(self._picture)
        return self._x11.ask("recognize", self._picture)["picture"]

    def live_picture(self, frames=3):
        """The test picture, once `frames` different ones were seen at one place."""
        seen = {}

        def look():
            picture = self.picture()
            if not picture:
                return None
            at_place = seen.setdefault(str(picture["place"]), set())
            at_place.add(picture["counter"])
            return picture if len(at_place) >= frames else None

        return wait_until(look, "a live picture on the screen", 3 * PATIENCE)

    def wait_no_picture(self):
        wait_until(lambda: self.picture() is None, "the end of the picture")

    def x11_pointer(self):
        """Where it is as programs of X11 see it."""
        return self._x11.ask("pointer")["place"]

    def x11_windows(self, **facts):
        """As programs of X11 see each other."""
        return self._x11.windows(**facts)

    def colors(self, x, y, width, height):
        """The colors of that part of the screen, row by row."""
        shot = subprocess.run(["grim", "-t", "ppm", "-g", f"{x},{y} {width}x{height}", "-"],
                              env=self._desktop.environment, check=True, capture_output=True).stdout
        pixels = shot[-3 * width * height:]
        return [pixels[index:index + 3] for index in range(0, len(pixels), 3)]


class SwayDesktop(Desktop):
    """`size` as in "1280x800"."""

    def __init__(self, size="1280x800"):
        if refusal():
            raise NeverCame(refusal())
        self._size = tuple(int(number) for number in size.split("x"))
        self._seat = None
        super().__init__(size=size, manager="sway", host=None)

    def _start_display(self, _size, _monitors):
        """sway brings it, and its bar needs the bus first."""

    def _start_manager(self, _manager):
        told, configuration = self.folder / "told", self.folder / "sway.conf"
        configuration.write_text(CONFIGURATION.format(size="{}x{}".format(*self._size), told=told))
        self.environment["XDG_CURRENT_DESKTOP"] = "sway"
        prefix = AS_SOMEBODY if os.getuid() == 0 else []
        self.manager = self.start([*prefix, "sway", "-c", configuration], HEADLESS)
        wait_until(lambda: told.exists() or self.manager.status is not None, "sway")
        if not told.exists():
            raise NeverCame("\n".join(["sway never ran:", *self.manager.errors[-15:]]))
        names = told.read_text().split()
        self.environment |= dict(zip(("WAYLAND_DISPLAY", "SWAYSOCK", "DISPLAY"), names))
        self._seat = Seat(str(self.folder / "run" / names[0]), self._size)
        self.screen = SwayScreen(self, self._seat)
        wait_until(lambda: self.bus.has_owner(WATCHER), "the bar's tray")

    def icon(self):
        """The place of the one icon in the bar, once it is drawn."""
        width, height = self._size
        left, top = width - BAR, height - BAR_HEIGHT
        self.screen.move((0, 0))  # the pointer is a part of what is seen

        def find():
            colors = self.screen.colors(left, top, BAR, BAR_HEIGHT)
            columns = [index % BAR for index, color in enumerate(colors) if color != colors[0]]
            return [left + min(columns), top, max(columns) - min(columns) + 1, BAR_HEIGHT] if columns else None

        return wait_until(find, "the icon in the bar")

    def close(self):
        if self._seat:
            self._seat.close()
        super().close()
