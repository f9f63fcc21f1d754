#!/usr/bin/env python3
"""Reports on coverage that gcovr collected: a table, then every line that was not reached.

    scripts/coverage-report.py COVERAGE.json --least PERCENT --must-reach PART...

A part is a top folder of the tree; headers under include/vantra count to the part "include". Fails when one of the
parts named has less than PERCENT of its lines reached.
"""

import argparse
import collections
import json
import pathlib
import sys


class Tally:
    """Lines and branches of one part: how many there are, how many were reached."""

    def __init__(self):
        self.lines = self.reached_lines = self.branches = self.reached_branches = 0

    def add(self, line):
        self.lines += 1
        self.reached_lines += line["count"] > 0
        for branch in line["branches"]:
            self.branches += 1
            self.reached_branches += branch["count"] > 0

    def line_percent(self):
        return 100.0 * self.reached_lines / self.lines if self.lines else 0.0

    def branch_percent(self):
        return 100.0 * self.reached_branches / self.branches if self.branches else 100.0


def main():
    parser = argparse.ArgumentParser(description="Reports on coverage that gcovr collected.")
    parser.add_argument("file", type=pathlib.Path)
    parser.add_argument("--least", type=float, required=True)
    parser.add_argument("--must-reach", nargs="+", required=True)
    arguments = parser.parse_args()

    parts = collections.defaultdict(Tally)
    missed = []
    for entry in json.loads(arguments.file.read_text(encoding="utf-8"))["files"]:
        path = entry["file"]
        source = pathlib.Path(path).read_text(encoding="utf-8").splitlines()
        for line in entry["lines"]:
            if line.get("gcovr/noncode"):
                continue
            parts[path.split("/")[0]].add(line)
            if line["count"] == 0:
                missed.append((path, line["line_number"], source[line["line_number"] - 1].strip()))

    total = Tally()
    print(f"{'part':<12} {'lines':>7} {'reached':>8} {'branches':>9} {'reached':>8}")
    for name, tally in sorted(parts.items()):
        print(f"{name:<12} {tally.lines:>7} {tally.line_percent():>7.1f}% {tally.branches:>9} {tally.branch_percent():>7.1f}%")
        if name in arguments.must_reach:
            for field in ("lines", "reached_lines", "branches", "reached_branches"):
                setattr(total, field, getattr(total, field) + getattr(tally, field))
    print(f"{'vantra rooms':<12} {total.lines:>7} {total.line_percent():>7.1f}% {total.branches:>9} {total.branch_percent():>7.1f}%")

    print(f"\n{len(missed)} lines were not reached:")
    for path, number, text in missed:
        print(f"{path}:{number}: {text}")

    absent = [name for name in arguments.must_reach if name not in parts]
    if absent:
        sys.exit(f"nothing is known of: {', '.join(absent)}")
    low = [name for name in arguments.must_reach if parts[name].line_percent() < arguments.least]
    if low:
        sys.exit(f"less than {arguments.least:g} % of the lines were reached in: {', '.join(low)}")


if __name__ == "__main__":
    main()
