#pragma once

#include <string>
#include <vector>

#include "tests/ui/automation_stand_in-win32.h"

namespace corvane::testing {

using Cells = std::vector<std::string>;

/// A list view window of the system's in a window that nobody sees. As a careless host leaves it: it shows large icons,
/// sorts, lets labels be edited, and holds a column and a row.
class ListWindow {
public:
    /// A message that set a column's width.
    struct Fitting {
        int column;
        int width;
        bool isVisible;  ///< the list, at that moment
        friend bool operator==(const Fitting&, const Fitting&) = default;
    };
    std::vector<Fitting> fittings;

    ListWindow();
    ListWindow(const ListWindow&) = delete;
    ListWindow& operator=(const ListWindow&) = delete;
    ~ListWindow();

    HWND handle() const { return list_; }
    bool isVisible() const { return hasStyle(WS_VISIBLE); }
    bool hasStyle(DWORD style) const;
    bool hasExtendedStyle(DWORD style) const;
    bool isReport() const;
    Cells columns() const;
    std::vector<Cells> rows() const;
    std::vector<int> widths() const;
    /// How wide a text of the list is, without what stands around it.
    int widthOf(const std::string& text) const;

private:
    static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM first, LPARAM second);

    HWND parent_;
    HWND list_;
    WNDPROC before_;
};

/// A host's list control over such a window.
class ListControl final : public StandIn {
public:
    ListControl(Happenings& happenings, const ListWindow& window);
    /// The type of variant that `hWnd` comes in: VT_I4, VT_I8 or VT_BSTR.
    VARTYPE handleType = VT_I4;

protected:
    HRESULT run(std::size_t member, WORD kind, const Arguments& arguments, VARIANT* result) override;

private:
    HWND list_;
};

}  // namespace corvane::testing
