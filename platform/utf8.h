#pragma once

#include <string>
#include <string_view>

namespace corvane {

/// What becomes of a code unit that is half of a surrogate pair without its other half.
enum class LoneSurrogate {
    Replace,  ///< U+FFFD: the result is well-formed UTF-8
    Keep,     ///< three bytes, as UTF-8 would encode it: nothing is lost, but the result is not well-formed
};

std::string toUtf8(std::u16string_view text, LoneSurrogate lone = LoneSurrogate::Replace);

/// Each ill-formed sequence becomes one U+FFFD and reading goes on behind it; no input is refused.
std::u16string fromUtf8(std::string_view bytes);

}  // namespace corvane
