#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "engine/operator_dialogs.h"

namespace corvane {

// The platform's answer codes that the engine does not know by name.
inline constexpr std::int32_t tryAgainAnswer = 10;
inline constexpr std::int32_t continueAnswer = 11;

/// A button of a message box.
struct MessageButton {
    std::u16string_view caption;
    std::string_view word;  ///< what programs know it by: the caption in small letters
    std::int32_t answer;    ///< the platform's answer code
};

/// Every button that a message box may have.
std::span<const MessageButton> messageButtons();

/// The buttons of a box with the style word `style`, from the first; OK alone for a style that is not known.
std::span<const MessageButton> buttonsOf(std::int32_t style);

/// The button with an answer code, or null.
const MessageButton* findButton(std::int32_t answer);

}  // namespace corvane
