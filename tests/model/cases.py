"""Cases: what a host does with one script, as text that this program and the native host both read.

    case NAME LOCALE FLAGS        LOCALE point or comma; FLAGS of the letters t (trace), p (parameter trace too),
                                  l (listener), d (designed member access), u (no operator), c (pumps not seen),
                                  b (the host binds late), or -
    limit N                       KeepGoing is answered with false from its N-th time within one `do` on
    on EVENT NTH ACTION ...       what the host does inside an event; NTH counts from 1 through the case, 0 is always
    box BUTTON                    the next message box is answered so; when none is left, with Yes
    input ok|cancel [TEXT]        the next input box; when none is left, cancelled
    do ACTION ...                 a call of the host, in order
    end

Actions: load TEXT NAME UID VERSION, run, flag, edit INDEX BITS, value NAME, memory, state, kind N, list TIMES TEXT,
sinks COUNT (so many look on from now); inside an event also answer ARGUMENT VALUE, result FIELD VALUE (of a data set).
An event is answered with success unless an answer says otherwise.

Texts are written $ and their characters, anything but visible ASCII as \\ and four hexadecimal digits. Values are
typed: i2:5, i4:5, r4:3f800000, r8:16 digits, b:1, $text.
"""

from __future__ import annotations

import re
from dataclasses import dataclass, field

from catalogue import EVENTS, display_name
from input_box import UNLIMITED, number_answer, text_answer
from interpreter import DATA_SET_FIELDS, Control, Engine
from listing import FunctionList
from values import LOCALES, AutomationError, Value, double_bits, single_bits, single_from_bits

YES, NO = 6, 7
OWN_CAPTION = ""
SINGLE_BOX, TEXT_BOX = 1, 2
RUNAWAY = -1
MOST_PUMPS_OF_A_LISTING = 120
PUMP = "Pump"
OWN_EVENT_ARGUMENTS = {name: [argument.name for argument in arguments] for name, arguments in EVENTS.items()}

# ---- writing and reading texts ---------------------------------------------------------------------------------

_NOT_PLAIN = re.compile(r"[^!-\[\]-~]")
_ESCAPED = re.compile(r"\\([0-9a-f]{4})")


def written(text: str) -> str:
    return "$" + _NOT_PLAIN.sub(lambda found: f"\\{ord(found[0]):04x}", text)


def read_text(word: str) -> str:
    return _ESCAPED.sub(lambda found: chr(int(found[1], 16)), word[1:])


def written_value(value: Value) -> str:
    kind, content = value
    if kind == "text":
        return written(content)
    if kind == "r4":
        return "r4:" + single_bits(content)
    if kind == "r8":
        return "r8:" + double_bits(content)
    if kind == "bool":
        return f"b:{content:d}"
    return f"{kind}:{content}"


def written_argument(argument_type: str, content) -> str:
    if argument_type == "t":
        return written(content)
    if argument_type == "s":
        return "r4:" + single_bits(content)
    if argument_type == "l":
        return f"i4:{content}"
    if argument_type == "b":
        return f"b:{content:d}"
    fields = (written_argument(DATA_SET_FIELDS[name], content[name]) for name in DATA_SET_FIELDS)
    return "{" + ",".join(fields) + "}"


def read_content(word: str):
    """The content of a typed value as an event argument has it."""
    if word.startswith("$"):
        return read_text(word)
    kind, content = word.split(":")
    if kind == "r4":
        return single_from_bits(content)
    return content == "1" if kind == "b" else int(content)


# ---- cases -----------------------------------------------------------------------------------------------------


@dataclass
class Case:
    name: str
    locale: str = "point"
    flags: str = "-"
    limit: int = 50
    rules: list[tuple[str, int, list[str]]] = field(default_factory=list)
    boxes: list[int] = field(default_factory=list)
    inputs: list[tuple[str, str | None]] = field(default_factory=list)
    actions: list[list[str]] = field(default_factory=list)

    def lines(self) -> list[str]:
        lines = [f"case {self.name} {self.locale} {self.flags}", f"limit {self.limit}"]
        lines += [f"on {event} {nth} {' '.join(action)}" for event, nth, action in self.rules]
        lines += [f"box {button}" for button in self.boxes]
        lines += [f"input {how}" + ("" if text is None else " " + written(text)) for how, text in self.inputs]
        lines += ["do " + " ".join(action) for action in self.actions]
        return [*lines, "end"]


def read_cases(lines) -> list[Case]:
    cases: list[Case] = []
    for line in lines:
        words = line.split()
        if not words or words[0] in ("end", "#"):
            continue
        if words[0] == "case":
            cases.append(Case(*words[1:4]))
            continue
        case = cases[-1]
        if words[0] == "limit":
            case.limit = int(words[1])
        elif words[0] == "on":
            case.rules.append((words[1], int(words[2]), words[3:]))
        elif words[0] == "box":
            case.boxes.append(int(words[1]))
        elif words[0] == "input":
            case.inputs.append((words[1], read_text(words[2]) if len(words) > 2 else None))
        elif words[0] == "do":
            case.actions.append(words[1:])
        else:
            raise ValueError(f"unknown line: {line}")
    return cases


# ---- the host of the model -------------------------------------------------------------------------------------


