#include <ostream>

#include "cli/commands.h"
#include "cli/json_writer.h"
#include "cli/locale_figures.h"
#include "cli/locale_window.h"
#include "engine/text_utilities.h"
#include "platform/utf8.h"
#include "ui/text_table.h"

namespace corvane {
namespace {

/// The box of countries without a window.
class CountryRows final : public CountryComboBox {
public:
    struct Row {
        std::u16string name;
        std::int32_t localeId;
    };

    void clear() override { rows_.clear(); }
    void add(std::u16string_view text, std::int32_t itemData) override {
        rows_.push_back({std::u16string(text), itemData});
    }
    void select(std::int32_t row) override { selected_ = row; }

    const std::vector<Row>& rows() const { return rows_; }
    std::int32_t selected() const { return selected_; }

private:
    std::vector<Row> rows_;
    std::int32_t selected_ = 0;
};

void writeText(const clsLocale& locale, std::int32_t id, const CountryRows& countries, std::ostream& output) {
    constexpr std::size_t nameWidth = 19;
    for (const LocaleFigure& figure : localeFigures(locale, id)) {
        std::u16string line(figure.name);
        line.resize(nameWidth, u' ');
        output << toUtf8(line + figure.value) << '\n';
    }
    TextTable table;
    table.prepare();
    for (const std::u16string_view column : {u"Locale", u"Country", u""}) table.addColumn(column);
    for (std::size_t i = 0; i < countries.rows().size(); ++i) {
        table.addRow(decimal(countries.rows()[i].localeId));
        table.setSubItem(1, countries.rows()[i].name);
        if (static_cast<std::int32_t>(i) == countries.selected()) table.setSubItem(2, u"selected");
    }
    output << "\nCountries\n\n" << toUtf8(table.aligned());
}

void writeJson(const clsLocale& locale, std::int32_t id, const CountryRows& countries, std::ostream& output) {
    const std::int32_t asked = id == omittedLocale ? locale.DefaultLocaleID() : id;
    JsonWriter json(output);
    json.beginObject();
    json.member("locale", asked);
    json.member("country", std::u16string_view(locale.LocaleIDtoCountryName(asked)));
    json.member("decimalSeparator", std::u16string_view(locale.GetDecimalSeparator(id)));
    json.member("listSeparator", std::u16string_view(locale.GetListSeparator(id)));
    json.member("windowsType", locale.GetWindowsType());
    json.member("windowsTypeText", std::u16string_view(locale.GetWindowsTypeText()));
    json.member("windowsVersion", std::u16string_view(locale.GetWindowsOSVersion()));
    json.member("servicePack", std::u16string_view(locale.GetWindowsServicePack()));
    json.key("countries");
    json.beginArray();
    for (const CountryRows::Row& row : countries.rows()) {
        json.beginObject();
        json.member("locale", row.localeId);
        json.member("country", std::u16string_view(row.name));
        json.endObject();
    }
    json.endArray();
    json.member("selected", countries.selected());
    json.endObject();
}

}  // namespace

ExitCode localeCommand(const LocaleOptions& options, const Surroundings& surroundings) {
    const clsLocale locale;
    if (options.windows) {
        if (showLocaleWindow(locale, options.id)) return ExitCode::Success;
        surroundings.errors << "corvane: no window can be shown\n";
        return ExitCode::NoOutput;
    }
    CountryRows countries;
    locale.PopulateComboBoxWithCountries(countries, options.id);
    if (options.json)
        writeJson(locale, options.id, countries, surroundings.output);
    else
        writeText(locale, options.id, countries, surroundings.output);
    return ExitCode::Success;
}

}  // namespace corvane
