#include "host/com/dispatch_interface.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <stdexcept>

#include "host/com/com_variant.h"
#include "host/com/type_library.h"
#include "platform/automation_error.h"
#include "platform/floating_point.h"

namespace corvane {
namespace {

// More than any member has.
constexpr std::size_t mostParameters = 7;

void require(HRESULT result) {
    if (result == E_OUTOFMEMORY) throw automation_error(ErrorNumber::OutOfMemory);
    if (FAILED(result)) throw std::runtime_error("the type library cannot be read");
}

/// The names of a member and its parameters, as a description hands them out.
class HandedOutNames {
public:
    explicit HandedOutNames(std::size_t most) : texts_(most) {}
    HandedOutNames(const HandedOutNames&) = delete;
    HandedOutNames& operator=(const HandedOutNames&) = delete;
    ~HandedOutNames() {
        for (const BSTR text : texts_) SysFreeString(text);
    }

    HRESULT ask(ITypeInfo& owner, MEMBERID member) {
        return owner.GetNames(member, texts_.data(), static_cast<UINT>(texts_.size()), &count_);
    }
    std::size_t count() const { return count_; }
    std::u16string at(std::size_t position) const { return std::u16string(viewOf(texts_.at(position))); }

private:
    std::vector<BSTR> texts_;
    UINT count_ = 0;
};

char16_t lowered(char16_t unit) { return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + 32) : unit; }

bool sameName(std::u16string_view left, std::u16string_view right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char16_t a, char16_t b) { return lowered(a) == lowered(b); });
}

std::u16string_view unitsOf(const OLECHAR* name) { return reinterpret_cast<const char16_t*>(name); }

}  // namespace

// ----------------------------------------------------------------------------------------------------------
// description

DispatchInterface::DispatchInterface(ITypeInfo& dualInterface) {
    // A dual interface has two descriptions; the one with the vtable's own signatures is what a call needs.
    HREFTYPE reference = 0;
    require(dualInterface.GetRefTypeOfImplType(static_cast<UINT>(-1), &reference));
    ComReference<ITypeInfo> vtable;
    require(dualInterface.GetRefTypeInfo(reference, vtable.receive()));

    TYPEATTR* attributes = nullptr;
    require(vtable->GetTypeAttr(&attributes));
    const UINT count = attributes->cFuncs;
    vtable->ReleaseTypeAttr(attributes);
    for (UINT i = 0; i < count; ++i) {
        FUNCDESC* function = nullptr;
        require(vtable->GetFuncDesc(i, &function));
        Member member;
        try {
            member = describe(*vtable.get(), *function);
        } catch (...) {
            vtable->ReleaseFuncDesc(function);
            throw;
        }
        vtable->ReleaseFuncDesc(function);
        members_.push_back(std::move(member));
    }
}

DispatchInterface::Member DispatchInterface::describe(ITypeInfo& owner, const FUNCDESC& function) {
    Member member;
    member.id = function.memid;
    member.kind = function.invkind;
    member.vtableOffset = static_cast<ULONG_PTR>(function.oVft);

    HandedOutNames names(static_cast<std::size_t>(function.cParams) + 1);
    require(names.ask(owner, function.memid));
    member.name = names.at(0);
    for (SHORT i = 0; i < function.cParams; ++i) {
        const ELEMDESC& element = function.lprgelemdescParam[i];
        Parameter parameter = describe(owner, element.tdesc);
        parameter.optional = (element.paramdesc.wParamFlags & PARAMFLAG_FOPT) != 0;
        // The value of a property put has no name of its own.
        const std::size_t named = static_cast<std::size_t>(i) + 1;
        if (named < names.count()) parameter.name = names.at(named);
        if ((element.paramdesc.wParamFlags & PARAMFLAG_FRETVAL) != 0)
            member.result = parameter.type;
        else
            member.parameters.push_back(std::move(parameter));
    }
    if (member.parameters.size() > mostParameters) throw std::runtime_error("a member has too many parameters");
    return member;
}

