"""Finds what could be wrong in product code: every mutant is one small change of one source."""

import bisect
import dataclasses
import re

TOKEN = re.compile(
    r"""(?P<space>\s+|\\\n|//[^\n]*|/\*.*?\*/|^[ \t]*\#(?:define\s+\w+(?:\([^)]*\))?|[^\n]*))
      | (?P<text>"(?:[^"\\\n]|\\.)*")
      | (?P<number>(?:0[xX][0-9a-fA-F]+|\d+(?:\.\d+)?)[uUlLfF]*)
      | (?P<name>[A-Za-z_]\w*)
      | (?P<mark>\.\.\.|->|::|<<=|>>=|<=|>=|==|!=|&&|\|\||<<|>>|[-+*/%&|]=|\+\+|--|'[^'\n]*'|.)""",
    re.VERBOSE | re.MULTILINE | re.DOTALL,
)
CLOSING = {"(": ")", "[": "]", "{": "}"}
OTHERS = {
    "==": "!=",
    "!=": "==",
    "<": "<=",
    "<=": "<",
    ">": ">=",
    ">=": ">",
    "&&": "||",
    "||": "&&",
    "+": "-",
    "-": "+",
    "*": "/",
    "/": "*",
    "%": "/",
    "&": "|",
    "|": "&",
    "<<": ">>",
    ">>": "<<",
    "+=": "-=",
    "-=": "+=",
}
BOUNDARIES = {"<", "<=", ">", ">="}
NO_CALL = {"if", "for", "while", "switch", "return", "sizeof", "decltype", "constexpr"}
NO_EFFECT = {
    "auto", "case", "class", "const", "constexpr", "default", "do", "else", "for", "if", "private",
    "public", "return", "static", "static_assert", "struct", "switch", "template", "typedef",
    "using", "while",
}
DECLARATION = re.compile(r"[\w:<>, ]+[*&\s]+\w+\s*(\[[^]]*\]|\{.*)?\s*(=[^=].*)?;$", re.DOTALL)
ENTITY = re.compile(r"(~?\w+)\s*(?:\(|\[|=|\{|;|$)")


@dataclasses.dataclass(frozen=True)
class Mutant:
    file: str
    line: int
    entity: str  # the function, table or class that it is in
    kind: str
    before: str  # the lines that change, as one
    after: str
    start: int  # what is replaced in the file, and by what
    end: int
    replacement: str

    def applied_to(self, source):
        return source[: self.start] + self.replacement + source[self.end :]


@dataclasses.dataclass
class Token:
    kind: str
    text: str
    start: int
    end: int


def in_one_line(text):
    return " ".join(re.sub(r"\\\n", " ", text).split())


