"""What the tests in the guest machine share: one desktop, with PipeWire or without it, one Vistrel on it for each class,
since starting takes long in an emulated machine, and the kernel's own cameras."""

import os
import pathlib
import re
import signal
import time
import unittest
import unittest.mock

from stage.desktop import Desktop
from stage.guest.usb_camera import UsbCamera
from stage.processes import wait_until
from stage.program import Program
from tests.desktop.harness import REFRESHED, DesktopTest

STRIPE = 8  # lines of the mirror that are looked at


def holders(path):
    """The processes that have the device node open."""
    found = set()
    for link in pathlib.Path("/proc").glob("[0-9]*/fd/*"):
        try:
            if os.readlink(link) == path:
                found.add(int(link.parts[2]))
        except OSError:
            continue
    return found


class GuestTest(DesktopTest):
    """`through`: the cameras are reached through PipeWire, else by V4L2, without it."""

    through = True
    shared = None

    @classmethod
    def setUpClass(cls):
        if GuestTest.shared is None:
            GuestTest.shared = Desktop(pipewire=False)
            unittest.addModuleCleanup(GuestTest.end_shared)
        cls.desktop = GuestTest.shared
        cls.screen = cls.desktop.screen
        with unittest.mock.patch.dict(cls.desktop.environment, cls.environment()):
            if cls.through:
                cls.desktop.start_pipewire()
                cls.addClassCleanup(cls.desktop.stop_pipewire)
            cls.vistrel = Program(cls.desktop, {})
        cls.addClassCleanup(cls.end_vistrel)

    @classmethod
    def environment(cls):
        """What the daemon and Vistrel get besides."""
        return {}

    @classmethod
    def end_vistrel(cls):
        cls.vistrel.process.end()
        assert (cls.vistrel.process.status, cls.vistrel.process.errors) == (0, []), cls.vistrel.process.errors

    @staticmethod
    def end_shared():
        GuestTest.shared.close()
        GuestTest.shared = None

    def setUp(self):
        self.since = len(self.vistrel.lines)
        self.addCleanup(self.dismiss)
        self.addCleanup(self._tell_failure, self.vistrel)

    def wait_said(self, text):
        """The index of the first line of this test, and not heard of yet, that begins so."""
        index = self.vistrel.wait_line(text, self.since)
        self.since = index + 1
        return index

    def said(self, text):
        return [line for line in self.vistrel.lines[self.since:] if line.startswith(text)]

    def plug(self, **options):
        camera = UsbCamera(self.desktop, **options)
        self.addCleanup(camera.close)
        self.wait_known(camera.path)
        return camera

    def known(self, path):
        """The camera's node, as PipeWire has it."""
        for node in self.desktop.graph("Node"):
            properties = node["info"]["props"]
            if properties.get("media.class") == "Video/Source" and properties.get("api.v4l2.path") == path:
                return node
        return None

    def wait_known(self, path, is_known=True):
        if self.through:
            wait_until(lambda: bool(self.known(path)) == is_known, f"PipeWire's node of {path}: {is_known}")

    def listed(self):
        """The device nodes of the cameras that Vistrel listed last, in its order."""
        line = [line for line in self.vistrel.lines if line.startswith(REFRESHED)][-1]
        paths = {}
        if "[pipewire:" in line:
            for node in self.desktop.graph("Node"):
                properties = node["info"]["props"]
                paths[f"pipewire:{properties['object.serial']}"] = properties.get("api.v4l2.path")
        found = re.findall(r"\[((?:v4l2|pipewire):[^\]]*)\]", line)
        return [paths.get(name) or name.removeprefix("v4l2:").split("#")[0] for name in found]

    def look(self):
        """Opens the mirror by a click and gives what is seen of it."""
        return self.open(self.vistrel)

    def stripe(self):
        """The pixels of a stripe across the middle of the mirror."""
        window = next(iter(self.vistrel.windows()), None)
        if not window:
            return None
        x, y, width, height = window["place"]
        return self.screen.ask("pixels", x + 8, y + height // 2, width - 16, STRIPE)["pixels"]

    def wait_some_picture(self):
        """What is the mirror's own is of one color."""
        wait_until(lambda: len(set(self.stripe() or ())) > 2, "a picture")

    def wait_free(self, camera):
        wait_until(lambda: not holders(camera.path), f"the end of every use of {camera.path}")

    def close_mirror(self, camera):
        """The session manager, which lets go of idle cameras late, stands still: only Vistrel can have freed it. The time
        is for whoever reads the log, as all times of an emulated machine are."""
        manager = self.desktop.session_manager if self.through else None
        if manager:
            manager.signal(signal.SIGSTOP)
        try:
            start = time.monotonic()
            self.dismiss()
            self.wait_free(camera)
            print(f"free {time.monotonic() - start:.2f} s after the click", flush=True)
        finally:
            if manager:
                manager.signal(signal.SIGCONT)

    def wait_empty(self):
        wait_until(self.vistrel.windows, "the window without a picture")
        self.assertIsNone(self.screen.ask("find")["place"])

    def dismiss(self):
        if self.vistrel.windows():
            self.vistrel.click()
            wait_until(lambda: not self.vistrel.windows(), "the end of the window")

    def choose(self, index):
        """Another camera, or the same again, from the mirror's own menu."""
        self.screen.key("space")
        self.vistrel.menu()
        for _ in range(index):  # the first one is marked already
            self.screen.key("Down")
        self.screen.key("Return")
        self.vistrel.wait_no_menu()
