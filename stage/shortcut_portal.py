"""A desktop's portal for global shortcuts. It refuses whom it does not know, a second binding in a session and a
session that is there already, keeps what it has for an id whatever is asked for, and, as KDE's, still has the sessions
of one before it that died. It is KDE's keeper of keys too. Runs as a program of its own, which tells what it is asked,
a line each; `ShortcutPortal` speaks with it."""

import json
import pathlib
import signal
import sys

NAME = "org.freedesktop.portal.Desktop"
PATH = "/org/freedesktop/portal/desktop"
SHORTCUTS = "org.freedesktop.portal.GlobalShortcuts"
REGISTRY = "org.freedesktop.host.portal.Registry"
SESSION = "org.freedesktop.portal.Session"
KEYS = "org.kde.KGlobalAccel"
APPLICATION = "org.vistrel.Vistrel"
REGISTRY_XML = f"""<node><interface name="{REGISTRY}">
  <method name="Register"><arg type="s" direction="in"/><arg type="a{{sv}}" direction="in"/></method>
</interface></node>"""
SHORTCUTS_XML = f"""<node><interface name="{SHORTCUTS}">
  <method name="CreateSession"><arg type="a{{sv}}" direction="in"/><arg type="o" direction="out"/></method>
  <method name="BindShortcuts"><arg type="o" direction="in"/><arg type="a(sa{{sv}})" direction="in"/>
    <arg type="s" direction="in"/><arg type="a{{sv}}" direction="in"/><arg type="o" direction="out"/></method>
</interface></node>"""
KEYS_XML = f"""<node><interface name="{KEYS}">
  <method name="unregister"><arg type="s" direction="in"/><arg type="s" direction="in"/></method>
</interface></node>"""
SESSION_XML = f"""<node><interface name="{SESSION}"><method name="Close"/></interface></node>"""


class ShortcutPortal:
    """`answer` is what the user says to a new shortcut: "yes", "no", "failed" (bound, and a desktop that answers that
    it is not), "later" (bound, and told without an answer), "denied" (no, and a desktop that calls it a failure, as it
    does with programs that it does not know)."""

    def __init__(self, desktop, answer="yes", knows_programs=True):
        self._desktop, self._answer, self._knows_programs = desktop, answer, knows_programs
        self._store = pathlib.Path(desktop.folder / "shortcuts.json")
        self.start()

    def start(self):
        self._process = self._desktop.start([sys.executable, __file__, self._answer, int(self._knows_programs),
                                             self._store])
        self._process.wait_line("ready")

    def close(self):
        self._process.end()

    def forget(self):
        self._store.unlink(missing_ok=True)

    def answer(self, answer):
        self._answer = answer
        self.say("answer", answer)

    def hang(self, hangs=True):
        self._process.signal(signal.SIGSTOP if hangs else signal.SIGCONT)

    def say(self, *words):
        """Has it done: "answer" WORD; "press" TRIGGER or "release" TRIGGER; "change" TRIGGER TO, as in the desktop's
        settings; "end", of the sessions."""
        since = len(self.lines)
        self._process.write(" ".join(words))
        self._process.wait_line("done", since)

    @property
    def lines(self):
        return self._process.lines

    def wait(self, line, since=0):
        return self._process.wait_line(line, since)

    def toggle(self, trigger):
        self.say("press", trigger)
        self.say("release", trigger)


