// The variant rules in portable form. A text goes through `readNumber` into decimal digits and a power of ten (or, for
// &H and &O, into 32 bits); single, double, Long and Boolean are each made from those, so that a Long is rounded from
// the digits as written and not from a binary approximation of them.
#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <string>
#include <utility>

#include "platform/automation_error.h"
#include "platform/value_rules.h"

namespace corvane::portable {

namespace {

constexpr int singleDigits = 7;
constexpr int doubleDigits = 15;
// Halfway between the greatest single and the next power of two: from here on a double rounds to infinity.
constexpr double singleOverflow = 0x1.ffffffp127;

[[noreturn]] void failMismatch() { throw automation_error(ErrorNumber::TypeMismatch); }
[[noreturn]] void failOverflow() { throw automation_error(ErrorNumber::Overflow); }

// ---------------------------------------------------------------------------------------------------------------------
// Reading a text

struct WrittenNumber {
    bool negative = false;
    std::string digits;           // "0" to "9", the first and the last not "0"; none at all for zero
    std::int64_t pointPlace = 0;  // the value is 0.DIGITS times ten to this power
    bool isPattern = false;       // &H or &O: neither sign nor digits count, `pattern` is the number
    std::uint64_t pattern = 0;    // kept at 2^32 when the text has more bits
};

bool isDigit(char16_t unit) { return unit >= u'0' && unit <= u'9'; }

bool isBlank(char16_t unit) {
    return (unit >= 0x09 && unit <= 0x0D) || unit == 0x20 || unit == 0x85 || unit == 0xA0 || unit == 0x1680 ||
           (unit >= 0x2000 && unit <= 0x200A) || unit == 0x2028 || unit == 0x2029 || unit == 0x202F || unit == 0x205F ||
           unit == 0x3000;
}

// The value of a digit in `base`, or -1.
int digitInBase(char16_t unit, int base) {
    const int value = isDigit(unit)                  ? unit - u'0'
                      : unit >= u'A' && unit <= u'F' ? unit - u'A' + 10
                      : unit >= u'a' && unit <= u'f' ? unit - u'a' + 10
                                                     : base;
    return value < base ? value : -1;
}

class NumberReader {
public:
    // Texts end at their first NUL for the platform.
    NumberReader(std::u16string_view text, const NumberLocale& locale)
        : rest_(text.substr(0, text.find(u'\0'))), locale_(locale) {}

    std::optional<WrittenNumber> read() {
        readLeadingMarks();
        const bool hasNumber = rest_.starts_with(u'&') ? readPattern() : readDecimal();
        if (!hasNumber || !readTrailingMarks() || !isParenthesisSettled()) return std::nullopt;
        number_.negative = minus_ || parenthesis_;
        return std::move(number_);
    }

private:
    bool take(std::u16string_view mark) {
        if (mark.empty() || !rest_.starts_with(mark)) return false;
        rest_.remove_prefix(mark.size());
        return true;
    }
    bool takeOnce(std::u16string_view mark, bool& taken) { return !taken && take(mark) && (taken = true); }
    bool takeBlank() {
        if (rest_.empty() || !isBlank(rest_.front())) return false;
        rest_.remove_prefix(1);
        return true;
    }

    // In any order, each mark at most once.
    void readLeadingMarks() {
        while (takeBlank() || takeOnce(u"-", minus_) || takeOnce(u"+", plus_) || takeOnce(u"(", parenthesis_) ||
               takeOnce(locale_.currencySymbol, currency_)) {
        }
        leadingMinus_ = minus_;
    }

    // Kept: behind the number the platform lets a mark stand as often as one likes, group marks included. A sign may
    // stand on one side of the number only.
    bool readTrailingMarks() {
        while (!rest_.empty()) {
            if (takeBlank()) continue;
            if (!number_.isPattern && (take(locale_.groupMark) || take(locale_.currencySymbol))) continue;
            if (!leadingMinus_ && take(u"-"))
                minus_ = true;
            else if (parenthesis_ && take(u")"))
                isClosed_ = true;
            else if (plus_ || !take(u"+"))
                return false;
        }
        return true;
    }

    // Kept: a minus makes up for a missing closing parenthesis.
    bool isParenthesisSettled() const { return !parenthesis_ || isClosed_ || minus_; }

