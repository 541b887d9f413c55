#include <windows.h>

#include "cli/table_window.h"
// After windows.h, which it needs.
#include <commctrl.h>

#include <algorithm>
#include <iterator>
#include <memory>

#include "platform/desktop-win32.h"

namespace corvane {
namespace {

enum Control : int { statementsLabel = 101, statementsList, identifiersLabel, identifiersList };

/// A table view that is a list view window of our own.
class ListWindowTable final : public TableView {
public:
    explicit ListWindowTable(HWND list) : list_(list) {
        constexpr DWORD look = LVS_EX_FULLROWSELECT | LVS_EX_GRIDLINES;
        SendMessageW(list_, LVM_SETEXTENDEDLISTVIEWSTYLE, look, look);
    }

    void prepare() override {
        SendMessageW(list_, LVM_DELETEALLITEMS, 0, 0);
        while (columns_ > 0) SendMessageW(list_, LVM_DELETECOLUMN, --columns_, 0);
        rows_ = 0;
    }
    void addColumn(std::u16string_view header) override {
        std::wstring text = windowText(header);
        LVCOLUMNW column{};
        column.mask = LVCF_TEXT | LVCF_SUBITEM;
        column.iSubItem = static_cast<int>(columns_);
        column.pszText = text.data();
        SendMessageW(list_, LVM_INSERTCOLUMNW, columns_++, reinterpret_cast<LPARAM>(&column));
    }
    void addRow(std::u16string_view text) override {
        ++rows_;
        setText(LVM_INSERTITEMW, 0, text);
    }
    void setSubItem(int column, std::u16string_view text) override { setText(LVM_SETITEMW, column, text); }
    void fitColumns() override {
        for (WPARAM column = 0; column < columns_; ++column)
            SendMessageW(list_, LVM_SETCOLUMNWIDTH, column, LVSCW_AUTOSIZE_USEHEADER);
    }

private:
    void setText(UINT message, int column, std::u16string_view content) {
        std::wstring text = windowText(content);
        LVITEMW item{};
        item.mask = LVIF_TEXT;
        item.iItem = rows_ - 1;
        item.iSubItem = column;
        item.pszText = text.data();
        SendMessageW(list_, message, 0, reinterpret_cast<LPARAM>(&item));
    }

    HWND list_;
    WPARAM columns_ = 0;
    int rows_ = 0;
};

// One list above the other, each under its label; lengths are in the units of dialogs.
void layOut(HWND window) {
    RECT client{};
    GetClientRect(window, &client);
    RECT lengths{7, 5, 0, 10};
    MapDialogRect(window, &lengths);
    const LONG side = lengths.left;
    const LONG gap = lengths.top;
    const LONG labelHeight = lengths.bottom;
    const LONG width = std::max(client.right - 2 * side, 0L);
    const LONG half = std::max((client.bottom - gap) / 2, labelHeight + gap);
    LONG top = gap;
    for (const Control label : {statementsLabel, identifiersLabel}) {
        const int list = label + 1;
        MoveWindow(GetDlgItem(window, label), side, top, width, labelHeight, TRUE);
        MoveWindow(GetDlgItem(window, list), side, top + labelHeight, width, half - labelHeight - gap, TRUE);
        top += half;
    }
}

INT_PTR CALLBACK handleMessage(HWND window, UINT message, WPARAM first, LPARAM) {
    switch (message) {
        case WM_SIZE: layOut(window); return TRUE;
        case WM_COMMAND:
            if (LOWORD(first) == IDCANCEL) DestroyWindow(window);
            return TRUE;
        default: return FALSE;
    }
}

HWND addControl(HWND window, Control id, const wchar_t* kind, const wchar_t* text, DWORD style) {
    const HWND control = CreateWindowExW(0, kind, text, WS_CHILD | WS_VISIBLE | style, 0, 0, 0, 0, window,
                                         reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), ownModule(), nullptr);
    SendMessageW(control, WM_SETFONT, static_cast<WPARAM>(SendMessageW(window, WM_GETFONT, 0, 0)), FALSE);
    return control;
}

HWND addList(HWND window, Control id) {
    return addControl(window, id, WC_LISTVIEWW, L"",
                      WS_BORDER | WS_TABSTOP | LVS_REPORT | LVS_SHOWSELALWAYS | LVS_SINGLESEL);
}

HWND createWindow() {
    const INITCOMMONCONTROLSEX classes{sizeof classes, ICC_LISTVIEW_CLASSES};
    InitCommonControlsEx(&classes);
    struct {
        alignas(DWORD) DLGTEMPLATE dialog;
        WORD menu, windowClass, title, fontSize;
        wchar_t font[13];
    } shape{};
    shape.dialog.style = WS_OVERLAPPEDWINDOW | DS_SHELLFONT | DS_CENTER;
    shape.dialog.cx = 440;
    shape.dialog.cy = 300;
    shape.fontSize = 8;
    lstrcpyW(shape.font, L"MS Shell Dlg");
    return CreateDialogIndirectParamW(ownModule(), &shape.dialog, nullptr, handleMessage, 0);
}

struct WindowDeleter {
    using pointer = HWND;
    void operator()(HWND window) const { DestroyWindow(window); }
};

}  // namespace

bool hasTableWindow() { return true; }

bool showTableWindow(clsCommandList& commandList, std::u16string_view title) {
    if (!hasDesktop()) return false;
    // One that the user has closed is not there any more; closing it once more does nothing.
    const std::unique_ptr<HWND, WindowDeleter> window(createWindow());
    if (!window) return false;
    SetWindowTextW(window.get(), windowText(title).c_str());
    addControl(window.get(), statementsLabel, WC_STATICW, L"&Statements", 0);
    ListWindowTable statements(addList(window.get(), statementsList));
    addControl(window.get(), identifiersLabel, WC_STATICW, L"&Identifiers", 0);
    ListWindowTable identifiers(addList(window.get(), identifiersList));
    layOut(window.get());
    commandList.DisplayDataInListViews(&statements, &identifiers);
    ShowWindow(window.get(), SW_SHOWNORMAL);
    SetFocus(GetDlgItem(window.get(), statementsList));

    MSG message;
    while (IsWindow(window.get()) != FALSE && GetMessageW(&message, nullptr, 0, 0) > 0) {
        if (IsDialogMessageW(window.get(), &message) != FALSE) continue;
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    return true;
}

}  // namespace corvane
