"""What the benchmark makes of its samples, and what it reads of processes."""

import os
import pathlib
import tempfile
import time
import unittest

from benchmarks import processes, report
from benchmarks.bars import judge
from benchmarks.cases import RAW_720, SMALL, Case
from benchmarks.record import Record

CASE = Case(RAW_720, SMALL).label


def recorded(*samples):
    record = Record(facts={"date": "", "run": "", "commit": "", "processor": "", "cores": 2, "kernel": ""})
    for kind, program, case, values in samples:
        record.add(kind, program, case, values)
    return record


class BarsTest(unittest.TestCase):
    def verdict(self, title, record):
        return next(bar.verdict for bar in judge(record) if bar.title.startswith(title))

    def test_a_ratio_is_of_medians(self):
        bar = "raw 720p at 426×240"
        peer = [("steady", "GStreamer", CASE, {"cost": cost}) for cost in (0.1, 0.1, 9)]
        for costs, verdict in (((0.04, 0.01, 0.9), "met"), ((0.041, 0.01, 0.9), "NOT met")):
            ours = [("steady", "Vistrel", CASE, {"cost": cost}) for cost in costs]
            self.assertEqual(self.verdict(bar, recorded(*ours, *peer)), verdict)
            self.assertEqual(self.verdict(bar, recorded(*ours)), "not measured")

    def test_one_bad_round_loses_frames(self):
        rounds = [("lost", "Vistrel", CASE, {"lost": lost}) for lost in (0, 1, 0)]
        self.assertEqual(self.verdict("frames lost", recorded(*rounds)), "NOT met")
        self.assertEqual(self.verdict("frames lost", recorded(rounds[0])), "met")

    def test_below_is_not_the_same(self):
        same = recorded(*(("opening", program, CASE, {"first": 0.1}) for program in ("Vistrel", "GStreamer", "ffplay")))
        self.assertEqual(self.verdict(f"first picture, {RAW_720.label}, beside", same), "NOT met")


class RecordTest(unittest.TestCase):
    def test_a_failure_is_told_and_kept_apart(self):
        with tempfile.TemporaryDirectory() as folder:
            file = pathlib.Path(folder) / "deep" / "run.json"
            record = Record(file, recorded().facts)
            record.fail("steady", "Cheese", CASE, "it crashed")
            record.add("steady", "Vistrel", CASE, {"cost": 0.01})
            kept = Record.read(file)
        self.assertEqual(kept.samples, record.samples)
        self.assertTrue(report.is_whole(kept))
        self.assertIn("it crashed", report.document(kept))
        kept.fail("steady", "Vistrel", CASE, "this time not")
        self.assertTrue(report.is_whole(kept))
        kept.fail("hidden", "Vistrel", "60 s", "never")
        self.assertFalse(report.is_whole(kept))
        self.assertFalse(report.is_whole(recorded()))


class ProcessesTest(unittest.TestCase):
    def test_the_clock_is_the_processs_own(self):
        times = [time.process_time(), processes.processor_seconds(os.getpid()), time.process_time()]
        self.assertEqual(times, sorted(times))

    def test_tells_a_limited_wait_from_an_endless_one(self):
        rest = " 0x0 0x0 0x0 0x7ffd 0x7f0a"
        for call, is_limited in ((f"7 0x1 0x5 0xffffffff{rest}", False), (f"7 0x1 0x5 0x5c6a{rest}", True),
                                 (f"7 0x1 0x5 0xdeadffffffff{rest}", False), (f"202 0x1 0x89 0x0 0x7ff9{rest}", True),
                                 (f"202 0x1 0x80 0x0 0x0{rest}", False), (f"202 0x1 0x81 0x0 0x7ff9{rest}", False),
                                 (f"232 0xe 0x7f 0x20 0xffffffff{rest}", False), ("running", False), ("", False)):
            self.assertEqual(processes.limited_wait(call) is not None, is_limited, call)

    def test_a_thread_that_ended_was_awake(self):
        self.assertEqual(processes.wake_ups({"1": 5, "2": 3}, {"1": 7, "4": 1}), 2 + 1 + 1)
