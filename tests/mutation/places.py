# SPDX-License-Identifier: GPL-3.0-or-later
"""Finds in clang's syntax tree the expressions that can be mutated.

The tree says what an expression is, the text between its parts which operator it has: where the two
disagree, a macro is at work, and the expression is left alone.
"""
import re

from clang.cindex import Config, CursorKind as Kind, Index, StorageClass, TypeKind

from schemata import Place

Config.set_library_file("/usr/lib/llvm-14/lib/libclang.so.1")

_RELATIONS = {"<": ("<=", ">="), "<=": ("<", ">"), ">": (">=", "<="), ">=": (">", "<"),
              "==": ("!=",), "!=": ("==",)}
_ARITHMETIC = {"+": "-", "-": "+", "*": "/", "/": "*", "%": "*"}
_ASSIGNING = {"+=": "-=", "-=": "+=", "*=": "/=", "/=": "*="}
_LOGICAL = {"&&": "||", "||": "&&"}
_LOOPS = (Kind.FOR_STMT, Kind.WHILE_STMT, Kind.DO_STMT, Kind.CXX_FOR_RANGE_STMT)
_WRAPPERS = (Kind.UNEXPOSED_EXPR, Kind.PAREN_EXPR)
# What must be known while compiling, or is never executed.
_CONSTANT = (Kind.ENUM_DECL, Kind.STATIC_ASSERT, Kind.TYPE_ALIAS_DECL, Kind.TYPEDEF_DECL,
             Kind.CXX_UNARY_EXPR, Kind.TYPE_ALIAS_TEMPLATE_DECL)
_FUNCTIONS = (Kind.FUNCTION_DECL, Kind.CXX_METHOD, Kind.CONSTRUCTOR, Kind.FUNCTION_TEMPLATE,
              Kind.CONVERSION_FUNCTION)
_NUMBER = re.compile(r"(0[xX][0-9a-fA-F']+|0[bB][01']+|[0-9][0-9']*)[uUlL]*")
_FRACTION = re.compile(r"[0-9][0-9'.]*([eE][-+]?[0-9]+)?[fF]?")
_COMMENT = re.compile(r"//[^\n]*|/\*.*?\*/", re.S)


def _bare(text):
    return _COMMENT.sub("", text).strip()


def places_in(unity_source, arguments, wanted):
    """All places in those files that `wanted(path)` gives a name; `arguments` are the compiler's.

    Returns them in the order of files and offsets, and a list of clang's errors.
    """
    unit = Index.create().parse(unity_source, arguments)
    found = {}
    finder_of = {}
    for cursor in unit.cursor.get_children():
        file = cursor.location.file
        name = wanted(file.name) if file else None
        if name is None:
            continue
        finder = finder_of.setdefault(name, _Finder(file.name, name))
        finder.visit(cursor, None)
    for finder in finder_of.values():
        for place in finder.places():
            found[(place.path, place.start, place.end, place.kind)] = place
    faults = [d.spelling for d in unit.diagnostics if d.severity >= 3]
    return [found[key] for key in sorted(found)], faults


