#include <windows.h>

#include "platform/message_pump.h"

namespace corvane {

namespace {
// Far above what a window has waiting between two statements, and still soon done.
constexpr int messagesInOnePass = 256;
}  // namespace

void SystemMessagePump::yield() {
    MSG message;
    for (int handled = 0; handled < messagesInOnePass; ++handled) {
        if (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) == FALSE) return;
        if (message.message == WM_QUIT) {
            PostQuitMessage(static_cast<int>(message.wParam));
            return;
        }
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

}  // namespace corvane
