#include "tests/ui/list_control-win32.h"

#include <commctrl.h>

#include <array>
#include <iterator>

#include "platform/utf8.h"

namespace corvane::testing {
namespace {

std::string narrow(const wchar_t* text) {
    const std::wstring_view view(text);
    return toUtf8(std::u16string(view.begin(), view.end()));
}

int count(HWND list) { return static_cast<int>(SendMessageW(list, LVM_GETITEMCOUNT, 0, 0)); }

int columnCount(HWND list) {
    const auto header = reinterpret_cast<HWND>(SendMessageW(list, LVM_GETHEADER, 0, 0));
    return static_cast<int>(SendMessageW(header, HDM_GETITEMCOUNT, 0, 0));
}

std::string cell(HWND list, int row, int column) {
    std::array<wchar_t, 512> text{};
    LVITEMW item{};
    item.iSubItem = column;
    item.pszText = text.data();
    item.cchTextMax = static_cast<int>(text.size());
    SendMessageW(list, LVM_GETITEMTEXTW, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
    return narrow(text.data());
}

bool addColumn(HWND list, const wchar_t* text) {
    LVCOLUMNW column{};
    column.mask = LVCF_TEXT | LVCF_WIDTH | LVCF_SUBITEM;
    column.cx = 1;
    column.iSubItem = columnCount(list);
    column.pszText = const_cast<wchar_t*>(text);
    return SendMessageW(list, LVM_INSERTCOLUMNW, static_cast<WPARAM>(column.iSubItem),
                        reinterpret_cast<LPARAM>(&column)) >= 0;
}

/// The new row's position; -1 when there is none.
int addRow(HWND list, const wchar_t* text) {
    LVITEMW item{};
    item.mask = LVIF_TEXT;
    item.iItem = count(list);
    item.pszText = const_cast<wchar_t*>(text);
    return static_cast<int>(SendMessageW(list, LVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&item)));
}

void setStyle(HWND list, LONG_PTR style, bool isOn) {
    const LONG_PTR all = GetWindowLongPtrW(list, GWL_STYLE);
    SetWindowLongPtrW(list, GWL_STYLE, isOn ? all | style : all & ~style);
}

void setExtendedStyle(HWND list, DWORD style, bool isOn) {
    SendMessageW(list, LVM_SETEXTENDEDLISTVIEWSTYLE, style, static_cast<LPARAM>(isOn ? style : 0));
}

class ListItem final : public StandIn {
public:
    ListItem(Happenings& happenings, HWND list, int row)
        : StandIn(happenings, "ListItem", {L"SubItems"}), list_(list), row_(row) {}

protected:
    HRESULT run(std::size_t, WORD kind, const Arguments& arguments, VARIANT*) override {
        if (kind != DISPATCH_PROPERTYPUT) return DISP_E_MEMBERNOTFOUND;
        if (arguments.count() != 2) return DISP_E_BADPARAMCOUNT;
        if (V_VT(&arguments[0]) != VT_I4 || V_VT(&arguments[1]) != VT_BSTR) return DISP_E_TYPEMISMATCH;
        const LONG column = V_I4(&arguments[0]);
        if (column < 1 || column >= columnCount(list_)) return DISP_E_BADINDEX;
        LVITEMW item{};
        item.iSubItem = column;
        item.pszText = V_BSTR(&arguments[1]);
        return SendMessageW(list_, LVM_SETITEMTEXTW, static_cast<WPARAM>(row_), reinterpret_cast<LPARAM>(&item)) !=
                       FALSE
                   ? S_OK
                   : E_FAIL;
    }

private:
    HWND list_;
    int row_;
};

/// The column headers or the items.
class ListCollection final : public StandIn {
public:
    ListCollection(Happenings& happenings, HWND list, bool isOfColumns)
        : StandIn(happenings, isOfColumns ? "ColumnHeaders" : "ListItems", {L"Add", L"Clear", L"Count"}),
          list_(list),
          isOfColumns_(isOfColumns) {}

protected:
    HRESULT run(std::size_t member, WORD kind, const Arguments& arguments, VARIANT* result) override {
        enum Member : std::size_t { Add, Clear, Count };
        if (IsWindow(list_) == FALSE) return E_FAIL;
        if ((kind & (member == Count ? DISPATCH_PROPERTYGET : DISPATCH_METHOD)) == 0) return DISP_E_MEMBERNOTFOUND;
        switch (member) {
            case Clear: clear(); return S_OK;
            case Count: return answer(result, isOfColumns_ ? columnCount(list_) : count(list_));
            default: return add(arguments, result);
        }
    }

private:
    void clear() {
        if (!isOfColumns_) SendMessageW(list_, LVM_DELETEALLITEMS, 0, 0);
        while (isOfColumns_ && columnCount(list_) > 0) SendMessageW(list_, LVM_DELETECOLUMN, 0, 0);
    }
    HRESULT add(const Arguments& arguments, VARIANT* result) {
        if (arguments.count() != 3) return DISP_E_BADPARAMCOUNT;
        if (show(arguments[0]) != "missing" || show(arguments[1]) != "missing" || V_VT(&arguments[2]) != VT_BSTR)
            return DISP_E_TYPEMISMATCH;
        if (isOfColumns_) return addColumn(list_, V_BSTR(&arguments[2])) ? S_OK : E_FAIL;
        const int row = addRow(list_, V_BSTR(&arguments[2]));
        return row < 0 ? E_FAIL : answer(result, new ListItem(happenings(), list_, row));
    }

