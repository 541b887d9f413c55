#include "ui/country_combo_box.h"
#include "ui/late_bound-win32.h"

namespace corvane {
namespace {

class LateBoundComboBox final : public CountryComboBox {
public:
    explicit LateBoundComboBox(IDispatch& control) : control_(&control) {}

    void clear() override { control_.call(L"Clear"); }
    void add(std::u16string_view text, std::int32_t itemData) override {
        control_.call(L"AddItem", {Variant::ofText(text)});
        const std::int32_t row = control_.get(L"NewIndex").toLong();
        control_.putIndexed(control_.idOf(L"ItemData"), row, Variant::ofLong(itemData));
    }
    void select(std::int32_t row) override { control_.put(L"ListIndex", Variant::ofLong(row)); }

private:
    LateBoundObject control_;
};

}  // namespace

std::unique_ptr<CountryComboBox> countryComboBox(IDispatch& control) {
    return std::make_unique<LateBoundComboBox>(control);
}

}  // namespace corvane