    bool readPattern() {
        rest_.remove_prefix(1);
        if (currency_ || rest_.empty()) return false;
        const char16_t letter = rest_.front();
        const int base = letter == u'H' || letter == u'h' ? 16 : letter == u'O' || letter == u'o' ? 8 : 0;
        if (base == 0) return false;
        rest_.remove_prefix(1);
        number_.isPattern = true;
        bool hasDigit = false;
        for (; !rest_.empty(); rest_.remove_prefix(1)) {
            const int digit = digitInBase(rest_.front(), base);
            if (digit < 0) break;
            hasDigit = true;
            constexpr std::uint64_t tooWide = std::uint64_t{1} << 32;
            number_.pattern = number_.pattern * static_cast<unsigned>(base) + static_cast<unsigned>(digit);
            if (number_.pattern > tooWide) number_.pattern = tooWide;
        }
        return hasDigit;
    }

    // Kept: behind the first digit or mark the platform skips group marks wherever they stand, and one that ends an
    // exponent leads back to the digits in front of it: 1e1,5 is 15e1. An amount with the currency in front of it has
    // no exponent.
    bool readDecimal() {
        bool hasDigit = false;
        bool hasPoint = false;
        bool hasExponent = false;
        for (;;) {
            if (!rest_.empty() && isDigit(rest_.front())) {
                addDigit(static_cast<char>('0' + (rest_.front() - u'0')), hasPoint);
                hasDigit = true;
                rest_.remove_prefix(1);
            } else if (!currency_ && (takeOnce(u"e", hasExponent) || takeOnce(u"E", hasExponent))) {
                if (!readExponent()) return false;
            } else if ((hasExponent || !takeOnce(locale_.decimalMark, hasPoint)) &&
                       !((hasDigit || hasPoint || hasExponent) && take(locale_.groupMark))) {
                break;
            }
        }
        while (!number_.digits.empty() && number_.digits.back() == '0') number_.digits.pop_back();
        return hasDigit;
    }

    void addDigit(char digit, bool isFraction) {
        const bool isLeadingZero = digit == '0' && number_.digits.empty();
        if (!isLeadingZero) number_.digits.push_back(digit);
        if (isFraction && isLeadingZero)
            --number_.pointPlace;
        else if (!isFraction && !isLeadingZero)
            ++number_.pointPlace;
    }

    // Kept: an exponent may have several signs; one minus makes it negative.
    bool readExponent() {
        bool isNegative = false;
        while (takeOnce(u"-", isNegative) || take(u"-") || take(u"+") || take(locale_.groupMark)) {
        }
        if (rest_.empty() || !isDigit(rest_.front())) return false;
        std::int64_t exponent = 0;
        for (; !rest_.empty() && isDigit(rest_.front()); rest_.remove_prefix(1)) {
            constexpr std::int64_t enough = std::int64_t{1} << 40;  // more than any text has digits
            if (exponent < enough) exponent = exponent * 10 + (rest_.front() - u'0');
        }
        number_.pointPlace += isNegative ? -exponent : exponent;
        return true;
    }

