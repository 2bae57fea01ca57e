# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
"""What CMake and ninja know: how a source is compiled, what is linked of it, which tests run the result."""

import json
import os
import re
import shlex
import subprocess
from dataclasses import dataclass
from functools import lru_cache
from pathlib import Path

# What clang, which reads the sources, does not need or understand of gcc's arguments.
NOT_FOR_CLANG = re.compile(r"-(W|fpch|fmacro|fdebug|M).*")

# What the scripts that try the command line start of this build.
STARTED = ("bin/s7ppi", "bin/s7ppi-sim", "lib/libs7_200_ppi.so")


@dataclass(frozen=True)
class Test:
    name: str
    folder: str  # below the root, such as tests/unit
    command: tuple  # as CTest starts it
    programs: tuple  # of this build, what the mutants are linked into: itself, or what it starts
    environment: tuple
    directory: str

    @property
    def is_script(self):
        return self.programs == STARTED


class BuildPlan:
    def __init__(self, root, build):
        self.root, self.build = Path(root), Path(build)
        self.compilations = {}  # object: arguments
        self.objects = {}  # source, from the root: its objects
        for entry in json.loads((self.build / "compile_commands.json").read_text()):
            arguments = without_launcher(shlex.split(entry["command"]))
            target = arguments[arguments.index("-o") + 1]
            self.compilations[target] = arguments
            source = os.path.relpath(entry["file"], self.root)
            self.objects.setdefault(source, []).append(target)
        for source, targets in self.objects.items():  # that of its own folder first
            targets.sort(key=lambda target: not target.startswith(source.split("/")[0] + "/"))

    def ninja(self, *arguments):
        command = ["ninja", "-C", str(self.build), *arguments]
        return subprocess.run(command, check=True, capture_output=True, text=True).stdout

    def sources(self, folders):
        """The sources below the folders that are compiled."""
        return sorted(s for s in self.objects if s.startswith(tuple(f + "/" for f in folders)))

    def for_clang(self, source):
        arguments = self.compilations[self.objects[source][0]][1:]
        kept, skip = [], False
        for argument in arguments:
            if skip or argument in ("-o", "-c", "-include"):
                skip = not skip
            elif not NOT_FOR_CLANG.fullmatch(argument):
                kept.append(argument)
        return kept

    @lru_cache(maxsize=None)
    def includers(self):
        """The objects that each file of the tree is compiled into, headers too."""
        found, target = {}, None
        for line in self.ninja("-t", "deps").splitlines():
            if line and not line.startswith(" "):
                target = line.split(":")[0]
            elif line.strip():
                path = os.path.relpath(self.build / line.strip(), self.root)
                if not path.startswith(".."):
                    found.setdefault(path, set()).add(target)
        return found

    @lru_cache(maxsize=None)
    def outside_headers(self, library):
        """#include lines of what the files of a library of this build include that are not of this tree."""
        lines = set()
        for file, targets in self.includers().items():
            if any(t.startswith(library + ".dir/") for t in targets) and (self.root / file).suffix in (".h", ".cpp"):
                source = (self.root / file).read_text()
                lines.update(re.findall(r"^#include (<[^>]+>)$", source, re.MULTILINE))
        return "".join(f"#if __has_include({h})\n#include {h}\n#endif\n" for h in sorted(lines))

    def affected_objects(self, file):
        """What has to be compiled anew when the file changes: lists of objects that one compilation stands for.

        Of the tests nothing, see Link.with_objects()."""
        if file in self.objects:
            return [self.objects[file]]
        mine = self.includers().get(file, set())
        sources = sorted(s for s, targets in self.objects.items() if mine & set(targets) and not s.startswith("tests/"))
        return [self.objects[source] for source in sources]

    @lru_cache(maxsize=None)
    def link(self, program):
        return Link(self, program, self.ninja("-t", "commands", program))

    def tests(self, folders):
        command = ["ctest", "--test-dir", str(self.build), "--show-only=json-v1"]
        listed = json.loads(subprocess.run(command, check=True, capture_output=True, text=True).stdout)["tests"]
        tests = []
        for test in listed:
            properties = {p["name"]: p["value"] for p in test["properties"]}
            folder = os.path.relpath(properties["WORKING_DIRECTORY"], self.build)
            command = tuple(test.get("command", ()))
            if command and folder.startswith(tuple(folders)) and "soak" not in properties.get("LABELS", ()):
                program = os.path.relpath(command[0], self.build)
                programs = STARTED if command[-1].endswith(".bats") else (program,)
                if programs[0].startswith("bin/"):
                    tests.append(Test(test["name"], folder, command, programs, tuple(properties.get("ENVIRONMENT", ())),
                                      properties["WORKING_DIRECTORY"]))
        return tests


class Link:
    """How a program or a shared library is linked."""

    def __init__(self, plan, program, commands):
        self.plan, self.program = plan, program
        lines = [line for line in commands.splitlines() if line]
        self.arguments = first_command(lines[-1])
        archives = dict(archive_of(line) for line in lines if "/ar qc " in line)
        self.archives = {a: archives[a] for a in self.arguments if a in archives}  # each with its members
        self.own = [a for a in self.arguments if a.endswith(".o")]
        self.libraries = [a for a in self.arguments if re.fullmatch(r"lib/[^/]*\.so", a) and a != program]

    @property
    def objects(self):
        return self.own + [member for members in self.archives.values() for member in members]

    @lru_cache(maxsize=None)
    def named_outputs(self):
        """Programs and libraries of this build whose paths are compiled into its own objects: {path: objects}."""
        found = {}
        pattern = re.escape(str(self.plan.build)) + r'/((?:bin|lib)/[^"\\ ]+)'
        for target in self.own:
            for argument in self.plan.compilations.get(target, ()):
                if argument.startswith("-D"):
                    for path in re.findall(pattern, argument):
                        found.setdefault(path, []).append(target)
        return found

    def with_objects(self, made, archives, output):
        """The command that links the objects `made`, {object: file}, and the archives, {archive: file}, in the place
        of the build's."""
        command = [str(made.get(a, archives.get(a, a))) for a in self.arguments]
        command[command.index("-o") + 1] = str(output)
        return command

    def with_objects_in_front(self, made, output):
        """The same with every changed object in front of all others, as an inline function is linked from the first
        that has it."""
        in_front = [o for o in self.objects if o in made]
        command = [a for a in self.arguments if a not in made]
        command[command.index("-o") + 1] = str(output)
        return command[:1] + [str(made[o]) for o in in_front] + command[1:]


def without_launcher(arguments):
    """The command behind `env A=b ... ccache`, which would keep every mutant."""
    compiler = next(i for i, a in enumerate(arguments) if re.fullmatch(r"(.*/)?(c\+\+|g\+\+|clang\+\+)(-\d+)?", a))
    return arguments[compiler:]


def first_command(line):
    """Of `: && command && :`."""
    return shlex.split(re.split(r" && ", line)[1] if line.startswith(": && ") else line)


def archive_of(line):
    words = shlex.split(line)
    at = words.index("qc")
    members = words[at + 2 : words.index("&&", at)] if "&&" in words[at:] else words[at + 2 :]
    return words[at + 1], members
