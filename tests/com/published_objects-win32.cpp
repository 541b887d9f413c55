#include <gtest/gtest.h>

#include <regex>

#include "tests/com/component.h"
#include "tests/com/publication.h"
#include "tests/com/published_objects.h"

namespace corvane::testing {
namespace {

template <typename Interface>
ComReference<IDispatch> dispatchOf(const ComReference<Interface>& object) {
    return ComReference<IDispatch>(object.get());
}

ComReference<IDispatch> newObject(const std::string& interfaceName) {
    if (interfaceName == "_clsScriptControl") {
        const ComReference<_clsScriptControl> control = newControl();
        EXPECT_TRUE(load(*control.get(), u"VAR A = 1\r\nSet(A, 2)"));
        return dispatchOf(control);
    }
    if (interfaceName == "_clsProgramFunctionList" || interfaceName == "_Collection") {
        const ComReference<_clsProgramFunctionList> list = newFunctionList();
        HostText script(u"VAR A = 1\r\nSet(A, 2)");
        LONG number = 0;
        VARIANT_BOOL loaded = VARIANT_FALSE;
        EXPECT_EQ(list->LoadProgramScript_FromDatabase(script.address(), script.address(), &number, &number, &loaded),
                  S_OK);
        EXPECT_EQ(loaded, VARIANT_TRUE);
        if (interfaceName == "_clsProgramFunctionList") return dispatchOf(list);
        ComReference<_Collection> collection;
        EXPECT_EQ(list->get_FunctionList(collection.receive()), S_OK);
        return dispatchOf(collection);
    }
    if (interfaceName == "_clsProgramFunction") {
        const auto function = create<_clsProgramFunction>(CLSID_clsProgramFunction, IID__clsProgramFunction);
        const HostText parameter(u"first");
        EXPECT_EQ(function->AddParam(parameter.get()), S_OK);
        return dispatchOf(function);
    }
    if (interfaceName == "_clsDataSetParameters")
        return dispatchOf(create<_clsDataSetParameters>(CLSID_clsDataSetParameters, IID__clsDataSetParameters));
    return dispatchOf(create<_clsScriptParamList>(CLSID_clsScriptParamList, IID__clsScriptParamList));
}

}  // namespace

std::vector<PublishedObject> publishedObjects() {
    std::vector<PublishedObject> objects;
    for (const auto& [headline, lines] : frozenPublication()) {
        static const std::regex form(R"(interface (\w+) (\{.*\}))");
        std::smatch parts;
        if (!std::regex_match(headline, parts, form)) continue;
        PublishedObject published;
        published.interfaceName = parts[1];
        const std::wstring identifier(parts[2].first, parts[2].second);
        EXPECT_EQ(IIDFromString(identifier.c_str(), &published.interfaceId), S_OK) << headline;
        for (const std::string& line : lines) published.members.push_back(memberOf(line));
        published.object = newObject(published.interfaceName);
        objects.push_back(std::move(published));
    }
    EXPECT_EQ(objects.size(), 6U);
    return objects;
}

}  // namespace corvane::testing
