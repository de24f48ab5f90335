#!/usr/bin/env python3
"""Runs sessions through the console and compares what it writes, byte for byte.

A session is NAME.tessor, given to the console on standard input. Beside it stand
  NAME.out   standard output as expected
  NAME.err   the error stream as expected; without it nothing may be written there
  NAME.args  the options, as a shell would split them; without it: -q
  NAME.code  the exit code; without it: 0
Each session runs in an empty directory of its own. What differs from run to run or from machine to
machine (times, the version, the machine's memory) is made equal on both sides before comparing.
"""

import argparse
import difflib
import pathlib
import re
import shlex
import subprocess
import sys
import tempfile

TIME_LIMIT = 120  # seconds for a session, in the slowest of builds
LINES_SHOWN = 60  # of a difference

VARYING = [
    (rb"--- Spent: \d\d:\d\d:\d\d\.\d{6} ---", b"--- Spent: 00:00:00.000000 ---"),
    (rb"-- Tessor version .* \[build \d+\]", b"-- Tessor version V [build 0]"),
    (rb"\n Compiled on: [^\n]+\n", b"\n Compiled on: HERE\n"),
    (rb"Available memory: [0-9.e+]+ MiB", b"Available memory: 2048 MiB"),
]


def settled(text):
    for pattern, replacement in VARYING:
        text = re.sub(pattern, replacement, text)
    return text


def beside(session, suffix, default=None):
    path = session.with_suffix(suffix)
    return path.read_bytes() if path.exists() else default


def run(console, session):
    """Output, error output and exit code of a session."""
    arguments = shlex.split(beside(session, ".args", b"-q").decode())
    with tempfile.TemporaryDirectory() as directory, session.open("rb") as text:
        done = subprocess.run(
            ["tessor", *arguments], executable=console, stdin=text, capture_output=True,
            cwd=directory, timeout=TIME_LIMIT, check=False)
    return settled(done.stdout), settled(done.stderr), done.returncode


def shown(text):
    """Lines of a text for a reader: unusual bytes escaped, a missing last line end told."""
    readable = []
    for line in re.findall("[^\n]*\n|[^\n]+", text.decode("latin-1")):
        body = line.rstrip("\n")
        escaped = "".join(c if " " <= c < "\x7f" else c.encode("unicode_escape").decode()
                          for c in body)
        readable.append(escaped if line.endswith("\n") else escaped + "<no line end>")
    return readable


def difference(what, expected, got):
    lines = list(difflib.unified_diff(
        shown(expected), shown(got), f"{what} expected", f"{what} written", lineterm=""))
    if len(lines) > LINES_SHOWN:
        lines[LINES_SHOWN:] = [f"... {len(lines) - LINES_SHOWN} more lines"]
    return "\n".join("    " + line for line in lines)


def check(console, session):
    """What is wrong with a session, as text; empty if nothing is."""
    if not session.with_suffix(".out").exists():
        return f"    there is no {session.stem}.out"
    try:
        out, err, code = run(console, session)
    except subprocess.TimeoutExpired:
        return f"    not done after {TIME_LIMIT} seconds"
    faults = []
    for what, suffix, got in (("output", ".out", out), ("error output", ".err", err)):
        expected = settled(beside(session, suffix, b""))
        if got != expected:
            faults.append(difference(what, expected, got))
    expected_code = int(beside(session, ".code", b"0"))
    if code != expected_code:
        faults.append(f"    exit code {code}, expected {expected_code}")
    return "\n".join(faults)


def update(console, session, force):
    """Writes the expected files that are missing, all of them with force. Read them before use."""
    out, err, code = run(console, session)
    wanted = {".out": out, ".err": err, ".code": b"%d\n" % code}
    for suffix, text in wanted.items():
        path = session.with_suffix(suffix)
        if path.exists() and not force:
            continue
        if suffix == ".out" or text not in (b"", b"0\n"):
            path.write_bytes(text)
            print(f"wrote {path}")
        elif path.exists():
            path.unlink()
            print(f"removed {path}")


def sessions_of(places):
    for place in places:
        if place.is_dir():
            yield from sorted(place.rglob("*.tessor"))
        else:
            yield place


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--console", required=True, type=pathlib.Path, help="the program to run")
    parser.add_argument("--update", action="store_true", help="write missing expected files")
    parser.add_argument("--force", action="store_true", help="with --update: all of them anew")
    parser.add_argument("places", nargs="+", type=pathlib.Path,
                        help="sessions, or directories of them")
    options = parser.parse_args()
    console = options.console.resolve()

    failed = total = 0
    for session in sessions_of(options.places):
        if options.update:
            update(console, session, options.force)
            continue
        total += 1
        if fault := check(console, session):
            failed += 1
            print(f"FAILED {session}\n{fault}\n")
    if not options.update:
        print(f"{total - failed} of {total} sessions as expected")
        if total == 0:
            sys.exit("no session found")
    sys.exit(1 if failed else 0)


if __name__ == "__main__":
    main()
