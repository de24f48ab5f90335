#!/usr/bin/env python3
"""One implementation against itself: the same verbs on the same values, kept and run in other ways.

    compare_test.py CONSOLE [OTHER] [--rounds N] [--seed N] [--cases N]

Random cases, a verb with its operands, are written as sentences in several variants: with operands
packed and as elements, in place and kept under names, scalars extended and spread. What must be
equal is compared: values in source form, kinds, messages, and what is left on the stack. Each text
runs serially, with workers, and on another build of the console (the tight one, say).
A difference is shown with the one sentence that makes it.
"""

import argparse
import random
import re
import subprocess
import sys

from run_transcripts import TIME_LIMIT, difference, settled

DYADIC = """+ - * / | MIN MAX POW LOG TRIG BINOMIAL AND OR NAND NOR !^ !v !~^ !~v == ## < <= = >= >
            #""".split()
MONADIC = """CONJUGATE NEGATIVE SIGNUM DIRECTION RECIPROCAL MAGNITUDE BINARY NUMBER POLAR DEG RAD
             CARTESIAN FLOOR CEILING TRUNCATE EXP LN PITIMES FACTORIAL NOT BOOLEAN LOGICAL
             CONTRADICTION ISBOOLEAN ISLOGICAL ISBINARY ISNUMBER ISCARTESIAN ISPOLAR SIN COS TAN
             ASIN ACOS ATAN SINH COSH TANH ASINH ACOSH ATANH SQR CUBE SQRT CBRT POW2 POWE POW10 LD
             LOG10 PROBABLY ROLL RANDOM""".split()
DRAWING = {"PROBABLY", "ROLL", "RANDOM", "BOOLEAN"}
ARRAY_MONADIC = """RAVEL ENCLOSE ATOM DISCLOSE FIRST FIRSTONE REST RREST REVERSE TRANSPOSE SHAPE
                   RANK DEPTH ENLIST SUM PRODUCT ALL ANY SMALLEST LARGEST SUMROWS PRODUCTROWS
                   ALLROWS ANYROW SMALLESTROW LARGESTROW ENASCII DEASCII ENCAPSULATE DECAPSULATE
                   FORMTEXT""".split()
ARRAY_DYADIC = ["RESHAPE", ",", "COMPRESS", "COMPRESSROWS", "REPLICATE", "MATCH", "EXACTMATCH"]
FUNCTIONS = ["1 +", "NEGATIVE", "DUP", "DUP *", "SHAPE", "2 RESHAPE", "0.5", "ENLIST", "0 =", "",
             "DUP 2 = CHECK 'q' ?Y"]

WIDTH = 400  # of the lines shown
INTEGERS = "0 1 -1 2 3 -3 7 10 255 256 46341 65536 -65536 1073741824 2147483647 -2147483647".split()
REALS = """0.0 -0.0 0.5 -0.5 1.0 -1.0 2.0 3.0 0.1 1.5 -2.5 0.3333333333333333 2.9999999999999996
           1e-16 255.0 2147483647.0 2147483648.0 -2147483649.0 1e15 1.7e308 -1e308 5e-324 1e-310 Inf
           -Inf NaN""".split()
LETTERS = "ijklmno"
# What makes other forms and storages of a value.
FORMS = ["POLAR", "CARTESIAN", "BINARY", "LOGICAL", "DEG", "RAD", "NEGATIVE", "NOT", "0 =", "1 +",
         "2147483647 +", "2 /", "RECIPROCAL", "NUMBER", "0.5 <", "CONJUGATE", "MAGNITUDE", "0.5 =",
         "POLAR DEG", "POLAR RAD NUMBER", "PROBABLY", "2 / 2 *", "-2147483647 - 1 -", "(2) *"]


def hypercomplex(rng, letters):
    parts = [rng.choice(SMALL_REALS) for _ in range(len(letters) + 1)]
    zeros = rng.random()
    for k in range(1, len(parts) - 1):
        if rng.random() < zeros:
            parts[k] = "0"
    prefix = rng.choice(["", "", "#", "r"])
    return prefix + parts[0] + "".join(map("".join, zip(letters, parts[1:])))


SMALL_REALS = """0 0 1 -1 2 -2 3 0.5 -0.5 1.5 -0.0 4 1e-16 1e200 -3.25
                 0.1 0.7 -1.3 0.3333333333333333 Inf -Inf NaN""".split()
