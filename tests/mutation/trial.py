# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
"""Runs tests with one mutant chosen, those that come to its place, until one fails."""

import ctypes
import os
import re
import resource
import selectors
import signal
import subprocess
import sys
import tempfile
import threading
import time
from collections import Counter
from concurrent.futures import ThreadPoolExecutor
from dataclasses import dataclass
from itertools import groupby
from pathlib import Path

MEMORY = 4 << 30  # of a test, in bytes
FILE_SIZE = 64 << 20
SCRIPTS_AT_ONCE = 10  # when nothing else is run; they mostly wait
SCRIPTS_OF_A_MUTANT = 4  # at once, where several mutants are tried: with the first that fails all end
FEW_DRAWS = {  # of what scripts try by lot; s7ppi would tell others that it knows no such setting
    "s7ppi_stops_command_line": "S7PPI_STOP_RUNS=1",
    "s7ppi_killed_command_line": "S7PPI_KILLS=4",
    "s7ppi_killed_watch_command_line": "S7PPI_KILLS=4",
    "s7ppi_memory_command_line": "S7PPI_MOMENTS=4",
}
STOPPED = "(stopped)"  # with others, of which one failed
PR_SET_CHILD_SUBREAPER = 36


@dataclass(frozen=True)
class Outcome:
    word: str  # killed; survived; same: the compiler makes the same code of it; broken: it does not compile
    killer: str = ""
    seconds: float = 0.0


class Trials:
    """The tests of one build with mutants: what each takes, and to which mutants it comes."""

    alone = threading.Lock()  # what is run with it meets no end of terminals

    def __init__(self, tests, count):
        """Runs each test once without a mutant; it must pass. The mutants have the numbers from 1 to `count`."""
        self.count = count
        self.kills = {}  # of each file: how often each test killed a mutant of it
        self.costs, self.reached = {}, {}
        scripts = [test for test in tests if test.is_script]
        for some, at_once in (([t for t in tests if not t.is_script], os.cpu_count()), (scripts, SCRIPTS_AT_ONCE)):
            with ThreadPoolExecutor(at_once) as pool:
                for test, (seconds, reached) in zip(some, pool.map(self.measured, some)):
                    self.costs[test], self.reached[test] = seconds, reached

    def measured(self, test):
        with tempfile.NamedTemporaryFile(prefix="mutants-") as file:
            file.write(bytes(self.count + 1))
            file.flush()
            for _ in range(2):  # beside others some test may wait in vain for a moment
                begin = time.monotonic()
                reason = run([test], 60, [f"MUTANTS_REACHED={file.name}"])
                seconds = time.monotonic() - begin
                if not reason:
                    break
            else:
                sys.exit(f"mutate: {test.key} fails without a mutant: {reason}\nagain: {shown([test])}")
            return seconds, {number for number, byte in enumerate(Path(file.name).read_bytes()) if byte}

    def note(self, file, killer):
        self.kills.setdefault(file, Counter())[killer] += 1

    def coming_to(self, number):
        return [test for test, numbers in self.reached.items() if number in numbers]

    def killer(self, mutant, number, tests, scripts_at_once=SCRIPTS_OF_A_MUTANT):
        """What fails when the mutant is chosen, or nothing when all pass. It fails twice: once may be by chance."""
        chosen = [f"MUTANT={number}"]
        for test in self.in_order(mutant.file, [test for test in tests if not test.is_script]):
            if self.fails([test], chosen) and self.fails([test], chosen):
                return test.key
        scripts = self.in_order(mutant.file, [test for test in tests if test.is_script])
        return self.killer_of_scripts(scripts, chosen, scripts_at_once)

    def in_order(self, file, tests):
        """Those of the file's name and those that killed its mutants, then the quick ones."""
        kills = self.kills.get(file, Counter())
        stem = Path(file).stem
        return sorted(tests, key=lambda t: (stem not in t.name, self.costs[t] / (1 + 10 * kills[t.key])))

    def fails(self, tests, chosen, stop=None):
        return run(tests, sum(self.costs[test] for test in tests), chosen, stop)

    def killer_of_scripts(self, tests, chosen, at_once):
        """The first test by itself, as it has killed others or is quick; then whole scripts, together."""
        scripts = [tests[:1]] if tests else []
        scripts += [list(some) for _, some in groupby(sorted(tests[1:], key=lambda t: t.name), key=lambda t: t.name)]
        scripts[1:] = sorted(scripts[1:], key=lambda some: sum(self.costs[test] for test in some))
        while scripts:
            failed = self.first_failing(scripts, chosen, at_once)
            if not failed:
                return None
            some, suspects = failed
            for test in suspects:
                with self.alone:
                    if self.fails([test], chosen):
                        return test.key
            scripts.append([test for test in some if test not in suspects])
        return None

    def first_failing(self, scripts, chosen, at_once):
        """Tests of one script of which one failed, and those among them that it may have been; or nothing. Scripts that
        are done go out of the list."""
        stop = threading.Event()
        failed = []

        def result(tests):
            reason = STOPPED if stop.is_set() else self.fails(tests, chosen, stop)
            if reason and reason != STOPPED:
                failed.append((tests, [t for t in tests if reason.endswith(" " + t.title)] or tests))
                stop.set()
            return reason

        scripts[:] = filter(None, scripts)
        with ThreadPoolExecutor(at_once) as pool:
            results = list(pool.map(result, scripts))
        with self.alone:
            end_terminals()
        scripts[:] = [some for some, reason in zip(scripts, results) if reason == STOPPED]
        scripts += [some for some, _ in failed[1:]]
        return failed[0] if failed else None


