"""Counts instructions, which are the same however busy the machine is."""

import json
import re
import subprocess
import tempfile
from pathlib import Path

from suite.runner import ROOT, say

PROGRAMS = ["serial"]
KEPT = ROOT / "bench/counts.json"
SCANS = 1000  # a batch of the benchmark
# The order in which the benchmark starts its threads, after the main one.
THREADS = {"driver": 2, "bare reader": 3}
WORSE = 1.1


def instructions(runner, batches):
    """Of each thread, by its name."""
    with tempfile.TemporaryDirectory() as folder:
        *private_dev, program = runner.command("serial")
        subprocess.run(
            [*private_dev, "valgrind", "--quiet", "--tool=callgrind", "--separate-threads=yes",
             "--fair-sched=yes", f"--callgrind-out-file={folder}/out", program,
             "--benchmark_filter=manyScans"],
            env={**runner.environment, "QUORVEL_BENCH_REPETITIONS": str(batches)}, check=True,
            stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, timeout=120)
        return {name: total_of(Path(f"{folder}/out-{number:02}"))
                for name, number in THREADS.items()}


def total_of(file):
    return int(re.search(r"^totals: (\d+)", file.read_text(), re.MULTILINE)[1])


def run(runner, write):
    """Prints the counts per scan beside those kept. Returns an exit code."""
    try:
        few, many = instructions(runner, 1), instructions(runner, 2)
    except (OSError, subprocess.SubprocessError) as error:
        say(f"counting failed: {error}")
        return 1
    scan = {name: round((many[name] - few[name]) / SCANS) for name in THREADS}
    ratio = scan["driver"] / scan["bare reader"]
    kept = json.loads(KEPT.read_text()) if KEPT.exists() else scan
    before = kept["driver"] / kept["bare reader"]
    print(f"instructions per serial scan: {scan['driver']}, bare reader {scan['bare reader']},"
          f" ratio {ratio:.2f} (kept: {before:.2f})")
    if ratio > WORSE * before:
        print(f"WORSE by {100 * (ratio / before - 1):.0f} %")
    if write:
        KEPT.write_text(json.dumps(scan, indent=1) + "\n")
    return 0
