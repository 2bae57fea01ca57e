# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
"""Tries one mutant: compiles it beside the tree, links the tests with it, and runs them until one fails."""

import ctypes
import os
import re
import resource
import selectors
import shutil
import signal
import subprocess
import threading
import time
from collections import Counter
from concurrent.futures import ThreadPoolExecutor
from dataclasses import dataclass

from points import apply

# Quickly compiled; a function that ends without the value that it returns, as one whose return was dropped may do,
# is stopped there, and not by chance right.
OPTIONS = ("-w", "-O0", "-fsanitize=return", "-fsanitize-undefined-trap-on-error")
MEMORY = 4 << 30  # of a test, in bytes
FILE_SIZE = 64 << 20
LONG = 1  # second that a test takes: before, it is worth while to ask the compiler whether anything changed
QUICK = 4  # functions that are tried before whole tests
SCRIPT_COST = 8  # seconds of the processor that a script takes at most
SCRIPTS_AT_ONCE = 14  # when nothing else is run; they mostly wait
SCRIPTS_OF_A_MUTANT = 4  # at once: with the first that fails all end
FEW_DRAWS = {  # of what scripts try by lot; s7ppi would tell others that it knows no such setting
    "s7ppi_stops_command_line": "S7PPI_STOP_RUNS=1",
    "s7ppi_killed_command_line": "S7PPI_KILLS=4",
    "s7ppi_killed_watch_command_line": "S7PPI_KILLS=4",
    "s7ppi_memory_command_line": "S7PPI_MOMENTS=4",
}
STOPPED = "(stopped)"  # a script with others, of which one failed
PR_SET_CHILD_SUBREAPER = 36


@dataclass(frozen=True)
class Outcome:
    # killed; survived; open: the short tests did not kill it, and the long ones were not asked; same: the compiler
    # makes the same code of it; broken: it does not compile or link
    word: str
    killer: str = ""
    seconds: float = 0.0


class DoesNotLink(Exception):
    """What a mutant was compiled to, which makes it as good as one that does not compile."""


class Order:
    """Which tests to run first for a file: those of its name or that killed its mutants, then the quick ones."""

    def __init__(self, costs):
        self.costs = costs  # seconds of each test without a mutant
        self.functions, self.kills = {}, {}

    def note(self, file, killer):
        test, _, function = killer.partition("::")
        self.kills.setdefault(file, Counter())[test] += 1
        if function.isidentifier():
            self.functions.setdefault(file, Counter())[(test, function)] += 1

    def quick(self, file, tests):
        by_name = {test.name: test for test in tests}
        best = self.functions.get(file, Counter()).most_common(QUICK)
        return [(by_name[name], function) for (name, function), _ in best if name in by_name]

    def whole(self, file, tests):
        kills = self.kills.get(file, Counter())
        stem = os.path.basename(file).rsplit(".", 1)[0]
        return sorted(tests, key=lambda t: (stem not in t.name, self.costs[t.name] / (1 + 10 * kills[t.name])))


