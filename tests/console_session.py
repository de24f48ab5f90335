"""Talks to a console: types, waits for what it writes, sends signals. For tests of the process."""

import fcntl
import os
import pty
import re
import resource
import select
import signal
import subprocess
import sys
import termios
import time

SECONDS = 60  # for an answer, in the slowest of builds
NATIVE_STACK = 16 << 20  # small enough for sanitizers to follow a jump in
PROMPT = r"\n\nTessor \[(\d+)\]> "


class Console:
    """A console on pipes or in a pseudo-terminal. What it has written and nobody has looked at yet
    stands in `written`."""

    def __init__(self, path, in_terminal=False, options=()):
        self.terminal, far = pty.openpty() if in_terminal else (None, None)
        if far:
            settings = termios.tcgetattr(far)
            settings[1] &= ~termios.OPOST
            settings[3] &= ~termios.ECHO
            termios.tcsetattr(far, termios.TCSANOW, settings)
        self.process = subprocess.Popen(
            [path, *options], stdin=far or subprocess.PIPE, stdout=far or subprocess.PIPE,
            stderr=subprocess.PIPE, preexec_fn=lambda: self.prepare(far))
        if far:
            os.close(far)
        self.pid = self.process.pid
        self.input = self.terminal or self.process.stdin.fileno()
        self.output = self.terminal or self.process.stdout.fileno()
        self.errors = self.process.stderr.fileno()
        self.written = {self.output: "", self.errors: ""}
        self.until(PROMPT, self.output)
        self.until(r"\(0\) ---", self.errors)

    @staticmethod
    def prepare(far):
        resource.setrlimit(resource.RLIMIT_STACK, (NATIVE_STACK, NATIVE_STACK))
        if far:
            os.setsid()
            fcntl.ioctl(far, termios.TIOCSCTTY, 0)
        else:
            os.setpgrp()

    def read(self, seconds):
        """Takes what there is; False if nothing comes."""
        ready, _, _ = select.select(list(self.written), [], [], seconds)
        for stream in ready:
            self.written[stream] += os.read(stream, 65536).decode("latin-1")
        return bool(ready)

    def until(self, pattern, stream):
        """What is written up to a pattern, and the match."""
        limit = time.monotonic() + SECONDS
        while not (match := re.search(pattern, self.written[stream])):
            if self.process.poll() is not None or not self.read(max(limit - time.monotonic(), 0)):
                raise AssertionError(f"no {pattern!r} in {self.written}")
        self.written[stream] = match.string[match.end():]
        return match.string[:match.start()], match

    def answer(self, end=PROMPT):
        """What is written up to the prompt, and the number in it."""
        text, match = self.until(end, self.output)
        return text, int(match[1])

    def report(self, expected):
        same(self.until(re.escape(expected), self.errors)[0], "")

    def send(self, text):
        os.write(self.input, text.encode("latin-1"))

    def ask(self, text, *expected):
        self.send(text)
        same(self.answer(), expected)

    def kill(self, *numbers):
        for number in numbers:
            os.kill(self.pid, number)

    def idle(self):
        """Waits until the console waits for more input."""
        while self.read(0.02) or not self.sleeps():
            pass

    def sleeps(self):
        with open(f"/proc/{self.pid}/stat", encoding="latin-1") as state:
            return " S " in state.read()

    def stop(self, number):
        self.kill(number)
        same(os.WIFSTOPPED(os.waitpid(self.pid, os.WUNTRACED)[1]), True)

    def last_words(self):
        """What a console that ends still reports, and its exit code."""
        code = self.process.wait(SECONDS)
        return self.written[self.errors] + os.read(self.errors, 65536).decode("latin-1"), code


def same(got, expected):
    if got != expected:
        raise AssertionError(f"{got!r} isn't {expected!r}")


def failure_of(script, in_terminal, opening):
    console = Console(os.path.abspath(sys.argv[1]), in_terminal)
    try:
        console.ask(opening, "\n-\n", 0)
        script(console)
        return ""
    except (AssertionError, OSError) as failure:
        return repr(failure)[-2000:]
    finally:
        console.process.kill()
        console.process.wait()
        if in_terminal:
            os.close(console.terminal)


def run(scripts, opening):
    """Runs the scripts named test_... on pipes, and those named both_... in a terminal as well, each
    with a console of its own, behind an opening that leaves nothing on the stack."""
    runs = [(script, in_terminal) for name, script in scripts.items()
            for in_terminal in (False, True)
            if name.startswith("both_") or name.startswith("test_") and not in_terminal]
    failed = 0
    for script, in_terminal in runs:
        if failure := failure_of(script, in_terminal, opening):
            failed += 1
            print(f"FAILED {script.__name__}{' in a terminal' * in_terminal}: {failure}")
    print(f"{len(runs) - failed} passed, {failed} failed")
    sys.exit(1 if failed else 0)
