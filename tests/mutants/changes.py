"""The changes that are tried: each makes one mistake in one place of a source."""

import difflib
import re
from collections import Counter
from dataclasses import dataclass

from structure import ASSIGNMENTS, Structure
from tokens import matching, tokens_of

KINDS = ("condition", "arithmetic", "constant", "order", "priority", "text", "release", "call")

CONDITIONS = {"==": ("!=",), "!=": ("==",), "<": ("<=", ">="), ">": (">=", "<="), "<=": ("<",), ">=": (">",),
              "&&": ("||",), "||": ("&&",)}
ARITHMETIC = {"+": "-", "-": "+", "*": "/", "/": "*", "%": "/", "|": "&", "+=": "-=", "-=": "+=", "++": "--", "--": "++",
              "|=": "&="}
PRIORITIES = {"LOG_DEBUG": "LOG_INFO", "LOG_INFO": "LOG_WARNING", "LOG_WARNING": "LOG_ERROR", "LOG_ERROR": "LOG_WARNING",
              "LOG_FATAL": "LOG_ERROR"}
CASTS = ("static_cast", "reinterpret_cast", "const_cast", "sizeof")
BOOLEANS = {"true": "false", "false": "true"}
RELEASES = re.compile(r"delete|Release|CoTaskMemFree|CoUninitialize|PropVariantClear|CloseHandle|free|unlock|join|detach|stop|"
                      r"(un[rR]egister|Unregister|remove|clear|close|reset|release|destroy|erase|end|pop)\w*")
INTEGER = re.compile(r"(0[xX][0-9A-Fa-f']+|0[bB][01']+|[0-9][0-9']*)([uUlLzZ]*)")
REAL = re.compile(r"([0-9']*\.?[0-9]*(?:[eE][+-]?[0-9]+)?)([fFlL]?)")


@dataclass(frozen=True)
class Change:
    """Puts replacement in place of what is from start to end in the text of the file at path. mark tells it from all others,
    and stays as it is while other lines of the file change."""

    path: str
    kind: str
    line: int
    column: int
    variant: int
    start: int
    end: int
    replacement: str
    is_code: bool
    last_line: int
    mark: str

    @property
    def id(self):
        variant = f":{self.variant}" if self.variant else ""
        return f"{self.path}:{self.line}:{self.column}:{self.kind}{variant}"

    def applied(self, text):
        return text[:self.start] + self.replacement + text[self.end:]

    def diff(self, text):
        """The lines that are other than before, each with "- " or "+ " in front, without their indentation."""
        compared = difflib.ndiff(text.splitlines(), self.applied(text).splitlines())
        return [each[:2] + each[2:].strip() for each in compared if each[:2] in ("- ", "+ ")]


