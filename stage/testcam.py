"""A test camera on a private desktop."""


class Camera:
    """Speaks with the `vistrel-testcam` program."""

    def __init__(self, desktop, name="Test Camera", node="testcam", offers=(), options=()):
        self.node = node
        program = desktop.programs / "stage" / "vistrel-testcam"
        arguments = [program, "--obey", "--name", name, "--node", node, *options]
        for offer in offers:
            arguments += ["--offer", offer]
        self._process = desktop.start(arguments)
        self._process.wait_line("READY")

    @property
    def pid(self):
        return self._process.pid

    @property
    def lines(self):
        return self._process.lines

    def tell(self, command):
        since = len(self.lines)
        self._process.write(command)
        self._process.wait_line(f"OK {command}", since)

    def wait_line(self, text, since=0):
        return self._process.wait_line(text, since)

    def unplug(self):
        """Ends at once, as when the cable is pulled."""
        self._process.write("die")
        self._process.wait()

    def close(self):
        self._process.end()
