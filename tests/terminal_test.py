#!/usr/bin/env python3
"""What a person at a terminal sees: interrupts, stepping, editing. Usage: terminal_test.py CONSOLE

Each session runs in a pseudo-terminal that neither echoes nor turns line ends, so that what comes
back is what the console wrote. The editor is a script that keeps what it was given.
"""

import os
import pathlib
import pty
import resource
import select
import signal
import sys
import tempfile
import termios
import time

SECONDS = 60  # for an answer, in the slowest of builds
SETTLE = 0.3  # until the console waits for input
INTERRUPT = "\x03"

# Keeps the name and the contents of the file, then does what the session asks for.
EDITOR = """#!/bin/sh
echo "$1" >> names
cp "$1" seen
. ./edit
"""


class Session:
    """A console in a directory of its own; the editor stands there under both of its names."""

    def __init__(self, console, directory, editor="./editor"):
        self.directory = pathlib.Path(directory)
        for name in ("editor", "vi"):
            (self.directory / name).write_text(EDITOR)
            (self.directory / name).chmod(0o755)
        self.process, self.terminal = pty.fork()
        if self.process == 0:
            os.chdir(directory)
            os.environ["PATH"] = f"{directory}:/usr/bin:/bin"
            os.environ.pop("EDITOR", None)
            if editor:
                os.environ["EDITOR"] = editor
            os.execv(console, ["tessor"])
        settings = termios.tcgetattr(self.terminal)
        settings[1] &= ~termios.OPOST
        settings[3] &= ~termios.ECHO
        termios.tcsetattr(self.terminal, termios.TCSANOW, settings)
        self.answer("", "Tessor [0]> ")

    def answer(self, text, end):
        """Types a text; gives what is written up to an end that is expected."""
        os.write(self.terminal, text.encode("latin-1"))
        written = ""
        limit = time.monotonic() + SECONDS
        while not written.endswith(end):
            ready, _, _ = select.select([self.terminal], [], [], limit - time.monotonic())
            if not ready:
                raise AssertionError(f"{written!r} doesn't end in {end!r}")
            written += os.read(self.terminal, 65536).decode("latin-1")
        return written[:len(written) - len(end)]

    def expect(self, text, expected, end):
        same(self.answer(text, end), expected)

    def interrupt(self):
        time.sleep(SETTLE)
        os.write(self.terminal, INTERRUPT.encode())

    def edit(self, commands, new=""):
        """What the editor is to do with its file, $1; the text `new` stands in the file new."""
        (self.directory / "edit").write_text(commands)
        (self.directory / "new").write_text(new)

    def seen(self):
        return (self.directory / "seen").read_text()

    def close(self):
        os.kill(self.process, signal.SIGKILL)
        os.waitpid(self.process, 0)
        os.close(self.terminal)


def same(got, expected):
    if got != expected:
        raise AssertionError(f"{got!r} isn't {expected!r}")


THROWN_OUT = ("\n** User interrupt. **\n\nException processing:..."
              "\n-- - Discarding the bad TOS value...\n")


def test_interrupt_while_sleeping(session):
    session.expect("5 'now' PRINT 1000 SLEEP 6 .\n", "", "now\n")
    session.interrupt()
    session.expect("", THROWN_OUT + "\n\n", "Tessor [2]> ")
    session.expect("PRINT .\n", "\n\n\n 5\n\n", "Tessor [1]> ")


def test_interrupt_of_a_long_loop(session):
    session.expect("3 4 'now' PRINT 2000000000 MONADIC DISCARD ; LOOP .\n", "", "now\n")
    session.interrupt()
    session.expect("", THROWN_OUT + "\n\n", "Tessor [4]> ")


def test_interrupt_while_sleeping_in_a_function(session):
    session.expect("MONADIC 7 SWAP 'now' PRINT SLEEP ; VERB @NAP SET .\n", "\n-\n\n\n",
                   "Tessor [0]> ")
    session.expect("1000.5 NAP .\n", "", "now\n")
    session.interrupt()
    session.expect("", THROWN_OUT + "\n\n", "Tessor [1]> ")


def test_interrupt_while_quoted_text_is_typed(session):
    session.expect("1 'now' PRINT QUOTEDIN .\n", "", "now\n")
    session.interrupt()
    session.expect("", THROWN_OUT + "\n\n", "Tessor [1]> ")
    session.expect("QUOTEDIN .\nstill here\n", "\n\nstill here\n\n", "Tessor [2]> ")


def test_interrupt_is_ignored_at_the_prompts(session):
    session.interrupt()
    session.expect("1 .\n", "\n\n 1\n\n", "Tessor [1]> ")
    session.expect("'now' PRINT INPUT .\n", "", "now\n")
    session.interrupt()
    session.expect("7 8\n", "\n\n 8\n\n", "Tessor [3]> ")
    session.expect("STEP 1 .\n", "\nTrace ( 0:  2):\t . SCALAR:\t\t 1\n", "Inspect [3]: ")
    session.interrupt()
    session.expect("CLEAR\n", "\n\n 1\n\n", "Tessor [1]> ")


