"""The language itself: data memory, loading and running of scripts.

`Engine` reports everything to one host object:
    host.event(name, values)      values is a list of [type, content], changed in place by the host's answers
    host.box(caption, style, text, help_file) -> the button
    host.ask_number(caption, prompt, minimum, maximum, initial) -> (value, cancelled)
    host.ask_text(caption, prompt, longest, initial) -> (value, cancelled)
    host.notice(name, *values)    CommandStart and its relatives, CurrentValueChanged
    host.trace(line)
    host.pump()                   one processing of messages
"""

from __future__ import annotations

from catalogue import (
    ANY_ITEM, BLOCK_START, CALL, CONCAT, CONSTANT, DECREMENT, ENVIRONMENT, EVENTS, GET_DATA_SET, GET_DATA_SET_EX, GOTO,
    IF_EQUAL, IF_GREATER, IF_LESS, IF_NOT_EQUAL, IF_NOT_FINISH, INCREMENT, INFO, INPUT_NUMBER, INPUT_STRING,
    INSTRUMENT, KEYWORDS, KIND_OF_KEYWORD, LABEL, LABEL_OR_UNDECLARED, MATHS, MOST_PARAMETERS, MSG_ASK, MSG_INFO,
    MSG_INFO_EX, NUMBER, NUMBER_CONSTANT, RETURN, SET, SLOT_MASKS, TEXT, TEXT_CONSTANT, UNDECLARED, display_name,
)  # fmt: skip
from values import (
    INVALID_CALL, NO_SUCH_MEMBER, OBJECT_NOT_SET, OUT_OF_RANGE, ZERO, AutomationError, Locale, Value, add_integer,
    as_bool, as_long, as_single, as_text, compare, in_long_range, is_numeric_text, parsed, number_as_single,
)  # fmt: skip

NEXT, FAILED, JUMP, CALLED, RETURNED = range(5)
EXCLAMATION_OK, QUESTION_YES_NO, INFORMATION_OK = 48, 36, 64
YES = 6
PROGRAM = "Corvane"
FLAG_NAME = "FINISH_LOOP_FLAG"
BLANKS = " \t"


def fold(name: str) -> str:
    """Lower case, code unit by code unit."""
    if name.isascii():
        return name.lower()
    return "".join(low if len(low := char.lower()) == 1 else char for char in name)


# ---- data memory -----------------------------------------------------------------------------------------------


class Item:
    def __init__(self, memory: Memory) -> None:
        self.memory = memory
        self.identifier = ""
        self.type = UNDECLARED
        self.initial: Value = ZERO
        self.current: Value = ZERO

    def assign(self, value: Value) -> None:
        self.current = value
        self.memory.host.notice("CurrentValueChanged", value)


class Memory:
    def __init__(self, host) -> None:
        self.host = host
        self.items: list[Item] = []

    def add(self, identifier: str = "") -> Item:
        item = Item(self)
        item.identifier = identifier
        self.items.append(item)
        return item

    def find(self, name: str, mask: int) -> Item | None:
        wanted = fold(name)
        for item in self.items:
            if item.type & mask and fold(item.identifier) == wanted:
                return item
        return None

    def at(self, index: int) -> Item:
        if not 0 <= index < len(self.items):
            raise AutomationError(INVALID_CALL)
        return self.items[index]

    def reset(self) -> None:
        for item in self.items:
            item.current = item.initial


# ---- texts of lines --------------------------------------------------------------------------------------------


def split_at(text: str, separator: str) -> tuple[str, str]:
    """The token before the first separator outside quotes, without blanks around it, and what follows."""
    quoted = False
    for position, char in enumerate(text):
        if char == '"':
            quoted = not quoted
        elif char == separator and not quoted:
            return text[:position].strip(" "), text[position + 1 :]
    return text.strip(" "), ""


def inner_text(token: str) -> str:
    """What stands between the first and the last character, with line breaks for bars."""
    return token[1:-1].replace("|", "\r\n")


def is_quoted(token: str) -> bool:
    return token[:1] == '"' and token[-1:] == '"'


def split_lines(script: str) -> list[str]:
    if not script:
        return []
    return script.replace("\r\n", "\r").replace("\n", "\r").split("\r")


# ---- statements ------------------------------------------------------------------------------------------------


