"""The global shortcut where the desktop binds it: by its portal, which may come late, go, hang and refuse."""

import unittest

from stage.processes import wait_until
from stage.program import IDENTIFIER
from stage.shortcut_portal import ShortcutPortal
from tests.desktop import recorder_test
from tests.desktop.settings import SettingsTest
from tests.desktop.shortcut_test import ALT, CONTROL, Z, Z_KEY, stored

TRIGGER = "CTRL+ALT+z"
ID = f"toggleShortcutMode.{TRIGGER}"
F6_ID = "toggleShortcutMode.CTRL+SHIFT+F6"
CONTROL_AND_ALT = 0xC  # as X11 has them
BOUND = f"bound {ID}"


class PortalTest(SettingsTest):
    NAME = recorder_test.RecorderTest.NAME
    field, record = recorder_test.RecorderTest.field, recorder_test.RecorderTest.record
    wait_says, combination = recorder_test.RecorderTest.wait_says, recorder_test.RecorderTest.combination

    def setUp(self):
        super().setUp()
        self.camera = self.desktop.camera()

    def portal(self, **options):
        portal = ShortcutPortal(self.desktop, **options)
        self.addCleanup(portal.forget)
        self.addCleanup(portal.close)
        return portal

    def start_bound(self, portal, **options):
        vistrel = self.start(stored(Z_KEY, 0x1800), **options)
        portal.wait(BOUND)
        return vistrel

    def keys(self):
        for action, names in (("keydown", (CONTROL, ALT, Z)), ("keyup", (Z, ALT, CONTROL))):
            for name in names:
                self.screen.ask(action, name)

    def expect_toggle(self, toggle):
        toggle()
        self.screen.live_picture()
        toggle()
        self.wait_closed(self.camera)

    def expect_grabbed(self):
        wait_until(lambda: self.screen.ask("taken", Z, CONTROL_AND_ALT)["taken"], "the grab")
        self.expect_toggle(self.keys)

    def expect_served(self, portal, trigger=TRIGGER):
        """By the portal and not by a grab: had the keys opened the mirror, the portal would close it."""
        portal.toggle(trigger)
        self.screen.live_picture()
        self.keys()
        portal.toggle(trigger)
        self.wait_closed(self.camera)

    def test_the_portal_serves_however_it_answers(self):
        for answer in ("yes", "failed", "later"):
            with self.subTest(answer=answer):
                portal = self.portal(answer=answer)
                vistrel = self.start_bound(portal)
                self.assertIn(f"asked {ID} for {TRIGGER} over nothing", portal.lines)
                self.expect_served(portal)
                self.assertFalse([line for line in portal.lines if line.startswith("refused")])
                vistrel.terminate()
                portal.close()
                portal.forget()

    def test_the_desktop_keeps_what_the_user_chose(self):
        portal = self.portal()
        self.start_bound(portal).terminate()
        portal.say("change", TRIGGER, "LOGO+F9")
        asked = len(portal.lines)
        self.start(stored(Z_KEY, 0x1800))
        portal.wait(BOUND, asked)
        self.expect_served(portal, "LOGO+F9")
        self.assertFalse([line for line in portal.lines if line.startswith("forgot")])

    def test_it_changes_hands_as_the_portal_comes_and_goes(self):
        self.start(stored(Z_KEY, 0x1800))
        self.expect_grabbed()
        portal = self.portal()
        portal.wait(BOUND)
        self.expect_served(portal)
        portal.close()
        self.expect_grabbed()
        portal.start()
        portal.wait(BOUND)
        self.expect_served(portal)
        portal.say("end")
        self.expect_grabbed()

    def test_a_portal_that_hangs_holds_up_nothing(self):
        portal = self.portal()
        portal.hang()
        vistrel = self.start(stored(Z_KEY, 0x1800))
        self.expect_grabbed()
        self.expect_toggle(vistrel.click)
        portal.hang(False)
        portal.wait(BOUND)
        self.expect_served(portal)

    def test_a_release_that_never_comes_is_made_up_for(self):
        portal = self.portal()
        self.start_bound(portal)
        for _ in range(2):  # a desktop that tells of no release
            portal.say("press", TRIGGER)
            self.screen.live_picture()
            portal.say("press", TRIGGER)
            self.wait_closed(self.camera)
        portal.toggle(TRIGGER)
        self.screen.live_picture()
        portal.say("press", TRIGGER)
        portal.close()  # while it is held
        self.wait_closed(self.camera)

    def test_a_portal_that_knows_no_programs_is_asked_all_the_same(self):
        portal = self.portal(knows_programs=False)
        self.start(stored(Z_KEY, 0x1800))
        portal.wait("refused session")
        self.expect_grabbed()

    def test_who_said_no_is_asked_again_after_a_recording(self):
        portal = self.portal(answer="no")
        preferences = {**stored(Z_KEY, 0x1800), "dismissPreference": 1}
        vistrel = self.start(preferences)
        portal.wait("asked")
        self.expect_grabbed()
        vistrel.terminate()
        portal.close()
        portal.start()
        vistrel = self.start(preferences)
        self.open_window(vistrel, "Preferences")
        self.record(vistrel)
        self.screen.key("Delete")
        self.wait_says(vistrel, "Press Shortcut", "")
        portal.answer("yes")
        self.keys()
        self.wait_says(vistrel, "Record Shortcut", "⌃⌥Z")
        portal.wait(BOUND)
        self.assertEqual([line for line in portal.lines if line.startswith("asked")],
                         [f"asked {ID} for {TRIGGER} over x11"])
        self.expect_served(portal)

    def record_f6(self, portal):
        vistrel = self.start({**stored(Z_KEY, 0x1800), "dismissPreference": 1})
        portal.wait("asked")
        self.open_window(vistrel, "Preferences")
        self.record(vistrel)
        self.combination("Control_L", "Shift_L", "F6")
        portal.wait(f"asked {F6_ID}")
        return vistrel.file.parent / "denied-shortcuts"

    def test_a_failure_is_a_no_to_what_was_just_recorded(self):
        denied = self.record_f6(self.portal(answer="denied"))
        self.addCleanup(denied.unlink)
        wait_until(lambda: denied.exists() and denied.read_text() == f"{F6_ID}\n", "the denial of that one alone")

    def test_a_failure_is_no_denial_where_the_program_is_not_known(self):
        portal = self.portal(answer="denied", knows_programs=False)
        self.record_f6(portal)
        portal.answer("denied")  # and what it answered is on its way
        portal.close()
        self.portal().wait(f"bound {F6_ID}")

    def test_a_new_recording_is_a_new_session_and_a_cleared_one_frees_its_key(self):
        portal = self.portal()
        vistrel = self.start({**stored(Z_KEY, 0x1800), "dismissPreference": 1})
        portal.wait(BOUND)
        self.open_window(vistrel, "Preferences")
        self.record(vistrel)
        self.combination("Control_L", "Shift_L", "F6")
        self.wait_says(vistrel, "Record Shortcut", "⌃⇧F6")
        portal.wait(f"bound {F6_ID}", portal.wait("closed"))
        self.expect_toggle(lambda: portal.toggle("CTRL+SHIFT+F6"))
        self.record(vistrel)
        ended = len(portal.lines)
        self.screen.key("Delete")
        self.wait_says(vistrel, "Press Shortcut", "")
        self.stored(vistrel, recorder_test.SHORTCUT, False)
        portal.wait("closed", ended)
        portal.wait(f"forgot {IDENTIFIER} {F6_ID}", ended)
        self.assertFalse([line for line in portal.lines[:ended] if line.startswith("forgot")])


if __name__ == "__main__":
    unittest.main()
