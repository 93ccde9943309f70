"""What a run gave, as text for the terminal and as Markdown for the documentation."""

from benchmarks import table
from benchmarks.bars import GSTREAMER, OURS, judge
from benchmarks.table import number, spread

KINDS = ("steady", "opening", "place", "floor", "lost", "hidden", "menu", "loop")


def text(record):
    return "\n\n".join(f"{title}\n\n{table.text(head, rows)}" for title, head, rows in _sections(record))


def document(record):
    facts = record.facts
    origin = (f"Run of {facts['date']} (`./bench`, {facts['run']}), commit {facts['commit']}: {facts['processor']}, "
              f"{facts['cores']} cores, Linux {facts['kernel']}.")
    parts = [f"### {title}\n\n{table.markdown(head, rows)}" for title, head, rows in _sections(record)]
    return "\n\n".join([origin, *parts])


def is_whole(record):
    """Vistrel was measured, in one round at least, in every case that was tried."""
    ours = [(kind, *key) for kind in KINDS for key in record.keys(kind) if key[0] == OURS]
    return bool(ours) and all(record.is_measured(*key) for key in ours)


def _sections(record):
    made = [("Showing: processor seconds for 30 frames, age in ms, memory in MB", *_steady(record)),
            ("Opening and closing, in ms", *_opening(record)),
            ("The camera's floors", *_floors(record)),
            ("Vistrel by itself", *_alone(record)),
            ("Inner loops: nanoseconds for each pixel of the glass, mirrored", *_loops(record, "", 2, 1)),
            ("Inner loops: milliseconds for each frame of MJPEG", *_loops(record, "MJPEG", 3, 1e-6)),
            ("Not measured", *_missing(record)),
            ("Bars", *_bars(record))]
    return [(title, head, rows) for title, head, rows in made if rows]


def _steady(record):
    head = ["camera and glass", "program", "processor", "of GStreamer's", "X server", "frames/s", "lost", "age", "age 95 %",
            "resident", "proportional", "anonymous", "camera's"]
    order = {case: index for index, case in enumerate(dict.fromkeys(case for _, case in record.keys("steady")))}
    rows = []
    for program, case in sorted(record.keys("steady"), key=lambda key: (order[key[1]], key[0] != OURS, key[0])):
        median = record.median("steady", program, case, "cost")
        if median is None:
            continue
        base = record.median("steady", GSTREAMER, case, "cost")
        facts = [record.median("steady", program, case, name)
                 for name in ("fps", "lost", "age", "age95", "rss", "pss", "anonymous", "buffers")]
        rows.append([case, program, spread(record.spread("steady", program, case, "cost"), 4),
                     number(median / base if base else None, 2),
                     number(record.median("steady", program, case, "server"), 3), number(facts[0]), number(facts[1], 0),
                     *(number(fact) for fact in facts[2:])])
    return head, rows


def _opening(record):
    head = ["camera and glass", "program", "to the first picture", "to the camera closed", "the first time of all"]
    rows = [[case, program, *(spread(record.spread("opening", program, case, name), 0, 1000)
                              for name in ("first", "close", "cold"))]
            for program, case in sorted(record.keys("opening"), key=lambda key: key[1])]
    return head, rows


def _floors(record):
    head = ["camera", "program", "first frame, ms", "age at arrival, ms", "decoding at 1/8, ms", "frame, kB"]
    rows = [[case, program, spread(record.spread("floor", program, case, "first"), 0),
             spread(record.spread("floor", program, case, "age"), 1),
             spread(record.spread("floor", program, case, "decoding"), 2),
             number(_kilobytes(record.median("floor", program, case, "bytes")), 0)]
            for program, case in record.keys("floor") if record.values("floor", program, case, "age")]
    return head, rows


def _kilobytes(count):
    return None if count is None else count / 1000


def _alone(record):
    rows = []
    for kind, name, what in (("steady", "icon", "start to icon"), ("opening", "again", "second start to its exit")):
        found = sorted(value for program, case in record.keys(kind) if program == OURS
                       for value in record.values(kind, program, case, name))
        if found:
            rows.append([what, "", spread((found[len(found) // 2], found[0], found[-1]), 0, 1000), "ms"])
    for _, case in record.keys("hidden"):
        for name, what, digits, unit in (("cpu", "processor time", 4, "s"), ("timers", "timers armed", 0, ""),
                                         ("wake-ups", "wake-ups of its threads", 0, ""),
                                         ("rss", "resident", 1, "MB"), ("pss", "proportional", 1, "MB"),
                                         ("anonymous", "anonymous", 1, "MB")):
            rows.append([f"hidden for {case}", what, spread(record.spread("hidden", OURS, case, name), digits), unit])
    for _, case in record.keys("menu"):
        for name, what in (("build", "from the host's wish to the menu"), ("shown", "from the click to the menu on screen"),
                           ("cpu", "processor time for it")):
            rows.append([f"menu, {case}", what, spread(record.spread("menu", OURS, case, name), 1, 1000), "ms"])
    for program, case in record.keys("lost"):
        rows.append([f"frames lost, {case}", program, spread(record.spread("lost", program, case, "lost"), 0), ""])
    return ["what", "", "median (least–greatest)", "unit"], rows


def _loops(record, start, digits, factor):
    """A row for each loop and size of the camera's picture, a column for each height of the glass."""
    heights = sorted({height for *_, height in _loop_cells(record, start)}, key=lambda height: height or 0)
    rows = {}
    for loop, source, median, height in _loop_cells(record, start):
        rows.setdefault((loop, source), {})[height] = number(factor * median, digits)
    head = ["loop", "camera's picture", *("any glass" if height is None else f"glass {height}" for height in heights)]
    return head, [[*key, *(cells.get(height, "") for height in heights)] for key, cells in rows.items()]


def _loop_cells(record, start):
    for loop, case in record.keys("loop"):
        source, glass = case.split(" at ") if " at " in case else (case, "any")
        median = record.median("loop", loop, case, "ns")
        if median is not None and loop.startswith("MJPEG") == bool(start):
            yield loop, source, median, None if glass == "any" else int(glass.split("x")[-1])


def _missing(record):
    rows = []
    for kind in KINDS:
        for program, case in record.keys(kind):
            errors = record.errors(kind, program, case)
            if errors:
                rows.append([f"{kind}, {case}", program, f"{len(errors)}×", " ".join(errors[-1].split())[:160]])
    return ["what", "program", "failed", "reason"], rows


def _bars(record):
    rows = [[bar.title, bar.verdict, number(bar.value, bar.digits),
             ("below " if bar.is_below else "") + number(bar.most, bar.digits), bar.unit] for bar in judge(record)]
    return ["bar", "", "value", "at most", "unit"], rows
