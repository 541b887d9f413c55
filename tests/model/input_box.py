"""The rules of the component's own input box: what the operator's entry becomes."""

from __future__ import annotations

from values import LARGEST_SINGLE, AutomationError, Locale, Value, as_text, is_numeric_text, number_as_single, parsed

UNLIMITED = -1000000.0
LONGEST_UNLIMITED, LONGEST_TEXT = 1000000, 1024


def entered_number(text: str, locale: Locale) -> float:
    numeric, text = is_numeric_text(text, locale)
    if not numeric:
        return 0.0
    number = parsed(text, locale)
    try:
        return number_as_single(number)
    except AutomationError:
        return too_large_or_small(number)


def too_large_or_small(number) -> float:
    """A number beyond a single counts as the largest one, so that the range judges it; one below counts as 0."""
    if number.exponent + len(str(number.digits)) < 0:
        return 0.0
    return -LARGEST_SINGLE if number.negative else LARGEST_SINGLE


def corrected_number(text: str, least: float, most: float, locale: Locale) -> float:
    """The number that the box returns for an entry, zero allowed."""
    if least >= most:
        least, most = most, least
    number = entered_number(text, locale)
    return min(number, most) if number > most else max(number, least)


def number_answer(initial: Value, least: float, most: float, entry: str | None, locale: Locale) -> Value:
    """What OK returns; without an entry the text is the initial value's."""
    text = as_text(initial, locale) if entry is None else entry
    return "r4", corrected_number(text, least, most, locale)


def text_answer(initial: Value, longest: float, entry: str | None, locale: Locale) -> Value:
    """What OK returns: the entry as far as it can be typed, an initial value whole."""
    if entry is None:
        return "text", as_text(initial, locale)
    limit = LONGEST_TEXT if longest == LONGEST_UNLIMITED else round(longest)
    return "text", entry[:limit] if limit > 0 else entry
