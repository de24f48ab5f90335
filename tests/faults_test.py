#!/usr/bin/env python3
"""What surrounds the console fails, or is larger than anybody types: inputs of many megabytes,
outputs that take nothing, files that are none, saved workspaces cut off. After each of them it
answers as before.

    faults_test.py CONSOLE
"""

import os
import random
import signal
import subprocess
import sys
import tempfile
import time

SECONDS = 120  # for the slowest of builds
MILLION = 1_000_000
NAME = "a" * MILLION
AFTER = "CLEAR 20 22 + .\n"
ANSWER = b" 42\n"

# A text, and what the error stream has to hold; empty: nothing at all.
LONG_INPUTS = {
    "name": (f"5 @{NAME} SET . {NAME} 37 + .", b""),
    "unset name": (f"{NAME} .", b"23 - this name"),
    "quoted name": (f"\2{NAME}\3 .", b"23 - this name"),
    "constant": (f"#{NAME} .", b"23 - this name"),
    "label": (f"NILADIC @%{NAME} 1 ; .", b""),
    "addresses": ("@" * MILLION + " .", b""),
    "operators": ("::" * MILLION + " .", b""),
    "digits": (f"{'1' * MILLION} . 1.{'3' * MILLION} . 1e{'9' * MILLION} .", b""),
    "bits": (f"0#{'1' * MILLION} .", b"809 - "),
    "components": (f"1{'i1' * MILLION} .", b"23 - this name"),
    "brackets": (f"1{'[2' * MILLION} .\n(1)[1{' 1' * MILLION}] .", b"23 - this name"),
    "opened literals": ("(" * 100_000 + " .\n" + ")" * 100_000 + " .", b"807 - programme storage"),
    "opened functions": (f"{'NILADIC ' * 2000} .\n{'; ' * 2000} DISCARD .", b"forcibly finished"),
    "conditional cells": (f"{': ' * 2000} .\n{'! ' * 2000} DISCARD .", b"forcibly finished"),
    "cells": ("1 " * 20_000 + " .", b"807 - programme storage"),
    "line": (f"({'1 ' * (5 * MILLION)}) SUM .", b""),
    "text": (f"'{'x' * (10 * MILLION)}' SHAPE .", b""),
    "comment": (f"\"{'x' * (10 * MILLION)}\" .", b""),
    "executed": (f"'{'1 ' * MILLION}' EXECUTE .", b"807 - programme storage"),
}

failures = []


def expect(what, met, shown=b""):
    if not met:
        failures.append(what)
        print(f"{what}: {shown[-300:]!r}", flush=True)


def run(console, text, options=(), **streams):
    streams = {"stdout": subprocess.PIPE, "stderr": subprocess.PIPE, **streams}
    return subprocess.run([console, "-q", *options], input=text.encode("latin-1"), timeout=SECONDS,
                          check=False, **streams)


def goes_on(what, done):
    expect(what, done.returncode == 0 and ANSWER in done.stdout[-100:],
           b"%d %s %s" % (done.returncode, done.stdout[-100:], done.stderr[-200:]))


def test_long_inputs(console):
    for what, (text, report) in LONG_INPUTS.items():
        done = run(console, f"{text}\n{AFTER}")
        goes_on(what, done)
        expect(f"{what}: report", report in done.stderr if report else not done.stderr, done.stderr)


def test_output_that_takes_nothing(console):
    text = f"1000 INTERVAL PRINT .\n'kept' 'file' TEXTWRITE .\n{AFTER}"
    for options in ([], ["-t"]):
        with open("/dev/full", "wb") as full:
            expect("full output", run(console, text, options, stdout=full).returncode == 0)
        done = subprocess.run(["sh", "-c", 'exec "$0" "$@" >&-', console, "-q", *options],
                              input=text.encode(), stderr=subprocess.PIPE, timeout=SECONDS,
                              check=False)
        expect("closed output", done.returncode == 0, done.stderr)
        with open("file", "rb") as file:
            expect("text written meanwhile", file.read() == b"kept")
        os.remove("file")


def test_files_that_are_none(console):
    os.mkdir("directory")
    os.symlink("loop", "loop")
    for name in ("directory", "loop", "missing", "directory/missing"):
        for verb in ("READ", "TEXTREAD", "LOAD", "OPEN CLOSE"):
            done = run(console, f"'{name}' {verb} .\n{AFTER}")
            goes_on(f"{verb} of {name}", done)
    for verb in ("WRITE", "TEXTWRITE", "SAVE"):
        done = run(console, f"1 'directory' {verb} .\n{AFTER}")
        goes_on(f"{verb} of a directory", done)
        expect(f"{verb} of a directory: report", b"7" in done.stderr, done.stderr)


def interrupted(console, what, sentence, seconds=0.4):
    """An interrupt some time after a sentence has begun: it ends at once."""
    with subprocess.Popen([console, "-q"], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                          stderr=subprocess.PIPE) as process:
        process.stdin.write(f"'begun' TELL {sentence} .\n".encode())
        process.stdin.flush()
        seen = b""
        while b"begun" not in seen:
            seen += process.stdout.read1()
        time.sleep(seconds)
        process.send_signal(signal.SIGINT)
        began = time.monotonic()
        written, errors = process.communicate(AFTER.encode(), timeout=SECONDS)
        expect(f"{what}: in time", time.monotonic() - began < SECONDS / 2)
        expect(what, b"** User interrupt. **" in written and ANSWER in written[-100:],
               written[-200:] + errors)


def test_interrupts_at_files(console):
    os.mkfifo("pipe")
    interrupted(console, "reading of a pipe that nobody writes", "'pipe' TEXTREAD")
    interrupted(console, "writing of a pipe that nobody reads", "1 'pipe' WRITE")
    interrupted(console, "saving again and again",
                "3000 INTERVAL 7.0 / @A SET 100000 MONADIC DISCARD 'saved' SAVE ; LOOP")


def test_cut_off_workspaces(console):
    whole = ("1i2 3 4.5 `(1 2 3) ('text' (1 2 (3 4)) #PI) @nested SET 'it''s' @text SET\n"
             "VARS 2 DYADIC @&2 SET @&1 SET &1 &2 + @%L 5 : 1 ; ! ; VERB @ADDED SET\n"
             "NEW CONTEXT 5 @inner SET 1o2 (3 3) RESHAPE @octonions SET\n'saved' SAVE .\n")
    goes_on("workspace saved", run(console, whole + AFTER))
    with open("saved", "rb") as file:
        saved = file.read()
    expect("saved", len(saved) > 200, saved)
    rng = random.Random(5)
    cuts = "".join(f"'cut{i}' LOAD .\nCLEAR .\n" for i in range(40))
    for i in range(40):
        with open(f"cut{i}", "wb") as file:
            file.write(saved[:rng.randrange(len(saved))])
    done = run(console, cuts + "'' " + AFTER)
    expect("cut off workspaces", done.returncode == 0, done.stderr)


def main():
    console = os.path.abspath(sys.argv[1])
    with tempfile.TemporaryDirectory() as place:
        os.chdir(place)
        for test in (test_long_inputs, test_output_that_takes_nothing, test_files_that_are_none,
                     test_interrupts_at_files, test_cut_off_workspaces):
            test(console)
        os.chdir("/")
    sys.exit(bool(failures))


if __name__ == "__main__":
    main()