class _Service:
    def __init__(self, answer, knows_programs, store):
        self.answer, self.store = answer, store
        kept = json.loads(store.read_text()) if store.exists() else {"triggers": {}, "sessions": []}
        self.triggers, self.left = kept["triggers"], kept["sessions"]  # by id; of one before it
        self.names, self.callers, self.sessions = {}, set(), {}
        self.bus = Gio.bus_get_sync(Gio.BusType.SESSION)
        self._export(PATH, SHORTCUTS_XML)
        if knows_programs:
            self._export(PATH, REGISTRY_XML)
        self._export("/kglobalaccel", KEYS_XML)

    def _export(self, path, xml):
        return self.bus.register_object(path, Gio.DBusNodeInfo.new_for_xml(xml).interfaces[0], self._called, None, None)

    def _called(self, _bus, sender, path, interface, method, arguments, invocation):
        try:
            result = getattr(self, method)(sender, *arguments.unpack(), **({"path": path} if method == "Close" else {}))
            invocation.return_value(GLib.Variant("(o)", (result,)) if result else None)
        except PermissionError as error:
            print("refused", error, flush=True)
            invocation.return_dbus_error("org.freedesktop.portal.Error.NotAllowed", str(error))
        if interface != KEYS:
            self.callers.add(sender)

    def _signal(self, to, path, interface, name, signature, *values):
        self.bus.emit_signal(to, path, interface, name, GLib.Variant(signature, values))

    def _respond(self, sender, options, response, results):
        path = f"{PATH}/request/{sender[1:].replace('.', '_')}/{options['handle_token']}"
        if response is not None:
            GLib.idle_add(self._signal, sender, path, "org.freedesktop.portal.Request", "Response", "(ua{sv})",
                          response, results, priority=GLib.PRIORITY_HIGH)  # before what it is told to do next
        return path

    @staticmethod
    def _listed(triggers):
        return [(name, {"trigger_description": GLib.Variant("s", trigger)}) for name, trigger in triggers.items()]

    def Register(self, sender, name, _options):
        if sender in self.callers or name != APPLICATION:
            raise PermissionError("identity")
        self.names[sender] = name

    def CreateSession(self, sender, options):
        path = f"{PATH}/session/{sender[1:].replace('.', '_')}/{options['session_handle_token']}"
        is_served = sender in self.names or self.answer == "denied"
        if not is_served or path in self.sessions:
            raise PermissionError("session")
        self.sessions[path] = {"owner": sender, "object": self._export(path, SESSION_XML), "ids": None}
        self._save()
        if path in self.left:
            GLib.idle_add(self._end, path)  # once it has answered
        return self._respond(sender, options, 0, {"session_handle": GLib.Variant("s", path)})

    def Close(self, _sender, path):
        self.bus.unregister_object(self.sessions.pop(path)["object"])
        self._save()
        print("closed", flush=True)

    def _end(self, path):
        self._signal(self.sessions[path]["owner"], path, SESSION, "Closed", "(a{sv})", {})
        self.Close(None, path)

    def unregister(self, _sender, component, name):
        print("forgot", component, name, flush=True)

    def BindShortcuts(self, sender, path, shortcuts, parent, options):
        session = self.sessions.get(path)
        if not session or session["ids"] is not None:
            raise PermissionError("binding")
        session["ids"] = []
        new = {name: facts["preferred_trigger"] for name, facts in shortcuts if name not in self.triggers}
        print("asked", *new, "for", *new.values(), "over", parent.split(":")[0] or "nothing", flush=True)
        refusals = {"no": 1, "denied": 2}
        if self.answer in refusals and new:
            return self._respond(sender, options, refusals[self.answer], {})
        self.triggers |= new
        self._save()
        session["ids"] = [name for name, _facts in shortcuts]
        bound = self._listed({name: self.triggers[name] for name in session["ids"]})
        print("bound", *session["ids"], flush=True)
        if self.answer == "later":
            self._signal(sender, PATH, SHORTCUTS, "ShortcutsChanged", "(oa(sa{sv}))", path, bound)
        response = {"failed": 2, "later": None}.get(self.answer, 0)
        return self._respond(sender, options, response, {"shortcuts": GLib.Variant("a(sa{sv})", bound)})

    def _save(self):
        self.store.write_text(json.dumps({"triggers": self.triggers, "sessions": list(self.sessions)}))

    def _strike(self, signal_name, trigger):
        for path, session in self.sessions.items():
            for name in session["ids"] or []:
                if self.triggers[name] == trigger:
                    self._signal(session["owner"], PATH, SHORTCUTS, signal_name, "(osta{sv})", path, name, 0, {})

    def told(self, command, *words):
        if command == "answer":
            self.answer = words[0]
        elif command in ("press", "release"):
            self._strike({"press": "Activated", "release": "Deactivated"}[command], words[0])
        elif command == "change":
            self.triggers = {name: words[1] if trigger == words[0] else trigger
                             for name, trigger in self.triggers.items()}
            self._save()
        elif command == "end":
            for path in list(self.sessions):
                self._end(path)
        self.bus.flush_sync(None)
        print("done", flush=True)


def _serve(answer, knows_programs, store):
    loop = GLib.MainLoop()
    service = _Service(answer, knows_programs == "1", pathlib.Path(store))

    def told(*_):
        line = sys.stdin.readline()
        if line:
            service.told(*line.split())
        else:
            loop.quit()
        return bool(line)

    GLib.io_add_watch(sys.stdin.fileno(), GLib.PRIORITY_DEFAULT, GLib.IO_IN | GLib.IO_HUP, told)
    Gio.bus_own_name_on_connection(service.bus, "org.kde.kglobalaccel", 0, None, None)
    Gio.bus_own_name_on_connection(service.bus, NAME, 0, lambda *_: print("ready", flush=True), None)
    loop.run()


if __name__ == "__main__":
    import gi
    gi.require_version("Gio", "2.0")
    from gi.repository import Gio, GLib
    _serve(*sys.argv[1:])
