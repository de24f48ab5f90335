#!/usr/bin/env python3
"""The machine beside CPython, Lua, gforth and Ghostscript: turns, calls, recursion, pushes, memory.

    programs.py CONSOLE

Each row is the same small program in every language, run in turns. The time of the same text with
a count of none, which is what starting and compiling take, is subtracted.
"""

import os
import shutil
import statistics
import sys
import tempfile

from console import PYTHON, Texts, seconds

ROUNDS = 9
N = 1_000_000
UNROLLED = 100  # pushes that stand one behind the other in a turn

# Of a row: what is counted and how often, the most it may take of CPython's time (none: only
# shown), and the texts. In them COUNT is the number of turns, 0 for the run to subtract.
ROWS = [
    {
        "what": "a turn that adds to a name, LOOP", "turns": N, "each": 1, "target": 1.0,
        "tessor": "0 @TOTAL SET COUNT MONADIC TOTAL + @TOTAL SET ; LOOP TOTAL PRINT .\n",
        "python": """
def run(n):
    total = 0
    for i in range(1, n + 1):
        total += i
    return total
print(run(COUNT))
""",
        "lua": "local total = 0\nfor i = 1, COUNT do total = total + i end\nprint(total)\n",
        "gforth": "variable total\n: run 1+ 1 ?do i total +! loop total @ . ;\nCOUNT run\n",
        "gs": "/total 0 def 1 1 COUNT { total add /total exch def } for total =\n",
    },
    {
        "what": "a turn that adds to a name, JUMP", "turns": N, "each": 1, "target": 1.0,
        "tessor": """
MONADIC
    %AGAIN DUP CHECK RETURN ?N
    DUP TOTAL + @TOTAL SET 1 - @%AGAIN JUMP ; VERB @RUNS SET .
0 @TOTAL SET COUNT RUNS DISCARD TOTAL PRINT .
""",
        "python": """
def run(n):
    total = 0
    while n:
        total += n
        n -= 1
    return total
print(run(COUNT))
""",
        "lua": """
local n, total = COUNT, 0
while n > 0 do total = total + n; n = n - 1 end
print(total)
""",
        "gforth": """
variable total
: run begin dup while dup total +! 1- repeat drop total @ . ;
COUNT run
""",
        "gs": """
/total 0 def
COUNT { dup 0 eq { pop exit } if dup total add /total exch def 1 sub } loop
total =
""",
    },
    {
        "what": "a call of a one-line function", "turns": N, "each": 1, "target": 1.0,
        "tessor": "MONADIC 1 + ; VERB @NEXT SET 0 COUNT : NEXT ; REPEAT PRINT .\n",
        "python": """
def after(x):
    return x + 1
def run(n):
    x = 0
    for _ in range(n):
        x = after(x)
    return x
print(run(COUNT))
""",
        "lua": """
local function after(x) return x + 1 end
local x = 0
for _ = 1, COUNT do x = after(x) end
print(x)
""",
        "gforth": ": after 1 + ;\n: run 0 swap 0 ?do after loop . ;\nCOUNT run\n",
        "gs": "/after { 1 add } def 0 COUNT { after } repeat =\n",
    },
    {
        "what": "Fibonacci of 25, recursively", "turns": 10, "each": 1, "target": 2.0,
        "tessor": """
MONADIC DUP 2 < CHECK RETURN ?Y DUP 1 - FIB SWAP 2 - FIB + ; VERB @FIB SET .
0 COUNT : DISCARD 25 FIB ; REPEAT PRINT .
""",
        "python": """
def fib(n):
    return n if n < 2 else fib(n - 1) + fib(n - 2)
x = 0
for _ in range(COUNT):
    x = fib(25)
print(x)
""",
        "lua": """
local function fib(n) if n < 2 then return n end return fib(n - 1) + fib(n - 2) end
local x = 0
for _ = 1, COUNT do x = fib(25) end
print(x)
""",
        "gforth": """
: fib dup 2 < if exit then dup 1- recurse swap 2 - recurse + ;
: run 0 swap 0 ?do drop 25 fib loop . ;
COUNT run
""",
        "gs": """
/fib { dup 2 ge { dup 1 sub fib exch 2 sub fib add } if } def
0 COUNT { pop 25 fib } repeat =
""",
    },
    {
        "what": "`1 2 +` and DISCARD", "turns": N // UNROLLED, "each": UNROLLED, "target": 1.0,
        "tessor": "COUNT : " + "1 2 + DISCARD\n" * UNROLLED + "; REPEAT .\n",
        "python": "def run(a, b):\n    for _ in range(COUNT):\n" + "        a + b\n" * UNROLLED
                  + "run(1, 2)\n",
        "lua": "local a, b, c = 1, 2\nfor _ = 1, COUNT do\n" + "c = a + b\n" * UNROLLED + "end\n",
        "gforth": ": run 0 ?do\n" + "1 2 + drop\n" * UNROLLED + "loop ;\nCOUNT run\n",
        "gs": "COUNT {\n" + "1 2 add pop\n" * UNROLLED + "} repeat\n",
    },
    {
        "what": "EACH of a one-line function", "turns": N, "each": 1, "target": 1.0,
        "tessor": "(1)[COUNT] MONADIC 1 + ; EACH DISCARD .\n",
        "python": "after = lambda x: x + 1\nmade = [after(x) for x in [1] * COUNT]\n",
        "lua": """
local function after(x) return x + 1 end
local made = {}
for i = 1, COUNT do made[i] = after(1) end
""",
    },
    {
        "what": "MASK of 3 by 3, around a torus", "turns": 20, "each": 10_000, "target": 1.0,
        "tessor": """
(1 2 3)[100 100] @DATA SET (1 2 1 2 4 2 1 2 1)[3 3] @WEIGHTS SET
COUNT : DATA WEIGHTS MONADIC DISCARD 1 ; WRAP MASK DISCARD ; REPEAT .
""",
        "python": """
data = [[(x + y) % 3 + 1 for x in range(100)] for y in range(100)]
weights = [(1, 2, 1), (2, 4, 2), (1, 2, 1)]
def masked(function):
    for y in range(100):
        rows = data[y - 1], data[y], data[(y + 1) % 100]
        for x in range(100):
            at = x - 1, x, (x + 1) % 100
            function([weight * row[i] for row, line in zip(rows, weights)
                      for i, weight in zip(at, line)])
for _ in range(COUNT):
    masked(lambda around: 1)
""",
        "lua": """
local data, weights = {}, {{1, 2, 1}, {2, 4, 2}, {1, 2, 1}}
for y = 1, 100 do
    data[y] = {}
    for x = 1, 100 do data[y][x] = (x + y) % 3 + 1 end
end
local function masked(f)
    for y = 1, 100 do
        for x = 1, 100 do
            local around = {}
            for j = 1, 3 do
                local row, line = data[(y + j - 3) % 100 + 1], weights[j]
                for i = 1, 3 do
                    around[#around + 1] = line[i] * row[(x + i - 3) % 100 + 1]
                end
            end
            f(around)
        end
    end
end
for _ = 1, COUNT do masked(function() return 1 end) end
""",
    },
    {
        "what": "RESULT of a remembered argument", "turns": N, "each": 1, "target": None,
        "tessor": "MONADIC 2 * ; @DOUBLE SET COUNT : 7 DOUBLE RESULT DISCARD ; REPEAT .\n",
        "python": """
import functools
@functools.cache
def double(x):
    return x * 2
def run(n):
    for _ in range(n):
        double(7)
run(COUNT)
""",
        "lua": """
local known = {}
local function double(x)
    local y = known[x]
    if not y then y = x * 2; known[x] = y end
    return y
end
for _ = 1, COUNT do double(7) end
""",
        "gs": """
/memo 10 dict def
/double {
    memo 1 index known { memo exch get } { dup 2 mul memo 2 index 2 index put exch pop } ifelse
} def
COUNT { 7 double pop } repeat
""",
    },
]

