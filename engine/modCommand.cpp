#include "engine/modCommand.h"

#include <algorithm>
#include <atomic>
#include <deque>
#include <memory>

#include "engine/statement_table.h"
#include "platform/automation_error.h"
#include "platform/subscript.h"
#include "platform/text_case.h"
#include "platform/value_rules.h"

namespace corvane {
namespace {

constexpr FunctionDefinition unknownDefinition{u"<unknown>", 0, {}, u"<unknown>"};
constexpr FunctionDefinition emptyDefinition;

const FunctionDefinition& publishedDefinition(std::int32_t kind) {
    if (const StatementRow* row = findStatementRow(kind)) return row->definition;
    return kind == ctUnknown ? unknownDefinition : emptyDefinition;
}

/// A catalogue that somebody wrote to.
struct WrittenCatalogue {
    std::array<FunctionDefinition, catalogueSize> records;
    std::deque<std::u16string> texts;

    WrittenCatalogue() {
        for (std::int32_t kind = 0; kind < catalogueSize; ++kind)
            records[static_cast<std::size_t>(kind)] = publishedDefinition(kind);
    }
    std::u16string_view keep(std::u16string_view text) { return texts.emplace_back(text); }
};

thread_local std::unique_ptr<WrittenCatalogue> writtenCatalogue;
// Whether any thread has one. Asked first, since a thread's own variables are dear where the compiler emulates them and
// each statement of a load asks.
std::atomic<bool> somebodyWrote = false;

WrittenCatalogue& catalogueToWrite() {
    if (!writtenCatalogue) writtenCatalogue = std::make_unique<WrittenCatalogue>();
    somebodyWrote.store(true, std::memory_order_relaxed);  // this thread sees it, and the others need not
    return *writtenCatalogue;
}

const WrittenCatalogue* presentCatalogue() {
    return somebodyWrote.load(std::memory_order_relaxed) ? writtenCatalogue.get() : nullptr;
}

/// The numeric test for one decimal mark. A mark that is not the locale's is held to strict rules: digits, one mark,
/// one sign in front or at the very end; the text is then rewritten into the locale's form.
bool IsNumberWithSeparator(std::u16string& text, char16_t separator, const NumberLocale& locale) {
    if (locale.decimalMark == std::u16string_view(&separator, 1)) return isNumeric(text, locale);
    bool separatorSeen = false;
    char16_t sign = 0;
    std::u16string integerDigits;
    std::u16string fractionDigits;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char16_t c = text[i];
        if (c == separator) {
            if (separatorSeen) return false;
            separatorSeen = true;
        } else if (c >= u'0' && c <= u'9') {
            (separatorSeen ? fractionDigits : integerDigits) += c;
        } else if (c == u'+' || c == u'-') {
            if (sign != 0 || (!integerDigits.empty() && i + 1 != text.size())) return false;
            sign = c;
        } else {
            return false;
        }
    }
    text.clear();
    if (sign != 0) text += sign;
    text += integerDigits;
    if (!fractionDigits.empty()) text.append(locale.decimalMark).append(fractionDigits);
    return isNumeric(text, locale);
}

}  // namespace

void BuildFunctionCatalogue() { writtenCatalogue.reset(); }

void SetFunctionDefinition(std::int32_t kind, std::u16string_view name, std::int32_t paramCount,
                           std::u16string_view description) {
    const std::size_t index = subscript(kind, catalogueSize);
    WrittenCatalogue& catalogue = catalogueToWrite();
    FunctionDefinition& record = catalogue.records[index];
    record.Name = catalogue.keep(name);
    record.ParamCount = paramCount;
    record.Description = catalogue.keep(description);
}

void SetParameterDefinition(std::int32_t kind, std::int32_t slot, std::int32_t paramType,
                            std::u16string_view paramName) {
    const std::size_t index = subscript(kind, catalogueSize);
    const std::size_t place = subscript(slot, maximumParameters);
    WrittenCatalogue& catalogue = catalogueToWrite();
    catalogue.records[index].Params[place] = {paramType, catalogue.keep(paramName)};
}

const FunctionDefinition& functionDefinition(std::int32_t kind) {
    const std::size_t index = subscript(kind, catalogueSize);
    if (const WrittenCatalogue* written = presentCatalogue()) return written->records[index];
    return publishedDefinition(kind);
}

std::int32_t FunctionTypeFromName(std::u16string_view keyword) {
    if (const WrittenCatalogue* written = presentCatalogue()) {
        const auto& records = written->records;
        const auto found = std::find_if(records.begin(), records.end(),
                                        [&](const auto& record) { return equalIgnoringCase(record.Name, keyword); });
        return found == records.end() ? ctUnknown : static_cast<std::int32_t>(found - records.begin());
    }
    if (keyword.empty()) return ctDecEnvironmentVariable;
    return statementKindNamed(keyword);
}

std::u16string_view CommandNameFromType(std::int32_t kind) {
    switch (kind) {
        case ctUnknown: return u"Unknown";
        case ctDecEnvironmentVariable: return u"Declare Environment Variable";
        case ctDecVariable: return u"Declare Variable";
        case ctDecConstant: return u"Declare Constant";
        default:
            const StatementRow* row = findStatementRow(kind);
            return row != nullptr ? row->definition.Name : std::u16string_view(u"Function not recognised");
    }
}

bool IsNumericText(std::u16string& value, const NumberLocale& locale) {
    return IsNumberWithSeparator(value, u'.', locale) || IsNumberWithSeparator(value, u',', locale);
}

}  // namespace corvane