    HWND list_;
    bool isOfColumns_;
};

}  // namespace

ListWindow::ListWindow() {
    const INITCOMMONCONTROLSEX classes{sizeof classes, ICC_LISTVIEW_CLASSES};
    InitCommonControlsEx(&classes);
    const HINSTANCE module = GetModuleHandleW(nullptr);
    parent_ = CreateWindowExW(0, WC_STATICW, L"", WS_POPUP, 0, 0, 640, 480, nullptr, nullptr, module, nullptr);
    list_ = CreateWindowExW(0, WC_LISTVIEWW, L"", WS_CHILD | WS_VISIBLE | LVS_ICON | LVS_EDITLABELS | LVS_SORTASCENDING,
                            0, 0, 640, 480, parent_, nullptr, module, nullptr);
    addColumn(list_, L"old column");
    addRow(list_, L"old row");
    SetWindowLongPtrW(list_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    before_ = reinterpret_cast<WNDPROC>(
        SetWindowLongPtrW(list_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&ListWindow::procedure)));
}

ListWindow::~ListWindow() { DestroyWindow(parent_); }

LRESULT CALLBACK ListWindow::procedure(HWND window, UINT message, WPARAM first, LPARAM second) {
    auto* const self = reinterpret_cast<ListWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (message == LVM_SETCOLUMNWIDTH)
        self->fittings.push_back({static_cast<int>(first), static_cast<int>(second), self->isVisible()});
    return CallWindowProcW(self->before_, window, message, first, second);
}

bool ListWindow::hasStyle(DWORD style) const {
    return (static_cast<DWORD>(GetWindowLongPtrW(list_, GWL_STYLE)) & style) != 0;
}

bool ListWindow::hasExtendedStyle(DWORD style) const {
    return (static_cast<DWORD>(SendMessageW(list_, LVM_GETEXTENDEDLISTVIEWSTYLE, 0, 0)) & style) != 0;
}

bool ListWindow::isReport() const { return (GetWindowLongPtrW(list_, GWL_STYLE) & LVS_TYPEMASK) == LVS_REPORT; }

Cells ListWindow::columns() const {
    Cells texts;
    for (int i = 0; i < columnCount(list_); ++i) {
        std::array<wchar_t, 64> text{};
        LVCOLUMNW column{};
        column.mask = LVCF_TEXT;
        column.pszText = text.data();
        column.cchTextMax = static_cast<int>(text.size());
        SendMessageW(list_, LVM_GETCOLUMNW, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(&column));
        texts.push_back(narrow(text.data()));
    }
    return texts;
}

std::vector<Cells> ListWindow::rows() const {
    std::vector<Cells> all;
    for (int row = 0; row < count(list_); ++row) {
        all.emplace_back();
        for (int column = 0; column < columnCount(list_); ++column) all.back().push_back(cell(list_, row, column));
    }
    return all;
}

std::vector<int> ListWindow::widths() const {
    std::vector<int> all;
    for (int i = 0; i < columnCount(list_); ++i)
        all.push_back(static_cast<int>(SendMessageW(list_, LVM_GETCOLUMNWIDTH, static_cast<WPARAM>(i), 0)));
    return all;
}

int ListWindow::widthOf(const std::string& text) const {
    const std::u16string units = fromUtf8(text);
    const std::wstring wide(units.begin(), units.end());
    return static_cast<int>(SendMessageW(list_, LVM_GETSTRINGWIDTHW, 0, reinterpret_cast<LPARAM>(wide.c_str())));
}

ListControl::ListControl(Happenings& happenings, const ListWindow& window)
    : StandIn(happenings, "ListView",
              {L"View", L"LabelEdit", L"FullRowSelect", L"GridLines", L"HideSelection", L"Sorted", L"ColumnHeaders",
               L"ListItems", L"hWnd", L"Visible"}),
      list_(window.handle()) {}

HRESULT ListControl::run(std::size_t member, WORD kind, const Arguments& arguments, VARIANT* result) {
    enum Member : std::size_t {
        View,
        LabelEdit,
        FullRowSelect,
        GridLines,
        HideSelection,
        Sorted,
        ColumnHeaders,
        ListItems,
        WindowHandle,
        Visible
    };
    if (IsWindow(list_) == FALSE) return E_FAIL;
    // By the control's numbers of its views: icons, small icons, list, report.
    constexpr LONG_PTR views[] = {LVS_ICON, LVS_SMALLICON, LVS_LIST, LVS_REPORT};
    if ((kind & DISPATCH_PROPERTYGET) != 0) {
        switch (member) {
            case View: {
                LONG view = 0;
                while (views[view] != (GetWindowLongPtrW(list_, GWL_STYLE) & LVS_TYPEMASK)) ++view;
                return answer(result, view);
            }
            case ColumnHeaders: return answer(result, new ListCollection(happenings(), list_, true));
            case ListItems: return answer(result, new ListCollection(happenings(), list_, false));
            case WindowHandle:
                V_VT(result) = VT_I8;
                V_I8(result) = reinterpret_cast<INT_PTR>(list_);
                return VariantChangeType(result, result, 0, handleType);
            default: return DISP_E_MEMBERNOTFOUND;
        }
    }
    if (kind != DISPATCH_PROPERTYPUT || arguments.count() != 1) return DISP_E_BADPARAMCOUNT;
    const VARIANT& value = arguments[0];
    const bool isNumber = member == View || member == LabelEdit;
    if (V_VT(&value) != (isNumber ? VT_I4 : VT_BOOL)) return DISP_E_TYPEMISMATCH;
    const bool isOn = !isNumber && V_BOOL(&value) != VARIANT_FALSE;
    switch (member) {
        case View:
            if (V_I4(&value) < 0 || V_I4(&value) >= static_cast<LONG>(std::size(views))) return E_INVALIDARG;
            setStyle(list_, LVS_TYPEMASK, false);
            setStyle(list_, views[V_I4(&value)], true);
            return S_OK;
        case LabelEdit: setStyle(list_, LVS_EDITLABELS, V_I4(&value) == 0); return S_OK;
        case FullRowSelect: setExtendedStyle(list_, LVS_EX_FULLROWSELECT, isOn); return S_OK;
        case GridLines: setExtendedStyle(list_, LVS_EX_GRIDLINES, isOn); return S_OK;
        case HideSelection: setStyle(list_, LVS_SHOWSELALWAYS, !isOn); return S_OK;
        case Sorted: setStyle(list_, LVS_SORTASCENDING, isOn); return S_OK;
        case Visible: ShowWindow(list_, isOn ? SW_SHOWNA : SW_HIDE); return S_OK;
        default: return DISP_E_MEMBERNOTFOUND;
    }
}

}  // namespace corvane::testing
