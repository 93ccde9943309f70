"""A pointer and a keyboard for a Wayland compositor that offers virtual ones, spoken over its socket."""

import array
import socket
import struct
import tempfile
import time

LEFT_BUTTON = 0x110  # the kernel's code; the secondary one and the middle one follow
KEYS = {"Escape": 1}  # the kernel's codes
KEYMAP = b"""xkb_keymap {
  xkb_keycodes { include "evdev" };
  xkb_types { include "complete" };
  xkb_compat { include "complete" };
  xkb_symbols { include "pc+us+inet(evdev)" };
};\0"""
DISPLAY, REGISTRY = 1, 2  # objects; numbers after the names of interfaces below are those of requests


def text(value):
    raw = value.encode() + b"\0"
    return struct.pack("=I", len(raw)) + raw + b"\0" * (-len(raw) % 4)


class Seat:
    """`size` is the screen's, in points."""

    def __init__(self, path, size):
        self._size = size
        self._socket = socket.socket(socket.AF_UNIX)
        self._socket.settimeout(20)
        self._socket.connect(path)
        self._last = DISPLAY
        self._globals = {}
        self._send(DISPLAY, 1, struct.pack("=I", self._new()))  # wl_display.get_registry
        self._sync()
        seat = self._bind("wl_seat")
        pointers, keyboards = self._bind("zwlr_virtual_pointer_manager_v1"), self._bind("zwp_virtual_keyboard_manager_v1")
        self._pointer, self._keyboard = self._new(), self._new()
        self._send(pointers, 0, struct.pack("=II", seat, self._pointer))
        self._send(keyboards, 0, struct.pack("=II", seat, self._keyboard))
        with tempfile.TemporaryFile() as file:
            file.write(KEYMAP)
            file.flush()
            self._send(self._keyboard, 0, struct.pack("=II", 1, len(KEYMAP)), [file.fileno()])
            self._sync()

    def close(self):
        self._socket.close()

    def move(self, place):
        """In two steps: as the pointer enters a window of X11, XWayland adds the way there to its place, and a jump is
        a long way."""
        x, y = (int(number) for number in place)
        for step in (1, 0):
            self._send(self._pointer, 1, struct.pack("=IIIII", self._now(), x + step, y, *self._size))
            self._end_frame()

    def button(self, is_down, button=1):
        code = LEFT_BUTTON + {1: 0, 3: 1, 2: 2}[button]
        self._send(self._pointer, 2, struct.pack("=III", self._now(), code, is_down))
        self._end_frame()

    def click(self, place, button=1):
        self.move(place)
        self.button(True, button)
        self.button(False, button)
        self._sync()

    def key(self, name):
        for is_down in (True, False):
            self._press(name, is_down)
        self._sync()

    def _press(self, name, is_down):
        self._send(self._keyboard, 1, struct.pack("=III", self._now(), KEYS[name], is_down))

    def _end_frame(self):
        self._send(self._pointer, 4)
        self._sync()

    def _now(self):
        return int(time.monotonic() * 1000) & 0xFFFFFFFF

    def _new(self):
        self._last += 1
        return self._last

    def _send(self, target, request, body=b"", descriptors=()):
        message = struct.pack("=IHH", target, request, 8 + len(body)) + body
        rights = [(socket.SOL_SOCKET, socket.SCM_RIGHTS, array.array("i", descriptors))] if descriptors else []
        self._socket.sendmsg([message], rights)

    def _bind(self, interface):
        target = self._new()
        body = struct.pack("=I", self._globals[interface]) + text(interface) + struct.pack("=II", 1, target)
        self._send(REGISTRY, 0, body)
        return target

    def _sync(self):
        """Until the compositor has taken everything; a request that it refuses is an error."""
        callback = self._new()
        self._send(DISPLAY, 0, struct.pack("=I", callback))
        while not self._read_until(callback):
            pass

    def _read_until(self, callback):
        target, event, size = struct.unpack("=IHH", self._receive(8))[0:3]
        body = self._receive(size - 8)
        if (target, event) == (DISPLAY, 0):
            raise AssertionError(f"the compositor refuses: {body!r}")
        if (target, event) == (REGISTRY, 0):
            number, length = struct.unpack("=II", body[:8])
            self._globals[body[8:8 + length - 1].decode()] = number
        return target == callback

    def _receive(self, count):
        data = b""
        while len(data) < count:
            piece = self._socket.recv(count - len(data))
            if not piece:
                raise AssertionError("the compositor is gone")
            data += piece
        return data
