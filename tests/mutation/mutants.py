"""What small changes to C++ sources there are: the mutants of a file, found in its text.

The sources are laid out by clang-format, which is relied on: a binary operator has blanks around it, the bracket of a
template has none, a statement begins on a line of its own.
"""

import dataclasses
import re


@dataclasses.dataclass(frozen=True)
class Mutant:
    """One change: in `file`, the characters from `start` to `end` become `text`."""

    file: str
    kind: str
    start: int
    end: int
    text: str

    def apply(self, source):
        return source[: self.start] + self.text + source[self.end :]

    def line(self, source):
        return source.count("\n", 0, self.start) + 1

    def before(self, source):
        """The changed lines as they stand, on one line."""
        return " ".join(source[slice(*self._lines(source))].split())

    def after(self, source):
        """The same lines once changed."""
        first, last = self._lines(source)
        return " ".join((source[first : self.start] + self.text + source[self.end : last]).split())

    def _lines(self, source):
        first = source.rfind("\n", 0, self.start) + 1
        last = source.find("\n", self.end)
        return first, len(source) if last < 0 else last


# A piece of text that is no code: a comment, a string, a character, a line of the preprocessor.
_NO_CODE = re.compile(
    r"//[^\n]*|/\*.*?\*/|\"(?:\\.|[^\"\\\n])*\"|(?<![0-9A-Fa-f])'(?:\\.|[^'\\\n])'|^[ \t]*#[^\n]*", re.DOTALL | re.MULTILINE
)

_SWAPS = {
    "border": {"<": "<=", "<=": "<", ">": ">=", ">=": ">"},
    "condition": {"==": "!=", "!=": "==", "&&": "||", "||": "&&"},
    "arithmetic": {"+": "-", "-": "+", "*": "/", "/": "*", "+=": "-=", "-=": "+=", "*=": "/=", "/=": "*="},
}
_OPERATOR = re.compile(r"(?<=\s)(<=|>=|==|!=|&&|\|\||\+=|-=|\*=|/=|[-+*/<>])(?=\s)")
_BRANCH = re.compile(r"\b(?:if|while) \(")
_NUMBER = re.compile(r"(?<![\w.])(?:0x[0-9A-Fa-f']+|[0-9][0-9']*(?:\.[0-9]+)?(?:[eE][-+]?[0-9]+)?)([uUlLfF]*)(?![\w.])")
_TRUTH = re.compile(r"\b(true|false)\b")
# What is no statement to delete: it gives a name, or the compiler would refuse what is left.
_NAMES = re.compile(
    r"(?:using|namespace|class|struct|enum|constexpr|static|static_assert|const|template|case|default|else|auto)\b"
    r"|return [^;]|[)}\]:]"
)


def _blanked(source):
    """The source with everything that is no code replaced by blanks, so that places stay."""
    return _NO_CODE.sub(lambda found: re.sub(r"[^\n]", " ", found.group()), source)


def _closing(code, opening):
    """Where the bracket that opens at `opening` is closed."""
    depth = 0
    for at in range(opening, len(code)):
        depth += {"(": 1, ")": -1}.get(code[at], 0)
        if depth == 0:
            return at
    raise ValueError("a bracket stays open")


def _operators(file, code):
    for found in _OPERATOR.finditer(code):
        for kind, swaps in _SWAPS.items():
            if found.group() in swaps:
                yield Mutant(file, kind, found.start(), found.end(), swaps[found.group()])


def _branches(file, code):
    for found in _BRANCH.finditer(code):
        first = found.end()
        last = _closing(code, first - 1)
        if ";" not in code[first:last]:
            yield Mutant(file, "condition", first, last, "!(" + code[first:last] + ")")


def _constants(file, code):
    for found in _NUMBER.finditer(code):
        suffix = found.group(1)
        digits = found.group()[: len(found.group()) - len(suffix)].replace("'", "")
        if "." in digits or ("e" in digits.lower() and not digits.startswith("0x")):
            text = repr(2.0 * float(digits)) if float(digits) else "1.0"
        else:
            octal = digits.startswith("0") and digits.isdigit() and len(digits) > 1
            text = "0%o" % (int(digits, 8) + 1) if octal else str(int(digits, 0) + 1)
        yield Mutant(file, "constant", found.start(), found.end(), text + suffix)
    for found in _TRUTH.finditer(code):
        yield Mutant(file, "constant", found.start(), found.end(), "false" if found.group() == "true" else "true")


def _statements(file, code):
    """Statements that end on a line of their own, from the end of what stands before them."""
    for found in re.finditer(r";[ \t]*$", code, re.MULTILINE):
        end = found.start() + 1
        start = max(code.rfind(mark, 0, end - 1) for mark in ";{}") + 1
        start += len(code[start:end]) - len(code[start:end].lstrip())
        text = code[start:end]
        isWhole = text.count("(") == text.count(")") and text != ";"
        if isWhole and code.count("{", 0, start) > code.count("}", 0, start) and not _NAMES.match(text):
            yield Mutant(file, "statement", start, end, ";")


def mutantsOf(file, source):
    """Every mutant of a source, in the order of their places."""
    code = _blanked(source)
    found = [m for make in (_operators, _branches, _constants, _statements) for m in make(file, code)]
    return sorted(found, key=lambda mutant: (mutant.start, mutant.kind, mutant.text))
