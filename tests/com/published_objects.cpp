#include "tests/com/published_objects.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/com/component.h"
#include "tests/com/publication.h"

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

/// The identifier that "{00112233-4455-6677-8899-AABBCCDDEEFF}" writes.
IID identifierFrom(const std::string& text) {
    const auto number = [&](std::size_t position, std::size_t digits) {
        return std::stoul(text.substr(position, digits), nullptr, 16);
    };
    IID id{};
    id.Data1 = static_cast<decltype(id.Data1)>(number(1, 8));
    id.Data2 = static_cast<WORD>(number(10, 4));
    id.Data3 = static_cast<WORD>(number(15, 4));
    for (std::size_t i = 0; i < 8; ++i) id.Data4[i] = static_cast<BYTE>(number((i < 2 ? 20 : 21) + 2 * i, 2));
    return id;
}

}  // namespace

std::vector<PublishedObject> publishedObjects() {
    std::vector<PublishedObject> objects;
    for (const auto& [headline, lines] : frozenPublication()) {
        constexpr std::string_view keyword = "interface ";
        if (!headline.starts_with(keyword)) continue;
        const std::size_t nameEnd = headline.find(' ', keyword.size());
        PublishedObject published;
        published.interfaceName = headline.substr(keyword.size(), nameEnd - keyword.size());
        published.interfaceId = identifierFrom(headline.substr(nameEnd + 1));
        for (const std::string& line : lines) published.members.push_back(memberOf(line));
        published.object = newObject(published.interfaceName);
        objects.push_back(std::move(published));
    }
    EXPECT_EQ(objects.size(), 6U);
    return objects;
}

}  // namespace corvane::testing
