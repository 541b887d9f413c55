#pragma once

#include <string>
#include <string_view>

namespace corvane {

/// The text of single-byte characters in the system's narrow code page: exactly one code unit for each byte.
///
/// Where the system has no such page it is Windows-1252, its five undefined bytes being the control characters of the
/// same code. A byte that is no character by itself (half of a character of a double-byte page) becomes the code unit
/// of the same number.
std::u16string fromSystemCodePage(std::string_view bytes);

}  // namespace corvane
