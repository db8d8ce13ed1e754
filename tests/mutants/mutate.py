"""Finds where a source can be wrong, and writes it with all these faults in it, each asleep until it is woken by its
number (fault.h). So one build serves thousands of faults."""

import hashlib
import json
import re
import shlex
from collections.abc import Iterator
from concurrent.futures import ProcessPoolExecutor
from dataclasses import dataclass, field
from functools import partial
from pathlib import Path

from clang.cindex import Cursor, CursorKind, Index, TypeKind

OPERATORS = {"<": ["<="], "<=": ["<"], ">": [">="], ">=": [">"], "==": ["!="], "!=": ["=="], "&&": ["||"], "||": ["&&"],
             "+": ["-"], "-": ["+"], "*": ["/"], "/": ["*"], "%": ["/"], "&": ["|"], "|": ["&"], "<<": [">>"], ">>": ["<<"]}
OF_NUMBERS = {"+", "-", "*", "/", "%", "&", "|", "<<", ">>"}
NUMBERS = {TypeKind.BOOL, TypeKind.CHAR_S, TypeKind.CHAR_U, TypeKind.SCHAR, TypeKind.UCHAR, TypeKind.WCHAR,
           TypeKind.CHAR16, TypeKind.CHAR32, TypeKind.SHORT, TypeKind.USHORT, TypeKind.INT, TypeKind.UINT,
           TypeKind.LONG, TypeKind.ULONG, TypeKind.LONGLONG, TypeKind.ULONGLONG}
CALLS = {CursorKind.CALL_EXPR, CursorKind.CXX_DELETE_EXPR}
WRAPPED = {CursorKind.UNEXPOSED_EXPR, CursorKind.PAREN_EXPR}
STEPS = {*CALLS, CursorKind.UNEXPOSED_EXPR, CursorKind.BINARY_OPERATOR, CursorKind.COMPOUND_ASSIGNMENT_OPERATOR,
         CursorKind.UNARY_OPERATOR, CursorKind.BREAK_STMT, CursorKind.CONTINUE_STMT}
FUNCTIONS = {CursorKind.FUNCTION_DECL, CursorKind.CXX_METHOD, CursorKind.CONSTRUCTOR, CursorKind.DESTRUCTOR,
             CursorKind.FUNCTION_TEMPLATE, CursorKind.CONVERSION_FUNCTION}
SETTLED = {CursorKind.STATIC_ASSERT, CursorKind.ENUM_DECL, CursorKind.TEMPLATE_TYPE_PARAMETER,
           CursorKind.TEMPLATE_NON_TYPE_PARAMETER}
VARIABLES = {CursorKind.VAR_DECL, CursorKind.FIELD_DECL}


@dataclass(eq=False)
class Fault:
    path: str  # from the project's root
    start: int
    end: int  # in bytes
    form: str  # expression, drop or swap
    wrong: str  # the expression or the statements in its place
    function: str
    line: int
    source: str  # the line, without its indentation
    what: str
    number: int = 0
    key: str = field(default="")

    def told(self) -> str:
        return f"{self.path} | {self.function} | {self.source} | {self.what}"


class Source:
    """A file's text, and the faults that it can have."""

    def __init__(self, root: Path, path: Path) -> None:
        self.path = path.relative_to(root).as_posix()
        self.text = path.read_bytes()
        self.lines = self.text.split(b"\n")
        self.faults: dict[tuple[int, int, str], Fault] = {}

    def at(self, start: int, end: int) -> str:
        return self.text[start:end].decode()

    def in_one_line(self, start: int, end: int) -> str:
        """A second copy of the text must not move the lines below it."""
        return " ".join(re.sub(r"//.*", "", line).strip() for line in self.at(start, end).split("\n"))

    def add(self, start: int, end: int, form: str, wrong: str, what: str, function: str, line: int) -> None:
        source = self.lines[line - 1].decode().strip()
        self.faults.setdefault((start, end, what), Fault(self.path, start, end, form, wrong, function, line, source, what))

    def written(self, chosen: list[Fault]) -> bytes:
        """The text with the chosen faults in it."""
        ranges: dict[tuple[int, int], list[Fault]] = {}
        for fault in chosen:
            ranges.setdefault((fault.start, fault.end), []).append(fault)
        order = sorted(ranges, key=lambda span: (span[0], -span[1]))

        def render(start: int, end: int, inside: list[tuple[int, int]]) -> str:
            pieces, here = [], start
            while inside:
                span = inside.pop(0)
                nested = []
                while inside and inside[0][1] <= span[1]:
                    nested.append(inside.pop(0))
                pieces.append(self.at(here, span[0]))
                pieces.append(with_faults(render(span[0], span[1], nested), ranges[span]))
                here = span[1]
            return "".join([*pieces, self.at(here, end)])

        return render(0, len(self.text), order).encode()


