#pragma once

#include <string>
#include <vector>

#include "host/com/automation.h"

/// A member of an interface as published.txt describes it.
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

/// A member as published.txt has it in one line. Throws std::runtime_error when it is none.
PublishedMember memberOf(const std::string& line);

}  // namespace corvane::testing
