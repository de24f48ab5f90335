#!/usr/bin/env python3
"""The console as a process: its start, its memory, sentences, scanning, printing and files.

    console.py CONSOLE

Everything is measured in turns with something that does comparable work in the same run.
"""

import os
import statistics
import subprocess
import sys
import tempfile
import time

ROUNDS = 7
PYTHON = "/usr/bin/python3"

missed = 0


def report(what, measured, unit, target, versus=""):
    global missed
    met = measured <= target
    missed += not met
    print(f"{what:46} {measured:9.3f} {unit} <= {target:g} {'ok' if met else 'MISSED':6} {versus}",
          flush=True)


def seconds(command, text):
    """Wall clock of a process with a file as standard input; what it writes is dropped."""
    with open(text, "rb") as source, open(os.devnull, "wb") as sink:
        actions = [(os.POSIX_SPAWN_DUP2, source.fileno(), 0), (os.POSIX_SPAWN_DUP2, sink.fileno(), 1),
                   (os.POSIX_SPAWN_DUP2, sink.fileno(), 2)]
        began = time.perf_counter()
        child = os.posix_spawn(command[0], command, os.environ, file_actions=actions)
        os.waitpid(child, 0)
        return time.perf_counter() - began


def in_turns(rounds, *pairs):
    """Medians of several processes, taken in turns."""
    times = [[seconds(*pair) for pair in pairs] for _ in range(rounds)]
    return [statistics.median(column) for column in zip(*times)]


class Texts:
    """Texts as files, for as long as the measuring takes."""

    def __init__(self, directory):
        self.directory = directory

    def write(self, name, text):
        path = os.path.join(self.directory, name)
        with open(path, "w", encoding="latin-1") as file:
            file.write(text)
        return path


def start(console, texts):
    text = texts.write("start", "1 2 + .\n")
    own, true = in_turns(300, ([console, "-q"], text), (["/bin/true"], text))
    report("start to the end of `1 2 + .`, over /bin/true", (own - true) * 1e3, "ms", 2.0,
           f"(x{own / true:.2f} of /bin/true)")


def memory(console):
    with subprocess.Popen([console, "-q"], stdin=subprocess.PIPE, stdout=subprocess.PIPE) as process:
        process.stdin.write(b"1 2 + .\n")
        process.stdin.flush()
        process.stdout.read1()
        with open(f"/proc/{process.pid}/status", encoding="ascii") as status:
            peak = next(int(line.split()[1]) for line in status if line.startswith("VmHWM"))
        process.stdin.close()
        process.stdout.read()
    report("resident memory", peak / 1024, "MiB", 6.0)


def sentences(console, texts):
    n = 200_000
    text = texts.write("sentences", "1 2 + DISCARD .\n" * n)
    script = texts.write("sentences.py", "import sys\nfor line in sys.stdin:\n    eval('1 + 2')\n")
    own, other = in_turns(ROUNDS, ([console, "-q"], text), ([PYTHON, script], text))
    report(f"{n} sentences", own, "s", 0.4, f"(x{own / other:.3f} of CPython's eval)")


def scanning(console, texts):
    sentence = ("(1 22 333 4.5 -6 7e8 'text' 'it''s' (9 10)) DISCARD (1 2 3 4 5 6)[2 3] DISCARD\n"
                "'some longer text of an ordinary kind' DISCARD 1i2 DISCARD \"a comment\"\n"
                "DYADIC + 2 * (1 2 3) + ; DISCARD MONADIC DUPLICATE 3.25 + * SWAP ; DISCARD .\n")
    count = 5_000_000 // len(sentence)
    text = texts.write("scan", sentence * count)
    empty = texts.write("nothing", "")
    script = texts.write("scan.py", "import sys\nfor line in sys.stdin:\n    line.split()\n")
    own, nothing, other = in_turns(ROUNDS, ([console, "-q"], text), ([console, "-q"], empty),
                                   ([PYTHON, script], text))
    report("scanning 5 MB of literals and definitions", (own - nothing) * 1e3, "ms", 100.0,
           f"(x{(own - nothing) / other:.2f} of CPython's split)")


