#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace corvane {

inline std::u16string textOf(HWND window) {
    std::wstring text(static_cast<std::size_t>(SendMessageW(window, WM_GETTEXTLENGTH, 0, 0)) + 1, L'\0');
    const auto length = SendMessageW(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()));
    return {text.begin(), text.begin() + length};
}

inline BOOL CALLBACK addOpenDialog(HWND window, LPARAM dialogs) {
    wchar_t name[16];
    GetClassNameW(window, name, 16);
    if (std::wstring_view(name) == L"#32770" && IsWindowVisible(window) != FALSE)
        reinterpret_cast<std::vector<HWND>*>(dialogs)->push_back(window);
    return TRUE;
}

/// The visible dialogs of the calling thread, the frontmost first.
inline std::vector<HWND> openDialogs() {
    std::vector<HWND> dialogs;
    EnumThreadWindows(GetCurrentThreadId(), addOpenDialog, reinterpret_cast<LPARAM>(&dialogs));
    return dialogs;
}

/// Acts on the calling thread once its next dialog is open, from inside the dialog's own message loop. A dialog that is
/// then left open is closed, so that no failed test waits for ever.
class WhileOpen {
public:
    explicit WhileOpen(std::function<void(HWND)> act) : act_(std::move(act)), before_(openDialogs().size()) {
        outer_ = std::exchange(current_, this);
        timer_ = SetTimer(nullptr, 0, USER_TIMER_MINIMUM, &WhileOpen::tick);
    }
    WhileOpen(const WhileOpen&) = delete;
    WhileOpen& operator=(const WhileOpen&) = delete;
    ~WhileOpen() {
        KillTimer(nullptr, timer_);
        current_ = outer_;
        EXPECT_TRUE(hasActed_ || !expected_) << "no dialog has opened";
    }
    void mayStayClosed() { expected_ = false; }
    bool hasActed() const { return hasActed_; }

private:
    static void CALLBACK tick(HWND, UINT, UINT_PTR timer, DWORD) {
        WhileOpen* self = current_;
        while (self != nullptr && self->timer_ != timer) self = self->outer_;
        if (self != nullptr) self->step();
    }
    void step() {
        const std::vector<HWND> dialogs = openDialogs();
        if (dialogs.size() <= before_) return;
        if (!hasActed_) {
            hasActed_ = true;
            act_(dialogs.front());
            return;
        }
        // What has been posted has had its time.
        if (++ticksAfter_ == 100) {
            ADD_FAILURE() << "the dialog stayed open";
            EndDialog(dialogs.front(), 0);
        }
    }

    std::function<void(HWND)> act_;
    std::size_t before_;
    WhileOpen* outer_;
    UINT_PTR timer_ = 0;
    int ticksAfter_ = 0;
    bool hasActed_ = false;
    bool expected_ = true;
    static inline WhileOpen* current_ = nullptr;
};

/// Tells whether the calling thread has handled messages since, as whoever shows a dialog does until it is closed.
class UntouchedQueue {
public:
    UntouchedQueue() { EXPECT_NE(PostThreadMessageW(GetCurrentThreadId(), mark, 0, 0), FALSE); }
    UntouchedQueue(const UntouchedQueue&) = delete;
    UntouchedQueue& operator=(const UntouchedQueue&) = delete;
    ~UntouchedQueue() {
        MSG message;
        EXPECT_NE(PeekMessageW(&message, ofTheThread, mark, mark, PM_REMOVE), FALSE) << "messages have been handled";
    }

private:
    static constexpr UINT mark = WM_APP + 77;
    const HWND ofTheThread = reinterpret_cast<HWND>(INT_PTR{-1});
};

/// Another process' idea of a desktop: one that nobody sees.
class UnseenDesktop {
public:
    UnseenDesktop()
        : before_(GetProcessWindowStation()), station_(CreateWindowStationW(nullptr, 0, GENERIC_ALL, nullptr)) {
        EXPECT_NE(SetProcessWindowStation(station_), FALSE);
    }
    UnseenDesktop(const UnseenDesktop&) = delete;
    UnseenDesktop& operator=(const UnseenDesktop&) = delete;
    ~UnseenDesktop() {
        SetProcessWindowStation(before_);
        CloseWindowStation(station_);
    }

private:
    HWINSTA before_;
    HWINSTA station_;
};

/// A window as a host has them.
class HostWindow {
public:
    explicit HostWindow(const wchar_t* title = L"Host", int left = 100, int top = 80, int width = 500, int height = 400)
        : window_(CreateWindowExW(0, L"STATIC", title, WS_OVERLAPPEDWINDOW | WS_VISIBLE, left, top, width, height,
                                  nullptr, nullptr, nullptr, nullptr)) {}
    HostWindow(const HostWindow&) = delete;
    HostWindow& operator=(const HostWindow&) = delete;
    ~HostWindow() { DestroyWindow(window_); }
    operator HWND() const { return window_; }  // NOLINT(google-explicit-constructor)
    bool takesInput() const { return IsWindowEnabled(window_) != FALSE; }

private:
    HWND window_;
};

/// The exit code of a quit message that waits in the calling thread's queue; takes it out.
inline std::optional<int> waitingQuit() {
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE)
        if (message.message == WM_QUIT) return static_cast<int>(message.wParam);
    return std::nullopt;
}

}  // namespace corvane
