#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/text.h"
#include "platform/value_rules.h"

/// The cuts that statement and declaration text is taken apart with. The cuts are views of the script's text; a text of
/// its own is made only of what is stored.
namespace corvane {

inline constexpr char16_t doubleQuote = u'"';

/// The first of the code units from `begin` on that is one of the two; `end` when none is.
const char16_t* FindEither(const char16_t* begin, const char16_t* end, char16_t first, char16_t second);

/// Takes the token before the first `separator` outside double quotes off the front of `text`, separator included, and
/// returns it without surrounding blanks (tabs stay). Without a separator the whole text is the token and `text`
/// becomes empty. Quotes stay part of the token.
std::u16string_view SplitAtSeparator(std::u16string_view& text, char16_t separator);

inline std::u16string_view NextParameter(std::u16string_view& text) { return SplitAtSeparator(text, u','); }
inline std::u16string_view SplitAtEquals(std::u16string_view& text) { return SplitAtSeparator(text, u'='); }
inline std::u16string_view SplitAtOpenBracket(std::u16string_view& text) { return SplitAtSeparator(text, u'('); }
inline std::u16string_view SplitAtCloseBracket(std::u16string_view& text) { return SplitAtSeparator(text, u')'); }

/// Takes the next parameter off the front of `text`, as NextParameter does, when it is a plainly written number
/// (plainNumber in value_rules.h); most parameters are. Otherwise false, and `text` is as it was.
inline bool NextPlainNumber(std::u16string_view& text, std::u16string_view& token, float& number) {
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
    text = {at + (at != end ? 1 : 0), end};
    return true;
}

/// Whether the first and the last character are double quotes; one lone double quote is both.
inline bool IsQuotedString(std::u16string_view token) {
    return !token.empty() && token.front() == doubleQuote && token.back() == doubleQuote;
}

/// The characters between the first and the last, whatever those are, with every "|" turned into a carriage return and
/// a line feed. A token of one character, or of none, gives the empty text.
Text StripQuotes(std::u16string_view token);

/// Without leading and trailing blanks and tabs.
inline std::u16string_view TrimBlanksAndTabs(std::u16string_view text) {
    const auto isSpace = [](char16_t c) { return c == u' ' || c == u'\t'; };
    while (!text.empty() && isSpace(text.front())) text.remove_prefix(1);
    while (!text.empty() && isSpace(text.back())) text.remove_suffix(1);
    return text;
}

/// `number` in plain decimal.
std::u16string decimal(std::int32_t number);

}  // namespace corvane
