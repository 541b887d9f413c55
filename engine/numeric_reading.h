#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "engine/modCommand.h"
#include "platform/value_rules.h"

namespace corvane {

/// One stretch of a script's text after the numeric-text test. A text that the quick answers cannot decide goes to the
/// test, which may rewrite it and refuse it all the same: `text` is what it leaves.
///
/// It refers to the text that it was made from, which stays in place.
class NumericReading {
public:
    NumericReading(std::u16string_view text, const NumberLocale& locale)
        : text_(text), plain_(plainNumber(text, locale)) {
        if (plain_ || beginsAsName(text, locale)) return;
        rewritten_ = text;
        isNumericText_ = IsNumericText(rewritten_, locale);
        text_ = rewritten_;
    }
    NumericReading(const NumericReading&) = delete;
    NumericReading& operator=(const NumericReading&) = delete;

    bool isNumber() const { return plain_ || isNumericText_; }
    std::u16string_view text() const { return text_; }
    /// The number that the text is; error 6 when it is beyond a single.
    float single(const NumberLocale& locale) const {
        if (plain_) return *plain_;
        return toSingle(Value::ofText(text_), locale);
    }

private:
    std::u16string_view text_;
    std::u16string rewritten_;
    std::optional<float> plain_;
    bool isNumericText_ = false;
};

}  // namespace corvane
