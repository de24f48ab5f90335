#!/usr/bin/env python3
"""How much of the sources the tests have run, from the counts of a coverage build.

    coverage.py BUILD [--lines PERCENT --branches PERCENT] [--missed FILE]

Counts the floors that the language stands on. All instantiations of a template are one source: a
branch is covered if any of them took it. Branches that only an exception takes aren't counted.
Fails below the percentages that are asked for. --missed lists the lines of one source that have not
been run, and those with a branch not taken.
"""

import argparse
import collections
import json
import pathlib
import subprocess
import sys

FLOORS = ("values", "engine", "frontend", "scalar", "array")
TOP = pathlib.Path(__file__).resolve().parent.parent
AT_ONCE = 20


class Line:
    def __init__(self):
        self.run = False
        self.taken = []  # of each branch

    def add(self, line):
        self.run = self.run or line["count"] > 0
        taken = [branch["count"] > 0 for branch in line["branches"] if not branch["throw"]]
        longer, shorter = sorted((self.taken, taken), key=len, reverse=True)
        self.taken = [one or (i < len(shorter) and shorter[i]) for i, one in enumerate(longer)]


def reports(build):
    """The reports of gcov, one for each object file."""
    objects = sorted(path.resolve() for path in pathlib.Path(build).rglob("src/**/*.gcda"))
    for i in range(0, len(objects), AT_ONCE):
        text = subprocess.run(["gcov", "--json-format", "--stdout", "--branch-probabilities",
                               *map(str, objects[i:i + AT_ONCE])],
                              capture_output=True, check=True, cwd=build).stdout
        for report in text.splitlines():
            yield json.loads(report)


def source_of(name, build):
    path = pathlib.Path(name)
    path = (path if path.is_absolute() else build / path).resolve()
    if path.is_relative_to(TOP / "src") and path.relative_to(TOP / "src").parts[0] in FLOORS:
        return str(path.relative_to(TOP))
    return None


def measure(build):
    build = pathlib.Path(build).resolve()
    sources = collections.defaultdict(lambda: collections.defaultdict(Line))
    for report in reports(build):
        for file in report["files"]:
            source = source_of(file["file"], build)
            if source:
                # Copies of one line within one function are parts of it, as a loop's head has.
                for line in file["lines"]:
                    sources[source][line["line_number"]].add(line)
    return sources


def share(part, whole):
    return 100.0 * part / whole if whole else 100.0


def totals(lines):
    run = sum(line.run for line in lines)
    branches = [taken for line in lines for taken in line.taken]
    return run, len(lines), sum(branches), len(branches)


def show_missed(source, lines):
    text = (TOP / source).read_text().splitlines()
    for number, line in sorted(lines.items()):
        if not line.run or not all(line.taken):
            what = "".join("+" if taken else "-" for taken in line.taken) if line.run else "not run"
            print(f"{number:5} {what:8} {text[number - 1]}")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("build")
    parser.add_argument("--lines", type=float, default=0)
    parser.add_argument("--branches", type=float, default=0)
    parser.add_argument("--missed")
    asked = parser.parse_args()
    sources = measure(asked.build)
    if asked.missed:
        show_missed(asked.missed, sources[asked.missed])
        return 0
    for source in sorted(sources):
        run, lines, taken, branches = totals(sources[source].values())
        print(f"{share(run, lines):6.1f} {share(taken, branches):6.1f}  {branches - taken:4}  {source}")
    run, lines, taken, branches = totals(
        [line for source in sources.values() for line in source.values()])
    print(f"lines {share(run, lines):.1f} % of {lines}, branches {share(taken, branches):.1f} % of {branches}")
    return share(run, lines) < asked.lines or share(taken, branches) < asked.branches


if __name__ == "__main__":
    sys.exit(main())
