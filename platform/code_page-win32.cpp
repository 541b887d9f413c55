#include <windows.h>

#include <algorithm>
#include <array>
#include <cstddef>

#include "platform/code_page.h"

namespace corvane {

namespace {

using CharacterTable = std::array<char16_t, 256>;

CharacterTable systemCharacters() {
    CharacterTable characters{};
    for (std::size_t byte = 0; byte < characters.size(); ++byte) {
        const char character = static_cast<char>(byte);
        wchar_t wide = 0;
        const bool isHalf = IsDBCSLeadByte(static_cast<BYTE>(byte)) != FALSE;
        const bool isConverted =
            !isHalf && MultiByteToWideChar(CP_ACP, MB_ERR_INVALID_CHARS, &character, 1, &wide, 1) == 1;
        characters[byte] = static_cast<char16_t>(isConverted ? wide : byte);
    }
    return characters;
}

}  // namespace

std::u16string fromSystemCodePage(std::string_view bytes) {
    static const CharacterTable characters = systemCharacters();
    std::u16string text(bytes.size(), u'\0');
    std::transform(bytes.begin(), bytes.end(), text.begin(),
                   [](char character) { return characters[static_cast<unsigned char>(character)]; });
    return text;
}

}  // namespace corvane
