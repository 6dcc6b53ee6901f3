"""The tokens of a C++ source that are compiled here: no comments, no directives, nothing for Windows alone."""

import re
from dataclasses import dataclass

PATTERN = re.compile(
    r"""
      (?P<comment>//(?:\\\n|[^\n])*|/\*.*?\*/)
    | (?P<directive>^[ \t]*\#(?:\\\n|/\*.*?\*/|[^\n])*)
    | (?P<string>(?:u8|u|U|L)?R"(?P<mark>[^()\\\s]*)\(.*?\)(?P=mark)"|(?:u8|u|U|L)?"(?:\\.|[^"\\\n])*")
    | (?P<char>(?:u8|u|U|L)?'(?:\\.|[^'\\\n])+')
    | (?P<number>\.?[0-9](?:[eEpP][+-]|'[0-9A-Fa-f]|[0-9A-Za-z_.])*)
    | (?P<word>[A-Za-z_]\w*)
    | (?P<operator><<=|>>=|\.\.\.|->\*|->|\+\+|--|&&|\|\||<<|>>|::|[<>=!+\-*/%&|^]=|[^\s])
    """,
    re.VERBOSE | re.DOTALL | re.MULTILINE,
)

CONDITION = re.compile(r"\s*#\s*(ifdef|ifndef|if|elif|else|endif)\b(.*)", re.DOTALL)
ON_WINDOWS = re.compile(r"\s*(defined\s*\(?\s*)?_WIN32\s*\)?\s*$")
OFF_WINDOWS = re.compile(r"\s*!\s*defined\s*\(?\s*_WIN32\s*\)?\s*$")


@dataclass(frozen=True)
class Token:
    """kind is a name of PATTERN; start and end are offsets in the text."""

    kind: str
    text: str
    start: int
    end: int


class _Conditionals:
    """Which parts are left out because they are for Windows; the branches of any other condition are both taken."""

    def __init__(self):
        self._taken = []

    @property
    def are_taken(self):
        return all(self._taken)

    def read(self, directive):
        match = CONDITION.match(directive)
        if not match:
            return
        word, rest = match.group(1), match.group(2).split("//")[0]
        if word == "endif":
            self._taken.pop()
        elif word == "else":
            self._taken[-1] = self._otherwise
        elif word == "elif":
            self._taken[-1] = True
        else:
            is_on, is_off = bool(ON_WINDOWS.match(rest)), bool(OFF_WINDOWS.match(rest))
            if word == "ifndef":
                is_on, is_off = False, is_on
            self._taken.append(not is_on)
            self._otherwise = not is_off


def tokens_of(text):
    conditionals = _Conditionals()
    result = []
    for match in PATTERN.finditer(text):
        kind = match.lastgroup if match.lastgroup != "mark" else "string"
        if kind == "directive":
            conditionals.read(match.group())
        elif kind != "comment" and conditionals.are_taken:
            result.append(Token(kind, match.group(), match.start(), match.end()))
    return result


def matching(tokens):
    """For each bracket of tokens the index of its counterpart; brackets without one are left out."""
    pairs, opened = {}, []
    closing = {")": "(", "]": "[", "}": "{"}
    for index, token in enumerate(tokens):
        if token.kind != "operator":
            continue
        if token.text in "([{":
            opened.append(index)
        elif token.text in closing:
            if opened and tokens[opened[-1]].text == closing[token.text]:
                pairs[index] = opened.pop()
                pairs[pairs[index]] = index
    return pairs
