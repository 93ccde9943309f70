"""One run of the benchmark: every case in every round, the programs in turn."""

import contextlib
import dataclasses
import subprocess
import sys
import time

from benchmarks import loops, measures
from benchmarks.cases import EVERY_CASE, LARGE, MJPEG_720, QUICK_CASES, RAW_720, SMALL, Case
from benchmarks.viewers import VIEWERS, Cheese, GStreamer, Vistrel, appear, disappear
from stage.desktop import ROOT, Desktop

SCREEN = "1600x1000"
BUILD = ROOT / "build" / "release"
READER = "bare reader"
LOOP = 0.02  # seconds that each inner loop runs at least
MOMENT = 0.1  # seconds that follow a first frame when nothing else is asked for


@dataclasses.dataclass(frozen=True)
class Plan:
    name: str
    rounds: int
    cases: list
    yardsticks: list  # the cases in which general camera programs are measured too
    openings: list  # the cases of which the way to the first picture is measured
    steady: float  # seconds
    lost: int
    hidden: int
    menus: tuple  # numbers of cameras
    repeats: int  # of what takes moments
    loops: str  # the names of inner loops


FULL = Plan("full", 3, EVERY_CASE, [Case(camera, glass) for camera in (RAW_720, MJPEG_720) for glass in (SMALL, LARGE)],
            [Case(RAW_720, SMALL), Case(MJPEG_720, SMALL)], 2.2, 20, 60, (1, 8, 64), 3,
            "^(copy|jpeg_)|/mirrored")
QUICK = Plan("quick", 1, QUICK_CASES, [Case(RAW_720, SMALL)], [Case(RAW_720, SMALL)], 2, 4, 5, (64,), 2,
             "^copy|^YUY2/1280x720/.*/mirrored")


