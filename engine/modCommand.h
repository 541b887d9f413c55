#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "engine/enumerations.h"
#include "platform/number_locale.h"

/// The function catalogue: the vocabulary of the script language, a record for each statement kind.
///
/// Its content comes from the statement table. The writing operations exist for editors of the catalogue; the first of
/// them on a thread gives this thread a copy of its own, which `BuildFunctionCatalogue` discards again.
namespace corvane {

inline constexpr std::int32_t catalogueSize = 100;
inline constexpr std::int32_t maximumParameters = 25;

/// What a parameter slot accepts: a mask of enumParamType bits.
struct ParameterDefinition {
    std::int32_t ParamType = 0;
    std::u16string_view ParamName;
};

/// One record of the catalogue. The texts live as long as the thread's catalogue is not written.
struct FunctionDefinition {
    std::u16string_view Name;     ///< the keyword as written in scripts
    std::int32_t ParamCount = 0;  ///< the exact number of parameters of a statement
    std::array<ParameterDefinition, maximumParameters> Params{};
    std::u16string_view Description;
};

/// Gives this thread's catalogue its published content.
void BuildFunctionCatalogue();

/// Writes name, count and description of the record at `kind`; error 9 outside 0 to 99.
void SetFunctionDefinition(std::int32_t kind, std::u16string_view name, std::int32_t paramCount,
                           std::u16string_view description);

/// Writes a slot of the record at `kind`; error 9, and nothing is written, when the record is outside 0 to 99 or the
/// slot outside 0 to 24.
void SetParameterDefinition(std::int32_t kind, std::int32_t slot, std::int32_t paramType,
                            std::u16string_view paramName);

/// The record at `kind`; error 9 outside 0 to 99.
const FunctionDefinition& functionDefinition(std::int32_t kind);

/// The first kind whose keyword is `keyword` without regard to case, or 0. Blanks count. An empty keyword yields 1, the
/// first record without a name.
std::int32_t FunctionTypeFromName(std::u16string_view keyword);

/// The display name of a kind; it does not read the catalogue. "Function not recognised" outside 0 to 52.
std::u16string_view CommandNameFromType(std::int32_t kind);

/// Whether `value` is a number written with "." or ",", whatever the locale's decimal mark. An accepted text is
/// rewritten into the locale's own form; a refused one may be left rewritten as well.
bool IsNumericText(std::u16string& value, const NumberLocale& locale);

}  // namespace corvane
