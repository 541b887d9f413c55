"""Values of the script language and the rules by which they are converted, added and compared.

A value is a pair (type, content). The types are
    'i2'    16-bit integer        'i4'   32-bit integer
    'r4'    single                'r8'   double
    'text'  str of UTF-16 code units, one character a unit
    'bool'  bool
Floats are kept as Python floats; a single is a float that has been rounded to 32 bits.
"""

from __future__ import annotations

import math
import re
import struct
from dataclasses import dataclass
from decimal import ROUND_HALF_UP, Context
from fractions import Fraction

Value = tuple[str, object]

ZERO: Value = ("i2", 0)
EMPTY_TEXT: Value = ("text", "")
LARGEST_SINGLE = struct.unpack("<f", b"\xff\xff\x7f\x7f")[0]
LEAST_SINGLE = 2.0**-149

INVALID_CALL = 5
OVERFLOW = 6
OUT_OF_RANGE = 9
TYPE_MISMATCH = 13
OBJECT_NOT_SET = 91
NO_SUCH_MEMBER = 438


class AutomationError(Exception):
    """A run-time error; `number` is what the host sees."""

    def __init__(self, number: int) -> None:
        super().__init__(f"automation error {number}")
        self.number = number


@dataclass(frozen=True)
class Locale:
    decimal: str
    group: str
    currency: str


POINT = Locale(".", ",", "$")
COMMA = Locale(",", ".", "\u20ac")
LOCALES = {"point": POINT, "comma": COMMA}


# ---- singles ---------------------------------------------------------------------------------------------------


def round_single(number: float) -> float:
    """The nearest single; infinite when the number is beyond the range of one."""
    try:
        return struct.unpack("<f", struct.pack("<f", number))[0]
    except OverflowError:
        return math.copysign(math.inf, number)


def single_bits(number: float) -> str:
    return struct.pack(">f", number).hex()


def single_from_bits(bits: str) -> float:
    return struct.unpack(">f", bytes.fromhex(bits))[0]


def double_bits(number: float) -> str:
    return struct.pack(">d", number).hex()


# ---- numbers in texts ------------------------------------------------------------------------------------------


@dataclass(frozen=True)
class Number:
    """digits * 10 ** exponent with a sign, as read from a text; `plain` numbers (&H, &O) have no exponent or sign."""

    negative: bool
    digits: int
    exponent: int
    plain: bool = False


WHITE = " \t\n\v\f\r\u0085\u00a0"
PLAIN = re.compile(r"&(?:[hH]([0-9a-fA-F]+)|[oO]([0-7]+))")


def parse_number(text: str, locale: Locale) -> Number | None:
    """Reads a text as the platform's general numeric test does; None when it is no number.

    How lenient the platform is (marks in any order in front, group marks anywhere behind the first digit or point,
    marks behind as often as one likes) is held to its own routines by the tests of the value rules; here it is needed
    only so that odd texts do not hide other differences.
    """
    at = 0
    seen: set[str] = set()
    while at < len(text) and (text[at] in WHITE or (text[at] in "+-(" + locale.currency and text[at] not in seen)):
        seen.add(text[at])
        at += 1
    if text.startswith("&", at):
        found = PLAIN.match(text, at)
        if not found or locale.currency in seen:
            return None
        number = int(found[1], 16) if found[1] else int(found[2], 8)
        digits, exponent, at = str(number), 0, found.end()
        marks = WHITE
    else:
        read = parse_decimal(text, at, locale, locale.currency not in seen)
        if read is None:
            return None
        digits, exponent, at = read
        marks = WHITE + locale.group + locale.currency
    negative = "-" in seen
    closed = False
    for char in text[at:]:
        if char == "-" and "-" not in seen:
            negative = True
        elif char == ")" and "(" in seen:
            closed = True
        elif char not in marks and not (char == "+" and "+" not in seen):
            return None
    if not digits or ("(" in seen and not closed and not negative):
        return None
    return Number(negative or "(" in seen, int(digits), exponent, marks == WHITE)


def parse_decimal(text: str, at: int, locale: Locale, may_have_exponent: bool) -> tuple[str, int, int] | None:
    """Digits, power of ten and where the number ends; None when an exponent has no digits."""
    exponent_form = re.compile("[eE]([-+%s]*)([0-9]+)" % re.escape(locale.group))
    digits = ""
    exponent = 0
    point_seen = exponent_seen = False
    while at < len(text):
        char = text[at]
        if "0" <= char <= "9":
            digits += char
            exponent -= point_seen
        elif char in "eE" and may_have_exponent and not exponent_seen:
            found = exponent_form.match(text, at)
            if not found:
                return None
            exponent_seen = True
            exponent += -int(found[2]) if "-" in found[1] else int(found[2])
            at = found.end() - 1
        elif char == locale.decimal and not point_seen and not exponent_seen:
            point_seen = True
        elif char != locale.group or not (digits or point_seen or exponent_seen):
            break
        at += 1
    return digits, exponent, at


def number_as_double(number: Number) -> float:
    if number.plain:
        if number.digits > 1 << 31:
            raise AutomationError(OVERFLOW)
        return -float(1 << 31) if number.digits == 1 << 31 else float(number.digits)
    result = float(f"{number.digits}E{number.exponent}")
    if math.isinf(result):
        raise AutomationError(OVERFLOW)
    return -result if number.negative else result


def number_as_single(number: Number) -> float:
    result = number_as_double(number)
    if result != 0 and not LEAST_SINGLE <= abs(result) <= LARGEST_SINGLE:
        raise AutomationError(OVERFLOW)
    return round_single(result)


