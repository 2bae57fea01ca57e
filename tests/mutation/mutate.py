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
import signal
import sys
import threading
import time
from collections import Counter
from concurrent.futures import ProcessPoolExecutor
from itertools import chain, repeat, takewhile
from pathlib import Path

import points
from programs import Programs
from switches import apart
from trial import SCRIPTS_AT_ONCE, Outcome, Trials, adopt_orphans, end_children, write_whole

ROOT = Path(__file__).resolve().parents[2]
BUILD = ROOT / "build/mutate"
RESULTS = BUILD / "results.tsv"
PAGE = ROOT / "docs/testing.md"

# How much of what is changed the tests must see, in percent, and the rooms of these tests.
PARTS = {
    "runtime": (97, ("unit", "exchange", "fault", "property", "regressions")),
    "host": (85, ("host", "system", "property", "regressions")),
    "simulator": (85, ("simulator", "system", "property", "regressions")),
}
COUNTED = ("killed", "survived")
ROUND = 1000  # mutants at most that are compiled together
SPARE = 1.08  # more than are missing, as some do not compile


def main():
    options = arguments()
    goal, rooms = PARTS[options.part]
    BUILD.mkdir(parents=True, exist_ok=True)
    programs = Programs(ROOT, BUILD, [f"tests/{room}/all" for room in rooms] + ["s7ppi", "s7ppi-sim"])
    remembered = remembered_points(programs, options.part)
    if not remembered.exists() or not (options.list or options.summary):
        lock = locked()
        programs.prepare()
    if not remembered.exists():
        write_points(programs, options.part, remembered)
    mutants = [points.Mutant(**fields) for fields in json.loads(remembered.read_text())]
    mutants = drawn(mutants, options)
    if not mutants:
        sys.exit("mutate: nothing there can be changed")
    if options.list:
        for m in mutants:
            print(f"{m.file}:{m.line}:{m.column}: {m.kind}: {m.function}: {m.change}")
        return 0
    results = Results(RESULTS)
    if not options.summary:
        adopt_orphans()
        for number in (signal.SIGINT, signal.SIGTERM):
            signal.signal(number, stop)
        Session(programs, tuple(f"tests/{room}" for room in rooms), results, options).run(mutants)
        end_children()
    return summary(mutants, results, options, goal)


def stop(number, _frame):
    """At once: what is known stands in its file, and threads that wait for tests are not waited for."""
    end_children()
    tell("what is known stays known: the same command goes on")
    os._exit(128 + number)


