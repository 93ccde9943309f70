"""Light, dark and contrast, as the desktop wants them and while it changes its mind."""

import unittest

from stage.portal import Portal
from stage.processes import wait_until
from stage.program import centre
from tests.desktop.harness import DesktopTest


class AppearanceTest(DesktopTest):
    def test_it_follows_the_desktop_while_it_runs(self):
        self.desktop.camera()
        portal = Portal(self.desktop, 1)
        self.addCleanup(portal.close)
        vistrel = self.start({"dismissPreference": 1})
        vistrel.open_menu()
        self.screen.click(centre(vistrel.menu_rows()[-2]))
        window = wait_until(lambda: vistrel.windows(name="Preferences"), "Preferences")[0]["id"]

        def body():
            x, y, _width, height = vistrel.windows(id=window)[0]["place"]
            return tuple(self.screen.color((x + 5, y + height - 5)))
        self.open(vistrel)
        dark = self.frame_color(vistrel)
        self.assertLess(max(dark), 128)
        wait_until(lambda: max(body()) < 128, "dark Preferences")
        self.assertNotIn("Switched modes", vistrel.lines)
        portal.set_scheme(2)
        vistrel.wait_line("Switched modes")
        wait_until(lambda: sum(self.frame_color(vistrel)) > sum(dark) + 150, "a light frame")
        wait_until(lambda: min(body()) > 190, "light Preferences")
        portal.set_scheme(1)
        wait_until(lambda: self.frame_color(vistrel) == dark, "a dark frame")
        usual = body()
        portal.set_contrast(1)
        wait_until(lambda: body() == (0, 0, 0), "black Preferences")
        portal.set_contrast(0)
        wait_until(lambda: body() == usual, "dark Preferences again")

    def test_without_a_word_of_the_portal_the_desktops_own_setting_counts(self):
        self.desktop.camera()
        portal = Portal(self.desktop, -1)
        self.addCleanup(portal.close)
        file = self.desktop.folder / "config" / "glib-2.0" / "settings" / "keyfile"
        file.parent.mkdir(parents=True)

        def put(scheme, high_contrast="false"):
            file.write_text(f"[org/gnome/desktop/interface]\ncolor-scheme='{scheme}'\n"
                            f"[org/gnome/desktop/a11y/interface]\nhigh-contrast={high_contrast}\n")
        put("prefer-dark")
        vistrel = self.start(environment={"GSETTINGS_BACKEND": "keyfile"})
        self.open(vistrel)
        dark = self.frame_color(vistrel)
        self.assertLess(max(dark), 128)
        self.assertNotIn("Switched modes", vistrel.lines)
        put("prefer-dark", high_contrast="true")
        wait_until(lambda: self.frame_color(vistrel) != dark, "a frame with more contrast")
        put("default")
        vistrel.wait_line("Switched modes")
        wait_until(lambda: sum(self.frame_color(vistrel)) > sum(dark) + 150, "a light frame")

    def test_without_any_word_the_palette_decides(self):
        self.desktop.camera()
        file = self.desktop.folder / "config" / "qt6ct" / "qt6ct.conf"
        file.parent.mkdir(parents=True)

        def put(window):
            colors = ", ".join(["#ff808080"] * 10 + [window] + ["#ff808080"] * 10)
            scheme = file.with_name(window[1:])
            scheme.write_text("[ColorScheme]\n" + "".join(
                f"{group}_colors={colors}\n" for group in ("active", "disabled", "inactive")))
            changed = file.with_suffix(".new")
            changed.write_text(f"[Appearance]\ncustom_palette=true\ncolor_scheme_path={scheme}\n")
            changed.rename(file)
        put("#ff202020")
        vistrel = self.start(environment={"QT_QPA_PLATFORMTHEME": "qt6ct", "GSETTINGS_BACKEND": "memory"})
        self.open(vistrel)
        dark = self.frame_color(vistrel)
        self.assertLess(max(dark), 128)
        put("#ffe0e0e0")
        vistrel.wait_line("Switched modes")
        wait_until(lambda: sum(self.frame_color(vistrel)) > sum(dark) + 150, "a light frame")

    def frame_color(self, vistrel):
        """The color of the tip between the icon and the picture."""
        icon = vistrel.icon()
        top = self.screen.live_picture()["place"][1]
        return self.screen.color((centre(icon)[0], top - 4))


if __name__ == "__main__":
    unittest.main()
