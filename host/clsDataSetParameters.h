#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "engine/enumerations.h"
#include "platform/shared_record.h"
#include "platform/text.h"

namespace corvane {

/// The parameters of one data-set acquisition. The engine fills a new one for each data-set statement and hands the
/// very object to the host, which reads it, may write results into it and may keep it.
///
/// The members are stored and returned unchanged: no range is checked, and the enumerations may hold other values.
class clsDataSetParameters final : public SharedRecord {
public:
    static constexpr std::int32_t variableCount = 8;

    float HelixAngle = 0;   ///< of the blade's path, degrees
    float TipSpeed = 0;     ///< of the blade, mm/s
    float Height = 0;       ///< mm
    float Force = 0;        ///< N
    float SampleDelta = 0;  ///< sampling interval, in the unit that SampleType chooses
    enumSampleMode SampleType = smHeight;
    enumDataSetType DataSetType = dstTest;
    std::int32_t Direction = 3;  ///< code of the movement's direction; 3 where the script gives none
    enumLevellingFrom LevellingFrom = lfNone;
    enumLevellingType LevellingType = ltNoLevelling;
    float LevellingTrigger = 0;
    float LevellingHix = 0;  ///< helix angle while levelling, degrees
    float LevellingTip = 0;  ///< tip speed while levelling, mm/s
    enumTestResult TestResult = trNotRun;

    /// Stores a text in the slot `tIndex`, 0 to 7, replacing what was there; error 9 elsewhere.
    void AddDataSetVariable(std::int32_t tIndex, std::u16string_view variable);
    /// The text in the slot `tIndex`, 0 to 7; error 9 elsewhere.
    std::u16string_view DataSetVariable(std::int32_t tIndex) const;

private:
    std::array<Text, variableCount> variables_;
};

}  // namespace corvane