class _Finder:
    def __init__(self, path, text):
        self.path = path
        self.text = text
        self.tokens = tokens_of(text)
        self.pairs = matching(self.tokens)
        self.structure = Structure(self.tokens, self.pairs)
        self.found = []
        self._line_starts = [0] + [match.end() for match in re.finditer("\n", text)]
        self._ids = set()
        self._marks = Counter()

    def add(self, kind, first, last, replacement):
        """replacement for the text of the tokens from first to last"""
        start, end = self.tokens[first].start, self.tokens[last].end
        if not all(self.structure.is_touched[first:last + 1]) or self.text[start:end] == replacement:
            return
        line = self.text.count("\n", 0, start) + 1
        last_line = line + self.text.count("\n", start, end)
        column = start - self._line_starts[line - 1] + 1
        variant = 0
        while (line, column, kind, variant) in self._ids:
            variant += 1
        self._ids.add((line, column, kind, variant))
        self.found.append(Change(self.path, kind, line, column, variant, start, end, replacement,
                                 self.structure.is_code[first], last_line, self.mark(kind, line, last_line, start, replacement)))

    def mark(self, kind, line, last_line, start, replacement):
        """Equal lines are told apart by their number among them."""
        lines = self.text[self._line_starts[line - 1]:(self._line_starts + [None])[last_line]]
        offset = start - self._line_starts[line - 1] - (len(lines) - len(lines.lstrip()))
        mark = f"{self.path} {kind} {offset} {replacement} {lines.strip()}"
        self._marks[mark] += 1
        return f"{mark} {self._marks[mark]}"

    def is_binary(self, index):
        """Whether blanks are around an operator, which a bracket of a template and a sign do not have."""
        token = self.tokens[index]
        return self.text[token.start - 1:token.start].isspace() and self.text[token.end:token.end + 1].isspace()

    def all(self):
        for index, token in enumerate(self.tokens):
            if token.kind == "operator":
                self.add_operators(index, token.text)
            elif token.kind == "word":
                self.add_words(index, token.text)
            elif token.kind == "number":
                self.add_number(index, token.text)
            elif token.kind in ("string", "char"):
                self.add_text(index, token)
        self.add_statements()
        return sorted(self.found, key=lambda change: (change.start, change.end, change.kind, change.variant))

    def add_operators(self, index, text):
        is_step = text in ("++", "--")
        if text in CONDITIONS and self.is_binary(index):
            for replacement in CONDITIONS[text]:
                self.add("condition", index, index, replacement)
        elif text in ARITHMETIC and (is_step or self.is_binary(index)):
            self.add("arithmetic", index, index, ARITHMETIC[text])
        elif text == "!":
            self.add("condition", index, index, "")

    def add_words(self, index, text):
        if text in ("if", "while"):
            opened = index + 2 if self.tokens[index + 1].text == "constexpr" else index + 1
            closed = self.pairs.get(opened)
            inside = [token.text for token in self.tokens[opened + 1:closed]]
            if closed is not None and "=" not in inside and ";" not in inside:
                condition = self.text[self.tokens[opened].end:self.tokens[closed].start]
                self.add("condition", opened, closed, f"(!({condition}))")
        elif text in BOOLEANS:
            self.add("constant", index, index, BOOLEANS[text])
        elif text in PRIORITIES:
            self.add("priority", index, index, PRIORITIES[text])

    def add_number(self, index, text):
        integer, real = INTEGER.fullmatch(text), REAL.fullmatch(text)
        if integer:
            digits, suffix = integer.groups()
            value = int(digits.replace("'", ""), 8 if re.fullmatch("0[0-7']+", digits) else 0)
            shown = f"{value + 1:#x}" if digits[:2] in ("0x", "0X") else str(value + 1)
            self.add("constant", index, index, shown + suffix)
        elif real:
            self.add("constant", index, index, repr(float(real.group(1).replace("'", "")) + 1.0) + real.group(2))

    def add_text(self, index, token):
        if token.kind == "char":
            body = token.text[token.text.index("'") + 1:-1]
            if len(body) == 1 and 32 < ord(body) < 126:
                self.add("text", index, index, token.text.replace(f"'{body}'", f"'{self.next_of(body)}'"))
        elif token.text.endswith('"') and "R" not in token.text[:token.text.index('"')]:
            self.add("text", index, index, token.text[:-1] + '~"')

    @staticmethod
    def next_of(character):
        following = chr(ord(character) + 1)
        return following if following not in "'\\" else chr(ord(character) - 1)

    def add_statements(self):
        statements = self.structure.statements()
        for statement in statements:
            is_release = RELEASES.fullmatch(statement.name) and statement.kind != "assignment"
            lines = self.text[self.tokens[statement.first].start:self.tokens[statement.last].end].count("\n")
            self.add("release" if is_release else "call", statement.first, statement.last, ";" + "\n" * lines)
        following = {statement.first: statement for statement in statements}
        for one in statements:
            other = following.get(one.last + 1)
            if other is not None and not self.commute(one, other):
                self.add("order", one.first, other.last, self.exchanged(one, other))

    def commute(self, one, other):
        """Whether the order cannot matter: two assignments, without calls, of which neither names the target of the other."""
        if {one.kind, other.kind} != {"assignment"}:
            return False
        texts = [[token.text for token in self.tokens[each.first:each.last]] for each in (one, other)]
        if any({"++", "--"} & set(each) or each.count("(") > sum(each.count(cast) for cast in CASTS) for each in texts):
            return False
        targets = [" ".join(each[:next(index for index, text in enumerate(each) if text in ASSIGNMENTS)]) for each in texts]
        return all(f" {target} " not in f" {' '.join(text)} " for target, text in zip(targets, reversed(texts)))

    def exchanged(self, one, other):
        start, middle = self.tokens[one.first].start, self.tokens[one.last].end
        begin, end = self.tokens[other.first].start, self.tokens[other.last].end
        return self.text[begin:end] + self.text[middle:begin] + self.text[start:middle]


def changes_of(path, text):
    return _Finder(path, text).all()
