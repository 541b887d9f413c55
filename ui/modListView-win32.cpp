#include <windows.h>

#include "ui/modListView.h"
// After windows.h, which it needs.
#include <commctrl.h>

#include <algorithm>
#include <exception>

#include "ui/late_bound-win32.h"

namespace corvane {
namespace {

constexpr std::int32_t reportView = 3;
constexpr std::int32_t manualLabelEdit = 1;

template <typename Step>
void ignoringErrors(Step step) {
    try {
        step();
    } catch (const std::exception&) {
        // Columns of another width do no harm.
    }
}

class ListViewTable final : public TableView {
public:
    explicit ListViewTable(IDispatch& control) : control_(&control) {}

    void prepare() override;
    void addColumn(std::u16string_view header) override;
    void addRow(std::u16string_view text) override;
    void setSubItem(int column, std::u16string_view text) override;
    void fitColumns() override;

private:
    /// One of the control's two collections.
    struct Collection {
        LateBoundObject object;
        DISPID add = DISPID_UNKNOWN;

        Collection() = default;
        explicit Collection(LateBoundObject members) : object(std::move(members)), add(object.idOf(L"Add")) {
            object.call(L"Clear");
        }
        Variant addText(std::u16string_view text) const {
            return object.call(add, {Variant::missing(), Variant::missing(), Variant::ofText(text)});
        }
    };

    bool isReport() const { return control_.get(L"View").toLong() == reportView; }
    HWND window() const;
    void setColumnWidths(HWND window) const;

    LateBoundObject control_;
    Collection columnHeaders_;
    Collection listItems_;
    std::int32_t columnsAdded_ = 0;
    LateBoundObject row_;
    DISPID subItems_ = DISPID_UNKNOWN;  // of `row_`
};

void ListViewTable::prepare() {
    control_.put(L"View", Variant::ofLong(reportView));
    control_.put(L"LabelEdit", Variant::ofLong(manualLabelEdit));
    control_.put(L"FullRowSelect", Variant::ofBoolean(true));
    control_.put(L"GridLines", Variant::ofBoolean(true));
    control_.put(L"HideSelection", Variant::ofBoolean(false));
    control_.put(L"Sorted", Variant::ofBoolean(false));
    columnHeaders_ = Collection(control_.get(L"ColumnHeaders").toObject());
    listItems_ = Collection(control_.get(L"ListItems").toObject());
    columnsAdded_ = 0;
}

void ListViewTable::addColumn(std::u16string_view header) {
    columnHeaders_.addText(header);
    ++columnsAdded_;
}

void ListViewTable::addRow(std::u16string_view text) {
    row_ = listItems_.addText(text).toObject();
    subItems_ = row_.idOf(L"SubItems");
}

void ListViewTable::setSubItem(int column, std::u16string_view text) {
    row_.putIndexed(subItems_, column, Variant::ofText(text));
}

void ListViewTable::fitColumns() {
    bool fits = false;
    ignoringErrors([&] { fits = isReport(); });
    if (!fits) return;
    HWND list = nullptr;
    bool isShown = false;
    ignoringErrors([&] { control_.put(L"Visible", Variant::ofBoolean(false)); });
    ignoringErrors([&] { list = window(); });
    ignoringErrors([&] { setColumnWidths(list); });
    ignoringErrors([&] {
        control_.put(L"Visible", Variant::ofBoolean(true));
        isShown = true;
    });
    if (!isShown) ShowWindow(list, SW_SHOWNA);
}

// Null unless it is one: in place of a window, some numbers stand for every window there is.
HWND ListViewTable::window() const {
    const auto handle = reinterpret_cast<HWND>(static_cast<INT_PTR>(control_.get(L"hWnd").toLongLong()));
    return IsWindow(handle) != FALSE ? handle : nullptr;
}

void ListViewTable::setColumnWidths(HWND window) const {
    if (window == nullptr) return;
    // A control that counts more columns than it was given is not believed.
    const std::int32_t count = std::min(columnHeaders_.object.get(L"Count").toLong(), columnsAdded_);
    for (std::int32_t column = 0; column < count; ++column)
        SendMessageA(window, LVM_SETCOLUMNWIDTH, static_cast<WPARAM>(column), LVSCW_AUTOSIZE_USEHEADER);
}

}  // namespace

std::unique_ptr<TableView> listViewTable(IDispatch& control) { return std::make_unique<ListViewTable>(control); }

void DisplayDataInListViews(clsCommandList& commandList, IDispatch* c_CmdListView, IDispatch* c_DataListView) {
    const auto table = [](IDispatch* control) { return control == nullptr ? nullptr : listViewTable(*control); };
    const std::unique_ptr<TableView> statements = table(c_CmdListView);
    const std::unique_ptr<TableView> identifiers = table(c_DataListView);
    commandList.DisplayDataInListViews(statements.get(), identifiers.get());
}

}  // namespace corvane
