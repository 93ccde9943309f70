"""What `./run` shows where there is no display: Vistrel on a private desktop, light and dark, opened by a real click,
and what was read off the screen."""

import sys

from stage.desktop import ROOT
from stage.processes import NeverCame
from stage.program import Program
from stage.scene import scene

FOLDER = ROOT / "build" / "demo"
FRAMES = 60


def main():
    return 0 if all([show(look) for look in ("light", "dark")]) else 1


def show(look):
    picture = FOLDER / f"mirror-{look}.png"
    picture.unlink(missing_ok=True)
    with scene(look) as desktop, Program(desktop) as vistrel:
        vistrel.click()
        try:
            seen = desktop.screen.live_picture(FRAMES)
        except NeverCame:
            print("no live picture came on the screen", file=sys.stderr)
            return False
        finally:
            desktop.screen.save(picture)
    way = "mirrored" if seen["mirrored"] else "not mirrored"
    print(f"{seen['fps']:.1f} frames a second, {way}, {seen['age']:.0f} ms old; {picture.relative_to(ROOT)}")
    return seen["mirrored"] and seen["upright"]


if __name__ == "__main__":
    sys.exit(main())