class Statement:
    def __init__(self, engine: Engine) -> None:
        self.engine = engine
        self.kind = 0
        self.slots: list[Item] = []

    def bind_line(self, line: str) -> bool:
        keyword, rest = split_at(line, "(")
        kind = KIND_OF_KEYWORD.get(fold(keyword), 0)
        if kind == 0:
            return False
        self.kind = kind
        return self.bind_parameters(split_at(rest, ")")[0])

    def bind_parameters(self, text: str) -> bool:
        engine = self.engine
        masks = SLOT_MASKS[self.kind]
        types: list[int] = []
        while text:
            token, text = split_at(text, ",")
            item, actual = self.bind_token(token)
            if len(self.slots) == MOST_PARAMETERS:
                raise AutomationError(OUT_OF_RANGE)
            self.slots.append(item)
            types.append(actual)
            if len(self.slots) > len(masks):
                break
        if len(self.slots) != len(masks):
            engine.syntax_error(f"{KEYWORDS[self.kind][0]} requires {len(masks)} parameters")
            accepted = False
        else:
            accepted = self.check_types(types, masks)
        if Engine.debug_options & 1:
            self.trace_parameters()
        return accepted

    def bind_token(self, token: str) -> tuple[Item, int]:
        memory = self.engine.memory
        if is_quoted(token):
            item = memory.add()
            item.type = TEXT_CONSTANT
            item.initial = ("text", inner_text(token))
            return item, TEXT_CONSTANT
        numeric, token = is_numeric_text(token, self.engine.locale)
        if numeric:
            item = memory.add()
            item.type = NUMBER_CONSTANT
            item.initial = self.engine.literal_number(token)
            return item, NUMBER_CONSTANT
        found = memory.find(token, ANY_ITEM)
        if found:
            return found, found.type
        item = memory.add(token)
        item.initial = ("i2", -1)
        return item, UNDECLARED

    def check_types(self, types: list[int], masks: list[int]) -> bool:
        for position, (actual, mask) in enumerate(zip(types, masks), 1):
            if actual == UNDECLARED:
                if mask != LABEL:
                    self.engine.syntax_error("Undeclared identifier")
                    return False
            elif actual & mask != actual:
                self.engine.syntax_error(f"Incorrect parameter type: {position}")
                return False
        return True

    def trace_parameters(self) -> None:
        for item in self.slots:
            if item.identifier:
                self.engine.host.trace("      Identifier: " + item.identifier)
            else:
                self.engine.host.trace("            Data: " + as_text(item.initial, self.engine.locale))

    def item(self, index: int) -> Item:
        if index < len(self.slots):
            return self.slots[index]
        raise AutomationError(OBJECT_NOT_SET if index < MOST_PARAMETERS else OUT_OF_RANGE)

    def value(self, index: int) -> Value:
        return self.item(index).current


# ---- data sets -------------------------------------------------------------------------------------------------

DATA_SET_FIELDS = {
    "HelixAngle": "s", "TipSpeed": "s", "Height": "s", "Force": "s", "SampleDelta": "s", "SampleType": "l",
    "DataSetType": "l", "TestResult": "l", "Direction": "l", "LevellingFrom": "l", "LevellingType": "l",
    "LevellingTrigger": "s", "LevellingHix": "s", "LevellingTip": "s",
}  # fmt: skip


def new_data_set() -> dict[str, float]:
    record = {name: 0.0 if kind == "s" else 0 for name, kind in DATA_SET_FIELDS.items()}
    record["Direction"] = 3
    return record


# ---- the engine ------------------------------------------------------------------------------------------------