missed = 0


def commands(console):
    """The languages in the order of their columns, and what runs a program in them."""
    return {
        "tessor": [console, "-q"],
        "python": [PYTHON],
        "lua": [shutil.which("lua5.4")],
        "gforth": [shutil.which("gforth")],
        "gs": [shutil.which("gs"), "-q", "-dNODISPLAY", "-dBATCH", "-dNOPAUSE"],
    }


def prepared(row, language, command, turns, texts):
    """Command and standard input of a program with its count filled in."""
    name = f"{language}_{turns}"
    text = texts.write(name, row[language].replace("COUNT", str(turns)))
    if language == "tessor":
        return command, text
    ending = ["-e", "bye"] if language == "gforth" else []
    return [*command, text, *ending], texts.write("nothing", "")


def measured(row, languages, texts):
    """Seconds of each language for what the row counts, without start and compilation."""
    pairs = [prepared(row, language, command, turns, texts)
             for language, command in languages.items() if language in row
             for turns in (row["turns"], 0)]
    times = [[seconds(*pair) for pair in pairs] for _ in range(ROUNDS)]
    medians = [statistics.median(column) for column in zip(*times)]
    each = row["turns"] * row["each"]
    present = [language for language in languages if language in row]
    return {language: (medians[2 * i] - medians[2 * i + 1]) / each
            for i, language in enumerate(present)}


def show(row, languages, times):
    global missed
    unit, scale = ("ms", 1e3) if times["tessor"] > 1e-4 else ("ns", 1e9)
    columns = "".join(f"{times[language] * scale:9.1f}" if language in times else f"{'-':>9}"
                      for language in languages)
    ratio = times["tessor"] / times["python"]
    verdict = ""
    if row["target"] is not None:
        met = ratio <= row["target"]
        missed += not met
        verdict = f"<= {row['target']:g} {'ok' if met else 'MISSED'}"
    print(f"{row['what']:34}{columns} {unit}  x{ratio:.2f} {verdict}".rstrip(), flush=True)


def main():
    languages = commands(os.path.abspath(sys.argv[1]))
    heads = "".join(f"{language:>9}" for language in languages)
    print(f"{'each':34}{heads}     of CPython")
    with tempfile.TemporaryDirectory() as directory:
        texts = Texts(directory)
        for row in ROWS:
            show(row, languages, measured(row, languages, texts))
    print(f"targets missed: {missed}")


if __name__ == "__main__":
    main()
