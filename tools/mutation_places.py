"""Finds the places of a C++ source that have mutants, and writes the source in which each can be chosen at run time.

The compiler's own parser tells what is a condition, a comparison, a statement; each such stretch is wrapped into an
expression that asks `mutation::on(NUMBER)` (tests/mutation/mutant.h) and is the mutant then, the original otherwise.
"""

import re
from collections import defaultdict
from dataclasses import dataclass, field

from clang.cindex import CursorKind, Index, TypeKind

comparisons = {"<": ["<=", ">="], "<=": ["<", ">"], ">": [">=", "<="], ">=": [">", "<"], "==": ["!="], "!=": ["=="]}
arithmetic = {"+": "-", "-": "+", "*": "+", "/": "*", "%": "*", "&": "|", "|": "&", "<<": ">>", ">>": "<<",
              "+=": "-=", "-=": "+=", "&=": "|=", "|=": "&="}
loops = (CursorKind.FOR_STMT, CursorKind.WHILE_STMT, CursorKind.DO_STMT, CursorKind.CXX_FOR_RANGE_STMT)
# Where the children that are expressions are statements, apart from the conditions.
holds_statements = (CursorKind.COMPOUND_STMT, CursorKind.IF_STMT, CursorKind.CASE_STMT, CursorKind.DEFAULT_STMT,
                    CursorKind.UNEXPOSED_STMT, *loops)
# What the compiler works out, or must.
not_at_run_time = (CursorKind.STATIC_ASSERT, CursorKind.ENUM_DECL, CursorKind.CXX_UNARY_EXPR,
                   CursorKind.TEMPLATE_NON_TYPE_PARAMETER, CursorKind.TEMPLATE_TYPE_PARAMETER)
characters = (TypeKind.CHAR_S, TypeKind.CHAR16, TypeKind.CHAR32, TypeKind.WCHAR)
strings = re.compile(rb'(u8|u|U|L)?"')


@dataclass
class Mutant:
    kind: str
    original: str
    mutated: str
    code: str  # the expression that it is
    number: int = 0
    line: int = 0
    text: str = ""  # the line's, without the blanks around it
    occurrence: int = 0  # among equal ones of the file

    def change(self):
        return f"{self.original} -> {self.mutated}"


@dataclass
class Place:
    start: int
    end: int
    is_condition: bool = False
    mutants: dict = field(default_factory=dict)  # by what they are
    dropped: Mutant = None
    inner: list = field(default_factory=list)


def shown(code):
    text = " ".join(code.decode().split())
    return text if len(text) <= 70 else text[:67] + "..."


