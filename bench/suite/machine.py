"""The machine that measures."""

import os
import platform
import re
import subprocess
from pathlib import Path


def first_match(pattern, text):
    found = re.search(pattern, text, re.MULTILINE)
    return found[1].strip() if found else "unknown"


def description():
    compiler = subprocess.run(["g++", "-dumpfullversion"], stdout=subprocess.PIPE, text=True)
    return {
        "processor": first_match(r"^model name\s*:(.*)", Path("/proc/cpuinfo").read_text()),
        "cores": os.cpu_count(),
        "kernel": first_match(r"^(\d+\.\d+)", platform.release()),
        "system": first_match(r'^PRETTY_NAME="?([^"\n]*)', Path("/etc/os-release").read_text()),
        "compiler": f"GCC {compiler.stdout.strip()}",
    }
