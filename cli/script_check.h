#pragma once

#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/number_locale.h"

namespace corvane {

/// Something wrong with a script. Line and column count from 0.
struct FoundFault {
    std::int32_t line;
    std::int32_t column;
    std::u16string message;
    bool rejects;  ///< otherwise it is only a warning
};

struct CheckedScript {
    bool accepted = false;
    std::int32_t statements = 0;
    std::vector<FoundFault> faults;  ///< in the order in which they were found
};

/// Loads the script without a host, and says all that is wrong with it. `locale` null: as the present user writes
/// numbers.
CheckedScript checkScript(std::u16string_view text, const NumberLocale* locale);

/// The script in the file named `path` (UTF-8), which is only read; none when that is not possible, and then `fault`
/// says why.
std::optional<std::u16string> readScript(std::string_view path, std::string& fault);

/// The lines of a script, by the line ends that a load knows.
std::vector<std::u16string_view> scriptLines(std::u16string_view text);

/// Each fault as "file:line:column: error: text" with its line of source and a caret below the column.
void writeFaults(std::ostream& output, std::string_view file, std::u16string_view text,
                 const std::vector<FoundFault>& faults);

/// A file name or another text from outside, fit for a line of output: no control characters.
std::string printable(std::string_view utf8);

}  // namespace corvane
