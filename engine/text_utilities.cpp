#include "engine/text_utilities.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "platform/value_rules.h"

namespace corvane {

// A load spends much of its time in here: it passes over each character of each statement once.
std::u16string_view SplitAtSeparator(std::u16string_view& text, char16_t separator) {
    const char16_t* begin = text.data();
    const char16_t* const end = begin + text.size();
    const char16_t* at = begin;
    for (; at != end; ++at) {
        if (*at == doubleQuote) {
            at = std::find(at + 1, end, doubleQuote);
            if (at == end) break;
        } else if (*at == separator) {
            break;
        }
    }
    const char16_t* last = at;
    text.remove_prefix(static_cast<std::size_t>(at - begin) + (at != end ? 1 : 0));
    while (begin != last && *begin == u' ') ++begin;
    while (begin != last && last[-1] == u' ') --last;
    return {begin, static_cast<std::size_t>(last - begin)};
}

bool NextPlainNumber(std::u16string_view& text, std::u16string_view& token, float& number) {
    const char16_t* at = text.data();
    const char16_t* const end = at + text.size();
    while (at != end && *at == u' ') ++at;
    const char16_t* const begin = at;
    const bool isNegative = at != end && *at == u'-';
    if (isNegative) ++at;
    double magnitude = 0;
    const char16_t* const last = readPlainDigits(at, end, u'.', 0, magnitude);
    if (last == at) return false;
    for (at = last; at != end && *at == u' ';) ++at;
    if (at != end && *at != u',') return false;
    token = {begin, static_cast<std::size_t>(last - begin)};
    number = static_cast<float>(isNegative ? -magnitude : magnitude);
    text.remove_prefix(static_cast<std::size_t>(at - text.data()) + (at != end ? 1 : 0));
    return true;
}

Text StripQuotes(std::u16string_view token) {
    if (token.size() < 2) return Text();
    const std::u16string_view inner = token.substr(1, token.size() - 2);
    if (inner.find(u'|') == std::u16string_view::npos) return Text(inner);
    std::u16string lines;
    lines.reserve(inner.size() + 16);
    for (const char16_t c : inner) {
        if (c == u'|')
            lines += u"\r\n";
        else
            lines += c;
    }
    return Text(lines);
}

std::u16string decimal(std::int32_t number) {
    std::array<char, 12> digits;
    const auto end = std::to_chars(digits.begin(), digits.end(), number).ptr;
    return {digits.begin(), end};
}

}  // namespace corvane
