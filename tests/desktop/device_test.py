"""The devices behind PipeWire's cameras: how they are listed, who has them held, and for how long."""

import re
import signal
import unittest

from stage.desktop import Desktop
from stage.processes import wait_until
from stage.program import Program
from tests.desktop.harness import REFRESHED, DesktopTest

CHANGED = "*\tstate: "  # as PipeWire's monitor has it
SUSPENDED = CHANGED + '"suspended"'


class DeviceTest(DesktopTest):
    def test_each_camera_is_listed_once_by_its_own_name_and_in_order(self):
        cameras = (("Session manager's name", ["api.v4l2.path=/dev/video1010", "api.v4l2.cap.card=Tenth"]),
                   ("Second (V4L2)", ["object.path=v4l2:/dev/video902", "api.v4l2.cap.card=Second"]),
                   ("Second again", ["object.path=v4l2:/dev/video902"]),
                   ("Left", ["api.v4l2.path=/dev/video1011", "device.id=7"]),
                   ("Right", ["api.v4l2.path=/dev/video1012", "device.id=7"]),
                   ("Another", ["api.libcamera.location=external"]),
                   ("In the lid", ["api.libcamera.location=front"]))
        for index, (name, properties) in enumerate(cameras):
            options = [word for text in properties for word in ("--property", text)]
            self.desktop.camera(name=name, node=f"camera-{index}", options=options)
        vistrel = self.start()
        listed = next(line for line in vistrel.lines if line.startswith(REFRESHED))
        self.assertEqual(re.findall(r"AVCaptureDevice: (.*?) \[", listed),
                         ["In the lid", "Second", "Tenth", "Left", "Right", "Another"])

    def test_a_renamed_camera_is_listed_by_its_new_name(self):
        camera = self.desktop.camera()
        vistrel = self.start()
        camera.tell("rename Renamed")
        self.open(vistrel)
        wait_until(lambda: any("Renamed" in line for line in vistrel.lines), "the new name")

    def watch(self, camera):
        """What PipeWire says, while its session manager stands still, which lets go of cameras by itself, though late, and
        without which nobody new is told anything."""
        monitor = self.desktop.start(["pw-mon"])
        monitor.wait_line(lambda line: f'"{camera.node}"' in line)
        manager = self.desktop.session_manager
        manager.signal(signal.SIGSTOP)
        self.addCleanup(manager.signal, signal.SIGCONT)
        return monitor

    def test_the_device_is_let_go_after_an_error_and_when_the_program_ends(self):
        for fault in ("error broken", None):
            with self.subTest(fault=fault):
                camera = self.desktop.camera()
                vistrel = self.start()
                self.open(vistrel)
                monitor = self.watch(camera)
                since = len(monitor.lines)
                if fault:
                    camera.tell(fault)
                    vistrel.click()
                    since = monitor.wait_line(CHANGED + '"error"', since)
                else:
                    self.assertEqual(vistrel.terminate(), 0)
                monitor.wait_line(SUSPENDED, since)
                self.doCleanups()

    def test_beside_another_reader_the_mirror_is_live_and_leaves_the_device_to_it(self):
        camera = self.desktop.camera(options=["--memory", "dmabuf"])
        other = Desktop(pipewire=False)
        self.addCleanup(other.close)
        reader = Program(other, {}, {"PIPEWIRE_RUNTIME_DIR": self.desktop.environment["XDG_RUNTIME_DIR"]})
        reader.click()
        other.screen.live_picture()
        vistrel = self.start()
        self.open(vistrel)
        monitor = self.watch(camera)
        vistrel.click()
        self.screen.wait_no_picture()
        other.screen.live_picture(5)
        since = len(monitor.lines)
        reader.process.signal(signal.SIGKILL)
        since = monitor.wait_line(CHANGED + '"idle"', since)
        vistrel.click()
        end = monitor.wait_line(lambda line: '"Vistrel"' in line, since)  # the next stream of one that has heard of it all
        self.assertNotIn(SUSPENDED, monitor.lines[since:end])


if __name__ == "__main__":
    unittest.main()
