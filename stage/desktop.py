"""A private desktop: X server, session bus, window manager, tray host, PipeWire and cameras.

Everything lives in one throw-away folder and under one mark, so that several desktops can run side by side and
nothing of one is left behind, however its owner ends.
"""

import json
import os
import pathlib
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import uuid

from stage.bus import WATCHER, Bus, write_bus_settings
from stage.processes import MARK, PATIENCE, Process, adopt_orphans, end_marked, wait_until
from stage.screen import Screen
from stage.testcam import Camera

ROOT = pathlib.Path(__file__).resolve().parent.parent
CONFIGURATION = ROOT / "stage" / "config"
SESSION_MANAGER = "org.xfce.SessionManager"
TRAY = "_NET_SYSTEM_TRAY_S0"
PANEL_MODES = {"top": (0, 6), "bottom": (0, 10), "left": (1, 6), "right": (1, 2)}  # upright or not, and its snapping


def write_wireplumber_settings(config):
    """WirePlumber's watch of Bluetooth ends it where no logind has ever run, as in a container. Its settings were
    Lua before 0.5."""
    for file, text in (("bluetooth.lua.d/51-off.lua", "bluez_monitor.enabled = false\n"),
                       ("wireplumber.conf.d/51-off.conf", "wireplumber.profiles = { main = { monitor.bluez = disabled } }\n")):
        place = config / "wireplumber" / file
        place.parent.mkdir(parents=True)
        place.write_text(text)


