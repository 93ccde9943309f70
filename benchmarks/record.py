"""What was measured: one entry for each measurement, kept in a JSON file that is whole after each of them."""

import json
import os
import statistics


class Record:
    """`file` None: kept in memory only."""

    def __init__(self, file=None, facts=None, samples=()):
        self._file = file
        self.facts = facts or {}
        self.samples = list(samples)

    @classmethod
    def read(cls, file):
        content = json.loads(file.read_text())
        return cls(None, content["facts"], content["samples"])

    def add(self, kind, program, case, values):
        self.samples.append({"kind": kind, "program": program, "case": case, "values": values})
        self.save()

    def fail(self, kind, program, case, reason):
        self.samples.append({"kind": kind, "program": program, "case": case, "error": reason})
        self.save()

    def save(self):
        if self._file is None:
            return
        self._file.parent.mkdir(parents=True, exist_ok=True)
        fresh = self._file.with_suffix(".new")
        fresh.write_text(json.dumps({"facts": self.facts, "samples": self.samples}, indent=1, ensure_ascii=False))
        os.replace(fresh, self._file)

    def keys(self, kind):
        """The pairs of program and case that were tried, in order."""
        return list(dict.fromkeys((sample["program"], sample["case"]) for sample in self.samples
                                  if sample["kind"] == kind))

    def values(self, kind, program, case, name):
        return [sample["values"][name] for sample in self._of(kind, program, case)
                if sample.get("values", {}).get(name) is not None]

    def median(self, kind, program, case, name):
        """None: it was never measured."""
        values = self.values(kind, program, case, name)
        return statistics.median(values) if values else None

    def spread(self, kind, program, case, name):
        """Median, least and greatest."""
        values = self.values(kind, program, case, name)
        return (statistics.median(values), min(values), max(values)) if values else None

    def is_measured(self, kind, program, case):
        return any("values" in sample for sample in self._of(kind, program, case))

    def errors(self, kind, program, case):
        return [sample["error"] for sample in self._of(kind, program, case) if "error" in sample]

    def _of(self, kind, program, case):
        return [sample for sample in self.samples
                if (sample["kind"], sample["program"], sample["case"]) == (kind, program, case)]