KINDS = {
    "characters": lambda rng: f"'{rng.choice('abcxyz 09~')}'",
    "truths": lambda rng: rng.choice("TF"),
    "integers": lambda rng: rng.choice(INTEGERS),
    "small integers": lambda rng: str(rng.randint(-3, 6)),
    "reals": lambda rng: rng.choice(REALS),
    "degrees": lambda rng: rng.choice(["0.0", "1.0", "0.5", "0.25", "0.75", "0.9"]),
    "binary": lambda rng: f"0#{rng.getrandbits(9):09b}",
    "complex": lambda rng: hypercomplex(rng, "i"),
    "quaternions": lambda rng: hypercomplex(rng, "ijk"),
    "octonions": lambda rng: hypercomplex(rng, LETTERS),
}
PLAIN = list(KINDS)
KINDS["numbers"] = lambda rng: KINDS[rng.choice(PLAIN[1:])](rng)
KINDS["mixed"] = lambda rng: KINDS[rng.choice(PLAIN)](rng)
KINDS["constants"] = lambda rng: rng.choice(["#PI", "#E", "2.5", "0.0"])
KINDS["nested"] = lambda rng: KINDS["mixed"](rng) if rng.random() < 0.4 else nested(rng, 2)


def nested(rng, levels):
    count = rng.choice([1, 2, 2, 3])
    kind = rng.choice(PLAIN)
    items = [nested(rng, levels - 1) if levels and rng.random() < 0.25 else KINDS[kind](rng)
             for _ in range(count)]
    return f"({' '.join(items)})"


class Operand:
    """A value: sentences that leave it on the stack, in one layout or the other."""

    def __init__(self, rng, shape, kind=None, form=None):
        self.kind = kind or rng.choice(list(KINDS))
        self.extents = shape
        self.count = 1
        for extent in shape:
            self.count *= extent
        self.shape = f"({' '.join(map(str, shape))}) RESHAPE"
        few = max(1, min(self.count, 23))
        items = [KINDS[self.kind](rng) for _ in range(few)]
        self.first = items[0]
        self.literal = f"({' '.join(items)})"
        if few != self.count:
            self.literal += f" {max(self.count, 1)} RESHAPE"
        if form is None:
            form = rng.choice(FORMS) if rng.random() < 0.35 and self.kind != "nested" else ""
        self.form = form
        # What leaves the value packed when it is joined and taken off again, and what doesn't.
        self.same = "'f'" if self.kind in ("mixed", "nested", "numbers") else "DUP FIRSTONE"
        self.foreign = "7" if self.kind in ("characters", "mixed", "nested") else "'f'"

    def made(self):
        return f"{self.literal} {self.form}".rstrip()

    def direct(self):
        return f"{self.made()} {self.shape}"

    def joined(self, filler):
        """The value with something behind it that is taken off again: `depth` is 2."""
        if self.count == 0:
            return self.direct()
        keep = f"1 {self.count} RESHAPE 0 ," if self.count > 40 else f"({'1 ' * self.count}0)"
        return f"{self.made()} {filler} , {keep} COMPRESS {self.shape}"

    def packed(self):
        return self.joined(self.same)

    def elements(self):
        return self.joined(self.foreign)

    def scalar(self):
        return f"{self.first} {self.form}".rstrip()


class Nest:
    """A vector of values, each in a layout of its own."""

    def __init__(self, rng):
        self.kind = "nested"
        self.parts = [Operand(rng, rng.choice([(1,), (2,), (3,), (2, 2), (8,)])) for _ in range(3)]
        self.parts = self.parts[:rng.choice([1, 2, 2, 3])]
        self.form = " ".join(part.form for part in self.parts)
        self.beside = KINDS["numbers"](rng) + " ," if rng.random() < 0.5 else ""

    def of(self, parts):
        return " ".join(["()", *(f"{part} ENCLOSE ," for part in parts), self.beside])

    def packed(self):
        return self.of(part.packed() for part in self.parts)

    def elements(self):
        return self.of(part.elements() for part in self.parts)

    direct = packed


class Variant:
    """A sentence, and the group of those that must do the same in everything. What is done
    `before` is not shown."""

    def __init__(self, group, sentence, before=""):
        self.group = group
        self.sentence = sentence
        self.before = before


