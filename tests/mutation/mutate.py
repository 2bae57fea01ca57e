#!/usr/bin/python3
# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
"""Changes the code in one place at a time and looks whether a test fails. scripts/mutate starts it."""

import argparse
import fcntl
import hashlib
import json
import math
import os
import re
import sys
import threading
import time
from collections import Counter
from concurrent.futures import ProcessPoolExecutor, ThreadPoolExecutor
from itertools import chain, repeat, takewhile
from pathlib import Path

import points
from build_plan import BuildPlan
from reach import Reach
from trial import (SCRIPTS_AT_ONCE, DoesNotLink, Order, Outcome, Worker, adopt_orphans, run_limited, run_script,
                   write_whole)

ROOT = Path(__file__).resolve().parents[2]
BUILD = ROOT / "build/mutate"
COUNTING = ROOT / "build/coverage-programs"
RESULTS = BUILD / "results.tsv"
PAGE = ROOT / "docs/testing.md"

# What is changed, the tests that must see it, and how much of it they must see, in percent.
PARTS = {
    "runtime": (["runtime"], ["tests/unit", "tests/exchange", "tests/property", "tests/fault", "tests/regressions"], 97),
    "host": (["host"], ["tests/host", "tests/property", "tests/system", "tests/regressions"], 85),
    "simulator": (["simulator"], ["tests/simulator", "tests/property", "tests/system", "tests/regressions"], 85),
}
FOLDERS = ["runtime", "host", "simulator", "common", "tests"]  # what is compiled
LIVING = ("survived", "open")
COUNTED = ("killed", *LIVING)


def main():
    options = arguments()
    folders, test_folders, goal = PARTS[options.part]
    plan = BuildPlan(ROOT, BUILD)
    mutants = drawn(all_mutants(plan, folders), options)
    if not mutants:
        sys.exit("mutate: nothing there can be changed")
    if options.list:
        for m in mutants:
            print(f"{m.file}:{m.line}:{m.column}: {m.kind}: {m.function}: {m.change}")
        return 0
    tests = plan.tests(test_folders)
    results = Results(RESULTS)
    if not options.summary:
        lock = (BUILD / "lock").open("w")
        try:
            fcntl.flock(lock, fcntl.LOCK_EX | fcntl.LOCK_NB)
        except BlockingIOError:
            sys.exit("mutate: another run is at work in build/mutate; wait for it, or use its --jobs")
        adopt_orphans()
        costs = costs_of(plan, tests)
        prove(plan, tests, costs, mutants[0].file)
        scripts = [test for test in tests if test.is_script]
        reach = Reach(plan, COUNTING, FOLDERS[:-1], scripts) if scripts else None
        Session(plan, tests, costs, reach, results, options).run(mutants)
    return summary(mutants, results, options, goal)


def arguments():
    parser = argparse.ArgumentParser(
        prog="scripts/mutate",
        description="Changes the code in one place at a time and looks whether a test fails. What is known already is "
        "not tried again: a run that was interrupted goes on. The tree is only read.",
        epilog="Example: scripts/mutate runtime --draw 500 --jobs 2; scripts/mutate runtime --kind 'error return'; "
        "scripts/mutate runtime runtime/drivers/tools/pack.cpp. Ends with 1 when a goal is missed or a mutant lives "
        "that docs/testing.md does not judge.")
    parser.add_argument("part", choices=PARTS, help="what is changed")
    parser.add_argument("files", nargs="*", help="only in these files, paths from the root of the tree")
    parser.add_argument("--kind", action="append", choices=points.KINDS,
                        help="only changes of this kind; may be repeated")
    parser.add_argument("--draw", type=int, metavar="N", help="draw N by lot instead of taking all")
    parser.add_argument("--seed", type=int, default=1, help="of the draw (%(default)s)")
    parser.add_argument("--minutes", type=float, default=math.inf, help="begin no mutant after so many minutes")
    parser.add_argument("--jobs", type=int, default=1, help="mutants that are tried at a time (%(default)s)")
    parser.add_argument("--short", action="store_true",
                        help="only the tests that take less than a second; what they leave alive is tried again without this")
    parser.add_argument("--again", action="store_true", help="try again those that lived; after tests were added")
    parser.add_argument("--list", action="store_true", help="print the mutants and try none")
    parser.add_argument("--summary", action="store_true", help="tell what is known and try none")
    options = parser.parse_args()
    for file in options.files:
        if not (ROOT / file).is_file():
            parser.error(f"{file} is no file; give its path from the root of the tree, such as "
                         "runtime/drivers/tools/pack.cpp")
    return options


