#!/usr/bin/env python3
"""Signals and faults, seen from outside the process. Usage: signals_test.py CONSOLE

A sentence that is to be hit fails on its way (number 800, on the error stream, which nothing holds
back), and spins.
"""

import ctypes
import os
import platform
import random
import re
import signal
import sys
import time

from console_session import SECONDS, Console, run, same

WORDS = "NILADIC + ; VERB @HIT SET : %AGAIN @%AGAIN JUMP ; VERB @SPIN SET .\n"
INSTRUCTION = "\n\nInstruction:\n . "
TOO_FEW = ("\n800 - not enough arguments on stack for the reqested operation." + INSTRUCTION
           + "OPERATOR:\t\t+")
FULL = "\n806 - stack full." + INSTRUCTION
ENDED = "\nException processing:..."
INTERRUPTED = "\n** User interrupt. **\n" + ENDED + "\n-- - Discarding the bad TOS value...\n"
ARITHMETIC = "\nFloating point exception.\n"
VIOLATION = "\nSEGMENTATION VIOLATION\n"
LAST_VIOLATION = (VIOLATION + "\n--- SERIOUS INTERNAL ERROR ---\n--- PROCESSING STOPPED --- \n",
                  -1000 - signal.SIGSEGV & 255)
INSPECT = r"\nInspect \[(\d+)\]: "


def hit(console, text, *numbers):
    """Signals come while a sentence spins."""
    console.send(text)
    console.report(TOO_FEW)
    time.sleep(0.01)  # it is past the report
    console.kill(*numbers)


def fault(pid):
    """The process runs into unmapped memory by itself; False where that can't be arranged."""
    trace = ctypes.CDLL(None).ptrace
    trace.argtypes = [ctypes.c_long, ctypes.c_long, ctypes.c_void_p, ctypes.c_void_p]
    attach, poke, detach, system_call, next_instruction = 16, 6, 17, 15 * 8, 16 * 8
    if platform.machine() != "x86_64" or trace(attach, pid, None, None) != 0:
        return False
    os.waitpid(pid, 0)
    trace(poke, pid, system_call, 2 ** 64 - 1)  # none is to go on
    trace(poke, pid, next_instruction, 16)
    trace(detach, pid, None, None)
    return True


def both_interrupts(console):
    for number in (signal.SIGINT, signal.SIGQUIT):
        for text in ("1 ", "(2\n", "3) + CLEAR "):
            console.kill(number)
            console.send(text)
        console.ask(".\n", "\n-\n", 0)
        hit(console, "5 6 HIT SPIN .\n", number)
        same(console.answer(), (INTERRUPTED, 2))
        console.ask("SHAPE .\n", "\n\n 0", 2)
        console.ask("CLEAR .\n", "\n-\n", 0)


def both_sent_faults(console):
    for number, words in ((signal.SIGFPE, ARITHMETIC), (signal.SIGBUS, VIOLATION)):
        hit(console, "5 6 HIT SPIN .\n", number)
        same(console.answer(), (ENDED, 2))
        console.report(words)
        console.ask("- CLEAR .\n", "\n-\n", 0)


def both_faults_at_the_prompt(console):
    console.ask("7 .\n", "\n\n 7", 1)
    for number, words in ((signal.SIGFPE, ARITHMETIC), (signal.SIGSEGV, VIOLATION)) * 2:
        console.kill(number)
        same(console.answer(), ("\n\n 7", 1))
        console.report(words)
    console.kill(signal.SIGSEGV)
    same(console.last_words(), LAST_VIOLATION)


def test_bus_at_the_prompt(console):
    console.idle()
    console.kill(signal.SIGBUS)
    same(console.last_words(), ("", -signal.SIGBUS))


def both_own_faults(console):
    hit(console, "5 6 HIT SPIN .\n")
    if not fault(console.pid):
        return
    same(console.answer(), (ENDED, 2))
    console.report(VIOLATION)
    console.ask("CLEAR 1 2 + .\n", "\n\n 3", 1)
    console.send("4 (5\n")
    console.idle()
    fault(console.pid)
    same(console.answer(), ("\n\n 3", 1))
    console.report(VIOLATION)
    console.ask("6) CLEAR 2 .\n", "\n\n 2", 1)
    hit(console, "HIT SPIN .\n")
    fault(console.pid)
    same(console.last_words(), LAST_VIOLATION)


def test_two_signals(console):
    hit(console, "5 HIT SPIN .\n")
    console.stop(signal.SIGSTOP)
    console.kill(signal.SIGFPE, signal.SIGINT, signal.SIGCONT)
    same(console.answer(), (INTERRUPTED, 1))
    same(console.answer(), ("\n\n.\n", 1))
    console.report(ARITHMETIC)
    console.ask("2 .\n", "\n\n 2", 2)


def test_stopped_and_continued(console):
    console.send("1 2 ")
    console.stop(signal.SIGTSTP)
    console.send("+ .\n")
    console.kill(signal.SIGCONT)
    same(console.answer(), ("\n\n 3", 1))


