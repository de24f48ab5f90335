#!/usr/bin/env python3
"""Large arrays over threads, tried from outside: what the workers make is what a serial run makes.

    parallel_test.py CONSOLE

The same programs, with random operands of every kind, run with and without workers.
"""

import random
import subprocess
import sys

DYADIC = "+ - * / < =< = >= > ~= == AND OR NAND !^".split()
NARROW = "| MIN MAX POW".split()  # not for quaternions
MONADIC = "NEGATIVE CONJUGATE MAGNITUDE FLOOR CEILING EXP NOT LOGICAL RECIPROCAL SIGNUM SIN COS".split()
# Around the thresholds of two, three and five streams, and where packed loops are worth sharing.
SIZES = [2002, 2003, 3003, 3004, 5005, 5006, 6001, 40000]
WORKERS = ["-c1", "-c2", "-c4"]

failures = 0



KINDS = {
    "integers": lambda: str(random.randint(-50, 50)),
    "large": lambda: random.choice(["1", "2147483647", "-7", "65536"]),
    "reals": lambda: repr(round(random.uniform(-3, 3), 6)),
    "complex": lambda: f"{random.randint(-4, 4)}i{random.randint(1, 4)}",
    "quaternions": lambda: f"{random.randint(-4, 4)}i1j{random.randint(1, 4)}k2",
    "mixed": lambda: random.choice(["3", "0.5", "2i1", "(1 2)", "7"]),
}


def operand(kind, size):
    """A vector: a few hundred literals, repeated; the last one stands alone in its slice."""
    draw = KINDS[kind]
    some = " ".join(draw() for _ in range(199))
    return f"({some}) {size} RESHAPE"


def program(kind, other, size):
    lines = [f"{operand(kind, size)} @A SET", f"{operand(other, size)} @B SET"]
    narrow = [] if "quaternions" in (kind, other) else NARROW
    for verb in DYADIC + narrow:
        lines += [f"A B {verb}", f"A 1 + B {verb}", f"A 3 {verb}", f"2.5 B {verb}"]
    for verb in MONADIC:
        lines += [f"A {verb}", f"A 1 * {verb}"]
    return "".join(f"CLEAR {line} PRINT .\n" for line in lines)


# What a function leaves while it is still being made: slices of two kinds, joined later.
REMEMBERED = """
3000000 INTERVAL @BIG SET MONADIC 1000 * ; @PLUS SET .
BIG PLUS RESULT DISCARD BIG PLUS RESULT 0.5 * SUM PRINT BIG PLUS REEVALUATE SUM PRINT .
"""

DEEP = """
(1 (2 (3 4))) 40000 RESHAPE DUP PITIMES PRINT NEGATIVE PRINT .
"""


def shown(console, options, text):
    run = subprocess.run([console, "-q", *options], input=text.encode(), capture_output=True,
                         timeout=600, check=False)
    output = b"".join(line for line in run.stdout.splitlines(True) if b"--- Spent" not in line)
    return run.returncode, output, run.stderr


def compare(console, what, text):
    global failures
    serial = shown(console, [], text)
    for workers in WORKERS:
        if shown(console, [workers], text) != serial:
            failures += 1
            print(f"{workers} differs from the serial run: {what}", flush=True)


def main():
    console = sys.argv[1]
    rounds = int(sys.argv[2]) if len(sys.argv) > 2 else 2
    random.seed(20220 + rounds)
    for _ in range(rounds):
        for kind in KINDS:
            other, size = random.choice(list(KINDS)), random.choice(SIZES)
            compare(console, f"{kind} and {other}, {size}", program(kind, other, size))
    compare(console, "remembered results", REMEMBERED)
    compare(console, "values three deep", DEEP)
    print(f"failures: {failures}")
    sys.exit(failures != 0)


if __name__ == "__main__":
    main()