def all_mutants(plan, folders):
    """Of the sources and, once each, of the headers that they include; remembered, as parsing takes minutes."""
    sources = plan.sources(folders)
    headers = sorted(h for h in plan.includers() if h.startswith(tuple(f + "/" for f in folders)) and h.endswith(".h"))
    everything = hashlib.sha256(Path(points.__file__).read_bytes())
    for file in sources + headers:
        everything.update(file.encode() + (ROOT / file).read_bytes())
    remembered = BUILD / f"points-{everything.hexdigest()[:16]}.json"
    if not remembered.exists():
        found = {}
        with ProcessPoolExecutor() as pool:
            some = pool.map(points.mutants_of, repeat(ROOT), sources, map(plan.for_clang, sources), repeat(headers))
            for mutant in chain.from_iterable(some):
                found.setdefault(mutant.identity, mutant)
        write_whole(remembered, json.dumps([vars(mutant) for mutant in found.values()]))
    return [points.Mutant(**fields) for fields in json.loads(remembered.read_text())]


def drawn(mutants, options):
    """In an order that depends on the seed and on each mutant alone, so that a new one does not change the others'."""
    if options.files:
        mutants = [m for m in mutants if m.file in options.files]
    if options.kind:
        mutants = [m for m in mutants if m.kind in options.kind]

    def lot(mutant):
        return hashlib.sha256("\0".join((str(options.seed), *mutant.identity)).encode()).digest()

    return sorted(mutants, key=lot)


def costs_of(plan, tests):
    """What each test takes of the processor without a mutant, a script of the clock; it must pass. Kept while its
    programs stay the same."""
    file = BUILD / "costs.json"
    known = json.loads(file.read_text()) if file.exists() else {}

    def key(test):
        return " ".join((test.name, *(str((BUILD / program).stat().st_mtime_ns) for program in test.programs)))

    def note(test, reason, cost):
        if reason:
            sys.exit(f"mutate: {test.name} fails without a mutant: {reason}\n"
                     f"again: ctest --test-dir build/mutate -R '^{test.name}$' --output-on-failure")
        known[key(test)] = cost
        write_whole(file, json.dumps(known))

    new = [test for test in tests if key(test) not in known]
    for test in (test for test in new if not test.is_script):
        before = os.times()
        reason = run_limited(list(test.command), test.directory, test.environment, 60)
        after = os.times()
        note(test, reason, after.children_user + after.children_system - before.children_user - before.children_system)
    scripts = [test for test in new if test.is_script]
    with ThreadPoolExecutor(SCRIPTS_AT_ONCE) as pool:
        for test, (reason, seconds) in zip(scripts, pool.map(timed_script, scripts)):
            note(test, reason, seconds)
    return {test.name: known[key(test)] for test in tests}


def timed_script(script):
    before = time.monotonic()
    reason = run_script(script, script.environment)
    return reason, time.monotonic() - before


def prove(plan, tests, costs, file):
    """A file that is compiled and linked as a mutant, but without a change, must pass all tests: whatever fails then
    would count as having killed. Kept while the programs stay the same."""
    proof = hashlib.sha256((ROOT / file).read_bytes())
    for program in sorted({program for test in tests for program in test.programs}):
        proof.update(f"{program} {(BUILD / program).stat().st_mtime_ns}".encode())
    proved = BUILD / f"proved-{proof.hexdigest()[:16]}"
    if proved.exists():
        return
    worker = Worker(plan, BUILD / "work/proof", FOLDERS)
    try:
        killer = worker.killer_of_nothing(file, tests, costs)
    except DoesNotLink:
        killer = "(the linker)"
    if killer:
        sys.exit(f"mutate: {file} fails without a change, in {killer}\nagain: scripts/mutate {file.split('/')[0]} {file}")
    proved.touch()


class Results:
    """What became of the mutants, a line each; a file that has changed since is another file."""

    def __init__(self, path):
        self.path = path
        self.known = {}
        if path.exists():
            for line in path.read_text().splitlines():
                fields = line.split("\t")
                if len(fields) == 9:  # not what was being written when the machine went down
                    self.known[tuple(fields[:4])] = Outcome(fields[6], fields[7], float(fields[8]))

    @staticmethod
    def key(mutant):
        return (mutant.digest, *mutant.identity)

    def of(self, mutant):
        return self.known.get(self.key(mutant))

    def add(self, mutant, outcome):
        self.known[self.key(mutant)] = outcome
        fields = (*self.key(mutant), mutant.kind, f"{mutant.line}:{mutant.column}", outcome.word, outcome.killer,
                  f"{outcome.seconds:.2f}")
        with self.path.open("a") as file:
            fcntl.flock(file, fcntl.LOCK_EX)
            file.write("\t".join(fields) + "\n")


