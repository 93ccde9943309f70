"""What `scripts/check-cameras` does: lists what the kernel and PipeWire say of each camera and measures the mirror on it, for
reports of faults. Pictures are looked at, never kept."""

import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import time

from stage.desktop import Desktop
from stage.processes import NeverCame, wait_until
from stage.program import Program

DEVICES = pathlib.Path("/sys/class/video4linux")
RUNTIME = os.environ.get("XDG_RUNTIME_DIR", f"/run/user/{os.getuid()}")
SECONDS = 5.0
TOLD = ("node.name", "node.description", "api.v4l2.path", "api.v4l2.cap.card", "api.v4l2.cap.driver", "device.api",
        "object.path")
STRIPE = 24  # lines of the picture that are looked at
REFRESHED = "📷 Refreshed Devices"
LISTED = re.compile(r"<AVCaptureDevice: (.*?) \[((?:v4l2|pipewire):[^\]]*)\]>")
THROUGH_PIPEWIRE, BY_V4L2 = "through PipeWire", "by V4L2"


def say(title, text):
    print(f"== {title}\n{text.rstrip()}\n", flush=True)


def output(*command, environment=None):
    """What a command says, or why it says nothing."""
    if not shutil.which(command[0]):
        return f"{command[0]} is not installed" + (", it is in v4l-utils" if command[0] == "v4l2-ctl" else "")
    try:
        result = subprocess.run(command, capture_output=True, text=True, timeout=20, env=environment)
    except subprocess.TimeoutExpired:
        return f"{command[0]} did not end"
    return result.stdout + result.stderr


def node_paths():
    """The device nodes that cameras have their pictures from."""
    return {f"/dev/{folder.name}" for folder in DEVICES.glob("video*") if (folder / "index").read_text().strip() == "0"}


def tell_kernel():
    folders = sorted(DEVICES.glob("video*"), key=lambda folder: int(folder.name.removeprefix("video")))
    say("kernel", os.uname().release + "\n" + ("\n".join(
        f"/dev/{folder.name}: {(folder / 'name').read_text().strip()}, index {(folder / 'index').read_text().strip()}, "
        f"{'may' if os.access(f'/dev/{folder.name}', os.R_OK | os.W_OK) else 'must not'} be opened by this user"
        for folder in folders) or "no camera"))
    for folder in folders:
        say(f"/dev/{folder.name}", output("v4l2-ctl", "-d", f"/dev/{folder.name}", "--info", "--list-formats-ext"))


def tell_pipewire():
    """The device nodes of the cameras by the identifiers that Vistrel gives them; None where no daemon answers."""
    environment = os.environ | {"XDG_RUNTIME_DIR": RUNTIME}
    say("PipeWire", output("pipewire", "--version"))
    try:
        entries = json.loads(output("pw-dump", environment=environment))
    except json.JSONDecodeError:
        say("PipeWire's cameras", "no daemon answers")
        return None
    cameras = [entry for entry in entries
               if (entry.get("info") or {}).get("props", {}).get("media.class") == "Video/Source"]
    for camera in cameras:
        properties = camera["info"]["props"]
        formats = camera["info"].get("params", {}).get("EnumFormat", [])
        lines = [f"{key}: {properties[key]}" for key in TOLD if key in properties]
        say(f"PipeWire's node {camera['id']}", "\n".join(lines + [json.dumps(entry) for entry in formats]))
    if not cameras:
        say("PipeWire's cameras", "none")
    properties = [camera["info"]["props"] for camera in cameras]
    return {f"pipewire:{entry['object.serial']}": entry.get("api.v4l2.path") for entry in properties}


class Mirror:
    """Vistrel on a private screen, with the user's own cameras. It takes the camera that bears the name, and where none is
    given the first of its list."""

    def __init__(self, desktop, environment, name=None):
        self._desktop = desktop
        self._program = Program(desktop, {"defaultCameraPreference": name} if name else {}, environment)

    def listed(self):
        """The names and the identifiers of the cameras, in the list's order."""
        return LISTED.findall(self._program.lines[self._program.wait_line(REFRESHED)])

    def stripe(self):
        window = next(iter(self._program.windows()), None)
        if not window:
            return None
        x, y, width, height = window["place"]
        return self._desktop.screen.ask("pixels", x + 8, y + height // 2, width - 16, STRIPE)["pixels"]

    def measure(self):
        """The time to the first picture, in seconds, and pictures a second; None where none came."""
        start = time.monotonic()
        self._program.click()
        wait_until(self.stripe, "the mirror")
        try:
            wait_until(lambda: len(set(self.stripe() or ())) > 1, "a picture")
        except NeverCame:
            return None
        first, last, changes = time.monotonic() - start, self.stripe(), 0
        begin = time.monotonic()
        while time.monotonic() < begin + SECONDS:
            now = self.stripe()
            changes += now != last
            last = now
        return first, changes / (time.monotonic() - begin)

    def end(self):
        """What the program said."""
        self._program.process.end()
        return self._program.lines + self._program.process.errors


def measure(desktop, environment, name=None):
    mirror = Mirror(desktop, environment, name)
    try:
        seen = mirror.measure()
    finally:
        lines = mirror.end()
    result = "no picture" if seen is None else f"first picture after {seen[0]:.2f} s, then {seen[1]:.1f} a second"
    return "\n".join([result, *lines])


def measure_listed(way, environment, nodes):
    """Each camera of Vistrel's list, which is the only one that tells the way to it; `nodes` are PipeWire's."""
    with Desktop(pipewire=False) as desktop:
        mirror = Mirror(desktop, environment)
        try:
            cameras = mirror.listed()
        finally:
            mirror.end()
        paths = [nodes.get(identifier) or identifier.removeprefix("v4l2:").split("#")[0] for _, identifier in cameras]
        for path in sorted(node_paths() - set(paths)):
            say(f"the mirror on {path}, {way}", "not listed")
        if not cameras:
            say(f"the mirror {way}", "Vistrel lists no camera")
        names = [name for name, _ in cameras]
        for index, ((name, identifier), path) in enumerate(zip(cameras, paths)):
            actual = THROUGH_PIPEWIRE if identifier.startswith("pipewire:") else BY_V4L2
            title = f"the mirror on {name} at {path}, {actual}"
            if actual != way:
                say(title, "not measured here: PipeWire lists no camera")
            elif index and name in names[index + 1:]:
                say(title, "not measured: of cameras of one name only the first and the last of the list can be had")
            else:
                try:
                    say(title, measure(desktop, environment, name if index else None))
                except NeverCame as failure:
                    say(title, f"could not be measured: {failure}")


def main():
    tell_kernel()
    nodes = tell_pipewire()
    if nodes is not None:
        measure_listed(THROUGH_PIPEWIRE, {"PIPEWIRE_RUNTIME_DIR": RUNTIME}, nodes)
    measure_listed(BY_V4L2, {}, {})
    return 0


if __name__ == "__main__":
    sys.exit(main())
