"""Random cases. The same seed and number give the same case, whatever was generated before."""

from __future__ import annotations

import random
import re
import struct

from cases import PUMP, RUNAWAY, Case, play, written
from catalogue import EVENTS, INSTRUMENT, KEYWORDS

NAMES = ["Count", "n", "Height", "x y", "Title", "Unit", "\u00dcber", "a1", "LIMIT", "Flow_Rate", "e", "Loop"]
PLAIN_NUMBERS = ["0", "1", "2", "3", "5", "7", "10", "60", "100", "-1", "-5", "2.5", "0.5", "1.5", "72.25", "0.1"]
ODD_NUMBERS = [
    "+3", "-.5", ".5", "6.", "5-", "4+", "007", "1.50", "2E3", "1e-2", "1E20", "1E-05", "0.0001", "16777216",
    "16777217", "123456.789", "1234567", "12345678", "2147483647", "2147483648", "-2147483648", "32767", "32768",
    "3.402823E+38", "0.30000001", "-0", "0.0", "99999.995", "1e6", "1e7", "-1.5", "3.5", "&H1F", "&o17", "1E5",
]  # fmt: skip
RARE_NUMBERS = [
    "1E39", "1E-40", "1E400", "1e", "1.2.3", "--1", "1-2", "+", "-", ".", "$5", "1 5", "5e+-3", "&HG", "1E-46",
]  # fmt: skip
DECLARED_NUMBERS = [
    "1,5", "1.000,5", "1,000.5", "1,234", "1.234", "(5)", "( 7 )", "-(5)", ",5", "5,", ",", "-,5", "5,-", ",-5",
    "1,2,3", "\u20ac5", "$1,5", "5 -", "- 5", "+-5", "1,5-", "0,1E2",
]  # fmt: skip
WORDS = [
    "", " ", "    ", "ready", "Ready?", "a, b", "x)y", "(z", "one|two", "|", "5", "1.5", "1,5", "-3", "abc", "True",
    "false", "mm/s", "kPa", "\u00e9t\u00e9", "a=b", "k;l", "end:", "0", "64", "2E2", "&H10", "1E39", " 7 ",
    "\u4e2d", "10", "9", "B", "a",
]  # fmt: skip
EDITS = [0.0, 1.0, 2.0, -1.0, 0.5, 2.5, 3.0, 7.0, 100.0, -3.5, 1e10, 2147483520.0, -2147483648.0, 1e-3, 16777216.0]
RARE_EDITS = [float("inf"), float("-inf"), float("nan"), 3.4028234663852886e38, 1e-45]
FLAGS = ["-", "-", "-", "l", "l", "t", "tl", "tpl", "d", "dl", "u", "du"]
PLAIN_FLAGS = ["uc"]
LINE_ENDS = ["\r\n", "\r\n", "\n", "\r", "\n\r"]
TYPED = [
    "", "5", "2.5", "1,5", "-7", "abc", "1E39", "-1E39", "1E-40", "0", "a much longer text than that", "|",
    "99999999",
]  # fmt: skip

FLOW = [4, 5, 6, 7, 8, 9, 10, 11]
VALUES = [12, 13, 14, 15, 16]
OPERATOR = [17, 18, 19, 20, 21, 22, 52]
HOST = [kind for kind in KEYWORDS if kind not in FLOW + VALUES + OPERATOR]


def bits(number: float) -> str:
    return struct.pack(">f", number).hex()


class Theme:
    """Which kinds of statements the scripts of a case are made of: few, so that they meet each other, or all."""

    def __init__(self, rng: random.Random) -> None:
        kinds = VALUES + OPERATOR + HOST
        self.narrow = rng.random() < 0.5
        if self.narrow:
            kinds = rng.sample(VALUES, rng.randint(1, 3)) + rng.sample(OPERATOR + HOST, rng.randint(1, 3))
        self.kinds = kinds
        self.flow = rng.sample(FLOW, rng.randint(1, 3)) if self.narrow else FLOW
        self.variables = rng.choice([0.2, 0.5, 0.8])  # how often a value is a variable


