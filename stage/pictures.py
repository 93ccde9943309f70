"""Makes the pictures of README, documents and metadata again (docs/images)."""

from stage.desktop import ROOT
from stage.processes import wait_until
from stage.program import Program, centre
from stage.scene import scene

FOLDER = ROOT / "docs" / "images"
MIRROR = (640, 0, 640, 400)  # the upper right corner
WINDOWS = {"preferences": ("Preferences", -2), "about": ("About Vistrel", -3)}  # rows of the menu, from its end
TITLE_BAR = 20  # of the window manager
FRAME = 1


def main():
    for look in ("light", "dark"):
        with scene(look) as desktop, Program(desktop) as vistrel:
            save_mirror(desktop, vistrel, look)
            for name, (title, row) in WINDOWS.items():
                save_window(desktop, vistrel, FOLDER / f"{name}-{look}.png", title, row)


def save_mirror(desktop, vistrel, look):
    vistrel.click()
    desktop.screen.live_picture()
    desktop.screen.save(FOLDER / f"mirror-{look}.png", MIRROR)
    vistrel.click()
    desktop.screen.wait_no_picture()


def save_window(desktop, vistrel, file, title, row):
    vistrel.open_menu()
    desktop.screen.click(centre(vistrel.menu_rows()[row]))
    vistrel.wait_no_menu()
    window = wait_until(lambda: vistrel.windows(name=title), title)[0]
    wait_until(lambda: desktop.screen.focus()["id"] == window["id"], f"the focus on {title}")
    x, y, width, height = vistrel.windows(name=title)[0]["place"]
    desktop.screen.save(file, (x - FRAME, y - TITLE_BAR, width + 2 * FRAME, height + TITLE_BAR + FRAME))


if __name__ == "__main__":
    main()
