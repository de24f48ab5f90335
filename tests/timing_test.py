#!/usr/bin/env python3
"""Reports of a run, by patterns, and what they count. Usage: timing_test.py CONSOLE"""

import re
import subprocess
import sys

NUMBER = r" *(?:[\d.e+]+|inf|-?nan)"  # a clock of microseconds may see no time pass
TIME = rf"{NUMBER} +(?:nS|uS|mS|S)"
ELAPSED = r"\n--> \t\xe4t = \d\d\.\d\d \d{3}mS \d{3}uS\n"
RATES = (r"\n\n-->\tExecuted 3 operators, 1 operations\.\n"
         rf"-->\tPerformance:\t{NUMBER} Tessor operators/sec,\n"
         rf"\t\t\t{NUMBER} scalar operations/sec\.\n")
PER_MHZ = rf"\n-->\tProcessor performance: {NUMBER} Tessor operations per Mhz\n"
VALUE = r"\n\n 3"
REPORTS = [
    ("-t", "1 2 + .", ELAPSED + VALUE),
    ("-p", "1 2 + .", RATES + VALUE),
    ("-p -t", "1 2 + .", RATES + ELAPSED + VALUE),
    ("-pp3000 -t", "1 2 + .", r"\n" + PER_MHZ + ELAPSED + VALUE),
    ("-p -pp3000 -t", "1 2 + .", RATES + PER_MHZ + ELAPSED + VALUE),
    ("-p", ".", r"\n\n-\n"),
    ("-i", "1 2 + .", VALUE),  # and no more, as it is quiet
    ("-p -t", "+ .", ""),  # a sentence that fails isn't reported
]

# What a program counts: options, text, operators and operations of its last sentence, and the
# operations and flops of each instruction.
COUNTS = [
    ("", "1 2 + .", 3, 1, {"ADD": (1, 1)}),
    ("", "(1 2 3) 2.5 * DISCARD .", 4, 3, {"MULTIPLY": (3, 4), "DISCARD": (1, 0)}),
    ("", "(1 2) () + .", 3, 0, {"ADD": (1, 0)}),
    ("", "1 CHECK 2 3 + IF_YES .", 6, 1, {"CHECK": (1, 0), "ADD": (1, 1)}),
    ("", "0 CHECK 2 3 + IF_YES .", 5, 0, {"CHECK": (1, 0), "IF_YES": (1, 0)}),
    ("", "'1.5 2.5 +' EXECUTE .", 5, 1, {"EXECUTE": (1, 0), "ADD": (1, 2)}),
    ("", "3 MONADIC 2.5 * DISCARD ; LOOP .", 15, 6,
     {"LOOP": (3, 0), "MULTIPLY": (3, 6), "DISCARD": (3, 0)}),
    ("", "(1 2 3) MONADIC 2.5 * ; EACH .", 12, 6, {"EACH": (3, 0), "MULTIPLY": (3, 6)}),
    ("", "MONADIC 2 * ; VERB @TWICE SET . 5 TWICE .", 5, 1,
     {"OPERATOR": (1, 0), "SET": (1, 0), "MULTIPLY": (1, 1)}),
    ("", "(1.5 2.5 3.5) SUM .", 2, 3, {"REDUCE": (3, 0)}),
    ("", "(1.5 2.5 3.5) LARGEST .", 2, 5, {"REDUCE": (5, 2)}),
    ("", "(1.5 (2.5) 3.5) LARGEST .", 2, 5, {"REDUCE": (5, 2)}),
    ("", "1 5 JUMP 2 3 4 .", 5, 0, {}),  # an instruction that leaves its cell makes no entry
    ("-c2", "20000 INTERVAL 2.5 * DISCARD .", 5, 40000,
     {"INTERVAL": (20000, 0), "MULTIPLY": (20000, 20001), "DISCARD": (1, 0)}),
]

UNITS = {"G": 1e9, "M": 1e6, "K": 1e3, "": 1}
RECORD = re.compile(rf"^(\w+):\t\t?{NUMBER} +[GMK]?op/S\t[^\n]*\t *{TIME},\t{NUMBER} %t\n"
                    rf"\t *{TIME} +avg, *{TIME} +sdev,({NUMBER}) +([GMK]?)ops\n"
                    rf"(?:\t{NUMBER} +\S*fp/op\t\t({NUMBER}) +([GMK]?)fpops *)?\n", re.M)

failures = 0


def shown(console, options, text):
    done = subprocess.run([console, *options.split()], input=text.encode(), capture_output=True,
                          timeout=60, check=True)
    return done.stdout.decode("latin-1")


def expect(holds, what):
    global failures
    if not holds:
        failures += 1
        print(what, flush=True)


def amount(number, unit):
    return float(number) * UNITS[unit] if number else 0


def check_reports(console):
    for options, text, pattern in REPORTS:
        written = shown(console, "-q " + options, text)
        expect(re.fullmatch(pattern + r"\n--- Spent: \S+ ---\n\n", written),
               f"{options}, {text}: {written!r}")


def check_counts(console, rows):
    for options, text, operators, operations, records in rows:
        written = shown(console, f"-p -if {options}", text)
        found = {name: (amount(n, unit), amount(flops, flop_unit)) for name, n, unit, flops, flop_unit
                 in RECORD.findall(written)}
        executed = re.findall(r"Executed (\d+) operators, (\d+) operations", written)
        expect(executed and executed[-1] == (str(operators), str(operations)), f"{text}: {executed}")
        expect(found == records, f"{text}: {found}")
        expect(("Execution timing" in written) == bool(records), f"{text}: {written}")
        expect(("\nProcessor 1:\t\t" in written) == ("-c" in options), f"{text}: {written}")


def main():
    console = sys.argv[1]
    check_reports(console)
    check_counts(console, COUNTS)
    sys.exit(failures != 0)


if __name__ == "__main__":
    main()