def command_of(tests):
    """Of a test program, or of some tests of the same script."""
    command = tests[0].command
    if not tests[0].is_script:
        return command
    titles = "|".join(re.sub(r"([][\\.*+?(){}|^$])", r"\\\1", test.title) for test in tests)
    return (*command[:-1], "--filter", f"^({titles})$", command[-1])


def run(tests, cost, variables, stop=None):
    """As run_limited()."""
    few = [FEW_DRAWS[tests[0].name]] if tests[0].name in FEW_DRAWS else []
    return run_limited(command_of(tests), tests[0].directory, [*tests[0].environment, *few, *variables], cost, stop)


def shown(tests):
    return f"(cd {tests[0].directory} && env {' '.join(tests[0].environment)} {' '.join(command_of(tests))})"


def write_whole(path, text):
    """Whole or not at all, whenever the machine goes down."""
    new = path.with_suffix(".new")
    new.write_text(text)
    new.replace(path)


def adopt_orphans():
    """A server of terminals leaves the group of the script that started it; it is this process's child then."""
    ctypes.CDLL(None).prctl(PR_SET_CHILD_SUBREAPER, 1)


def end_terminals():
    """Of scripts that were stopped."""
    subprocess.run(["pkill", "-KILL", "-P", str(os.getpid()), "tmux"], check=False)


def end_children():
    """Whatever tests that were stopped have left behind: with each that ends, those that it started come to this
    process."""
    while subprocess.run(["pkill", "-KILL", "-P", str(os.getpid())], check=False).returncode == 0:
        try:
            while os.waitpid(-1, os.WNOHANG)[0]:
                pass
        except ChildProcessError:
            return
        time.sleep(0.05)


def run_limited(arguments, directory, environment, cost, stop=None):
    """Why the test fails, or nothing. `cost` is what it takes without a mutant, in seconds; `stop`, an event, ends it."""
    processor = int(3 + 5 * cost)
    patience = 15 + 10 * cost

    def limit():
        resource.setrlimit(resource.RLIMIT_CPU, (processor, processor + 1))
        resource.setrlimit(resource.RLIMIT_AS, (MEMORY, MEMORY))
        resource.setrlimit(resource.RLIMIT_FSIZE, (FILE_SIZE, FILE_SIZE))
        resource.setrlimit(resource.RLIMIT_CORE, (0, 0))

    variables = {**os.environ, **dict(v.split("=", 1) for v in environment)}
    process = subprocess.Popen(arguments, cwd=directory, env=variables, stdin=subprocess.DEVNULL,
                               stdout=subprocess.PIPE, stderr=subprocess.STDOUT, start_new_session=True,
                               preexec_fn=limit)
    try:
        reason = first_failure(process.stdout.fileno(), time.monotonic() + patience, stop)
        if reason:
            return reason
        code = process.wait(timeout=patience)
    except subprocess.TimeoutExpired:
        return "(time)"
    finally:
        end_group(process)
    if code == 0:
        return None
    if code in (-signal.SIGXCPU, -signal.SIGKILL):
        return "(time)"
    return f"({signal.Signals(-code).name})" if code < 0 else "(failed)"


def first_failure(output, deadline, stop=None):
    """What Qt Test or bats says has failed, as soon as it says so; nothing at the end of the output."""
    selector = selectors.DefaultSelector()
    selector.register(output, selectors.EVENT_READ)
    rest = b""
    while True:
        left = deadline - time.monotonic()
        if left <= 0:
            return "(time)"
        if stop and stop.is_set():
            return STOPPED
        if not selector.select(min(left, 0.5)):
            continue
        piece = os.read(output, 65536)
        if not piece:
            return None
        *lines, rest = (rest + piece).split(b"\n")
        for line in lines:
            if line.startswith((b"FAIL!", b"XPASS")):
                return line.split(b"::", 1)[-1].split(b"(", 1)[0].decode(errors="replace").strip() or "(failed)"
            if line.startswith(b"not ok "):
                return line.decode(errors="replace")
        rest = rest[-65536:]


def end_group(process):
    try:
        os.killpg(process.pid, signal.SIGKILL)
    except ProcessLookupError:
        pass
    process.stdout.close()
    process.wait()
