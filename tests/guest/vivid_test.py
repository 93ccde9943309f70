"""The kernel's virtual video driver: pixel formats, sizes and errors that no USB camera here has."""

import pathlib
import subprocess
import tempfile
import unittest

from stage.processes import NeverCame, wait_until
from tests.guest.harness import GuestTest

WEBCAM = "input_types=0x0"  # sizes from a list
CAPTURE_CARD = "input_types=0x3"  # HDMI, any size
BARS = ((1, 1, 1), (1, 1, 0), (0, 1, 1), (0, 1, 0), (1, 0, 1), (1, 0, 0), (0, 0, 1), (0, 0, 0))
LIGHT, DARK = 150, 60  # three quarters of full are 191
FAULT = "The camera "  # with what has happened to it
ERRORS_OF_A_STREAM = ("v4l2_buf_flag", "vidioc_qbuf", "fatal_streaming")
LISTED_SIZE, ODD_SIZE = "640x360", "642x362"
# The driver rounds a quarter of a planar picture's line down for each chroma component as it adds up its bytes.
WHOLE_PADDING, SHORT_PADDING = 66, 64


def kind(pixel):
    """Which of red, green and blue is light; None where one is neither light nor dark."""
    channels = [pixel >> shift & 0xFF for shift in (16, 8, 0)]
    return tuple(int(value > LIGHT) for value in channels) if all(v > LIGHT or v < DARK for v in channels) else None


class Cases:
    narrow = pathlib.Path(tempfile.gettempdir()) / "vistrel-narrow"

    @classmethod
    def environment(cls):
        return {"VISTREL_NARROW": str(cls.narrow),
                "LD_PRELOAD": str(cls.desktop.programs / "stage" / "vistrel-narrow.so")}

    def load(self, *options, format=None, size=LISTED_SIZE, padding=0):
        """The driver with one device, seen through that format and size only where one is given, each line by `padding`
        longer."""
        self.narrow.unlink(missing_ok=True)
        if format:
            self.narrow.write_text(f"{format} {size} {padding}\n")
        self.addCleanup(self.unload)
        self.desktop.run("modprobe", "vivid", "n_devs=1", "node_types=0x1", "num_inputs=1", *options)
        self.path = wait_until(lambda: next(iter(map(str, pathlib.Path("/dev").glob("video*"))), None), "vivid's node")
        self.desktop.run("udevadm", "settle")
        self.control("osd_text_mode=2")

    def unload(self):
        self.dismiss()
        wait_until(lambda: subprocess.run(["modprobe", "-r", "vivid"], capture_output=True).returncode == 0,
                   "the end of vivid")

    def control(self, text):
        self.desktop.run("v4l2-ctl", "-d", self.path, "-c", text)

    def bars(self):
        """The kinds of the bars from the left, where both a high and a low line of the picture show the same."""
        window = next(iter(self.vistrel.windows()), None)
        if not window:
            return None
        x, y, width, height = window["place"]
        rows = []
        for line in (y + height // 4, y + height * 3 // 4):
            kinds = [kind(pixel) for pixel in self.screen.ask("pixels", x, line, width, 1)["pixels"]]
            steady = [value for value, after in zip(kinds, kinds[3:]) if value is not None and value == after]
            rows.append([value for i, value in enumerate(steady) if i == 0 or value != steady[i - 1]])
        return rows[0] if rows[0] == rows[1] else rows

    def wait_bars(self):
        try:
            wait_until(lambda: self.bars() == list(reversed(BARS)), "the mirrored bars")
        except NeverCame as failure:
            raise NeverCame(f"{failure}: {self.bars()}") from None

    def show(self, *options, is_wanted=True, **narrow):
        with self.subTest(options=options, **narrow):
            try:
                self.load(*options, **narrow)
                if is_wanted:
                    self.wait_known(self.path)
                self.vistrel.click()
                wait_until(self.vistrel.windows, "the window")
                if is_wanted or self.listed():
                    self.wait_bars()
            finally:
                self.doCleanups()

    def test_each_format_is_right_or_not_offered(self):
        for format in self.shown:
            self.show(WEBCAM, format=format)
        for format in self.others:
            self.show(WEBCAM, format=format, is_wanted=False)

    def test_odd_widths_and_longer_lines_are_not_sheared(self):
        for format in self.odd:
            self.show(CAPTURE_CARD, format=format, size=ODD_SIZE, padding=WHOLE_PADDING)

    def test_a_picture_that_is_told_too_short_is_said(self):
        self.load(CAPTURE_CARD, format="YU12", size=ODD_SIZE, padding=SHORT_PADDING)
        self.wait_known(self.path)
        self.vistrel.click()
        self.wait_fault()
        self.assertNotEqual(self.bars(), list(reversed(BARS)))

    def test_planes_in_memories_of_their_own_are_right_or_not_offered(self):
        self.show(WEBCAM, "multiplanar=2", format="NM12", is_wanted=False)

    def test_any_size_and_every_format_at_once(self):
        self.show(CAPTURE_CARD)

    def test_errors_are_a_camera_s_fault_and_the_next_opening_is_right(self):
        self.load(WEBCAM, format="YUYV")
        self.wait_known(self.path)
        for error in self.refusals:
            with self.subTest(error=error):
                self.inject(error)
                self.vistrel.click()
                self.wait_fault()
                self.wait_next_opening()
        for error in ERRORS_OF_A_STREAM:
            with self.subTest(error=error):
                self.vistrel.click()
                self.wait_bars()
                self.inject(error)
                if error not in self.outlived:
                    self.wait_fault()
                self.wait_next_opening()
                self.assertEqual(any(FAULT in line for line in self.vistrel.lines[self.since:]),
                                 error not in self.outlived)

    def inject(self, error):
        self.since = len(self.vistrel.lines)
        self.control(f"inject_{error}_error=1")

    def wait_fault(self):
        wait_until(lambda: any(FAULT in line for line in self.vistrel.lines[self.since:]), "the camera's fault")

    def wait_next_opening(self):
        self.dismiss()
        self.vistrel.click()
        self.wait_bars()
        self.dismiss()


class ThroughPipeWireTest(Cases, GuestTest):
    through = True
    # Without vidioc_reqbufs: after it no reader at all gets a picture behind PipeWire 0.3.65, which keeps the device.
    refusals = ("vidioc_streamon",)
    outlived = ("v4l2_buf_flag", "vidioc_qbuf")  # a damaged picture; a memory less in PipeWire's hands
    shown, others, odd = ("YUYV", "NV12"), (), ("YU12",)


class ByV4l2Test(Cases, GuestTest):
    through = False
    refusals = ("vidioc_streamon", "vidioc_reqbufs")
    outlived = ("v4l2_buf_flag",)  # a damaged picture
    shown = ("YUYV", "UYVY", "NV12", "YU12", "YV12", "RGB3", "BGR3")
    others = ("YVYU", "NV21", "XR24", "GREY")
    odd = ("YUYV", "NV12", "YU12", "RGB3")


if __name__ == "__main__":
    unittest.main()