DispatchInterface::Parameter DispatchInterface::describe(ITypeInfo& owner, const TYPEDESC& type) {
    Parameter parameter;
    if (type.vt == VT_PTR) {
        if (type.lptdesc->vt == VT_USERDEFINED) {
            ComReference<ITypeInfo> named;
            require(owner.GetRefTypeInfo(type.lptdesc->hreftype, named.receive()));
            TYPEATTR* attributes = nullptr;
            require(named->GetTypeAttr(&attributes));
            const TYPEKIND kind = attributes->typekind;
            parameter.interfaceId = attributes->guid;
            named->ReleaseTypeAttr(attributes);
            // A pointer to an interface is an object; a pointer to an enumeration is a number by reference.
            parameter.type = static_cast<VARTYPE>(kind == TKIND_ENUM ? VT_I4 : VT_DISPATCH);
            parameter.byReference = kind == TKIND_ENUM;
            return parameter;
        }
        parameter = describe(owner, *type.lptdesc);
        parameter.byReference = true;
        return parameter;
    }
    if (type.vt == VT_SAFEARRAY)
        parameter.type = static_cast<VARTYPE>(VT_ARRAY | type.lptdesc->vt);
    else
        parameter.type = type.vt;
    if (parameter.type == VT_UNKNOWN) parameter.interfaceId = IID_IUnknown;
    return parameter;
}

namespace {

// Plain data, so that nothing is destroyed at the end of a process: other modules may still call in then, and memory
// may be locked by threads that were ended.
struct Known {
    IID id;
    const DispatchInterface* description;
};
constexpr std::size_t maximumKnown = 8;
std::array<Known, maximumKnown> known{};
std::size_t knownCount = 0;
SRWLOCK knownGuard = SRWLOCK_INIT;

class KnownGuarded {
public:
    KnownGuarded() noexcept { AcquireSRWLockExclusive(&knownGuard); }
    KnownGuarded(const KnownGuarded&) = delete;
    KnownGuarded& operator=(const KnownGuarded&) = delete;
    ~KnownGuarded() { ReleaseSRWLockExclusive(&knownGuard); }
};

}  // namespace

const DispatchInterface& DispatchInterface::of(const IID& interfaceId) {
    const KnownGuarded guarded;
    for (std::size_t i = 0; i < knownCount; ++i)
        if (IsEqualIID(known[i].id, interfaceId)) return *known[i].description;
    ComReference<ITypeInfo> information;
    require(loadTypeInfo(interfaceId, information));
    Known& added = known.at(knownCount);
    added = {interfaceId, new DispatchInterface(*information.get())};
    ++knownCount;
    return *added.description;
}

void DispatchInterface::forgetAll() noexcept {
    while (knownCount > 0) delete known[--knownCount].description;
}

HRESULT DispatchInterface::identifiersOf(OLECHAR** names, UINT count, DISPID* identifiers) const noexcept {
    if (count == 0) return S_OK;
    std::fill_n(identifiers, count, DISPID_UNKNOWN);
    const auto member = std::find_if(members_.begin(), members_.end(), [&](const Member& m) {
        return names[0] != nullptr && sameName(m.name, unitsOf(names[0]));
    });
    if (member == members_.end()) return DISP_E_UNKNOWNNAME;
    identifiers[0] = member->id;
    HRESULT result = S_OK;
    for (UINT i = 1; i < count; ++i) {
        // Where a property can be read and written the longer list of the two is asked.
        for (const Member& m : members_) {
            if (m.id != member->id || names[i] == nullptr) continue;
            for (std::size_t p = 0; p < m.parameters.size(); ++p)
                if (!m.parameters[p].name.empty() && sameName(m.parameters[p].name, unitsOf(names[i])))
                    identifiers[i] = static_cast<DISPID>(p);
        }
        if (identifiers[i] == DISPID_UNKNOWN) result = DISP_E_UNKNOWNNAME;
    }
    return result;
}

const DispatchInterface::Member* DispatchInterface::find(DISPID id, WORD flags) const noexcept {
    const auto member = std::find_if(members_.begin(), members_.end(),
                                     [&](const Member& m) { return m.id == id && (m.kind & flags) != 0; });
    return member == members_.end() ? nullptr : &*member;
}

