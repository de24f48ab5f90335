#!/usr/bin/env python3
"""Large arrays over threads, tried from outside: what the workers make is what a serial run makes.

    parallel_test.py CONSOLE [--rounds N]
    parallel_test.py CONSOLE --minutes N [--seed S] [--most ELEMENTS]

The first is for every day: verbs over operands of every kind, and what is known to be delicate. The
second is a soak with random programs, two at a time; a slow build gets through more of them with
small arrays. It prints the seeds of those that differ, with the sentence.
"""

import argparse
import concurrent.futures
import functools
import os
import random
import resource
import subprocess
import sys
import tempfile
import time

import random_programs

DYADIC = "+ - * / < =< = >= > ~= == AND OR NAND !^".split()
NARROW = "| MIN MAX POW".split()  # not for quaternions
MONADIC = "NEGATIVE CONJUGATE MAGNITUDE FLOOR CEILING EXP NOT LOGICAL RECIPROCAL SIGNUM SIN COS".split()
KINDS = "integers large reals complex quaternions various".split()
# Around the thresholds of two, three and five streams, and where packed loops are worth sharing.
SIZES = [2002, 2003, 3003, 3004, 5005, 5006, 6001, 40000]
WORKERS = ["-c1", "-c2", "-c4"]

failures = 0


def differ(what):
    global failures
    failures += 1
    print(what, flush=True)


def run(command, text, **more):
    return subprocess.run(command, input=text.encode(), stdout=subprocess.PIPE, check=False, **more)


def shown(console, options, text):
    done = run([console, "-q", *options], text, stderr=subprocess.PIPE, timeout=600)
    output = b"".join(line for line in done.stdout.splitlines(True) if b"--- Spent" not in line)
    return done.returncode, output, done.stderr


def compare(console, what, text):
    serial = shown(console, [], text)
    for workers in WORKERS:
        if shown(console, [workers], text) != serial:
            differ(f"{workers} differs from the serial run: {what}")


def verbs(kind, other, size):
    vector = random_programs.vector
    lines = [f"{vector(kind, size)} @A SET", f"{vector(other, size)} @B SET"]
    narrow = [] if "quaternions" in (kind, other) else NARROW
    for verb in DYADIC + narrow:
        lines += [f"A B {verb}", f"A 1 + B {verb}", f"A 3 {verb}", f"2.5 B {verb}"]
    for verb in MONADIC:
        lines += [f"A {verb}", f"A 1 * {verb}"]
    return "".join(f"CLEAR {line} PRINT .\n" for line in lines)


DELICATE = {
    "slices of two kinds, joined after a function has ended": """
3000000 INTERVAL @BIG SET MONADIC 1000 * ; @PLUS SET .
BIG PLUS RESULT DISCARD BIG PLUS RESULT 0.5 * SUM PRINT BIG PLUS REEVALUATE SUM PRINT .
""",
    "values three deep": "(1 (2 (3 4))) 40000 RESHAPE DUP PITIMES PRINT NEGATIVE PRINT .\n",
    "a tolerance that changes beside the job": """
(1 (2 1.05)) 400000 RESHAPE @A SET 0.01 @#CT SET .
A 1.0 = 0.2 @#CT SET A 1.0 = 0.01 @#CT SET SUM PRINT SUM PRINT .
""",
    "values too deep for a small stack": """
(1 2) @V SET 700 : V ENCLOSE 1 , @V SET ; REPEAT V 5010 RESHAPE @A SET .
A NEGATIVE 1 + SHAPE PRINT .
""",
}

# A slice that fails, by four workers: elements behind the failing one stay what they were, if they
# were to be written over.
FAILED = b"\nException processing:..."
REPORT = b"\n%s\n\nInstruction:\n . OPERATOR:\t\tMIN"
REFUSED = REPORT % b"994 - implementation restriction."
INCOMPATIBLE = REPORT % b"162 - Incompatible data types for the dyadic operator."
FAILING = {
    "the last slice, over its operand": (
        "5010 INTERVAL 'abc' , 3 MIN .\nREVERSE FIRST PRINT .\n", FAILED + b"c\n\n-\n\n\n", REFUSED),
    "the last slice, in a new block": (
        "5010 INTERVAL 'abc' , @A SET A 3 MIN .\nREVERSE FIRST PRINT A REVERSE FIRST PRINT .\n",
        FAILED + b" 0\nc\n\n-\n\n\n", REFUSED),
    "the first slice, and the others not": (
        "(7 8) 'a' 5010 INTERVAL , , 5.5 MIN .\nPRINT DUP FIRST PRINT REVERSE FIRST PRINT .\n",
        FAILED + b" 5.5\n 5.5\n 5.5\n\n-\n\n\n", INCOMPATIBLE),
}


def fail(console, what, text, output, report):
    written = shown(console, ["-c4"], text)
    if written != (0, output, report):
        differ(f"{what}: {written}")