    std::u16string_view rest_;
    const NumberLocale& locale_;
    WrittenNumber number_;
    bool minus_ = false;
    bool leadingMinus_ = false;
    bool plus_ = false;
    bool parenthesis_ = false;
    bool isClosed_ = false;
    bool currency_ = false;
};

std::optional<WrittenNumber> readNumber(std::u16string_view text, const NumberLocale& locale) {
    return NumberReader(text, locale).read();
}

// None on overflow.
std::optional<double> toDouble(const WrittenNumber& number) {
    if (number.isPattern) {
        // Kept: read as a float, a pattern of 32 bits has the top bit alone or not at all.
        constexpr std::uint64_t topBit = std::uint64_t{1} << 31;
        if (number.pattern > topBit) return std::nullopt;
        return number.pattern == topBit ? -static_cast<double>(topBit) : static_cast<double>(number.pattern);
    }
    const double sign = number.negative ? -1.0 : 1.0;
    constexpr int beyondEveryDouble = 330;
    if (number.digits.empty() || number.pointPlace < -beyondEveryDouble) return sign * 0.0;
    if (number.pointPlace > beyondEveryDouble) return std::nullopt;

    const std::string decimal = "0." + number.digits + "e" + std::to_string(number.pointPlace);
    double magnitude = 0;
    const auto [end, fault] = std::from_chars(decimal.data(), decimal.data() + decimal.size(), magnitude);
    if (fault == std::errc::result_out_of_range && number.pointPlace <= 0) return sign * 0.0;
    if (fault != std::errc() || std::isinf(magnitude)) return std::nullopt;
    return sign * magnitude;
}

// None on overflow. Rounds half to even.
std::optional<std::int32_t> toWholeNumber(const WrittenNumber& number) {
    if (number.isPattern) {
        if (number.pattern > std::numeric_limits<std::uint32_t>::max()) return std::nullopt;
        return static_cast<std::int32_t>(static_cast<std::uint32_t>(number.pattern));
    }
    constexpr int digitsOfLong = 10;
    if (number.digits.empty() || number.pointPlace < 0) return 0;
    if (number.pointPlace > digitsOfLong) return std::nullopt;

    const auto wholeDigits = static_cast<std::size_t>(number.pointPlace);
    std::int64_t whole = 0;
    for (std::size_t i = 0; i < wholeDigits; ++i)
        whole = whole * 10 + (i < number.digits.size() ? number.digits[i] - '0' : 0);
    if (number.digits.size() > wholeDigits) {
        const char first = number.digits[wholeDigits];
        const bool isHalf = first == '5' && number.digits.size() == wholeDigits + 1;
        if (isHalf ? whole % 2 != 0 : first >= '5') ++whole;
    }
    if (number.negative) whole = -whole;
    if (whole < std::numeric_limits<std::int32_t>::min() || whole > std::numeric_limits<std::int32_t>::max())
        return std::nullopt;
    return static_cast<std::int32_t>(whole);
}

double doubleOfText(std::u16string_view text, const NumberLocale& locale) {
    const auto number = readNumber(text, locale);
    if (!number) failMismatch();
    const auto value = toDouble(*number);
    if (!value) failOverflow();
    return *value;
}

float singleOfDouble(double value) {
    if (std::abs(value) >= singleOverflow) failOverflow();
    return static_cast<float>(value);
}

float singleOfText(std::u16string_view text, const NumberLocale& locale) {
    const double value = doubleOfText(text, locale);
    // Kept: the platform refuses a text between zero and the least single, although it rounds such a double.
    if (value != 0 && std::abs(value) < std::numeric_limits<float>::denorm_min()) failOverflow();
    return singleOfDouble(value);
}

std::int32_t longOfDouble(double value) {
    // Written so that what is not a number fails too.
    if (!(value >= -2147483648.5 && value < 2147483647.5)) failOverflow();
    const double below = std::floor(value);
    const double fraction = value - below;
    auto whole = static_cast<std::int64_t>(below);
    if (fraction > 0.5 || (fraction == 0.5 && whole % 2 != 0)) ++whole;
    return static_cast<std::int32_t>(whole);
}

std::int32_t longOfText(std::u16string_view text, const NumberLocale& locale) {
    const auto number = readNumber(text, locale);
    if (!number) failMismatch();
    const auto whole = toWholeNumber(*number);
    if (!whole) failOverflow();
    return *whole;
}

bool equalsIgnoringCase(std::u16string_view text, std::u16string_view lowerCase) {
    if (text.size() != lowerCase.size()) return false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char16_t unit = text[i] >= u'A' && text[i] <= u'Z' ? static_cast<char16_t>(text[i] + 0x20) : text[i];
        if (unit != lowerCase[i]) return false;
    }
    return true;
}

bool booleanOfText(std::u16string_view text, const NumberLocale& locale) {
    const std::u16string_view word = text.substr(0, text.find(u'\0'));
    if (equalsIgnoringCase(word, u"true") || word == u"#TRUE#") return true;
    if (equalsIgnoringCase(word, u"false") || word == u"#FALSE#") return false;
    return doubleOfText(text, locale) != 0;
}

// ---------------------------------------------------------------------------------------------------------------------
// Writing a number

struct DecimalDigits {
    std::string digits;  // as many as asked for, the first not "0"
    int exponent;        // the value is D.DDD times ten to this power
};

// `value` is positive and finite. Halves are rounded up.
DecimalDigits decimalDigits(double value, int count) {
    // Halves are decided on digits that are exact or so many that no double comes closer to a half: the library's own
    // rounding to `count` digits would go to the even one.
    constexpr int plenty = 60;
    char buffer[plenty + 16];
    const auto [end, fault] =
        std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::scientific, plenty - 1);
    const std::string_view written(buffer, static_cast<std::size_t>(end - buffer));
    const std::size_t exponentMark = written.find('e');
    int exponent = std::atoi(std::string(written.substr(exponentMark + 1)).c_str());

