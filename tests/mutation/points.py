# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
"""Finds what can be changed in a source file: clang parses it as its compile command says.

Code that comes out of a macro, and code that this configuration leaves out, is not changed.
"""

import hashlib
import re
from dataclasses import dataclass

from clang.cindex import CursorKind, Index, TypeKind

RELATIONS = {
    "<": ("<=", ">="),
    "<=": ("<", ">"),
    ">": (">=", "<="),
    ">=": (">", "<"),
    "==": ("!=",),
    "!=": ("==",),
}
LOGIC = {"&&": ("||",), "||": ("&&",), "&": ("|",), "|": ("&",), "^": ("|",)}
SHIFTS = {"<<": (">>",), ">>": ("<<",)}
ARITHMETIC = {"+": ("-",), "-": ("+",), "*": ("+",), "/": ("*",), "%": ("*",)}
OPERATORS = (("relation", RELATIONS), ("logic", LOGIC), ("shift", SHIFTS), ("arithmetic", ARITHMETIC))
KINDS = ("relation", "arithmetic", "step", "logic", "shift", "constant", "statement", "error return")

FUNCTIONS = {
    CursorKind.FUNCTION_DECL,
    CursorKind.CXX_METHOD,
    CursorKind.CONSTRUCTOR,
    CursorKind.DESTRUCTOR,
    CursorKind.CONVERSION_FUNCTION,
    CursorKind.FUNCTION_TEMPLATE,
}
LOOPS = {CursorKind.FOR_STMT, CursorKind.WHILE_STMT, CursorKind.DO_STMT, CursorKind.CXX_FOR_RANGE_STMT}
# What may stand as a statement of its own and can be left out.
DROPPED = {
    CursorKind.CALL_EXPR,
    CursorKind.BINARY_OPERATOR,
    CursorKind.COMPOUND_ASSIGNMENT_OPERATOR,
    CursorKind.UNARY_OPERATOR,
    CursorKind.CXX_DELETE_EXPR,
    CursorKind.BREAK_STMT,
    CursorKind.CONTINUE_STMT,
    CursorKind.DO_STMT,
}
INTEGERS = {
    TypeKind.UCHAR, TypeKind.CHAR_U, TypeKind.SCHAR, TypeKind.CHAR_S, TypeKind.USHORT, TypeKind.SHORT,
    TypeKind.UINT, TypeKind.INT, TypeKind.ULONG, TypeKind.LONG, TypeKind.ULONGLONG, TypeKind.LONGLONG,
}


@dataclass(frozen=True)
class Mutant:
    """One change of one file: the bytes from start to end become text."""

    file: str  # from the root of the tree
    digest: str  # of the file as it was parsed
    start: int
    end: int
    text: str
    first: int  # to last: the expression or statement around, in the place of which stands a choice of the two
    last: int
    choice: str  # how it is written, see switches.py
    body: int  # where that of the function begins, behind its brace; -1 outside of functions
    kind: str
    line: int
    column: int
    function: str  # that it stands in, or empty
    change: str  # for people, and the same wherever the function stands

    @property
    def identity(self):
        return (self.file, self.function, self.change)


def mutants_of(root, file, arguments, headers):
    """The mutants of a file and of those of the headers, paths from the root, that it includes."""
    unit = Index.create().parse(str(root / file), args=arguments)
    errors = [d for d in unit.diagnostics if d.severity >= d.Error]
    if errors:
        raise RuntimeError(f"clang cannot read {file}: {errors[0].spelling}")
    finders = {str(root / name): Finder(root, name) for name in (file, *headers)}
    for cursor in unit.cursor.get_children():
        finder = finders.get(cursor.location.file.name if cursor.location.file else None)
        if finder:
            finder.visit(cursor, Scope("", -1))
    return [mutant for finder in finders.values() for mutant in finder.numbered()]


@dataclass(frozen=True)
class Scope:
    """The function that a place is in."""

    name: str
    body: int