class Source:
    """One source, and the mutants that it has."""

    def __init__(self, file, source):
        self.file = file
        self.source = source
        self.tokens = [
            Token(found.lastgroup, found[0], found.start(), found.end())
            for found in TOKEN.finditer(source)
            if found.lastgroup != "space"
        ]
        self.lines = [0] + [found.end() for found in re.finditer("\n", source)]
        self.partner = self._partners()
        self.skipped = self._skipped()
        self.found = {}

    # --- what stands where

    def _partners(self):
        partner, stack = {}, []
        for i, token in enumerate(self.tokens):
            if token.text in CLOSING:
                stack.append(i)
            elif token.text in CLOSING.values() and stack:
                opened = stack.pop()
                partner[opened], partner[i] = i, opened
        return partner

    def text_at(self, i):
        return self.tokens[i].text if 0 <= i < len(self.tokens) else ""

    def _skipped(self):
        """The tokens of what is no code of its own: attributes, assertions, heads of templates."""
        skipped = set()
        for i, token in enumerate(self.tokens):
            if token.text == "[" and self.text_at(i + 1) == "[":
                skipped.update(range(i, self.partner[i] + 1))
            elif token.text in ("static_assert", "using"):
                skipped.update(range(i, self._end_of_statement(i) + 1))
            elif token.text == "extern" and self.text_at(i + 1).startswith('"'):
                skipped.update((i, i + 1))
        return skipped

    def _end_of_statement(self, i):
        while i < len(self.tokens) and self.tokens[i].text != ";":
            i = self.partner[i] + 1 if self.tokens[i].text in CLOSING else i + 1
        return i

    def _spaced(self, i):
        """Whether a mark stands apart: an operator does, the bracket of a template doesn't."""
        token = self.tokens[i]
        return self.source[token.start - 1].isspace() and self.source[token.end : token.end + 1].isspace()

    def _is_control(self, i):
        """Whether the parenthesis that opens there belongs to a statement that branches."""
        word = self.text_at(i - 1)
        return word in ("if", "for", "while", "switch") or (
            word == "constexpr" and self.text_at(i - 2) == "if"
        )

    def _brace(self, i):
        """What the brace that opens there holds: a body, a block, a scope or a list."""
        before = i - 1
        while self.text_at(before) in ("const", "mutable", "noexcept"):
            before -= 1
        word = self.text_at(before)
        if word == ")":
            return "block" if self._is_control(self.partner[before]) else "body"
        if word == "else":
            return "block"
        if word == "]" and self.text_at(self.partner[before] - 1) in ("(", ",", "="):
            return "body"
        arrow = next((j for j in range(before, before - 6, -1) if self.text_at(j) == "->"), None)
        if arrow is not None and self.text_at(arrow - 1) == ")":
            return "body"
        for j in range(before, -1, -1):
            word = self.tokens[j].text
            if word in ("struct", "class", "namespace", "enum") or word.startswith('"'):
                return "scope"
            if word in (";", "{", "}", "=", "(", ",", "return"):
                break
        return "list"

    def _parts(self, opened):
        """The parts of a list in brackets, as pairs of token numbers: first and behind the last."""
        parts, first, depth, i = [], opened + 1, 0, opened + 1
        while i < self.partner[opened]:
            word = self.tokens[i].text
            if word in CLOSING:
                i = self.partner[i]
            elif word in ("<", ">", ">>") and not self._spaced(i):
                depth += {"<": 1, ">": -1, ">>": -2}[word]
            elif word == "," and depth == 0:
                parts.append((first, i))
                first = i + 1
            i += 1
        if first < i:
            parts.append((first, i))
        return parts

    def _line(self, position):
        return bisect.bisect_right(self.lines, position)

    def _entity(self, position):
        for number in range(self._line(position), 0, -1):
            line = self.source[self.lines[number - 1] :].split("\n", 1)[0]
            line = re.sub(r"^\[\[[^]]*\]\] ", "", line)
            if re.match(r"(template|namespace|extern \"|static_assert|public|private)\b", line):
                continue
            macro = re.match(r"#define (\w+)|[A-Z_]+\((\w+)", line)
            if macro:
                return macro[1] or macro[2]
            if re.match(r"[A-Za-z_]|\} \w", line):
                name = ENTITY.search(line)
                if name:
                    return name[1]
        return "-"

    # --- the changes

    def _add(self, kind, start, end, replacement):
        first = self.lines[self._line(start) - 1]
        last = self.source.find("\n", max(start, end - 1))
        changed = self.source[first:start] + replacement + self.source[end:last]
        before, after = in_one_line(self.source[first:last]), in_one_line(changed)
        if before != after:
            self.found.setdefault(
                (start, end, replacement),
                Mutant(self.file, self._line(start), self._entity(start), kind, before, after,
                       start, end, replacement),
            )

    def _swap(self, kind, parts, tables=False):
        for (a, b), (c, d) in zip(parts, parts[1:]):
            if tables and "text" in (self.tokens[a].kind, self.tokens[c].kind):
                continue  # a text and a function
            start, end = self.tokens[a].start, self.tokens[d - 1].end
            left = self.source[start : self.tokens[b - 1].end]
            between = self.source[self.tokens[b - 1].end : self.tokens[c].start]
            right = self.source[self.tokens[c].start : end]
            self._add(kind, start, end, right + between + left)

    def _conditions(self):
        for i, token in enumerate(self.tokens):
            if token.text in ("if", "while") and self.text_at(i + 1) == "(":
                self._negate(i + 2, self.partner[i + 1], token.text)
            elif token.text == "for" and self.text_at(i + 1) == "(":
                first = self._end_of_statement(i + 2)
                if first < self.partner[i + 1]:
                    self._negate(first + 1, self._end_of_statement(first + 1), "for")
            elif token.text == "?":
                start = i - 1
                while self.text_at(start) not in ("return", "=", "(", ",", ";", "{", ":"):
                    start = self.partner[start] - 1 if self.text_at(start) in (")", "]") else start - 1
                self._negate(start + 1, i, "?")
            elif token.text == "!":
                self._add("condition", token.start, token.end, "")

    def _turns_already(self, first, behind):
        """Whether another change turns the condition round: it is one comparison, or begins with !."""
        words = [token.text for token in self.tokens[first:behind]]
        ends_whole = self.text_at(first) == "!" and not {"&&", "||"} & set(words)
        return ends_whole or len({"==", "!=", "&&", "||", "?"} & set(words)) == 1 and (
            words.count("==") + words.count("!=") == 1)

    def _negate(self, first, behind, statement):
        if self._turns_already(first, behind):
            return
        start, end = self.tokens[first].start, self.tokens[behind - 1].end
        condition = self.source[start:end]
        declared = re.match(r"(?:const|auto|\w+\*?) [^=(]*?(\w+) = ", condition)
        if declared is None:
            self._add("condition", start, end, f"!({condition})")
        elif statement == "if":
            self._add("condition", start, end, f"{condition}; !{declared[1]}")

    def _marks(self):
        for i, token in enumerate(self.tokens):
            if i in self.skipped:
                continue
            if token.text in OTHERS and self._spaced(i):
                kind = "boundary" if token.text in BOUNDARIES else "operator"
                self._add(kind, token.start, token.end, OTHERS[token.text])
            elif token.text in ("true", "false"):
                self._add("constant", token.start, token.end, "false" if token.text == "true" else "true")
            elif token.kind == "number":
                self._number(token)
            elif token.kind == "text":
                self._text(token)

    def _number(self, token):
        digits = re.match(r"0[xX][0-9a-fA-F]+|[\d.]+", token.text)[0]
        if "." in digits:
            others = [f"{float(digits) + step:.2f}" for step in (0.01, -0.01)]
        else:
            value = int(digits, 0)
            others = [str(value + 1)] + ([str(value - 1)] if value > 0 else [])
        for other in others:
            self._add("constant", token.start, token.start + len(digits), other)

    def _text(self, token):
        letters = [found.start() for found in re.finditer(r"(?<![\\%])[A-Za-z]", token.text)]
        if not letters:
            self._add("text", token.end - 1, token.end - 1, "q")
            return
        middle = letters[len(letters) // 2]
        place = token.start + middle
        self._add("text", place, place + 1, "q" if token.text[middle] != "q" else "z")

    def _statements(self):
        for i, token in enumerate(self.tokens):
            if token.text == "{" and self._brace(i) in ("body", "block"):
                self._drop_within(i)
            elif token.text == "(" and self._is_control(i):
                behind = self.partner[i] + 1
                if self.text_at(behind) != "{":
                    self._drop(behind, guarded=True)
            elif token.text == "else" and self.text_at(i + 1) not in ("{", "if"):
                self._drop(i + 1, guarded=True)

    def _drop_within(self, opened):
        guarded = self._brace(opened) == "block"
        i = opened + 1
        while i < self.partner[opened]:
            if self.text_at(i - 1) in (";", "{", "}"):
                self._drop(i, guarded)
            i = self.partner[i] + 1 if self.text_at(i) in CLOSING else i + 1

    def _drop(self, first, guarded):
        last = self._end_of_statement(first)
        word = self.text_at(first)
        if word == ";" or first in self.skipped or last == len(self.tokens):
            return
        text = self.source[self.tokens[first].start : self.tokens[last].end]
        if word in NO_EFFECT and not (word == "return" and guarded):
            return
        if word != "return" and DECLARATION.match(text):
            return
        kind = "return dropped" if word == "return" else "statement dropped"
        self._add(kind, self.tokens[first].start, self.tokens[last].end, "(void)0;")

    def _early_returns(self):
        for i, token in enumerate(self.tokens):
            if token.text != "{" or self._brace(i) != "body" or self.partner[i] == i + 1:
                continue
            words = {self.tokens[j].text for j in range(i, self.partner[i])}
            before = i - 1
            while self.text_at(before) not in (")", "]"):
                before -= 1
            opened = self.partner[before]
            if self.text_at(before) == "]" or self.text_at(opened - 1) == "]":  # a lambda
                if "return" not in words:
                    self._add("early return", token.end, token.end, " return;")
                elif self.text_at(i - 1) not in (")", "]"):
                    self._add("early return", token.end, token.end, " return {};")
                continue
            name = opened - 3 if self.text_at(opened - 2) == "::" else opened - 1
            nothing = self.text_at(name - 1) == "void"
            self._add("early return", token.end, token.end, " return;" if nothing else " return {};")

    def _lists(self):
        for i, token in enumerate(self.tokens):
            if i in self.skipped:
                continue
            if token.text == "(":
                name = self.tokens[i - 1]
                if self._is_head(i):
                    continue
                if name.text not in NO_CALL and (name.kind == "name" or name.text in (">", ">>")):
                    parts = self._parts(i)
                    if not all(self._is_parameter(*part) for part in parts):
                        self._swap("arguments", parts, tables=name.text.isupper())
            elif token.text == "{" and self._brace(i) == "list":
                self._list(self._parts(i))

    def _is_head(self, opened):
        """Whether the parenthesis follows a type and a name: no call is made there."""
        before = self.tokens[opened - 2]
        return before.kind == "name" and before.text not in ("return", "else")

    def _is_parameter(self, first, behind):
        """A type and a name, as in the head of a function."""
        last, before = self.tokens[behind - 1], self.text_at(behind - 2)
        return behind - first > 1 and last.kind == "name" and (
            before in ("*", "&", ">") or self.tokens[behind - 2].kind == "name")

    def _list(self, parts):
        if len(parts) < 2 or self.text_at(parts[0][0]) == ".":
            return
        macro = re.compile(r"[A-Z_]{2,}$")
        if not all(self.text_at(a) == "{" or macro.match(self.text_at(a)) for a, _ in parts):
            self._swap("arguments", parts, tables=True)
            return
        self._swap("rows", parts)
        for a, b in parts:
            end = self.tokens[b].end if self.text_at(b) == "," else self.tokens[b - 1].end
            self._add("row dropped", self.tokens[a].start, end, "")

    def _host_routines(self):
        """The list of the host's services: its names alone are code, the rest are words and types."""
        for i, token in enumerate(self.tokens):
            if token.text == "(" and re.match(r"[A-Z_]+$", self.text_at(i - 1)):
                self._text(self.tokens[self._parts(i)[1][0]])

    def mutants(self):
        if self.file.endswith(".def"):
            self._host_routines()
        else:
            self._conditions()
            self._marks()
            self._statements()
            self._early_returns()
            self._lists()
        return sorted(self.found.values(), key=lambda each: (each.start, each.end, each.replacement))


def mutants_of(root, folders):
    """All mutants of the sources in these folders, in the order of files and places."""
    found = []
    for folder in folders:
        for path in sorted((root / folder).iterdir()):
            if path.suffix in (".cc", ".h", ".def"):
                name = f"{folder}/{path.name}"
                found += Source(name, path.read_text(encoding="utf-8")).mutants()
    return found