    std::string digits(1, written[0]);
    digits += written.substr(2, static_cast<std::size_t>(count) - 1);
    if (written[static_cast<std::size_t>(count) + 1] >= '5') {
        auto digit = digits.rbegin();
        for (; digit != digits.rend() && *digit == '9'; ++digit) *digit = '0';
        if (digit != digits.rend()) {
            ++*digit;
        } else {
            digits[0] = '1';
            ++exponent;
        }
    }
    return {digits, exponent};
}

void append(std::u16string& text, std::string_view ascii) { text.append(ascii.begin(), ascii.end()); }

// D.DDDE+NN below a ten-thousandth and from ten to the power of `digits` on, else without an exponent.
Text textOfFloat(double value, int digits, const NumberLocale& locale) {
    if (std::isnan(value)) return Text(u"NAN");
    if (value == 0) return Text(u"0");
    std::u16string text;
    if (value < 0) text.push_back(u'-');
    if (std::isinf(value)) {
        text += u"INF";
        return Text(text);
    }

    const auto [decimal, exponent] = decimalDigits(std::abs(value), digits);
    const std::string_view significant = std::string_view(decimal).substr(0, decimal.find_last_not_of('0') + 1);
    const bool hasExponent = exponent < -4 || exponent >= digits;
    const int wholeDigits = hasExponent ? 1 : exponent + 1;
    if (wholeDigits <= 0) {
        text.push_back(u'0');
        text += locale.decimalMark;
        text.append(static_cast<std::size_t>(-wholeDigits), u'0');
        append(text, significant);
    } else if (static_cast<std::size_t>(wholeDigits) >= significant.size()) {
        append(text, significant);
        text.append(static_cast<std::size_t>(wholeDigits) - significant.size(), u'0');
    } else {
        append(text, significant.substr(0, static_cast<std::size_t>(wholeDigits)));
        text += locale.decimalMark;
        append(text, significant.substr(static_cast<std::size_t>(wholeDigits)));
    }
    if (hasExponent) {
        append(text, exponent < 0 ? "E-" : "E+");
        const std::string magnitude = std::to_string(std::abs(exponent));
        if (magnitude.size() < 2) text.push_back(u'0');
        append(text, magnitude);
    }
    return Text(text);
}

Text textOfWholeNumber(std::int32_t number) {
    std::u16string text;
    append(text, std::to_string(number));
    return Text(text);
}

// ---------------------------------------------------------------------------------------------------------------------
// Arithmetic

// The types that a result can have, each including those before it.
enum class Rank { Integer, Long, Single, Double };

Rank rankOf(ValueView value) {
    switch (value.type()) {
        case ValueType::Integer:
        case ValueType::Boolean: return Rank::Integer;
        case ValueType::Long: return Rank::Long;
        case ValueType::Single: return Rank::Single;
        case ValueType::Double:
        case ValueType::Text: return Rank::Double;
        case ValueType::Object: break;
    }
    failMismatch();
}

Rank commonRank(ValueView left, ValueView right) {
    const Rank leftRank = rankOf(left);
    const Rank rightRank = rankOf(right);
    const auto [low, high] = std::minmax(leftRank, rightRank);
    // A single does not hold every Long.
    if (low == Rank::Long && high == Rank::Single) return Rank::Double;
    return high;
}

// Of anything but a text.
double numberOf(ValueView value) {
    switch (value.type()) {
        case ValueType::Integer: return value.integer();
        case ValueType::Long: return value.longInteger();
        case ValueType::Single: return value.single();
        case ValueType::Double: return value.doubleFloat();
        case ValueType::Boolean: return value.boolean() ? -1 : 0;
        case ValueType::Text:
        case ValueType::Object: break;
    }
    failMismatch();
}

double numberOf(ValueView value, const NumberLocale& locale) {
    return value.isText() ? doubleOfText(value.textView(), locale) : numberOf(value);
}

std::int32_t wholeNumberOf(ValueView value) {
    switch (value.type()) {
        case ValueType::Long: return value.longInteger();
        case ValueType::Boolean: return value.boolean() ? -1 : 0;
        default: return value.integer();
    }
}

Value wholeResult(std::int64_t result, Rank rank) {
    if (rank == Rank::Integer && result >= std::numeric_limits<std::int16_t>::min() &&
        result <= std::numeric_limits<std::int16_t>::max())
        return Value::ofInteger(static_cast<std::int16_t>(result));
    if (result >= std::numeric_limits<std::int32_t>::min() && result <= std::numeric_limits<std::int32_t>::max())
        return Value::ofLong(static_cast<std::int32_t>(result));
    return Value::ofDouble(static_cast<double>(result));
}

