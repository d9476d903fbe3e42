"""Builds and runs the benchmarks, and gathers what they report."""

import json
import os
import subprocess
import sys
import time
from pathlib import Path

from suite import machine

ROOT = Path(__file__).resolve().parents[2]
BUILD = ROOT / "build/lin32"
# What scripts/setup installs for node.
NODE_MODULES = ROOT / "build/bench/node_modules"

# In the order of the table.
BENCHMARKS = {
    "serial": "a scan on a serial port, beside a bare reader",
    "readers": "the same, beside python3-serial and node's serialport",
    "ports": "many ports open, beside a single one",
    "keyboard": "a scan that is typed, beside a bare client",
    "delivery": "from a scan to the host's event, beside the copies it cannot avoid",
    "idle": "devices that nobody scans with, beside threads making the same waits",
    "base64": "the coder, beside GLib's",
    "text": "the readable form, beside a loop that copies",
    "form": "the settings form, beside listing the devices",
    "window": "the test window, beside a bare list",
    "load": "loading the library, beside libX11 and libXi",
}

TIMEOUT = 150  # seconds
QUICK_REPETITIONS = "5"


def say(text):
    print(f"bench: {text}", file=sys.stderr, flush=True)


class Runner:
    def __init__(self, folder, quick=False):
        self.folder = folder.resolve()
        self.environment = {
            **os.environ,
            "QUORVEL_LIBRARY": str(next(self.folder.glob("QuorvelNativeLin*.so"), "")),
            "QUORVEL_READERS": str(ROOT / "bench/readers"),
            "NODE_PATH": str(NODE_MODULES),
        }
        if quick:
            self.environment["QUORVEL_BENCH_REPETITIONS"] = QUICK_REPETITIONS

    def build(self, names):
        """Ends the program where something cannot be installed or built."""
        targets = ["QuorvelNative", *(f"bench_{name}" for name in names)]
        for words in (["scripts/setup", "bench"],
                      ["cmake", "--preset", "lin32", "-DBUILD_TESTING=ON"],
                      ["cmake", "--build", "--preset", "lin32", "--target", *targets]):
            say(" ".join(words[:3]))
            done = subprocess.run(words, cwd=ROOT, text=True, stdout=subprocess.PIPE,
                                  stderr=subprocess.STDOUT)
            if done.returncode != 0:
                sys.stderr.write(done.stdout[-4000:])
                sys.exit(1)

    def command(self, name):
        """With a /dev of its own."""
        return [ROOT / "scripts/in-private-dev", self.folder / "bench" / f"bench_{name}"]

    def run(self, names):
        """Everything that the benchmarks have reported, and the reasons of those that failed."""
        results = {"machine": machine.description(), "figures": [], "plots": [], "failed": {}}
        for name in names:
            start = time.monotonic()
            reason = self.run_one(name, results)
            if reason:
                results["failed"][name] = reason
            say(f"{name}: {reason or 'done'} ({time.monotonic() - start:.0f} s)")
        return results

    def run_one(self, name, results):
        """What went wrong, if anything."""
        try:
            done = subprocess.run(self.command(name), env=self.environment, text=True,
                                  stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                  stderr=subprocess.PIPE, timeout=TIMEOUT)
            lines = [json.loads(line) for line in done.stdout.splitlines()]
        except (OSError, ValueError, subprocess.TimeoutExpired) as error:
            return " ".join(str(error).split())
        for line in lines:
            results["plots" if "plot" in line else "figures"].append({"benchmark": name, **line})
        if done.returncode != 0:
            last = done.stderr.strip().splitlines()[-1:] or [""]
            return f"exit code {done.returncode}: {last[0]}"
        return "" if lines else "it reported nothing"
