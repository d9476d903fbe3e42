"""Writes the figures into docs/performance.md, and the plots beside it."""

import re

from suite import plots, table
from suite.runner import ROOT

DOCUMENT = ROOT / "docs/performance.md"
# What stands between these is written anew.
FIGURES = re.compile(r"(?<=<!-- figures -->\n).*(?=<!-- end of the figures -->)", re.DOTALL)


def row(cells):
    return "| " + " | ".join(cell.replace("|", "\\|") for cell in cells) + " |\n"


def write(results):
    machine = results["machine"]
    figures = (
        f"\nOn {machine['system']} with Linux {machine['kernel']}, {machine['cores']} cores of"
        f" {machine['processor']}, built in 32 bits by {machine['compiler']}:\n\n"
        + row(table.HEAD) + "|---" * len(table.HEAD) + "|\n"
        + "".join(row(cells) for cells in table.rows(results)) + "\n")
    text = DOCUMENT.read_text(encoding="utf-8")
    DOCUMENT.write_text(FIGURES.sub(lambda _: figures, text), encoding="utf-8")
    plots.draw(results["plots"], DOCUMENT.with_suffix(""))
