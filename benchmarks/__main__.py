"""Measures Vistrel beside other camera programs: a table and the bars on standard output, JSON in build/bench.

The exit status tells whether Vistrel could be measured everywhere, not whether it is fast: a bar that is not met
stands as such in the output."""

import argparse
import dataclasses
import os
import pathlib
import platform
import subprocess
import sys
import time

from benchmarks import report
from benchmarks.cases import EVERY_CASE
from benchmarks.profile import profile
from benchmarks.record import Record
from benchmarks.rounds import FULL, QUICK, Rounds
from stage.desktop import ROOT

FOLDER = ROOT / "build" / "bench"


def facts(name):
    git = subprocess.run(["git", "describe", "--always", "--dirty"], cwd=ROOT, capture_output=True, text=True)
    models = [line.split(":", 1)[1].strip() for line in pathlib.Path("/proc/cpuinfo").read_text().splitlines()
              if line.startswith("model name")]
    return {"run": name, "date": time.strftime("%Y-%m-%d %H:%M"), "commit": git.stdout.strip(),
            "processor": models[0] if models else platform.machine(), "cores": os.cpu_count(),
            "kernel": platform.release(), "load": os.getloadavg()[0]}


def main():
    parser = argparse.ArgumentParser(prog="./bench", description=__doc__)
    parser.add_argument("--quick", action="store_true", help="one round of few cases, 3 minutes: a smoke check")
    parser.add_argument("--rounds", type=int, help="instead of three")
    parser.add_argument("--case", default="", help="only the cases with this in their name: 'raw 1280'")
    parser.add_argument("--profile", action="store_true",
                        help="instead: where Vistrel's time goes in the cases of --case, by perf")
    parser.add_argument("--document", type=pathlib.Path, metavar="JSON", help="write what a run gave as Markdown")
    options = parser.parse_args()
    if options.document:
        print(report.document(Record.read(options.document)))
        return 0
    if options.profile:
        for case in (case for case in EVERY_CASE if options.case in case.label):
            print(profile(case, FOLDER), end="\n\n")
        return 0
    plan = QUICK if options.quick else FULL
    plan = dataclasses.replace(plan, rounds=options.rounds or plan.rounds)
    record = Record(FOLDER / f"{plan.name}.json", facts(plan.name))
    try:
        Rounds(plan, record, options.case).run()
    except KeyboardInterrupt:
        print("ended early", file=sys.stderr)
    record.facts["loadAfter"] = os.getloadavg()[0]
    record.save()
    print(report.text(record))
    return 0 if report.is_whole(record) else 1


if __name__ == "__main__":
    sys.exit(main())