class Finder:
    def __init__(self, root, file):
        self.file = file
        self.path = str(root / file)
        self.source = (root / file).read_bytes()
        self.digest = hashlib.sha256(self.source).hexdigest()[:12]
        self.found = {}

    def numbered(self):
        """What was found, from the top; the second change of the same words in a function has #2 behind it."""
        seen = {}
        for mutant in sorted(self.found.values(), key=lambda m: (m.start, m.end, m.text)):
            seen[mutant.identity] = count = seen.get(mutant.identity, 0) + 1
            yield mutant if count == 1 else replaced(mutant, change=f"{mutant.change} #{count}")

    def visit(self, cursor, function):
        if cursor.location.file and cursor.location.file.name != self.path:
            return
        children = list(cursor.get_children())
        if cursor.kind in FUNCTIONS:
            function = Scope(cursor.spelling, self.body_of(children))
        self.operators(cursor, children, function)
        self.constants(cursor, function)
        self.statements(cursor, children, function)
        self.steps(cursor, children, function)
        if cursor.kind == CursorKind.IF_STMT:
            self.error_returns(children, function)
        if cursor.kind == CursorKind.CXX_CATCH_STMT:
            self.drop_exit(children[-1], function)
        if cursor.kind == CursorKind.RETURN_STMT:
            self.ignored_operands(children, function)
        if cursor.kind == CursorKind.CXX_THROW_EXPR and cursor.extent.start.offset < cursor.extent.end.offset:
            self.add("error return", cursor, "static_cast<void>(0)", function, "statement")
        for child in children:
            self.visit(child, function)

    def body_of(self, children):
        if not children or children[-1].kind != CursorKind.COMPOUND_STMT:
            return -1
        start = self.start_of(children[-1])
        return -1 if start is None or self.source[start : start + 1] != b"{" else start + 1

    # What is changed.

    def operators(self, cursor, children, function):
        if cursor.kind in (CursorKind.BINARY_OPERATOR, CursorKind.COMPOUND_ASSIGNMENT_OPERATOR):
            start, end = self.end_of(children[0]), self.start_of(children[1])
        elif cursor.kind == CursorKind.CALL_EXPR and cursor.spelling.startswith("operator") and len(children) == 3:
            start, end = self.start_of(children[1]), self.end_of(children[1])
        elif cursor.kind == CursorKind.UNARY_OPERATOR:
            self.unary(cursor, children[0], function)
            return
        else:
            return
        if start is None or end is None or start >= end:
            return
        between = self.text(start, end)
        operator = between.strip()
        streams = cursor.kind == CursorKind.CALL_EXPR
        assigns = cursor.kind == CursorKind.COMPOUND_ASSIGNMENT_OPERATOR
        start += len(between) - len(between.lstrip())
        for kind, table in OPERATORS:
            if streams and kind == "shift":
                continue
            for other in table.get(operator[:-1] if assigns else operator, ()):
                self.change(kind, cursor, start, operator, other + ("=" if assigns else ""), function)

    def unary(self, cursor, operand, function):
        start, end = self.start_of(cursor), self.start_of(operand)
        if start is None or end is None:
            return
        operator = self.text(start, end).strip()
        if operator == "!":
            self.change("logic", cursor, start, operator, "", function, choice="condition")
        elif operator in ("++", "--"):
            self.change("arithmetic", cursor, start, operator, {"++": "--", "--": "++"}[operator], function)
        elif start == end:  # behind its operand
            end = self.end_of(operand)
            operator = self.text(end, self.end_of(cursor)).strip()
            if operator in ("++", "--"):
                self.change("arithmetic", cursor, end, operator, {"++": "--", "--": "++"}[operator], function)

    def constants(self, cursor, function):
        start = self.start_of(cursor)
        if start is None:
            return
        if cursor.kind == CursorKind.INTEGER_LITERAL:
            literal = re.match(r"0[xX][0-9a-fA-F]+|[0-9]+", self.text(start, start + 24))
            if literal:
                value = int(literal[0], 0 if literal[0].lower().startswith("0x") else 10)
                for other in (value + 1, value - 1):
                    if other >= 0:
                        self.change("constant", cursor, start, literal[0], str(other), function, around=1)
        elif cursor.kind == CursorKind.CXX_BOOL_LITERAL_EXPR:
            old = re.match("true|false", self.text(start, start + 5))
            if old:
                other = {"true": "false", "false": "true"}[old[0]]
                self.change("constant", cursor, start, old[0], other, function, around=1)
        elif cursor.kind == CursorKind.STRING_LITERAL:
            literal = self.text(start, self.end_of(cursor))
            if re.fullmatch(r'"[^"\\\n]+"', literal):
                self.change("constant", cursor, start, literal, '""', function, around=1)
        elif cursor.kind == CursorKind.CHARACTER_LITERAL:
            literal = re.match(r"'([^'\\\n]|\\0)'", self.text(start, start + 4))
            if literal:
                other = "'\\1'" if literal[1] == "\\0" else f"'{chr(ord(literal[1]) + 1)}'"
                if other not in ("'''", "'\\'"):
                    self.change("constant", cursor, start, literal[0], other, function, around=1)

    def statements(self, cursor, children, function):
        if cursor.kind == CursorKind.COMPOUND_STMT:
            bodies = children
        elif cursor.kind == CursorKind.IF_STMT:
            bodies = children[1:]
        elif cursor.kind in LOOPS and cursor.kind != CursorKind.DO_STMT:
            bodies = children[-1:]
        elif cursor.kind in (CursorKind.CASE_STMT, CursorKind.DEFAULT_STMT):
            bodies = children[-1:]
        else:
            return
        for body in bodies:
            inner = bare(body)
            # A loop written out is no statement that can be left out; one that a macro stands for is.
            if inner.kind == CursorKind.DO_STMT and self.text_of(inner).startswith("do"):
                continue
            if inner.kind in DROPPED or (inner.kind == CursorKind.RETURN_STMT and not list(inner.get_children())):
                self.add("statement", body, "static_cast<void>(0)", function, "statement")

    def steps(self, cursor, children, function):
        """One more and one less: what is returned, handed over, assigned, and compared with."""
        choice = "value"
        if cursor.kind == CursorKind.RETURN_STMT:
            values = children
        elif cursor.kind == CursorKind.CALL_EXPR and not cursor.spelling.startswith("operator"):
            values = list(cursor.get_arguments())
            choice = "argument"
        elif cursor.kind in (CursorKind.BINARY_OPERATOR, CursorKind.COMPOUND_ASSIGNMENT_OPERATOR):
            values = children[1:]
        else:
            return
        for value in values:
            if value is None or value.type.get_canonical().kind not in INTEGERS:
                continue
            inner = bare(value)
            if inner.kind in (CursorKind.INTEGER_LITERAL, CursorKind.CHARACTER_LITERAL):
                continue
            if inner.type.get_canonical().kind not in INTEGERS:
                continue
            text = self.text_of(value)
            if text:
                for step in ("+ 1", "- 1"):
                    self.add("step", value, f"({text}) {step}", function, choice)

    def error_returns(self, children, function):
        """The way out that a condition leads to, and the condition that is asked but not minded."""
        if len(children) < 2:
            return
        condition, branch = children[0], children[1]
        if not self.drop_exit(branch, function):
            return
        if any(c.kind == CursorKind.CALL_EXPR for c in condition.walk_preorder()):
            text = self.text_of(condition)
            if text and condition.kind != CursorKind.DECL_STMT and condition.kind != CursorKind.VAR_DECL:
                self.add("error return", condition, f"(static_cast<void>({text}), false)", function, "condition")

    def drop_exit(self, branch, function):
        last = bare(branch)
        if last.kind == CursorKind.COMPOUND_STMT:
            inside = list(last.get_children())
            if not inside:
                return False
            last = bare(inside[-1])
        if last.kind == CursorKind.RETURN_STMT:
            self.add("error return", last, "static_cast<void>(0)", function, "statement")
            return True
        return last.kind == CursorKind.CXX_THROW_EXPR

    def ignored_operands(self, children, function):
        """return check() && use(): the check is made, and its result ignored."""
        waiting = list(children)
        while waiting:
            cursor = bare(waiting.pop())
            inner = list(cursor.get_children())
            if cursor.kind != CursorKind.BINARY_OPERATOR or len(inner) != 2:
                continue
            start, end = self.end_of(inner[0]), self.start_of(inner[1])
            if start is None or end is None or self.text(start, end).strip() != "&&":
                continue
            waiting += inner
            for operand in inner:
                if any(c.kind == CursorKind.CALL_EXPR for c in operand.walk_preorder()):
                    text = self.text_of(operand)
                    if text and "&&" not in text:
                        self.add("error return", operand, f"(static_cast<void>({text}), true)", function, "condition")

    # Where it stands. Nothing, where a macro stands between.

    def start_of(self, cursor):
        place = cursor.extent.start
        return place.offset if place.file and place.file.name == self.path else None

    def end_of(self, cursor):
        place = cursor.extent.end
        return place.offset if place.file and place.file.name == self.path else None

    def text(self, start, end):
        return self.source[start:end].decode()

    def text_of(self, cursor):
        start, end = self.start_of(cursor), self.end_of(cursor)
        return self.text(start, end) if start is not None and end is not None else ""

    # What is noted.

    def add(self, kind, cursor, text, function, choice):
        """The whole of the cursor becomes the text."""
        old = self.text_of(cursor)
        if not old.strip():
            return
        shown = {"static_cast<void>(0)": "dropped"}.get(text, flat(text))
        if kind == "error return" and text.startswith("(static_cast"):
            shown = "ignored"
        whole = (self.start_of(cursor), self.end_of(cursor))
        self.note(kind, whole, text, whole, choice, function, f"{flat(old)} -> {shown}")

    def change(self, kind, cursor, start, old, new, function, around=0, choice="value"):
        """In the cursor, or in the line for what is too small to be known by itself, old becomes new."""
        whole = first, last = self.start_of(cursor), self.end_of(cursor)
        if first is None or last is None or not self.source[start:].startswith(old.encode()):
            return
        end = start + len(old.encode())
        if around:
            first = self.source.rfind(b"\n", 0, start) + 1
            last = max(self.source.find(b"\n", start), end)
        before = flat(self.text(first, last))
        after = flat(self.text(first, start) + new + self.text(end, last))
        self.note(kind, (start, end), new, whole, choice, function, f"{before} -> {after}")

    def note(self, kind, place, text, whole, choice, function, change):
        start = place[0]
        line = self.source.count(b"\n", 0, start) + 1
        column = start - self.source.rfind(b"\n", 0, start)
        mutant = Mutant(self.file, self.digest, *place, text, *whole, choice, function.body, kind, line, column,
                        function.name, change)
        self.found.setdefault((*place, text), mutant)


def bare(cursor):
    """The cursor without what the compiler puts around it."""
    while cursor.kind in (CursorKind.UNEXPOSED_EXPR, CursorKind.PAREN_EXPR):
        inner = list(cursor.get_children())
        if len(inner) != 1:
            break
        cursor = inner[0]
    return cursor


def flat(text):
    return re.sub(r"\s+", " ", re.sub(r"//[^\n]*", "", text)).strip()


def replaced(mutant, **values):
    return Mutant(**{**mutant.__dict__, **values})


def apply(source, mutant):
    """The source with the change. Lines stay where they are."""
    lost = source[mutant.start : mutant.end].count(b"\n") - mutant.text.count("\n")
    return source[: mutant.start] + mutant.text.encode() + b"\n" * lost + source[mutant.end :]
