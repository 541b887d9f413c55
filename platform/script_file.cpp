#include "platform/script_file.h"

#include <new>

#include "platform/code_page.h"
#include "platform/whole_file.h"

namespace corvane {

namespace {

std::optional<std::u16string> readText(std::u16string_view path, WhenAbsent whenAbsent) {
    const std::optional<std::string> bytes = readWholeFile(path, whenAbsent);
    if (!bytes) return std::nullopt;
    try {
        return fromSystemCodePage(*bytes);
    } catch (const std::bad_alloc&) {
        throw fileError(ErrorNumber::OutOfMemory, path);
    }
}

}  // namespace

std::u16string readScriptFile(std::u16string_view path) { return readText(path, WhenAbsent::Create).value(); }

std::optional<std::u16string> readExistingScriptFile(std::u16string_view path) {
    return readText(path, WhenAbsent::Report);
}

}  // namespace corvane
