// The type library and what late binding needs of the platform besides, for machines without it: the published members
// described from published.txt, calls through a vtable, conversions of variants.

#include <array>
#include <cmath>
#include <deque>
#include <fstream>
#include <limits>
#include <map>
#include <memory>
#include <new>
#include <optional>
#include <utility>

#include "host/com/com_variant.h"
#include "host/com/type_library.h"
#include "platform/automation_error.h"
#include "platform/value_rules.h"
#include "tests/com/published_member.h"

namespace {

using namespace corvane;
using corvane::testing::memberOf;
using corvane::testing::PublishedMember;

// --------------------------------------------------------------------------------------------------------- description

// The members' own signatures and the dual interface are described by one and the same object.
constexpr HREFTYPE vtableDescription = 1;

struct PublishedName {
    std::string name;
    TYPEKIND kind;
};

/// The types that members name, numbered as references to them are.
class NamedTypes {
public:
    HREFTYPE referenceTo(const std::string& name) {
        const TYPEKIND kind = name.starts_with("enum") ? TKIND_ENUM : TKIND_DISPATCH;
        for (std::size_t i = 0; i < names_.size(); ++i)
            if (names_[i].name == name) return first + static_cast<HREFTYPE>(i);
        names_.push_back({name, kind});
        return first + static_cast<HREFTYPE>(names_.size() - 1);
    }
    const PublishedName& at(HREFTYPE reference) const { return names_.at(reference - first); }

private:
    static constexpr HREFTYPE first = 2;
    std::vector<PublishedName> names_;
};

/// A member as automation describes it.
struct Function {
    FUNCDESC description{};
    std::vector<ELEMDESC> parameters;
    std::deque<TYPEDESC> types;  // what those point to
};

class InterfaceInformation final : public ITypeInfo {
public:
    InterfaceInformation(const GUID& id, TYPEKIND kind, std::vector<PublishedMember> members)
        : id_(id), kind_(kind), members_(std::move(members)) {
        for (const PublishedMember& member : members_) describe(member);
    }
    InterfaceInformation(const InterfaceInformation&) = delete;
    InterfaceInformation& operator=(const InterfaceInformation&) = delete;
    virtual ~InterfaceInformation() = default;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
        *object = nullptr;
        if (!IsEqualIID(id, IID_IUnknown) && !IsEqualIID(id, IID_ITypeInfo)) return E_NOINTERFACE;
        *object = static_cast<ITypeInfo*>(this);
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = --references_;
        if (left == 0) delete this;
        return left;
    }

