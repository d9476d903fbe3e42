"""The figures as a table."""

from dataclasses import dataclass

HEAD = ["what", "driver", "reference", "", "ratio", "aim", "met"]


@dataclass
class Aim:
    text: str
    met: str


def aim_of(figure):
    if "at_most" in figure:
        return Aim(f"≤ {figure['at_most']:.3g}", "yes" if figure["ratio"] <= figure["at_most"]
                   else "no")
    if "at_least" in figure:
        return Aim(f"≥ {figure['at_least']:.3g}", "yes" if figure["ratio"] >= figure["at_least"]
                   else "no")
    return Aim("-", "")


def number(value):
    """With three digits that count, and no exponent."""
    if value is None:
        return "-"
    if abs(value) >= 100:
        return f"{value:.0f}"
    return f"{value:.3g}"


def rows(results):
    """The cells of each row below the head."""
    cells = []
    for figure in results["figures"]:
        aim = aim_of(figure)
        unit = f" {figure['unit']}" if figure["unit"] else ""
        cells.append([figure["figure"], number(figure["own"]) + unit, figure["reference"],
                      number(figure["of_reference"]) + unit, number(figure["ratio"]), aim.text,
                      aim.met])
    for name, reason in results["failed"].items():
        cells.append([name, "failed", reason, "", "", "", ""])
    return cells


def text(results):
    lines = [HEAD, *rows(results)]
    widths = [max(len(line[column]) for line in lines) for column in range(len(HEAD))]
    return "\n".join(
        "  ".join(cell.ljust(width) for cell, width in zip(line, widths)).rstrip()
        for line in lines)
