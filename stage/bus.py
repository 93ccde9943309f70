"""The session bus of a private desktop."""

import shutil

import gi

gi.require_version("Gio", "2.0")
from gi.repository import Gio, GLib  # noqa: E402

WATCHER = "org.kde.StatusNotifierWatcher"
# What tray host, accessibility and settings are started by. Nothing else that the machine has: its portal would answer
# in place of the tests' own.
SERVICES = ("ca.desrt.dconf", "org.a11y.Bus", "org.xfce.Xfconf")
BUS = """<busconfig>
  <type>session</type>
  <listen>{address}</listen>
  <auth>EXTERNAL</auth>
  <servicedir>{services}</servicedir>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
"""


class Bus:
    """A connection to the session bus of a private desktop."""

    def __init__(self, address):
        flags = Gio.DBusConnectionFlags
        self._connection = Gio.DBusConnection.new_for_address_sync(
            address, flags.AUTHENTICATION_CLIENT | flags.MESSAGE_BUS_CONNECTION, None, None)
        self._connection.set_exit_on_close(False)

    def call(self, name, path, interface, method, signature="()", *arguments):
        return self._connection.call_sync(
            name, path, interface, method, GLib.Variant(signature, arguments), None, 0, 5000, None).unpack()

    def send(self, name, path, interface, method, signature="()", *arguments):
        """A call whose answer nobody waits for."""
        self._connection.call(name, path, interface, method, GLib.Variant(signature, arguments), None, 0, 5000, None)

    def property(self, name, path, interface, key):
        return self.call(name, path, "org.freedesktop.DBus.Properties", "Get", "(ss)", interface, key)[0]

    def has_owner(self, name):
        bus = "org.freedesktop.DBus"
        return self.call(bus, "/org/freedesktop/DBus", bus, "NameHasOwner", "(s)", name)[0]

    def close(self):
        self._connection.close_sync(None)


def write_bus_settings(file, services, address):
    """A session bus that starts only what stands in the folder `services`, which is made."""
    services.mkdir(parents=True)
    for name in SERVICES:
        shutil.copy(f"/usr/share/dbus-1/services/{name}.service", services)
    file.write_text(BUS.format(address=address, services=services))