class Case:
    """Variants of one application. `loosely`: the groups are equal too, but for what a failure
    leaves. `draws`: workers would draw from seeds of their own."""

    def __init__(self, name, variants, loosely=True, draws=False):
        self.name = name
        self.variants = variants
        self.loosely = loosely
        self.draws = draws


def random_shape(rng, large):
    if large:
        return rng.choice([(5000,), (9001,), (70, 70), (3, 1700), (4097,)])
    n = rng.choice([1, 2, 2, 3, 3, 4, 5, 7, 8, 9, 15, 21, 33])
    return rng.choice([(n,), (n,), (n,), (n, 2), (3, n), (2, 2, n), (n, 1), (1, 1, n)])


def kept(verb, *operands):
    names = "ABC"[:len(operands)]
    sets = " ".join(f"{operand} @{name} SET" for operand, name in zip(operands, names))
    return f"{sets} {' '.join(names)} {verb}"


def tells_owners(verb, operands):
    """Whether a result tells which operand it is written over: a sum of complex numbers does."""
    return "+" in verb.split() and all(o.kind in ("complex", "numbers", "mixed", "nested")
                                         for o in operands)


def drawn(operands):
    return any("PROBABLY" in o.form for o in operands)


def layouts(name, verb, operands, draws=False, direct=True):
    """All operands in one layout and in the other, unshared and kept."""
    packed = [o.packed() for o in operands]
    elements = [o.elements() for o in operands]
    variants = []
    for group, say in (("unshared", lambda ops: " ".join([*ops, verb])),
                       ("kept", lambda ops: kept(verb, *ops))):
        ways = [packed, elements]
        if len(operands) == 2:
            ways += [[packed[0], elements[1]], [elements[0], packed[1]]]
        variants += [Variant(group, say(ops)) for ops in ways]
        if direct:
            variants.append(Variant("direct " + group, say([o.direct() for o in operands])))
    names = "ABC"[:len(operands)]
    for after in ("", " ".join([*names, verb])):
        sets = " ".join(f"{o} @{name} SET" for o, name in zip(elements, names))
        variants.append(Variant("names", " ".join(names), f"{sets} {after}"))
    return Case(name, variants, not tells_owners(verb, operands), draws or drawn(operands))


def some_operand(rng, shape):
    return Nest(rng) if rng.random() < 0.07 else Operand(rng, shape)


def scalar_case(rng, large):
    """A dyadic verb, or a monadic one."""
    if rng.random() < 0.35:
        verb = rng.choice(MONADIC)
        operand = some_operand(rng, random_shape(rng, large))
        return layouts(f"{verb} of {operand.kind}", verb, [operand], draws=verb in DRAWING)
    verb = rng.choice(DYADIC)
    shape = random_shape(rng, large)
    shapes = [shape, shape]
    if rng.random() < 0.3:
        shapes[rng.randrange(2)] = rng.choice([(1,), (1,), (1, 1), (2,), (0,)])
    left, right = operands = [some_operand(rng, s) for s in shapes]
    if verb == "TRIG" and isinstance(left, Operand) and rng.random() < 0.8:
        left.literal = f"({rng.randint(-12, 12)}) {max(1, left.count)} RESHAPE"
        left.form = ""
    return layouts(f"{left.kind} and {right.kind} {verb}", verb, operands)


def extension_case(rng, _):
    """Scalars in place, one-element arrays, scalars extended: the same, spread over an array."""
    monadic = rng.random() < 0.3
    verb = rng.choice([v for v in MONADIC if v not in DRAWING] if monadic else DYADIC)
    n = rng.choice([2, 3, 5, 9])
    spread = f"{n} RESHAPE"
    a, b = (Operand(rng, (n,), rng.choice([k for k in KINDS if k != "nested"])) for _ in "ab")
    if verb == "TRIG":
        a.first, a.form = str(rng.randint(-12, 12)), ""
    x, y = a.scalar(), b.scalar()
    name = f"{a.kind} and {b.kind} {verb}, extended"
    if monadic:
        ways = [f"{x} {verb} {spread}", f"{x} {spread} {verb}", f"{x} 1 RESHAPE {verb} {spread}",
                f"{x} @A SET A {verb} {spread}", f"{x} 'f' , (1 0) COMPRESS {verb} {spread}"]
    else:
        ways = [f"{x} {y} {verb} {spread}", f"{x} {spread} {y} {verb}", f"{x} {y} {spread} {verb}",
                f"{x} {spread} {y} {spread} {verb}", f"{x} 1 RESHAPE {y} {verb} {spread}",
                f"{x} {y} 1 RESHAPE {verb} {spread}", f"{x} @A SET {y} @B SET A B {verb} {spread}",
                f"{x} 7 , (1 0) COMPRESS {y} 'f' , (1 0) COMPRESS {verb} {spread}",
                f"{x} {y} 7 , (1 0) COMPRESS {spread} {verb}"]
    return Case(name, [Variant(str(i), way) for i, way in enumerate(ways)],
                not tells_owners(verb, [a, b]))


