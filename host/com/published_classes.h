#pragma once

#include <array>
#include <string_view>

#include "host/com/automation.h"

/// What the component publishes under names and identifiers of its own, a row each.
namespace corvane {

/// A dual interface and the class that bears it.
struct PublishedInterface {
    const IID& interfaceId;
    const CLSID* classId;                ///< null: of no creatable class
    const IID* eventInterfaceId;         ///< null: no events
    std::u16string_view programId;       ///< what a host creates it by; also what errors name as their source
    std::u16string_view description;     ///< for registries and object browsers
    ComReference<IUnknown> (*create)();  ///< throws error 7; null where there is no class
};

extern const PublishedInterface publishedScriptControl;
extern const PublishedInterface publishedProgramFunctionList;
extern const PublishedInterface publishedProgramFunction;
extern const PublishedInterface publishedDataSetParameters;
extern const PublishedInterface publishedScriptParamList;
extern const PublishedInterface publishedCollection;

/// The five classes that hosts can create.
extern const std::array<const PublishedInterface*, 5> creatableClasses;

}  // namespace corvane
