"""The inner loops: what the benchmark program of the converters and the decoder says."""

import json
import subprocess

COPY = "copy of the glass"
FLOOR, DECODING = "libjpeg at 1/8", "decoding"


def measure(program, names, seconds):
    """Runs the loops whose names match; gives triples of loop, "SOURCE at GLASS" and nanoseconds: for each pixel of
    the glass where pixels are made, for each frame where one is decoded."""
    answer = subprocess.run([program, f"--benchmark_filter={names}", f"--benchmark_min_time={seconds}",
                             "--benchmark_format=json"], check=True, capture_output=True, text=True, timeout=600)
    return [_read(entry) for entry in json.loads(answer.stdout)["benchmarks"]]


def _read(entry):
    """Names are copy/GLASS, FORMAT/SOURCE/GLASS/mirrored, jpeg_floor/SCENE/HEIGHT, jpeg_decode/SCENE/HEIGHT/HEIGHT and
    the like; what is seen magnified four times has a word for it at the end."""
    kind, *words = entry["name"].split("/")
    more = ", 4 times" if words[-1] == "magnified" else ""
    if kind == "copy":
        width, height = map(int, words[0].split("x"))
        return COPY, f"{'4:3' if 3 * width == 4 * height else '16:9'} at {words[0]}", 1e9 * entry["s/pixel"]
    if kind.startswith("jpeg"):
        lines = {"jpeg_floor": FLOOR, "jpeg_library": "libjpeg", "jpeg_decode": DECODING, "jpeg_paint": "converting"}[kind]
        glass = words[2] if len(words) > 2 else "any"
        return f"MJPEG {words[0]}: {lines}{more}", f"{words[1]} at {glass}", 1000 * entry["cpu_time"]
    return kind + more, f"{words[0]} at {words[1]}", 1e9 * entry["s/pixel"]
