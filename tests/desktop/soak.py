"""Openings without end: ./soak [ROUNDS] [SEED]. What happens in a round is drawn by the seed, which is told first."""

import random
import re
import sys
import time

from stage.desktop import Desktop
from stage.portal import Portal
from stage.processes import wait_until
from stage.program import Program, centre
from tests.desktop.harness import REFRESHED, in_use
from tests.desktop.settings import ROWS

OFFERS = {"one": ["mjpeg:1280x720@60"], "two": ["yuy2:640x480@60"]}  # quick, as the rounds are to be
WARM_UP = 100  # until each act was there once
REPORT = 100
# A library may begin to keep a thread of its pool, which has a descriptor, in any round; what leaks is lost again and again.
GROWTH = {"KiB": 4096, "descriptors": 1, "threads": 1, "X resources": 0, "PipeWire objects": 0, "streams": 0,
          "server KiB": 16384, "server descriptors": 2}


class Soak:
    def __init__(self, seed):
        self.chance = random.Random(seed)
        self.desktop = Desktop()
        self.screen = self.desktop.screen
        self.scheme = 1
        self.portal = Portal(self.desktop, self.scheme)
        self.plug()
        self.vistrel = Program(self.desktop, {})
        self.icon = centre(self.vistrel.icon())
        self.acts = {self.nothing: 60, self.tear_off: 12, self.switch_camera: 10, self.turn_dark: 6, self.open_preferences: 5,
                     self.restart_panel: 3, self.restart_pipewire: 2, self.destroy_window: 2}
        self.counts = dict.fromkeys((act.__name__ for act in self.acts), 0)

    def plug(self):
        self.cameras = [self.desktop.camera(name=name, node=name, offers=offers) for name, offers in OFFERS.items()]

    def round(self):
        act = self.chance.choices(list(self.acts), self.acts.values())[0]
        self.counts[act.__name__] += 1
        is_inside = act in (self.nothing, self.tear_off, self.turn_dark, self.destroy_window)
        if not is_inside:
            act()
        self.look(act if is_inside else self.nothing)

    def look(self, act):
        self.screen.click(self.icon)
        self.screen.live_picture()
        act()
        if act != self.destroy_window:
            self.screen.click(self.icon)
        self.screen.wait_no_picture()
        wait_until(lambda: self.streams() == 0, "the end of the stream")

    def streams(self):
        return self.desktop.readers(*self.cameras)

    def nothing(self):
        pass

    def tear_off(self):
        start = centre(self.screen.live_picture()["place"])
        since = len(self.vistrel.lines)
        self.screen.drag(start, (start[0] - 300, start[1] + 200))
        self.vistrel.wait_line("Detached", since)

    def switch_camera(self):
        self.choose(self.chance.randrange(len(OFFERS)))

    def choose(self, index):
        self.vistrel.open_menu()
        self.vistrel.choose(index)
        self.vistrel.wait_no_menu()

    def turn_dark(self):
        since = len(self.vistrel.lines)
        self.scheme = 3 - self.scheme
        self.portal.set_scheme(self.scheme)
        self.vistrel.wait_line("Switched modes", since)

    def open_preferences(self):
        """Opens the preferences and closes them again: windows of another kind come and go."""
        self.vistrel.open_menu()
        rows = self.vistrel.menu_rows()
        self.screen.click(centre(rows[ROWS["Preferences"]]))
        self.vistrel.wait_no_menu()
        window = wait_until(lambda: self.vistrel.windows(name="Preferences"), "the preferences")[0]
        wait_until(lambda: self.screen.focus()["id"] == window["id"], "the focus on the preferences")
        x, y, width, _height = window["place"]
        self.screen.click((x + width - 9, y - 10))
        wait_until(lambda: not self.vistrel.windows(), "the end of the preferences")

    def restart_panel(self):
        self.desktop.stop_host()
        calls = len(self.desktop.menu_calls.lines)
        self.desktop.start_host()
        self.icon = centre(self.vistrel.icon())
        self.vistrel.wait_menu_known(calls)

    def restart_pipewire(self):
        self.desktop.unplug_all()
        self.desktop.stop_pipewire()
        self.desktop.start_pipewire()
        self.plug()
        wait_until(self.finds_both, "both cameras in the program's list")

    def finds_both(self):
        """An opening lists them, and one that is too early has no picture."""
        since = len(self.vistrel.lines)
        self.screen.click(self.icon)
        listed = self.vistrel.lines[self.vistrel.wait_line(REFRESHED, since)]
        wait_until(self.vistrel.windows, "the window")
        self.screen.click(self.icon)
        wait_until(lambda: not self.vistrel.windows(), "the end of the window")
        return all(f": {name} [" in listed for name in OFFERS)

    def destroy_window(self):
        self.screen.destroy(self.vistrel.windows()[0])

    def measure(self):
        """What is in use after a plain opening: with whatever else happened in the round, it may be in between."""
        self.look(self.nothing)
        ours, server = in_use(self.vistrel.pid), in_use(self.desktop.server_pid)
        return {"KiB": ours["memory"], "descriptors": ours["descriptors"], "threads": ours["threads"],
                "X resources": self.server_resources(), "PipeWire objects": self.pipewire_objects(),
                "streams": self.streams(), "server KiB": server["memory"], "server descriptors": server["descriptors"]}

    def server_resources(self):
        """The windows, pixmaps, contexts and whatever else the X server keeps for Vistrel's windows."""
        clients = re.split(r"^\d+ - ", self.desktop.run("xrestop", "-b", "-m", "1"), flags=re.M)[1:]
        ours = [client for client in clients if "Vistrel" in client.splitlines()[0]]
        assert ours, clients
        return sum(int(count) for client in ours
                   for count in re.findall(r"^\s*(?!res_|.* bytes)[\w ]+: (\d+)", client, re.M))

    def pipewire_objects(self):
        """What PipeWire has of Vistrel: its client, and the nodes, ports and links that belong to it."""
        clients = [client["id"] for client in self.desktop.graph("Client")
                   if client["info"]["props"].get("application.process.id") == self.vistrel.pid]
        assert clients
        return len(clients) + sum(entry["info"]["props"].get("client.id") in clients
                                  for entry in self.desktop.graph("Node", "Port", "Link"))

    def close(self):
        self.portal.close()
        self.desktop.close()


def main(rounds=200, seed=None):
    seed = int(time.time()) if seed is None else int(seed)
    print(f"{rounds} rounds, seed {seed}", flush=True)
    soak = Soak(seed)
    try:
        for number in range(WARM_UP + int(rounds) + 1):
            if number == WARM_UP:
                before = soak.measure()
            if number >= WARM_UP and (number - WARM_UP) % REPORT == 0:
                print(number - WARM_UP, soak.measure(), flush=True)
            soak.round()
        after = soak.measure()
        status, errors = soak.vistrel.terminate(), soak.vistrel.process.errors
    finally:
        soak.close()
    grown = {key: (before[key], after[key]) for key, most in GROWTH.items() if after[key] - before[key] > most}
    print("acts", soak.counts)
    print("at the end", after, "status", status, "said", errors)
    print("grown", grown or "nothing")
    return 1 if grown or status or errors else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
