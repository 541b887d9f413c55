#pragma once

namespace corvane {

/// Whether `unit` is one of the control characters of ASCII or Latin-1, line ends and tabs among them. A terminal may
/// take it for a command.
constexpr bool isControl(char16_t unit) { return unit < 0x20 || (unit >= 0x7F && unit < 0xA0); }

}  // namespace corvane