class ScriptMaker:
    """One random script. Names are kept by what they stand for, so that most statements are right."""

    def __init__(self, rng: random.Random, theme: Theme) -> None:
        self.rng = rng
        self.theme = theme
        self.numbers: list[str] = []
        self.texts: list[str] = []
        self.constants: list[str] = []
        self.text_constants: list[str] = []
        self.environment = ["FINISH_LOOP_FLAG"]
        self.labels: list[str] = []
        self.used_kinds: set[int] = set()
        self.lines: list[str] = []
        self.fresh = 0

    # -- the whole --

    def make(self, length: int) -> str:
        rng = self.rng
        for _ in range(rng.randint(0, 6)):
            self.declare()
        subroutines = [self.new_name("Sub") for _ in range(rng.choice([0, 0, 1, 1, 2]))]
        end = self.new_name("End")
        self.labels += [end, *subroutines]
        while len(self.lines) < length:
            self.block(subroutines)
        self.lines.append(self.statement_text(4, [end]) if subroutines and rng.random() < 0.8 else "")
        for name in subroutines:
            self.lines.append(name + ":")
            for _ in range(rng.randint(0, 3)):
                self.lines.append(self.statement(rng.choice(self.theme.kinds)))
            if rng.random() < 0.9:
                self.lines.append(self.statement_text(6, []))
        self.lines.append(end + ":")
        for _ in range(rng.choice([0, 0, 1])):
            self.lines.append(self.statement(rng.choice(HOST)))
        return self.joined()

    def joined(self) -> str:
        rng = self.rng
        end = rng.choice(LINE_ENDS)
        lines = [self.surrounded(line) for line in self.lines]
        if rng.random() < 0.05:
            return "".join(line + rng.choice(LINE_ENDS) for line in lines)
        return end.join(lines) + (end if rng.random() < 0.5 else "")

    def surrounded(self, line: str) -> str:
        if self.rng.random() < 0.85:
            return line
        blank = self.rng.choice([" ", "\t", "  \t", "    "])
        return self.rng.choice([blank + line, line + blank, blank + line + blank])

    def block(self, subroutines: list[str]) -> None:
        rng = self.rng
        what = rng.random()
        if what < 0.52:
            self.lines.append(self.statement(rng.choice(self.theme.kinds)))
        elif what < 0.64:
            self.skip()
        elif what < 0.74:
            self.loop()
        elif what < 0.78:
            self.lines.append(self.statement(rng.choice(self.theme.flow)))
        elif what < 0.8:
            self.texts_as_numbers()
        elif what < 0.88 and subroutines:
            self.lines.append(self.statement_text(5, [rng.choice(subroutines)]))
        elif what < 0.94:
            self.declare()
        elif what < 0.955 and self.labels:
            self.lines.append(self.cased(rng.choice(self.labels)) + ":")  # often its second definition
        elif what < 0.975:
            self.lines.append(rng.choice(["", "; comment", ";VAR x", "   ", "\t; tabbed", ";:"]))
        else:
            self.lines.append(self.statement(rng.choice(VALUES + OPERATOR + HOST)))

    def loop(self) -> None:
        rng = self.rng
        counter = self.new_name("i")
        label = self.new_name("Again")
        self.numbers.append(counter)
        self.lines.append(f"VAR {counter}{rng.choice(['', ' = 0', ' = 1', '='])}")
        self.lines.append(label + ":")
        for _ in range(rng.randint(0, 2)):
            self.lines.append(self.statement(rng.choice(self.theme.kinds)))
        up = rng.random() < 0.8
        self.lines.append(self.statement_text(14 if up else 13, [counter]))
        bound = str(rng.randint(1, 4))
        kind, bound = rng.choice([(9, bound), (10, bound), (8, "-" + bound)]) if up else (8, "-" + bound)
        self.lines.append(self.statement_text(kind, [counter, bound, label]))
        self.labels.append(label)

    def skip(self) -> None:
        label = self.new_name("Skip")
        self.labels.append(label)
        kind = self.rng.choice([4, 7, 20, *[8, 9, 10, 11] * 3])
        parameters = [self.parameter(letter) for letter in KEYWORDS[kind][1][:-1]] + [label]
        self.lines.append(self.statement_text(kind, parameters))
        self.lines.append(self.statement(self.rng.choice(VALUES + HOST)))
        self.lines.append(label + ":")

    def texts_as_numbers(self) -> None:
        """Number variables that hold texts: compared, and then used as numbers."""
        rng = self.rng
        names = [self.new_name("held"), self.new_name("held")]
        self.numbers += names
        self.lines += [f"VAR {name}" for name in names]
        for name in names:
            self.lines.append(self.statement_text(12, [name, rng.choice([self.quoted, self.quoted, self.number])()]))
        label = self.new_name("Held")
        self.lines.append(self.statement_text(rng.choice([8, 9, 10, 11]), [*names, label]))
        self.lines.append(self.statement(rng.choice(HOST)))
        self.lines.append(label + ":")

    def new_name(self, stem: str) -> str:
        self.fresh += 1
        return f"{stem}{self.fresh}"

    # -- declarations --

    def declare(self) -> None:
        rng = self.rng
        name = rng.choice(NAMES) if rng.random() < 0.5 else self.new_name(rng.choice(NAMES))
        equals = rng.choice([" = ", "=", " =", "= ", "  =  ", "\t=\t"]) if rng.random() < 0.3 else " = "
        kind = rng.random()
        if kind < 0.35:
            self.lines.append(f"VAR {name}" + rng.choice(["", equals + self.declared_number()]))
            self.numbers.append(name)
        elif kind < 0.6:
            self.lines.append(f"VAR {name}{equals}{self.declared_text()}")
            self.texts.append(name)
        elif kind < 0.75:
            self.lines.append(f"CONST {name}{equals}{self.declared_number()}")
            self.constants.append(name)
        elif kind < 0.88:
            self.lines.append(f"CONST {name}{equals}{self.declared_text()}")
            self.text_constants.append(name)
        else:
            name = rng.choice([name, name, "FINISH_LOOP_FLAG", "Room"])
            self.lines.append(f"ENV {name}{equals}{rng.choice([*WORDS, *PLAIN_NUMBERS])}")
            self.environment.append(name)

    def declared_number(self) -> str:
        return self.rng.choice(DECLARED_NUMBERS) if self.rng.random() < 0.15 else self.number()

    def declared_text(self) -> str:
        return self.quoted() if self.rng.random() < 0.9 else self.rng.choice(["x", "ab", '"', '""', '"open', "k P"])

    # -- statements --

    def statement(self, kind: int) -> str:
        parameters = [self.parameter(letter) for letter in KEYWORDS[kind][1]]
        if kind == 22 and self.rng.random() < 0.8:
            parameters[1] = f'"{self.rng.choice(PLAIN_NUMBERS)}"'
        return self.statement_text(kind, parameters, kind)

    def statement_text(self, kind: int, parameters: list[str], odd: int = 0) -> str:
        rng = self.rng
        self.used_kinds.add(kind)
        keyword = KEYWORDS[kind][0]
        if rng.random() < 0.1:
            keyword = rng.choice([keyword.lower(), keyword.upper(), keyword.swapcase()])
        if not parameters and rng.random() < 0.4:
            return keyword
        comma = "," if rng.random() < 0.4 else rng.choice([", ", " , ", ",  "])
        text = f"{keyword}{rng.choice(['', '', '', ' ', '  '])}({comma.join(parameters)})"
        if odd and rng.random() < 0.03:
            text += rng.choice([" ; done", " words", ")", "  ", ",5)"])
        if odd and rng.random() < 0.02:
            text = text.replace(")", rng.choice(["", ",)", " )"]), 1)
        return text

    def parameter(self, letter: str) -> str:
        rng = self.rng
        if rng.random() < 0.004:
            return rng.choice(["", "nowhere", '"', self.any_name(), self.number(), self.quoted()])
        if letter == "A":
            letter = rng.choice("NT")
        if letter == "v":
            letter = rng.choice("nt")
        if letter == "n":
            return self.a_name(self.numbers, "VAR {} = 1")
        if letter == "t":
            return self.a_name(self.texts, 'VAR {} = "t"')
        if letter == "N":
            if rng.random() < self.theme.variables:
                return self.known(self.numbers + self.constants, self.number)
            return self.number()
        if letter == "T":
            if rng.random() < self.theme.variables:
                return self.known(self.texts + self.text_constants, self.quoted)
            return self.quoted()
        if letter == "L":
            if not self.labels or rng.random() < 0.1:
                self.labels.append(self.new_name("Later"))
                self.lines.append(self.labels[-1] + ":")
            return self.cased(rng.choice(self.labels))
        if rng.random() < 0.05:
            return "FINISH_LOOP_FLAG"
        return rng.choice([self.number, self.number, self.quoted, self.any_name])()

    def a_name(self, known: list[str], declaration: str) -> str:
        if not known:
            known.append(self.new_name("v"))
            self.lines.append(declaration.format(known[0]))
        return self.cased(self.rng.choice(known))

    def known(self, names: list[str], otherwise) -> str:
        return self.cased(self.rng.choice(names)) if names else otherwise()

    def any_name(self) -> str:
        everything = self.numbers + self.texts + self.constants + self.text_constants + self.environment
        defined = [label for label in self.labels if label + ":" in self.lines]
        return self.cased(self.rng.choice(everything + (self.labels if self.rng.random() < 0.02 else defined)))

    def cased(self, name: str) -> str:
        return self.rng.choice([name.lower(), name.upper()]) if self.rng.random() < 0.1 else name

    def number(self) -> str:
        rng = self.rng
        kind = rng.random()
        if kind < 0.6:
            return rng.choice(PLAIN_NUMBERS)
        if kind < 0.85:
            return rng.choice(ODD_NUMBERS)
        if kind < 0.99:
            places = rng.randint(0, 6)
            return f"{rng.uniform(-1, 1) * 10 ** rng.randint(0, 9):.{places}f}"
        return rng.choice(RARE_NUMBERS)

    def quoted(self) -> str:
        return f'"{self.rng.choice(WORDS)}"'


