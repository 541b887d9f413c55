#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "platform/text.h"

namespace corvane {

/// A list of ten numbers, ten texts and ten Booleans that hosts may pass around; the component itself has no use for
/// it. Every index runs from 0 to 9; elsewhere a call fails with error 9 and changes nothing.
class clsScriptParamList {
public:
    static constexpr std::int32_t slotCount = 10;

    float SingleValue(std::int32_t tIndex) const;
    void setSingleValue(std::int32_t tIndex, float value);
    std::u16string_view StringValue(std::int32_t tIndex) const;
    void setStringValue(std::int32_t tIndex, std::u16string_view value);
    bool BooleanValue(std::int32_t tIndex) const;
    void setBooleanValue(std::int32_t tIndex, bool value);

private:
    std::array<float, slotCount> singles_{};
    std::array<Text, slotCount> strings_;
    std::array<bool, slotCount> booleans_{};
};

}  // namespace corvane
