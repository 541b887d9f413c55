#pragma once

#include "host/clsDataSetParameters.h"
#include "host/clsProgramFunction.h"
#include "host/com/automation.h"

/// The records as automation reaches them: objects that share the component's own record.
namespace corvane {

/// A new face of the record. Throws error 7.
ComReference<IDispatch> newDataSetFace(clsDataSetParameters& record);
ComReference<IDispatch> newProgramFunctionFace(clsProgramFunction& record);

// For the class factory: new objects over new records.
ComReference<IUnknown> createDataSetParameters();
ComReference<IUnknown> createProgramFunction();
ComReference<IUnknown> createScriptParamList();

}  // namespace corvane
