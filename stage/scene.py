"""A private desktop that looks like one: a wallpaper, a panel and a window, all light or all dark, and somebody before
the camera."""

import contextlib

from stage.desktop import Desktop
from stage.portal import Portal
from stage.processes import wait_until

WALLPAPERS = {"light": "#8fb3c9", "dark": "#22333f"}
PANELS = {"light": "Adwaita", "dark": "Adwaita:dark"}
PALETTES = {"light": "", "dark": "darker"}  # none: the style's own
SCHEMES = {"light": 2, "dark": 1}  # as the portal tells them
WINDOW = "qt6ct"  # any program with a window would do


@contextlib.contextmanager
def scene(look):
    """`look` is "light" or "dark"."""
    with Desktop(host=None) as desktop:
        desktop.environment["GTK_THEME"] = PANELS[look]
        desktop.start_host()
        portal = Portal(desktop, SCHEMES[look])
        desktop.run("xsetroot", "-solid", WALLPAPERS[look])
        _open_window(desktop, look)
        desktop.camera(name="Camera", offers=["mjpeg:1280x720@30"], options=["--person"])
        yield desktop
        portal.close()


def _open_window(desktop, look):
    file = desktop.folder / "config" / WINDOW / f"{WINDOW}.conf"
    file.parent.mkdir()
    file.write_text(f"[Appearance]\ncustom_palette={'true' if PALETTES[look] else 'false'}\nstyle=Fusion\n"
                    f"color_scheme_path=/usr/share/qt6ct/colors/{PALETTES[look]}.conf\n")
    desktop.start([WINDOW], {"QT_QPA_PLATFORMTHEME": WINDOW})
    window = wait_until(lambda: desktop.screen.windows(name="Qt6 Configuration Tool"), "the window")[0]
    desktop.run("xdotool", "windowmove", window["id"], 60, 100)