class Finder:
    def __init__(self, path, source, arguments):
        self.path = str(path)
        self.source = source
        self.places = {}
        unit = Index.create().parse(self.path, args=["-x", "c++", "-std=c++20", *arguments])
        faults = [str(fault) for fault in unit.diagnostics if fault.severity >= 3]
        if faults:
            raise SystemExit("\n".join(faults))
        self.visit(unit.cursor)

    def text(self, cursor):
        return self.source[cursor.extent.start.offset:cursor.extent.end.offset]

    def between(self, left, right):
        return self.source[left.extent.end.offset:right.extent.start.offset].strip().decode()

    def place(self, cursor):
        span = (cursor.extent.start.offset, cursor.extent.end.offset)
        return self.places.setdefault(span, Place(*span))

    def add(self, cursor, kind, mutated, code):
        mutant = Mutant(kind, shown(self.text(cursor)), mutated, code)
        self.place(cursor).mutants.setdefault(mutated, mutant)

    # Where a cursor stands

    def is_own(self, cursor):
        """Whether it is written in this file, and not by a macro."""
        start, end = cursor.extent.start, cursor.extent.end
        if start.file is None or start.file.name != self.path or end.offset <= start.offset:
            return False
        text = self.text(cursor)
        return text.count(b"(") == text.count(b")") and not re.match(rb"assert\b|V_\w+\([^=]*$", text)

    def before(self, cursor):
        return self.source[:cursor.extent.start.offset].rstrip()[-1:]

    def behind(self, cursor):
        return self.source[cursor.extent.end.offset:].lstrip()[:1]

    def condition(self, cursor, children):
        if not children or children[0].kind == CursorKind.VAR_DECL:
            return None  # a declaration is the condition
        if cursor.kind == CursorKind.FOR_STMT:
            return next((c for c in children if c.kind.is_expression() and self.before(c) == self.behind(c) == b";"),
                        None)
        if cursor.kind == CursorKind.DO_STMT:
            return children[-1]
        return next((c for c in children if c.kind.is_expression()), None)

    # What is visited

    def visit(self, cursor):
        for child in cursor.get_children():
            if cursor.kind == CursorKind.TRANSLATION_UNIT:
                if child.location.file is None or child.location.file.name != self.path:
                    continue
            if self.is_at_run_time(cursor, child):
                if child.extent.start.file is not None:
                    self.look_at(child, cursor)
                self.visit(child)

    def is_at_run_time(self, parent, child):
        if child.kind in not_at_run_time:
            return False
        if parent.kind == CursorKind.CASE_STMT and child == next(parent.get_children()):
            return False
        declares = parent.kind.is_declaration() and parent.kind != CursorKind.TRANSLATION_UNIT
        if declares and child.kind.is_expression():
            if child.extent.start.offset < parent.location.offset or self.before(child) == b"[":
                return False  # of the type
        if child.kind in (CursorKind.VAR_DECL, CursorKind.FUNCTION_DECL, CursorKind.CXX_METHOD,
                          CursorKind.CONSTRUCTOR):
            specifiers = self.source[child.extent.start.offset:child.location.offset]
            word = b"constexpr" if child.kind == CursorKind.VAR_DECL else b"consteval"
            if child.location.file is not None and child.location.file.name == self.path and word in specifiers:
                return False
        return True

    def look_at(self, cursor, parent):
        kind, children = cursor.kind, list(cursor.get_children())
        condition = None
        if kind in (CursorKind.IF_STMT, *loops[:3], CursorKind.CONDITIONAL_OPERATOR):
            condition = self.condition(cursor, children)
            if condition is not None and self.is_own(condition):
                self.decide(condition, [False] if kind in loops else [True, False])
        if kind in holds_statements:
            for child in children:
                self.look_at_statement(cursor, child, condition)
        if not self.is_own(cursor):
            return
        if kind == CursorKind.RETURN_STMT and children:
            self.look_at_truth(children[0])
        elif kind == CursorKind.VAR_DECL and children and cursor.type.get_canonical().kind == TypeKind.BOOL:
            self.look_at_truth(children[-1])
        elif kind in (CursorKind.BINARY_OPERATOR, CursorKind.COMPOUND_ASSIGNMENT_OPERATOR) and len(children) == 2:
            self.look_at_operator(cursor, *children)
        elif kind == CursorKind.CALL_EXPR and cursor.spelling.startswith("operator"):
            operands = list(cursor.get_arguments())
            if len(operands) == 2:
                self.look_at_comparison(cursor, *operands)
        elif kind == CursorKind.UNARY_OPERATOR:
            self.look_at_unary(cursor, children[0])
        elif kind == CursorKind.DECL_REF_EXPR:
            self.look_at_named_constant(cursor)
        else:
            self.look_at_literal(cursor)

    def decide(self, condition, truths):
        for truth in truths:
            word = "true" if truth else "false"
            self.add(condition, "branch", word, word)
            self.place(condition).is_condition = True

    def look_at_truth(self, expression):
        is_literal = self.text(expression) in (b"true", b"false")
        is_truth = expression.type.get_canonical().kind == TypeKind.BOOL
        if expression.kind.is_expression() and is_truth and not is_literal and self.is_own(expression):
            self.decide(expression, [True, False])

    def look_at_statement(self, parent, child, condition):
        text = self.text(child)
        if (condition is not None and child == condition) or not self.is_own_statement(child):
            return
        if parent.kind == CursorKind.FOR_STMT and self.before(child) == b";":
            return  # where it counts: without it there is no end
        if child.kind == CursorKind.BREAK_STMT and parent.kind != CursorKind.COMPOUND_STMT:
            return
        if child.kind == CursorKind.BREAK_STMT:
            code = "{{ if (!{on}) {inner}; }}"
        elif child.kind.is_expression() and not re.match(rb"throw\b|[{]", text) and not self.never_returns(child):
            code = "({on} ? (void)0 : (void)({inner}))"
        else:
            return
        self.place(child).dropped = Mutant("dropped", shown(text), "nothing", code)

    def is_own_statement(self, cursor):
        text = self.text(cursor)
        is_here = cursor.extent.start.file is not None and cursor.extent.start.file.name == self.path
        return is_here and text and self.behind(cursor) == b";" and not re.match(rb"assert\b", text)

    @staticmethod
    def never_returns(call):
        def callees(cursor):
            if cursor.referenced is not None:
                yield cursor.referenced
            for child in cursor.get_children():
                if child.kind in (CursorKind.UNEXPOSED_EXPR, CursorKind.CALL_EXPR):
                    yield from callees(child)

        return any(child.spelling in ("refuse", "refuseSlot", "refuseAnswer")
                   for child in callees(call))

    def look_at_operator(self, cursor, left, right):
        operator = self.between(left, right)
        if operator in ("&&", "||"):
            for operand in (left, right):
                if self.is_own(operand):
                    self.decide(operand, [operator == "&&"])
        elif operator in comparisons:
            self.look_at_comparison(cursor, left, right)
        elif operator in arithmetic and self.calculates(operator, left, right):
            self.replace_operator(cursor, left, right, "off by one", arithmetic[operator])

    def look_at_comparison(self, cursor, left, right):
        is_number = all(self.is_number(side) or self.is_pointer(side) for side in (left, right))
        for other in comparisons.get(self.between(left, right), []):
            if other in ("==", "!=") or is_number:
                self.replace_operator(cursor, left, right, "comparison", other)

    def replace_operator(self, cursor, left, right, kind, operator):
        code = self.text(left) + f" {operator} ".encode() + self.text(right)
        self.add(cursor, kind, shown(code), "(" + code.decode() + ")")

    @staticmethod
    def is_number(cursor):
        kind = cursor.type.get_canonical().kind
        return TypeKind.BOOL.value <= kind.value <= TypeKind.LONGDOUBLE.value or kind in (TypeKind.ENUM,
                                                                                          TypeKind.DEPENDENT)

    @staticmethod
    def is_pointer(cursor):
        return cursor.type.get_canonical().kind == TypeKind.POINTER

    def calculates(self, operator, left, right):
        if self.is_pointer(left):
            return operator in ("+", "+=", "-=", "-") and not self.is_pointer(right)
        return self.is_number(left) and self.is_number(right)

    def look_at_unary(self, cursor, operand):
        text, inner = self.text(cursor), self.text(operand).decode()
        for sign, other in (("++", "--"), ("--", "++")):
            if text.startswith(sign.encode()):
                self.add(cursor, "off by one", other + inner, f"({other}{inner})")
            elif text.endswith(sign.encode()):
                self.add(cursor, "off by one", inner + other, f"({inner}{other})")
        # Where != is made of ==, the parser shows a negation that begins at the operator.
        if text.startswith(b"!") and not text.startswith(b"!="):
            self.add(cursor, "comparison", inner, f"static_cast<bool>({inner})")
        elif re.match(rb"[-~](?!-)", text):
            self.add(cursor, "constant", inner, f"({inner})")

    def look_at_named_constant(self, cursor):
        meant = cursor.referenced
        is_constant = meant is not None and meant.kind == CursorKind.ENUM_CONSTANT_DECL
        if meant is not None and meant.kind == CursorKind.VAR_DECL and self.is_number(cursor):
            is_constant = any(token.spelling == "constexpr" for token in list(meant.get_tokens())[:4])
        if is_constant:
            name = self.text(cursor).decode()
            self.add(cursor, "constant", f"{name} + 1", f"::mutation::moved({name}, 1)")

    def look_at_literal(self, cursor):
        text = self.text(cursor).decode()
        if cursor.kind in (CursorKind.INTEGER_LITERAL, CursorKind.FLOATING_LITERAL):
            self.add(cursor, "constant", f"{text} + 1", f"::mutation::moved({text}, 1)")
            if cursor.kind == CursorKind.INTEGER_LITERAL:
                self.add(cursor, "constant", f"{text} - 1", f"::mutation::moved({text}, -1)")
        elif cursor.kind == CursorKind.CHARACTER_LITERAL:
            self.add(cursor, "constant", f"{text} + 1", f"::mutation::moved({text}, 1)")
        elif cursor.kind == CursorKind.CXX_BOOL_LITERAL_EXPR:
            other = "false" if text == "true" else "true"
            self.add(cursor, "constant", other, other)
        elif cursor.kind == CursorKind.STRING_LITERAL and strings.match(text.encode()) and not text.endswith('""'):
            prefix = text[:text.index('"')]
            self.add(cursor, "constant", prefix + '""', prefix + '""')


