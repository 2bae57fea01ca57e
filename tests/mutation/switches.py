# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
"""Writes many mutants into the same sources, each behind a question whether it is the one that was chosen (mutated.c),
so that all are compiled and linked once."""

from points import apply, flat

DECLARATION = 'extern "C" int s7ppi_mutated(unsigned); '  # in front of the first line: no line moves


def with_switches(source, switches, probes):
    """The bytes of a source with a choice for each of the switches, {number: mutant}, which do not overlap; and a note
    in the function of each of the probes that it was come to."""
    changes = [(m.first, m.last, choice(source, m, number)) for number, m in switches.items()]
    changes += [(m.body, m.body, f" static_cast<void>(s7ppi_mutated({number}));") for number, m in probes.items()]
    for first, last, text in sorted(changes, reverse=True):
        source = source[:first] + text.encode() + source[last:]
    return DECLARATION.encode() + source if changes else source


def choice(source, mutant, number):
    before = source[mutant.first : mutant.last].decode()
    if mutant.choice == "statement":
        return f"if (s7ppi_mutated({number})) {{}} else {before}"
    whole = apply(source, mutant)
    after = flat(whole[mutant.first : len(whole) - (len(source) - mutant.last)].decode())
    if mutant.choice == "condition":
        before, after = f"static_cast<bool>({before})", f"static_cast<bool>({after})"
    elif mutant.choice == "argument":  # of its own type, or another function could be meant
        after = f"static_cast<__typeof__({flat(before)})>({after})"
    return f"(s7ppi_mutated({number}) ? {after} : {before})"


def apart(mutants):
    """As many of the first mutants as can be written into the same sources."""
    taken, places = [], {}
    for mutant in mutants:
        of_file = places.setdefault(mutant.file, [])
        if not any(mutant.first < last and first < mutant.last for first, last in of_file):
            of_file.append((mutant.first, mutant.last))
            taken.append(mutant)
    return taken
