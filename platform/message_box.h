#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace corvane {

/// Shows a modal message box in front of the host's window and returns the platform's answer code.
///
/// Of texts longer than 10,000 code units the beginning is shown. Without a caption the box bears the running program's
/// title. Of `style` only what concerns the look and the buttons counts; buttons that the platform does not know are OK
/// alone. None, at once, where no window can be shown; none also when the box had to close because the program is to
/// quit, in which case the request to quit stays for the host.
std::optional<std::int32_t> showMessageBox(std::u16string_view text, std::optional<std::u16string_view> caption,
                                           std::int32_t style);

}  // namespace corvane
