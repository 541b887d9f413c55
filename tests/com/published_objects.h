#pragma once

#include <string>
#include <vector>

#include "tests/com/published_member.h"

/// One object of each kind that hosts meet, with the members that its interface is published with.
namespace corvane::testing {

struct PublishedObject {
    std::string interfaceName;
    IID interfaceId{};
    ComReference<IDispatch> object;
    std::vector<PublishedMember> members;
};

/// The five classes and the collection. A script is loaded where there can be one, records have a parameter, the
/// collection has an entry: each member can be called.
std::vector<PublishedObject> publishedObjects();

}  // namespace corvane::testing
