#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace corvane {

/// The text of the script file named `path`: every byte one character of the system's narrow code page, nothing trimmed
/// or converted, no byte-order mark recognised.
///
/// A file that does not exist is created, empty. Failures are automation errors that name the path, as `readWholeFile`
/// lists them.
std::u16string readScriptFile(std::u16string_view path);

/// The same, but the file is only read: none when it does not exist.
std::optional<std::u16string> readExistingScriptFile(std::u16string_view path);

}  // namespace corvane
