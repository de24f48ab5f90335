"""Measures NumPy on the work that comes in lines, as a user would write it: with fresh results.

time VERB TYPE N vector|scalar REPETITIONS   answers nanoseconds for one execution
evaluate REPETITIONS EXPRESSION              the same for an expression over named arrays
memory TYPE N                                answers the bytes at the peak of a sum, operands included
"""

import operator
import os
import sys
import time

import numpy

VERBS = {"add": operator.add, "subtract": operator.sub, "multiply": operator.mul,
         "divide": operator.truediv, "less": operator.lt, "equal": operator.eq,
         "minimum": numpy.minimum, "maximum": numpy.maximum,
         "and": numpy.logical_and, "or": numpy.logical_or,
         "not": lambda left, right: numpy.logical_not(left),
         "square": lambda left, right: left ** 2, "root": lambda left, right: numpy.sqrt(right),
         "power": lambda left, right: right ** 1.5,
         "logarithm": lambda left, right: numpy.log(right) / numpy.log(10)}
# Degrees of truth, which are taken as they are.
DEGREES = {"and": numpy.minimum, "or": numpy.maximum, "not": lambda left, right: 1 - left}
SCALARS = {"int32": 7, "float64": 7.5, "complex128": 7.5 + 7.5j, "bool": numpy.True_}

operands = {}


def made(values, kind):
    if kind == "int32":
        return values.astype(numpy.int32)
    if kind == "bool":
        return values % 2 != 0
    return ((values + 0.5) * (1 + 1j if kind == "complex128" else 1)).astype(kind)


def operands_of(kind, n):
    """Two arrays; those of the last request are kept."""
    if (kind, n) not in operands:
        operands.clear()
        i = numpy.arange(n, dtype=numpy.int64)
        operands[kind, n] = (made(i * 7919 % 2003 - 1001, kind), made(i * 104729 % 1009 + 1, kind))
    return operands[kind, n]


def measure(verb, kind, n, shape, repetitions):
    run = DEGREES.get(verb, VERBS[verb]) if kind == "float64" else VERBS[verb]
    left, right = operands_of(kind, n)
    if shape == "scalar":
        right = SCALARS[kind]
    began = time.perf_counter_ns()
    for _ in range(repetitions):
        run(left, right)
    return (time.perf_counter_ns() - began) / repetitions


named = {}


def evaluate(repetitions, expression):
    if not named:
        values = numpy.arange(9_000_000, dtype=numpy.int64) * 7919 % 2003 - 1001
        reals = made(values, "float64")
        ints = made(values, "int32")
        named.update(numpy=numpy, INTS=ints, REALS=reals, HALF=made(values, "bool"),
                     MATRIX=reals.reshape(3000, 3000), WHOLE=ints.reshape(3000, 3000),
                     PAIRS=reals.reshape(-1, 2),
                     SMALL=reals * 1e-3, POSITIVE=numpy.abs(reals * 1e-3))
    run = eval(f"lambda: {expression}", named)  # the rows' own texts
    run()
    began = time.perf_counter_ns()
    for _ in range(repetitions):
        run()
    return (time.perf_counter_ns() - began) / repetitions


def peak():
    with open("/proc/self/status", encoding="ascii") as status:
        return next(int(line.split()[1]) * 1024 for line in status if line.startswith("VmHWM"))


def memory(kind, n):
    """In a child, so that nothing from before counts."""
    answer, result = os.pipe()
    if os.fork() == 0:
        operands.clear()
        with open("/proc/self/clear_refs", "w", encoding="ascii") as clear:
            clear.write("5")
        before = peak()
        left, right = numpy.full(n, 3, kind), numpy.full(n, 4, kind)
        total = left + right
        os.write(result, str(peak() - before).encode())
        os._exit(len(total) - n)
    os.wait()
    os.close(result)
    with os.fdopen(answer) as text:
        return text.read()


def main():
    for line in sys.stdin:
        what, *words = line.split()
        if what == "time":
            verb, kind, n, shape, repetitions = words
            print(measure(verb, kind, int(n), shape, int(repetitions)), flush=True)
        elif what == "evaluate":
            print(evaluate(int(words[0]), " ".join(words[1:])), flush=True)
        else:
            print(memory(words[0], int(words[1])), flush=True)


main()
