"""The Preferences and About windows."""

import re
import shutil
import subprocess
import unittest

from stage.desktop import ROOT
from stage.processes import wait_until
from stage.program import centre, inside
from tests.desktop.harness import SIZES
from tests.desktop.settings import ROWS, SettingsTest

LABEL = "org.vistrel.Vistrel-LaunchAtLoginHelper"


class PreferencesTest(SettingsTest):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        # Newer C libraries translate nothing for who uses the plain locale.
        locale = cls.desktop.folder / "locale"
        locale.mkdir()
        cls.desktop.run("localedef", "-i", "en_US", "-f", "UTF-8", locale / "en_US.UTF-8")
        cls.locale = {"LANG": "en_US.UTF-8", "LOCPATH": str(locale)}

    def icon_pixels(self, vistrel):
        return self.screen.ask("pixels", *vistrel.icon())["pixels"]

    def test_each_control_takes_effect_at_once_and_is_found_again(self):
        camera = self.desktop.camera()
        vistrel = self.start()
        self.open_window(vistrel, "Preferences")
        before = self.icon_pixels(vistrel)
        self.press(vistrel, "Icon 2", "radio button")
        self.stored(vistrel, "selectedUIIcon", 1)
        wait_until(lambda: self.icon_pixels(vistrel) != before, "another icon in the tray")
        self.choose_size(vistrel, "Medium")
        self.stored(vistrel, "selectedPopoverSize", 1)
        self.press(vistrel, "Mirror video", "check box")
        self.stored(vistrel, "selectedMirroringPreference", False)
        self.press(vistrel, "Click on the icon again", "radio button")
        self.stored(vistrel, "dismissPreference", 1)
        self.close_window("Preferences")

        seen = self.open(vistrel)
        self.assertFalse(seen["mirrored"])
        self.assertAlmostEqual(seen["place"][2], SIZES[1][0], delta=2)
        vistrel.click()
        self.wait_closed(camera)
        self.open_window(vistrel, "Preferences")
        self.wait_checked(vistrel, "Icon 2", "radio button")
        self.assertEqual(self.size_box(vistrel)["name"], "Medium")
        self.wait_checked(vistrel, "Click on the icon again", "radio button")
        self.wait_checked(vistrel, "Mirror video", "check box", False)

    def test_the_dismiss_choice_decides_over_a_torn_off_mirror(self):
        camera = self.desktop.camera()
        vistrel = self.start()
        for name, stays in (("Click on the icon again", True), ("Click away from the window", False)):
            self.open_window(vistrel, "Preferences")
            self.press(vistrel, name, "radio button")
            self.stored(vistrel, "dismissPreference", int(stays))
            self.close_window("Preferences")
            start = centre(self.open(vistrel)["place"])
            since = len(vistrel.lines)
            self.screen.drag(start, (start[0] - 300, start[1] + 200))
            vistrel.wait_line("Detached", since)
            other = self.desktop.start(["xev"])
            wait_until(lambda: self.screen.focus()["pid"] != vistrel.pid, "the focus on the other application")
            self.screen.move((40, 700))
            if stays:
                self.screen.live_picture(10)
                vistrel.click()
            self.wait_closed(camera)
            other.end()

    def test_the_login_box_makes_an_entry_and_takes_it_away(self):
        vistrel = self.start(complaints=1)
        folder = self.desktop.folder / "config" / "autostart"
        entry = folder / f"{LABEL}.desktop"
        self.open_window(vistrel, "Preferences")
        self.press(vistrel, "Open Vistrel at login", "check box")
        wait_until(entry.exists, "the autostart entry")
        self.desktop.run("desktop-file-validate", entry)
        self.assertIn(f"TryExec={self.desktop.programs / 'vistrel'}\n", entry.read_text())
        self.press(vistrel, "Open Vistrel at login", "check box")
        wait_until(lambda: not entry.exists(), "the end of the autostart entry")
        self.assertEqual(vistrel.preferences(), {})
        folder.rmdir()
        folder.write_text("no folder")
        self.addCleanup(folder.unlink)
        self.press(vistrel, "Open Vistrel at login", "check box")
        vistrel.process.wait_line("vistrel: the login item cannot be written", errors=True)
        self.wait_checked(vistrel, "Open Vistrel at login", "check box")
        self.close_window("Preferences")
        self.open_window(vistrel, "Preferences")
        self.wait_checked(vistrel, "Open Vistrel at login", "check box", False)

    def test_nothing_is_clipped_at_larger_sizes(self):
        # A desktop whose font is a quarter larger than the usual nine points.
        fonts = self.desktop.folder / "config" / "kdeglobals"
        fonts.write_text("[General]\nfont=DejaVu Sans,11.25,-1,5,50,0,0,0,0,0\n")
        self.addCleanup(fonts.unlink)
        large = {"XDG_CURRENT_DESKTOP": "KDE", "KDE_FULL_SESSION": "true", "KDE_SESSION_VERSION": "5"}
        reversed_ = ["sh", "-c", 'exec "$0" -reverse']
        self.make_pseudo_language()
        for options in ({}, {"environment": {"QT_SCALE_FACTOR": "1.5"}}, {"environment": large},
                        {"environment": large, "prefix": reversed_}, {"environment": self.locale | {"LANGUAGE": "de"}},
                        {"environment": self.locale | {"LANGUAGE": "pseudo"}}):
            with self.subTest(**options), self.start(**options) as vistrel:
                for title in ROWS:
                    self.open_window(vistrel, title)
                    window = self.find(vistrel, title, "frame")["place"]
                    shown = [entry for entry in self.reader.objects(vistrel.pid)
                             if entry["role"] in ("label", "push button", "radio button", "check box", "text")]
                    self.assertGreaterEqual(len(shown), 9)
                    for entry in shown:
                        self.assertTrue(inside(entry["place"], window), entry)
                    for one in shown:
                        overlapping = [other["name"] for other in shown if other is not one
                                       and self.overlap(one["place"], other["place"])]
                        self.assertEqual(overlapping, [], one["name"])
                    self.close_window(title)

    def make_pseudo_language(self):
        """Every text longer and with accents, from right to left."""
        folder = self.desktop.programs / "locale" / "pseudo" / "LC_MESSAGES"
        folder.mkdir(parents=True, exist_ok=True)
        self.addCleanup(shutil.rmtree, folder.parent)
        texts = re.findall(r'^msgid "(.+)"$', (ROOT / "po" / "vistrel.pot").read_text(), re.MULTILINE)
        translations = {text: "RTL" if text == "LTR" else f"«{text.replace('e', 'é')}··»" for text in texts}
        source = 'msgid ""\nmsgstr "Content-Type: text/plain; charset=UTF-8\\n"\n' + "".join(
            f'msgid "{text}"\nmsgstr "{translation}"\n' for text, translation in translations.items())
        subprocess.run(["msgfmt", "-", "-o", folder / "vistrel.mo"], input=source, text=True, check=True)

    def test_it_speaks_the_users_language_in_its_direction(self):
        self.make_pseudo_language()
        for language, words, is_reversed in (("de:en", "Bild spiegeln", False), ("pseudo", "«Mirror vidéo··»", True),
                                             ("xx", "Mirror video", False)):
            with self.subTest(language), \
                    self.start(environment=self.locale | {"LANGUAGE": language}) as vistrel:
                x, _y, width, _height = self.open_window(vistrel, "Preferences")
                box = self.find(vistrel, words, "check box")["place"]
                self.assertEqual(centre(box)[0] > x + width / 2, is_reversed)
                self.screen.save(ROOT / "build" / "desktop" / f"preferences-{language[:2]}.png")

    @staticmethod
    def overlap(a, b):
        return a[0] < b[0] + b[2] and b[0] < a[0] + a[2] and a[1] < b[1] + b[3] and b[1] < a[1] + a[3]

    def test_a_link_opens_in_the_browser_and_does_nothing_without_one(self):
        opened = self.desktop.folder / "opened"
        browser = self.desktop.folder / "browser" / "xdg-open"
        browser.parent.mkdir()
        browser.write_text(f'#!/bin/sh\necho "$1" >>{opened}\n')
        browser.chmod(0o755)
        for folder, is_there in (("/nowhere", False), (f"{browser.parent}:/usr/bin:/bin", True)):
            with self.subTest(is_there=is_there), \
                    self.start(complaints=int(not is_there), environment={"PATH": folder}) as vistrel:
                self.open_window(vistrel, "About Vistrel")
                self.press(vistrel, "FAQ", "push button")
                if is_there:
                    wait_until(lambda: opened.exists() and opened.read_text().endswith("/pages/faq.html\n"), "the page")
                self.close_window("About Vistrel")

    def test_a_moved_window_comes_back_to_its_place_and_quits_nothing(self):
        vistrel = self.start()
        x, y, width, height = self.open_window(vistrel, "About Vistrel")
        self.assertEqual((width, height), (480, 420))
        window = vistrel.windows(name="About Vistrel")[0]["id"]
        actions = self.desktop.run("xprop", "-id", window, "_NET_WM_ALLOWED_ACTIONS")
        self.assertTrue("_MOVE" in actions and "_RESIZE" not in actions, actions)
        self.screen.drag((x + 200, y - 10), (x + 100, y + 50))
        moved = wait_until(lambda: [w["place"] for w in vistrel.windows(name="About Vistrel") if w["place"][0] != x],
                           "the window elsewhere")[0]
        self.close_window("About Vistrel")
        self.assertEqual(self.open_window(vistrel, "About Vistrel"), moved)
        vistrel.open_menu()
        self.screen.click(centre(vistrel.menu_rows()[ROWS["Preferences"]]))
        wait_until(lambda: vistrel.windows(name="Preferences"), "Preferences beside it")
        self.close_window("Preferences")
        self.close_window("About Vistrel")
        self.open_window(vistrel, "Preferences")
        self.assertEqual(vistrel.terminate(), 0)
        self.assertEqual(set(vistrel.preferences()), {"NSWindow Frame About Window"})  # nobody moved the other


if __name__ == "__main__":
    unittest.main()
