#!/usr/bin/env python3
"""Plays random cases on the system in one process for a given time, and watches what the process holds.

    soak.py [OPTION...] HOST [ARGUMENT...]

HOST is the program that plays cases on the system (model_host_component), with what starts it. Each case must be
logged as the reference model logs it. After a warm-up what the heaps hold may grow by 64 KB and private memory by less
than 1 MB, and the process may have no handle, object or window more than then. The exit status is 1 otherwise.
"""

from __future__ import annotations

import argparse
import os
import subprocess
import sys
import threading
import time

sys.dont_write_bytecode = True  # the tree stays as it is

from cases import Case, play
from generator import make_case
from values import LOCALES

# The platform's own tables grow now and then, and what is free in a heap lies differently each time.
TOLERATED_GROWTH = {"heap": 64 * 1024, "private": 1024 * 1024 - 1}
# Until then something is still done for the first time, however slow the machine is.
WARMING_CASES = 1000
FEWEST_MEASUREMENTS = 5  # after it
COUNTED = {"loads": "> load", "runs": "> run", "listings": "> list", "statements": " e FunctionCalled "}


class Failure(Exception):
    pass


class Host:
    """The process that is watched. It is ended when it has not come to its end `seconds` after its start."""

    def __init__(self, command: list[str], seconds: float) -> None:
        self.process = subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
        self.alarm = threading.Timer(seconds, self.process.kill)
        self.alarm.daemon = True
        self.alarm.start()

    def say(self, *lines: str) -> None:
        self.asked, self.asked_at = lines[0], time.monotonic()
        try:
            self.process.stdin.write("\n".join(lines) + "\n")
            self.process.stdin.flush()
        except BrokenPipeError:
            pass  # the missing answer tells

    def answer(self) -> str:
        line = self.process.stdout.readline()
        if not line:
            waited = time.monotonic() - self.asked_at
            status = self.process.wait()
            raise Failure(f"the host ended with exit status {status}, {waited:.0f} s after '{self.asked}'")
        return line.rstrip("\n")

    def play(self, case: Case) -> list[str]:
        """The log of a case, which is the model's."""
        expected = play(case)
        self.say(*case.lines())
        for line in expected:
            found = self.answer()
            if found != line:
                raise Failure(f"the host logs another line than the model:\n  - {line}\n  + {found}")
        return expected

    def measure(self) -> dict[str, int]:
        self.say("measure")
        measured = self.answer()
        try:
            return {name: int(number) for name, number in (word.split("=") for word in measured.split(" "))}
        except ValueError:
            raise Failure(f"the host answers with no measurement: {measured}") from None

    def end(self) -> None:
        self.process.stdin.close()
        status = self.process.wait()
        self.alarm.cancel()
        if status:
            raise Failure(f"the host ended with exit status {status}")


def expect_nothing_left(first: dict[str, int], now: dict[str, int]) -> None:
    for name, number in now.items():
        if number > first[name] + TOLERATED_GROWTH.get(name, 0):
            raise Failure(f"{name}: {first[name]:,} after the warm-up, now {number:,}")


class Soak:
    def __init__(self, options: argparse.Namespace) -> None:
        self.options = options
        self.next = options.first
        self.counts = dict.fromkeys(COUNTED, 0)
        self.first: dict[str, int] = {}
        self.last: dict[str, int] = {}
        self.measurements = 0

    def run(self) -> None:
        seconds = self.options.seconds
        host = Host(self.options.host, seconds + 240)
        host.measure()  # what answers has started, which may take long
        start = time.monotonic()
        self.play_until(host, start + min(seconds / 3, 300))
        while self.next < self.options.first + WARMING_CASES:
            self.play_next(host)
        self.first = self.last = host.measure()
        while time.monotonic() < start + seconds or self.measurements < FEWEST_MEASUREMENTS:
            self.play_until(host, time.monotonic() + max(seconds / 60, 1))
            self.last = host.measure()
            self.measurements += 1
            expect_nothing_left(self.first, self.last)
        host.end()

    def play_until(self, host: Host, end: float) -> None:
        while time.monotonic() < end:
            self.play_next(host)

    def play_next(self, host: Host) -> None:
        log = host.play(make_case(self.options.seed, self.next, self.options.plain))
        self.next += 1
        for name, beginning in COUNTED.items():
            self.counts[name] += sum(line.startswith(beginning) for line in log)

    def report(self) -> None:
        done = ", ".join(f"{count:,} {name}" for name, count in self.counts.items())
        print(f"seed {self.options.seed}, cases {self.options.first} to {self.next - 1}: {done}")
        print(f"measured {self.measurements + bool(self.first)} times; after the warm-up and last:")
        for name, number in self.first.items():
            print(f"  {name:8} {number:>12,} {self.last[name]:>12,}")


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--seconds", type=int, default=60)
    parser.add_argument("--long", type=int, metavar="SECONDS", help="the seconds where CORVANE_LONG is set")
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--first", type=int, default=0, help="number of the first case")
    parser.add_argument("--plain", choices=LOCALES, default="point", help="the locale of the host's user")
    parser.add_argument("host", nargs=argparse.REMAINDER)
    options = parser.parse_args()
    if not options.host:
        parser.error("which host?")
    if options.long and os.environ.get("CORVANE_LONG"):
        options.seconds = options.long

    soak = Soak(options)
    try:
        soak.run()
    except Failure as failure:
        print(f"FAILED in case {options.seed}.{soak.next}, or between it and the one before: {failure}")
        return 1
    finally:
        soak.report()
    return 0


if __name__ == "__main__":
    sys.exit(main())
