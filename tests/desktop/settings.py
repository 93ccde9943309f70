"""The settings' windows as a person works them: what is read, by a screen reader's names; what is done, by clicks
and keys."""

from stage.accessibility import Accessibility
from stage.processes import wait_until
from stage.program import centre
from tests.desktop.harness import DesktopTest

ROWS = {"Preferences": -2, "About Vistrel": -3}  # of the menu, counted from its end


class SettingsTest(DesktopTest):
    stage = {"accessible": True}

    def setUp(self):
        super().setUp()
        self.reader = Accessibility(self.desktop)

    def open_window(self, vistrel, title):
        vistrel.open_menu()
        rows = vistrel.menu_rows()
        self.screen.click(centre(rows[ROWS[title]]))
        vistrel.wait_no_menu()
        window = wait_until(lambda: vistrel.windows(name=title), title)[-1]
        wait_until(lambda: self.screen.focus()["id"] == window["id"], f"the focus on {title}")
        return vistrel.windows(id=window["id"])[0]["place"]

    def close_window(self, title):
        x, y, width, _height = next(iter(self.screen.windows(name=title)))["place"]
        self.screen.click((x + width - 9, y - 10))
        wait_until(lambda: not self.screen.windows(name=title), f"the end of {title}")

    def find(self, vistrel, name, role):
        return wait_until(lambda: self.reader.objects(vistrel.pid, name=name, role=role), f"{role} {name}")[0]

    def press(self, vistrel, name, role):
        self.screen.click(centre(self.find(vistrel, name, role)["place"]))

    def wait_checked(self, vistrel, name, role, is_checked=True):
        wait_until(lambda: self.find(vistrel, name, role)["checked"] == is_checked, f"{name}: {is_checked}")

    def size_box(self, vistrel):
        """The combo box in the row of its label."""
        _x, y, _width, height = self.find(vistrel, "Popover size:", "label")["place"]
        return next(box for box in self.reader.objects(vistrel.pid, role="combo box")
                    if box["place"][1] <= y + height / 2 < box["place"][1] + box["place"][3])

    def choose_size(self, vistrel, name):
        box = self.size_box(vistrel)["place"]
        self.screen.click(centre(box))
        # A closed box keeps its items too; those of an open one lie on the screen beside it.
        rows = wait_until(lambda: [row["place"] for row in self.reader.objects(vistrel.pid, role="list item", name=name)
                                   if row["place"][0] >= box[0]], f"{name} in the open box")
        self.screen.click(centre(rows[0]))
