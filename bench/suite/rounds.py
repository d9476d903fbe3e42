"""Several runs, as one: what else a machine does makes a single one unreliable."""

from suite.comparison import key


def merged(runs):
    """Of each figure the run with the median ratio; the plots of the last."""
    figures = {}
    for results in runs:
        for figure in results["figures"]:
            figures.setdefault(key(figure), []).append(figure)
    failed = {}
    for results in runs:
        failed.update(results["failed"])
    return {
        **runs[-1],
        "figures": [sorted(same, key=ratio)[len(same) // 2] for same in figures.values()],
        "failed": failed,
    }


def ratio(figure):
    # Where the reference is 0 there is none.
    return figure["ratio"] if figure["ratio"] is not None else float("inf")
