"""Finds what can be mutated in a C++ source, and rewrites the source so that each mutant can be chosen while it runs.

Works on tokens. The sources are formatted: a binary operator stands between blanks, brackets of templates and signs of
numbers do not.
"""
import bisect
import dataclasses
import re

TOKEN = re.compile(r"""
      (?P<blank>\s+)
    | (?P<comment>//[^\n]*|/\*.*?\*/)
    | (?P<directive>^[ \t]*\#(?:[^\n\\]|\\.|\\\n)*)
    | (?P<text>"(?:[^"\\]|\\.)*"|'(?:[^'\\]|\\.)*')
    | (?P<number>(?:0[xX][0-9a-fA-F]+|(?:\d+\.\d*|\.\d+|\d+)(?:[eE][-+]?\d+)?)[a-zA-Z]*)
    | (?P<name>[A-Za-z_]\w*)
    | (?P<operator><<=|>>=|<=>|->\*|\+\+|--|->|<<|>>|<=|>=|==|!=|&&|\|\||[-+*/%&|^]=|::|.)
""", re.VERBOSE | re.DOTALL | re.MULTILINE)

COMPARISONS = {"<": ("Lt", "<=", ">="), "<=": ("Le", "<", ">"), ">": ("Gt", ">=", "<="), ">=": ("Ge", ">", "<")}
OPERATORS = {"==": ("Eq", "!="), "!=": ("Ne", "=="), "+": ("Plus", "-"), "-": ("Minus", "+"), "*": ("Times", "/"),
             "/": ("Over", "*"), "%": ("Rest", "/"), "&": ("BitAnd", "|"), "|": ("BitOr", "&"),
             "<<": ("ShiftLeft", ">>"), ">>": ("ShiftRight", "<<")}
VECTOR = {"Lt": "Le", "Le": "Lt", "Gt": "Ge", "Ge": "Gt", "Eq": "Ne", "Add": "Sub", "Sub": "Add", "Mul": "Add",
          "Div": "Mul", "And": "Or", "Or": "And", "Xor": "Or", "AndNot": "And", "Min": "Max", "Max": "Min",
          "MulAdd": "MulSub"}


@dataclasses.dataclass
class Token:
    kind: str
    text: str
    start: int

    @property
    def end(self):
        return self.start + len(self.text)


@dataclasses.dataclass
class Mutant:
    """One change: `plain` replaces the span in the source as it is."""
    file: str
    line: int
    source_line: str
    start: int
    end: int
    was: str
    plain: str
    id: int = -1
    at_run_time: bool = True  # can be chosen while the program runs

    @property
    def change(self):
        return f"{self.was} -> {self.plain}"


@dataclasses.dataclass
class Site:
    """A place with its mutants, and the edits (position, length, text) that let one of them be chosen."""
    mutants: list
    edits: object  # from the number of the first mutant to a list of edits


def tokenize(text):
    return [Token(m.lastgroup, m.group(), m.start()) for m in TOKEN.finditer(text)]


def other_number(text):
    """The number beside this one: 0 and 1 get the next, other fractions grow by an eighth."""
    match = re.fullmatch(r"(0[xX][0-9a-fA-F]+|[\d.]+(?:[eE][-+]?\d+)?)([a-zA-Z]*)", text)
    digits, suffix = match.groups()
    if digits[:2] in ("0x", "0X"):
        return f"{hex(int(digits, 16) + 1)}{suffix}"
    if "." in digits or "e" in digits:
        value = float(digits)
        grown = {0.0: 1.0, 1.0: 2.0}.get(value, value * 1.125)
        return f"{grown!r}{suffix}"
    return f"{int(digits) + 1}{suffix}"