def test_stepping_through_a_function(session):
    session.expect("MONADIC STEP 1 + 2 * ; VERB @UP SET .\n", "\n-\n\n\n", "Tessor [0]> ")
    session.expect("3 UP PRINT .\n", "\nTrace ( 1:  2):\t . SCALAR:\t\t 1\n", "Inspect [1]: ")
    session.expect("\n", "\nTrace ( 1:  3):\t . OPERATOR:\t\t+\n", "Inspect [2]: ")
    session.expect("DISCARD 10 .\n", "\n\n 10\n", "Inspect [2]: ")
    session.expect("ADD ADD ADD .\n", "\n800 - not enough arguments on stack for the reqested "
                   "operation.\n\nInstruction:\n . OPERATOR:\t\tADD\n", "Inspect [1]: ")
    session.expect("4\n", "\nTrace ( 1:  4):\t . SCALAR:\t\t 2\n", "Inspect [1]: ")
    session.expect("RUN .\n", " 34\n\n-\n\n\n", "Tessor [0]> ")
    session.expect("1 UP PRINT .\n", "\nTrace ( 1:  2):\t . SCALAR:\t\t 1\n", "Inspect [1]: ")
    session.expect("1 2 BREAK\n", " 4\n\n-\n\n\n", "Tessor [0]> ")


def test_stepping_everywhere(session):
    session.expect("NILADIC 5 ; VERB @FIVE SET STEPALL FIVE .\n",
                   "\nTrace ( 0:  6):\t . GLOBAL VARIABLE:\tFIVE\n", "Inspect [0]: ")
    session.expect("\n", "\nTrace ( 1:  1) [ 0]:\t . SCALAR:\t\t 5\n", "Inspect [0]: ")
    session.expect("RUNALL .\n", "\n-\n\n", "Inspect [0]: ")
    session.expect("QUIT\n", "\n\n 5\n\n", "Tessor [1]> ")


def test_editing_a_function(session):
    session.edit('cp new "$1"', "2 +\n.\nMONADIC 3 + ; .\n'done' PRINT 5\n")
    session.expect("40 MONADIC 1 + ; EDIT COUNTSTACK .\n", "done\n\n\n 3\n\n", "Tessor [4]> ")
    same(session.seen(), "\n MONADIC\n    1 + ;\n")
    session.edit('cp new "$1"', "6")
    session.expect("CLEAR EDIT .\n", "\n\n 6\n\n", "Tessor [1]> ")
    same(session.seen(), "")


def test_failures_while_edited_text_runs(session):
    session.edit('cp new "$1"', "ADD . 'still' PRINT . 1 2 (3 4) (5 6 7) + . 'never' PRINT .\n")
    session.expect("9 NILADIC ; EDIT .\n", "\n800 - not enough arguments on stack for the reqested "
                   "operation.\n\nInstruction:\n . OPERATOR:\t\tADDstill\n"
                   "\n17 - dyadic function arguments are not conformable.\n\nInstruction:\n"
                   " . OPERATOR:\t\t+\nException processing:...\n\n", "Tessor [2]> ")
    session.expect("DISCARD .\n", "\n\n 9\n\n", "Tessor [1]> ")


def test_editing_text(session):
    session.edit('cp new "$1"', "hello\n")
    session.expect("'it''s' TEXTEDIT .\n", "\n\nhello\n\n", "Tessor [1]> ")
    same(session.seen(), "it's 'it''s'")
    session.edit('cp new "$1"', "x\n")
    session.expect("TEXTEDIT RANK PRINT COUNTSTACK .\n", " 0\n\n\n 0\n\n", "Tessor [1]> ")
    session.edit('cp new "$1"', "\n")
    session.expect("TEXTEDIT .\n", "\n\n.\n\n\n", "Tessor [1]> ")


def test_an_interrupted_editor(session):
    session.edit("echo ready; sleep 1000")
    session.expect("'it' TEXTEDIT .\n", "", "ready\n")
    session.interrupt()
    session.expect("", "\n\nit 'it\n\n", "Tessor [1]> ")


def test_files_that_cannot_be_had(session):
    session.edit('rm "$1"')
    session.expect("8 EDIT .\n", "\n710 - cannot open the file to READ.\n\n"
                   "Instruction:\n . OPERATOR:\t\tEDIT\n\n", "Tessor [1]> ")
    limits = resource.prlimit(session.process, resource.RLIMIT_NOFILE)
    resource.prlimit(session.process, resource.RLIMIT_NOFILE, (3, limits[1]))
    session.expect("TEXTEDIT .\n", "\n711 - cannot open the file to WRITE to.\n\n"
                   "Instruction:\n . OPERATOR:\t\tTEXTEDIT\n\n", "Tessor [1]> ")
    resource.prlimit(session.process, resource.RLIMIT_NOFILE, limits)
    session.expect(".\n", "\n\n 8\n\n", "Tessor [1]> ")


def fault_of(console, script, editor):
    with tempfile.TemporaryDirectory() as directory:
        session = Session(console, directory, editor)
        try:
            script(session)
            names = session.directory / "names"
            left = [name for name in names.read_text().split() if os.path.exists(name)] \
                if names.exists() else []
            same(left, [])
        except (AssertionError, OSError) as fault:
            return str(fault) or repr(fault)
        finally:
            session.close()
    return ""


def main():
    console = os.path.abspath(sys.argv[1])
    runs = [(script, "./editor") for name, script in globals().items() if name.startswith("test_")]
    runs.append((test_editing_text, None))
    failed = 0
    for script, editor in runs:
        if fault := fault_of(console, script, editor):
            failed += 1
            print(f"FAILED {script.__name__}: {fault}")
    print(f"{len(runs) - failed} passed, {failed} failed")
    sys.exit(1 if failed else 0)


if __name__ == "__main__":
    main()
