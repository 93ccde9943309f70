"""Why the mirror is empty, as the tray's icon and the window say it."""

import grp
import os
import unittest

from stage.accessibility import Accessibility
from stage.processes import wait_until
from tests.desktop.harness import DesktopTest


class EmptyMirrorTest(DesktopTest):
    stage = {"accessible": True}
    DEVICE = "denied"  # in the desktop's folder
    REASONS = (("The camera is in use by another program.", "error busy"),
               ("Access to the camera is denied; the group video has it.", "error denied"),
               ("The camera is no longer connected.", "die"),
               ("The camera sends no pictures.", "stall"),
               ("The camera sends pictures that cannot be shown.", "garbage"),
               ("No camera was found.", ""))

    def make_device(self):
        """What stands for the kernel's node of a camera that its group may use."""
        path = self.desktop.folder / self.DEVICE
        path.touch()
        os.chown(path, -1, grp.getgrnam("video").gr_gid)
        path.chmod(0o660)
        return path

    def bring_about(self, vistrel, command, options):
        """Has the mirror open and in trouble."""
        if not command:
            return vistrel.click()
        camera = self.desktop.camera(offers=["mjpeg:1280x720@30"], options=options)
        self.open(vistrel)
        self.assertEqual(vistrel.tooltip(), "Vistrel")
        if command == "die":
            return camera.unplug()
        camera.tell(command)
        if command.startswith("error"):  # which the daemon tells as it has the camera pause
            reader = next(node["id"] for node in self.desktop.graph("Node")
                          if node["info"]["props"].get("node.name") == "Vistrel")
            self.desktop.run("pw-cli", "send-command", reader, "Suspend", "{}")
        return None

    @unittest.skipUnless(os.getuid() == 0, "may not give files to a group")
    def test_the_icon_and_the_window_say_why_as_long_as_it_is_so(self):
        options = ["--property", f"api.v4l2.path={self.make_device()}"]
        reader = Accessibility(self.desktop)
        for reason, command in self.REASONS:
            with self.subTest(reason=reason), self.start() as vistrel:
                self.bring_about(vistrel, command, options)
                wait_until(lambda: vistrel.tooltip() == f"Vistrel: {reason}", reason)
                windows = wait_until(lambda: reader.objects(vistrel.pid, description=reason), "the window's description")
                self.assertEqual([window["name"] for window in windows], ["Vistrel"])
                vistrel.click()
                wait_until(lambda: vistrel.tooltip() == "Vistrel", "the end of the reason")
            self.desktop.unplug_all()


class EmptyMirrorUnderTrayerTest(DesktopTest):
    stage = {"host": "trayer"}

    def test_the_icon_s_title_says_why(self):
        vistrel = self.start()
        vistrel.click()
        wait_until(lambda: self.screen.windows(pid=vistrel.pid, name="Vistrel: No camera was found."), "the reason")
        vistrel.click()
        wait_until(lambda: self.screen.windows(pid=vistrel.pid, name="Vistrel"), "the end of the reason")


if __name__ == "__main__":
    unittest.main()
