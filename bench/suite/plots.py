"""Draws what the benchmarks have measured."""

import subprocess
from collections import defaultdict
from dataclasses import dataclass


@dataclass
class Plot:
    title: str
    across: str
    up: str
    settings: str = ""
    style: str = "lines linewidth 2"


PORTS = "number of ports"
AT_EACH = {"settings": "set logscale x 2\nset yrange [0:]", "style": "linespoints linewidth 2"}
LATENCY = ("microseconds", "percent of the scans", "set logscale x")
PLOTS = {
    "serial-latency": Plot("Serial port: from the last byte of a scan to its event", *LATENCY),
    "readers-latency": Plot("Serial port, beside programs in other languages", *LATENCY),
    "ports-latency": Plot("A scan while many ports are open", PORTS, "microseconds", **AT_EACH),
    "ports-memory": Plot("Memory while many ports are open", PORTS, "kilobytes", **AT_EACH),
    "keyboard-latency": Plot("Keyboard: from the end key of a scan to its event", *LATENCY),
}


def lines_of(points_of_plot):
    lines = defaultdict(list)
    for part in points_of_plot:
        lines[part["line"]] += part["points"]
    return lines


def script(plot, lines, file):
    """For gnuplot, with the data in it."""
    text = [
        "set terminal svg size 720,400 font 'sans-serif,13' background '#ffffff'",
        f"set output '{file}'",
        f"set title '{plot.title}'",
        f"set xlabel '{plot.across}'",
        f"set ylabel '{plot.up}'",
        "set key outside below",
        "set grid linecolor '#dddddd'",
        plot.settings,
    ]
    for number, points in enumerate(lines.values()):
        text += [f"$data{number} << END", *(f"{x} {y}" for x, y in points), "END"]
    text.append("plot " + ", ".join(
        f"$data{number} with {plot.style} title '{line}'" for number, line in enumerate(lines)))
    return "\n".join(text) + "\n"


def draw(parts, folder):
    """Writes FOLDER/PLOT.svg for each plot of which there are points."""
    folder.mkdir(exist_ok=True)
    for name, plot in PLOTS.items():
        lines = lines_of(part for part in parts if part["plot"] == name)
        if lines:
            subprocess.run(["gnuplot"], input=script(plot, lines, folder / f"{name}.svg"),
                           text=True, check=True)