def chain_case(rng, large):
    """Results of verbs as operands of others, and of themselves."""
    shape = random_shape(rng, large)
    operands = [Nest(rng) if rng.random() < 0.15 else Operand(rng, shape)
                for _ in range(rng.choice([1, 2, 2, 3]))]
    cells, left = [], len(operands)
    for _ in range(rng.choice([1, 2, 3, 4])):
        if left > 1 and rng.random() < 0.6:
            cells.append(rng.choice(["", "SWAP "]) + rng.choice(DYADIC))
            left -= 1
        elif rng.random() < 0.3:
            cells.append(rng.choice(["DUP", "DUP REVERSE", "2", "0.5 SWAP", "1i2", "(3)"]) + " "
                         + rng.choice(DYADIC))
        else:
            cells.append(rng.choice(MONADIC + ["REVERSE", "RAVEL", "TRANSPOSE"]))
    verb = " ".join(cells)
    case = layouts(f"{verb} of {' and '.join(o.kind for o in operands)}", verb, operands,
                   draws=bool(DRAWING & {*verb.split()}))
    case.loosely = case.loosely and "+" not in verb
    return case


def twice_case(rng, large):
    """A value and itself: one block with two holders, with three, and two blocks."""
    verb = rng.choice(DYADIC)
    operand = Operand(rng, random_shape(rng, large))
    variants = []
    for way in (operand.packed(), operand.elements()):
        variants += [Variant("one block", f"{way} DUP {verb}"),
                     Variant("named", f"{way} @A SET A A {verb}"),
                     Variant("two blocks", f"{way} {way} {verb}"),
                     Variant("first named", f"{way} @A SET A {way} {verb}"),
                     Variant("second named", f"{way} @A SET {way} A {verb}")]
    draws = drawn([operand])
    return Case(f"{verb} of {operand.kind}, twice", variants,
                not draws and not tells_owners(verb, [operand]), draws)


def fold_case(rng, large):
    verb = f"{rng.choice(DYADIC)} {rng.choice(['//', '/-/'])}"
    operand = some_operand(rng, random_shape(rng, large))
    return layouts(f"{verb} of {operand.kind}", verb, [operand])


def array_case(rng, large):
    if rng.random() < 0.5:
        verb = rng.choice(ARRAY_MONADIC)
        operand = some_operand(rng, random_shape(rng, large))
        return layouts(f"{verb} of {operand.kind}", verb, [operand], direct=False)
    verb = rng.choice(ARRAY_DYADIC)
    data = Operand(rng, random_shape(rng, large))
    n = rng.choice([data.count, 1, 2, 3, 4])
    kind = rng.choice(["small integers", "truths", None])
    other = Operand(rng, (n,), kind if verb != "RESHAPE" else "small integers",
                    "" if kind else None)
    if "MATCH" in verb:
        # Itself; another of its shape, mostly of its kind; another of any.
        shape = rng.choice([data.extents, random_shape(rng, False)])
        other = rng.choice([data, Operand(rng, shape, rng.choice([data.kind, data.kind, None]))])
    if verb == "REPLICATE":
        other = Operand(rng, (1,), rng.choice(["small integers", "truths", "degrees"]), "")
    if verb == "RESHAPE":
        other = Operand(rng, (rng.choice([1, 2, 3]),), "small integers", "")
    operands = [data, other]
    if verb == "," and rng.random() < 0.5:
        operands.reverse()
    return layouts(f"{verb} of {data.kind}, {other.kind}", verb, operands, direct=False)


