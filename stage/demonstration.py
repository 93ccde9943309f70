"""What `./run` shows where there is no display: Vistrel on a private desktop, opened by a real click, and what was
read off the screen."""

import sys

from stage.desktop import ROOT, Desktop
from stage.processes import NeverCame
from stage.program import Program

PICTURE = ROOT / "build" / "demo" / "mirror.png"
FRAMES = 60


def main():
    PICTURE.parent.mkdir(parents=True, exist_ok=True)
    PICTURE.unlink(missing_ok=True)
    with Desktop() as desktop:
        desktop.camera(offers=["mjpeg:1280x720@30"])
        with Program(desktop) as vistrel:
            vistrel.click()
            try:
                seen = desktop.screen.live_picture(FRAMES)
            except NeverCame:
                print("no live picture came on the screen", file=sys.stderr)
                return 1
            finally:
                desktop.screen.save(PICTURE)
    way = "mirrored" if seen["mirrored"] else "not mirrored"
    print(f"{seen['fps']:.1f} frames a second, {way}, {seen['age']:.0f} ms old; {PICTURE.relative_to(ROOT)}")
    return 0 if seen["mirrored"] and seen["upright"] else 1


if __name__ == "__main__":
    sys.exit(main())
