#include <algorithm>
#include <array>

#include "platform/code_page.h"

namespace corvane {

namespace {

constexpr unsigned char firstOwnByte = 0x80;

// Windows-1252 from 0x80 to 0x9F; every other byte is the character of its own number.
constexpr std::array<char16_t, 32> ownCharacters = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,  //
    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,  //
    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,  //
    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};

char16_t characterOf(char character) {
    const auto byte = static_cast<unsigned char>(character);
    const bool isOwn = byte >= firstOwnByte && byte < firstOwnByte + ownCharacters.size();
    return isOwn ? ownCharacters[byte - firstOwnByte] : byte;
}

}  // namespace

std::u16string fromSystemCodePage(std::string_view bytes) {
    std::u16string text(bytes.size(), u'\0');
    std::transform(bytes.begin(), bytes.end(), text.begin(), characterOf);
    return text;
}

}  // namespace corvane