def function_case(rng, _):
    """EACH and MASK, whose functions run on what the array gives them."""
    body = rng.choice(FUNCTIONS)
    if rng.random() < 0.5:
        operand = some_operand(rng, random_shape(rng, False))
        return layouts(f"EACH of {operand.kind}", f"MONADIC {body} ; EACH", [operand],
                       direct=False)
    rank = rng.choice([1, 1, 2])
    shapes = [tuple(rng.choice([1, 2, 3, 5]) for _ in range(rank)),
              tuple(rng.choice([1, 3]) for _ in range(rank))]
    operands = [Operand(rng, shape) for shape in shapes]
    how = rng.choice(["", "WRAP ", "REFLECT "])
    return layouts(f"MASK of {operands[0].kind}, {operands[1].kind}",
                   f"MONADIC {body} ; {how}MASK", operands, direct=False)


def interval_case(rng, _):
    draw = rng.choice([KINDS["small integers"], lambda r: r.choice(["0.5", "2.5", "-1.5", "3.0"]),
                       lambda r: f"{r.randint(-2, 4)}i{r.randint(-2, 4)}",
                       lambda r: f"'{r.choice('acegz')}'"])
    operand = Operand(rng, (rng.choice([1, 2, 2, 3, 3, 4]),), "integers", "")
    operand.literal = f"({' '.join(draw(rng) for _ in range(operand.count))})"
    operand.form = rng.choice(["", "", "POLAR", "2 /", "0 =", "NUMBER"])
    return layouts("INTERVAL", "INTERVAL", [operand], direct=False)


MAKERS = ([scalar_case] * 10 + [extension_case] * 4 + [chain_case] * 3 + [twice_case]
          + [fold_case] * 3 + [array_case] * 4 + [function_case, interval_case])

# How a case is shown: the display of the result (the end of a sentence), then the whole stack in
# source form, and what tells kinds, signs and forms apart that source form writes alike.
SHOW = "'' DUMPSTACK .\n"
PROBES = ["BINARY", "RECIPROCAL", "NUMBER BINARY", "DEPTH", "SHAPE", "POLAR",
          "DUP TRUNCATE EXACTMATCH", "(1 0 1) SWAP COMPRESS", "ISBOOLEAN", "ISLOGICAL",
          "2147483647 +"]
# Comparison tolerance and origin of a round. Said in every sentence: FLOOR repairs a tolerance.
SETTINGS = ["", "", "", "0.1 @#CT SET", "0.0 @#CT SET", "1e-8 @#CT SET", "1 @#IO SET", "7 @#CT SET"]


# Where an operand can't be made, its name has this value, not that of an earlier case.
UNNAMED = "0 @A SET 0 @B SET 0 @C SET"


def program(setting, cases, probes):
    lines = []
    for i, case in enumerate(cases):
        for j, variant in enumerate(case.variants):
            if variant.before:
                lines.append(f"CLEAR '<{i}:-1>' TELL {UNNAMED} .\n"
                             f"CLEAR {setting} 42 SEED {variant.before} .\n")
            lines.append(f"CLEAR '<{i}:{j}>' TELL {setting} 42 SEED {variant.sentence} .\n{SHOW}"
                         f"{probes[i]} .\n{SHOW}")
    return "".join(lines)


COUNTS = re.compile(rb"^([A-Z]+):.*\n.* sdev, +([\d.]+ +\w*ops)\n(?:.*fp/op\s+([\d.]+ +\w+))?",
                    re.MULTILINE)


def start(console, options, text):
    return subprocess.run(["tessor", *options], executable=console, input=text.encode(),
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                          timeout=TIME_LIMIT * 10, check=False)


def run(console, options, text):
    """What each variant of each case wrote, by the two numbers; and how the run ended."""
    text += "CLEAR '<0:-1>' TELL .\n"
    done = start(console, ["-q", *options], text)
    parts = re.split(rb"<(\d+):(-?\d+)>", settled(done.stdout))
    return {(int(i), int(j)): written.rsplit(b"Tessor [", 1)[0]
            for i, j, written in zip(parts[1::3], parts[2::3], parts[3::3])}, done.returncode


MESSAGE = re.compile(rb"^\d+ - .*$", re.MULTILINE)


def essence(written):
    """What variants of different groups share: all of a result, but of a failure the message."""
    messages = MESSAGE.findall(written.split(b"Tessor [", 1)[0])
    return b"\n".join(messages) if messages else written


def essence_of_slices(written):
    """What runs with and without workers share. Of a failure that is the count of values: which
    slices fail, and what they had done before, is nobody's business."""
    first, *rest = written.split(b"Tessor [", 1)
    failed = MESSAGE.search(first)
    return b"failed, left: " + b"".join(r[:3] for r in rest) if failed else written


