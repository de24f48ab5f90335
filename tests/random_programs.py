"""Random programs for consoles that ought to agree, whatever the number of their streams.

A program is a list of sentences, each by itself: it starts from values that no sentence changes,
and shows all that it leaves. What depends on draws is shown by what holds for any draw.
"""

import random

NUMBERS = {
    "integers": lambda: str(random.randint(-50, 50)),
    "large": lambda: random.choice(["1", "2147483647", "-7", "65536", "-2147483647"]),
    "small": lambda: str(random.randint(0, 6)),
    "reals": lambda: repr(round(random.uniform(-3, 3), 6)),
    "whole": lambda: random.choice(["1.0", "2.5", "-3.0", "1e9", "0.0"]),
    "degrees": lambda: random.choice(["0.25", "0.5", "1.0", "0.0"]),
    "complex": lambda: f"{random.randint(-4, 4)}i{random.randint(1, 4)}",
    "quaternions": lambda: f"{random.randint(-4, 4)}i1j{random.randint(1, 4)}k2",
    "octonions": lambda: f"{random.randint(-4, 4)}i1o{random.randint(1, 4)}",
    "mixed": lambda: random.choice(["3", "0.5", "2i1", "7", "-1", "1i0j2"]),
    "various": lambda: random.choice(["3", "0.5", "2i1", "(1 2)", "7"]),
    "nested": lambda: random.choice(["3", "0.5", "(1 2)", "(4 (5 6.5))", "7", "(T F)"]),
}
WIDE = {"complex", "quaternions", "octonions", "mixed", "various"}

DYADIC = "+ - * / < =< = >= > ~= == ~== AND OR NAND NOR !^ !v !~^ !~v TRIG".split()
NARROW = "| MIN MAX POW LOG BINOMIAL".split()  # mostly refused for wide numbers
MONADIC = """NEGATIVE CONJUGATE MAGNITUDE FLOOR CEILING EXP LN NOT LOGICAL RECIPROCAL SIGNUM SIN COS
    ATAN SINH PITIMES DIRECTION TRUNCATE NUMBER CARTESIAN POLAR ISNUMBER ISBOOLEAN ISLOGICAL DEG RAD
    CONTRADICTION SQRT LD FACTORIAL TAN ASIN ACOS COSH TANH ASINH ACOSH ATANH SQR CUBE CBRT POW2
    POWE POW10 LOG10 BINARY ISBINARY ISCARTESIAN ISPOLAR""".split()
ARRAYS = ["A", "B", "M1", "M2", "M3", "{n} INTERVAL", "(0.5 {n}) INTERVAL 0.5 {n} RESHAPE +",
          "(T F T T F F T) {n} RESHAPE", "{n} INTERVAL 7 | REVERSE", "'abcab' {n} RESHAPE 'b' =",
          "{n} INTERVAL 7 | 3 -"]
SCALARS = ["2", "0.5", "-3", "(1)", "1.0", "0", "2147483647", "#PI", "(1 2) ENCLOSE"]
WIDE_SCALARS = ["1i2", "1o3", "2i1j4"]
FOLDS = ["SUM", "PRODUCT", "LARGEST", "SMALLEST", "- REDUCE", "MAX REDUCE", "ALL", "ANY", "SHAPE"]
FUNCTIONS = ["1 +", "DUP *", "3 MIN", "DUP 2 > CHECK NEGATIVE ?Y", "@.T SET .T .T +", "(1 2) +"]
MASKS = ["(1 0 2) MONADIC SUM ; MASK", "(1 2 3) MONADIC SUM ; WRAP MASK",
         "(0.5 0 1) MONADIC ; REFLECT MASK"]
# What needs no value in the making.
BESIDE = ["K 1 + @K SET", "5 @K SET K DISCARD", "1 2 + 3 * DISCARD",
          "5 MONADIC K + @K SET ; LOOP", "'K 2 * @K SET' EXECUTE", "K 9 INC @K SET",
          "K 3 > CHECK 4 ?Y @K SET ?Y", "0.1 @#CT SET", "K K 1 + SWAP DISCARD @K SET",
          "7 8 SWAP RIGHT DISCARD", "TIME DISCARD", "7 @#CT SET", "NILADIC 1 2 + @K SET ; !",
          "M1 DISCARD", "(1 2 3) 2 * DISCARD", "K NEGATIVE FLOOR @K SET"]
STORES = ["DUP @A SET", "@A SET A", "@B ASSIGN", "@A SET 0 @K SET A A DISCARD",
          "0 @A SET 'x' @B SET", "'A' FORGET 1 @A SET", "A @B SET B", "DUP @B SET B +",
          "5 @A SET A +"]
