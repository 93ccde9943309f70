"""The measurements. Each gives a dictionary of numbers: times in seconds, ages in milliseconds, memory in megabytes."""

import json
import time

from gi.repository import GLib

from benchmarks import processes
from benchmarks.cases import FRAMES
from benchmarks.viewers import appear, disappear
from stage.bus import WATCHER

MENU = "com.canonical.dbusmenu"

SETTLING = 0.6  # seconds from the first pictures until the costs of starting are over
REST = 0.3  # seconds between an opening, a closing and what follows
# Seconds after which the start is over: the session manager has told everyone that the camera is idle, and the time
# limit of 25 seconds of GLib's last D-Bus call, with which a thread of dconf's may sleep after the answer, has run out.
AFTERMATH = 30


class Stopwatch:
    """How much of one processor each of the processes takes."""

    def __init__(self, *pids):
        self._pids = pids
        self._start = time.monotonic()
        self._before = [processes.processor_seconds(pid) for pid in pids]

    def shares(self):
        seconds = time.monotonic() - self._start
        return [(processes.processor_seconds(pid) - before) / seconds for pid, before in zip(self._pids, self._before)]


def steady(desktop, camera, viewer, seconds):
    """Showing the camera. The processor time is taken while nobody reads the screen, the picture right after it."""
    place = appear(desktop, viewer)
    time.sleep(SETTLING)
    watch = Stopwatch(viewer.pid, desktop.server_pid)
    time.sleep(seconds)
    cpu, server = watch.shares()
    values = {"cpu": cpu, "server": server, **watched(desktop, place, 0.8 * seconds), **processes.memory(viewer.pid)}
    values["cost"] = values["cpu"] * FRAMES / values["fps"]
    values["close"] = disappear(camera, viewer)
    return values


def watched(desktop, place, seconds):
    seen = desktop.screen.ask("watch", 0, round(1000 * seconds), *place)["picture"]
    return {"fps": seen["fps"], "lost": seen["skipped"], "age": seen["age"], "age95": seen["age95"],
            "width": place[2], "height": place[3], "mirrored": int(seen["mirrored"])}


def lost(desktop, camera, viewer, seconds):
    """Frames that never came on the screen."""
    place = appear(desktop, viewer)
    time.sleep(SETTLING)
    values = watched(desktop, place, seconds)
    disappear(camera, viewer)
    return values


def opening(desktop, camera, viewer, place):
    """From the click, or a peer's start, to the first picture where it was seen to come before; and to a closed
    camera again."""
    start = time.monotonic()
    viewer.show()
    first = desktop.screen.ask("await", 10000, *place)["seconds"]
    if first is None:
        raise TimeoutError(f"no picture at {place}")
    time.sleep(REST)
    closing = disappear(camera, viewer)
    time.sleep(REST)
    return {"first": first - start, "close": closing}


def second_start(desktop):
    """A start that hands over to the program that runs, to its exit. It leaves the mirror open."""
    start = time.monotonic()
    desktop.run(desktop.programs / "vistrel")
    return {"again": time.monotonic() - start}


def floor(desktop, camera, seconds):
    """A bare reader of the same camera: its first frame, the age of frames when they reach it, and what it costs to
    decode them at one eighth where they are JPEG."""
    program = desktop.programs / "benchmarks" / "vistrel_stream_floor"
    return json.loads(desktop.run(program, camera.node, seconds))


def hidden(desktop, camera, vistrel, seconds):
    """After the mirror was shown once: what the program does while nobody looks."""
    appear(desktop, vistrel)
    disappear(camera, vistrel)
    time.sleep(AFTERMATH)
    pid = vistrel.pid
    switches, cpu, timers = processes.switches(pid), processes.processor_seconds(pid), []
    end = time.monotonic() + seconds
    while time.monotonic() < end:
        time.sleep(1)
        timers.append(processes.timers(pid))
    return {"wake-ups": processes.wake_ups(switches, processes.switches(pid)), "cpu": processes.processor_seconds(pid) - cpu,
            "timers": None if None in timers else max(map(len, timers)), **processes.memory(pid)}


def menu(desktop, vistrel):
    """A right click on the icon: until the tray host shows the menu, and Vistrel's processor time until it has gone
    again."""
    before, start = processes.processor_seconds(vistrel.pid), time.monotonic()
    vistrel.program.click(button=3)
    vistrel.program.menu()
    shown = time.monotonic() - start
    desktop.screen.key("Escape")
    vistrel.program.wait_no_menu()
    return {"shown": shown, "cpu": processes.processor_seconds(vistrel.pid) - before}


def menu_build(desktop, vistrel):
    """What a tray host waits for: from its wish to show the menu until the menu is built and told."""
    item = desktop.bus.property(WATCHER, "/StatusNotifierWatcher", WATCHER, "RegisteredStatusNotifierItems")[0]
    name, path = item.split("/", 1)
    place = desktop.bus.property(name, "/" + path, "org.kde.StatusNotifierItem", "Menu")
    start = time.monotonic()
    desktop.bus.call(name, place, MENU, "AboutToShow", "(i)", 0)
    built = time.monotonic() - start
    desktop.bus.call(name, place, MENU, "Event", "(isvu)", 0, "closed", GLib.Variant("s", ""), 0)
    return {"build": built}
