"""Prints what the program adds to the time and the space that adb itself needs; see docs/bench.md.

    bench.py ROUNDS [GROUP...]     GROUP: unpacking, starting, main_job, judging, sizes; all without one

Ends with 0 only when every figure reaches its target.
"""

import sys

from figures import ALL, Figure

# Fewer say nothing.
FEWEST_ROUNDS = 15

TITLES = ("figure", "to reach", "measured", "of what")


def row(*cells: str) -> str:
    return "| " + " | ".join(cells) + " |"


def show(figure: Figure) -> bool:
    missed = "" if figure.reached else " **missed**"
    print(row(figure.name, figure.target, figure.measured + missed, figure.details), flush=True)
    return figure.reached


def main() -> int:
    if len(sys.argv) < 2 or not sys.argv[1].isdecimal() or not ALL.keys() >= set(sys.argv[2:]):
        print(__doc__, file=sys.stderr)
        return 2
    rounds = int(sys.argv[1])
    if rounds < FEWEST_ROUNDS:
        print(f"{FEWEST_ROUNDS} rounds at least", file=sys.stderr)
        return 2
    print(row(*TITLES), row(*["---"] * len(TITLES)), sep="\n", flush=True)
    groups = sys.argv[2:] or list(ALL)
    return 0 if all([show(figure) for group in groups for figure in ALL[group](rounds)]) else 1


if __name__ == "__main__":
    sys.exit(main())
