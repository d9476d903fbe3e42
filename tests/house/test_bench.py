"""scripts/bench, with programs in the place of the benchmarks."""

import json
import os
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path
from unittest import mock

ROOT = Path(os.environ["QUORVEL_SOURCES"])
BENCH = ROOT / "scripts/bench"
sys.path.insert(0, str(ROOT / "bench"))

from suite import comparison, document, plots, rounds  # noqa: E402

FAST = {"figure": "throughput", "reference": "GLib", "unit": "MB/s", "own": 130.0,
        "of_reference": 100.0, "ratio": 1.3, "at_least": 1.3}
SLOW = {"figure": "latency", "reference": "bare", "unit": "us", "own": 1.26, "of_reference": 1.0,
        "ratio": 1.26, "at_most": 1.2}
KNOWN = {"figure": "memory", "reference": "bare", "unit": "", "own": 2, "of_reference": 4,
         "ratio": 0.5}
LINE = {"plot": "serial-latency", "line": "the driver", "points": [[10, 1], [12, 99]]}


class Programs(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        (self.folder / "bench").mkdir()
        (self.folder / "QuorvelNativeLin32.so").touch()

    def put(self, name, *lines, code=0):
        program = self.folder / f"bench/bench_{name}"
        said = "\n".join(line if isinstance(line, str) else json.dumps(line) for line in lines)
        program.write_text(f"#!/bin/sh\ncat <<'END'\n{said}\nEND\n"
                           f"echo last words >&2\nexit {code}\n")
        program.chmod(0o755)

    def bench(self, *words):
        return subprocess.run([BENCH, "--programs", self.folder, *words], text=True,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE)

    def rows(self, *words):
        """The rows of the table below its head, with single spaces."""
        return [" ".join(line.split()) for line in self.bench(*words).stdout.splitlines()[1:]]

    def test_prints_a_row_for_each_figure(self):
        self.put("text", FAST, SLOW, LINE, KNOWN)
        self.assertEqual(self.rows("text"), [
            "throughput 130 MB/s GLib 100 MB/s 1.3 ≥ 1.3 yes",
            "latency 1.26 us bare 1 us 1.26 ≤ 1.2 no",
            "memory 2 bare 4 0.5 -"])
        self.assertEqual(self.bench("text").returncode, 0)

    def test_prints_json(self):
        self.put("text", FAST, LINE)
        results = json.loads(self.bench("--json", "text").stdout)
        self.assertEqual(results["figures"], [{"benchmark": "text", **FAST}])
        self.assertEqual(results["plots"], [{"benchmark": "text", **LINE}])
        self.assertEqual(results["failed"], {})

    def test_goes_on_after_a_failure(self):
        self.put("base64", "no JSON")
        self.put("form", SLOW, code=3)
        self.put("load")
        self.put("text", FAST)
        done = self.bench("--json", "base64", "form", "load", "serial", "text")
        self.assertEqual(done.returncode, 1)
        results = json.loads(done.stdout)
        self.assertEqual([figure["benchmark"] for figure in results["figures"]], ["form", "text"])
        self.assertEqual(set(results["failed"]), {"base64", "form", "load", "serial"})
        self.assertEqual(results["failed"]["form"], "exit code 3: last words")
        self.assertIn("form failed exit code 3: last words", self.rows("form"))

    def test_refuses_what_makes_no_sense(self):
        for words in (["--nonsense"], ["no-such-name"], ["--write", "text"], ["--write", "--quick"],
                      ["--counts", "text"], ["--counts", "--compare"], ["--compare", "--json"]):
            with self.subTest(words):
                done = self.bench(*words)
                self.assertEqual((done.returncode, done.stdout), (2, ""))
                self.assertRegex(done.stderr, r"\Abench: .+\n\Z")

    def test_puts_the_figures_into_the_document(self):
        file = self.folder / "performance.md"
        file.write_text("before\n<!-- figures -->\nold\n<!-- end of the figures -->\nafter\n")
        machine = {"processor": "CPU", "cores": 2, "kernel": "6.1", "system": "OS",
                   "compiler": "GCC 12"}
        results = {"machine": machine, "figures": [FAST], "plots": [], "failed": {}}
        with mock.patch.object(document, "DOCUMENT", file):
            document.write(results)
        lines = file.read_text().splitlines()
        self.assertEqual([lines[0], lines[-1]], ["before", "after"])
        self.assertNotIn("old", lines)
        self.assertIn("| throughput | 130 MB/s | GLib | 100 MB/s | 1.3 | ≥ 1.3 | yes |", lines)

    def test_says_which_ratios_are_worse_by_a_tenth(self):
        slow = {**SLOW, "ratio": 1.4}
        without = {**KNOWN, "figure": "nothing", "of_reference": 0, "ratio": None}
        kept = self.folder / "ratios.json"
        with mock.patch.object(comparison, "KEPT", kept):
            before = [{**FAST, "ratio": 1.44}, {**SLOW, "ratio": 1.29}, without]
            comparison.write({"figures": before})
            self.assertEqual(comparison.lines({"figures": [FAST, slow, KNOWN, without]}), [
                "WORSE by 11 %: throughput, beside GLib: 1.3, kept 1.44",
                "2 ratios compared, 1 worse by a tenth or more"])
            kept.unlink()
            self.assertEqual(comparison.lines({"figures": [FAST]}),
                             ["0 ratios compared, 0 worse by a tenth or more"])

    def test_takes_the_median_of_several_runs(self):
        def run(ratio, failed):
            return {"figures": [{**FAST, "ratio": ratio}, SLOW], "plots": [ratio], "failed": failed}
        results = rounds.merged([run(3, {}), run(1, {"form": "why"}), run(2, {})])
        self.assertEqual(results, {**run(2, {"form": "why"})})

    def test_draws_every_line_of_a_plot(self):
        other = {"plot": "serial-latency", "line": "bare", "points": [[5, 1]]}
        drawn = mock.Mock()
        with mock.patch.object(plots.subprocess, "run", drawn):
            plots.draw([LINE, other], self.folder)
        [call] = drawn.call_args_list
        self.assertIn("10 1\n12 99\nEND", call.kwargs["input"])
        self.assertIn("$data0 with lines linewidth 2 title 'the driver', "
                      "$data1 with lines linewidth 2 title 'bare'", call.kwargs["input"])


class Real(unittest.TestCase):
    def test_quickly(self):
        done = subprocess.run([BENCH, "--programs", os.environ["QUORVEL_BUILD"], "--quick",
                               "--json", "text"], text=True, stdout=subprocess.PIPE)
        self.assertEqual(done.returncode, 0)
        results = json.loads(done.stdout)
        self.assertEqual(len(results["figures"]), 2)
        for figure in results["figures"]:
            with self.subTest(figure["figure"]):
                self.assertGreater(figure["own"], 0)
                self.assertAlmostEqual(figure["ratio"], figure["own"] / figure["of_reference"])


if __name__ == "__main__":
    unittest.main()