class Engine:
    debug_options = 0  # one word for all engines

    def __init__(self, host, locale: Locale, designed: bool = False) -> None:
        self.host = host
        self.locale = locale
        self.designed = designed
        self.memory = Memory(host)
        self.statements: list[Statement] = []
        self.finish_flag: Item | None = None
        self.line = 0
        self.errors = 0
        self.loading = False
        self.running = False
        self.stop = False
        self.counter = 0
        self.calls: list[int] = []
        self.data_set = new_data_set()

    # -- loading --

    def syntax_error(self, message: str) -> None:
        self.errors += 1
        if self.errors == 1:
            self.host.box(f"Syntax Error on Line {self.line}", EXCLAMATION_OK, message)

    def literal_number(self, text: str) -> Value:
        return "r4", number_as_single(parsed(text, self.locale))

    def load(self, script: str) -> bool:
        if self.loading:
            raise AutomationError(INVALID_CALL)
        self.loading = True
        try:
            return self.load_lines(split_lines(script))
        finally:
            self.loading = False

    def load_lines(self, lines: list[str]) -> bool:
        self.host.trace(f"Creating command list from {len(lines)} lines")
        self.line = 0
        self.errors = 0
        self.memory = Memory(self.host)
        self.statements = []
        self.finish_flag = self.memory.add(FLAG_NAME)
        self.finish_flag.initial = ZERO
        self.finish_flag.type = ENVIRONMENT
        try:
            for self.line, line in enumerate(lines):
                line = line.strip(BLANKS)
                if not self.load_line(line):
                    self.syntax_error(f"Invalid input:\r\n\r\n'{line}'")
                    return False
        except AutomationError:
            return False
        self.line = len(lines)
        for item in self.memory.items:
            if item.type == UNDECLARED:
                self.syntax_error("Undefined Label: " + item.identifier)
                return False
        return True

    def load_line(self, line: str) -> bool:
        where = f"File Line: {self.line}:   "
        if line.startswith(";"):
            self.host.trace(f"{where}Comment Text: '{line}'")
            return True
        if not line:
            self.host.trace(where + "Blank")
            return True
        self.host.trace(f"{where}Script Text: '{line}'")
        if line.endswith(":"):
            return self.load_label(line)
        if line.startswith("VAR "):
            return self.load_variable(line)
        if line.startswith("CONST "):
            return self.load_constant(line)
        if line.startswith("ENV "):
            return self.load_environment(line)
        return self.load_statement(line)

    def load_label(self, line: str) -> bool:
        self.host.trace("   o Line is a Label")
        name = line[:-1]
        item = self.memory.find(name, LABEL_OR_UNDECLARED)
        if item and item.type != UNDECLARED:
            self.syntax_error("Duplicate Lable Defined: " + name)
            return True
        if not item:
            item = self.memory.add(name)
        item.type = LABEL
        item.initial = ("i4", len(self.statements))
        return True

    def load_variable(self, line: str) -> bool:
        self.host.trace("   o Line is a Variable")
        name, value = split_declaration(line[4:])
        item = self.memory.add(name)
        if not value:
            item.type = NUMBER
        else:
            numeric, value = is_numeric_text(value, self.locale)
            if numeric:
                item.type = NUMBER
                item.initial = self.literal_number(value)
            else:
                item.initial = ("text", inner_text(value))
                item.type = TEXT
        self.declared("VariableAdded", item)
        return True

    def load_constant(self, line: str) -> bool:
        self.host.trace("   o Line is a Constant")
        name, value = split_declaration(line[6:])
        item = self.memory.add(name)
        if not value:
            self.declared("ConstantAdded", item)
            return False
        numeric, value = is_numeric_text(value, self.locale)
        if numeric:
            item.type = NUMBER_CONSTANT
            item.initial = self.literal_number(value)
        else:
            item.initial = ("text", inner_text(value))
            item.type = TEXT_CONSTANT
        self.declared("ConstantAdded", item)
        return True

    def load_environment(self, line: str) -> bool:
        self.host.trace("   o Line is a Constant")
        name, value = split_declaration(line[4:])
        item = self.memory.find(name, ENVIRONMENT)
        if not item:
            item = self.memory.add(name)
            item.type = ENVIRONMENT
        item.initial = ("text", value)
        self.declared("EnvironmentVariableAdded", item)
        return True

    def load_statement(self, line: str) -> bool:
        self.host.trace("   o Line is a Keyword")
        statement = Statement(self)
        if not statement.bind_line(line):
            return False
        self.statements.append(statement)
        return True

    def declared(self, event: str, item: Item) -> None:
        self.raise_event(event, item.identifier, as_text(item.initial, self.locale), False)

    # -- running --

    def raise_event(self, name: str, *contents) -> list:
        """Raises an event; the result holds the contents as the host left them."""
        values = [[argument.type, content] for argument, content in zip(EVENTS[name], contents)]
        self.host.event(name, values)
        return [content for _, content in values]

    def run(self) -> bool:
        if self.running:
            raise AutomationError(INVALID_CALL)
        self.running = True
        try:
            return self.run_statements()
        finally:
            self.running = False

    def run_statements(self) -> bool:
        self.stop = False
        self.memory.reset()
        self.counter = 0
        going = True
        while going and not self.stop:
            if not 0 <= self.counter < len(self.statements):
                raise AutomationError(OUT_OF_RANGE)
            statement = self.statements[self.counter]
            self.host.trace(f"Running Command: {self.counter} - {display_name(statement.kind)}")
            self.host.notice("CommandStart", self.counter)
            result, target = self.execute(statement)
            going = self.apply(result, target, statement)
            [answer] = self.raise_event("KeepGoing", False)
            self.stop = not answer
            self.host.notice("CommandComplete", self.counter, result)
            self.host.pump()
        result = not self.stop
        self.host.trace(f"ExecuteList Result: {result}")
        self.host.notice("ScriptComplete", result)
        return result

    def apply(self, result: int, target: int, statement: Statement) -> bool:
        """Moves the program counter; false when the run ends here."""
        going = True
        if result == FAILED:
            name = display_name(statement.kind)
            self.host.trace(f"ERROR (ExecuteList) - Command Failed: Address {self.counter} - {name}")
            self.host.notice("CommandError", self.counter, result)
            going = False
        elif result == JUMP:
            self.counter = in_long_range(target - 1)
        elif result == CALLED:
            self.calls.append(self.counter + 1)
            self.counter = in_long_range(target - 1)
        elif result == RETURNED:
            if self.calls:
                target = self.calls.pop()
            else:
                going = False
            self.counter = in_long_range(target - 1)
        self.counter = in_long_range(self.counter + 1)
        return going and self.counter < len(self.statements)

    def execute(self, statement: Statement) -> tuple[int, int]:
        """Runs one statement: its result and the target of its jump."""
        kind = INFO if statement.kind == BLOCK_START else statement.kind
        _, flag, _ = self.raise_event("FunctionCalled", kind, True, False)
        if kind in INSTRUMENT:
            return self.execute_instrument(kind, statement), self.counter
        if kind in (GET_DATA_SET, GET_DATA_SET_EX):
            return self.execute_data_set(kind, statement), self.counter
        return self.execute_built_in(kind, statement, flag)

    def execute_instrument(self, kind: int, statement: Statement) -> int:
        event, constants = INSTRUMENT[kind]
        arguments = EVENTS[event][:-1]
        taken = len(arguments) - len(constants)
        contents = [
            self.convert(statement.value(position), argument.type)
            for position, argument in enumerate(arguments[:taken])
        ]
        *_, success = self.raise_event(event, *contents, *constants, False)
        return NEXT if success else FAILED

    def convert(self, value: Value, argument_type: str):
        rule = {"s": as_single, "l": as_long, "t": as_text, "b": as_bool}[argument_type]
        return rule(value, self.locale)

    def execute_data_set(self, kind: int, statement: Statement) -> int:
        record = self.data_set
        for position, field in enumerate(("HelixAngle", "TipSpeed", "Height", "DataSetType")):
            record[field] = self.convert(statement.value(position), DATA_SET_FIELDS[field])
        record["TestResult"] = 0
        if kind == GET_DATA_SET:
            record["LevellingType"] = 0
        else:
            levelling = ("LevellingFrom", "LevellingType", "LevellingTrigger", "LevellingHix", "LevellingTip")
            for position, field in enumerate(levelling, 4):
                record[field] = self.convert(statement.value(position), DATA_SET_FIELDS[field])
        _, success = self.raise_event("GetDataSet", record, False)
        self.data_set = new_data_set()
        return NEXT if success else FAILED

    def execute_built_in(self, kind: int, statement: Statement, flag: bool) -> tuple[int, int]:
        here = self.counter
        value, item, locale = statement.value, statement.item, self.locale

        def text(index: int) -> str:
            return as_text(value(index), locale)

        def single(index: int) -> float:
            return as_single(value(index), locale)

        def long(index: int) -> int:
            return as_long(value(index), locale)

        def outcome(succeeded: bool) -> tuple[int, int]:
            return (NEXT if succeeded else FAILED), here

        if kind == GOTO:
            return JUMP, long(0)
        if kind == CALL:
            return CALLED, long(0)
        if kind == RETURN:
            return RETURNED, here
        if kind == IF_NOT_FINISH:
            return self.execute_if_not_finish(statement)
        if kind in (IF_GREATER, IF_LESS, IF_NOT_EQUAL, IF_EQUAL):
            order = compare(value(0), value(1), locale)
            holds = {IF_GREATER: order > 0, IF_LESS: order < 0, IF_NOT_EQUAL: order != 0, IF_EQUAL: order == 0}[kind]
            return (JUMP, long(2)) if holds else (NEXT, here)
        if kind == SET:
            item(0).assign(value(1))
            return NEXT, here
        if kind in (INCREMENT, DECREMENT):
            item(0).assign(add_integer(value(0), 1 if kind == INCREMENT else -1, locale))
            return NEXT, here
        if kind == CONCAT:
            item(0).assign(("text", text(1) + text(2)))
            return NEXT, here
        if kind == MATHS:
            arguments = [text(0)] + [single(index) for index in range(2, 6)]
            *_, answer, success = self.raise_event("MathsFunction", *arguments, 0.0, False)
            if success:
                item(1).assign(("r4", answer))
            return outcome(success)
        if kind == INFO:
            _, success = self.raise_event("Info", text(0), False)
            return outcome(success)
        if kind == INPUT_NUMBER:
            arguments = [text(0), single(2), single(3), single(1)]
            *_, flag, success = self.raise_event("InputNumber", *arguments, flag, False)
            return outcome(self.ask(statement, self.ask_number) if flag else success)
        if kind == INPUT_STRING:
            return outcome(self.execute_input_string(statement, flag))
        if kind == MSG_ASK:
            _, _, flag, _ = self.raise_event("MsgAsk", text(0), 0, flag, False)
            if flag and self.host.box(PROGRAM, QUESTION_YES_NO, text(0)) == YES:
                return JUMP, long(1)
            return NEXT, here
        if kind == MSG_INFO:
            if flag:
                _, flag, _ = self.raise_event("MsgInfo", text(0), flag, False)
                if flag:
                    self.host.box(PROGRAM, INFORMATION_OK, text(0))
            return NEXT, here
        assert kind == MSG_INFO_EX
        if flag:
            _, _, flag, _ = self.raise_event("MsgInfoEx", text(0), long(1), flag, False)
            if flag:
                self.host.box("64", long(1), text(0), PROGRAM)
        return NEXT, here

    def execute_if_not_finish(self, statement: Statement) -> tuple[int, int]:
        if not self.designed:
            raise AutomationError(NO_SUCH_MEMBER)
        if as_bool(self.finish_flag.current, self.locale):
            self.finish_flag.assign(("bool", False))
            return NEXT, self.counter
        prompt = as_text(statement.value(0), self.locale)
        _, success = self.raise_event("RequiredFinishLoopFlag", prompt, False)
        return (JUMP if success else FAILED), as_long(statement.value(1), self.locale)

    def execute_input_string(self, statement: Statement, flag: bool) -> bool:
        def arguments() -> list:
            values = [self.convert(statement.value(index), kind) for index, kind in ((0, "t"), (2, "l"), (1, "t"))]
            return [*values, flag, False]

        _, _, _, flag, _ = self.raise_event("InputString", *arguments())
        if not flag:
            return True
        _, _, answer, flag, _ = self.raise_event("InputString", *arguments())
        if flag:
            return self.ask(statement, self.ask_text)
        statement.item(1).assign(("text", answer))
        return True

    def ask(self, statement: Statement, ask_once) -> bool:
        while True:
            value, cancelled = ask_once(statement)
            statement.item(1).assign(value)
            if not cancelled:
                return True
            question = "Are you sure you want to cancel the Script?"
            if self.host.box("", QUESTION_YES_NO, question) == YES:
                return False

    def ask_number(self, statement: Statement) -> tuple[Value, bool]:
        prompt = as_text(statement.value(0), self.locale)
        least, most = (as_single(statement.value(index), self.locale) for index in (2, 3))
        return self.host.ask_number("Enter Number", prompt, least, most, statement.value(1))

    def ask_text(self, statement: Statement) -> tuple[Value, bool]:
        prompt = as_text(statement.value(0), self.locale)
        longest = as_single(statement.value(2), self.locale)
        return self.host.ask_text("Enter String", prompt, longest, statement.value(1))


