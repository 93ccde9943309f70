"""A desktop portal that knows two settings of appearance. Runs as a program of its own; `Portal` speaks with it, a
setting and its number a line: for the color scheme 0 no preference, 1 dark, 2 light; for the contrast 0 usual, 1 more;
for both -1 no such setting, -2 no answer."""

import sys

NAME = "org.freedesktop.portal.Desktop"
PATH = "/org/freedesktop/portal/desktop"
INTERFACE = "org.freedesktop.portal.Settings"
NAMESPACE, SCHEME, CONTRAST = "org.freedesktop.appearance", "color-scheme", "contrast"
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
        self._set(SCHEME, scheme)

    def set_contrast(self, contrast):
        self._set(CONTRAST, contrast)

    def _set(self, key, number):
        since = len(self._process.lines)
        self._process.write(f"{key} {number}")
        self._process.wait_line("set", since)

    def close(self):
        self._process.end()


def _serve(scheme):
    import gi
    gi.require_version("Gio", "2.0")
    from gi.repository import Gio, GLib

    state = {SCHEME: scheme, CONTRAST: scheme if scheme < 0 else 0}
    loop = GLib.MainLoop()

    def number(key):
        return GLib.Variant("u", state[key])

    def called(_connection, _sender, _path, _interface, method, arguments, invocation):
        if -2 in state.values():
            return
        known = {key: number(key) for key in state if state[key] >= 0}
        if method == "ReadAll":
            invocation.return_value(GLib.Variant("(a{sa{sv}})", ({NAMESPACE: known},)))
            return
        space, key = arguments.unpack()
        if space != NAMESPACE or key not in known:
            invocation.return_dbus_error("org.freedesktop.portal.Error.NotFound", "no such setting")
        else:  # the older Read wraps the value once more
            value = GLib.Variant("v", known[key]) if method == "Read" else known[key]
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
        key, value = line.split()
        state[key] = int(value)
        bus.emit_signal(None, PATH, INTERFACE, "SettingChanged", GLib.Variant("(ssv)", (NAMESPACE, key, number(key))))
        print("set", flush=True)
        return True

    GLib.io_add_watch(sys.stdin.fileno(), GLib.PRIORITY_DEFAULT, GLib.IO_IN | GLib.IO_HUP, told)
    Gio.bus_own_name_on_connection(bus, NAME, 0, lambda *_: print("ready", flush=True), None)
    loop.run()


if __name__ == "__main__":
    _serve(int(sys.argv[1]))
