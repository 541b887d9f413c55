"""Makes a case smaller as long as something holds of it."""

from __future__ import annotations

import copy
import re
from collections.abc import Callable

from cases import Case, read_text, written

LINE = re.compile(r"[^\r\n]*(?:\r\n|\r|\n|$)")


def script_word(action: list[str]) -> int:
    """Where the script stands in an action, or 0."""
    return {"load": 1, "list": 2}.get(action[0], 0)


def shrunk(parts: list, holds: Callable[[list], bool]) -> list:
    """Fewer parts of which it still holds, by leaving out ever smaller stretches."""
    size = max(len(parts) // 2, 1)
    while parts:
        at = 0
        while at < len(parts):
            fewer = parts[:at] + parts[at + size :]
            if holds(fewer):
                parts = fewer
            else:
                at += size
        if size == 1:
            break
        size //= 2
    return parts


def minimised(case: Case, fails: Callable[[Case], bool]) -> Case:
    before = None
    while before != (before := case.lines()):
        for field in ("actions", "rules", "boxes", "inputs"):
            case = with_fewer(case, field, fails)
        for action in range(len(case.actions)):
            case = with_shorter_script(case, lambda of: of.actions[action], fails)
        for rule in range(len(case.rules)):
            case = with_shorter_script(case, lambda of: of.rules[rule][2], fails)
        if "c" not in case.flags:  # automation hosts have what their user has
            for left_out in ("tp", "p", "l"):
                case = changed(case, "flags", case.flags.translate(dict.fromkeys(map(ord, left_out))) or "-", fails)
            case = changed(case, "locale", "point", fails)
    return case


def changed(case: Case, field: str, value, fails: Callable[[Case], bool]) -> Case:
    other = copy.deepcopy(case)
    setattr(other, field, value)
    return other if other != case and fails(other) else case


def with_fewer(case: Case, field: str, fails: Callable[[Case], bool]) -> Case:
    def holds(parts: list) -> bool:
        other = copy.deepcopy(case)
        setattr(other, field, parts)
        return fails(other)

    fewer = shrunk(getattr(case, field), holds)
    other = copy.deepcopy(case)
    setattr(other, field, fewer)
    return other


def with_shorter_script(case: Case, action_of: Callable[[Case], list[str]], fails: Callable[[Case], bool]) -> Case:
    word = script_word(action_of(case))
    if not word:
        return case

    def with_parts(parts: list[str]) -> Case:
        other = copy.deepcopy(case)
        action_of(other)[word] = written("".join(parts))
        return other

    def shorten(parts: list[str]) -> list[str]:
        return shrunk(parts, lambda fewer: fails(with_parts(fewer)))

    lines = shorten([line for line in LINE.findall(read_text(action_of(case)[word])) if line])
    if sum(map(len, lines)) <= 60:
        lines = shorten(list("".join(lines)))
    return with_parts(lines)
