#pragma once

#include <string>

#include "platform/utf8.h"
#include "tests/com/every_event.h"
#include "tests/platform/temporary_folder.h"

namespace corvane::testing {

/// How a load of a file ended, as a host sees it: "True", "False", or "error 75: DESCRIPTION".
inline std::string loadFile(_clsScriptControl& control, std::u16string_view path) {
    HostText name(path);
    VARIANT_BOOL accepted = VARIANT_FALSE;
    const HRESULT result = control.LoadScript_FromFile(name.address(), &accepted);
    if (result == S_OK) return accepted == VARIANT_TRUE ? "True" : "False";
    return "error " + std::to_string(result & 0xFFFF) + ": " + takeError().description;
}

/// What it says when the error concerns the file itself: the platform's sentence and the path.
inline std::string errorOf(const std::string& numberAndSentence, std::u16string_view path) {
    return "error " + numberAndSentence + ": '" + toUtf8(path) + "'";
}

inline std::string constantOf(_clsScriptControl& control, std::u16string_view constant) {
    HostText name(constant);
    BSTR value = nullptr;
    EXPECT_EQ(control.GetConstant(name.address(), &value), S_OK);
    return toUtf8(taken(value));
}

}  // namespace corvane::testing
