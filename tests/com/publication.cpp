// Reads the component's interface definition: our own file, so only the part of that language that it uses.

#include "tests/com/publication.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <stdexcept>

namespace corvane::testing {
namespace {

/// Words, numbers, quoted texts and marks, without comments.
class Tokens {
public:
    explicit Tokens(const char* path) {
        std::ifstream file(path);
        EXPECT_TRUE(file) << path;
        std::string line;
        while (std::getline(file, line)) {
            const std::string_view code = std::string_view(line).substr(0, line.find("//"));
            for (std::size_t begin = 0; begin < code.size();) {
                const std::size_t end = endOfToken(code, begin);
                if (code[begin] != ' ') tokens_.emplace_back(code.substr(begin, end - begin));
                begin = end;
            }
        }
    }

    bool atEnd() const { return next_ == tokens_.size(); }
    const std::string& peek() const { return tokens_.at(next_); }
    std::string take() { return tokens_.at(next_++); }
    bool skip(std::string_view token) {
        if (atEnd() || peek() != token) return false;
        ++next_;
        return true;
    }
    void expect(std::string_view token) {
        if (!skip(token)) throw std::runtime_error(std::string(token) + " expected before " + peek());
    }
    void skipBehind(std::string_view token) {
        while (take() != token) {
        }
    }

private:
    // Numbers and identifiers such as 1.0 and F3C0FD1F-A4B4 are words, too.
    static std::size_t endOfToken(std::string_view code, std::size_t begin) {
        if (code[begin] == '"') return code.find('"', begin + 1) + 1;
        std::size_t end = begin;
        while (end < code.size() &&
               (std::isalnum(static_cast<unsigned char>(code[end])) != 0 || (std::strchr("_.-", code[end]) != nullptr)))
            ++end;
        return std::max(end, begin + 1);
    }