def without_signs_of_nan(written):
    """Which of two NaN a sum keeps is the compiler's choice, and so is the sign."""
    return written.replace(b"-nan", b"nan")


class Comparison:
    def __init__(self, options):
        self.options = options
        self.differences = 0
        self.applications = 0

    def report(self, what, sentences, expected, got):
        self.differences += 1
        if self.differences <= self.options.shown:
            shown = [what, *(f"  {s} ." for s in sentences),
                     *difference("", expected, got).split("\n")]
            print("\n".join(line[:WIDTH] for line in shown), flush=True)

    def within(self, case, i, written):
        """Variants of one run against each other."""
        first_of = {}
        for j, variant in enumerate(case.variants):
            got = written.get((i, j), b"nothing")
            first = first_of.setdefault(variant.group, j)
            told, leader = (lambda text: text), first
            if first == j:
                told, leader = essence, 0
                if not case.loosely or variant.group == "names":
                    continue
            expected = written.get((i, leader), b"nothing")
            if told(got) != told(expected):
                self.report(f"{case.name} differs", [case.variants[leader].sentence,
                                                     variant.sentence], told(expected), told(got))
                return

    def flops(self, setting, cases):
        """Verbs count the same in both layouts: the first two variants of a case."""
        def text(part, j):
            return "".join(
                f"CLEAR {setting} 42 SEED {case.variants[j].sentence} .\n" for case in part)

        def counts(part, j):
            done = start(self.options.console, ["-if"], text(part, j))
            return {name: what for name, *what in COUNTS.findall(done.stdout)
                    if name not in (b"DUPLICATE", b"FIRST")}

        def differ(part):
            return counts(part, 0) != counts(part, 1)

        cases = [case for case in cases if case.variants[0].group == case.variants[1].group]
        if not differ(cases):
            return
        while len(cases) > 1:
            half = cases[:len(cases) // 2]
            cases = half if differ(half) else cases[len(half):]
        self.report("counts differ", [v.sentence for v in cases[0].variants[:2]],
                    *(b"\n".join(b"%s: %s" % (name, b" ".join(what)) for name, what in
                                 sorted(counts(cases, j).items())) for j in (0, 1)))

    def compare(self, setting, cases, probes):
        self.flops(setting, cases)
        text = program(setting, cases, probes)
        sides = [(self.options.console, []), (self.options.console, ["-c2"])]
        if self.options.other:
            sides += [(self.options.other, []), (self.options.other, ["-c2"])]
        first = None
        for console, options in sides:
            written, code = run(console, options, text)
            self.applications += sum(len(case.variants) for case in cases)
            side = " ".join([str(console), *options])
            if code:
                i, j = max(written)
                self.report(f"{side} ended with {code}", [cases[i].variants[j].sentence], b"",
                            written[i, j])
            if first is None:
                first = written
                for i, case in enumerate(cases):
                    self.within(case, i, written)
                continue
            for i, case in enumerate(cases):
                if case.draws and options:
                    continue
                for j, variant in enumerate(case.variants):
                    expected, got = first.get((i, j), b"nothing"), written.get((i, j), b"nothing")
                    if options:
                        expected, got = map(essence_of_slices, (expected, got))
                    if console != self.options.console:
                        expected, got = map(without_signs_of_nan, (expected, got))
                    if expected != got:
                        self.report(f"{side} differs: {case.name}", [variant.sentence], expected,
                                    got)
                        break


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("console")
    parser.add_argument("other", nargs="?")
    parser.add_argument("--rounds", type=int, default=3)
    parser.add_argument("--cases", type=int, default=300, help="in a round")
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--shown", type=int, default=20, help="differences to show")
    comparison = Comparison(parser.parse_args())
    for number in range(comparison.options.rounds):
        rng = random.Random(f"{comparison.options.seed} {number}")
        setting = rng.choice(SETTINGS)
        cases = [rng.choice(MAKERS)(rng, k % 50 == 49)
                 for k in range(comparison.options.cases)]
        comparison.compare(setting, cases, [rng.choice(PROBES) for _ in cases])
    print(f"{comparison.applications} applications, {comparison.differences} differences")
    sys.exit(comparison.differences != 0)


if __name__ == "__main__":
    main()
