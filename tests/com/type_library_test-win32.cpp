// The type library as a host's compiler or object browser finds it in the DLL.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "tests/com/component.h"
#include "tests/com/publication.h"

namespace corvane::testing {
namespace {

std::string narrow(BSTR text) {
    const std::u16string content = taken(text);
    return {content.begin(), content.end()};
}

std::string textOf(const GUID& id) {
    OLECHAR text[39];
    StringFromGUID2(id, text, 39);
    return {text, text + 38};
}

/// Read access to a description of the library for the length of a scope.
class Attributes {
public:
    explicit Attributes(ITypeInfo& information) : information_(information) {
        EXPECT_EQ(information_.GetTypeAttr(&attributes_), S_OK);
    }
    Attributes(const Attributes&) = delete;
    Attributes& operator=(const Attributes&) = delete;
    ~Attributes() { information_.ReleaseTypeAttr(attributes_); }
    const TYPEATTR* operator->() const { return attributes_; }

private:
    ITypeInfo& information_;
    TYPEATTR* attributes_ = nullptr;
};

std::string nameOf(ITypeInfo& information) {
    BSTR name = nullptr;
    EXPECT_EQ(information.GetDocumentation(MEMBERID_NIL, &name, nullptr, nullptr, nullptr), S_OK);
    return narrow(name);
}

ComReference<ITypeInfo> referred(ITypeInfo& information, HREFTYPE reference) {
    ComReference<ITypeInfo> found;
    EXPECT_EQ(information.GetRefTypeInfo(reference, found.receive()), S_OK);
    return found;
}

struct Type {
    std::string name;
    bool byReference = false;
};

// A pointer to an interface is an object; what it points to is no reference.
Type typeOf(ITypeInfo& owner, const TYPEDESC& description) {
    if (description.vt == VT_PTR) {
        Type pointed = typeOf(owner, *description.lptdesc);
        const bool isObject = description.lptdesc->vt == VT_USERDEFINED && pointed.name.starts_with("_");
        EXPECT_FALSE(pointed.byReference) << pointed.name;
        pointed.byReference = !isObject;
        return pointed;
    }
    switch (description.vt) {
        case VT_I4: return {"long"};
        case VT_R4: return {"single"};
        case VT_BOOL: return {"boolean"};
        case VT_BSTR: return {"string"};
        case VT_VARIANT: return {"variant"};
        case VT_UNKNOWN: return {"unknown"};
        case VT_SAFEARRAY: return {typeOf(owner, *description.lptdesc).name + "()"};
        case VT_USERDEFINED: return {nameOf(*referred(owner, description.hreftype).get())};
        default: return {"type " + std::to_string(description.vt)};
    }
}

std::string kindOf(INVOKEKIND kind) {
    if (kind == INVOKE_FUNC) return "method";
    return kind == INVOKE_PROPERTYGET ? "get" : "put";
}

std::string lineOf(ITypeInfo& owner, const FUNCDESC& function) {
    std::vector<BSTR> names(static_cast<std::size_t>(function.cParams) + 1);
    UINT named = 0;
    EXPECT_EQ(owner.GetNames(function.memid, names.data(), static_cast<UINT>(names.size()), &named), S_OK);
    const std::string name = narrow(names[0]);
    std::vector<std::string> parameters;
    std::string result;
    for (UINT i = 0; i < static_cast<UINT>(function.cParams); ++i) {
        const ELEMDESC& element = function.lprgelemdescParam[i];
        const Type type = typeOf(owner, element.tdesc);
        const std::string parameter = i + 1 < named ? narrow(names[i + 1]) : "";
        const unsigned flags = element.paramdesc.wParamFlags;
        if ((flags & PARAMFLAG_FRETVAL) != 0) {
            EXPECT_EQ(flags, unsigned{PARAMFLAG_FOUT | PARAMFLAG_FRETVAL}) << name;
            EXPECT_TRUE(type.byReference) << name;
            result = type.name;
            continue;
        }
        const bool isValue = function.invkind == INVOKE_PROPERTYPUT && i + 1 == static_cast<UINT>(function.cParams);
        const bool optional = (flags & PARAMFLAG_FOPT) != 0;
        EXPECT_EQ(flags & ~PARAMFLAG_FOPT, PARAMFLAG_FIN | (type.byReference ? PARAMFLAG_FOUT : 0U)) << name;
        parameters.push_back(parameterText(isValue ? "" : parameter, type.name, type.byReference, optional));
    }
    return memberText(function.memid, kindOf(function.invkind), name, parameters, result);
}

/// The functions in their own order; of an interface with a vtable, that order is held to be the vtable's.
std::vector<std::string> membersOf(ITypeInfo& information, bool hasVtable) {
    constexpr int dispatchMembers = 7;
    std::vector<std::string> lines;
    const UINT count = Attributes(information)->cFuncs;
    for (UINT i = 0; i < count; ++i) {
        FUNCDESC* function = nullptr;
        EXPECT_EQ(information.GetFuncDesc(i, &function), S_OK);
        if (function == nullptr) continue;
        lines.push_back(lineOf(information, *function));
        EXPECT_EQ(function->callconv, CC_STDCALL) << lines.back();
        EXPECT_EQ(function->cParamsOpt, std::count(lines.back().begin(), lines.back().end(), '?')) << lines.back();
        if (hasVtable) {
            EXPECT_EQ(function->funckind, FUNC_PUREVIRTUAL) << lines.back();
            EXPECT_EQ(function->oVft, (dispatchMembers + static_cast<int>(i)) * static_cast<int>(sizeof(void*)))
                << lines.back();
            EXPECT_EQ(function->elemdescFunc.tdesc.vt, VT_HRESULT) << lines.back();
        } else {
            EXPECT_EQ(function->funckind, FUNC_DISPATCH) << lines.back();
            EXPECT_EQ(function->elemdescFunc.tdesc.vt, VT_VOID) << lines.back();
        }
        information.ReleaseFuncDesc(function);
    }
    return lines;
}

std::vector<std::string> enumeratorsOf(ITypeInfo& information) {
    std::vector<std::string> lines;
    const UINT count = Attributes(information)->cVars;
    for (UINT i = 0; i < count; ++i) {
        VARDESC* variable = nullptr;
        EXPECT_EQ(information.GetVarDesc(i, &variable), S_OK);
        if (variable == nullptr) continue;
        BSTR name = nullptr;
        UINT named = 0;
        EXPECT_EQ(information.GetNames(variable->memid, &name, 1, &named), S_OK);
        EXPECT_EQ(variable->varkind, VAR_CONST);
        EXPECT_EQ(V_VT(variable->lpvarValue), VT_I4);
        lines.push_back(narrow(name) + " = " + std::to_string(V_I4(variable->lpvarValue)));
        information.ReleaseVarDesc(variable);
    }
    return lines;
}

std::vector<std::string> implementedBy(ITypeInfo& information) {
    std::vector<std::string> lines;
    const UINT count = Attributes(information)->cImplTypes;
    for (UINT i = 0; i < count; ++i) {
        HREFTYPE reference = 0;
        INT flags = 0;
        EXPECT_EQ(information.GetRefTypeOfImplType(i, &reference), S_OK);
        EXPECT_EQ(information.GetImplTypeFlags(i, &flags), S_OK);
        EXPECT_EQ(flags & ~(IMPLTYPEFLAG_FDEFAULT | IMPLTYPEFLAG_FSOURCE), 0);
        lines.push_back(((flags & IMPLTYPEFLAG_FDEFAULT) != 0 ? std::string("default ") : "") +
                        ((flags & IMPLTYPEFLAG_FSOURCE) != 0 ? "source " : "") +
                        nameOf(*referred(information, reference).get()));
    }
    return lines;
}

void add(Publication& publication, ITypeInfo& information) {
    const Attributes attributes(information);
    const std::string name = nameOf(information);
    const std::string identified = name + " " + textOf(attributes->guid);
    switch (attributes->typekind) {
        case TKIND_ENUM:
            EXPECT_EQ(attributes->cbSizeInstance, 4U) << name;
            publication["enum " + name] = enumeratorsOf(information);
            break;
        case TKIND_DISPATCH: {
            if ((attributes->wTypeFlags & TYPEFLAG_FDUAL) == 0) {
                publication["events " + identified] = membersOf(information, false);
                break;
            }
            HREFTYPE reference = 0;
            ASSERT_EQ(information.GetRefTypeOfImplType(static_cast<UINT>(-1), &reference), S_OK);
            const ComReference<ITypeInfo> vtable = referred(information, reference);
            EXPECT_EQ(Attributes(*vtable.get())->typekind, TKIND_INTERFACE) << name;
            EXPECT_NE(Attributes(*vtable.get())->wTypeFlags & TYPEFLAG_FOLEAUTOMATION, 0) << name;
            publication["interface " + identified] = membersOf(*vtable.get(), true);
            break;
        }
        case TKIND_COCLASS:
            EXPECT_EQ(attributes->wTypeFlags & TYPEFLAG_FCANCREATE, TYPEFLAG_FCANCREATE) << name;
            publication["class " + identified] = implementedBy(information);
            break;
        default: ADD_FAILURE() << name << " is of kind " << attributes->typekind;
    }
}

Publication contentOf(ITypeLib& library) {
    Publication publication;
    TLIBATTR* attributes = nullptr;
    EXPECT_EQ(library.GetLibAttr(&attributes), S_OK);
    BSTR name = nullptr;
    EXPECT_EQ(library.GetDocumentation(-1, &name, nullptr, nullptr, nullptr), S_OK);
    publication["library " + narrow(name) + " " + textOf(attributes->guid) + " " +
                std::to_string(attributes->wMajorVerNum) + "." + std::to_string(attributes->wMinorVerNum)];
    EXPECT_EQ(attributes->lcid, LCID{LOCALE_NEUTRAL});
    EXPECT_EQ(attributes->syskind, sizeof(void*) == 8 ? SYS_WIN64 : SYS_WIN32);
    library.ReleaseTLibAttr(attributes);
    for (UINT i = 0; i < library.GetTypeInfoCount(); ++i) {
        ComReference<ITypeInfo> information;
        EXPECT_EQ(library.GetTypeInfo(i, information.receive()), S_OK);
        if (information) add(publication, *information.get());
    }
    return publication;
}

ComReference<ITypeLib> libraryIn(const std::filesystem::path& file) {
    ComReference<ITypeLib> library;
    EXPECT_EQ(LoadTypeLibEx(file.c_str(), REGKIND_NONE, library.receive()), S_OK);
    return library;
}

TEST(TypeLibrary, ShowsWhatHostsRelyOn) {
    const ComReference<ITypeLib> library = libraryIn(CORVANE_COMPONENT);
    ASSERT_TRUE(library);
    expectSame(contentOf(*library.get()), frozenPublication());
}

TEST(TypeLibrary, IsInACopyOfTheDllToo) {
    const std::filesystem::path copy = std::filesystem::temp_directory_path() / "corvane type library copy.dll";
    std::filesystem::copy_file(CORVANE_COMPONENT, copy, std::filesystem::copy_options::overwrite_existing);
    {
        const ComReference<ITypeLib> library = libraryIn(copy);
        ASSERT_TRUE(library);
        expectSame(contentOf(*library.get()), frozenPublication());
    }
    std::filesystem::remove(copy);
}

// Hosts that speak IDispatch only read the other description of a dual interface.
TEST(TypeLibrary, GivesLateBoundHostsTheSameIdentifiers) {
    const ComReference<ITypeLib> library = libraryIn(CORVANE_COMPONENT);
    ASSERT_TRUE(library);
    for (UINT i = 0; i < library->GetTypeInfoCount(); ++i) {
        ComReference<ITypeInfo> dispatch;
        ASSERT_EQ(library->GetTypeInfo(i, dispatch.receive()), S_OK);
        const Attributes attributes(*dispatch.get());
        if ((attributes->wTypeFlags & TYPEFLAG_FDUAL) == 0) continue;
        HREFTYPE reference = 0;
        ASSERT_EQ(dispatch->GetRefTypeOfImplType(static_cast<UINT>(-1), &reference), S_OK);
        const ComReference<ITypeInfo> vtable = referred(*dispatch.get(), reference);
        const UINT own = Attributes(*vtable.get())->cFuncs;
        ASSERT_GE(attributes->cFuncs, own);
        const UINT inherited = attributes->cFuncs - own;
        for (UINT member = 0; member < own; ++member) {
            FUNCDESC* late = nullptr;
            FUNCDESC* early = nullptr;
            ASSERT_EQ(dispatch->GetFuncDesc(inherited + member, &late), S_OK);
            ASSERT_EQ(vtable->GetFuncDesc(member, &early), S_OK);
            EXPECT_EQ(late->memid, early->memid);
            EXPECT_EQ(late->invkind, early->invkind);
            EXPECT_EQ(late->oVft, early->oVft);
            vtable->ReleaseFuncDesc(early);
            dispatch->ReleaseFuncDesc(late);
        }
    }
}

}  // namespace
}  // namespace corvane::testing