class ScriptedHost:
    """Does what a case says and writes down everything that it sees."""

    def __init__(self, case: Case) -> None:
        self.case = case
        self.locale = LOCALES[case.locale]
        self.log: list[str] = []
        self.boxes = iter(case.boxes)
        self.inputs = iter(case.inputs)
        self.counts: dict[str, int] = {}
        self.going = 0
        self.pumps = 0
        self.listing = False
        self.rules: dict[str, list[tuple[int, list[str]]]] = {}
        for event, nth, action in case.rules:
            self.rules.setdefault(event, []).append((nth, action))
        self.tracing = "t" in case.flags
        self.listening = "l" in case.flags
        self.unattended = "u" in case.flags
        self.counting = "c" not in case.flags
        self.control = Control(self, self.locale, "d" in case.flags)
        Engine.debug_options = 1 if "p" in case.flags else 0

    def play(self) -> list[str]:
        self.log.append(f"case {self.case.name}")
        for action in self.case.actions:
            self.pumps = self.going = 0
            self.act(action)
            self.log.append(f"pumps {self.pumps if self.counting else 0}")
        return self.log

    # -- actions --

    def act(self, action: list[str]) -> None:
        self.log.append("> " + action[0])
        try:
            result = self.perform(action)
        except AutomationError as error:
            result = f"! {error.number}"
        self.log.append(result)

    def perform(self, action: list[str]) -> str:
        name, *words = action
        control = self.control
        if name == "load":
            text, script_name = read_text(words[0]), read_text(words[1])
            return f"= b:{control.load(text, script_name, int(words[2]), int(words[3])):d}"
        if name == "run":
            return f"= b:{control.run():d}"
        if name == "flag":
            control.finish_loop_flag()
            return "="
        if name == "sinks":
            return "="
        if name == "edit":
            return f"= b:{control.edit(int(words[0]), single_from_bits(words[1])):d}"
        if name == "value":
            key = read_text(words[0])
            texts = (control.environment_variable(key), control.constant(key))
            return f"= {written(texts[0])} {written(texts[1])} {written_value(control.memory_value(key))}"
        if name == "memory":
            return self.written_memory()
        if name == "state":
            return f"= {control.script_from()} {written(control.file)} {control.uid} {control.version} 0"
        if name == "kind":
            return "= " + written(display_name(int(words[0])))
        assert name == "list"
        return self.list_functions(int(words[0]), read_text(words[1]))

    def written_memory(self) -> str:
        lines = [
            f"  {written(item.identifier)} {item.type} {written_value(item.initial)} {written_value(item.current)}"
            for item in self.control.engine.memory.items
        ]
        self.log += [f"= {len(lines)}", *lines]
        return "="

    def list_functions(self, times: int, script: str) -> str:
        functions = FunctionList(self, self.locale)
        self.listing = True
        self.log.append(f"= b:{functions.load(script, '', 1, 1):d}")
        try:
            for _ in range(times):
                try:
                    self.log.append(f"= b:{functions.create():d}")
                except AutomationError as error:
                    self.log.append(f"! {error.number}")
        finally:
            self.listing = False
        for kind, name, texts in functions.functions:
            self.log.append(" ".join([f"  {kind} {written(name)}", *map(written, texts)]))
        return "="

    # -- what the engine asks --

    def event(self, name: str, values: list) -> None:
        names = OWN_EVENT_ARGUMENTS[name]
        shown = [f"{key}={written_argument(*value)}" for key, value in zip(names, values)]
        self.log.append(f" e {name} {' '.join(shown)}")
        values[-1][1] = True
        if name == "KeepGoing":
            self.going += 1
            values[-1][1] = self.going < self.case.limit
        for action in self.due(name):
            if action[0] == "answer":
                values[names.index(action[1])][1] = read_content(action[2])
            elif action[0] == "result":
                values[0][1][action[1]] = read_content(action[2])
            else:
                self.act(action)

    def due(self, name: str) -> list[list[str]]:
        rules = self.rules.get(name)
        count = self.counts[name] = self.counts.get(name, 0) + 1
        return [action for nth, action in rules if nth in (0, count)] if rules else []

    def box(self, caption: str, style: int, text: str, help_file: str = "") -> int:
        if self.unattended:
            return YES if caption == OWN_CAPTION else NO
        self.log.append(f" m {written(caption)} {style} {written(help_file)} {written(text)}")
        return next(self.boxes, YES)

    def ask_number(self, caption: str, prompt: str, least: float, most: float, initial: Value):
        how, entry = self.ask(SINGLE_BOX, caption, prompt, least, most, initial)
        if how == "cancel":
            return initial, True
        return number_answer(initial, least, most, entry, self.locale), False

    def ask_text(self, caption: str, prompt: str, longest: float, initial: Value):
        how, entry = self.ask(TEXT_BOX, caption, prompt, UNLIMITED, longest, initial)
        if how == "cancel":
            return initial, True
        return text_answer(initial, longest, entry, self.locale), False

    def ask(self, kind: int, caption: str, prompt: str, least: float, most: float, initial: Value):
        if self.unattended:
            return "cancel", None
        limits = f"r4:{single_bits(least)} r4:{single_bits(most)} 1"
        self.log.append(f" i {kind} {written(caption)} {written(prompt)} {limits} {written_value(initial)}")
        return next(self.inputs, ("cancel", None))

    def notice(self, name: str, *values) -> None:
        if self.listening:
            shown = [written_value(value) if isinstance(value, tuple) else str(int(value)) for value in values]
            self.log.append(f" l {name} {' '.join(shown)}")

    def trace(self, line: str) -> None:
        if self.tracing:
            self.log.append(" t " + written(line))

    def pump(self) -> None:
        self.pumps += 1
        if not self.listing:
            for action in self.due(PUMP):
                self.act(action)
        elif self.pumps >= MOST_PUMPS_OF_A_LISTING:
            raise AutomationError(RUNAWAY)


def play(case: Case) -> list[str]:
    return ScriptedHost(case).play()