def with_faults(right: str, faults: list[Fault]) -> str:
    for fault in faults:
        awake = f"faults::Awake({fault.number})"
        if fault.form == "expression":
            right = f"({awake} ? ({fault.wrong}) : ({right}))"
        elif fault.form == "drop":
            right = f"{{ if (!{awake}) {right} }}"
        else:
            right = f"{{ if ({awake}) {{ {fault.wrong} }} else {{ {right} }} }}"
    return right


class Finder:
    """Walks through one translation unit."""

    def __init__(self, root: Path, folders: list[str], sources: dict[str, Source]) -> None:
        self.root, self.folders, self.sources = root, folders, sources

    def source_of(self, cursor: Cursor) -> Source | None:
        if cursor.location.file is None:
            return None
        path = Path(cursor.location.file.name).resolve()
        if not path.is_relative_to(self.root):
            return None
        name = path.relative_to(self.root).as_posix()
        if not any(name.startswith(f"{folder}/") for folder in self.folders):
            return None
        if name not in self.sources:
            self.sources[name] = Source(self.root, path)
        return self.sources[name]

    def walk(self, cursor: Cursor, function: str, parent: Cursor | None) -> None:
        if cursor.kind in SETTLED or (cursor.kind in VARIABLES and is_settled(cursor, function)):
            return
        if cursor.kind in FUNCTIONS:
            function = cursor.spelling
        source = self.source_of(cursor) if function else None
        if source is not None:
            self.look(source, cursor, function, parent)
        children = list(cursor.get_children())
        if cursor.kind == CursorKind.CASE_STMT:
            children = children[1:]
        if cursor.kind in VARIABLES:  # what stands before the name is its type
            children = [child for child in children if child.extent.start.offset > cursor.location.offset]
        for child in children:
            self.walk(child, function, cursor)

    def look(self, source: Source, cursor: Cursor, function: str, parent: Cursor | None) -> None:
        start, end, line = cursor.extent.start.offset, cursor.extent.end.offset, cursor.extent.start.line

        def expression(wrong: str, what: str) -> None:
            source.add(start, end, "expression", wrong, what, function, line)

        if cursor.kind == CursorKind.BINARY_OPERATOR or (
                cursor.kind == CursorKind.CALL_EXPR and cursor.spelling in ("operator==", "operator!=")):
            for left, right, operator in operands(source, cursor):
                for other in OPERATORS[operator]:
                    expression(f"({left}) {other} ({right})", f"{operator} -> {other}")
        elif cursor.kind == CursorKind.INTEGER_LITERAL and not is_pointer(parent):
            text = source.at(start, end)
            if re.fullmatch(r"\d[\w']*", text):
                expression(f"{text} + 1", f"{text} -> {text} + 1")
        elif cursor.kind == CursorKind.CXX_BOOL_LITERAL_EXPR and source.at(start, end) in ("true", "false"):
            other = "false" if source.at(start, end) == "true" else "true"
            expression(other, f"{source.at(start, end)} -> {other}")
        elif cursor.kind == CursorKind.UNARY_OPERATOR and self_contained(source, cursor) and source.at(start, start + 1) == "!":
            expression(f"static_cast<bool>({source.in_one_line(start + 1, end)})", "! dropped")
        elif cursor.kind == CursorKind.DECL_REF_EXPR:
            other = neighbour(cursor.referenced)
            if other and source.at(start, end).endswith(cursor.spelling):
                text = source.at(start, end)
                wrong = text[: -len(cursor.spelling)] + other if other != "+ 1" else f"{text} + 1"
                expression(wrong, f"{text} -> {wrong}")
        elif cursor.kind in (CursorKind.IF_STMT, CursorKind.WHILE_STMT):
            self.negate(source, next(iter(cursor.get_children()), None), function)
        elif cursor.kind == CursorKind.RETURN_STMT:
            child = next(iter(cursor.get_children()), None)
            if child is not None and child.type.get_canonical().kind == TypeKind.BOOL:
                self.negate(source, child, function)
        elif cursor.kind == CursorKind.COMPOUND_STMT:
            self.steps(source, list(cursor.get_children()), function)
        if cursor.kind == CursorKind.CALL_EXPR:
            self.swap_arguments(source, cursor, function)

    def negate(self, source: Source, condition: Cursor | None, function: str) -> None:
        if condition is None or unwrapped(condition).kind not in (
                CursorKind.CALL_EXPR, CursorKind.DECL_REF_EXPR, CursorKind.MEMBER_REF_EXPR):
            return
        if unwrapped(condition).spelling.startswith("operator") and unwrapped(condition).spelling != "operator bool":
            return
        start, end = condition.extent.start.offset, condition.extent.end.offset
        if end <= start or not self_contained(source, condition):
            return
        source.add(start, end, "expression", f"!({source.in_one_line(start, end)})", "negated", function,
                   condition.extent.start.line)

    def steps(self, source: Source, children: list[Cursor], function: str) -> None:
        spans = [self.step(source, child) for child in children]
        for child, span in zip(children, spans):
            if span is not None:
                source.add(*span, "drop", "", "dropped", function, child.extent.start.line)
        first = 0
        while first + 1 < len(children):
            one, two = spans[first], spans[first + 1]
            if one and two and are_calls(children[first], children[first + 1]) and not source.at(one[1], two[0]).strip():
                wrong = f"{source.in_one_line(*two)} {source.in_one_line(*one)}"
                source.add(one[0], two[1], "swap", wrong, "swapped with the next", function,
                           children[first].extent.start.line)
                first += 1
            first += 1

    @staticmethod
    def step(source: Source, child: Cursor) -> tuple[int, int] | None:
        """Where a statement that can be left out begins and ends, its semicolon included."""
        start, end = child.extent.start.offset, child.extent.end.offset
        if child.kind not in STEPS or not self_contained(source, child) or source.at(start, end).startswith("Step("):
            return None  # a step is a place that trials name, and nothing else
        semicolon = re.match(rb"\s*;", source.text[end:end + 20])
        return (start, end + semicolon.end()) if semicolon else None

    @staticmethod
    def swap_arguments(source: Source, cursor: Cursor, function: str) -> None:
        arguments = list(cursor.get_arguments())
        for one, two in zip(arguments, arguments[1:]):
            if one is None or two is None or one.type.get_canonical().spelling != two.type.get_canonical().spelling:
                continue
            spans = [(each.extent.start.offset, each.extent.end.offset) for each in (one, two)]
            between = source.at(spans[0][1], spans[1][0]).strip()
            texts = [source.in_one_line(*span) for span in spans]
            if between != "," or texts[0] == texts[1] or not self_contained(source, cursor) or "{" in texts[0] + texts[1]:
                continue
            start, end = cursor.extent.start.offset, cursor.extent.end.offset
            wrong = (source.in_one_line(start, spans[0][0]) + texts[1] + ", " + texts[0]
                     + source.in_one_line(spans[1][1], end))
            if cursor.type.kind != TypeKind.VOID and cursor.type.kind in NUMBERS | {TypeKind.POINTER, TypeKind.ENUM}:
                source.add(start, end, "expression", wrong, f"{texts[0]}, {texts[1]} swapped", function,
                           cursor.extent.start.line)