# ---- breaking scripts ------------------------------------------------------------------------------------------

STRANGE = list('"(),;:=|.\t -+&$') + ["VAR ", "CONST ", "ENV ", "\u00a0", "\n", '""', "x", "5"]
WHOLE_LINES = [
    "var Count = 0", "VAR\tTab = 1", "CONST Empty", "CONST Empty =", "()", "(5)", "Unknown(1)", "Goto", "Goto()",
    "Goto(,)", "Return(5)", "Goto(Nowhere)", "Info(a, b)", "<unknown>", "<unknown>()", "Twice:", "Twice:\nTwice:",
    ":", "Space :", "VAR", "ENV ", "VAR X = 5:", "AddTestVariable(1,2,3,4)", "AddTestVariable(1,2,3)",
    "Goto(+.)\n+:", "Goto(.)", "Goto(5)", "SCTestFull(" + ",".join("1" * 26) + ")", "Set(Count, )",
    'IfEqual(1, "a", End2)', "VAR = 5", "ENV = x", "Park() x", "EndTest)", 'VAR a"=" = 5', 'Info("a""b")',
    'Info("open)', "Park;", "Goto(End1,)", 'VAR Twin = 1\nVAR TWIN = "b"', 'Info ("x") ("y")',
    'TextCommand("c",FINISH_LOOP_FLAG,finish_loop_flag,,,,)', "Increment(,)", "MsgInfo()",
]  # fmt: skip


