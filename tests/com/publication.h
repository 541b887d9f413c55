#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

/// What the component publishes, written so that a person and a test can compare it.
namespace corvane::testing {

/// By headline ("enum enumSampleMode", "interface _clsProgramFunction {identifier}"), the lines below it.
using Publication = std::map<std::string, std::vector<std::string>>;

/// A parameter of a member or an event as one line shows it.
std::string parameterText(std::string_view name, std::string_view type, bool byReference, bool optional = false);
/// A member as one line: identifier, kind (get, put, method), name, parameters, result if any.
std::string memberText(long identifier, std::string_view kind, std::string_view name,
                       const std::vector<std::string>& parameters, std::string_view result = {});

/// What hosts rely on: published.txt.
Publication frozenPublication();
/// What the definition that the type library is compiled from says.
Publication definedPublication();
/// The enumerations of a C++ header.
Publication enumerationsOf(const char* header);

/// Fails the test for every headline and every line in which the two differ.
void expectSame(const Publication& given, const Publication& expected);

}  // namespace corvane::testing
