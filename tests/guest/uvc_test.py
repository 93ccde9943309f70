"""USB cameras on the kernel's uvcvideo, each case through PipeWire and without it."""

import os
import pathlib
import re
import sys
import time
import unittest

from stage.guest.usb_camera import UsbCamera
from stage.processes import PATIENCE, wait_until
from tests.desktop.harness import FAILED, SAVING, STARTED, in_use
from tests.guest.harness import GuestTest, holders

NAME = "Usb Camera: Usb Camera"  # as the kernel calls it: the device and its video function
WARM_UP, OPENINGS = 5, 50
FORMATS = ("mjpeg:1280x720@30", "yuy2:320x240@30")
PLAIN_FRAMES = 90
BUSY = "in use by another program"
DENIED = "denied"
SILENT = FAILED + "The camera sends no pictures."
UNUSABLE = FAILED + "The camera sends pictures that cannot be shown."


class Cases:
    def test_each_format_is_live_and_the_node_is_free_after_closing(self):
        for offer in FORMATS:
            with self.subTest(offer=offer):
                camera = self.plug(offers=[offer])
                plain_first, _ = self.read_plainly(camera, 1)
                _, plain_rates = self.read_plainly(camera, PLAIN_FRAMES)
                start = time.monotonic()
                self.vistrel.click()
                self.wait_some_picture()
                first = time.monotonic() - start
                seen = self.screen.live_picture()
                self.assertTrue(seen["mirrored"] and seen["upright"])
                self.screen.save(pathlib.Path("build/desktop") / f"{self.id()}.{offer[:4]}.png")
                rate = self.screen.live_picture(20)["fps"]
                print(f"{offer}: first picture after {first:.2f} s, {rate:.1f} a second; "
                      f"a plain reader: {plain_first:.2f} s, {' '.join(plain_rates)} a second", flush=True)
                self.close_mirror(camera)
                camera.close()

    def read_plainly(self, camera, frames):
        """The seconds that a program takes for so many frames that does nothing with them, and what it has each second.
        Like the mirror's own they are for whoever reads the log; an emulated machine's figures prove nothing."""
        start = time.monotonic()
        reader = self.desktop.start(["v4l2-ctl", "-d", camera.path, "--stream-mmap", f"--stream-count={frames}"])
        reader.wait()
        return time.monotonic() - start, re.findall(r"([\d.]+) fps", " ".join(reader.lines + reader.errors))

    def test_unplugged_and_plugged_in_again_under_another_number(self):
        camera = self.plug()
        self.look()
        self.choose(0)
        self.wait_said(SAVING + NAME)
        self.screen.live_picture()
        camera.unplug()
        self.wait_said(FAILED)
        self.screen.wait_no_picture()
        self.dismiss()
        other = self.plug(name="Another", port=1)
        first = camera.path
        camera.plug()
        self.wait_known(camera.path)
        self.assertNotEqual(camera.path, first)
        self.look()
        self.assertTrue(holders(camera.path))
        self.assertFalse(holders(other.path))
        self.close_mirror(camera)
        camera.unplug()
        self.wait_known(camera.path, False)
        self.look()
        self.assertTrue(holders(other.path))

    def test_a_fault_in_between_is_outlived(self):
        for offer, faults in zip(FORMATS, (("truncate", "garbage", "error"), ("truncate", "error"))):
            camera = self.plug(offers=[offer])
            self.look()
            for fault in faults:
                with self.subTest(offer=offer, fault=fault):
                    camera.spoil(fault)
                    camera.tell("resume")
                    self.screen.live_picture(5)
            self.dismiss()
            camera.close()
        self.assertEqual(self.said(FAILED), [])

    def test_frames_without_an_end_marker_are_shown_from_the_first_one(self):
        self.plug().tell("noend")
        self.look()

    def test_a_camera_without_a_good_frame_is_said(self):
        camera = self.plug()
        for fault, line in (("freeze", SILENT), ("garbage", UNUSABLE)):
            with self.subTest(fault=fault):
                camera.tell(fault)
                self.vistrel.click()
                self.wait_said(line)
                self.dismiss()
                camera.tell("resume")
                self.look()
                self.dismiss()

    def test_a_frozen_camera_is_said(self):
        for offer in FORMATS:
            with self.subTest(offer=offer):
                camera = self.plug(offers=[offer])
                self.look()
                camera.tell("freeze")
                self.wait_said(SILENT)
                self.screen.wait_no_picture()
                self.dismiss()
                camera.tell("resume")
                self.look()
                self.dismiss()
                camera.close()

    def test_a_busy_camera_is_said_at_opening(self):
        camera = self.plug()
        reader = self.desktop.start(["v4l2-ctl", "-d", camera.path, "--stream-mmap"])
        wait_until(lambda: reader.errors or reader.lines, "the other program's frames")
        self.vistrel.click()
        self.assertIn(BUSY, self.vistrel.lines[self.wait_said(STARTED) - 1])
        self.wait_empty()
        reader.end()
        self.dismiss()
        self.look()
        self.assertEqual(self.said(FAILED), [])

    def test_a_denied_camera_is_said_at_opening(self):
        camera = self.plug()
        os.chmod(camera.path, 0)
        self.addCleanup(lambda: pathlib.Path(camera.path).exists() and os.chmod(camera.path, 0o660))
        self.wait_known(camera.path, False)
        self.vistrel.click()
        self.assertIn(DENIED, self.vistrel.lines[self.wait_said(STARTED) - 1])
        self.wait_empty()
        self.dismiss()
        os.chmod(camera.path, 0o660)
        self.wait_known(camera.path)
        self.look()

    def test_the_same_camera_and_the_other_one_can_be_chosen(self):
        first, second = self.plug(name="First"), self.plug(name="Second", port=1)
        self.look()
        for index in (0, 1, 1, 0, 0):
            self.choose(index)
            self.wait_said(SAVING)
            self.wait_said(STARTED)
            self.screen.live_picture()
            wanted, left = (second, first) if index else (first, second)
            self.assertTrue(holders(wanted.path))
            self.wait_free(left)

    def test_many_openings_leave_nothing_behind(self):
        camera = self.plug(offers=["yuy2:320x240@30"])
        for number in range(WARM_UP + OPENINGS):
            if number == WARM_UP:
                before = in_use(self.vistrel.pid)
            self.vistrel.click()
            self.wait_some_picture()
            self.dismiss()
            self.wait_free(camera)
        after = in_use(self.vistrel.pid)
        print(f"after {WARM_UP} openings {before}, after {OPENINGS} more {after}", flush=True)
        self.assert_flat(before, after)

    def test_two_identical_cameras_stand_in_the_order_of_their_ports(self):
        late, early = self.plug(name="Twin", port=1), self.plug(name="Twin", port=0)
        self.assertLess(int(late.number), int(early.number))
        self.look()
        self.assertEqual(self.listed(), [early.path, late.path])
        self.assertTrue(holders(early.path))


