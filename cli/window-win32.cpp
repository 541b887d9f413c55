#include "cli/window-win32.h"

#include "platform/desktop-win32.h"

namespace corvane {

Window createWindow(std::u16string_view title, DWORD style, short width, short height, DLGPROC procedure,
                    LPARAM parameter) {
    if (!hasDesktop()) return {};
    struct {
        alignas(DWORD) DLGTEMPLATE dialog;
        WORD menu, windowClass, title, fontSize;
        wchar_t font[13];
    } shape{};
    shape.dialog.style = style | DS_SHELLFONT | DS_CENTER;
    shape.dialog.cx = width;
    shape.dialog.cy = height;
    shape.fontSize = 8;
    lstrcpyW(shape.font, L"MS Shell Dlg");
    Window window(CreateDialogIndirectParamW(ownModule(), &shape.dialog, nullptr, procedure, parameter));
    if (window) SetWindowTextW(window.get(), windowText(title).c_str());
    return window;
}

HWND addControl(HWND window, int id, const wchar_t* kind, std::u16string_view text, DWORD style) {
    const HWND control =
        CreateWindowExW(0, kind, windowText(text).c_str(), WS_CHILD | WS_VISIBLE | style, 0, 0, 0, 0, window,
                        reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), ownModule(), nullptr);
    SendMessageW(control, WM_SETFONT, static_cast<WPARAM>(SendMessageW(window, WM_GETFONT, 0, 0)), FALSE);
    return control;
}

void showUntilClosed(HWND window, HWND focus) {
    ShowWindow(window, SW_SHOWNORMAL);
    SetFocus(focus);
    MSG message;
    while (IsWindow(window) != FALSE && GetMessageW(&message, nullptr, 0, 0) > 0) {
        if (IsDialogMessageW(window, &message) != FALSE) continue;
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

}  // namespace corvane
