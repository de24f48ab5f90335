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
    ("-c2", "3003 SERIAL . ((1.5 2.5) 3.5) 9000 RESHAPE NEGATIVE DISCARD .", 5, 21000,
     {"SERIAL": (1, 0), "RESHAPE": (9000, 0), "NEGATIVE": (12000, 13500), "DISCARD": (1, 0)}),
]

# What each verb counts for one element of each kind, beside the one flop of a dyadic verb itself.
Q, R, O = "1i2j3k4", "1i2j3k0", "1i2j3k4l5m6n7o8"
PAIRS = ["2 1", "2147483647 2", "2.5 5", "-2.5 0.5", "5 1i2", "1i2 5", "1i2 3i4", "1i0 3i0", "1i0 3i4",
         "1i2 3i0", f"5 {Q}", f"{Q} 5", f"1i2 {Q}", f"{Q} {Q}", f"{R} {Q}", f"{Q} {R}", f"{R} {R}",
         f"5 {O}", f"{O} 5", f"1i2 {O}", f"{Q} {O}", f"{O} {O}"]
FLOPS_OF_PAIRS = {
    "ADD": "0 1 1 1 1 1 2 2 2 2 1 1 2 4 4 4 4 1 1 2 4 8",
    "SUBTRACT": "0 0 1 1 1 1 2 2 2 2 1 1 2 4 4 4 4 1 1 2 4 8",
    "MULTIPLY": "0 1 1 1 2 2 6 1 2 2 4 4 12 28 20 20 14 8 8 26 56 120",
    "DIVIDE": "0 1 1 1 8 2 11 1 7 5 18 4 26 42 34 31 26 38 8 56 86 150",
    "RESIDUE": "0 0 4 4 20 20 20 20 20 20",
    "MINIMUM": "0 0 1 1 7 7 13 13 13 13 11 11 17 21 21 21 21",
    "MAXIMUM": "0 0 1 1 7 7 13 13 13 13",
    "POWER": "0 1 1 9 8 14 18 18 18 18",
    "LOGARITHM": "3 3 3 3 13 15 25 25 25 25",
    "BINOMIAL": "0 0 0 0 4 4 6 0 4 4",
    "AND OR NAND NOR STRONGAND STRONGOR STRONGNAND STRONGNOR":
        "0 0 3 3 3 3 6 6 6 6 3 3 6 12 12 12 12 3 3 6 12 24",
    "IDENTICAL NOTIDENTICAL": "0 0 1 1 2 2 2 2 2 2 4 4 4 4 4 4 4 8 8 8 8 8",
    "LESS NOTGREATER EQUIVALENT NOTLESS GREATER":
        "0 0 3 3 9 9 15 15 15 15 13 13 19 23 23 23 23 21 21 27 31 39",
    "NOTEQUIVALENT": "0 0 3 3 9 9 15 15 15 15 13 13 19 23 23 23 23",
}
ONES = ["5", "0", "2.5", "0.5", "1i2", "#1i2", "2i1e-20", "0.5i1", f"#{R}", f"#{Q}", "0i0j-1k0",
        f"#{O}", "#1i2j3k4l5m0n0o0"]
FLOPS_OF_ONES = {
    "CONJUGATE NUMBER FLOOR CEILING EXPONENTIAL NATURALLOG NOT BOOLEAN LOGICAL ISBOOLEAN ISLOGICAL "
    "ISBINARY ISNUMBER ISCARTESIAN ISPOLAR": "0 0 0 0 0 0 0 0 0 0 0 0 0",
    "BINARY": "0 0 0 0",
    "NEGATIVE": "0 0 1 1 2 2 2 2 4 4 4 8 8",
    "SIGNUM": "0 0 1 1 3 3 3 3 2 2 5 2 2",
    "DIRECTION": "0 0 1 1 4 4 4 4 8 8 8 16 16",
    "RECIPROCAL": "0 0 0 0 3 3 3 3 7 7 7 15 15",
    "MAGNITUDE": "0 0 0 0 4 4 4 4 8 8 8 16 16",
    "POLAR": "0 0 0 0 0 6 0 0 9 22 0 138 54",
    "CARTESIAN": "0 0 0 0 0 4 0 0 10 16 0 50 25",
    "DEG RAD": "2 2 2 2 0 0 0 0 0 0 0 0 0",
    "TRUNCATE": "0 0 2 2 4 4 4 4 8 8 8 16 16",
    "PITIMES": "1 1 1 1 2 2 2 2 4 4 4 8 8",
    "FACTORIAL": "0 0 0 0 2 2 0 2",
    "PROBABLY": "0 0 1 3 2 2 4 4 4 4 4 8 8",
    "CONTRADICTION": "0 0 0 0 5 5 5 5 11 11 11 18 18",
    "ROLL": "3 0 5 5 10 10 10 10 20 20 20 40 40",
    "RANDOM": "3 3 3 3 6 6 6 6 12 12 12 24 24",
}
FLOPS_OF_CIRCULAR = {  # of functions -7 to 7
    "2.5": "0 0 0 0 0 0 0 0 1 1 0 0 0 0 0",
    "1i2": "20 20 20 14 14 20 20 22 6 7 20 21 6 6 19",
    "2i0": "20 4 4 3 14 4 5 7 6 7 10 5 6 6 9",
    "0i0": "20 5 4 4 3 5 4 6 6 7 10 5 6 6 9",
    "0i2j3k4": "20 10 10 14 4 10 9 11 6 7 14 11 6 6 13",
}

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


def records_in(written):
    return {name: (amount(n, unit), amount(flops, flop_unit)) for name, n, unit, flops, flop_unit
            in RECORD.findall(written)}


def check_counts(console, rows):
    for options, text, operators, operations, records in rows:
        written = shown(console, f"-p -if {options}", text)
        found = records_in(written)
        executed = re.findall(r"Executed (\d+) operators, (\d+) operations", written)
        expect(executed and executed[-1] == (str(operators), str(operations)), f"{text}: {executed}")
        expect(found == records, f"{text}: {found}")
        expect(("Execution timing" in written) == bool(records), f"{text}: {written}")
        expect(("\nProcessor 1:\t\t" in written) == ("-c" in options), f"{text}: {written}")


# A row ends where the verb has no operation for the kinds to come.
def check_flops(console, operands, rows, own):
    for i, values in enumerate(operands):
        expected = {name: (1, own + int(row.split()[i])) for names, row in rows.items()
                    for name in names.split() if i < len(row.split())}
        text = "".join(f"{values} {name} CLEAR .\n" for names in rows for name in names.split())
        found = records_in(shown(console, "-if", text + "CLEAR .\n"))
        del found["CLEAR"]
        for name in expected.keys() | found.keys():
            expect(found.get(name) == expected.get(name),
                   f"{values} {name}: {found.get(name)}, not {expected.get(name)}")


def main():
    console = sys.argv[1]
    check_reports(console)
    check_counts(console, COUNTS)
    check_flops(console, PAIRS, FLOPS_OF_PAIRS, 1)
    check_flops(console, ONES, FLOPS_OF_ONES, 0)
    for value, row in FLOPS_OF_CIRCULAR.items():
        for function, flops in enumerate(row.split(), -7):
            check_flops(console, [f"{value} {function}"], {"CIRCULAR": flops}, 1)
    sys.exit(failures != 0)


if __name__ == "__main__":
    main()