class Session:
    """Several workers that take mutants from the top until there are no more, or enough, or no time."""

    def __init__(self, plan, tests, costs, reach, results, options):
        self.plan, self.tests, self.reach, self.results, self.options = plan, tests, reach, results, options
        self.order = Order(costs)
        self.lock = threading.Lock()
        self.end = time.monotonic() + options.minutes * 60
        self.counted = 0
        self.fault = None  # of a worker, which ends the others, too

    def run(self, mutants):
        for mutant in mutants:
            known = self.results.of(mutant)
            if known and known.word == "killed":
                self.order.note(mutant.file, known.killer)
        self.waiting = iter(mutants)
        threads = [threading.Thread(target=self.work, args=(number,), daemon=True) for number in range(self.options.jobs)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        if self.fault:
            raise self.fault

    def next(self):
        with self.lock:
            if self.fault:
                return None
            for mutant in self.waiting:
                if self.options.draw and self.counted >= self.options.draw:
                    return None
                known = self.results.of(mutant)
                if known and not self.is_to_be_tried_again(known):
                    self.counted += known.word in COUNTED
                    continue
                return mutant if time.monotonic() < self.end else None
            return None

    def is_to_be_tried_again(self, known):
        return (self.options.again and known.word in LIVING) or (not self.options.short and known.word == "open")

    def work(self, number):
        try:
            self.try_all(number)
        except Exception as fault:
            self.fault = fault

    def try_all(self, number):
        worker = Worker(self.plan, BUILD / f"work/{number}", FOLDERS)
        while mutant := self.next():
            outcome = worker.try_mutant(mutant, self.tests_for(mutant), self.order, self.options.short)
            with self.lock:
                self.counted += outcome.word in COUNTED
                if outcome.word == "killed":
                    self.order.note(mutant.file, outcome.killer)
                self.results.add(mutant, outcome)
                if outcome.word in LIVING:
                    print(f"{mutant.file}:{mutant.line}:{mutant.column}: {mutant.change}", flush=True)

    def tests_for(self, mutant):
        if not self.reach:
            return self.tests
        scripts = self.reach.scripts_for(mutant, [test for test in self.tests if test.is_script])
        return [test for test in self.tests if not test.is_script] + scripts


def judged():
    """The survivors that the page says why nothing sees: (file, function, change)."""
    rows = set()
    for line in PAGE.read_text().splitlines():
        cells = [c.strip().replace("\\|", "|") for c in re.split(r"(?<!\\)\|", line)[1:-1]]
        if len(cells) == 4 and " -> " in cells[2]:
            file, function, change = (re.sub(r"^`+ ?| ?`+$", "", cell) for cell in cells[:3])
            rows.add((file, function, change))
    return rows


def summary(mutants, results, options, goal):
    tried = [(m, results.of(m)) for m in mutants]
    if options.draw:  # what other runs tried further down was not drawn by this lot
        tried = takewhile(lambda pair: pair[1], tried)
    tried = [(m, o) for m, o in tried if o]
    counted = [(m, o) for m, o in tried if o.word in COUNTED][: options.draw]
    words = Counter(o.word for _, o in tried)
    print(f"\n{options.part}, seed {options.seed}: {len(counted)} mutants of {len(mutants)}; besides, {words['broken']} "
          f"that do not compile and {words['same']} that make the same code")
    for title, of in (("kind", lambda m: m.kind), ("file", lambda m: m.file)):
        print(f"\n{'mutants':>8}{'killed':>8}{'%':>8}  {title}")
        for name in sorted({of(m) for m, _ in counted}):
            print(row([o for m, o in counted if of(m) == name], name))
        print(row([o for _, o in counted], "all"))
    known = judged()
    lived = [m for m, o in counted if o.word in LIVING]
    new = [m for m in lived if m.identity not in known]
    for title, some in (("Judged in docs/testing.md", [m for m in lived if m.identity in known]), ("Not judged", new)):
        if some:
            print(f"\n{title}:")
        for m in sorted(some, key=lambda m: (m.file, m.line, m.column)):
            print(f"{m.file}:{m.line}:{m.column}: {m.kind}: {m.function}: {m.change}")
    killed = sum(o.word == "killed" for _, o in counted)
    visible = killed + len(new)
    missed = visible and 100 * killed / visible < goal
    if visible:
        print(f"\n{100 * killed / visible:.1f} % of those that are not judged to be invisible are killed")
    if missed:
        print(f"\nmutate: that is less than {goal} %", file=sys.stderr)
    if new:
        print(f"\nmutate: {len(new)} live that docs/testing.md does not judge: each needs a test, or a row there that "
              "says why nothing sees it", file=sys.stderr)
    return 1 if missed or new else 0


def row(outcomes, name):
    killed = sum(o.word == "killed" for o in outcomes)
    percent = f"{100 * killed / len(outcomes):.1f}" if outcomes else "-"
    return f"{len(outcomes):8}{killed:8}{percent:>8}  {name}"


if __name__ == "__main__":
    sys.exit(main())
