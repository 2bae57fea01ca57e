# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
"""A copy of the tree that is changed and built, and the tests of what is built."""

import json
import os
import re
import shlex
import subprocess
import sys
from dataclasses import dataclass
from pathlib import Path

from points import apply
from switches import with_switches

# What clang, which reads the sources, does not need or understand of gcc's arguments.
NOT_FOR_CLANG = re.compile(r"-(W|fpch|fmacro|fdebug|M).*")
TEST_OF_SCRIPT = re.compile(r"""^@test (["'])(.*)\1 \{$""", re.MULTILINE)
MENTIONED = re.compile(r"^(?:In file included from |\s+from )?([^\s:]+):(\d+)[:,]", re.MULTILINE)


@dataclass(frozen=True)
class Test:
    """A class of a test program, or a single test of a script."""

    name: str  # as CTest has it, which is the same for all of a script
    title: str  # of the test in its script
    command: tuple
    environment: tuple
    directory: str

    @property
    def is_script(self):
        return bool(self.title)

    @property
    def key(self):
        return f"{self.name}: {self.title}" if self.title else self.name


class Programs:
    def __init__(self, root, place, targets):
        self.root, self.tree, self.build = root, place / "tree", place / "programs"
        self.place, self.targets = place, targets
        listed = subprocess.run(["git", "ls-files", "-co", "--exclude-standard"], cwd=root, check=True,
                                capture_output=True, text=True).stdout.splitlines()
        # {file: bytes}, as the tree may change meanwhile
        self.originals = {file: (root / file).read_bytes() for file in listed if (root / file).is_file()}
        self.written = {}  # file: what stands in the copy instead of the source
        self.chosen_from = {}  # the same, of make_with()
        self.compilations = {}  # source: arguments of its compiler, with the tree for its copy

    # The tree.

    def files(self, folder, suffix):
        return sorted(file for file in self.originals if file.startswith(f"{folder}/") and file.endswith(suffix))

    def copy(self):
        """What is the same already keeps its time, so that it is not compiled again."""
        there = {str(path.relative_to(self.tree)) for path in self.tree.rglob("*") if path.is_file()}
        for file in there.difference(self.originals):
            (self.tree / file).unlink()
        for file, contents in self.originals.items():
            self.put(file, contents)
            (self.tree / file).chmod((self.root / file).stat().st_mode)

    def put(self, file, contents):
        path = self.tree / file
        if not path.is_file() or path.read_bytes() != contents:
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_bytes(contents)

    def write(self, contents):
        """{file: bytes} in the place of the sources; all others become what they are in the tree again."""
        for file in set(self.written).difference(contents):
            self.put(file, self.originals[file])
        for file, some in contents.items():
            self.put(file, some)
        self.written = contents

    # The build.

    def prepare(self):
        """The copy, its build system, and what is linked into all programs."""
        self.copy()
        answers = self.place / "mutated.o"
        source = Path(__file__).with_name("mutated.c")
        self.run_or_end(["gcc", "-O2", "-fPIC", "-c", str(source), "-o", str(answers)], self.root)
        kinds = ("EXE", "SHARED", "MODULE")
        flags = [f"-DCMAKE_{kind}_LINKER_FLAGS={answers} -fuse-ld=gold" for kind in kinds]
        self.run_or_end(["cmake", "--preset", "mutate", "-B", str(self.build), *flags], self.tree)
        for entry in json.loads((self.build / "compile_commands.json").read_text()):
            source = os.path.relpath(entry["file"], self.tree)
            self.compilations.setdefault(source, without_launcher(shlex.split(entry["command"])))

    def run_or_end(self, command, directory):
        done = subprocess.run(command, cwd=directory, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                              check=False)
        if done.returncode != 0:
            sys.exit(f"{done.stdout}\nmutate: {shlex.join(command)} failed")

    def ninja(self):
        """Nothing when all is built, else what was said."""
        command = ["ninja", "-C", str(self.build), "-k", "0", *self.targets]
        done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False)
        return "" if done.returncode == 0 else done.stdout

    def make(self):
        """Builds the tree as it is."""
        said = self.ninja()
        if said:
            sys.exit(f"{said}\nmutate: the tree does not build")

    def make_with(self, numbered):
        """Builds the mutants, {number: mutant}, each with its number for a switch. Returned are the numbers of those
        among which cannot be chosen while the program runs, and of those of them whose function tells that it is come
        to, as it is built with a probe."""
        switches, probes = dict(numbered), {}
        while True:
            files = {m.file for m in (*switches.values(), *probes.values())}
            self.write({file: with_switches(self.originals[file], *(
                {number: m for number, m in some.items() if m.file == file} for some in (switches, probes)))
                for file in files})
            said = self.ninja()
            if not said:
                self.chosen_from = self.written
                return set(numbered).difference(switches), set(probes)
            for number in self.failing(said, switches, probes):
                mutant = switches.pop(number, None)
                if not mutant:
                    del probes[number]
                elif mutant.body >= 0:
                    probes[number] = mutant

    def make_alone(self, mutant):
        """Builds one mutant that is there without being chosen, beside those of make_with(), of which none is in its
        file. False where it does not compile or link."""
        self.write({**self.chosen_from, mutant.file: apply(self.originals[mutant.file], mutant)})
        return not self.ninja()

    def failing(self, said, switches, probes):
        """The numbers of those whose lines the compiler speaks of; when it speaks of none, of those whose file."""
        mentioned = {(os.path.relpath(os.path.join(self.build, path), self.tree), int(line))
                     for path, line in MENTIONED.findall(said)}
        files = {file for file, _ in mentioned}
        places = [(n, m, m.first, m.last) for n, m in switches.items()]
        places += [(n, m, m.body, m.body) for n, m in probes.items()]
        failed = [n for n, m, first, last in places
                  if mentioned.intersection((m.file, line) for line in self.lines(m.file, first, last))]
        failed = failed or [n for n, m, _, _ in places if m.file in files]
        if not failed:
            sys.exit(f"{said}\nmutate: the tree does not build with mutants")
        return failed

    def lines(self, file, first, last):
        source = self.originals[file]
        return range(source.count(b"\n", 0, first) + 1, source.count(b"\n", 0, last) + 2)

    # How sources are compiled.

    def for_clang(self, source):
        kept, skip = [], False
        for argument in self.compilations[source][1:]:
            if skip or argument in ("-o", "-c", "-include"):
                skip = not skip
            elif not NOT_FOR_CLANG.fullmatch(argument):
                kept.append(argument)
        return kept

    def optimised(self, file, source):
        """What the compiler makes of the bytes as if they stood in a source of the copy, or nothing."""
        arguments = [a for a in self.compilations[file] if a != str(self.tree / file)]
        if "-include" in arguments:
            at = arguments.index("-include")
            del arguments[at : at + 2]
        output = self.place / "optimised.o"
        arguments[arguments.index("-o") + 1] = str(output)
        arguments += ["-iquote", str((self.tree / file).parent), "-w", "-O2", "-x", "c++", "-"]
        done = subprocess.run(arguments, cwd=self.build, input=source, capture_output=True, check=False)
        return output.read_bytes() if done.returncode == 0 else None

    # The tests.

    def tests(self, folders):
        command = ["ctest", "--test-dir", str(self.build), "--show-only=json-v1"]
        listed = json.loads(subprocess.run(command, check=True, capture_output=True, text=True).stdout)["tests"]
        tests = []
        for test in listed:
            properties = {p["name"]: p["value"] for p in test["properties"]}
            directory = properties["WORKING_DIRECTORY"]
            command = tuple(test.get("command", ()))
            if not command or not os.path.relpath(directory, self.build).startswith(folders):
                continue
            if "soak" in properties.get("LABELS", ()):
                continue
            rest = (tuple(properties.get("ENVIRONMENT", ())), directory)
            if command[-1].endswith(".bats"):
                for _, title in TEST_OF_SCRIPT.findall(Path(command[-1]).read_text()):
                    tests.append(Test(test["name"], title, command, *rest))
            elif command[0].startswith(f"{self.build}/bin/"):
                tests.append(Test(test["name"], "", command, *rest))
        return tests


def without_launcher(arguments):
    """The command behind `env A=b ... ccache`."""
    compiler = next(i for i, a in enumerate(arguments) if re.fullmatch(r"(.*/)?(c\+\+|g\+\+|clang\+\+)(-\d+)?", a))
    return arguments[compiler:]