class Desktop:
    """`host` is "xfce4-panel", "trayer", "i3bar" or None, `manager` "openbox", "xfwm4", "i3" or None; `monitors` are pairs of a
    name and a geometry as `xrandr --setmonitor` takes it, the first one primary. `edge` is the host's: "top" or
    "bottom", under xfce4-panel also "left" or "right"."""

    def __init__(self, size="1280x800", manager="openbox", host="xfce4-panel", edge="top", monitors=(),
                 pipewire=True, accessible=False, programs=None):
        adopt_orphans()
        self.programs = pathlib.Path(programs or os.environ.get("VISTREL_BUILD", ROOT / "build" / "release")).resolve()
        self.mark = uuid.uuid4().hex
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="vistrel-"))
        self._guard = subprocess.Popen(
            [sys.executable, ROOT / "stage" / "processes.py", self.mark, self.folder], stdin=subprocess.PIPE,
            start_new_session=True)
        self._edge = edge
        self._host_name = host
        self._cameras = []
        self._processes = []
        self._pipewire = []
        self._xvfb = None
        self.manager = None  # the window manager's process
        self.host = None
        self.screen = None
        self.bus = None
        self.menu_calls = None  # tells when a tray host reads a menu
        try:
            self._make_environment(accessible)
            if pipewire:
                self.start_pipewire(wait=False)
            self._start_display(size, monitors)
            self._start_bus()
            self._start_manager(manager)
            if host:
                self.start_host()
            if pipewire:
                self.wait_pipewire()
        except BaseException:
            self.close()
            raise

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()

    def _make_environment(self, accessible):
        places = {"HOME": "home", "XDG_CONFIG_HOME": "config", "XDG_DATA_HOME": "data", "XDG_CACHE_HOME": "cache",
                  "XDG_STATE_HOME": "state", "XDG_RUNTIME_DIR": "run"}
        for folder in places.values():
            (self.folder / folder).mkdir(mode=0o700)
        write_wireplumber_settings(self.folder / "config")
        self.environment = {key: str(self.folder / folder) for key, folder in places.items()}
        self.environment |= {"PATH": os.environ["PATH"], "LANG": "C.UTF-8", MARK: self.mark,
                             "DBUS_SESSION_BUS_ADDRESS": f"unix:path={self.folder}/run/bus",
                             "XDG_CURRENT_DESKTOP": "XFCE"}
        self.environment |= {key: value for key, value in os.environ.items() if key.endswith("SAN_OPTIONS")}
        self.environment |= {"QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1"} if accessible else {"NO_AT_BRIDGE": "1"}

    def start(self, arguments, environment=None, **options):
        """Starts a program on this desktop."""
        process = Process(arguments, self.environment | (environment or {}), **options)
        self._processes.append(process)
        return process

    def run(self, *arguments):
        """Runs a program on this desktop to its end and gives back what it printed."""
        return subprocess.run([str(argument) for argument in arguments], env=self.environment, check=True,
                              capture_output=True, text=True, timeout=PATIENCE + 10).stdout

    def _start_display(self, size, monitors):
        read, write = os.pipe()
        arguments = ["Xvfb", "-displayfd", str(write), "-screen", "0", f"{size}x24", "-nolisten", "tcp", "-noreset"]
        with open(self.folder / "xvfb.log", "wb") as log:
            self._xvfb = subprocess.Popen(arguments, env=self.environment, pass_fds=[write], stdin=subprocess.DEVNULL,
                                          stdout=log, stderr=log, start_new_session=True)
        os.close(write)
        with os.fdopen(read) as numbers:
            self.environment["DISPLAY"] = ":" + numbers.readline().strip()
        self.screen = Screen(self)
        for index, (name, geometry) in enumerate(monitors):
            self.run("xrandr", "--setmonitor", name, geometry, "none" if index else "screen")

    def _start_bus(self):
        address = self.environment["DBUS_SESSION_BUS_ADDRESS"]
        settings = self.folder / "bus.conf"
        write_bus_settings(settings, self.folder / "data" / "dbus-1" / "services", address)
        daemon = self.start(["dbus-daemon", f"--config-file={settings}", "--nofork", "--nopidfile",
                             "--print-address=1"])
        daemon.wait_line("unix:")
        self.bus = Bus(address)
        self.menu_calls = self.start(["dbus-monitor", "--address", address,
                                      "type='method_call',interface='com.canonical.dbusmenu',member='GetLayout'",
                                      "type='method_call',interface='com.canonical.dbusmenu',member='AboutToShow'"])

    def _start_manager(self, manager):
        if manager is None:
            return
        commands = {"openbox": ["openbox", "--config-file", CONFIGURATION / "openbox.xml"],
                    "xfwm4": ["xfwm4", "--compositor=off"],
                    "i3": ["i3", "-c", CONFIGURATION / "i3.conf"]}
        self.manager = self.start(commands[manager])
        wait_until(lambda: self.screen.property("_NET_SUPPORTING_WM_CHECK"), f"{manager} on the display")

    def start_host(self, name=None, edge=None):
        """Starts the tray host and waits until it takes icons."""
        self._host_name, self._edge = name or self._host_name, edge or self._edge
        if self._host_name == "i3bar":  # started by its manager, which tells no work area
            wait_until(lambda: self.screen.owns_selection(TRAY), "i3bar")
            return
        if self._host_name == "trayer":
            self.host = self.start(["trayer", "--edge", self._edge, "--align", "right", "--widthtype", "request",
                                    "--height", "28", "--SetPartialStrut", "true"])
            wait_until(lambda: self.screen.owns_selection(TRAY), "trayer")
            return
        self._place_panel(*PANEL_MODES[self._edge])
        self.host = self.start(["xfce4-panel", "--disable-wm-check"])
        wait_until(lambda: self.bus.has_owner(WATCHER) and self.screen.owns_selection(TRAY), "xfce4-panel")

    def _place_panel(self, mode, snap):
        file = self.folder / "config" / "xfce4" / "xfconf" / "xfce-perchannel-xml" / "xfce4-panel.xml"
        facts = {"mode": str(mode), "position": f"p={snap};x=0;y=0"}
        if file.exists():  # and the daemon that has read it keeps it
            for key, value in facts.items():
                self.run("xfconf-query", "-c", "xfce4-panel", "-p", f"/panels/panel-1/{key}", "-s", value)
            return
        file.parent.mkdir(parents=True, exist_ok=True)
        text = (CONFIGURATION / "xfce4-panel.xml").read_text()
        for key, value in facts.items():
            text = text.replace(f"@{key.upper()}@", value)
        file.write_text(text)

    def stop_host(self):
        self.host.end()
        wait_until(lambda: not self.screen.owns_selection(TRAY), "the end of the tray host")

    def start_settings(self):
        """Starts the desktop's settings daemon, which tells programs of "xsettings" as they change."""
        self.start(["xfsettingsd", "--no-daemon", "--disable-wm-check"])
        wait_until(lambda: self.screen.owns_selection("_XSETTINGS_S0"), "xfsettingsd")

    def start_session_manager(self):
        """Starts xfce4-session; what is started from now on belongs to its session."""
        folder = self.folder / "config" / "xfce4" / "xfconf" / "xfce-perchannel-xml"
        folder.mkdir(parents=True, exist_ok=True)
        shutil.copy(CONFIGURATION / "xfce4-session.xml", folder)
        manager = self.start(["xfce4-session", "--disable-tcp"])
        wait_until(lambda: self.bus.has_owner(SESSION_MANAGER), "xfce4-session")
        self.environment["SESSION_MANAGER"] = f"local/{socket.gethostname()}:@/tmp/.ICE-unix/{manager.pid}"
        self.environment["ICEAUTHORITY"] = str(self.folder / "run" / "ICEauthority")
        return manager

    def end_session(self):
        """Logs out, as from the desktop's menu, and has the session saved."""
        self.bus.call(SESSION_MANAGER, "/org/xfce/SessionManager", "org.xfce.Session.Manager", "Logout", "(bb)",
                      False, True)

    def start_pipewire(self, wait=True):
        self._pipewire = [self.start(["pipewire"])]
        wait_until((self.folder / "run" / "pipewire-0").exists, "PipeWire's socket")
        if wait:
            self.wait_pipewire()

    def wait_pipewire(self):
        self._pipewire.append(self.start(["wireplumber"]))
        wait_until(lambda: any(node["info"]["props"].get("application.name") == "WirePlumber"
                               for node in self.graph("Client")), "WirePlumber")

    def stop_session_manager(self):
        """`wait_pipewire` starts it again."""
        self._pipewire.pop().end()

    def stop_pipewire(self, number=signal.SIGTERM):
        for process in reversed(self._pipewire):
            process.signal(number)
            process.wait()
        self._pipewire = []

    @property
    def server_pid(self):
        """The X server's process."""
        return self._xvfb.pid

    @property
    def pipewire(self):
        """The daemon's process."""
        return self._pipewire[0]

    @property
    def session_manager(self):
        """PipeWire's session manager's process."""
        return self._pipewire[1]

    def graph(self, *kinds):
        """The objects of those kinds on the PipeWire graph: "Node", "Link", "Client"."""
        text, objects = self.run("pw-dump").strip(), {}
        while text:  # what changes while it is being told follows in a list of its own
            entries, end = json.JSONDecoder().raw_decode(text)
            objects.update((entry["id"], entry) for entry in entries)
            text = text[end:].lstrip()
        return [entry for entry in objects.values()
                if entry.get("type", "").rpartition(":")[2] in kinds and entry.get("info")]

    def readers(self, *cameras):
        """How many streams take pictures from the cameras."""
        graph = self.graph("Node", "Link")
        names = [camera.node for camera in cameras]
        nodes = [entry["id"] for entry in graph if entry["info"]["props"].get("node.name") in names]
        return sum(entry["info"].get("output-node-id") in nodes for entry in graph)

    def camera(self, **options):
        camera = Camera(self, **options)
        self._cameras.append(camera)
        return camera

    def unplug_all(self):
        for camera in self._cameras:
            camera.close()
        self._cameras = []

    def close(self):
        if self.bus:
            self.bus.close()
        end_marked(self.mark)
        for process in self._processes:
            process.end()
        if self._xvfb:
            self._xvfb.wait()
        if self._guard.poll() is None:
            self._guard.stdin.close()
            self._guard.wait(10)
        shutil.rmtree(self.folder, ignore_errors=True)
