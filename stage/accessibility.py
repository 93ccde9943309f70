"""What a screen reader sees and hears of a private desktop. Runs as a program of its own, since its bus is chosen by
the environment; `Accessibility` speaks with it, one JSON object a line."""

import json
import sys


class Accessibility:
    def __init__(self, desktop):
        self._process = desktop.start([sys.executable, __file__])
        self._read = 0

    def _ask(self, **request):
        self._process.write(json.dumps(request))
        index = self._process.wait_line("{", since=self._read)
        self._read = index + 1
        answer = json.loads(self._process.lines[index])
        if "error" in answer:
            raise AssertionError(answer["error"])
        return answer

    def objects(self, pid=None, **facts):
        """Everything showing, in order, of which all the facts hold: `role="check box", name="Mirror"`."""
        found = self._ask(do="list", pid=pid)["objects"]
        return [entry for entry in found if all(entry[key] == value for key, value in facts.items())]

    def act(self, entry, action):
        """Runs an action of an object that `objects` gave: "Press", "Toggle"."""
        self._ask(do="act", path=entry["path"], action=action)

    def set_value(self, entry, value):
        """Sets a number or a text."""
        self._ask(do="set", path=entry["path"], value=value)


class Listener:
    """Hears what a screen reader says of its own accord."""

    def __init__(self, desktop):
        self._process = desktop.start([sys.executable, __file__, "listen"])
        self._process.wait_line("ready")

    def mark(self):
        """Where what is said from now on begins."""
        return len(self._process.lines)

    def wait(self, what, text, since=0):
        """`what` is "announcement", "window" (which has the focus now) or "focus" (the control that has it)."""
        self._process.wait_line(json.dumps([what, text]), since)


def _listen():
    import pyatspi

    def tell(what, text):
        print(json.dumps([what, text]), flush=True)

    def focused(event):
        if event.detail1:
            tell("focus", event.source.name)

    def shown(event):
        if event.source.getRole() == pyatspi.ROLE_NOTIFICATION:
            tell("announcement", event.source.name)

    listen = pyatspi.Registry.registerEventListener
    listen(lambda event: tell("announcement", event.any_data), "object:announcement")
    listen(lambda event: tell("window", event.source.name), "window:activate")
    listen(focused, "object:state-changed:focused")
    listen(shown, "object:state-changed:showing")
    print("ready", flush=True)
    pyatspi.Registry.start()


def _serve():
    import pyatspi  # needs the desktop's bus at once

    def optional(read, fallback=None):
        try:
            return read()
        except Exception:  # noqa: BLE001 (each toolkit has its own way to say that it lacks an interface)
            return fallback

    def place(entry):
        extents = entry.queryComponent().getExtents(pyatspi.DESKTOP_COORDS)
        return [extents.x, extents.y, extents.width, extents.height]

    def actions(entry):
        interface = entry.queryAction()
        return [interface.getName(index) for index in range(interface.nActions)]

    def facts(entry, path):
        states = {state.value_nick for state in entry.getState().getStates()}
        role = entry.getRoleName()
        # AT-SPI 2.54 gave the role another name.
        return {"path": path, "role": "push button" if role == "button" else role, "name": entry.name, "description": entry.description,
                "states": sorted(states), "showing": "showing" in states, "checked": "checked" in states,
                "focused": "focused" in states,
                "place": optional(lambda: place(entry)), "actions": optional(lambda: actions(entry), []),
                "value": optional(lambda: entry.queryValue().currentValue),
                "text": optional(lambda: entry.queryText().getText(0, -1))}

    def walk(entry, path, into):
        into.append(facts(entry, path))
        for index in range(entry.childCount):
            child = entry.getChildAtIndex(index)
            if child is not None:
                optional(lambda: walk(child, [*path, index], into))

    def everything(pid):
        desktop = pyatspi.Registry.getDesktop(0)
        found = []
        for index in range(desktop.childCount):
            application = desktop.getChildAtIndex(index)
            if application is not None and pid in (None, optional(application.get_process_id)):
                optional(lambda: walk(application, [index], found))
        return found

    def at(path):
        entry = pyatspi.Registry.getDesktop(0)
        for index in path:
            entry = entry.getChildAtIndex(index)
        return entry

    def act(path, action):
        entry = at(path)
        names = actions(entry)
        if action not in names:
            raise ValueError(f"{entry.name!r} has the actions {names}")
        entry.queryAction().doAction(names.index(action))

    def put(path, value):
        entry = at(path)
        if isinstance(value, str):
            entry.queryEditableText().setTextContents(value)
        else:
            entry.queryValue().currentValue = value

    for line in sys.stdin:
        request = json.loads(line)
        try:
            if request["do"] == "list":
                answer = {"objects": [entry for entry in everything(request["pid"]) if entry["showing"]]}
            elif request["do"] == "act":
                answer = act(request["path"], request["action"]) or {}
            else:
                answer = put(request["path"], request["value"]) or {}
        except Exception as problem:  # noqa: BLE001 (reported to the test that asked)
            answer = {"error": f"{type(problem).__name__}: {problem}"}
        print(json.dumps(answer), flush=True)


if __name__ == "__main__":
    _listen() if "listen" in sys.argv else _serve()
