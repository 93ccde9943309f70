"""The screen of a private desktop: real input, and what is to be seen."""

import contextlib
import json

from stage.processes import PATIENCE, NeverCame, wait_until


class Screen:
    """Speaks with the `vistrel-screen` program."""

    def __init__(self, desktop):
        self._process = desktop.start([desktop.programs / "stage" / "vistrel-screen"])
        self._read = 0

    def ask(self, *words):
        self._process.write(" ".join(str(word) for word in words))
        index = self._process.wait_line("{", since=self._read, patience=3 * PATIENCE)
        self._read = index + 1
        answer = json.loads(self._process.lines[index])
        if "error" in answer:
            raise AssertionError(answer["error"])
        return answer

    def click(self, place, button=1):
        self.ask("click", button, *place)

    @contextlib.contextmanager
    def holding(self, key):
        """A tray host tells of a click a moment later, so the key must stay down until its effect is seen."""
        self.ask("keydown", key)
        try:
            yield
        finally:
            self.ask("keyup", key)

    def move(self, place):
        self.ask("move", *place)

    def drag(self, start, end):
        self.ask("drag", *start, *end)

    def key(self, name):
        self.ask("key", name)

    def windows(self, **facts):
        """The visible windows of which all the facts hold: `pid=1, name="About"`."""
        found = self.ask("windows")["windows"]
        return [window for window in found if all(window[key] == value for key, value in facts.items())]

    def focus(self):
        return self.ask("focus")["window"]

    def is_keyboard_free(self):
        """Whether a program could have the keyboard to itself, as a menu or a screen locker wants it."""
        return self.ask("keyboard")["free"]

    def bells(self):
        """How often the bell has rung since it was asked last."""
        return self.ask("bells")["count"]

    def pointer(self):
        """The picture of the pointer."""
        return self.ask("pointer")["pixels"]

    def property(self, name):
        return self.ask("property", name)["value"]

    def owns_selection(self, name):
        return self.ask("selection", name)["owner"] != 0

    def destroy(self, window):
        """Ends a window of another program, whose connection stays."""
        self.ask("destroy", window["id"])

    def color(self, place):
        return tuple(self.ask("pixel", *place)["color"])

    def picture(self, frames=3, milliseconds=int(PATIENCE * 500)):
        """The test picture, wherever it is, once `frames` different ones were seen; None when it never came."""
        picture = self.ask("watch", frames, milliseconds)["picture"]
        return picture if picture and picture["frames"] >= frames else None

    def live_picture(self, frames=3):
        picture = self.picture(frames)
        if picture is None:
            raise NeverCame("a live picture on the screen")
        return picture

    def wait_no_picture(self):
        wait_until(lambda: self.ask("find")["place"] is None, "the end of the picture")

    def save(self, path, place=()):
        """The whole screen, or the part at `place`, in a file whose folder is made."""
        path.parent.mkdir(parents=True, exist_ok=True)
        self.ask("shot", path, *place)
