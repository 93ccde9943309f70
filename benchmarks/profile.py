"""Where Vistrel's processor time goes while it shows a camera, as perf sees it."""

import subprocess

from benchmarks.rounds import SCREEN
from benchmarks.viewers import Vistrel, appear
from stage.desktop import Desktop

SECONDS = 20
RATE = 4999  # samples a second of processor time
LEAST = 1  # per cent that a line must have


def profile(case, folder):
    """Text: the share of each library, then of each function."""
    folder.mkdir(parents=True, exist_ok=True)
    data = folder / "perf.data"
    with Desktop(size=SCREEN) as desktop:
        desktop.camera(**case.camera.options)
        vistrel = Vistrel(desktop, case)
        appear(desktop, vistrel)
        subprocess.run(["perf", "record", "-q", "-e", "cpu-clock", "-F", str(RATE), "-o", data, "-p", str(vistrel.pid),
                        "--", "sleep", str(SECONDS)], check=True, capture_output=True)
        return "\n\n".join([f"{case.label}, {SECONDS} seconds", _report(data, "dso"), _report(data, "dso,symbol")])


def _report(data, order):
    answer = subprocess.run(["perf", "report", "-i", data, "--stdio", "--sort", order, f"--percent-limit={LEAST}"],
                            check=True, capture_output=True, text=True)
    return "\n".join(line.rstrip(" -") for line in answer.stdout.splitlines() if line.strip() and not line.startswith("#"))
