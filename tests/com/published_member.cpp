#include "tests/com/published_member.h"

#include <algorithm>
#include <regex>
#include <stdexcept>

namespace corvane::testing {
namespace {

PublishedParameter parameterOf(std::string text) {
    PublishedParameter parameter;
    if (text.ends_with("?")) {
        parameter.optional = true;
        text.pop_back();
    }
    if (text.ends_with("&")) {
        parameter.byReference = true;
        text.pop_back();
    }
    const std::size_t colon = text.find(": ");
    if (colon != std::string::npos) parameter.name = text.substr(0, colon);
    parameter.type = colon == std::string::npos ? text : text.substr(colon + 2);
    return parameter;
}

}  // namespace

WORD PublishedMember::flags() const {
    if (kind == "get") return DISPATCH_PROPERTYGET;
    return kind == "put" ? DISPATCH_PROPERTYPUT : DISPATCH_METHOD;
}

PublishedMember memberOf(const std::string& line) {
    static const std::regex form(R"(([0-9a-f]{8}) (\w+) (\w+)\((.*)\)(: (\w+))?)");
    std::smatch parts;
    if (!std::regex_match(line, parts, form)) throw std::runtime_error("not a member: " + line);
    PublishedMember member;
    member.id = static_cast<DISPID>(std::stoul(parts[1], nullptr, 16));
    member.kind = parts[2];
    member.name = parts[3];
    member.result = parts[6];
    std::string rest = parts[4];
    while (!rest.empty()) {
        const std::size_t comma = std::min(rest.find(", "), rest.size());
        member.parameters.push_back(parameterOf(rest.substr(0, comma)));
        rest.erase(0, comma + 2);
    }
    return member;
}

}  // namespace corvane::testing
