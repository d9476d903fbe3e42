"""Other programs that a test runs."""

import subprocess
import time
from contextlib import contextmanager

PATIENCE = 20  # seconds


def await_that(condition, what):
    end = time.monotonic() + PATIENCE
    while not condition():
        if time.monotonic() > end:
            raise AssertionError(f"in vain: {what}")
        time.sleep(0.02)


@contextmanager
def running(words, **options):
    process = subprocess.Popen(words, **options)
    try:
        yield process
    finally:
        process.terminate()
        try:
            process.communicate(timeout=PATIENCE)
        finally:
            process.kill()
