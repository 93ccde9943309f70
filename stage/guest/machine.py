"""A small virtual machine with Debian's kernel, on the host's own files: what is built here runs there, on the drivers
that a user's camera has. It is emulated, so only what is seen in it counts, never how long it took."""

import ctypes
import os
import pathlib
import shlex
import shutil
import signal
import subprocess
import sys
import tempfile
import time

from stage.desktop import ROOT

HERE = ROOT / "stage" / "guest"
BUILD = ROOT / "build" / "guest"
KERNEL = BUILD / "kernel"
PICTURES = ROOT / "build" / "desktop"
MEMORY = 2048  # MiB
PATIENCE = 3600.0  # seconds, twice what a whole run takes on a busy machine
# On a busy machine the kernel would take the late timer of an emulated one for a broken one; a camera that is suspended
# would, as it wakes, have the other one plugged in anew.
BOOT = ("console=ttyS0 quiet panic=-1 mitigations=off nokaslr random.trust_cpu=on tsc=nowatchdog no_timer_check "
        "usbcore.autosuspend=-1")
KEPT = ("VISTREL_BUILD", "VISTREL_PATIENCE")


class GuestFailed(Exception):
    """The machine ended without the command's status; the text says why, as far as it is known."""


def die_with_parent():
    pr_set_pdeathsig = 1
    ctypes.CDLL(None).prctl(pr_set_pdeathsig, signal.SIGKILL, 0, 0, 0)


class Machine:
    def __init__(self, memory=MEMORY):
        self._memory = memory
        self._shared = pathlib.Path(tempfile.mkdtemp(prefix="run.", dir=BUILD))
        self._shared.chmod(0o755)

    def run(self, arguments, patience=PATIENCE):
        """Boots, runs the command in the present folder, passes its output on and gives its exit status."""
        self._write_settings(arguments)
        machine = subprocess.Popen(self._command(), stdin=subprocess.DEVNULL, preexec_fn=die_with_parent)
        try:
            self._follow(machine, time.monotonic() + patience)
        finally:
            machine.kill()
            machine.wait()
        return self._end()

    def _write_settings(self, arguments):
        for name in ("output", "console"):
            (self._shared / name).touch()
        (self._shared / "pictures").mkdir()
        shutil.copy(HERE / "init", self._shared)
        kept = [f"export {key}={shlex.quote(value)}\n" for key, value in os.environ.items() if key in KEPT]
        (self._shared / "command").write_text("".join(kept) + "exec " + shlex.join(map(str, arguments)) + "\n")
        settings = {"KERNEL": KERNEL.resolve(), "FOLDER": pathlib.Path.cwd(), "PICTURES": PICTURES}
        (self._shared / "settings").write_text("".join(f"{key}={shlex.quote(str(value))}\n"
                                                       for key, value in settings.items()))

    def _command(self):
        files = "security_model=none,multidevs=remap"
        return ["qemu-system-x86_64", "-machine", "pc,hpet=off", "-accel", "tcg,thread=multi,tb-size=512",
                "-cpu", "Nehalem", "-smp", "2", "-m", str(self._memory), "-nodefaults", "-display", "none",
                "-no-reboot",
                "-kernel", next(KERNEL.glob("boot/vmlinuz-*")), "-initrd", KERNEL / "first.gz", "-append", BOOT,
                "-serial", f"file:{self._shared / 'console'}", "-device", "virtio-rng-pci",
                "-virtfs", f"local,path=/,mount_tag=root,readonly=on,{files}",
                "-virtfs", f"local,path={self._shared},mount_tag=shared,{files}"]

    def _follow(self, machine, deadline):
        with open(self._shared / "output", "rb") as output:
            while True:
                is_over = machine.poll() is not None
                sys.stdout.buffer.write(output.read())
                sys.stdout.buffer.flush()
                if is_over:
                    return
                if time.monotonic() > deadline:
                    raise GuestFailed(f"the guest did not end in time; its console: {self._shared / 'console'}")
                time.sleep(0.1)

    def _end(self):
        status = self._shared / "status"
        if not status.exists():
            tail = "\n".join((self._shared / "console").read_text(errors="replace").splitlines()[-30:])
            raise GuestFailed(f"the guest ended without a status; its console, in {self._shared}, ended so:\n{tail}")
        PICTURES.mkdir(parents=True, exist_ok=True)
        for picture in (self._shared / "pictures").iterdir():
            shutil.copy(picture, PICTURES)
        result, booted = int(status.read_text()), (self._shared / "booted").read_text().strip()
        print(f"[the guest was up {booted} s after its start; status {result}]", file=sys.stderr)
        shutil.rmtree(self._shared)
        return result
