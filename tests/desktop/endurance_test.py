"""Two hundred openings and closings: nothing grows."""

import pathlib
import unittest

from tests.desktop.harness import DesktopTest

WARM_UP, ROUNDS = 20, 200
GROWTH = 2048  # KiB: what the allocator may do by itself


class EnduranceTest(DesktopTest):
    def test_descriptors_threads_and_memory_stay_flat(self):
        camera = self.desktop.camera(offers=["mjpeg:1280x720@30"])
        vistrel = self.start()
        for number in range(WARM_UP + ROUNDS):
            if number == WARM_UP:
                before = self.measure(vistrel)
            self.open(vistrel)
            vistrel.click()
            self.wait_closed(camera)
        after = self.measure(vistrel)
        print(f"after {WARM_UP} openings {before}, after {WARM_UP + ROUNDS} {after}")
        self.assertLessEqual(after["descriptors"], before["descriptors"])
        self.assertLessEqual(after["threads"], before["threads"])
        self.assertLess(after["memory"], before["memory"] + GROWTH)

    def measure(self, vistrel):
        folder = pathlib.Path("/proc") / str(vistrel.pid)
        status = dict(line.split(":", 1) for line in (folder / "status").read_text().splitlines())
        return {"descriptors": len(list((folder / "fd").iterdir())), "threads": int(status["Threads"]),
                "memory": int(status["RssAnon"].split()[0])}


if __name__ == "__main__":
    unittest.main()