class Finder:
    def __init__(self, name, text):
        self.name = name
        self.text = text
        self.lines = text.splitlines()
        self.line_starts = [0] + [m.end() for m in re.finditer("\n", text)]
        self.tokens = tokenize(text)
        self.sites = []

    def mutant(self, start, end, plain):
        line = bisect.bisect_right(self.line_starts, start)
        return Mutant(self.name, line, self.lines[line - 1].strip(), start, end, self.text[start:end], plain)

    def add(self, changes, edits):
        """changes: [(start, end, text in the plain source)]; edits: from a number to [(position, length, text)]."""
        self.sites.append(Site([self.mutant(*change) for change in changes], edits))

    def between_blanks(self, index):
        tokens = self.tokens
        return (0 < index < len(tokens) - 1 and tokens[index - 1].kind == "blank" and tokens[index + 1].kind == "blank")

    def neighbour(self, index, step):
        index += step
        while 0 <= index < len(self.tokens) and self.tokens[index].kind in ("blank", "comment"):
            index += step
        return self.tokens[index] if 0 <= index < len(self.tokens) else Token("blank", "", 0)

    def right_end(self, index, stops):
        """Where the right operand of the operator at `index` ends."""
        depth = 0
        last = self.tokens[index].end
        for token in self.tokens[index + 1:]:
            if token.kind in ("blank", "comment", "directive"):
                continue
            if token.text in ("(", "[", "{"):
                depth += 1
            elif token.text in (")", "]", "}"):
                if depth == 0:
                    break
                depth -= 1
            elif depth == 0 and token.text in stops:
                break
            last = token.end
        return last

    def find(self):
        for index, token in enumerate(self.tokens):
            if token.kind == "operator":
                self.find_operator(index, token)
            elif token.kind == "number":
                self.find_number(token)
            elif token.kind == "name":
                self.find_name(index, token)
        return self.sites

    def find_number(self, token):
        other = other_number(token.text)
        self.add([(token.start, token.end, other)],
                 lambda n: [(token.start, len(token.text), f"lysm::number<{n}>({token.text}, {other})")])
        if "_mm" in self.sites[-1].mutants[0].source_line:
            self.sites[-1].edits = lambda n: []  # instructions take constants only

    def find_operator(self, index, token):
        text = token.text
        if text == "!":
            following = self.neighbour(index, 1)
            self.add([(token.start, token.end, "")],
                     lambda n: [(token.start, 1, f"lysm::Not<{n}>{{}}->*")]) if following.text else None
        elif not self.between_blanks(index):
            return
        elif text in COMPARISONS:
            name, *others = COMPARISONS[text]
            if self.neighbour(index, -1).text == "template":
                return
            self.add([(token.start, token.end, other) for other in others],
                     lambda n: [(token.end, 0, f" lysm::{name}<{n}>{{}} {text}")])
        elif text in OPERATORS:
            name, other = OPERATORS[text]
            self.add([(token.start, token.end, other)],
                     lambda n: [(token.end, 0, f" lysm::{name}<{n}>{{}} {text}")])
        elif text in ("&&", "||"):
            name, other = ("And", "||") if text == "&&" else ("Or", "&&")
            stops = ("&&", "||", "?", ":", ",", ";") if text == "&&" else ("||", "?", ":", ",", ";")
            end = self.right_end(index, stops)
            self.add([(token.start, token.end, other)],
                     lambda n: [(token.end, 0, f" lysm::{name}<{n}>{{}} {text} [&] {{ return"), (end, 0, "; }")])
        elif text in ("+=", "-="):
            end = self.right_end(index, (";", ",", ")"))
            self.add([(token.start, token.end, "-=" if text == "+=" else "+=")],
                     lambda n: [(token.end, 0, f" lysm::summand<{n}>("), (end, 0, ")")])

    def find_name(self, index, token):
        if token.text in ("true", "false"):
            other = "false" if token.text == "true" else "true"
            self.add([(token.start, token.end, other)],
                     lambda n: [(token.start, len(token.text), f"lysm::number<{n}>({token.text}, {other})")])
            return
        before = self.text[max(0, token.start - 5):token.start]
        after = self.text[token.end:token.end + 80]
        if token.text in ("min", "max") and before == "std::":
            function, other = ("least", "max") if token.text == "min" else ("greatest", "min")
            chosen = re.match(r"<(\w+)>\(", after)
            start = token.start - 5
            length = token.end - start + (chosen.end() - 1 if chosen else 0)
            kind = f", {chosen.group(1)}" if chosen else ""
            self.add([(token.start, token.end, other)],
                     lambda n: [(start, length, f"lysm::{function}<{n}{kind}>")])
        elif token.text in VECTOR and before.endswith("hn::") and after.startswith("("):
            start = token.start - 4
            self.add([(token.start, token.end, VECTOR[token.text])],
                     lambda n: [(start, token.end - start, f"hnm::{token.text}<{n}>")])


def rewrite(text, sites):
    """The source with the sites' edits; the mutants have their numbers."""
    edits = []
    for site in sites:
        edits += site.edits(site.mutants[0].id)
    # Later positions first; what is inserted at one place keeps its order.
    for position, length, new in sorted(edits, key=lambda edit: (-edit[0], edit[1])):
        text = text[:position] + new + text[position + length:]
    return text