class ThroughPipeWireTest(Cases, GuestTest):
    through = True

    def test_without_a_session_manager_v4l2_shows_the_camera(self):
        self.desktop.stop_session_manager()
        self.addCleanup(self.desktop.wait_pipewire)
        camera = UsbCamera(self.desktop)
        self.addCleanup(camera.close)
        self.look()
        self.assertEqual(holders(camera.path), {self.vistrel.pid})
        self.dismiss()
        self.wait_free(camera)

    def test_the_check_tells_of_each_camera_and_measures_the_mirror_on_it(self):
        cameras = [self.plug(port=port) for port in (0, 1)]
        check = self.desktop.start([sys.executable, "-m", "stage.check"])
        self.assertEqual(check.wait(4 * PATIENCE), 0, check.errors)
        text = "\n".join(check.lines)
        self.assertIn("Motion-JPEG", text)
        for camera in cameras:
            self.assertIn(f"{camera.path}: {NAME}, index 0, may be opened", text)
            self.assertIn(f"api.v4l2.path: {camera.path}", text)
            for way in ("through PipeWire", "by V4L2"):
                self.assertIn(f"the mirror on {NAME} at {camera.path}, {way}\nfirst picture after", text)


class ByV4l2Test(Cases, GuestTest):
    through = False


if __name__ == "__main__":
    unittest.main()