def broken(rng: random.Random, script: str) -> str:
    lines = re.split(r"(\r\n|\r|\n)", script)
    at = rng.randrange(0, len(lines), 2)
    line = lines[at]
    how = rng.random()
    if how < 0.45:
        lines.insert(at, rng.choice(WHOLE_LINES) + "\n")
    elif how < 0.6 and line:
        place = rng.randrange(len(line))
        lines[at] = line[:place] + line[place + 1 :]
    elif how < 0.85:
        place = rng.randint(0, len(line))
        lines[at] = line[:place] + rng.choice(STRANGE) + line[place:]
    elif how < 0.92:
        lines[at] = line[: rng.randint(0, len(line))]
    else:
        lines.insert(at, line + "\n")
    return "".join(lines)


# ---- cases -----------------------------------------------------------------------------------------------------


class CaseMaker:
    def __init__(self, seed: int, number: int, plain: bool = False) -> None:
        self.rng = random.Random(f"{seed}.{number}")
        self.plain = plain
        self.case = Case(f"{seed}.{number}")
        self.names = ["FINISH_LOOP_FLAG", ""]
        self.events: list[str] = ["FunctionCalled", "KeepGoing"]
        self.theme = Theme(self.rng)

    def make(self) -> Case:
        rng, case = self.rng, self.case
        case.locale = rng.choice(["point", "point", "comma"])
        case.flags = rng.choice(PLAIN_FLAGS if self.plain else FLAGS)
        case.limit = rng.choice([3, 10, 25, 40])
        if rng.random() < 0.05:
            case.actions.append(self.call())
        script = self.script(rng.choice([1, 3, 6, 10, 16]))
        if rng.random() < 0.15:
            case.actions.append(["list", str(rng.choice([0, 1, 1, 2])), written(script)])
        case.actions.append(self.load(script))
        for _ in range(rng.choice([0, 0, 0, 1, 2])):
            case.actions.append(self.call())
        for _ in range(rng.choice([1, 1, 1, 2, 2, 3])):
            case.actions.append(["run"])
            if rng.random() < 0.2:
                case.actions.append(self.call())
        if rng.random() < 0.1:
            case.actions += [self.load(self.script(3)), ["run"]]
        if not self.plain:
            case.actions.append(["memory"])
        else:
            case.actions += [["value", written(name)] for name in self.names[:6]]
        for _ in range(rng.choice([0, 0, 1, 1, 2, 3, 5])):
            self.rule()
        case.boxes = [rng.choice([6, 7, 7, 1, 2]) for _ in range(rng.randint(0, 4))]
        case.inputs = [self.input() for _ in range(rng.randint(0, 4))]
        if self.plain:
            self.onlookers()
        return case

    def script(self, length: int) -> str:
        rng = self.rng
        maker = ScriptMaker(rng, self.theme)
        script = maker.make(length)
        self.names += maker.numbers + maker.texts + maker.constants + maker.text_constants
        self.names += maker.environment + maker.labels
        for kind in sorted(maker.used_kinds):
            self.events += events_of(kind)
        self.events += ["VariableAdded", "ConstantAdded", "EnvironmentVariableAdded"]
        for _ in range(rng.choice([0, 0, 0, 0, 0, 0, 0, 1, 1, 2])):
            script = broken(rng, script)
        return script

    def load(self, script: str) -> list[str]:
        rng = self.rng
        name = written(rng.choice(["", "name", "a b"]))
        return ["load", written(script), name, str(rng.randint(-1, 2)), str(rng.randint(-2, 9))]

    def call(self) -> list[str]:
        rng = self.rng
        what = rng.choice(["flag", "edit", "edit", "edit", "value", "value", "state", "kind"])
        if what == "edit":
            number = rng.choice(RARE_EDITS) if rng.random() < 0.05 else rng.choice(EDITS)
            return ["edit", str(rng.randint(-1, 24) if rng.random() < 0.2 else rng.randint(0, 12)), bits(number)]
        if what == "value":
            return ["value", written(rng.choice(self.names))]
        if what == "kind":
            return ["kind", str(rng.randint(-2, 55))]
        return [what]

    def onlookers(self) -> None:
        """Further sinks come and go, between the host's calls and inside events."""
        rng, case = self.rng, self.case
        for _ in range(rng.choice([0, 0, 1, 2])):
            action = ["sinks", str(rng.randint(0, 3))]
            if rng.random() < 0.5:
                case.actions.insert(rng.randint(0, len(case.actions)), action)
            else:
                case.rules.append((rng.choice(self.events), rng.choice([0, 1, 2, 5]), action))

    def rule(self) -> None:
        rng = self.rng
        event = rng.choice(self.events + ([] if self.plain else [PUMP]))
        nth = rng.choice([0, 1, 1, 1, 2, 2, 3, 5])
        if rng.random() < 0.25 and any(argument.name == "tDLLExecute" for argument in EVENTS.get(event, [])):
            self.case.rules.append((event, nth, ["answer", "tDLLExecute", "b:0"]))
        if event == "GetDataSet" and rng.random() < 0.5:
            self.case.rules += [(event, nth, self.result()), (event, nth, ["answer", "tSucess", "b:0"])]
        for _ in range(rng.choice([1, 1, 2])):
            self.case.rules.append((event, nth, self.deed(event)))

    def deed(self, event: str) -> list[str]:
        rng = self.rng
        what = rng.random()
        published = EVENTS.get(event, [])
        arguments = [argument for argument in published if argument.by_reference]
        if event == "KeepGoing" and what < 0.65:
            return ["answer", "tSucess", "b:0"]  # never true, which would lift the limit
        if arguments and what < 0.3:
            return ["answer", "tSucess", rng.choice(["b:0", "b:0", "b:0", "b:1"])]
        if arguments and what < 0.65:
            argument = rng.choice(arguments)
            return ["answer", argument.name, self.content(argument.type)]
        if event == "GetDataSet" and what < 0.8:
            return self.result()
        if what < 0.85:
            return self.call()
        if what < 0.93:
            return self.load(self.script(rng.choice([0, 2, 5])))
        return ["run"]

    def result(self) -> list[str]:
        fields = [("TestResult", "i4:1"), ("Direction", "i4:-7"), ("Force", "r4:40490fdb")]
        return ["result", *self.rng.choice(fields)]

    def content(self, argument_type: str) -> str:
        rng = self.rng
        if argument_type == "b":
            return rng.choice(["b:0", "b:0", "b:1"])
        if argument_type == "l":
            return f"i4:{rng.choice([0, 1, -1, 6, 7, 2147483647])}"
        if argument_type == "s":
            return "r4:" + bits(rng.choice(EDITS))
        return written(rng.choice(WORDS))

    def input(self) -> tuple[str, str | None]:
        return self.rng.choice(["ok", "ok", "cancel"]), self.rng.choice([None, *TYPED])


def events_of(kind: int) -> list[str]:
    if kind in INSTRUMENT:
        return [INSTRUMENT[kind][0]]
    if kind in (28, 29):
        return ["GetDataSet"]
    if kind in (7,):
        return ["RequiredFinishLoopFlag"]
    keyword = KEYWORDS[kind][0]
    return [keyword, keyword] if keyword in EVENTS else []


def make_case(seed: int, number: int, plain_locale: str | None = None) -> Case:
    """The case of that number. Plain cases are for automation hosts, in the locale that their user has: they ask for
    nothing that only the engine's own host can see or do."""
    case = CaseMaker(seed, number, plain_locale is not None).make()
    if plain_locale:
        case.locale = plain_locale
        if number % 2:
            case.flags += "b"
        if f"! {RUNAWAY}" in play(case):  # nobody stops a listing without end
            case.actions = [action for action in case.actions if action[0] != "list"]
    return case
