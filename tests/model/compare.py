#!/usr/bin/env python3
"""Plays random cases on the reference model and on the system, and compares what their hosts saw.

    compare.py [OPTION...] HOST [ARGUMENT...]

HOST is the program that plays cases on the system (model_host), with what starts it. The exit status is 1 when a
difference was found; the first ones are shown as small as they can be made, to be put into a file for --cases.
"""

from __future__ import annotations

import argparse
import os
import subprocess
import sys
import tempfile
import time
from concurrent.futures import ProcessPoolExecutor
from itertools import repeat, zip_longest
from pathlib import Path

sys.dont_write_bytecode = True  # the tree stays as it is

from cases import Case, play, read_cases
from generator import make_case
from minimiser import minimised
from values import LOCALES

TREE_STATE = Path(__file__).resolve().parents[2] / "tools" / "tree-state"
CASES_OF_A_BATCH = 250
SHOWN = 3


def host_logs(host: list[str], cases: list[Case], seconds: int, meanwhile=None) -> list[list[str]]:
    """What the host logs of each case; a host that dies or hangs leaves the rest without a log,
    and what it complains of at its end stands in the last one."""
    with tempfile.TemporaryFile("w+") as given, tempfile.TemporaryFile("w+", errors="replace") as logged:
        for case in cases:
            given.write("\n".join(case.lines()) + "\n")
        given.flush()
        given.seek(0)
        process = subprocess.Popen(
            host, stdin=given, stdout=logged, stderr=subprocess.PIPE, text=True, errors="replace"
        )
        if meanwhile:
            meanwhile()
        try:
            _, complaint = process.communicate(timeout=seconds)
        except subprocess.TimeoutExpired:
            process.kill()
            process.communicate()
            complaint = "no end in time"
        if process.returncode:
            complaint += f"\nexit status {process.returncode}"
        logged.seek(0)
        logs: list[list[str]] = []
        for line in logged.read().splitlines():
            if line.startswith("case "):
                logs.append([])
            if logs:
                logs[-1].append(line)
    if len(logs) < len(cases):
        logs.append([])
    if process.returncode or not all(logs):
        logs[-1] += ["the host ended", *complaint.splitlines()[-20:]]
    return logs + [[] for _ in range(len(cases) - len(logs))]


class Comparison:
    def __init__(self, host: list[str], plain_locale: str | None, seconds: int) -> None:
        self.host = host
        self.plain_locale = plain_locale
        self.seconds = seconds

    def differing(self, cases: list[Case]) -> list[Case]:
        expected: list[list[str]] = []
        found = host_logs(self.host, cases, self.seconds, lambda: expected.extend(map(play, cases)))
        different = [case for case, a, b in zip(cases, expected, found) if a != b]
        return different

    def batch(self, seed: int, first: int, count: int) -> list[Case]:
        return self.differing([make_case(seed, number, self.plain_locale) for number in range(first, first + count)])

    def differs(self, case: Case) -> bool:
        return bool(self.differing([case]))

    def shown(self, case: Case) -> str:
        small = minimised(case, self.differs)
        expected, found = play(small), host_logs(self.host, [small], self.seconds)[0]
        lines = [f"# case {case.name} differs", *small.lines(), "# model                    | host"]
        same = 0
        while expected[same : same + 1] == found[same : same + 1] and same < len(expected):
            same += 1
        lines += ["    " + line for line in expected[max(same - 4, 0) : same]]
        for a, b in list(zip_longest(expected[same:], found[same:], fillvalue=""))[:8]:
            lines += [f"  - {a}", f"  + {b}"] if a != b else [f"    {a}"]
        return "\n".join(lines)


def tree_state() -> str:
    return subprocess.run([TREE_STATE], stdout=subprocess.PIPE, text=True, check=True).stdout.strip()


class Progress:
    """How far a long comparison has come, kept in a file so that it can be taken up again: the very same one, of the
    same tree, for another is begun anew."""

    def __init__(self, options: argparse.Namespace) -> None:
        self.path = Path(options.resume) if options.resume else None
        self.next = options.first
        if not self.path:
            return
        self.comparison = f"{options.count} from {options.first}, seed {options.seed}, {options.plain}, {tree_state()}"
        kept = self.path.read_text().splitlines() if self.path.exists() else []
        if kept[:1] == [self.comparison]:
            self.next = int(kept[1])

    def reached(self, number: int) -> None:
        if self.path:
            written = self.path.with_name(self.path.name + ".new")
            written.write_text(f"{self.comparison}\n{number}\n")
            written.replace(self.path)  # at once: an interruption leaves the old one whole

    def ended(self) -> None:
        if self.path:
            self.path.unlink(missing_ok=True)


def compare_random(comparison: Comparison, options: argparse.Namespace) -> list[Case]:
    progress = Progress(options)
    last = options.first + options.count
    starts = range(progress.next, last, CASES_OF_A_BATCH)
    counts = [min(CASES_OF_A_BATCH, last - at) for at in starts]
    different: list[Case] = []
    with ProcessPoolExecutor(options.workers) as pool:
        results = pool.map(comparison.batch, repeat(options.seed), starts, counts)
        for at, count, found in zip(starts, counts, results):
            different += found
            if different:
                pool.shutdown(cancel_futures=True)
                return different
            progress.reached(at + count)
    progress.ended()
    return different


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--first", type=int, default=0, help="number of the first case")
    parser.add_argument("--count", type=int, default=10000)
    parser.add_argument("--long", type=int, metavar="COUNT", help="the count where CORVANE_LONG is set")
    parser.add_argument("--workers", type=int, default=2)
    parser.add_argument("--seconds", type=int, default=120, help="longest time of a batch")
    parser.add_argument("--plain", choices=LOCALES, help="only what an automation host with this locale can see and do")
    parser.add_argument(
        "--resume", metavar="FILE", help="keep the progress of a long comparison in FILE and go on from there"
    )
    parser.add_argument("--cases", metavar="FILE", action="append", default=[], help="compare these cases first")
    parser.add_argument("--quick", action="store_true", help="show the differing cases as they are")
    parser.add_argument("host", nargs=argparse.REMAINDER)
    options = parser.parse_args()
    if not options.host:
        parser.error("which host?")
    if options.long:
        is_long = bool(os.environ.get("CORVANE_LONG"))
        options.count = options.long if is_long else options.count
        options.resume = options.resume if is_long else None

    start = time.monotonic()
    comparison = Comparison(options.host, options.plain, options.seconds)
    kept = [case for path in options.cases for case in read_cases(Path(path).read_text().splitlines())]
    different = comparison.differing(kept) if kept else []
    if not different and options.count:
        different = compare_random(comparison, options)
    for case in different[:SHOWN]:
        print(("\n".join(case.lines()) if options.quick else comparison.shown(case)) + "\n")
    outcome = f"{len(different)} differ" if different else "no difference"
    seconds = time.monotonic() - start
    print(f"{options.count} cases of seed {options.seed}, {len(kept)} kept: {outcome}, {seconds:.1f} s")
    return 1 if different else 0


if __name__ == "__main__":
    sys.exit(main())
