"""Reads scans with python3-serial: python-serial.py PORT EVERY.

Prints the steady clock's nanoseconds at each EVERY-th scan; "ready" before the first.
"""

import sys
import time

import serial

port = serial.Serial(sys.argv[1], 9600)
every = int(sys.argv[2])
print("ready", flush=True)
count = 0
while True:
    port.read_until(b"\r")
    now = time.monotonic_ns()
    count += 1
    if count % every == 0:
        print(now, flush=True)
