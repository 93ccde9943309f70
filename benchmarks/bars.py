"""How fast Vistrel has to be, judged by the medians of one run. Most bars are ratios: a slow machine is slow for all."""

import dataclasses

from benchmarks.cases import (FRAMES, LARGE, MJPEG_720, PLAIN_4K, PLAIN_4K_CONTINUOUS, RAW_4K, RAW_720, RICH_4K,
                              RICH_4K_CONTINUOUS, SMALL, Case)

SMALL_720 = Case(RAW_720, SMALL).label
OURS, GSTREAMER, READER = "Vistrel", "GStreamer", "bare reader"


@dataclasses.dataclass(frozen=True)
class Bar:
    title: str
    value: float | None  # None: not measured in this run
    most: float | None
    unit: str
    digits: int = 2
    is_below: bool = False  # the value must be below, not just not above

    @property
    def verdict(self):
        if self.value is None or self.most is None:
            return "not measured"
        is_met = self.value < self.most if self.is_below else self.value <= self.most
        return "met" if is_met else "NOT met"


def judge(record):
    """Every bar, in order."""
    return [*_processor(record), *_decoder(record), *_frames(record), *_opening(record), *_hidden(record), *_memory(record),
            Bar("menu with 64 cameras", _times(1000, record.median("menu", OURS, "64 cameras", "build")), 5, "ms")]


def _times(factor, value):
    return None if value is None else factor * value


def _ratio(value, base):
    return None if value is None or not base else value / base


def _processor(record):
    def cpu(program, camera, glass=SMALL):
        return record.median("steady", program, Case(camera, glass).label, "cost")

    def beside(program, camera, glass=SMALL):
        return _ratio(cpu(OURS, camera, glass), cpu(program, camera, glass))

    yield Bar("raw 720p at 426×240: processor time of GStreamer's", beside(GSTREAMER, RAW_720), 0.4, "×")
    for camera in (RICH_4K, PLAIN_4K, RICH_4K_CONTINUOUS, PLAIN_4K_CONTINUOUS):
        decoding = _times(FRAMES / 1000, record.median("floor", READER, camera.label, "decoding"))
        case = Case(camera, SMALL).label
        yield Bar(f"{case}: of the bare decoding by libjpeg", _ratio(cpu(OURS, camera), decoding), 0.75, "×")
        yield Bar(f"{case}: of GStreamer's", beside(GSTREAMER, camera), 0.55, "×")
    yield Bar("raw 4K at 426×240: of GStreamer's", beside(GSTREAMER, RAW_4K), 1 / 3, "×")
    yield Bar("raw 720p at 1278×720: of GStreamer's", beside(GSTREAMER, RAW_720, LARGE), 2 / 3, "×")


def _decoder(record):
    for kind in ("rich", "plain"):
        ours, library = (record.median("loop", f"MJPEG {kind}: {who}", "2160 at 240", "ns")
                         for who in ("decoding", "libjpeg"))
        yield Bar(f"MJPEG 4K {kind}, the decoder alone at 1/8: of libjpeg's", _ratio(ours, library), 0.65, "×")


def _frames(record):
    most = record.values("lost", OURS, SMALL_720, "lost")
    yield Bar("frames lost, raw 720p, in the worst round", max(most) if most else None, 0, "frames", 0)
    age = record.median("steady", OURS, SMALL_720, "age")
    arrival = record.median("floor", READER, RAW_720.label, "age")
    yield Bar("age of the picture, raw 720p, beside GStreamer's", age,
              record.median("steady", GSTREAMER, SMALL_720, "age"), "ms")
    yield Bar("age of the picture after the frame's arrival, raw 720p",
              None if age is None or arrival is None else age - arrival, 5, "ms")


def _opening(record):
    for camera in (RAW_720, MJPEG_720):
        label = Case(camera, SMALL).label
        ours = _times(1000, record.median("opening", OURS, label, "first"))
        own = _times(1000, record.median("opening", READER, label, "first"))
        peers = [record.median("opening", program, case, "first") for program, case in record.keys("opening")
                 if case == label and program not in (OURS, READER)]
        fastest = _times(1000, min((peer for peer in peers if peer is not None), default=None))
        yield Bar(f"first picture, {camera.label}, beside the fastest peer's", ours, fastest, "ms", 0, is_below=True)
        yield Bar(f"first picture, {camera.label}, after the stream's own first frame",
                  None if ours is None or own is None else ours - own, 60, "ms", 0)


def _hidden(record):
    cases = [case for _, case in record.keys("hidden")]
    case = cases[0] if cases else ""
    yield Bar(f"hidden for {case}: wake-ups, by timers or not", record.median("hidden", OURS, case, "wake-ups"), 0,
              "times", 0)
    yield Bar(f"hidden for {case}: processor time", record.median("hidden", OURS, case, "cpu"), 0.005, "s", 3)
    yield Bar("hidden: resident memory", record.median("hidden", OURS, case, "rss"), 45, "MB", 1)
    yield Bar("hidden: anonymous memory", record.median("hidden", OURS, case, "anonymous"), 10, "MB", 1)


def _memory(record):
    for camera, most in ((RAW_720, 20), (RICH_4K, 40)):
        yield Bar(f"showing {camera.label}: anonymous memory",
                  record.median("steady", OURS, Case(camera, SMALL).label, "anonymous"), most, "MB", 1)
