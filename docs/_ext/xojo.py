"""Colours for programs in the Xojo language."""

import re

from pygments.lexer import RegexLexer, words
from pygments.token import Comment, Keyword, Name, Number, Operator, String, Text


class XojoLexer(RegexLexer):
    name = "Xojo"
    flags = re.IGNORECASE | re.MULTILINE
    tokens = {
        "root": [
            (r"('|//).*?$", Comment),
            (r"\brem\b.*?$", Comment),
            (r'"[^"\n]*"', String),
            (r"&[hbo][0-9a-f]+|\d+(\.\d+)?(e[+-]?\d+)?", Number),
            (
                words(
                    "and as array assigns byref call case catch const dim do downto each else"
                    " elseif end exit false finally for function if is isa loop mod new next nil"
                    " not or print raise return select static step sub then to true try until"
                    " var wend while xor".split(),
                    prefix=r"\b",
                    suffix=r"\b",
                ),
                Keyword,
            ),
            (r"[^\W\d]\w*", Name),
            (r"[-+*/\\^=<>&.]", Operator),
            (r"[(),]", Text),
            (r"\s+", Text),
            (r".", Text),
        ]
    }


def setup(app):
    for language in ("xojo", "declaration"):
        app.add_lexer(language, XojoLexer)