class _Finder:
    """The places of one file."""

    def __init__(self, path, name):
        # One character a byte, as clang counts.
        with open(path, encoding="latin-1", newline="") as file:
            self._text = file.read()
        self._path = path
        self._name = name
        self._places = {}

    def places(self):
        """A negated relation is a mutant of the relation already."""
        relations = {(p.start, p.end) for p in self._places.values()
                     if p.kind in ("relation", "loop boundary")}
        return [p for p in self._places.values()
                if (p.start, p.end) not in relations
                or p.kind not in ("condition negated", "return inverted")]

    def visit(self, cursor, loop):
        """Looks at `cursor` and all in it; `loop` is the range of the condition it lies in."""
        kind = _kind(cursor)
        if not self._is_here(cursor) or self._is_constant(cursor, kind):
            return
        handler = _HANDLERS.get(kind)
        if handler:
            handler(self, cursor, loop)
        for child in list(cursor.get_children()):
            if self._is_label_or_size(child, kind):
                continue
            in_loop = loop
            if kind in _LOOPS:
                in_loop = self._range(child) if self._is_condition(child, kind) else None
                if self._is_step(child):
                    continue
            elif kind in (Kind.COMPOUND_STMT, Kind.LAMBDA_EXPR):
                in_loop = None
            if self._is_discarded(child, kind):
                self._add_call(child)
            self.visit(child, in_loop)

    def _is_here(self, cursor):
        file = cursor.location.file
        return file is not None and file.name == self._path

    def _is_constant(self, cursor, kind):
        if kind in _CONSTANT:
            return True
        text = self._text[slice(*self._range(cursor))]
        if kind == Kind.VAR_DECL:
            return self._is_constant_variable(cursor, text)
        head = text.split("{")[0]
        return kind in _FUNCTIONS and ("constexpr" in head or "consteval" in head)

    def _is_constant_variable(self, cursor, text):
        parent = cursor.semantic_parent
        outside = parent is None or _kind(parent) in (Kind.NAMESPACE, Kind.TRANSLATION_UNIT)
        return (outside or "constexpr" in re.split(r"[={(]", text)[0]
                or cursor.storage_class == StorageClass.STATIC)

    def _is_label_or_size(self, child, parent):
        """What of a statement must be known while compiling: a case, the size of an array."""
        if parent == Kind.CASE_STMT:
            return self._before(child).endswith("case")
        return (parent in (Kind.VAR_DECL, Kind.FIELD_DECL)
                and _kind(child) == Kind.INTEGER_LITERAL and self._after(child).startswith("]"))

    # The text around a cursor

    def _range(self, cursor):
        return cursor.extent.start.offset, cursor.extent.end.offset

    def _before(self, cursor):
        start = self._range(cursor)[0]
        return _bare(self._text[self._text.rfind("\n", 0, max(0, start - 200)) + 1:start])

    def _after(self, cursor):
        end = self._range(cursor)[1]
        return _bare(self._text[end:end + 200])

    def _is_condition(self, cursor, statement):
        """`if (…)`, `if (…; …)`, `while (…)`, or the middle of a `for`."""
        before, after = self._before(cursor), self._after(cursor)
        if statement == Kind.FOR_STMT:
            return before.endswith(";") and after.startswith(";")
        return bool(re.search(r"\b(if|while)\s*\($|;$", before)) and after.startswith(")")

    def _is_step(self, cursor):
        return (_kind(cursor) == Kind.UNARY_OPERATOR and self._before(cursor).endswith(";")
                and self._after(cursor).startswith(")"))

    def _is_discarded(self, cursor, parent):
        statement = parent == Kind.COMPOUND_STMT or (
            parent in _LOOPS + (Kind.IF_STMT, Kind.CASE_STMT, Kind.DEFAULT_STMT)
            and re.search(r"(\)|else|:)$", self._before(cursor)))
        return statement and self._after(cursor).startswith(";") and _is_call(cursor)

    # The kinds of places

    def _add(self, cursor, kind, parts, wordings, original="{0}"):
        start, end = self._range(cursor)
        if start >= end:
            return
        place = Place(self._name, start, end, kind, tuple(parts), tuple(wordings), original)
        self._places[(start, end, kind)] = place

    def _add_call(self, cursor):
        self._add(cursor, "call left out", [self._range(cursor)], ["void()"], "void({0})")

    def _add_inverted(self, cursor, kind):
        self._add(cursor, kind, [self._range(cursor)], ["!({0})"], "static_cast<bool>({0})")

    def _operator(self, cursor, left, right):
        """The operator between two parts, None where the text shows none."""
        a, b = self._range(left), self._range(right)
        if self._range(cursor) != (a[0], b[1]) or a[1] > b[0]:
            return None
        return _bare(self._text[a[1]:b[0]])

    def _on_binary(self, cursor, loop):
        parts = list(cursor.get_children())
        if len(parts) == 2:
            self._add_binary(cursor, parts[0], parts[1], loop)

    def _on_call(self, cursor, loop):
        parts = list(cursor.get_arguments())
        name = cursor.spelling.removeprefix("operator")
        if len(parts) == 2 and name in _RELATIONS:
            self._add_binary(cursor, parts[0], parts[1], loop)

    def _on_unexposed(self, cursor, loop):
        """A relation that the compiler makes of another (C++20) has no kind of its own."""
        parts = list(cursor.get_children())
        if len(parts) in (2, 3) and self._operator(cursor, parts[0], parts[-1]) in _RELATIONS:
            self._add_binary(cursor, parts[0], parts[-1], loop)

    def _add_binary(self, cursor, left, right, loop):
        operator = self._operator(cursor, left, right)
        if operator in _RELATIONS:
            kind = "loop boundary" if loop else "relation"
            others = _RELATIONS[operator]
        elif operator in _LOGICAL:
            kind, others = "logical", [_LOGICAL[operator]]
        elif operator in _ARITHMETIC and _is_number(left) and _is_number(right):
            kind, others = "arithmetic", [_ARITHMETIC[operator]]
        elif operator in _ASSIGNING and _is_number(left) and _is_number(right):
            kind, others = "arithmetic", [_ASSIGNING[operator]]
        else:
            return
        parts = [self._range(cursor), self._range(left), self._range(right)]
        # The left side of an assignment takes no parentheses around a declared name.
        self._add(cursor, kind, parts, [f"(({{1}}) {other} ({{2}}))" for other in others])

    def _on_unary(self, cursor, _loop):
        text = self._text[slice(*self._range(cursor))]
        operand = list(cursor.get_children())
        if len(operand) != 1 or not re.match(r"\+\+|--", text):
            return
        other = "--" if text.startswith("++") else "++"
        self._add(cursor, "arithmetic", [self._range(cursor), self._range(operand[0])],
                  [f"{other}{{1}}"])

    def _on_literal(self, cursor, _loop):
        text = self._text[slice(*self._range(cursor))]
        pattern = _NUMBER if _kind(cursor) == Kind.INTEGER_LITERAL else _FRACTION
        if pattern.fullmatch(text):
            self._add(cursor, "constant", [self._range(cursor)], ["{0} + 1", "{0} - 1"])

    def _on_condition(self, cursor, _loop):
        for child in cursor.get_children():
            if _kind(child).is_expression() and self._is_condition(child, _kind(cursor)):
                self._add_inverted(child, "condition negated")

    def _on_choice(self, cursor, _loop):
        condition = next(cursor.get_children(), None)
        if condition is not None and self._after(condition).startswith("?"):
            self._add_inverted(condition, "condition negated")

    def _on_return(self, cursor, _loop):
        value = next(cursor.get_children(), None)
        if value is None or value.type.get_canonical().kind != TypeKind.BOOL:
            return
        if re.search(r"\breturn$", self._before(value)) and self._after(value).startswith(";"):
            self._add_inverted(value, "return inverted")


