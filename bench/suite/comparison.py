"""The ratios of this run beside those that were written last."""

import json

from suite.runner import ROOT

KEPT = ROOT / "bench/ratios.json"
WORSE = 1.1


def comparable(results):
    """The figures but those whose reference is 0, of which there is no ratio."""
    return [figure for figure in results["figures"] if figure["ratio"] is not None]


def key(figure):
    return f"{figure['figure']}, beside {figure['reference']}"


def write(results):
    ratios = {key(figure): round(figure["ratio"], 3) for figure in comparable(results)}
    KEPT.write_text(json.dumps(ratios, indent=1, ensure_ascii=False) + "\n", encoding="utf-8")


def worsening(figure, kept):
    """By which factor the figure is worse than it was: more than 1, or not."""
    factor = figure["ratio"] / kept
    return 1 / factor if "at_least" in figure else factor


def lines(results):
    """What is to be said of the figures: those that have become worse by a tenth."""
    kept = json.loads(KEPT.read_text(encoding="utf-8")) if KEPT.exists() else {}
    compared = [figure for figure in comparable(results) if kept.get(key(figure))]
    worse = []
    for figure in compared:
        by = worsening(figure, kept[key(figure)])
        if by > WORSE:
            worse.append(f"WORSE by {100 * (by - 1):.0f} %: {key(figure)}:"
                         f" {figure['ratio']:.3g}, kept {kept[key(figure)]:.3g}")
    return [*worse, f"{len(compared)} ratios compared, {len(worse)} worse by a tenth or more"]
