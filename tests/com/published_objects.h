#pragma once

#include <string>
#include <vector>

#include "host/com/automation.h"

/// One object of each kind that hosts meet, with the members that its interface is published with.
namespace corvane::testing {

struct PublishedParameter {
    std::string name;  ///< empty: the new value of a property
    std::string type;
    bool byReference = false;
    bool optional = false;
};

struct PublishedMember {
    DISPID id = DISPID_UNKNOWN;
    std::string kind;  ///< get, put, method
    std::string name;
    std::vector<PublishedParameter> parameters;
    std::string result;  ///< its type; empty: none

    WORD flags() const;
    /// As messages name it.
    std::string title() const { return kind + " " + name; }
};

/// A member as published.txt has it in one line.
PublishedMember memberOf(const std::string& line);

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
