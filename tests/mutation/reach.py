# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
"""Which scripts come to which function: only they can see a mutant there, and all scripts together take minutes.

Each script is run once on programs that count (preset coverage-programs), with a folder of its own for the counts. A
program that is killed leaves none, so that a script may come to more than is known here: then a mutant lives that it
could have killed, and never the other way round.
"""

import hashlib
import json
import os
import re
import shutil
import struct
import subprocess
import sys
import tempfile
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

from trial import SCRIPTS_AT_ONCE, write_whole

FUNCTION, ARCS = 0x01000000, 0x01A10000  # tags of a gcc 12 file of counts
NOTE = re.compile(r"FUNCTION ident=(\d+), .*' (\S+):(\d+):\d+-(\d+):\d+$")


class Reach:
    def __init__(self, plan, counting, folders, scripts):
        self.root, self.counting = plan.root, counting
        self.place = plan.build / "reach"
        self.place.mkdir(parents=True, exist_ok=True)
        sources = digest_of(self.root, [*folders, "tests/support", "tests/host/fixtures"])
        places = self.remembered(f"{sources}.json", self.places_of_functions)
        with ThreadPoolExecutor(SCRIPTS_AT_ONCE) as pool:
            reached = pool.map(lambda script: self.remembered(
                f"{sources}-{digest_of(self.root, [script.command[-1]])}.json",
                lambda: self.reached_by(script, plan, places)), scripts)
        self.reached = {script.name: set(map(tuple, functions)) for script, functions in zip(scripts, reached)}
        if not all(self.reached.values()):
            silent = ", ".join(name for name, functions in self.reached.items() if not functions)
            sys.exit(f"mutate: no counts came of {silent}\nagain: rm -r build/mutate/reach, then the same")
        self.functions = {}  # of each file
        for function in (tuple(f) for functions in places.values() for f in functions.values()):
            self.functions.setdefault(function[0], set()).add(function)

    def scripts_for(self, mutant, scripts):
        """Those that come to a function around the mutant. Outside of all functions, or in one that is only evaluated
        by the compiler, those that come to any of the file; all for a header that has no function."""
        of_file = self.functions.get(mutant.file, set())
        around = {f for f in of_file if f[1] <= mutant.line <= f[2]} or of_file
        return [script for script in scripts if not around or self.reached[script.name] & around]

    def remembered(self, name, make):
        file = self.place / name
        if not file.exists():
            write_whole(file, json.dumps(make()))
        return json.loads(file.read_text())

    def places_of_functions(self):
        """{file of counts, below the build: {number of a function: (file, first line, last line)}}, of the tree."""
        found = {}
        for notes in self.counting.rglob("*.gcno"):
            dump = subprocess.run(["gcov-dump", str(notes)], check=True, capture_output=True, text=True).stdout
            functions = {}
            for line in dump.splitlines():
                match = NOTE.search(line)
                if match and match[2].startswith(f"{self.root}/"):
                    functions[match[1]] = (os.path.relpath(match[2], self.root), int(match[3]), int(match[4]))
            if functions:
                found[str(notes.relative_to(self.counting).with_suffix(".gcda"))] = functions
        return found

    def reached_by(self, script, plan, places):
        counts = Path(tempfile.mkdtemp(dir=self.place))
        variables = [v.replace(f"={plan.build}/", f"={self.counting}/") for v in script.environment]
        environment = {**os.environ, **dict(v.split("=", 1) for v in variables), "GCOV_PREFIX": str(counts)}
        try:
            subprocess.run(script.command, cwd=script.directory, env=environment, stdin=subprocess.DEVNULL,
                           capture_output=True, check=False)
            reached = set()
            for file in counts.rglob("*.gcda"):
                functions = places.get(os.path.relpath(file, f"{counts}{self.counting}"), {})
                reached.update(tuple(functions[n]) for n in functions_run(file.read_bytes()) if n in functions)
            return sorted(reached)
        finally:
            shutil.rmtree(counts)


def functions_run(counts):
    """The numbers of the functions of a file of counts that were run. It consists of records after a head of 16 bytes:
    tag, length in bytes, contents; counts that are all zero have a negative length and no contents. What was cut off
    when a program was killed is left out."""
    at, number, run = 16, None, set()
    while at + 8 <= len(counts):
        tag, length = struct.unpack_from("<Ii", counts, at)
        at += 8
        if tag == FUNCTION and length >= 4 and at + 4 <= len(counts):
            number = str(struct.unpack_from("<I", counts, at)[0])
        elif tag == ARCS and length > 0:
            run.add(number)
        at += max(length, 0)
    return run


def digest_of(root, names):
    """Of files, and of all below folders."""
    everything = hashlib.sha256()
    for name in names:
        path = root / name
        for file in sorted(path.rglob("*")) if path.is_dir() else [path]:
            if file.is_file():
                everything.update(str(file.relative_to(root)).encode() + b"\0" + file.read_bytes())
    return everything.hexdigest()[:16]
