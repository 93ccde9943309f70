"""The programs that are measured, each on a private desktop with one camera, which every one of them takes by
itself."""

import shutil
import time

from benchmarks.cases import GLASSES
from stage.processes import NeverCame
from stage.program import Program, centre


class Vistrel:
    """Runs all the time; a real click on its icon opens and closes the mirror."""

    name = "Vistrel"

    def __init__(self, desktop, case):
        self._screen = desktop.screen
        start = time.monotonic()
        self.program = Program(desktop, {"selectedPopoverSize": GLASSES.index(case.glass)})
        self.seconds_to_icon = time.monotonic() - start
        self._icon = centre(self.program.icon())

    @property
    def pid(self):
        return self.program.pid

    @property
    def status(self):
        """None while it runs."""
        return self.program.process.status

    @staticmethod
    def missing():
        return None

    def show(self):
        self._screen.click(self._icon)

    def hide(self):
        self._screen.click(self._icon)

    def close(self):
        self.program.process.end()

    def complaint(self):
        """What it said last."""
        return self.program.process.errors[-3:] or self.program.lines[-3:]


class Peer:
    """A program that shows the camera from its start to its end."""

    def __init__(self, desktop, case):
        self._desktop = desktop
        self._arguments = self.arguments(case)
        self._process = None

    @property
    def pid(self):
        return self._process.pid

    @property
    def status(self):
        return self._process.status

    @classmethod
    def missing(cls):
        """Why it cannot be measured on this machine; None: it can."""
        absent = [program for program in cls.programs if not shutil.which(program)]
        return f"{', '.join(absent)} not installed" if absent else None

    def show(self):
        self._process = self._desktop.start(self._arguments)

    def hide(self):
        if self._process:
            self._process.end()

    close = hide

    def complaint(self):
        return self._process.errors[-3:] or self._process.lines[-3:] if self._process else []


class GStreamer(Peer):
    """In its best order: scaled first, mirrored last."""

    name = "GStreamer"
    programs = ["gst-launch-1.0"]

    @staticmethod
    def arguments(case):
        width, height = case.picture
        decoder = ["jpegdec", "!"] if case.camera.format == "mjpeg" else []
        return ["gst-launch-1.0", "-q", "pipewiresrc", "target-object=testcam", "!", *decoder, "videoscale", "!",
                f"video/x-raw,width={width},height={height}", "!", "videoconvert", "!", "videoflip",
                "video-direction=horiz", "!", "ximagesink", "sync=false"]


class Ffplay(Peer):
    """Reads V4L2 only: a wrapper of PipeWire's shows it the camera as a device."""

    name = "ffplay"
    programs = ["ffplay", "pw-v4l2"]

    @staticmethod
    def arguments(case):
        (width, height), size = case.picture, case.camera.size
        return ["pw-v4l2", "ffplay", "-loglevel", "error", "-fflags", "nobuffer", "-flags", "low_delay", "-framedrop",
                "-f", "v4l2", "-video_size", f"{size[0]}x{size[1]}", "-vf", "hflip", "-x", width, "-y", height,
                "/dev/video0"]


class Cheese(Peer):
    """Chooses the size of its window by itself, and does not mirror."""

    name = "Cheese"
    programs = ["cheese"]

    @staticmethod
    def arguments(_case):
        return ["cheese"]


VIEWERS = (Vistrel, GStreamer, Ffplay, Cheese)


def appear(desktop, viewer, patience=12):
    """Shows the viewer and gives the place of its picture once that is live."""
    viewer.show()
    deadline = time.monotonic() + patience
    while time.monotonic() < deadline and viewer.status is None:
        seen = desktop.screen.picture(3, 2000)
        if seen:
            return seen["place"]
    end = "" if viewer.status is None else f"it ended with status {viewer.status}"
    raise NeverCame("; ".join(["no live picture", end, *viewer.complaint()]))


def disappear(camera, viewer):
    """Hides the viewer and gives the seconds until the camera is closed."""
    since = len(camera.lines)
    start = time.monotonic()
    viewer.hide()
    camera.wait_line("STATE paused", since)
    return time.monotonic() - start
