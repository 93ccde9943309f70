"""What the desktop tests share: one private desktop for a class of tests, and Vistrel on it."""

import pathlib
import re
import unittest

from stage.desktop import ROOT, Desktop
from stage.processes import wait_until
from stage.program import Program

REFRESHED = "📷 Refreshed Devices — available cameras: "
CHECKING = "Just checking…\u00a0these are the refreshed devices: "
SAVING = "⚠️ Saving default camera: "
STARTED = "📹✅ Capture Session Started"
STOPPED = "📹🛑 Capture Session Stopped"
FAILED = "📹💥 Capture Session Runtime Error: "
SIZES = ((426, 240), (852, 480), (1278, 720))


GROWTH = {"descriptors": 0, "threads": 0, "memory": 2048}  # KiB: what the allocator may do by itself


# What newer Qts and their themes write of their own accord.
OTHERS = ("qt.qpa.theme.dbus: ", " Check your DBus installation.", "QFont::fromString: Invalid description",
          "virtual const QPalette* Qt6CTPlatformTheme::")


class DesktopTest(unittest.TestCase):
    make_desktop = Desktop
    stage = {}  # the options of the class's desktop

    @classmethod
    def setUpClass(cls):
        cls.desktop = cls.make_desktop(**cls.stage)
        cls.addClassCleanup(cls.desktop.close)
        cls.screen = cls.desktop.screen

    def setUp(self):
        self.addCleanup(self.desktop.unplug_all)

    def start(self, preferences=None, complaints=0, **options):
        """Vistrel with these preferences and no others; it is to end in an orderly way, and to say that many lines
        on standard error."""
        vistrel = Program(self.desktop, {} if preferences is None else preferences, **options)
        self.addCleanup(self._end, vistrel, complaints)
        self.addCleanup(self._tell_failure, vistrel)
        return vistrel

    def _end(self, vistrel, complaints):
        vistrel.process.end()
        errors = [line for line in vistrel.process.errors if not line.startswith(OTHERS)]
        self.assertEqual((vistrel.process.status, len(errors)), (0, complaints), "\n".join(errors))

    def start_again(self):
        """A second start, which hands over to the one that runs."""
        second = Program(self.desktop, awaits_icon=False)
        self.assertEqual((second.process.wait(), second.process.errors, second.lines), (0, [], []))

    def _tell_failure(self, vistrel):
        result = self._outcome.result
        if any(self in (test, getattr(test, "test_case", None)) for test, _ in result.failures + result.errors):
            picture = ROOT / "build" / "desktop" / f"{self.id()}.png"
            self.screen.save(picture)
            print("\n".join(["--- standard output", *vistrel.lines, "--- standard error", *vistrel.process.errors,
                             f"--- status {vistrel.process.status}, screen in {picture}"]), flush=True)

    def open(self, vistrel):
        """Opens the mirror by a click and gives what is seen of it."""
        vistrel.click()
        return self.screen.live_picture()

    def assert_flat(self, before, after):
        """That nothing of what was in use has grown."""
        for kind, most in GROWTH.items():
            self.assertLessEqual(after[kind] - before[kind], most, (kind, before, after))

    def stored(self, vistrel, key, value):
        """Waits for the preference, which is written on a thread."""
        wait_until(lambda: vistrel.preferences().get(key) == value, f"{key}: {value}")

    def wait_closed(self, camera):
        """The mirror is off the screen and the camera free."""
        self.screen.wait_no_picture()
        wait_until(lambda: self.desktop.readers(camera) == 0, "the end of the stream")


def in_use(pid):
    """What a process has: open descriptors, threads, and memory of its own in KiB."""
    folder = pathlib.Path("/proc") / str(pid)
    status = dict(line.split(":", 1) for line in (folder / "status").read_text().splitlines())
    return {"descriptors": len(list((folder / "fd").iterdir())), "threads": int(status["Threads"]),
            "memory": int(status["RssAnon"].split()[0])}


def plain(lines):
    """Lines without the descriptions of the cameras, which are the program's own affair."""
    return [re.sub(r"(: )\[.*\]$", r"\1[…]", line) for line in lines]
