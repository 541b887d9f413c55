#include "platform/desktop-win32.h"

#include <algorithm>
#include <cstdio>
#include <exception>
#include <optional>

namespace corvane {
namespace {

// Calls `visit` with each visible window of the calling thread, the frontmost first, until it answers false.
template <typename Visit>
void forEachWindow(Visit visit) {
    struct Walk {
        Visit& visit;
        std::exception_ptr failure;
    } walk{visit, nullptr};
    const auto step = [](HWND window, LPARAM argument) CALLBACK -> BOOL {
        if (IsWindowVisible(window) == FALSE) return TRUE;
        Walk& current = *reinterpret_cast<Walk*>(argument);
        // No exception may pass through the system's own code.
        try {
            return current.visit(window) ? TRUE : FALSE;
        } catch (...) {
            current.failure = std::current_exception();
            return FALSE;
        }
    };
    EnumThreadWindows(GetCurrentThreadId(), step, reinterpret_cast<LPARAM>(&walk));
    if (walk.failure) std::rethrow_exception(walk.failure);
}

std::wstring programFile() {
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
        if (length < path.size()) {
            path.resize(length);
            return path;
        }
        path.resize(path.size() * 2);
    }
}

std::wstring nameOf(const std::wstring& path) {
    const std::size_t begin = path.find_last_of(L"\\/") + 1;
    const std::size_t end = path.rfind(L'.');
    return path.substr(begin, end == std::wstring::npos || end <= begin ? std::wstring::npos : end - begin);
}

// In the language that the version resource names first.
std::optional<std::wstring> fileDescription(const std::wstring& path) {
    DWORD ignored = 0;
    const DWORD size = GetFileVersionInfoSizeW(path.c_str(), &ignored);
    if (size == 0) return std::nullopt;
    std::vector<std::byte> version(size);
    if (GetFileVersionInfoW(path.c_str(), 0, size, version.data()) == FALSE) return std::nullopt;
    struct Language {
        WORD language, codePage;
    };
    void* found = nullptr;
    UINT length = 0;
    if (VerQueryValueW(version.data(), L"\\VarFileInfo\\Translation", &found, &length) == FALSE ||
        length < sizeof(Language))
        return std::nullopt;
    const Language language = *static_cast<const Language*>(found);
    wchar_t entry[64];
    std::swprintf(entry, std::size(entry), L"\\StringFileInfo\\%04x%04x\\FileDescription", language.language,
                  language.codePage);
    if (VerQueryValueW(version.data(), entry, &found, &length) == FALSE) return std::nullopt;
    std::wstring text(static_cast<const wchar_t*>(found), length);
    text.resize(std::min(text.size(), text.find(L'\0')));
    return text.empty() ? std::nullopt : std::optional(text);
}

}  // namespace

bool hasDesktop() {
    USEROBJECTFLAGS flags{};
    DWORD needed = 0;
    const HWINSTA station = GetProcessWindowStation();
    if (GetUserObjectInformationW(station, UOI_FLAGS, &flags, sizeof flags, &needed) == FALSE) return false;
    return (flags.dwFlags & WSF_VISIBLE) != 0;
}

HWND hostWindow() {
    if (const HWND active = GetActiveWindow()) return active;
    HWND front = nullptr;
    forEachWindow([&front](HWND window) {
        const bool isTool = (GetWindowLongPtrW(window, GWL_EXSTYLE) & WS_EX_TOOLWINDOW) != 0;
        if (!isTool && IsWindowEnabled(window) != FALSE) front = window;
        return front == nullptr;
    });
    return front;
}

std::u16string applicationTitle() {
    const std::wstring path = programFile();
    const std::wstring title = fileDescription(path).value_or(nameOf(path));
    return {title.begin(), title.end()};
}

bool isToQuit() {
    MSG message;
    if (PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE) == FALSE) return false;
    PostQuitMessage(static_cast<int>(message.wParam));
    return true;
}

int systemDpi() {
    const HDC screen = GetDC(nullptr);
    const int dpi = GetDeviceCaps(screen, LOGPIXELSX);
    ReleaseDC(nullptr, screen);
    return dpi > 0 ? dpi : USER_DEFAULT_SCREEN_DPI;
}

HINSTANCE ownModule() {
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<LPCWSTR>(&hasDesktop), &module);
    return module;
}

std::wstring windowText(std::u16string_view text) {
    std::wstring shown(text.begin(), text.end());
    std::replace(shown.begin(), shown.end(), L'\0', L'\xFFFD');
    return shown;
}

ModalScope::ModalScope(HWND owner) {
    forEachWindow([this, owner](HWND window) {
        if (window != owner && IsWindowEnabled(window) != FALSE) disabled_.push_back(window);
        return true;
    });
    for (const HWND window : disabled_) EnableWindow(window, FALSE);
}

ModalScope::~ModalScope() {
    for (const HWND window : disabled_)
        if (GetWindowThreadProcessId(window, nullptr) == GetCurrentThreadId()) EnableWindow(window, TRUE);
}

}  // namespace corvane