SHOWN = ["DUP PRINT", "K PRINT", "COUNTSTACK PRINT", "DUP SHAPE PRINT", "DUP DEPTH PRINT"]
STREAMS = ["{streams} PARALLEL", "{most} PARALLEL", "5 SERIAL", "100 SERIAL", "1001 SERIAL"]
DRAWS = ["6 {n} RESHAPE ROLL 0 > SUM", "2.0 {n} RESHAPE RANDOM 2 =< SUM",
         "0.5 {n} RESHAPE ROLL SHAPE", "7 SEED 0.3 {n} RESHAPE PROBABLY 2 < SUM RANDOMISE"]
FAILURES = ["{a} 'abc' , 3 MIN", "'abc' {a} , 3 MIN", "{a} 'a' , {b} , NEGATIVE",
            "{a} (1 2) , {b} *", "{a} ((1 2) (1 2 3)) , (4 5 6) ENCLOSE +",
            "{a} (1 'a') , {b} (2 3) , * 1 +"]


def vector(kind, n):
    """Some literals, repeated; the last one stands alone in its slice."""
    some = [NUMBERS[kind]() for _ in range(random.choice([3, 7, 199]))]
    return f"({' '.join(some)}) {n} RESHAPE"


class Sentence:
    """Cells, one after the other, with what is known of the stack."""

    def __init__(self, n, wide):
        self.n = n
        self.wide = wide
        self.cells = ["CLEAR 1e-15 @#CT SET M1 @A SET M2 @B SET 3 @K SET"]
        self.arrays = []  # whether what stands on the stack has n elements

    def say(self, texts):
        self.cells.append(random.choice(texts).replace("{n}", str(self.n)))

    def array(self):
        self.say(ARRAYS)
        self.arrays.append(True)

    def scalar(self):
        self.say(SCALARS + WIDE_SCALARS * self.wide)
        self.arrays.append(False)

    def monadic(self):
        self.say(MONADIC)

    def dyadic(self):
        if len(self.arrays) < 2:
            random.choice([self.scalar, self.array])()
        right = self.arrays.pop()
        self.arrays[-1] |= right
        self.say(DYADIC if self.wide else DYADIC + NARROW)

    def shuffle(self):
        if len(self.arrays) < 2:
            self.say(["DUP"])
            self.arrays *= 2
            return
        below, top = self.arrays[-2:]
        cell, left = random.choice([("SWAP", [top, below]), ("RIGHT", [top]), ("DISCARD", [below]),
                                    ("DUP", [below, top, top])])
        self.say([cell])
        self.arrays[-2:] = left

    def beside(self):
        self.say(BESIDE)

    def store(self):
        depth = len(self.arrays)
        text = random.choice(STORES)
        if text.endswith("+") and depth > 5:
            return
        self.say([text])
        if text == "A @B SET B":
            self.arrays.append(False)

    def structure(self):
        if random.random() < 0.4:
            self.say(["REVERSE", "{n} RESHAPE", "RAVEL"])
        elif random.random() < 0.5 or self.n > 3000 or not self.arrays[-1]:
            self.say(FOLDS)
            self.arrays[-1] = False
        else:
            self.say(MASKS + [f"MONADIC {random.choice(FUNCTIONS)} ; EACH"])

    def streams(self):
        self.say(STREAMS)

    def shown(self):
        self.say(SHOWN)

    def step(self):
        if not self.arrays:
            self.array()
        ways = {self.array: 2, self.scalar: 2, self.monadic: 5, self.dyadic: 6, self.shuffle: 3,
                self.beside: 5, self.store: 2, self.structure: 2, self.streams: 0.3,
                self.shown: 0.5}
        random.choices(list(ways), list(ways.values()))[0]()

    def text(self):
        shown = " PRINT" * len(self.arrays)
        return " ".join(self.cells) + f" K PRINT COUNTSTACK PRINT{shown} CLEAR .\n"


def sentence(n, wide):
    kind = random.random()
    if kind < 0.05:
        return "CLEAR " + random.choice(DRAWS).format(n=n) + " PRINT .\n"
    if kind < 0.12:
        return "CLEAR " + random.choice(FAILURES).format(a="M1", b="M2") + " K 1 + .\n"
    made = Sentence(n, wide)
    for _ in range(random.randint(3, 14)):
        made.step()
    return made.text()


def program(sizes, length):
    """The sentences; {streams} and {most} stand for numbers of streams."""
    n = random.choice(sizes)
    kinds = [random.choice(list(NUMBERS)) for _ in range(3)]
    opening = "".join(f"{vector(kind, n)} @M{i} SET " for i, kind in enumerate(kinds, 1))
    opening = (f"{random.choice([5, 40, 1001])} SERIAL {opening} 3 @K SET "
               "DYADIC + ; VERB @INC SET .\n")
    closing = ("CLEAR 1e-15 @#CT SET 0 @A SET 0 @B SET 3 @K SET 'kept' REMEMBER "
               "M1 PRINT M2 PRINT M3 PRINT .\n")
    wide = any(kind in WIDE for kind in kinds)
    return [opening, *(sentence(n, wide) for _ in range(length)), closing]
