#pragma once

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>

/// Case by the system's table, one code unit at a time: the length of a text never changes, and code units of surrogate
/// pairs stay as they are.
namespace corvane {

/// The system's lower case of a code unit above U+007F.
char16_t toLowerBeyondAscii(char16_t unit);

constexpr char16_t toLower(char16_t unit) {
    if (unit >= 0x80) return toLowerBeyondAscii(unit);
    return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + (u'a' - u'A')) : unit;
}

inline std::u16string toLower(std::u16string_view text) {
    std::u16string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(), [](char16_t unit) { return toLower(unit); });
    return lower;
}

/// Whether both texts are the same once converted to lower case.
inline bool equalIgnoringCase(std::u16string_view left, std::u16string_view right) {
    if (left.size() != right.size()) return false;
    if (left.empty()) return true;
    if (std::memcmp(left.data(), right.data(), left.size() * sizeof(char16_t)) == 0) return true;  // as mostly written
    return std::equal(left.begin(), left.end(), right.begin(),
                      [](char16_t a, char16_t b) { return a == b || toLower(a) == toLower(b); });
}

}  // namespace corvane
