"""A USB camera in the guest machine."""

import pathlib
import re

from stage.processes import NeverCame, wait_until

DEVICES = pathlib.Path("/sys/class/video4linux")
OFFERS = ("mjpeg:1280x720@30", "mjpeg:640x480@30", "yuy2:320x240@30")
NODES = 2  # UVC has one for pictures, index 0, and one for metadata


class UsbCamera:
    """Speaks with the `vistrel-usbcam` program."""

    def __init__(self, desktop, name="Usb Camera", port=0, serial="S1", offers=OFFERS):
        self._desktop = desktop
        self._port = port
        self._arguments = [desktop.programs / "stage" / "vistrel-usbcam", port, serial, "--name", name]
        for offer in offers:
            self._arguments += ["--offer", offer]
        self.plug()

    def plug(self):
        self._process = self._desktop.start(self._arguments)
        self._process.wait_line("READY")
        try:
            wait_until(lambda: len(self._nodes()) == NODES, "the device nodes")
        except NeverCame as failure:
            kernel = self._desktop.run("dmesg").splitlines()[-30:]
            raise NeverCame("\n".join([str(failure), *self._process.errors, *kernel])) from None
        self._desktop.run("udevadm", "settle")
        self.path = next(f"/dev/{folder.name}" for folder in self._nodes()
                         if (folder / "index").read_text().strip() == "0")

    def _nodes(self):
        """What the kernel made of the device at the camera's port."""
        place = re.compile(rf"/vhci_hcd\.0/usb\d+/\d+-{self._port + 1}/")
        return [folder for folder in DEVICES.glob("video*") if place.search(str(folder.resolve()))]

    @property
    def number(self):
        return int(self.path.removeprefix("/dev/video"))

    def tell(self, command):
        since = len(self._process.lines)
        self._process.write(command)
        self._process.wait_line(f"OK {command}", since)

    def spoil(self, fault):
        """Until a frame with the fault has been sent."""
        since = len(self._process.lines)
        self.tell(fault)
        self._process.wait_line("FAULTY", since)

    def unplug(self):
        self._process.write("die")
        self._process.wait()
        wait_until(lambda: not self._nodes(), f"the end of {self.path}")

    def close(self):
        if self._process.status is None:
            self.unplug()
        self._process.end()
