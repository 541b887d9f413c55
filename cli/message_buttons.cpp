#include "cli/message_buttons.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

namespace corvane {
namespace {

constexpr MessageButton yes{u"Yes", "yes", yesAnswer};
constexpr MessageButton no{u"No", "no", noAnswer};
constexpr MessageButton ok{u"OK", "ok", okAnswer};
constexpr MessageButton cancel{u"Cancel", "cancel", cancelAnswer};
constexpr MessageButton abort{u"Abort", "abort", abortAnswer};
constexpr MessageButton retry{u"Retry", "retry", retryAnswer};
constexpr MessageButton ignore{u"Ignore", "ignore", ignoreAnswer};
constexpr MessageButton tryAgain{u"Try Again", "try again", tryAgainAnswer};
constexpr MessageButton goOn{u"Continue", "continue", continueAnswer};

constexpr MessageButton all[] = {yes, no, ok, cancel, abort, retry, ignore, tryAgain, goOn};

constexpr MessageButton okOnly[] = {ok};
constexpr MessageButton okCancel[] = {ok, cancel};
constexpr MessageButton abortRetryIgnore[] = {abort, retry, ignore};
constexpr MessageButton yesNoCancel[] = {yes, no, cancel};
constexpr MessageButton yesNo[] = {yes, no};
constexpr MessageButton retryCancel[] = {retry, cancel};
constexpr MessageButton cancelTryContinue[] = {cancel, tryAgain, goOn};

// Indexed by bits 0-3 of the style word.
constexpr std::span<const MessageButton> sets[] = {okOnly, okCancel,    abortRetryIgnore, yesNoCancel,
                                                   yesNo,  retryCancel, cancelTryContinue};

}  // namespace

std::span<const MessageButton> messageButtons() { return all; }

std::span<const MessageButton> buttonsOf(std::int32_t style) {
    const auto set = static_cast<std::size_t>(style & 0xF);
    return set < std::size(sets) ? sets[set] : sets[0];
}

const MessageButton* findButton(std::int32_t answer) {
    const auto* button =
        std::find_if(std::begin(all), std::end(all), [&](const MessageButton& b) { return b.answer == answer; });
    return button == std::end(all) ? nullptr : button;
}

}  // namespace corvane
