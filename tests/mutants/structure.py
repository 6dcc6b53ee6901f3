"""What the tokens of a source are part of: code or declarations, statements, and places where nothing is changed."""

from dataclasses import dataclass

SCOPES = ("class", "struct", "union", "namespace", "enum", "extern")
# What their brackets hold is judged by the compiler alone, or is no code.
UNTOUCHED = ("static_assert", "noexcept", "alignas", "decltype", "__attribute__", "requires")
NO_STATEMENTS = ("return", "throw", "break", "continue", "goto", "using", "typedef", "delete", "new", "case", "default", "else",
                 "do", "if", "for", "while", "switch", "try", "static", "const", "constexpr", "auto", "friend", "template",
                 "operator", "co_return")
ASSIGNMENTS = ("=", "+=", "-=", "*=", "/=", "|=", "&=")


@dataclass(frozen=True)
class Statement:
    """Tokens first to last, the semicolon; kind is "call", "assignment" or "delete"; name is what is called last."""

    first: int
    last: int
    kind: str
    name: str


class Structure:
    """pairs are those of tokens.matching()."""

    def __init__(self, tokens, pairs):
        self._tokens = tokens
        self._pairs = pairs
        self.is_code = self._find_code()
        self.is_touched = self._find_touched()

    def _text(self, index):
        return self._tokens[index].text if 0 <= index < len(self._tokens) else ""

    def _find_code(self):
        """For each token, whether it is inside a function."""
        result, scopes, start = [], [False], 0
        for index, token in enumerate(self._tokens):
            result.append(scopes[-1])
            if token.kind != "operator":
                continue
            if token.text == "{":
                scopes.append(scopes[-1] or self._opens_code(start, index))
            elif token.text == "}" and len(scopes) > 1:
                scopes.pop()
            if token.text in "{};":
                start = index + 1
        return result

    def _opens_code(self, start, brace):
        """Whether the brace after the tokens from start begins the body of a function."""
        head = [self._text(index) for index in range(start, brace)]
        if "(" not in head:
            return False
        return "=" not in head[:head.index("(")] and not (set(head[:head.index("(")]) & set(SCOPES))

    def _find_touched(self):
        """For each token, whether it may be changed."""
        result = [True] * len(self._tokens)
        for index, token in enumerate(self._tokens):
            end = None
            if token.text in UNTOUCHED and self._text(index + 1) == "(":
                end = self._pairs.get(index + 1)
            elif token.text == "[" and self._text(index + 1) == "[":
                end = self._pairs.get(index)
            elif token.text in ("using", "template", "friend") and token.kind == "word":
                end = self._end_of_declaration(index)
            elif token.text in ("extern", "operator"):
                end = index + 1
            if end is not None:
                result[index:end + 1] = [False] * len(result[index:end + 1])
        return result

    def _end_of_declaration(self, index):
        """The last token of "using ...;" or of the angle brackets of "template<...>"."""
        depth = 0
        for end in range(index + 1, len(self._tokens)):
            text = self._text(end)
            depth += {"<": 1, ">": -1, ">>": -2}.get(text, 0)
            if text in (";", "{") or (self._text(index) == "template" and text in (">", ">>") and depth <= 0):
                return end - (text == "{")
        return len(self._tokens) - 1

    def statements(self):
        """The calls, assignments and deletions in functions, in their order."""
        result = []
        for index in range(len(self._tokens)):
            if self.is_code[index] and self._begins_statement(index):
                statement = self._statement(index)
                if statement is not None:
                    result.append(statement)
        return result

    def _begins_statement(self, index):
        before = self._text(index - 1)
        if before in (";", "{", "}", "else", "do"):
            return True
        if before == ")":
            opened = self._pairs.get(index - 1)
            return opened is not None and self._text(opened - 1) in ("if", "for", "while", "constexpr")
        return False

    def _statement(self, first):
        if self._text(first) == "delete":
            end = first
            while end < len(self._tokens) and self._text(end) != ";":
                end += 1
            return Statement(first, end, "delete", "delete")
        after, name, is_call = self._chain(first)
        if after is None:
            return None
        if self._text(after) == ";" and is_call:
            return Statement(first, after, "call", name)
        if self._text(after) in ASSIGNMENTS:
            end = self._end_of_expression(after)
            return None if end is None else Statement(first, end, "assignment", name)
        return None

    def _chain(self, first):
        """Where the names, calls and subscripts that begin at first end, the name of the last one, and whether it is called."""
        index, name, is_call, expects_name = first, "", False, True
        while self._text(index) in ("*", "("):
            if self._text(index) == "(":
                return None, name, is_call
            index += 1
        while index < len(self._tokens):
            token = self._tokens[index]
            if expects_name:
                if token.text == "::" and index == first:
                    index += 1
                    continue
                if token.kind != "word" or token.text in NO_STATEMENTS:
                    return None, name, is_call
                name, is_call, expects_name = token.text, False, False
            elif token.text in ("::", ".", "->"):
                expects_name = True
            elif token.text in ("(", "["):
                is_call = token.text == "("
                index = self._pairs.get(index)
                if index is None:
                    return None, name, is_call
            else:
                return index, name, is_call
            index += 1
        return None, name, is_call

    def _end_of_expression(self, index):
        while index < len(self._tokens) and self._text(index) != ";":
            if self._text(index) in ("(", "[", "{"):
                index = self._pairs.get(index)
                if index is None:
                    return None
            if self._text(index) == "}" and self._pairs.get(index, index) > index:
                return None
            index += 1
        return index if index < len(self._tokens) else None