class Rounds:
    """`only`: the cases with this in their name, and nothing but the programs showing them."""

    def __init__(self, plan, record, only=""):
        self._plan = plan
        self._record = record
        self._only = only
        self._start = time.monotonic()
        self._viewers = []

    def run(self):
        for viewer in VIEWERS:
            reason = viewer.missing()
            if reason:
                self._record.fail("steady", viewer.name, "any", reason)
            else:
                self._viewers.append(viewer)
        for number in range(self._plan.rounds):
            self._tell(f"round {number + 1} of {self._plan.rounds}")
            self._show_cases()
            if not self._only:
                self._open()
                self._lose()
                self._hide()
                self._menus()
            self._viewers.append(self._viewers.pop(0))
        if not self._only:
            self._loop()

    def _tell(self, text):
        print(f"{time.monotonic() - self._start:7.1f} s  {text}", file=sys.stderr, flush=True)

    @contextlib.contextmanager
    def _kept(self, kind, program, case):
        """Runs a measurement: its values or its failure go on record, and the next one follows in any case."""
        values = {}
        try:
            yield values
        except Exception as problem:  # noqa: BLE001 (whatever another program does, it must not end the run)
            self._record.fail(kind, program, case, f"{type(problem).__name__}: {problem}")
            self._tell(f"{kind}, {case}, {program}: FAILED, {problem}")
        else:
            self._record.add(kind, program, case, values)
            facts = " ".join(f"{key}={value:.4g}" if isinstance(value, float) else f"{key}={value}"
                             for key, value in values.items())
            self._tell(f"{kind}, {case}, {program}: {facts}")

    @contextlib.contextmanager
    def _with_camera(self, desktop, camera):
        """A fresh one each time: a reader that ended badly may have left its buffers taken."""
        try:
            yield desktop.camera(**camera.options)
        finally:
            desktop.unplug_all()

    @contextlib.contextmanager
    def _with_used_camera(self, desktop, camera):
        """One that has drawn its pictures already: a real camera has none to draw."""
        with self._with_camera(desktop, camera) as source:
            measures.floor(desktop, source, MOMENT)
            yield source

    @contextlib.contextmanager
    def _with_viewer(self, desktop, kind, case):
        viewer = kind(desktop, case)
        try:
            yield viewer
        finally:
            viewer.close()

    def _on_desktop(self, kind, case, measure):
        """`measure(desktop)`; a desktop that does not come up is a failure like any other."""
        try:
            with Desktop(size=SCREEN) as desktop:
                measure(desktop)
        except Exception as problem:  # noqa: BLE001
            self._record.fail(kind, Vistrel.name, case, f"the desktop: {problem}")
            self._tell(f"{kind}, {case}: FAILED, {problem}")

    def _show_cases(self):
        cases = [case for case in self._plan.cases if self._only in case.label]
        for camera in dict.fromkeys(case.camera for case in cases):
            shown = [case for case in cases if case.camera == camera]
            self._on_desktop("steady", shown[0].label, lambda desktop: self._show_camera(desktop, shown))

    def _show_camera(self, desktop, cases):
        camera = cases[0].camera
        with self._kept("floor", READER, camera.label) as values, self._with_camera(desktop, camera) as source:
            values |= measures.floor(desktop, source, self._plan.steady)
        for case in cases:
            for kind in self._viewers:
                if self._is_shown(kind, case):
                    self._show(desktop, kind, case)

    def _show(self, desktop, kind, case):
        with self._kept("steady", kind.name, case.label) as values, \
                self._with_camera(desktop, case.camera) as source, self._with_viewer(desktop, kind, case) as viewer:
            values |= measures.steady(desktop, source, viewer, self._plan.steady)
            if kind is Vistrel:
                values["icon"] = viewer.seconds_to_icon

    def _is_shown(self, kind, case):
        if kind is Cheese and case.glass != SMALL:
            return False  # it chooses its own size: once is enough
        return kind in (Vistrel, GStreamer) or case in self._plan.yardsticks

    def _open(self):
        for case in self._plan.openings:
            self._on_desktop("opening", case.label, lambda desktop: self._open_case(desktop, case))

    def _open_case(self, desktop, case):
        places = self._places(desktop, case)
        for _ in range(self._plan.repeats):
            for kind, place in places.items():
                self._open_once(desktop, kind, case, place)
            with self._kept("opening", READER, case.label) as values, \
                    self._with_used_camera(desktop, case.camera) as source:
                values["first"] = measures.floor(desktop, source, MOMENT)["first"] / 1000

    def _open_once(self, desktop, kind, case, place):
        with self._kept("opening", kind.name, case.label) as values, \
                self._with_used_camera(desktop, case.camera) as source, \
                self._with_viewer(desktop, kind, case) as viewer:
            if kind is Vistrel:  # which is there all day: the first time of all apart
                values["cold"] = measures.opening(desktop, source, viewer, place)["first"]
            values |= measures.opening(desktop, source, viewer, place)
            if kind is Vistrel:
                values |= measures.second_start(desktop)

    def _places(self, desktop, case):
        """Where each program shows its picture."""
        places = {}
        for kind in self._viewers:
            with self._kept("place", kind.name, case.label) as values, \
                    self._with_camera(desktop, case.camera) as source, \
                    self._with_viewer(desktop, kind, case) as viewer:
                values["place"] = places[kind] = appear(desktop, viewer)
                disappear(source, viewer)
        return places

    def _lose(self):
        case = Case(RAW_720, SMALL)
        self._on_desktop("lost", case.label, lambda desktop: self._lose_frames(desktop, case))

    def _lose_frames(self, desktop, case):
        for kind in self._viewers:
            if kind not in (Vistrel, GStreamer):
                continue
            with self._kept("lost", kind.name, case.label) as values, \
                    self._with_camera(desktop, case.camera) as source, \
                    self._with_viewer(desktop, kind, case) as viewer:
                values |= measures.lost(desktop, source, viewer, self._plan.lost)

    def _hide(self):
        case = Case(RAW_720, SMALL)
        with self._kept("hidden", Vistrel.name, f"{self._plan.hidden} s") as values, Desktop(size=SCREEN) as desktop, \
                self._with_camera(desktop, case.camera) as source, \
                self._with_viewer(desktop, Vistrel, case) as vistrel:
            values |= measures.hidden(desktop, source, vistrel, self._plan.hidden)

    def _menus(self):
        for number in self._plan.menus:
            case = f"{number} camera{'s' if number > 1 else ''}"
            self._on_desktop("menu", case, lambda desktop: self._show_menu(desktop, number, case))

    def _show_menu(self, desktop, number, case):
        for index in range(number):
            desktop.camera(name=f"Camera {index}", node=f"camera{index}", **RAW_720.options)
        with self._with_viewer(desktop, Vistrel, Case(RAW_720, SMALL)) as vistrel:
            for measure in [measures.menu] + self._plan.repeats * [measures.menu_build]:
                with self._kept("menu", Vistrel.name, case) as values:
                    values |= measure(desktop, vistrel)

    def _loop(self):
        try:
            found = loops.measure(BUILD / "benchmarks" / "vistrel_bench", self._plan.loops, LOOP)
        except (OSError, subprocess.SubprocessError) as problem:
            return self._record.fail("loop", "inner loops", "any", str(problem))
        for loop, case, nanoseconds in found:
            self._record.add("loop", loop, case, {"ns": nanoseconds})
        self._tell(f"{len(found)} inner loops")