def split_declaration(rest: str) -> tuple[str, str]:
    name, value = split_at(rest.strip(BLANKS), "=")
    return name.strip(BLANKS), value.strip(BLANKS)


# ---- the facade ------------------------------------------------------------------------------------------------


class Control:
    """What a host holds: one engine and the fields of its last load."""

    def __init__(self, host, locale: Locale, designed: bool = False) -> None:
        self.engine = Engine(host, locale, designed)
        self.file = ""
        self.uid = 0
        self.version = 0

    def load(self, script: str, name: str, uid: int, version: int) -> bool:
        self.file, self.uid, self.version = name, uid, version
        return self.engine.load(script)

    def run(self) -> bool:
        return self.engine.run()

    def script_from(self) -> int:
        return 1 if self.uid >= 1 else 0

    def finish_loop_flag(self) -> None:
        if self.engine.finish_flag is None:
            raise AutomationError(OBJECT_NOT_SET)
        self.engine.finish_flag.assign(("bool", True))

    def find_value(self, name: str, mask: int) -> Value:
        item = self.engine.memory.find(name, mask)
        return item.initial if item else ("text", "")

    def environment_variable(self, name: str) -> str:
        return as_text(self.find_value(name, ENVIRONMENT), self.engine.locale)

    def constant(self, name: str) -> str:
        return as_text(self.find_value(name, CONSTANT), self.engine.locale)

    def memory_value(self, name: str) -> Value:
        return self.find_value(name, ANY_ITEM)

    def edit(self, index: int, number: float) -> bool:
        item = self.engine.memory.at(index)
        item.initial = ("r4", number)
        item.assign(("r4", number))
        return True