def limit_memory():
    resource.setrlimit(resource.RLIMIT_AS, (1 << 30, 1 << 30))


def start_as_many_as_possible(console):
    """A worker that can't start makes a smaller pool. Sanitizers need the memory for themselves."""
    if run([console], "", stderr=subprocess.DEVNULL, preexec_fn=limit_memory).returncode != 0:
        return
    done = run([console, "-c5000"], "200000 INTERVAL 2 * SUM PRINT .\n", stderr=subprocess.DEVNULL,
               preexec_fn=limit_memory)
    if b", Succeeded to start " not in done.stdout or b"]>  4.00002e+10\n" not in done.stdout:
        differ(f"a smaller pool: {done}")


def every_day(console, rounds):
    random.seed(20220 + rounds)
    for _ in range(rounds):
        for kind in KINDS:
            other, size = random.choice(KINDS), random.choice(SIZES)
            compare(console, f"{kind} and {other}, {size}", verbs(kind, other, size))
    for what, text in DELICATE.items():
        compare(console, what, text)
    for what, (text, output, report) in FAILING.items():
        fail(console, what, text, output, report)
    start_as_many_as_possible(console)


# The soak.

MARK = "\n'=%d=' PRINT CLEAR .\n"
POOLS = [("-c1", 2), ("-c2", 3), ("-c4", 5), ("-c8", 9)]


def pieces(console, options, sentences, streams):
    """What each sentence writes, and the file that the last one makes."""
    choices = random.Random(len(sentences) + streams)
    text = "".join(MARK % i + sentence.replace("{most}", str(streams))
                   .replace("{streams}", str(choices.randint(1, streams)))
                   for i, sentence in enumerate(sentences))
    with tempfile.TemporaryDirectory() as directory:
        done = run([console, "-q", *options], text, stderr=subprocess.STDOUT, timeout=900,
                   cwd=directory)
        kept = os.path.join(directory, "kept")
        with open(kept, "rb") if os.path.exists(kept) else open(os.devnull, "rb") as file:
            saved = file.read()
    written = done.stdout
    found = []
    for i in range(len(sentences)):
        _, _, written = written.partition(b"=%d=\n" % i)
        found.append(written.partition(b"=%d=\n" % (i + 1))[0])
    return done.returncode, [piece.partition(b"\n--- Spent")[0] for piece in found], saved


def failed(piece):
    return b"Exception processing" in piece


def soak_once(console, most, seed):
    """Runs one program on one stream and on several: what differs, or how many sentences failed,
    and of how many."""
    random.seed(seed)
    sizes = [n for n in (60, 500, 2100, 5100, 9200, 40000) if n <= most]
    sentences = random_programs.program(sizes, random.randint(4, 20))
    pools = random.sample(POOLS, 2)
    timed = ["-i"] if random.random() < 0.5 else []
    serial = pieces(console, [], sentences, 1)
    for option, streams in pools:
        code, written, saved = pieces(console, [option, *timed], sentences, streams)
        for sentence, expected, got in zip(sentences, serial[1], written):
            # The report of a failure depends on the slice, and what has run beside it on the time.
            if failed(expected) != failed(got) or not failed(got) and got != expected:
                return f"{option} {timed}: {sentence}expected {expected[-500:]}\ngot {got[-500:]}"
        if code != serial[0] or saved != serial[2]:
            return f"{option} {timed}: exit code {code}, or what is saved\n{written[-1][-2000:]}"
    return sum(map(failed, serial[1])), len(sentences)


def soak(console, most, minutes, seed):
    end = time.monotonic() + 60 * minutes
    programs = sentences = refused = 0
    with concurrent.futures.ProcessPoolExecutor(2) as pool:
        while time.monotonic() < end and failures < 5:
            seeds = range(seed + programs, seed + programs + 8)
            results = pool.map(functools.partial(soak_once, console, most), seeds)
            for at, found in zip(seeds, results):
                if isinstance(found, str):
                    differ(f"--seed {at}: {found}")
                else:
                    refused += found[0]
                    sentences += found[1]
            programs += 8
    print(f"{programs} programs, {sentences} sentences, {refused} of which failed")


def main():
    arguments = argparse.ArgumentParser()
    arguments.add_argument("console", type=os.path.abspath)
    arguments.add_argument("--rounds", type=int, default=2)
    arguments.add_argument("--minutes", type=float)
    arguments.add_argument("--most", type=int, default=40000)
    arguments.add_argument("--seed", type=int, default=int(time.time()))
    given = arguments.parse_args()
    if given.minutes is None:
        every_day(given.console, given.rounds)
    else:
        soak(given.console, given.most, given.minutes, given.seed)
    print(f"failures: {failures}")
    sys.exit(failures != 0)


if __name__ == "__main__":
    main()
