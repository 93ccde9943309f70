"""The parts that speak with the X server, against a real one whose keyboard nobody else needs."""

import unittest

from stage.desktop import Desktop


class ServerTest(unittest.TestCase):
    def test_hot_keys_keymap_and_presses(self):
        with Desktop(manager=None, host=None, pipewire=False) as desktop:
            program = desktop.programs / "tests" / "desktop" / "x11_server_check"
            # The settings of GNOME as a file that the check writes, with no daemon to ask.
            check = desktop.start([program, "--gtest_color=no"], {"GSETTINGS_BACKEND": "keyfile"})
            status = check.wait(patience=300)
            self.assertEqual(status, 0, "\n".join(check.lines + check.errors))


if __name__ == "__main__":
    unittest.main()