def unwrapped(cursor: Cursor) -> Cursor:
    while cursor.kind in WRAPPED:
        children = list(cursor.get_children())
        if len(children) != 1:
            break
        cursor = children[0]
    return cursor


def are_calls(*cursors: Cursor) -> bool:
    return all(unwrapped(cursor).kind == CursorKind.CALL_EXPR for cursor in cursors)


def is_pointer(parent: Cursor | None) -> bool:
    return parent is not None and parent.type.get_canonical().kind in (TypeKind.POINTER, TypeKind.NULLPTR, TypeKind.MEMBERPOINTER)


def self_contained(source: Source, cursor: Cursor) -> bool:
    """Not part of what a macro wrote: brackets are even, and the text begins and ends where the cursor does."""
    text = source.at(cursor.extent.start.offset, cursor.extent.end.offset)
    return bool(text) and all(text.count(a) == text.count(b) for a, b in ("()", "{}", "[]"))


def operands(source: Source, cursor: Cursor) -> Iterator[tuple[str, str, str]]:
    """Left and right of an operator that can be another one, as they are written."""
    children = [child for child in cursor.get_children()
                if not (cursor.kind == CursorKind.CALL_EXPR and "operator" in child.spelling and child.kind != CursorKind.CALL_EXPR)]
    if len(children) != 2:
        return
    left, right = children
    operator = re.sub(r"//.*|/\*.*?\*/", "", source.at(left.extent.end.offset, right.extent.start.offset)).strip()
    if operator not in OPERATORS or left.extent.start.offset != cursor.extent.start.offset:
        return
    if right.extent.end.offset != cursor.extent.end.offset or not self_contained(source, cursor):
        return
    if operator in OF_NUMBERS and any(
            each.type.get_canonical().kind not in NUMBERS | {TypeKind.ENUM} for each in (left, right)):
        return
    if operator in ("&", "|", "<<", ">>", "%") and cursor.type.get_canonical().kind not in NUMBERS:
        return
    if operator in ("<", "<=", ">", ">=") and cursor.type.get_canonical().kind != TypeKind.BOOL:
        return
    yield (source.in_one_line(left.extent.start.offset, left.extent.end.offset),
           source.in_one_line(right.extent.start.offset, right.extent.end.offset), operator)


