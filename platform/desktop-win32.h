#pragma once

#include <windows.h>

#include <string>
#include <string_view>
#include <vector>

/// What the dialogs of this component have to know of the desktop that they appear on.
namespace corvane {

/// Whether somebody could see a window of this process. A service's windows are seen by nobody: a dialog would wait
/// there for ever.
bool hasDesktop();

/// The window that a dialog of the calling thread belongs in front of: the active one or, while another program is
/// active, the thread's frontmost that takes input. Null when the thread shows none.
HWND hostWindow();

/// What the running program calls itself: its file description or, without one, its file's name.
std::u16string applicationTitle();

/// Whether the calling thread has been asked to quit. The request stays in the queue for the host's own loop.
bool isToQuit();

/// How forms of automation hosts measure where they are.
inline constexpr double twipsPerInch = 1440;

/// The pixels of an inch on the screen, as all windows of the program take them that know of one resolution only.
int systemDpi();

/// The module, program or DLL, that holds this code.
HINSTANCE ownModule();

/// `text` for a function that takes it up to the first NUL: one inside is shown as the replacement character.
std::wstring windowText(std::u16string_view text);

/// Keeps the windows of the calling thread from taking input while a dialog is open, as the system itself does with
/// the dialog's owner. Those that took none before still take none afterwards.
class ModalScope {
public:
    /// `owner` is left to the system; may be null.
    explicit ModalScope(HWND owner);
    ModalScope(const ModalScope&) = delete;
    ModalScope& operator=(const ModalScope&) = delete;
    ~ModalScope();

private:
    std::vector<HWND> disabled_;
};

}  // namespace corvane