    HRESULT STDMETHODCALLTYPE GetTypeAttr(TYPEATTR** attributes) override {
        *attributes = new TYPEATTR{};
        (*attributes)->guid = id_;
        (*attributes)->typekind = kind_;
        (*attributes)->cFuncs = static_cast<WORD>(functions_.size());
        return S_OK;
    }
    void STDMETHODCALLTYPE ReleaseTypeAttr(TYPEATTR* attributes) override { delete attributes; }
    HRESULT STDMETHODCALLTYPE GetFuncDesc(UINT position, FUNCDESC** function) override {
        if (position >= functions_.size()) return TYPE_E_ELEMENTNOTFOUND;
        *function = &functions_[position].description;
        return S_OK;
    }
    void STDMETHODCALLTYPE ReleaseFuncDesc(FUNCDESC*) override {}
    HRESULT STDMETHODCALLTYPE GetNames(MEMBERID id, BSTR* names, UINT most, UINT* count) override {
        *count = 0;
        for (const PublishedMember& member : members_) {
            if (member.id != id) continue;
            const auto add = [&](const std::string& name) {
                if (!name.empty() && *count < most)
                    names[(*count)++] = newText(std::u16string(name.begin(), name.end()));
            };
            add(member.name);
            for (const auto& parameter : member.parameters) add(parameter.name);
            return S_OK;
        }
        return TYPE_E_ELEMENTNOTFOUND;
    }
    HRESULT STDMETHODCALLTYPE GetRefTypeOfImplType(UINT, HREFTYPE* reference) override {
        *reference = vtableDescription;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetRefTypeInfo(HREFTYPE reference, ITypeInfo** information) override;

    HRESULT STDMETHODCALLTYPE GetTypeComp(ITypeComp**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetVarDesc(UINT, VARDESC**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetImplTypeFlags(UINT, INT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(LPOLESTR*, UINT, MEMBERID*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Invoke(PVOID, MEMBERID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE GetDocumentation(MEMBERID, BSTR*, BSTR*, DWORD*, BSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetDllEntry(MEMBERID, INVOKEKIND, BSTR*, BSTR*, WORD*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE AddressOfMember(MEMBERID, INVOKEKIND, PVOID*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown*, REFIID, PVOID*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetMops(MEMBERID, BSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetContainingTypeLib(ITypeLib**, UINT*) override { return E_NOTIMPL; }
    void STDMETHODCALLTYPE ReleaseVarDesc(VARDESC*) override {}

private:
    static NamedTypes& namedTypes() {
        static NamedTypes types;
        return types;
    }

    void describe(const PublishedMember& member) {
        constexpr std::size_t membersOfIDispatch = 7;
        Function& function = functions_.emplace_back();
        for (const auto& parameter : member.parameters) {
            ELEMDESC& element = function.parameters.emplace_back();
            element.tdesc = typeOf(function, parameter.type, parameter.byReference);
            element.paramdesc.wParamFlags = parameter.optional ? PARAMFLAG_FOPT : PARAMFLAG_NONE;
        }
        if (!member.result.empty()) {
            ELEMDESC& element = function.parameters.emplace_back();
            element.tdesc = typeOf(function, member.result, true);
            element.paramdesc.wParamFlags = PARAMFLAG_FOUT | PARAMFLAG_FRETVAL;
        }
        FUNCDESC& description = function.description;
        description.memid = member.id;
        description.invkind = member.kind == "get"   ? INVOKE_PROPERTYGET
                              : member.kind == "put" ? INVOKE_PROPERTYPUT
                                                     : INVOKE_FUNC;
        description.oVft = static_cast<SHORT>((membersOfIDispatch + functions_.size() - 1) * sizeof(void*));
        description.cParams = static_cast<SHORT>(function.parameters.size());
        description.lprgelemdescParam = function.parameters.data();
    }

    static TYPEDESC pointerTo(Function& function, const TYPEDESC& target) {
        TYPEDESC pointer{};
        pointer.vt = VT_PTR;
        pointer.lptdesc = &function.types.emplace_back(target);
        return pointer;
    }

    static TYPEDESC typeOf(Function& function, const std::string& name, bool byReference) {
        static const std::map<std::string, VARTYPE> simpleTypes{
            {"string", VT_BSTR}, {"boolean", VT_BOOL},    {"long", VT_I4},
            {"single", VT_R4},   {"variant", VT_VARIANT}, {"unknown", VT_UNKNOWN},
        };
        TYPEDESC type{};
        if (const auto simple = simpleTypes.find(name); simple != simpleTypes.end()) {
            type.vt = simple->second;
        } else if (name == "string()") {
            TYPEDESC text{};
            text.vt = VT_BSTR;
            type.vt = VT_SAFEARRAY;
            type.lptdesc = &function.types.emplace_back(text);
        } else {
            type.vt = VT_USERDEFINED;
            type.hreftype = namedTypes().referenceTo(name);
            if (name.starts_with("_")) type = pointerTo(function, type);
        }
        return byReference ? pointerTo(function, type) : type;
    }

    GUID id_;
    TYPEKIND kind_;
    std::vector<PublishedMember> members_;
    std::deque<Function> functions_;
    ULONG references_ = 0;
};

std::string textOf(const GUID& id) {
    char text[40];
    std::snprintf(text, sizeof text, "{%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X}",
                  static_cast<unsigned>(id.Data1), id.Data2, id.Data3, id.Data4[0], id.Data4[1], id.Data4[2],
                  id.Data4[3], id.Data4[4], id.Data4[5], id.Data4[6], id.Data4[7]);
    return text;
}

using PublishedMembers = std::map<std::string, std::vector<PublishedMember>>;

/// What published.txt says of the interfaces, by identifier.
const PublishedMembers& publishedMembers() {
    static const PublishedMembers published = [] {
        PublishedMembers read;
        std::ifstream file("tests/com/published.txt");
        std::vector<PublishedMember>* members = nullptr;
        for (std::string line; std::getline(file, line);) {
            if (line.starts_with("interface "))
                members = &read[line.substr(line.find('{'))];
            else if (!line.starts_with("    "))
                members = nullptr;
            else if (members != nullptr)
                members->push_back(memberOf(line.substr(4)));
        }
        return read;
    }();
    return published;
}

HRESULT InterfaceInformation::GetRefTypeInfo(HREFTYPE reference, ITypeInfo** information) {
    InterfaceInformation* found = this;
    if (reference != vtableDescription) {
        const PublishedName& named = namedTypes().at(reference);
        const GUID& id = named.name == "_Collection" ? IID__Collection : IID_NULL;
        found = new InterfaceInformation(id, named.kind, {});
    }
    *information = ComReference<ITypeInfo>(found).detach();
    return S_OK;
}

// --------------------------------------------------------------------------------------------------------- conversions

constexpr int currencyUnits = 10000;

// Decimals are whole numbers of 32 bits here.
double wholeNumberOf(const DECIMAL& decimal) {
    const auto magnitude = static_cast<double>(decimal.Lo64);
    return decimal.sign == 0 ? magnitude : -magnitude;
}

DECIMAL decimalOf(std::int32_t number) {
    DECIMAL decimal{};
    decimal.sign = static_cast<BYTE>(number < 0 ? DECIMAL_NEG : 0);
    decimal.Lo64 = static_cast<ULONGLONG>(std::abs(std::int64_t{number}));
    return decimal;
}

/// The number or text of a variant that refers to nothing.
std::optional<Value> valueOf(const VARIANT& variant) {
    switch (V_VT(&variant)) {
        case VT_EMPTY: return Value::ofInteger(0);
        case VT_I1: return Value::ofInteger(V_I1(&variant));
        case VT_UI1: return Value::ofInteger(V_UI1(&variant));
        case VT_I2: return Value::ofInteger(V_I2(&variant));
        case VT_UI2: return Value::ofLong(V_UI2(&variant));
        case VT_INT:
        case VT_I4: return Value::ofLong(V_I4(&variant));
        case VT_UINT:
        case VT_UI4: return Value::ofDouble(V_UI4(&variant));
        case VT_I8: return Value::ofDouble(static_cast<double>(V_I8(&variant)));
        case VT_UI8: return Value::ofDouble(static_cast<double>(V_UI8(&variant)));
        case VT_CY: return Value::ofDouble(static_cast<double>(V_CY(&variant).int64) / currencyUnits);
        case VT_DECIMAL: return Value::ofDouble(wholeNumberOf(V_DECIMAL(&variant)));
        case VT_R4: return Value::ofSingle(V_R4(&variant));
        case VT_DATE:
        case VT_R8: return Value::ofDouble(V_R8(&variant));
        case VT_BOOL: return Value::ofBoolean(V_BOOL(&variant) != 0);
        case VT_BSTR: return Value::ofText(viewOf(V_BSTR(&variant)));
        default: return std::nullopt;
    }
}

template <typename Number>
Number narrowed(std::int32_t number) {
    if (!std::in_range<Number>(number)) throw automation_error(ErrorNumber::Overflow);
    return static_cast<Number>(number);
}

// Throws automation errors 6 and 13; false for a type that nothing is converted to.
bool store(VARIANT& target, const Value& value, VARTYPE type) {
    const NumberLocale locale = NumberLocale::pointDecimal();
    switch (type) {
        case VT_I1: V_I1(&target) = narrowed<signed char>(portable::toLong(value, locale)); break;
        case VT_UI1: V_UI1(&target) = narrowed<BYTE>(portable::toLong(value, locale)); break;
        case VT_I2: V_I2(&target) = narrowed<SHORT>(portable::toLong(value, locale)); break;
        case VT_UI2: V_UI2(&target) = narrowed<WORD>(portable::toLong(value, locale)); break;
        case VT_INT:
        case VT_I4: V_I4(&target) = portable::toLong(value, locale); break;
        case VT_UINT:
        case VT_UI4: V_UI4(&target) = narrowed<ULONG>(portable::toLong(value, locale)); break;
        case VT_I8: V_I8(&target) = portable::toLong(value, locale); break;
        case VT_UI8: V_UI8(&target) = narrowed<ULONG>(portable::toLong(value, locale)); break;
        case VT_CY: V_CY(&target).int64 = std::int64_t{portable::toLong(value, locale)} * currencyUnits; break;
        case VT_DECIMAL: V_DECIMAL(&target) = decimalOf(portable::toLong(value, locale)); break;
        case VT_R4: V_R4(&target) = portable::toSingle(value, locale); break;
        case VT_DATE:
        case VT_R8: {
            const Value wide = portable::add(value, Value::ofDouble(0), locale);
            V_R8(&target) = wide.doubleFloat();
            break;
        }
        case VT_BOOL: V_BOOL(&target) = variantBool(portable::toBoolean(value, locale)); break;
        case VT_BSTR: V_BSTR(&target) = newText(portable::toText(value, locale).view()); break;
        default: return false;
    }
    V_VT(&target) = type;
    return true;
}

}  // namespace

extern "C" {

// One thread is all that the tests without the platform have.
void WINAPI AcquireSRWLockExclusive(SRWLOCK*) {}
void WINAPI ReleaseSRWLockExclusive(SRWLOCK*) {}

/// Between numbers, Booleans and texts with a decimal point.
HRESULT WINAPI VariantChangeTypeEx(VARIANTARG* target, const VARIANTARG* source, LCID, USHORT, VARTYPE type) {
    OwnedVariant direct;
    const HRESULT copied = VariantCopyInd(direct.get(), const_cast<VARIANTARG*>(source));
    if (FAILED(copied)) return copied == E_OUTOFMEMORY ? copied : DISP_E_TYPEMISMATCH;
    try {
        const std::optional<Value> value = valueOf(*direct.get());
        if (!value) return V_VT(direct.get()) > VT_UINT ? DISP_E_BADVARTYPE : DISP_E_TYPEMISMATCH;
        OwnedVariant converted;
        const bool isEmptyText = type == VT_BSTR && V_VT(direct.get()) == VT_EMPTY;
        if (!store(*converted.get(), isEmptyText ? Value::ofText(Text()) : *value, type)) return DISP_E_BADVARTYPE;
        const HRESULT cleared = VariantClear(target);
        if (FAILED(cleared)) return cleared;
        converted.moveTo(*target);
        return S_OK;
    } catch (const automation_error& error) {
        switch (error.number()) {
            case ErrorNumber::Overflow: return DISP_E_OVERFLOW;
            case ErrorNumber::OutOfMemory: return E_OUTOFMEMORY;
            default: return DISP_E_TYPEMISMATCH;
        }
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    }
}

HRESULT WINAPI VarR8FromDec(const DECIMAL* decimal, DOUBLE* number) {
    *number = wholeNumberOf(*decimal);
    return S_OK;
}

HRESULT WINAPI VariantChangeType(VARIANTARG* target, const VARIANTARG* source, USHORT flags, VARTYPE type) {
    return VariantChangeTypeEx(target, source, LOCALE_USER_DEFAULT, flags, type);
}

/// For members of the published interfaces: whatever one of them is handed fills a register or a place on the stack, a
/// variant as the address of a copy.
HRESULT WINAPI DispCallFunc(void* object, ULONG_PTR offset, CALLCONV, VARTYPE, UINT count, VARTYPE* types,
                            VARIANTARG** arguments, VARIANT* result) {
    constexpr std::size_t most = 8;
    if (count > most) return E_INVALIDARG;
    std::array<VARIANT, most> copies{};
    std::array<std::uint64_t, most> words{};
    for (UINT i = 0; i < count; ++i) {
        copies[i] = *arguments[i];
        if (types[i] == VT_VARIANT)
            words[i] = reinterpret_cast<std::uint64_t>(&copies[i]);
        else
            words[i] = static_cast<std::uint64_t>(V_I8(&copies[i]));
    }
    using Member = HRESULT(STDMETHODCALLTYPE*)(void*, std::uint64_t, std::uint64_t, std::uint64_t, std::uint64_t,
                                               std::uint64_t, std::uint64_t, std::uint64_t, std::uint64_t);
    const auto* const vtable = *static_cast<const std::byte* const*>(object);
    Member member = nullptr;
    std::memcpy(&member, vtable + offset, sizeof member);
    V_VT(result) = VT_ERROR;
    V_ERROR(result) = member(object, words[0], words[1], words[2], words[3], words[4], words[5], words[6], words[7]);
    return S_OK;
}

}  // extern "C"

namespace corvane {

/// Of interfaces only.
HRESULT loadTypeInfo(REFGUID id, ComReference<ITypeInfo>& information) noexcept {
    try {
        const auto members = publishedMembers().find(textOf(id));
        if (members == publishedMembers().end()) return TYPE_E_ELEMENTNOTFOUND;
        information = ComReference<ITypeInfo>(new InterfaceInformation(id, TKIND_DISPATCH, members->second));
        return S_OK;
    } catch (const std::exception&) {
        return E_OUTOFMEMORY;
    }
}

}  // namespace corvane
