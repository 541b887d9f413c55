#include "tests/com/published_member.h"

#include <algorithm>
#include <sstream>
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
    const std::size_t open = line.find('(');
    const std::size_t close = line.rfind(')');
    if (open == std::string::npos || close == std::string::npos) throw std::runtime_error("not a member: " + line);
    PublishedMember member;
    std::istringstream head(line.substr(0, open));
    std::string id;
    head >> id >> member.kind >> member.name;
    member.id = static_cast<DISPID>(std::stoul(id, nullptr, 16));
    if (line.size() > close + 1) member.result = line.substr(line.find(": ", close) + 2);
    std::string rest = line.substr(open + 1, close - open - 1);
    while (!rest.empty()) {
        const std::size_t comma = std::min(rest.find(", "), rest.size());
        member.parameters.push_back(parameterOf(rest.substr(0, comma)));
        rest.erase(0, comma + 2);
    }
    return member;
}

}  // namespace corvane::testing