// -----------------------------------------------------------------------------------------------------------------
// call

/// One late-bound call on its way: the caller's variants on one side, the callee's pointers and values on the other.
class DispatchInterface::Call {
public:
    Call(const Member& member, LCID locale, DISPPARAMS& arguments)
        : member_(member), locale_(locale), arguments_(arguments), count_(member.parameters.size()) {}
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;
    ~Call() {
        for (Place& place : places_)
            if (place.own) VariantClear(&place.value);
    }

    /// Finds an argument for each parameter and converts it.
    HRESULT take(UINT* faultyArgument) {
        HRESULT result = assign(faultyArgument);
        for (std::size_t i = 0; SUCCEEDED(result) && i < count_; ++i) {
            result = prepare(places_[i], member_.parameters[i]);
            if (FAILED(result) && faultyArgument != nullptr) *faultyArgument = indexOf(places_[i]);
        }
        return result;
    }

    HRESULT perform(IDispatch* object) {
        std::array<VARTYPE, mostParameters + 1> types;
        std::array<VARIANTARG, mostParameters + 1> references;
        std::array<VARIANTARG*, mostParameters + 1> passed;
        UINT count = 0;
        const auto passReference = [&](VARTYPE type, void* target) {
            types[count] = static_cast<VARTYPE>(type | VT_BYREF);
            V_VT(&references[count]) = types[count];
            V_BYREF(&references[count]) = target;
            passed[count] = &references[count];
            ++count;
        };
        for (std::size_t i = 0; i < count_; ++i) {
            const Parameter& parameter = member_.parameters[i];
            if (parameter.byReference) {
                passReference(parameter.type, places_[i].callee);
            } else {
                types[count] = parameter.type;
                passed[count] = places_[i].passed;
                ++count;
            }
        }
        if (member_.result == VT_VARIANT)
            passReference(VT_VARIANT, result_.get());
        else if (member_.result != VT_EMPTY)
            passReference(member_.result, &V_I4(result_.get()));
        VARIANT answer;
        const HRESULT called = DispCallFunc(object, member_.vtableOffset, CC_STDCALL, VT_ERROR, count, types.data(),
                                            passed.data(), &answer);
        if (FAILED(called)) return called;
        const HRESULT result = V_ERROR(&answer);
        if (SUCCEEDED(result) && member_.result != VT_EMPTY && member_.result != VT_VARIANT)
            V_VT(result_.get()) = member_.result;
        return result;
    }

    /// Hands out the result and what was changed by reference.
    HRESULT giveBack(VARIANT* result, UINT* faultyArgument) {
        for (std::size_t i = 0; i < count_; ++i) {
            const HRESULT stored = store(places_[i], member_.parameters[i]);
            if (FAILED(stored)) {
                if (faultyArgument != nullptr) *faultyArgument = indexOf(places_[i]);
                return stored;
            }
        }
        if (result != nullptr) result_.moveTo(*result);
        return S_OK;
    }

private:
    struct Place {
        VARIANTARG* argument = nullptr;  // the caller's; null: left out
        VARIANTARG* source = nullptr;    // the same, through a reference to a variant
        VARIANTARG* passed = nullptr;    // by value: what the callee is handed
        void* callee = nullptr;          // by reference: what the callee is handed
        VARIANTARG value{};              // a converted value
        VARIANTARG before{};             // its bits as the callee was handed them
        bool own = false;                // whether `value` is ours to release
    };

    UINT indexOf(const Place& place) const {
        return place.argument == nullptr ? 0 : static_cast<UINT>(place.argument - arguments_.rgvarg);
    }

