#include "cli/table_window.h"
#include "cli/window-win32.h"
// After windows.h, which it needs.
#include <commctrl.h>

#include <algorithm>

#include "platform/desktop-win32.h"
#include "ui/text_table.h"

namespace corvane {
namespace {

enum Control : int { statementsLabel = 101, statementsList, identifiersLabel, identifiersList };

/// A table view that is a list view window of our own.
class ListWindowTable final : public TableView {
public:
    explicit ListWindowTable(HWND list) : list_(list) {
        constexpr DWORD look = LVS_EX_FULLROWSELECT | LVS_EX_GRIDLINES;
        SendMessageW(list_, LVM_SETEXTENDEDLISTVIEWSTYLE, look, look);
        // Some systems leave a header less room for its margins than they draw them with, and cut its text.
        constexpr WPARAM narrowMargin = 4;
        const auto header = reinterpret_cast<HWND>(SendMessageW(list_, LVM_GETHEADER, 0, 0));
        SendMessageW(header, HDM_SETBITMAPMARGIN, narrowMargin, 0);
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
    // The last column would get what is left of the list's width, which may be less than it needs or nothing.
    void fitColumns() override {
        addColumn({});
        for (WPARAM column = 0; column + 1 < columns_; ++column)
            SendMessageW(list_, LVM_SETCOLUMNWIDTH, column, LVSCW_AUTOSIZE_USEHEADER);
        SendMessageW(list_, LVM_DELETECOLUMN, --columns_, 0);
    }

private:
    void setText(UINT message, int column, std::u16string_view content) {
        std::wstring text = windowText(cellText(content));
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

HWND addList(HWND window, Control id) {
    return addControl(window, id, WC_LISTVIEWW, u"",
                      WS_BORDER | WS_TABSTOP | LVS_REPORT | LVS_SHOWSELALWAYS | LVS_SINGLESEL);
}

}  // namespace

bool hasTableWindow() { return true; }

bool showTableWindow(clsCommandList& commandList, std::u16string_view title) {
    const INITCOMMONCONTROLSEX classes{sizeof classes, ICC_LISTVIEW_CLASSES};
    InitCommonControlsEx(&classes);
    const Window window = createWindow(title, WS_OVERLAPPEDWINDOW, 440, 300, handleMessage);
    if (!window) return false;
    addControl(window.get(), statementsLabel, WC_STATICW, u"&Statements", 0);
    const HWND statementsShown = addList(window.get(), statementsList);
    addControl(window.get(), identifiersLabel, WC_STATICW, u"&Identifiers", 0);
    const HWND identifiersShown = addList(window.get(), identifiersList);
    layOut(window.get());
    ListWindowTable statements(statementsShown);
    ListWindowTable identifiers(identifiersShown);
    commandList.DisplayDataInListViews(&statements, &identifiers);
    showUntilClosed(window.get(), statementsShown);
    return true;
}

}  // namespace corvane
