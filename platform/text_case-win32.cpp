#include <windows.h>

#include "platform/text_case.h"

namespace corvane {

char16_t toLowerBeyondAscii(char16_t unit) {
    const bool isSurrogate = unit >= 0xD800 && unit < 0xE000;
    if (isSurrogate) return unit;
    wchar_t character = unit;
    CharLowerBuffW(&character, 1);
    return character;
}

}  // namespace corvane