def test_inside_an_instruction(console):
    for values in ("3 (1000000)", "(1 2.5 3) (30000)", "(1 (2 (3 4))) (20000)"):
        console.ask(values + " RESHAPE @MANY SET 7 .\n", "\n\n 7", 1)
        for _ in range(20):
            hit(console, "HIT MANY 0 EQUIVALENT DISCARD 2 JUMP .\n", signal.SIGINT)
            report, left = console.answer()
            same(report, INTERRUPTED)
            console.ask("CLEAR 7 .\n", "\n\n 7", 1)
            if left == 3:  # the operands are there
                break
        same(left, 3)
        console.ask("CLEAR .\n", "\n-\n", 0)


def test_beside_workers(_):
    console = Console(os.path.abspath(sys.argv[1]), options=["-c2"])
    console.ask(WORDS, "\n-\n", 0)
    console.ask("5000000 INTERVAL 1e-6 * @MANY SET .\n", "\n-\n", 0)

    def hit_behind_the_first_slice(text):
        for _ in range(20):
            hit(console, f"CLEAR 9 HIT MANY FACTORIAL {text} SPIN .\n", signal.SIGINT)
            report, left = console.answer()
            same(report, INTERRUPTED)
            if left == 3:
                return
        raise AssertionError(f"never met: {text}")

    # A value that the machine waits for is given up; one that it doesn't wait for gets finished.
    hit_behind_the_first_slice("7 + DISCARD")
    console.ask("DISCARD SHAPE .\n", "\n\n 0", 2)
    hit_behind_the_first_slice("7")
    console.ask("DISCARD MANY FACTORIAL = ALL .\n", "\n\n 1", 2)
    console.process.kill()
    console.process.wait()


def both_printing(console):
    console.ask("1.5 (3000000) RESHAPE @MANY SET .\n", "\n-\n", 0)
    for number, words in ((signal.SIGINT, "\n\n** User interrupt. **\n"), (signal.SIGFPE, "")):
        for text in ("7 8 MANY PRINT 9 .\n", "7 8 MANY .\n"):
            console.send(text)
            console.until("( 1[.]5){20}", console.output)
            console.kill(number)
            report, left = console.answer()
            same((re.sub("^[ .15]+", "", report), left), (words, 3))
            console.ask("CLEAR .\n", "\n-\n", 0)


def test_nothing_written_is_lost(console):
    console.send("7 40000 MONADIC PRINT ; LOOP .\n")
    while not console.sleeps():
        pass
    for _ in range(5):
        console.kill(signal.SIGFPE)
        time.sleep(0.01)
    report, _ = console.answer()
    lines = report.count("\n") - 1
    same(report, "".join(f" {i}\n" for i in range(1, lines + 1)) + ENDED)


def test_inspection_prompt(console):
    console.send("5 STEP 6 7 .\n")
    same(console.answer(INSPECT), ("\nTrace ( 0:  3):\t . SCALAR:\t\t 6", 1))
    console.kill(signal.SIGINT, signal.SIGFPE)
    same(console.answer(INSPECT), ("\n\n 5", 1))
    console.report(ARITHMETIC)
    hit(console, "8 HIT SPIN .\n", signal.SIGINT)
    same(console.answer(INSPECT), (INTERRUPTED, 2))
    console.ask("RUN .\n", "\n\n 7", 4)


def test_deep_recursion(console):
    console.ask(": DOWN ; VERB @DOWN SET MONADIC 1 + FAR ; VERB @FAR SET .\n", "\n-\n", 0)
    console.ask("5 DOWN .\n", "\n\n 5", 1)
    console.report(FULL + "GLOBAL VARIABLE:\tDOWN")
    console.ask("0 FAR 0 > PRINT .\n", " T\n\n\n 5", 1)
    console.report(FULL + "GLOBAL VARIABLE:\tFAR")
    console.ask("CLEAR " + "(" * 16000 + "1 2" + ")" * 16000 + "@NEST SET .\n", "\n-\n", 0)
    console.ask("1 NEST + .\n", ENDED, 16584)
    console.report(FULL + "OPERATOR:\t\t+")
    console.ask("CLEAR 3 .\n", "\n\n 3", 1)


def both_storm(console):
    random.seed(1)
    console.ask("(1 2.5 (1 'ab')) (3000) RESHAPE @MANY SET .\n", "\n-\n", 0)
    sentences = ("1 2 + .\n", "SPIN .\n", "MANY 1 EQUIVALENT .\n", "MANY PRINT SPIN .\n",
                 "(3 'ab", "c') .\n", "CLEAR : DOWN ; VERB @DOWN SET .\n", "DOWN .\n")
    for _ in range(1000):
        if random.random() < 0.3:
            console.send(random.choice(sentences))
        console.kill(random.choice((signal.SIGINT, signal.SIGQUIT, signal.SIGFPE)))
        console.read(random.choice((0, 0, 0.0005)))
    limit = time.monotonic() + SECONDS
    while "\n\n 42\n\nTessor [1]> " not in console.written[console.output]:
        same(time.monotonic() < limit, True)
        console.kill(signal.SIGINT)
        console.send("' ) ] . CLEAR 40 2 + .\n")
        while console.read(0.05):
            pass


def test_reader_gone(console):
    del console.written[console.output]
    console.process.stdout.close()
    console.send("1 2 + .\n")
    same(console.last_words(), ("", -signal.SIGPIPE))


if __name__ == "__main__":
    run(globals(), WORDS)
