#include <windows.h>

#include "platform/desktop-win32.h"
#include "platform/message_box.h"

namespace corvane {
namespace {

constexpr UINT lastKnownButtons = MB_CANCELTRYCONTINUE;
constexpr UINT lastKnownIcon = MB_ICONINFORMATION;

// What is left out would send the box to another desktop, or make the platform refuse it: a script's message is shown
// whatever the script's number.
UINT shownStyle(std::int32_t style) {
    const auto word = static_cast<UINT>(style);
    UINT shown = word & (MB_DEFMASK | MB_MODEMASK | MB_HELP | MB_NOFOCUS | MB_SETFOREGROUND | MB_TOPMOST | MB_RIGHT |
                         MB_RTLREADING);
    if (const UINT buttons = word & MB_TYPEMASK; buttons <= lastKnownButtons) shown |= buttons;
    if (const UINT icon = word & MB_ICONMASK; icon <= lastKnownIcon) shown |= icon;
    return shown;
}

// Far more than a screen shows. A file that is no script may be one line of megabytes, which the platform would take
// minutes to break into lines.
constexpr std::size_t longestText = 10000;

std::wstring shownText(std::u16string_view text) {
    if (text.size() <= longestText) return windowText(text);
    return windowText(text.substr(0, longestText)) + L'\x2026';
}

}  // namespace

std::optional<std::int32_t> showMessageBox(std::u16string_view text, std::optional<std::u16string_view> caption,
                                           std::int32_t style) {
    if (!hasDesktop() || isToQuit()) return std::nullopt;
    const std::wstring wholeText = shownText(text);
    const std::wstring wholeCaption = shownText(caption ? *caption : std::u16string_view(applicationTitle()));
    const HWND owner = hostWindow();
    const UINT toFront = owner == nullptr ? MB_SETFOREGROUND : 0;
    const ModalScope modal(owner);
    const int answer = MessageBoxW(owner, wholeText.c_str(), wholeCaption.c_str(), shownStyle(style) | toFront);
    // A box that a request to quit has closed answers with some button's code, which nobody has pressed.
    if (answer <= 0 || isToQuit()) return std::nullopt;
    return answer;
}

}  // namespace corvane
