#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/automation_error.h"

namespace corvane {

/// What to do about a file that is not there.
enum class WhenAbsent {
    Create,  ///< make it, empty; the file is opened for reading and writing first, then for reading only
    Report,  ///< answer that there is none; the file is opened for reading only
};

/// The bytes of the regular file named `path`.
///
/// None when there is no such file, or no such folder, and absence is to be reported. Failures are automation errors
/// that name the path: 52 no file can bear this name; 70 not allowed to read, or locked by others; 75 a folder, a
/// device, a pipe or anything else that is no regular file; 76 no such folder; 7 too large; 57 whatever else the system
/// reports.
std::optional<std::string> readWholeFile(std::u16string_view path, WhenAbsent whenAbsent);

/// Larger files are refused: their text would not fit an automation string.
inline constexpr std::uint64_t largestFile = 0x3FFFFFFF;

/// The automation error `number` with a description that names `path`.
automation_error fileError(ErrorNumber number, std::u16string_view path);

/// The one of a file beyond `largestFile`.
automation_error tooLarge(std::u16string_view path);

}  // namespace corvane
