"""Two hundred openings and closings: nothing grows."""

import unittest

from tests.desktop.harness import DesktopTest, in_use

WARM_UP, ROUNDS = 20, 200


class EnduranceTest(DesktopTest):
    def test_descriptors_threads_and_memory_stay_flat(self):
        camera = self.desktop.camera(offers=["mjpeg:1280x720@30"])
        vistrel = self.start()
        for number in range(WARM_UP + ROUNDS):
            if number == WARM_UP:
                before = in_use(vistrel.pid)
            self.open(vistrel)
            vistrel.click()
            self.wait_closed(camera)
        after = in_use(vistrel.pid)
        print(f"after {WARM_UP} openings {before}, after {WARM_UP + ROUNDS} {after}")
        self.assert_flat(before, after)


if __name__ == "__main__":
    unittest.main()
