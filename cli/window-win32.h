#pragma once

#include <windows.h>

#include <memory>
#include <string_view>

/// What the command line's own windows have in common. They are dialogs without a program's help: Escape closes them,
/// and the Tab key goes from control to control.
namespace corvane {

struct WindowDeleter {
    using pointer = HWND;
    void operator()(HWND window) const { DestroyWindow(window); }
};
/// One that the user has closed is not there any more; closing it once more does nothing.
using Window = std::unique_ptr<HWND, WindowDeleter>;

/// A window in the middle of the screen, not yet shown, `width` and `height` in the units of dialogs. `procedure` gets
/// `parameter` when the window is made, and must destroy the window at the command IDCANCEL. Empty where no window can
/// be shown.
Window createWindow(std::u16string_view title, DWORD style, short width, short height, DLGPROC procedure,
                    LPARAM parameter = 0);

/// A control in the window's font.
HWND addControl(HWND window, int id, const wchar_t* kind, std::u16string_view text, DWORD style);

/// Shows the window, the focus on one of its controls, and returns when it has been closed.
void showUntilClosed(HWND window, HWND focus);

}  // namespace corvane