def nested(places):
    """The outermost places, each with those inside it; a place that is partly in another is left out."""
    outermost, open_places = [], []
    for place in sorted(places, key=lambda p: (p.start, -p.end)):
        while open_places and open_places[-1].end <= place.start:
            open_places.pop()
        if open_places and place.end > open_places[-1].end:
            continue
        (open_places[-1].inner if open_places else outermost).append(place)
        open_places.append(place)
    return outermost


class SourceMutants:
    """The mutants of one source, in the order of the places, and the source that they can be chosen in."""

    def __init__(self, path, shown_path, arguments):
        self.source = path.read_bytes()
        self.name = shown_path
        self.outermost = nested(Finder(path, self.source, arguments).places.values())
        self.mutants = []
        self.collect(self.outermost)
        self.tell_apart()

    def collect(self, places):
        for place in places:
            for mutant in [*place.mutants.values(), *([place.dropped] if place.dropped else [])]:
                begin = self.source.rfind(b"\n", 0, place.start) + 1
                end = self.source.find(b"\n", place.start)
                mutant.line = self.source.count(b"\n", 0, place.start) + 1
                mutant.text = self.source[begin:end].decode().strip()
                self.mutants.append(mutant)
            self.collect(place.inner)

    def tell_apart(self):
        counts = defaultdict(int)
        for mutant in self.mutants:
            alike = (mutant.text, mutant.kind, mutant.original, mutant.mutated)
            mutant.occurrence = counts[alike]
            counts[alike] += 1

    def number_from(self, first):
        for number, mutant in enumerate(self.mutants, first):
            mutant.number = number
        return first + len(self.mutants)

    def written(self):
        return self.write(self.outermost, 0, len(self.source))

    def write(self, places, start, end):
        parts, at = [], start
        for place in places:
            parts += [self.source[at:place.start], self.write_place(place)]
            at = place.end
        return b"".join([*parts, self.source[at:end]])

    def write_place(self, place):
        inner = self.write(place.inner, place.start, place.end).decode()
        if place.mutants:
            original = f"static_cast<bool>({inner})" if place.is_condition else inner
            choices = "".join(f"::mutation::on({m.number}) ? {m.code} : " for m in place.mutants.values())
            inner = f"({choices}{original})"
        if place.dropped:
            inner = place.dropped.code.format(on=f"::mutation::on({place.dropped.number})", inner=inner)
        return inner.encode()