def arguments():
    parser = argparse.ArgumentParser(
        prog="scripts/mutate",
        description="Changes the code in one place at a time and looks whether a test fails. What is known already is "
        "not tried again: a run that was interrupted goes on. The tree is only read, and copied.",
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
    parser.add_argument("--again", action="store_true",
                        help="try again those that lived and are not judged; after tests were added")
    parser.add_argument("--list", action="store_true", help="print the mutants and try none")
    parser.add_argument("--summary", action="store_true", help="tell what is known and try none")
    options = parser.parse_args()
    for file in options.files:
        if not (ROOT / file).is_file():
            parser.error(f"{file} is no file; give its path from the root of the tree, such as "
                         "runtime/drivers/tools/pack.cpp")
    return options


def locked():
    """A file that keeps others out of the copy and its build, as long as it is open."""
    lock = (BUILD / "lock").open("w")
    try:
        fcntl.flock(lock, fcntl.LOCK_EX | fcntl.LOCK_NB)
    except BlockingIOError:
        sys.exit("mutate: another run is at work in build/mutate; wait for it")
    return lock


def remembered_points(programs, part):
    """The file in which stands what can be changed in the files as they are, as parsing them takes minutes."""
    everything = hashlib.sha256(Path(points.__file__).read_bytes())
    for file in programs.files(part, ".cpp") + programs.files(part, ".h"):
        everything.update(file.encode() + programs.originals[file])
    return BUILD / f"points-{everything.hexdigest()[:16]}.json"


def write_points(programs, part, remembered):
    """Of the sources and, once each, of the headers that they include."""
    tell("building the tree as it is, and looking for what can be changed; that takes some minutes")
    programs.make()
    sources = [file for file in programs.files(part, ".cpp") if file in programs.compilations]
    headers = programs.files(part, ".h")
    found = {}
    with ProcessPoolExecutor() as pool:
        places = repeat(programs.tree)
        some = pool.map(points.mutants_of, places, sources, map(programs.for_clang, sources), repeat(headers))
        for mutant in chain.from_iterable(some):
            found.setdefault(mutant.identity, mutant)
    write_whole(remembered, json.dumps([vars(mutant) for mutant in found.values()]))


def drawn(mutants, options):
    """In an order that depends on the seed and on each mutant alone, so that a new one does not change the others'."""
    if options.files:
        mutants = [m for m in mutants if m.file in options.files]
    if options.kind:
        mutants = [m for m in mutants if m.kind in options.kind]

    def lot(mutant):
        return hashlib.sha256("\0".join((str(options.seed), *mutant.identity)).encode()).digest()

    return sorted(mutants, key=lot)


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
    """Rounds of mutants that are compiled together; several workers take them from the top until there are no more, or
    enough, or no time."""

    def __init__(self, programs, test_folders, results, options):
        self.programs, self.test_folders, self.results, self.options = programs, test_folders, results, options
        self.lock = threading.Lock()
        self.end = time.monotonic() + options.minutes * 60
        self.tried = set()  # in this session
        self.judged = judged()
        self.fault = None  # of a worker, which ends the others, too

    def run(self, mutants):
        while (some := self.unknown(mutants)) and time.monotonic() < self.end:
            taken = apart(some)
            numbered = dict(enumerate(taken, 1))
            tell(f"building {len(taken)} mutants")
            alone, probed = self.programs.make_with(numbered)
            tell(f"running all tests without a mutant; {len(alone)} mutants will be compiled by themselves")
            trials = Trials(self.programs.tests(self.test_folders), len(taken))
            tell(f"trying {len(taken)} mutants")
            for mutant in mutants:
                known = self.results.of(mutant)
                if known and known.word == "killed":
                    trials.note(mutant.file, known.killer)
            self.try_all({n: m for n, m in numbered.items() if n not in alone}, trials, mutants)
            for number in sorted(alone):
                if not self.is_enough(mutants):
                    self.try_alone(numbered[number], number if number in probed else None, trials)

    def unknown(self, mutants):
        """Those to be tried next, from the top: as many as are missing, and some more."""
        some, counted = [], 0
        for mutant in mutants:
            if len(some) == ROUND or (self.options.draw and counted + len(some) / SPARE >= self.options.draw):
                break
            if self.is_to_be_tried(mutant):
                some.append(mutant)
            else:
                counted += self.results.of(mutant).word in COUNTED
        return some

    def is_to_be_tried(self, mutant):
        known = self.results.of(mutant)
        if not known or known.word != "survived":
            return not known
        return self.options.again and mutant.identity not in self.tried and mutant.identity not in self.judged

    def is_enough(self, mutants):
        known = takewhile(lambda m: not self.is_to_be_tried(m), mutants)
        counted = sum(self.results.of(m).word in COUNTED for m in known)
        drawn = self.options.draw and counted >= self.options.draw
        return self.fault or drawn or time.monotonic() >= self.end

    def try_all(self, numbered, trials, mutants):
        waiting = iter(numbered.items())

        def work():
            try:
                while True:
                    with self.lock:
                        number, mutant = next(waiting, (0, None))
                        if not mutant or self.is_enough(mutants):
                            return
                    begin = time.monotonic()
                    killer = trials.killer(mutant, number, trials.coming_to(number))
                    self.note(mutant, killer, begin, trials)
            except Exception as fault:
                self.fault = fault

        threads = [threading.Thread(target=work, daemon=True) for _ in range(self.options.jobs)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        if self.fault:
            raise self.fault

    def try_alone(self, mutant, probe, trials):
        begin = time.monotonic()
        if not self.programs.make_alone(mutant):
            self.add(mutant, Outcome("broken", "", time.monotonic() - begin))
            return
        tests = trials.coming_to(probe) if probe else list(trials.costs)
        self.note(mutant, trials.killer(mutant, 0, tests, SCRIPTS_AT_ONCE), begin, trials)

    def note(self, mutant, killer, begin, trials):
        if killer:
            trials.note(mutant.file, killer)
            word = "killed"
        else:
            word = "same" if self.is_same_code(mutant) else "survived"
        self.add(mutant, Outcome(word, killer or "", time.monotonic() - begin))

    def is_same_code(self, mutant):
        """Whether the optimised code is that of the original: then no test can tell them apart."""
        if mutant.file not in self.programs.compilations:
            return False
        source = self.programs.originals[mutant.file]
        with self.lock:
            before = self.programs.optimised(mutant.file, source)
            after = self.programs.optimised(mutant.file, points.apply(source, mutant))
        return before is not None and before == after

    def add(self, mutant, outcome):
        with self.lock:
            self.tried.add(mutant.identity)
            self.results.add(mutant, outcome)
            if outcome.word == "survived":
                print(f"{mutant.file}:{mutant.line}:{mutant.column}: {mutant.change}", flush=True)


def tell(text):
    print(f"mutate: {text}", file=sys.stderr, flush=True)


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
    lived = [m for m, o in counted if o.word == "survived"]
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
    try:
        sys.exit(main())
    except BrokenPipeError:  # whoever reads has seen enough, as head has
        os.dup2(os.open(os.devnull, os.O_WRONLY), sys.stdout.fileno())
        sys.exit(1)