def neighbour(named: Cursor | None) -> str:
    """In place of an enumerator the one after it, in place of a constant number one more."""
    if named is None:
        return ""
    if named.kind == CursorKind.ENUM_CONSTANT_DECL:
        names = [each.spelling for each in named.semantic_parent.get_children()]
        return names[(names.index(named.spelling) + 1) % len(names)] if len(names) > 1 else ""
    # No test can see a millisecond more.
    if named.kind == CursorKind.VAR_DECL and is_constexpr(named) and not named.spelling.endswith("Ms") and named.type.get_canonical().kind in NUMBERS - {TypeKind.BOOL}:
        return "+ 1"
    return ""


def is_constexpr(variable: Cursor) -> bool:
    for token in variable.get_tokens():
        if token.spelling in ("constexpr", "constinit"):
            return True
        if token.spelling == variable.spelling:
            return False
    return False


def is_settled(variable: Cursor, function: str) -> bool:
    """By the compiler: no statement of the program ever computes it."""
    kind = variable.type.get_canonical()
    plain = kind.is_const_qualified() and kind.kind in NUMBERS and unwrapped_initial(variable) == CursorKind.INTEGER_LITERAL
    return is_constexpr(variable) or plain or not function or variable.type.kind == TypeKind.CONSTANTARRAY


def unwrapped_initial(variable: Cursor) -> CursorKind | None:
    children = list(variable.get_children())
    return unwrapped(children[-1]).kind if children else None


def compile_options(database: Path) -> dict[str, list[str]]:
    """Of each source, those that clang needs to read it."""
    options = {}
    for entry in json.loads(database.read_text()):
        words = shlex.split(entry["command"])
        kept, wanted = [], ("-I", "-D", "-std=")
        for word, following in zip(words[1:], [*words[2:], ""]):
            if word.startswith(wanted):
                kept.append(word)
            elif word in ("-isystem", "-I", "-include"):
                kept += [word, following]
        options[entry["file"]] = kept
    return options


def found_in(root: Path, folders: list[str], path: str, options: list[str]) -> dict[str, Source]:
    """In one translation unit, its headers among them."""
    sources: dict[str, Source] = {}
    finder = Finder(root, folders, sources)
    for cursor in Index.create().parse(path, args=options).cursor.get_children():
        file = cursor.location.file
        if file is not None and Path(file.name).resolve().is_relative_to(root):
            finder.walk(cursor, "", None)
    return sources


def find(root: Path, database: Path, folders: list[str]) -> dict[str, Source]:
    """Everything below the folders, by the name of its file."""
    units = {path: options for path, options in sorted(compile_options(database).items())
             if any(Path(path).is_relative_to(root / folder) for folder in folders)}
    sources: dict[str, Source] = {}
    with ProcessPoolExecutor() as pool:
        for found in pool.map(partial(found_in, root, folders), units.keys(), units.values()):
            for name, source in found.items():
                sources.setdefault(name, source).faults.update(source.faults)
    for source in sources.values():
        seen: dict[str, int] = {}
        for fault in sorted(source.faults.values(), key=lambda each: (each.start, each.end, each.what)):
            told = fault.told()
            seen[told] = seen.get(told, 0) + 1
            fault.key = hashlib.sha1(f"{told} {seen[told]}".encode()).hexdigest()
    return sources


def chosen(sources: dict[str, Source], count: int) -> list[Fault]:
    """So many of them, the same ones while the lines about them stay the same."""
    every = [fault for source in sources.values() for fault in source.faults.values()]
    return sorted(sorted(every, key=lambda each: each.key)[:count], key=lambda each: (each.path, each.start, each.end))