def printing(console, texts, what, numbers, target):
    """A million numbers: the time with PRINT less the time without."""
    n = 1_000_000
    literal = f"({' '.join(map(repr, numbers))})[{n}]"
    shown = texts.write("shown", f"{literal} PRINT .\n")
    silent = texts.write("silent", f"{literal} DISCARD .\n")
    head = f"data = ({numbers!r} * {n // len(numbers) + 1})[:{n}]\n"
    shown_python = texts.write("shown.py", head + "print(' '.join(map(str, data)))\n")
    silent_python = texts.write("silent.py", head)
    empty = texts.write("empty", "")
    own, own_base, other, other_base = in_turns(
        ROUNDS, ([console, "-q"], shown), ([console, "-q"], silent),
        ([PYTHON, shown_python], empty), ([PYTHON, silent_python], empty))
    report(f"printing {n} {what}, of CPython's time",
           (own - own_base) / (other - other_base), "", target,
           f"({(own - own_base) * 1e3:.0f} ms)")


def files(console, directory, texts):
    """Each with the time of a console that does nothing, or of CPython, taken off or beside it."""
    nothing = texts.write("nothing", "")
    run = [console, "-q", "-u"]

    def quoted(name):
        return f"'{os.path.join(directory, name)}'"

    def over_start(sentence):
        own, start_up = in_turns(ROUNDS, (run, texts.write("sentence", sentence)), (run, nothing))
        return own - start_up

    names = "".join(f"({i} {i + 1} {i}.5) @name{i} SET .\n" for i in range(100_000))
    seconds(run, texts.write("names", f"{names}{quoted('saved')} SAVE .\n"))
    report("a saved workspace of 100000 names loaded", over_start(f"{quoted('saved')} LOAD .\n"),
           "s", 0.2)
    texts.write("text", "a line of some text, as long as lines are\n" * (50_000_000 // 42))
    report("TEXTREAD of 50 MB", over_start(f"{quoted('text')} TEXTREAD DISCARD .\n") * 1e3, "ms", 30.0)
    vectors = "".join(f"(1 22 333 4.5 -6 7e8 {i}) @vector{i % 1000} SET .\n" for i in range(125_000))
    texts.write("vectors", vectors)
    report(f"{len(vectors) / 1e6:.1f} MB of vector definitions loaded",
           over_start(f"{quoted('vectors')} LOAD .\n") * 1e3, "ms", 150.0)
    reals = "1000000 INTERVAL 7.0 DIVIDE"
    script = texts.write("write.py", f"""data = [i / 7.0 for i in range(1000000)]
with open({quoted('reals')}, "w") as file:
    file.write(" ".join(map(repr, data)))
""")
    script_base = texts.write("base.py", "data = [i / 7.0 for i in range(1000000)]\n")
    own, own_base, other, other_base = in_turns(
        ROUNDS, (run, texts.write("w", f"{reals} {quoted('reals')} WRITE .\n")),
        (run, texts.write("wb", f"{reals} DISCARD .\n")), ([PYTHON, script], nothing),
        ([PYTHON, script_base], nothing))
    report("WRITE of 1000000 reals, of CPython's time with repr",
           (own - own_base) / (other - other_base), "", 1.0, f"({(own - own_base) * 1e3:.0f} ms)")


def main():
    console = os.path.abspath(sys.argv[1])
    with tempfile.TemporaryDirectory() as directory:
        texts = Texts(directory)
        start(console, texts)
        memory(console)
        sentences(console, texts)
        scanning(console, texts)
        printing(console, texts, "integers", [i * 7919 % 2000003 - 1000000 for i in range(1000)],
                 1 / 3)
        printing(console, texts, "reals", [(i * 7919 % 2003) / 7 for i in range(1, 1001)], 2 / 3)
        files(console, directory, texts)
    print(f"targets missed: {missed}")


if __name__ == "__main__":
    main()
