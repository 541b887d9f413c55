#include "engine/text_utilities.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cstring>

namespace corvane {

const char16_t* FindEither(const char16_t* begin, const char16_t* end, char16_t first, char16_t second) {
    using Units [[gnu::vector_size(16)]] = std::uint16_t;  // compared at once where the processor can
    static_assert(std::endian::native == std::endian::little, "the first unit is the lowest part of its half");
    constexpr std::ptrdiff_t unitsAtOnce = 8;
    constexpr int bitsOfUnit = 16;
    const Units firsts = {first, first, first, first, first, first, first, first};
    const Units seconds = {second, second, second, second, second, second, second, second};
    for (; end - begin >= unitsAtOnce; begin += unitsAtOnce) {
        Units units;
        std::memcpy(&units, begin, sizeof units);
        const auto hits = (units == firsts) | (units == seconds);
        std::uint64_t halves[2];
        std::memcpy(halves, &hits, sizeof halves);
        if (halves[0] != 0) return begin + std::countr_zero(halves[0]) / bitsOfUnit;
        if (halves[1] != 0) return begin + unitsAtOnce / 2 + std::countr_zero(halves[1]) / bitsOfUnit;
    }
    while (begin != end && *begin != first && *begin != second) ++begin;
    return begin;
}

// A load spends much of its time in here: it passes over each character of each statement once.
std::u16string_view SplitAtSeparator(std::u16string_view& text, char16_t separator) {
    const char16_t* begin = text.data();
    const char16_t* const end = begin + text.size();
    const char16_t* at = FindEither(begin, end, separator, doubleQuote);
    while (at != end && *at == doubleQuote) {
        at = std::find(at + 1, end, doubleQuote);
        if (at != end) at = FindEither(at + 1, end, separator, doubleQuote);
    }
    const char16_t* last = at;
    text.remove_prefix(static_cast<std::size_t>(at - begin) + (at != end ? 1 : 0));
    while (begin != last && *begin == u' ') ++begin;
    while (begin != last && last[-1] == u' ') --last;
    return {begin, static_cast<std::size_t>(last - begin)};
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