_HANDLERS = {
    Kind.BINARY_OPERATOR: _Finder._on_binary,
    Kind.COMPOUND_ASSIGNMENT_OPERATOR: _Finder._on_binary,
    Kind.CALL_EXPR: _Finder._on_call,
    Kind.UNEXPOSED_EXPR: _Finder._on_unexposed,
    Kind.UNARY_OPERATOR: _Finder._on_unary,
    Kind.INTEGER_LITERAL: _Finder._on_literal,
    Kind.FLOATING_LITERAL: _Finder._on_literal,
    Kind.IF_STMT: _Finder._on_condition,
    Kind.WHILE_STMT: _Finder._on_condition,
    Kind.DO_STMT: _Finder._on_condition,
    Kind.FOR_STMT: _Finder._on_condition,
    Kind.CONDITIONAL_OPERATOR: _Finder._on_choice,
    Kind.RETURN_STMT: _Finder._on_return,
}

_NUMBERS = (TypeKind.INT, TypeKind.UINT, TypeKind.LONG, TypeKind.ULONG, TypeKind.LONGLONG,
            TypeKind.ULONGLONG, TypeKind.SHORT, TypeKind.USHORT, TypeKind.FLOAT, TypeKind.DOUBLE,
            TypeKind.LONGDOUBLE, TypeKind.CHAR_S, TypeKind.UCHAR, TypeKind.SCHAR, TypeKind.BOOL,
            TypeKind.CHAR16)


def _kind(cursor):
    """Kinds that the bindings do not know are none that is looked for."""
    try:
        return cursor.kind
    except ValueError:
        return Kind.UNEXPOSED_STMT


def _is_number(cursor):
    return cursor.type.get_canonical().kind in _NUMBERS


def _is_call(cursor):
    while _kind(cursor) in _WRAPPERS:
        inner = list(cursor.get_children())
        if len(inner) != 1:
            return False
        cursor = inner[0]
    return (_kind(cursor) in (Kind.CALL_EXPR, Kind.CXX_FUNCTIONAL_CAST_EXPR)
            and cursor.spelling != "operator=")
