#include <gtest/gtest.h>

#include "platform/utf8.h"
#include "tests/support/engine_fixture.h"
#include "tests/ui/automation_stand_in-win32.h"
#include "ui/country_combo_box.h"

namespace corvane {
namespace {

using testing::Arguments;
using testing::Step;

/// A host's combo box over a window of the system's, with a row that somebody left in it.
class ComboControl final : public testing::StandIn {
public:
    explicit ComboControl(testing::Happenings& happenings)
        : StandIn(happenings, "ComboBox", {L"Clear", L"AddItem", L"NewIndex", L"ItemData", L"ListIndex"}),
          box_(CreateWindowExW(0, L"COMBOBOX", L"", WS_POPUP | CBS_DROPDOWNLIST | CBS_HASSTRINGS, 0, 0, 200, 200,
                               nullptr, nullptr, GetModuleHandleW(nullptr), nullptr)) {
        SendMessageW(box_, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(L"old row"));
    }

    std::vector<std::pair<std::string, int>> rows() const {
        std::vector<std::pair<std::string, int>> all;
        for (int row = 0; row < static_cast<int>(SendMessageW(box_, CB_GETCOUNT, 0, 0)); ++row) {
            wchar_t text[64] = {};
            SendMessageW(box_, CB_GETLBTEXT, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(text));
            const std::wstring_view view(text);
            all.emplace_back(toUtf8(std::u16string(view.begin(), view.end())),
                             static_cast<int>(SendMessageW(box_, CB_GETITEMDATA, static_cast<WPARAM>(row), 0)));
        }
        return all;
    }
    int selected() const { return static_cast<int>(SendMessageW(box_, CB_GETCURSEL, 0, 0)); }

protected:
    ~ComboControl() override { DestroyWindow(box_); }

    HRESULT run(std::size_t member, WORD kind, const Arguments& arguments, VARIANT* result) override {
        enum Member : std::size_t { Clear, AddItem, NewIndex, ItemData, ListIndex };
        constexpr WORD kinds[] = {DISPATCH_METHOD, DISPATCH_METHOD, DISPATCH_PROPERTYGET, DISPATCH_PROPERTYPUT,
                                  DISPATCH_PROPERTYPUT};
        constexpr UINT counts[] = {0, 1, 0, 2, 1};
        if ((kind & kinds[member]) == 0) return DISP_E_MEMBERNOTFOUND;
        if (arguments.count() != counts[member]) return DISP_E_BADPARAMCOUNT;
        switch (member) {
            case Clear: SendMessageW(box_, CB_RESETCONTENT, 0, 0); return S_OK;
            case AddItem:
                if (V_VT(&arguments[0]) != VT_BSTR) return DISP_E_TYPEMISMATCH;
                newIndex_ = static_cast<LONG>(
                    SendMessageW(box_, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(V_BSTR(&arguments[0]))));
                return S_OK;
            case NewIndex:
                V_VT(result) = VT_I2;
                V_I2(result) = static_cast<SHORT>(newIndex_);
                return S_OK;
            case ItemData:
                if (V_VT(&arguments[0]) != VT_I4 || V_VT(&arguments[1]) != VT_I4) return DISP_E_TYPEMISMATCH;
                SendMessageW(box_, CB_SETITEMDATA, static_cast<WPARAM>(V_I4(&arguments[0])), V_I4(&arguments[1]));
                return S_OK;
            default:
                if (V_VT(&arguments[0]) != VT_I4) return DISP_E_TYPEMISMATCH;
                SendMessageW(box_, CB_SETCURSEL, static_cast<WPARAM>(V_I4(&arguments[0])), 0);
                return S_OK;
        }
    }

private:
    HWND box_;
    LONG newIndex_ = -1;
};

/// A French user's system.
class FrenchSystem final : public SystemInformation {
public:
    std::int32_t userLocaleId() const override { return 1036; }
    std::u16string localeText(LocaleItem, std::int32_t) const override { return {}; }
    VersionRecord version() const override { return {}; }
};

class CountryBox : public ::testing::Test {
protected:
    testing::Happenings happenings;
    testing::Held<ComboControl> control{new ComboControl(happenings)};
    FrenchSystem system;
    clsLocale locale{system};

    void populate(std::int32_t id) { locale.PopulateComboBoxWithCountries(*countryComboBox(*control), id); }
};

TEST_F(CountryBox, HoldsTheCountriesWithTheirLocales) {
    populate(0);
    EXPECT_EQ(
        control->rows(),
        (std::vector<std::pair<std::string, int>>{
            {"Unknown", 0}, {"Germany", 1031}, {"English - US", 1033}, {"France", 1036}, {"English - UK", 2057}}));
}

TEST_F(CountryBox, SelectsTheRowOfTheLocale) {
    const std::pair<std::int32_t, int> rows[] = {
        {0, 0}, {1031, 1}, {1033, 2}, {1036, 3}, {2057, 4}, {1034, 0}, {-2, 0}, {-1, 3},
    };
    for (const auto& [id, row] : rows) {
        populate(id);
        EXPECT_EQ(control->selected(), row) << id;
        EXPECT_EQ(control->rows().size(), 5u);
    }
    locale.PopulateComboBoxWithCountries(*countryComboBox(*control));
    EXPECT_EQ(control->selected(), 3);
}

TEST_F(CountryBox, MayFailAtAnyStep) {
    populate(0);
    const int steps = happenings.lookUps + happenings.calls;
    EXPECT_EQ(steps, 2 * (1 + 5 * 3 + 1));
    for (int step = 1; step <= steps; ++step) {
        happenings.lookUps = happenings.calls = 0;
        happenings.onStep = [step](const Step& asked) {
            return asked.number == step ? std::optional(DISP_E_MEMBERNOTFOUND) : std::nullopt;
        };
        EXPECT_EQ(testing::errorOf([&] { populate(0); }), 438) << step;
        EXPECT_EQ(control->references(), 1);
    }
}

TEST_F(CountryBox, FailsAtAnIndexThatIsNoNumber) {
    happenings.onStep = [](const Step& asked) -> std::optional<HRESULT> {
        if (asked.member != L"NewIndex" || asked.result == nullptr) return std::nullopt;
        V_VT(asked.result) = VT_NULL;
        return S_OK;
    };
    const int error = testing::errorOf([&] { populate(0); });
    EXPECT_EQ(error, 13);
}

TEST_F(CountryBox, KeepsTheControl) {
    const std::unique_ptr<CountryComboBox> box = countryComboBox(*control);
    EXPECT_EQ(control->references(), 2);
    control.release();
    locale.PopulateComboBoxWithCountries(*box, 1031);
    EXPECT_EQ(happenings.objects, 1);
}

}  // namespace
}  // namespace corvane