float nearestSingle(double value) {
    constexpr float infinity = std::numeric_limits<float>::infinity();
    if (std::abs(value) >= singleOverflow) return value > 0 ? infinity : -infinity;
    return static_cast<float>(value);
}

// A number beside a single is compared in a single's precision, as long as it has a place there.
bool comparesAsSingle(ValueView left, ValueView right, double leftNumber, double rightNumber) {
    if (left.type() != ValueType::Single && right.type() != ValueType::Single) return false;
    return std::abs(leftNumber) < singleOverflow && std::abs(rightNumber) < singleOverflow;
}

}  // namespace

bool isNumeric(std::u16string_view text, const NumberLocale& locale) {
    const auto number = readNumber(text, locale);
    return number && toDouble(*number);
}

float toSingle(ValueView value, const NumberLocale& locale) {
    switch (value.type()) {
        case ValueType::Single: return value.single();
        case ValueType::Text: return singleOfText(value.textView(), locale);
        case ValueType::Double: return singleOfDouble(value.doubleFloat());
        default: return static_cast<float>(numberOf(value));
    }
}

std::int32_t toLong(ValueView value, const NumberLocale& locale) {
    if (value.isText()) return longOfText(value.textView(), locale);
    return longOfDouble(numberOf(value));
}

bool toBoolean(ValueView value, const NumberLocale& locale) {
    if (value.isText()) return booleanOfText(value.textView(), locale);
    return numberOf(value) != 0;
}

Text toText(ValueView value, const NumberLocale& locale) {
    switch (value.type()) {
        case ValueType::Integer: return textOfWholeNumber(value.integer());
        case ValueType::Long: return textOfWholeNumber(value.longInteger());
        case ValueType::Single: return textOfFloat(value.single(), singleDigits, locale);
        case ValueType::Double: return textOfFloat(value.doubleFloat(), doubleDigits, locale);
        case ValueType::Boolean: return Text(value.boolean() ? u"True" : u"False");
        case ValueType::Text: return value.text();
        case ValueType::Object: break;
    }
    failMismatch();
}

Value add(ValueView left, ValueView right, const NumberLocale& locale) {
    if (left.isText() && right.isText()) return Value::ofText(Text::join(left.textView(), right.textView()));
    const Rank rank = commonRank(left, right);
    if (rank <= Rank::Long) return wholeResult(std::int64_t{wholeNumberOf(left)} + wholeNumberOf(right), rank);
    const double leftNumber = numberOf(left, locale);
    const double sum = leftNumber + numberOf(right, locale);
    // Kept: infinity counts as an overflow even where an operand is infinite.
    if (rank == Rank::Double || std::abs(sum) >= singleOverflow) return Value::ofDouble(sum);
    return Value::ofSingle(static_cast<float>(sum));
}

Value subtract(ValueView left, ValueView right, const NumberLocale& locale) {
    const Rank rank = commonRank(left, right);
    if (rank <= Rank::Long) return wholeResult(std::int64_t{wholeNumberOf(left)} - wholeNumberOf(right), rank);
    const double leftNumber = numberOf(left, locale);
    const double difference = leftNumber - numberOf(right, locale);
    if (rank == Rank::Double) return Value::ofDouble(difference);
    // Kept: unlike a sum, a difference of singles that overflows becomes infinite.
    return Value::ofSingle(nearestSingle(difference));
}

std::weak_ordering compare(ValueView left, ValueView right) {
    if (left.type() == ValueType::Object || right.type() == ValueType::Object) failMismatch();
    if (left.isText() && right.isText()) return left.textView() <=> right.textView();
    if (left.isText()) return std::weak_ordering::greater;
    if (right.isText()) return std::weak_ordering::less;
    double leftNumber = numberOf(left);
    double rightNumber = numberOf(right);
    if (comparesAsSingle(left, right, leftNumber, rightNumber)) {
        leftNumber = static_cast<float>(leftNumber);
        rightNumber = static_cast<float>(rightNumber);
    }
    if (leftNumber < rightNumber) return std::weak_ordering::less;
    return leftNumber == rightNumber ? std::weak_ordering::equivalent : std::weak_ordering::greater;
}

}  // namespace corvane::portable