    std::vector<std::string> tokens_;
    std::size_t next_ = 0;
};

/// What stands in brackets before something: each attribute with its argument, if any.
using Attributes = std::map<std::string, std::string>;

Attributes takeAttributes(Tokens& tokens) {
    Attributes attributes;
    if (!tokens.skip("[")) return attributes;
    do {
        const std::string name = tokens.take();
        std::string& argument = attributes[name];
        if (tokens.skip("(")) {
            argument = tokens.take();
            tokens.expect(")");
        }
    } while (tokens.skip(","));
    tokens.expect("]");
    return attributes;
}

std::vector<std::string> takeEnumerators(Tokens& tokens) {
    std::vector<std::string> lines;
    tokens.expect("{");
    while (!tokens.skip("}")) {
        const std::string name = tokens.take();
        tokens.expect("=");
        lines.push_back(name + " = " + tokens.take());
        tokens.skip(",");
    }
    return lines;
}

/// A type as the definition writes it, up to the name that it is the type of.
struct Type {
    std::string name;
    int stars = 0;
};

Type takeType(Tokens& tokens) {
    static const std::map<std::string, std::string> words{
        {"BSTR", "string"},     {"VARIANT_BOOL", "boolean"}, {"float", "single"},
        {"VARIANT", "variant"}, {"IUnknown", "unknown"},
    };
    Type type;
    type.name = tokens.take();
    if (type.name == "SAFEARRAY") {
        tokens.expect("(");
        type.name = words.at(tokens.take()) + "()";
        tokens.expect(")");
    } else if (const auto word = words.find(type.name); word != words.end()) {
        type.name = word->second;
    }
    while (tokens.skip("*")) ++type.stars;
    return type;
}

// Objects are pointers already.
bool isObject(const Type& type) { return type.name.starts_with("_") || type.name == "unknown"; }

struct Parameters {
    std::vector<std::string> texts;
    std::string result;
};

Parameters takeParameters(Tokens& tokens, bool lastIsValue) {
    Parameters parameters;
    tokens.expect("(");
    while (!tokens.skip(")")) {
        const Attributes attributes = takeAttributes(tokens);
        const Type type = takeType(tokens);
        const std::string name = tokens.take();
        tokens.skip(",");
        const int references = type.stars - (isObject(type) ? 1 : 0);
        const bool byReference = references == 1;
        const bool in = attributes.contains("in");
        const bool out = attributes.contains("out");
        EXPECT_TRUE(references == 0 || byReference) << name;
        EXPECT_EQ(out, byReference) << name;
        if (attributes.contains("retval")) {
            EXPECT_FALSE(in) << name;
            parameters.result = type.name;
            continue;
        }
        EXPECT_TRUE(in) << name;
        const bool isValue = lastIsValue && tokens.peek() == ")";
        parameters.texts.push_back(
            parameterText(isValue ? "" : name, type.name, byReference, attributes.contains("optional")));
    }
    tokens.expect(";");
    return parameters;
}

std::vector<std::string> takeMembers(Tokens& tokens, std::string_view returned) {
    static const std::map<std::string, long> named{{"DISPID_VALUE", 0}, {"DISPID_NEWENUM", -4}};
    std::vector<std::string> lines;
    while (!tokens.skip("}")) {
        const Attributes attributes = takeAttributes(tokens);
        tokens.expect(returned);
        const std::string name = tokens.take();
        const bool isPut = attributes.contains("propput");
        const Parameters parameters = takeParameters(tokens, isPut);
        const std::string& written = attributes.at("id");
        const auto known = named.find(written);
        const long identifier = known != named.end() ? known->second : std::stol(written, nullptr, 0);
        lines.push_back(memberText(identifier,
                                   isPut                            ? "put"
                                   : attributes.contains("propget") ? "get"
                                                                    : "method",
                                   name, parameters.texts, parameters.result));
    }
    return lines;
}

std::vector<std::string> takeImplemented(Tokens& tokens) {
    std::vector<std::string> lines;
    tokens.expect("{");
    while (!tokens.skip("}")) {
        const Attributes attributes = takeAttributes(tokens);
        const std::string kind = tokens.take();
        EXPECT_EQ(kind, attributes.contains("source") ? "dispinterface" : "interface");
        lines.push_back((attributes.contains("default") ? std::string("default ") : "") +
                        (attributes.contains("source") ? "source " : "") + tokens.take());
        tokens.expect(";");
    }
    return lines;
}

void takeDefinition(Tokens& tokens, Publication& publication) {
    const Attributes attributes = takeAttributes(tokens);
    const std::string kind = tokens.take();
    if (kind == "importlib") {
        tokens.skipBehind(";");
        return;
    }
    if (kind == "typedef") {
        takeAttributes(tokens);
        tokens.expect("enum");
        const std::string name = tokens.take();
        publication["enum " + name] = takeEnumerators(tokens);
        tokens.expect(name);
        tokens.expect(";");
        return;
    }
    const std::string name = tokens.take();
    if (tokens.skip(";")) return;
    const std::string identified = name + " {" + attributes.at("uuid") + "}";
    if (kind == "interface") {
        EXPECT_TRUE(attributes.contains("dual") && attributes.contains("oleautomation")) << name;
        tokens.expect(":");
        tokens.expect("IDispatch");
        tokens.expect("{");
        publication["interface " + identified] = takeMembers(tokens, "HRESULT");
    } else if (kind == "dispinterface") {
        for (const char* token : {"{", "properties", ":", "methods", ":"}) tokens.expect(token);
        publication["events " + identified] = takeMembers(tokens, "void");
    } else {
        EXPECT_EQ(kind, "coclass");
        publication["class " + identified] = takeImplemented(tokens);
    }
}

}  // namespace

std::string parameterText(std::string_view name, std::string_view type, bool byReference, bool optional) {
    return std::string(name) + (name.empty() ? "" : ": ") + std::string(type) + (byReference ? "&" : "") +
           (optional ? "?" : "");
}

std::string memberText(long identifier, std::string_view kind, std::string_view name,
                       const std::vector<std::string>& parameters, std::string_view result) {
    char number[16];
    std::snprintf(number, sizeof number, "%08lx", static_cast<unsigned long>(identifier) & 0xFFFFFFFFUL);
    std::string line = std::string(number) + " " + std::string(kind) + " " + std::string(name) + "(";
    for (const std::string& parameter : parameters) {
        if (line.back() != '(') line += ", ";
        line += parameter;
    }
    line += ")";
    return result.empty() ? line : line + ": " + std::string(result);
}

Publication frozenPublication() {
    Publication publication;
    std::ifstream file("tests/com/published.txt");
    EXPECT_TRUE(file);
    std::vector<std::string>* lines = nullptr;
    std::string line;
    while (std::getline(file, line)) {
        if (line.empty() || line.starts_with("#")) continue;
        if (line.starts_with("    "))
            lines->push_back(line.substr(4));
        else
            lines = &publication[line];
    }
    return publication;
}

Publication definedPublication() {
    Publication publication;
    Tokens tokens("host/com/script_component.idl");
    while (tokens.skip("import")) tokens.skipBehind(";");
    const Attributes attributes = takeAttributes(tokens);
    tokens.expect("library");
    publication["library " + tokens.take() + " {" + attributes.at("uuid") + "} " + attributes.at("version")];
    tokens.expect("{");
    while (!tokens.skip("}")) takeDefinition(tokens, publication);
    EXPECT_TRUE(tokens.atEnd());
    return publication;
}

Publication enumerationsOf(const char* header) {
    Publication publication;
    Tokens tokens(header);
    while (!tokens.atEnd()) {
        if (tokens.take() != "enum") continue;
        const std::string name = tokens.take();
        for (const char* token : {":", "std", ":", ":", "int32_t"}) tokens.expect(token);
        publication["enum " + name] = takeEnumerators(tokens);
    }
    return publication;
}

void expectSame(const Publication& given, const Publication& expected) {
    for (const auto& [headline, lines] : expected) {
        const auto found = given.find(headline);
        if (found == given.end()) {
            ADD_FAILURE() << "missing: " << headline;
            continue;
        }
        EXPECT_EQ(found->second, lines) << headline;
    }
    for (const auto& [headline, lines] : given)
        EXPECT_TRUE(expected.contains(headline)) << "not published so far: " << headline;
}

}  // namespace corvane::testing