def number_as_long(number: Number) -> int:
    if number.plain:
        if number.digits >= 1 << 32:
            raise AutomationError(OVERFLOW)
        return number.digits - (1 << 32) if number.digits >= 1 << 31 else number.digits
    if number.digits == 0 or number.exponent < -400:
        return 0
    if number.exponent > 400:
        raise AutomationError(OVERFLOW)
    result = round(Fraction(number.digits) * Fraction(10) ** number.exponent)
    return in_long_range(-result if number.negative else result)


def in_long_range(number: int) -> int:
    if not -(1 << 31) <= number < 1 << 31:
        raise AutomationError(OVERFLOW)
    return number


def is_general_number(text: str, locale: Locale) -> bool:
    """The platform's general numeric test: a number that a double can hold."""
    number = parse_number(text, locale)
    try:
        return number is not None and math.isfinite(number_as_double(number))
    except AutomationError:
        return False


def is_number_with_separator(text: str, separator: str, locale: Locale) -> tuple[bool, str]:
    """One try of the literal test: the verdict and the text it leaves behind."""
    if separator == locale.decimal:
        return is_general_number(text, locale), text
    separator_seen = False
    whole = fraction = sign = ""
    for position, char in enumerate(text):
        if char == separator:
            if separator_seen:
                return False, text
            separator_seen = True
        elif "0" <= char <= "9":
            if separator_seen:
                fraction += char
            else:
                whole += char
        elif char in "+-":
            if sign or (whole and position != len(text) - 1):
                return False, text
            sign = char
        else:
            return False, text
    rewritten = sign + whole + (locale.decimal + fraction if fraction else "")
    return is_general_number(rewritten, locale), rewritten


def is_numeric_text(text: str, locale: Locale) -> tuple[bool, str]:
    """Whether a script text is a number literal, and the text in the form that the locale reads."""
    accepted, text = is_number_with_separator(text, ".", locale)
    if accepted:
        return True, text
    return is_number_with_separator(text, ",", locale)


# Half a last digit goes away from zero, as the platform's routines have it.
AWAY_FROM_ZERO = {digits: Context(prec=digits, rounding=ROUND_HALF_UP) for digits in (7, 15)}

# ---- conversions -----------------------------------------------------------------------------------------------


def float_text(number: float, digits: int, locale: Locale) -> str:
    if math.isnan(number):
        return "NAN"
    if math.isinf(number):
        return "INF" if number > 0 else "-INF"
    if number == 0:
        return "0"
    rounded = float(AWAY_FROM_ZERO[digits].create_decimal_from_float(number))
    return ("%.*G" % (digits, rounded)).replace(".", locale.decimal)


def as_text(value: Value, locale: Locale) -> str:
    kind, content = value
    if kind == "text":
        return content
    if kind == "bool":
        return "True" if content else "False"
    if kind == "r4":
        return float_text(content, 7, locale)
    if kind == "r8":
        return float_text(content, 15, locale)
    return str(content)


def parsed(text: str, locale: Locale) -> Number:
    number = parse_number(text, locale)
    if number is None:
        raise AutomationError(TYPE_MISMATCH)
    return number


def as_single(value: Value, locale: Locale) -> float:
    kind, content = value
    if kind == "r4":
        return content
    if kind == "text":
        return number_as_single(parsed(content, locale))
    if kind == "bool":
        return -1.0 if content else 0.0
    if kind == "r8" and abs(content) > LARGEST_SINGLE:
        raise AutomationError(OVERFLOW)
    return round_single(float(content))


def as_double(value: Value, locale: Locale) -> float:
    kind, content = value
    if kind == "text":
        return number_as_double(parsed(content, locale))
    if kind == "bool":
        return -1.0 if content else 0.0
    return float(content)


def as_long(value: Value, locale: Locale) -> int:
    kind, content = value
    if kind == "text":
        return number_as_long(parsed(content, locale))
    if kind == "bool":
        return -1 if content else 0
    if kind in ("r4", "r8"):
        if not math.isfinite(content):
            raise AutomationError(OVERFLOW)
        return in_long_range(round(content))
    return content


def as_bool(value: Value, locale: Locale) -> bool:
    kind, content = value
    if kind == "text":
        word = content.lower()
        if word in ("true", "false"):
            return word == "true"
        return number_as_double(parsed(content, locale)) != 0
    return bool(content) or content != content


# ---- arithmetic and comparison ---------------------------------------------------------------------------------


def add_integer(value: Value, step: int, locale: Locale) -> Value:
    """The value plus the 16-bit integer `step`, in the type that the sum needs."""
    kind, content = value
    if kind == "r4":
        result = content + step
        rounded = round_single(result)
        # A sum beyond the range becomes a double, a difference does not; only infinities get there by steps of 1.
        return ("r8", result) if math.isinf(rounded) and step > 0 else ("r4", rounded)
    if kind in ("r8", "text"):
        return "r8", as_double(value, locale) + step
    result = as_long(value, locale) + step
    if kind != "i4" and -(1 << 15) <= result < 1 << 15:
        return "i2", result
    if -(1 << 31) <= result < 1 << 31:
        return "i4", result
    return "r8", float(result)


def compare(left: Value, right: Value, locale: Locale) -> int:
    """-1, 0 or 1. A number is less than any text; beside a single a number is taken in single precision."""
    if left[0] == "text" or right[0] == "text":
        if left[0] != right[0]:
            return 1 if left[0] == "text" else -1
        return (left[1] > right[1]) - (left[1] < right[1])
    a, b = as_double(left, locale), as_double(right, locale)
    if "r4" in (left[0], right[0]) and max(abs(a), abs(b)) <= LARGEST_SINGLE:
        a, b = round_single(a), round_single(b)
    return 0 if a == b else -1 if a < b else 1  # 1 also where one of them is no number
