#pragma once

#include "host/com/automation.h"

namespace corvane {

/// A new clsProgramFunctionList as automation reaches it. Throws error 7.
ComReference<IUnknown> createProgramFunctionList();

}  // namespace corvane
