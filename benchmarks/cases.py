"""What is measured: cameras with one offer each, and the three sizes of the mirror's glass."""

import dataclasses

FRAMES = 30  # that every test camera sends a second
GLASSES = ((426, 240), (852, 480), (1278, 720))
SIZES = ((640, 480), (1280, 720), (1920, 1080), (3840, 2160))


@dataclasses.dataclass(frozen=True)
class Camera:
    format: str  # as the test camera calls it
    size: tuple
    is_rich: bool = False  # detail everywhere: 1 to 2 MB a frame in MJPEG of 4K
    is_continuous: bool = False  # MJPEG without restart markers, as most cameras send it

    @property
    def label(self):
        name = "MJPEG" if self.format == "mjpeg" else "raw"
        manner = (" rich" if self.is_rich else "") + (" continuous" if self.is_continuous else "")
        return f"{name} {self.size[0]}×{self.size[1]}{manner}"

    @property
    def options(self):
        """For the private desktop's `camera`."""
        return {"offers": [f"{self.format}:{self.size[0]}x{self.size[1]}@30"],
                "options": (["--rich", "--quality", "70"] if self.is_rich else []) +
                           (["--continuous"] if self.is_continuous else [])}


@dataclasses.dataclass(frozen=True)
class Case:
    camera: Camera
    glass: tuple

    @property
    def label(self):
        return f"{self.camera.label} at {self.glass[0]}×{self.glass[1]}"

    @property
    def picture(self):
        """The size of the whole picture inside the glass."""
        (width, height), (from_width, from_height) = self.glass, self.camera.size
        return min(width, round(from_width * height / from_height)), height


SMALL, _, LARGE = GLASSES
RAW_720, MJPEG_720 = Camera("yuy2", (1280, 720)), Camera("mjpeg", (1280, 720))
RAW_4K = Camera("yuy2", (3840, 2160))
PLAIN_4K, RICH_4K = Camera("mjpeg", (3840, 2160)), Camera("mjpeg", (3840, 2160), is_rich=True)
PLAIN_4K_CONTINUOUS, RICH_4K_CONTINUOUS = (dataclasses.replace(camera, is_continuous=True) for camera in
                                           (PLAIN_4K, RICH_4K))

EVERY_CAMERA = [Camera(name, size) for name in ("yuy2", "mjpeg") for size in SIZES] + [RICH_4K]
EVERY_CASE = [Case(camera, glass) for camera in EVERY_CAMERA for glass in GLASSES] + [
    Case(PLAIN_4K_CONTINUOUS, SMALL), Case(RICH_4K_CONTINUOUS, SMALL)]
QUICK_CASES = [Case(RAW_720, SMALL), Case(RAW_720, LARGE), Case(RAW_4K, SMALL)] + [
    Case(camera, SMALL) for camera in (PLAIN_4K, RICH_4K, PLAIN_4K_CONTINUOUS, RICH_4K_CONTINUOUS)]