    // Unnamed arguments stand last to first, named ones before them.
    HRESULT assign(UINT* faultyArgument) {
        const UINT unnamed = arguments_.cArgs - arguments_.cNamedArgs;
        const auto required = std::count_if(member_.parameters.begin(), member_.parameters.end(),
                                            [](const Parameter& parameter) { return !parameter.optional; });
        if (arguments_.cArgs > count_ || arguments_.cArgs < static_cast<std::size_t>(required))
            return DISP_E_BADPARAMCOUNT;
        for (UINT i = 0; i < unnamed; ++i) places_[i].argument = &arguments_.rgvarg[arguments_.cArgs - 1 - i];
        for (UINT i = 0; i < arguments_.cNamedArgs; ++i) {
            const DISPID name = arguments_.rgdispidNamedArgs[i];
            const std::size_t position = name == DISPID_PROPERTYPUT ? count_ - 1 : static_cast<std::size_t>(name);
            const bool exists = name == DISPID_PROPERTYPUT ? member_.kind == INVOKE_PROPERTYPUT : name >= 0;
            if (!exists || position >= count_ || places_[position].argument != nullptr) {
                if (faultyArgument != nullptr) *faultyArgument = i;
                return DISP_E_PARAMNOTFOUND;
            }
            places_[position].argument = &arguments_.rgvarg[i];
        }
        // The new value of a property has a name of its own; without it nothing tells it from an index.
        if (member_.kind == INVOKE_PROPERTYPUT && !valueIsNamed()) {
            if (faultyArgument != nullptr) *faultyArgument = 0;
            return DISP_E_PARAMNOTFOUND;
        }
        return S_OK;
    }

    bool valueIsNamed() const {
        const DISPID* const names = arguments_.rgdispidNamedArgs;
        return std::find(names, names + arguments_.cNamedArgs, DISPID_PROPERTYPUT) != names + arguments_.cNamedArgs;
    }

    static bool isLeftOut(const VARIANTARG* argument) {
        return argument == nullptr || (V_VT(argument) == VT_ERROR && V_ERROR(argument) == DISP_E_PARAMNOTFOUND);
    }

    HRESULT prepare(Place& place, const Parameter& parameter) {
        if (isLeftOut(place.argument)) {
            if (!parameter.optional) return DISP_E_PARAMNOTOPTIONAL;
            V_VT(&place.value) = VT_ERROR;
            V_ERROR(&place.value) = DISP_E_PARAMNOTFOUND;
            place.passed = &place.value;
            return S_OK;
        }
        place.source = place.argument;
        if (V_VT(place.source) == (VT_BYREF | VT_VARIANT)) {
            if (V_VARIANTREF(place.source) == nullptr) return DISP_E_TYPEMISMATCH;
            place.source = V_VARIANTREF(place.source);
            if (V_VT(place.source) == (VT_BYREF | VT_VARIANT)) return DISP_E_TYPEMISMATCH;
        }
        const VARTYPE given = V_VT(place.source);
        if ((given & VT_BYREF) != 0 && V_BYREF(place.source) == nullptr) return DISP_E_TYPEMISMATCH;
        if (parameter.type == VT_VARIANT) {
            place.passed = place.source;
            return S_OK;
        }
        if (parameter.byReference && (given & ~VT_BYREF) == parameter.type && parameter.type != VT_DISPATCH) {
            if (isReference(place)) {
                place.callee = (given & VT_BYREF) != 0 ? V_BYREF(place.source) : &V_I4(place.source);
                return S_OK;
            }
        }
        if ((parameter.type & VT_ARRAY) != 0) return prepareArray(place, parameter);
        return convert(place, parameter);
    }

    // Whether the callee's changes come to the caller's own variable.
    static bool isReference(const Place& place) { return (V_VT(place.argument) & VT_BYREF) != 0; }

    // An array is not converted on its way in: it only receives. Scripting languages index arrays of variants only, so
    // that is what a variable gets that holds no array of the parameter's own type.
    static HRESULT prepareArray(Place& place, const Parameter& parameter) {
        const VARTYPE given = V_VT(place.source);
        const bool canReceive = (given & VT_BYREF) != 0 ? given == (VT_BYREF | arrayOfVariants)
                                                        : given == VT_EMPTY || (given & VT_ARRAY) != 0;
        if (!isReference(place) || !canReceive) return DISP_E_TYPEMISMATCH;
        V_VT(&place.value) = parameter.type;
        V_ARRAY(&place.value) = nullptr;
        place.callee = &V_ARRAY(&place.value);
        place.own = true;
        return S_OK;
    }

