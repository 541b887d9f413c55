#include "platform/whole_file.h"

#include <algorithm>

#include "platform/utf8.h"

namespace corvane {

automation_error fileError(ErrorNumber number, std::u16string_view path) {
    std::u16string shown(path);
    // A NUL would end the description, and other control characters have no business in it.
    std::replace_if(
        shown.begin(), shown.end(), [](char16_t unit) { return unit < u' '; }, u'\xFFFD');
    return {number, std::string(errorText(number)) + ": '" + toUtf8(shown) + "'"};
}

automation_error tooLarge(std::u16string_view path) {
    const automation_error plain = fileError(ErrorNumber::OutOfMemory, path);
    return {plain.number(), std::string(plain.what()) + " is larger than a text can be"};
}

}  // namespace corvane
