"""The private desktop itself: what it leaves behind, and that two of them do not meet."""

import os
import signal
import subprocess
import sys
import unittest

from stage.desktop import ROOT, Desktop
from stage.processes import marked, wait_until


class StageTest(unittest.TestCase):
    def test_two_desktops_run_side_by_side_and_leave_nothing(self):
        with Desktop() as first, Desktop(host="trayer", manager="xfwm4") as second:
            camera = first.camera()
            self.assertNotEqual(first.environment["DISPLAY"], second.environment["DISPLAY"])
            names = [[node["info"]["props"].get("node.name") for node in desktop.graph("Node")]
                     for desktop in (first, second)]
            self.assertIn(camera.node, names[0])
            self.assertNotIn(camera.node, names[1])
        for desktop in (first, second):
            self.assertEqual(marked(desktop.mark), [])
            self.assertFalse(desktop.folder.exists())

    def test_nothing_is_left_when_the_owner_is_killed(self):
        script = "from stage.desktop import Desktop\nd = Desktop()\nd.camera()\nprint(d.mark, d.folder, flush=True)\ninput()"
        owner = subprocess.Popen([sys.executable, "-c", script], cwd=ROOT, stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                 text=True, env=os.environ | {"PYTHONPATH": str(ROOT)})
        mark, folder = owner.stdout.readline().split()
        self.assertGreater(len(marked(mark)), 5)
        owner.send_signal(signal.SIGKILL)
        owner.wait()
        wait_until(lambda: not marked(mark) and not os.path.exists(folder), "the end of the desktop")
        owner.stdin.close()
        owner.stdout.close()


if __name__ == "__main__":
    unittest.main()