    HRESULT convert(Place& place, const Parameter& parameter) {
        place.own = true;
        HRESULT result = S_OK;
        if (parameter.type == VT_DISPATCH || parameter.type == VT_UNKNOWN)
            result = convertObject(place, parameter);
        else
            result = VariantChangeTypeEx(&place.value, place.source, locale_, 0, parameter.type);
        if (FAILED(result)) return result;
        place.callee = &V_I4(&place.value);
        place.passed = &place.value;
        place.before = place.value;
        return S_OK;
    }

    static HRESULT convertObject(Place& place, const Parameter& parameter) {
        OwnedVariant object;
        const HRESULT copied = VariantCopyInd(object.get(), place.source);
        if (FAILED(copied)) return copied == E_OUTOFMEMORY ? copied : DISP_E_TYPEMISMATCH;
        V_VT(&place.value) = parameter.type;
        V_UNKNOWN(&place.value) = nullptr;
        if (V_VT(object.get()) == VT_EMPTY) return S_OK;
        if (V_VT(object.get()) != VT_DISPATCH && V_VT(object.get()) != VT_UNKNOWN) return DISP_E_TYPEMISMATCH;
        if (V_UNKNOWN(object.get()) == nullptr) return S_OK;
        void* found = nullptr;
        if (FAILED(V_UNKNOWN(object.get())->QueryInterface(parameter.interfaceId, &found))) return DISP_E_TYPEMISMATCH;
        V_UNKNOWN(&place.value) = static_cast<IUnknown*>(found);
        return S_OK;
    }

    HRESULT store(Place& place, const Parameter& parameter) {
        if (!parameter.byReference || !place.own || !isReference(place)) return S_OK;
        if ((parameter.type & VT_ARRAY) != 0) return storeArray(place);
        if (std::memcmp(&V_I8(&place.value), &V_I8(&place.before), sizeof V_I8(&place.value)) == 0) return S_OK;
        if ((V_VT(place.source) & VT_BYREF) == 0) {
            OwnedVariant old;
            std::swap(*old.get(), *place.source);
            std::swap(*place.source, place.value);
            return S_OK;
        }
        if (parameter.type == VT_DISPATCH) {
            std::swap(*V_UNKNOWNREF(place.source), V_UNKNOWN(&place.value));
            return S_OK;
        }
        return storeConverted(place);
    }

    // The variable is of another type than the parameter, which is a number.
    HRESULT storeConverted(Place& place) const {
        const VARTYPE wanted = static_cast<VARTYPE>(V_VT(place.source) & ~VT_BYREF);
        OwnedVariant converted;
        const HRESULT result = VariantChangeTypeEx(converted.get(), &place.value, locale_, 0, wanted);
        if (FAILED(result)) return result;
        switch (wanted) {
            case VT_BSTR: std::swap(*V_BSTRREF(place.source), V_BSTR(converted.get())); break;
            // It fills a variant whole; its first bytes are the variant's type there and mean nothing elsewhere.
            case VT_DECIMAL: *V_DECIMALREF(place.source) = V_DECIMAL(converted.get()); break;
            default: std::memcpy(V_BYREF(place.source), &V_I8(converted.get()), sizeOf(wanted)); break;
        }
        return S_OK;
    }

    static std::size_t sizeOf(VARTYPE number) {
        switch (number) {
            case VT_I1:
            case VT_UI1: return 1;
            case VT_I2:
            case VT_UI2:
            case VT_BOOL: return 2;
            case VT_I8:
            case VT_UI8:
            case VT_R8:
            case VT_CY:
            case VT_DATE: return 8;
            default: return 4;
        }
    }