class Worker:
    """A copy of the sources and a place for what is made of them: nothing outside of it is written."""

    alone = threading.Lock()  # of all workers: what is run with it meets no end of terminals

    def __init__(self, plan, place, folders):
        self.plan, self.place = plan, place
        self.tree = place / "tree"
        self.headers = {}  # precompiled, of each library
        self.originals = {}  # object: what the compiler makes of it, optimised, without a mutant
        shutil.rmtree(place, ignore_errors=True)
        for folder in folders:
            shutil.copytree(plan.root / folder, self.tree / folder, symlinks=True)

    def try_mutant(self, mutant, tests, order, only_short):
        begin = time.monotonic()
        file = self.tree / mutant.file
        source = file.read_bytes()
        try:
            file.write_bytes(apply(source, mutant))
            outcome = self.outcome_of(mutant, source, tests, order, only_short)
        except DoesNotLink:
            outcome = Outcome("broken")
        finally:
            file.write_bytes(source)
        return Outcome(outcome.word, outcome.killer, time.monotonic() - begin)

    def outcome_of(self, mutant, source, tests, order, only_short):
        linked = self.linked(mutant.file)
        if not linked:
            return Outcome("broken")
        concerned = linked.concerned(tests)
        for test, function in order.quick(mutant.file, concerned):
            if only_short and order.costs[test.name] >= LONG:
                continue
            killer = self.run(test, linked, order.costs[test.name], function)
            if killer:
                return Outcome("killed", killer)
        whole = order.whole(mutant.file, concerned)
        short = [test for test in whole if order.costs[test.name] < LONG]
        killer = self.first_killer(short, linked, order.costs)
        if killer:
            return Outcome("killed", killer)
        if self.is_same_code(mutant, source):
            return Outcome("same")
        if only_short:
            return Outcome("open")
        killer = self.first_killer([test for test in whole if test not in short], linked, order.costs)
        return Outcome("killed", killer) if killer else Outcome("survived")

    def killer_of_nothing(self, file, tests, costs):
        """What fails when the file is compiled and linked anew as it is; then no mutant of it was killed for sure."""
        linked = self.linked(file)
        return self.first_killer(linked.concerned(tests), linked, costs) if linked else "(the compiler)"

    def linked(self, file):
        """The programs with what the worker's copy of the file makes of them; nothing when it does not compile."""
        made = {}
        for targets in self.plan.affected_objects(file):
            output = self.place / "objects" / targets[0]
            if not self.compile(targets[0], output):
                return None
            made.update(dict.fromkeys(targets, output))
        return Linker(self, made)

    def first_killer(self, tests, linked, costs):
        """Or nothing when all pass. The scripts are run last, together."""
        for test in (test for test in tests if not test.is_script):
            killer = self.run(test, linked, costs[test.name])
            if killer:
                return killer
        return self.run_scripts([test for test in tests if test.is_script], linked)

    def compile(self, target, output):
        """From the worker's copy, as quickly as the compiler can; false where it does not compile."""
        header = self.precompiled(target)
        return self.run_compiler(target, output, *OPTIONS, "-include", str(header), leave_out="-include")

    def run_compiler(self, target, output, *options, leave_out=None):
        arguments = [self.moved(a) for a in self.plan.compilations[target]]
        arguments[arguments.index("-o") + 1] = str(output)
        if leave_out in arguments:
            at = arguments.index(leave_out)
            del arguments[at : at + 2]
        output.parent.mkdir(parents=True, exist_ok=True)
        done = subprocess.run([*arguments, *options], cwd=self.plan.build, capture_output=True, check=False)
        return done.returncode == 0

    def precompiled(self, target):
        """A header of all that the sources of the same library include from outside, made when it is first needed."""
        library = target.split(".dir/")[0]
        if library not in self.headers:
            header = self.headers[library] = self.place / "headers" / library / "outside.h"
            header.parent.mkdir(parents=True)
            header.write_text(self.plan.outside_headers(library))
            arguments = [self.moved(a) for a in self.plan.compilations[target]]
            for option in ("-include", "-o", "-c"):
                if option in arguments:
                    at = arguments.index(option)
                    del arguments[at : at + 2]
            command = [*arguments, *OPTIONS, "-x", "c++-header", str(header), "-o", f"{header}.gch"]
            if subprocess.run(command, cwd=self.plan.build, capture_output=True, check=False).returncode != 0:
                header.write_text("")  # they do not all go together
        return self.headers[library]

    def moved(self, argument):
        """The argument, with the worker's copy for the tree; what the build made stays where it is."""
        root, build = str(self.plan.root), str(self.plan.build)
        parts = argument.split(build)
        return build.join(re.sub(re.escape(root) + "(?=/|$)", str(self.tree), part) for part in parts)

    def is_same_code(self, mutant, source):
        """Whether the optimised code is that of the original: then no test can tell them apart."""
        targets = self.plan.affected_objects(mutant.file)
        if mutant.file not in self.plan.objects:
            return False
        target = targets[0][0]
        file, output = self.tree / mutant.file, self.place / "same.o"
        changed = file.read_bytes()
        if target not in self.originals:
            file.write_bytes(source)
            self.run_compiler(target, output)
            self.originals[target] = output.read_bytes()
            file.write_bytes(changed)
        return self.run_compiler(target, output) and output.read_bytes() == self.originals[target]

    def run(self, test, linked, cost, function=None):
        """The killer, or nothing when the test passes. It has to fail twice: once may be by chance."""
        arguments = [str(linked.program(test.programs[0])), *test.command[1:]] + ([function] if function else [])
        for _ in range(2):
            reason = run_limited(arguments, test.directory, test.environment, cost)
            if not reason:
                return None
        return f"{test.name}::{reason}"

    def run_scripts(self, scripts, linked):
        """The first killer, with which the others end, or nothing when all pass. One that fails beside the others
        has to fail again by itself."""
        if not scripts:
            return None
        for program in scripts[0].programs:
            linked.settle(program)
        left = list(scripts)
        while left:
            suspect = self.first_failing(left)
            if not suspect:
                return None
            with self.alone:
                reason = run_script(suspect, self.moved_environment(suspect))
            if reason:
                return f"{suspect.name}::{reason}"
            left.remove(suspect)
        return None

    def first_failing(self, scripts):
        """Takes those that passed out of the list."""
        stop = threading.Event()

        def result(script):
            reason = STOPPED if stop.is_set() else run_script(script, self.moved_environment(script), stop)
            if reason:
                stop.set()
            return reason

        with ThreadPoolExecutor(SCRIPTS_OF_A_MUTANT) as pool:
            results = dict(zip(scripts, pool.map(result, scripts)))
        with self.alone:
            end_terminals()
        scripts[:] = [script for script in scripts if results[script]]
        return next((script for script in scripts if results[script] != STOPPED), None)

    def moved_environment(self, test):
        """Which names what this worker linked instead of what the build did."""
        build = str(self.plan.build)
        return [re.sub(f"={re.escape(build)}/(bin|lib)", f"={self.place}/\\1", v) for v in test.environment]


