#include "cli/locale_figures.h"
#include "cli/locale_window.h"
#include "cli/window-win32.h"
#include "platform/desktop-win32.h"

namespace corvane {
namespace {

// Each figure has two controls from here on: its name and its value.
enum Control : int { countryLabel = 101, countryBox, firstFigure };

/// The box of countries that is a window of our own.
class ComboBoxWindow final : public CountryComboBox {
public:
    explicit ComboBoxWindow(HWND box) : box_(box) {}

    void clear() override { SendMessageW(box_, CB_RESETCONTENT, 0, 0); }
    void add(std::u16string_view text, std::int32_t itemData) override {
        const LRESULT row = SendMessageW(box_, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(windowText(text).c_str()));
        SendMessageW(box_, CB_SETITEMDATA, static_cast<WPARAM>(row), itemData);
    }
    void select(std::int32_t row) override { SendMessageW(box_, CB_SETCURSEL, static_cast<WPARAM>(row), 0); }

    std::int32_t chosenLocale() const {
        const LRESULT row = SendMessageW(box_, CB_GETCURSEL, 0, 0);
        return static_cast<std::int32_t>(SendMessageW(box_, CB_GETITEMDATA, static_cast<WPARAM>(row), 0));
    }

private:
    HWND box_;
};

// Lengths are in the units of dialogs.
constexpr int margin = 7;
constexpr int rowHeight = 14;
constexpr int nameWidth = 75;
constexpr int valueWidth = 110;
constexpr int droppedHeight = 80;

void place(HWND window, int id, int row, bool isValue, int height) {
    // A box stands a little above the line of a label.
    const int raised = id == countryBox ? 2 : 0;
    RECT area{margin + (isValue ? nameWidth : 0), margin + row * rowHeight - raised, isValue ? valueWidth : nameWidth,
              height};
    MapDialogRect(window, &area);
    MoveWindow(GetDlgItem(window, id), area.left, area.top, area.right, area.bottom, FALSE);
}

void showFigures(HWND window, const std::vector<LocaleFigure>& figures, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
        SetDlgItemTextW(window, firstFigure + 2 * static_cast<int>(i) + 1, windowText(figures[i].value).c_str());
}

INT_PTR CALLBACK handleMessage(HWND window, UINT message, WPARAM first, LPARAM second) {
    if (message == WM_INITDIALOG) SetWindowLongPtrW(window, DWLP_USER, second);
    if (message != WM_COMMAND) return FALSE;
    if (LOWORD(first) == IDCANCEL) DestroyWindow(window);
    if (LOWORD(first) == countryBox && HIWORD(first) == CBN_SELCHANGE) {
        const auto* const locale = reinterpret_cast<const clsLocale*>(GetWindowLongPtrW(window, DWLP_USER));
        const std::int32_t chosen = ComboBoxWindow(GetDlgItem(window, countryBox)).chosenLocale();
        showFigures(window, localeFigures(*locale, chosen), localesOwnFigures);
    }
    return TRUE;
}

}  // namespace

bool hasLocaleWindow() { return true; }

bool showLocaleWindow(const clsLocale& locale, std::int32_t id) {
    const std::vector<LocaleFigure> figures = localeFigures(locale, id);
    const int rows = 1 + static_cast<int>(figures.size());
    const Window window = createWindow(u"Locale", WS_CAPTION | WS_SYSMENU, 2 * margin + nameWidth + valueWidth,
                                       static_cast<short>(2 * margin + rows * rowHeight), handleMessage,
                                       reinterpret_cast<LPARAM>(&locale));
    if (!window) return false;
    addControl(window.get(), countryLabel, L"STATIC", u"Count&ry", 0);
    const HWND box = addControl(window.get(), countryBox, L"COMBOBOX", u"",
                                WS_TABSTOP | WS_VSCROLL | CBS_DROPDOWNLIST | CBS_HASSTRINGS);
    place(window.get(), countryLabel, 0, false, rowHeight);
    place(window.get(), countryBox, 0, true, droppedHeight);
    for (int i = 1; i < rows; ++i) {
        const int control = firstFigure + 2 * (i - 1);
        addControl(window.get(), control, L"STATIC", figures[static_cast<std::size_t>(i - 1)].name, SS_NOPREFIX);
        addControl(window.get(), control + 1, L"STATIC", u"", SS_NOPREFIX);
        place(window.get(), control, i, false, rowHeight);
        place(window.get(), control + 1, i, true, rowHeight);
    }
    showFigures(window.get(), figures, figures.size());
    ComboBoxWindow countries(box);
    locale.PopulateComboBoxWithCountries(countries, id);
    showUntilClosed(window.get(), box);
    return true;
}

}  // namespace corvane