    static HRESULT storeArray(Place& place) {
        if (V_ARRAY(&place.value) == nullptr) return S_OK;
        OwnedVariant variants;
        const HRESULT copied = copyAsVariants(*V_ARRAY(&place.value), V_ARRAY(variants.get()));
        if (FAILED(copied)) return copied;
        V_VT(variants.get()) = arrayOfVariants;
        const bool isTyped = (V_VT(place.source) & VT_BYREF) != 0;
        if (V_VT(place.source) == VT_EMPTY) V_ARRAY(place.source) = nullptr;
        SAFEARRAY*& variable = isTyped ? *V_ARRAYREF(place.source) : V_ARRAY(place.source);
        if (variable != nullptr && isFixedSize(*variable)) return DISP_E_ARRAYISLOCKED;
        const HRESULT destroyed = variable == nullptr ? S_OK : SafeArrayDestroy(variable);
        if (FAILED(destroyed)) return destroyed;
        V_VT(variants.get()) = VT_EMPTY;
        variable = V_ARRAY(variants.get());
        if (!isTyped) V_VT(place.source) = arrayOfVariants;
        return S_OK;
    }

    static HRESULT copyAsVariants(SAFEARRAY& strings, SAFEARRAY*& variants) {
        if (strings.cDims != 2) return DISP_E_TYPEMISMATCH;
        // A descriptor keeps its dimensions last to first.
        std::array<SAFEARRAYBOUND, 2> bounds{strings.rgsabound[1], strings.rgsabound[0]};
        const std::size_t count = std::size_t{bounds[0].cElements} * bounds[1].cElements;
        SAFEARRAY* const copy = SafeArrayCreate(VT_VARIANT, 2, bounds.data());
        if (copy == nullptr) return E_OUTOFMEMORY;
        const auto* from = static_cast<const BSTR*>(strings.pvData);
        auto* to = static_cast<VARIANT*>(copy->pvData);
        for (std::size_t i = 0; i < count; ++i) {
            V_VT(&to[i]) = VT_BSTR;
            V_BSTR(&to[i]) = SysAllocStringByteLen(reinterpret_cast<const char*>(from[i]), SysStringByteLen(from[i]));
            if (V_BSTR(&to[i]) == nullptr) {
                SafeArrayDestroy(copy);
                return E_OUTOFMEMORY;
            }
        }
        variants = copy;
        return S_OK;
    }

    static constexpr VARTYPE arrayOfVariants = VT_ARRAY | VT_VARIANT;

    const Member& member_;
    LCID locale_;
    DISPPARAMS& arguments_;
    std::size_t count_;
    std::array<Place, mostParameters> places_;
    OwnedVariant result_;
};

namespace {

// The error information of the thread comes with the answer and does not stay behind.
void fill(EXCEPINFO* exception, HRESULT result) {
    ComReference<IErrorInfo> information;
    const bool informed = GetErrorInfo(0, information.receive()) == S_OK;
    if (exception == nullptr) return;
    *exception = {};
    exception->scode = result;
    if (!informed) return;
    information->GetSource(&exception->bstrSource);
    information->GetDescription(&exception->bstrDescription);
    information->GetHelpFile(&exception->bstrHelpFile);
    information->GetHelpContext(&exception->dwHelpContext);
}

}  // namespace

HRESULT DispatchInterface::invoke(IDispatch* object, DISPID id, WORD flags, LCID locale, DISPPARAMS* arguments,
                                  VARIANT* result, EXCEPINFO* exception, UINT* faultyArgument) const noexcept {
    if (result != nullptr) VariantInit(result);
    if (arguments == nullptr || arguments->cNamedArgs > arguments->cArgs ||
        (arguments->cArgs != 0 && arguments->rgvarg == nullptr) ||
        (arguments->cNamedArgs != 0 && arguments->rgdispidNamedArgs == nullptr))
        return E_INVALIDARG;
    const Member* member = find(id, flags);
    if (member == nullptr) return DISP_E_MEMBERNOTFOUND;
    Call call(*member, locale, *arguments);
    HRESULT taken = S_OK;
    {
        const ComponentArithmetic arithmetic;
        taken = call.take(faultyArgument);
    }
    if (FAILED(taken)) return taken;
    // The callee sees to its own arithmetic: what it finds here is the host's.
    const HRESULT called = call.perform(object);
    if (FAILED(called)) {
        fill(exception, called);
        return DISP_E_EXCEPTION;
    }
    const ComponentArithmetic arithmetic;
    return call.giveBack(result, faultyArgument);
}

}  // namespace corvane
