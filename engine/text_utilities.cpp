#include "engine/text_utilities.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace corvane {
namespace {

std::u16string_view trimBlanks(std::u16string_view text) {
    while (!text.empty() && text.front() == u' ') text.remove_prefix(1);
    while (!text.empty() && text.back() == u' ') text.remove_suffix(1);
    return text;
}

}  // namespace

std::u16string_view SplitAtSeparator(std::u16string_view& text, char16_t separator) {
    bool insideQuotes = false;
    std::size_t end = 0;
    for (; end < text.size(); ++end) {
        if (text[end] == doubleQuote)
            insideQuotes = !insideQuotes;
        else if (text[end] == separator && !insideQuotes)
            break;
    }
    const std::u16string_view token = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return trimBlanks(token);
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
