#pragma once

#include "host/com/clsScriptControl_com.h"
#include "tests/com/component.h"

namespace corvane::testing {

inline constexpr std::u16string_view editableScript = u"VAR Count = 3\r\nCONST C = 1\r\nVAR Title = \"Run\"";

/// Marks two items of the loaded `editableScript` for editing by the host. No script can do that and no host: only
/// what shares the component's data memory, so the test reaches into it.
inline void makeItemsEditable(_clsScriptControl& control) {
    clsDataList& memory = facadeOf(control).engine().DataMemory();
    clsData number = memory.Item(1);
    number.setIsEditable(true);
    number.setMinVal(-0.5F);
    number.setMaxVal(1e20F);
    number.setUnits(u"mm");
    number.setPromptString(u"How high?");
    memory.Item(3).setIsEditable(true);
    memory.setEditableCount(2);
}

}  // namespace corvane::testing