class Linker:
    """The programs of one mutant, each linked when it is first asked for."""

    def __init__(self, worker, made):
        self.worker, self.plan, self.made = worker, worker.plan, made
        self.ready = {}

    def concerns(self, program):
        link = self.plan.link(program)
        return (any(o in self.made for o in link.objects) or any(self.concerns(p) for p in link.libraries)
                or any(self.concerns(p) for p in link.named_outputs() if p != program))

    def concerned(self, tests):
        return [test for test in tests if any(map(self.concerns, test.programs))]

    def program(self, program):
        if program not in self.ready:
            self.ready[program] = self.make(program)
        return self.ready[program]

    def settle(self, program):
        """Puts the program into the worker's place, the build's own where the mutant is not in it."""
        if self.concerns(program):
            self.program(program)
        elif program not in self.ready:
            self.ready[program] = self.emptied(program)
            os.link(self.plan.build / program, self.ready[program])

    def emptied(self, program):
        output = self.worker.place / program
        output.parent.mkdir(parents=True, exist_ok=True)
        output.unlink(missing_ok=True)
        return output

    def make(self, program):
        link, output = self.plan.link(program), self.emptied(program)
        made = {target: file for target, file in self.made.items() if target in link.objects}
        named = {path: targets for path, targets in link.named_outputs().items() if path != program}
        if any(map(self.concerns, named)):
            for path, targets in named.items():
                self.settle(path)
                for target in (t for t in targets if t not in made):
                    made[target] = self.with_moved_outputs(target)
        libraries = {path: self.program(path) for path in link.libraries if self.concerns(path)}
        if len(made) > 1 and self.links(link.with_objects_in_front(made, output), libraries):
            return output
        archives = {name: self.archive(name, members) for name, members in link.archives.items()
                    if any(m in self.made for m in members)}
        if not self.links(link.with_objects(made, archives, output), libraries):
            raise DoesNotLink
        return output

    def links(self, command, libraries):
        command = [str(libraries.get(a, a)) for a in command]
        command += [f"-Wl,-rpath,{library.parent}" for library in libraries.values()]
        done = subprocess.run([*command, "-fuse-ld=gold"], cwd=self.plan.build, capture_output=True, check=False)
        return done.returncode == 0

    def archive(self, name, members):
        """Of the same members, each changed one in its place."""
        if name not in self.ready:
            self.ready[name] = self.emptied(name)
            files = [str(self.made.get(m, m)) for m in members]
            subprocess.run(["ar", "qcs", str(self.ready[name]), *files], cwd=self.plan.build, check=True)
        return self.ready[name]

    def with_moved_outputs(self, target):
        """An object of a test in which the paths of the build's programs are those of the worker; made once."""
        output = self.worker.place / "moved" / target
        if not output.exists():
            output.parent.mkdir(parents=True, exist_ok=True)
            build, place = str(self.plan.build), str(self.worker.place)
            arguments = [a.replace(f"{build}/lib/", f"{place}/lib/").replace(f"{build}/bin/", f"{place}/bin/")
                         if a.startswith("-D") else a for a in self.plan.compilations[target]]
            arguments[arguments.index("-o") + 1] = str(output)
            subprocess.run([*arguments, "-w"], cwd=self.plan.build, capture_output=True, check=True)
        return output


def run_script(test, environment, stop=None):
    """As run_limited()."""
    few = [FEW_DRAWS[test.name]] if test.name in FEW_DRAWS else []
    return run_limited(test.command, test.directory, [*environment, *few], SCRIPT_COST, stop)


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


def run_limited(arguments, directory, environment, cost, stop=None):
    """Why the test fails, or nothing. `cost` is what it takes without a mutant, in seconds of the processor; the
    event `stop` ends it."""
    processor = int(3 + 5 * cost)
    patience = 60 + 30 * cost

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
