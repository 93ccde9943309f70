"""A desktop portal that knows one setting, the color scheme. Runs as a program of its own; `Portal` speaks with
it, one number a line: 0 no preference, 1 dark, 2 light, -1 no such setting, -2 no answer."""

import sys

NAME = "org.freedesktop.portal.Desktop"
PATH = "/org/freedesktop/portal/desktop"
INTERFACE = "org.freedesktop.portal.Settings"
SETTING = ("org.freedesktop.appearance", "color-scheme")
DESCRIPTION = f"""
<node><interface name="{INTERFACE}">
  <method name="Read"><arg type="s" direction="in"/><arg type="s" direction="in"/><arg type="v" direction="out"/></method>
  <method name="ReadOne"><arg type="s" direction="in"/><arg type="s" direction="in"/><arg type="v" direction="out"/></method>
  <method name="ReadAll"><arg type="as" direction="in"/><arg type="a{{sa{{sv}}}}" direction="out"/></method>
  <signal name="SettingChanged"><arg type="s"/><arg type="s"/><arg type="v"/></signal>
  <property name="version" type="u" access="read"/>
</interface></node>"""


class Portal:
    def __init__(self, desktop, scheme=0):
        self._process = desktop.start([sys.executable, __file__, scheme])
        self._process.wait_line("ready")

    def set_scheme(self, scheme):
        since = len(self._process.lines)
        self._process.write(scheme)
        self._process.wait_line("set", since)

    def close(self):
        self._process.end()


def _serve(scheme):
    import gi
    gi.require_version("Gio", "2.0")
    from gi.repository import Gio, GLib

    state = {"scheme": scheme}
    loop = GLib.MainLoop()

    def number():
        return GLib.Variant("u", state["scheme"])

    def called(_connection, _sender, _path, _interface, method, arguments, invocation):
        if state["scheme"] == -2:
            return
        if method == "ReadAll":
            invocation.return_value(GLib.Variant("(a{sa{sv}})", ({SETTING[0]: {SETTING[1]: number()}},)))
        elif state["scheme"] < 0 or arguments.unpack() != SETTING:
            invocation.return_dbus_error("org.freedesktop.portal.Error.NotFound", "no such setting")
        else:  # the older Read wraps the value once more
            value = GLib.Variant("v", number()) if method == "Read" else number()
            invocation.return_value(GLib.Variant("(v)", (value,)))

    def asked(*_):
        return GLib.Variant("u", 2)

    bus = Gio.bus_get_sync(Gio.BusType.SESSION)
    bus.register_object(PATH, Gio.DBusNodeInfo.new_for_xml(DESCRIPTION).interfaces[0], called, asked, None)

    def told(*_):
        line = sys.stdin.readline()
        if not line:
            loop.quit()
            return False
        state["scheme"] = int(line)
        bus.emit_signal(None, PATH, INTERFACE, "SettingChanged", GLib.Variant("(ssv)", (*SETTING, number())))
        print("set", flush=True)
        return True

    GLib.io_add_watch(sys.stdin.fileno(), GLib.PRIORITY_DEFAULT, GLib.IO_IN | GLib.IO_HUP, told)
    Gio.bus_own_name_on_connection(bus, NAME, 0, lambda *_: print("ready", flush=True), None)
    loop.run()


if __name__ == "__main__":
    _serve(int(sys.argv[1]))
