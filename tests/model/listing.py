"""The program function list: a script's statements, recorded by running it with every event answered at once."""

from __future__ import annotations

from catalogue import EVENTS, GET_DATA_SET, RECORDED, TAKEN_OVER_BY_LISTING, display_name
from interpreter import DATA_SET_FIELDS, Control, Engine
from values import Locale, as_text

UNUSED_SLOT = "    "
VALUE_TYPES = {"s": "r4", "l": "i4", "b": "bool", "t": "text"}
DATA_SET_ORDER = (
    "Height", "HelixAngle", "TipSpeed", "DataSetType",
    "LevellingFrom", "LevellingType", "LevellingTrigger", "LevellingHix", "LevellingTip",
)  # fmt: skip


class FunctionList:
    """Records what its private control raises; dialogs and notices go to `host`."""

    def __init__(self, host, locale: Locale, designed: bool = False) -> None:
        self.host = host
        self.locale = locale
        self.designed = designed
        self.loaded = False
        self.functions: list[tuple[int, str, list[str]]] | None = None
        self.control: Control | None = None

    def load(self, script: str, name: str, uid: int, version: int) -> bool:
        self.control = Control(self, self.locale, self.designed)
        self.functions = []
        self.loaded = self.control.load(script, name, uid, version)
        return self.loaded

    def create(self) -> bool:
        if not self.loaded:
            return False
        Engine.debug_options = 0
        return self.control.run()

    def record(self, kind: int, values: list) -> None:
        texts = [as_text((VALUE_TYPES[value_type], content), self.locale) for value_type, content in values]
        self.functions.append((kind, display_name(kind), [text for text in texts if text != UNUSED_SLOT]))

    # What the control's engine asks of its host.

    def event(self, name: str, values: list) -> None:
        if name == "GetDataSet":
            record = values[0][1]
            self.record(GET_DATA_SET, [[DATA_SET_FIELDS[field], record[field]] for field in DATA_SET_ORDER])
        elif name in RECORDED:
            kind, count = RECORDED[name]
            self.record(kind, values[:count])
        elif name == "FunctionCalled":
            values[1][1] = True
            self.host.pump()
        if name in TAKEN_OVER_BY_LISTING:
            assert EVENTS[name][-2].name == "tDLLExecute"
            values[-2][1] = False
        values[-1][1] = True

    def box(self, caption: str, style: int, text: str, help_file: str = "") -> int:
        return self.host.box(caption, style, text, help_file)

    def notice(self, name: str, *values) -> None:
        """Nobody listens to the private engine."""

    def trace(self, line: str) -> None:
        """Nobody reads the private engine's trace."""

    def pump(self) -> None:
        self.host.pump()
