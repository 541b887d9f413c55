// The component as automation reaches it: objects of every class, members called by any identifier with any flags and
// arguments, sinks that come, go and call in from their events. What callers own stays theirs, byte for byte, and in
// the end nothing of the component is held. Callers keep to automation's own rules: pointers are valid or null.

#include <array>
#include <deque>
#include <memory>
#include <vector>

#include "tests/com/component.h"
#include "tests/com/stand_in.h"
#include "tests/fuzz/fuzz_input.h"

namespace corvane::fuzz {
namespace {

using testing::Sink;

/// A variable of a caller, in a block of exactly its size.
class Variable {
public:
    explicit Variable(VARTYPE type) : type_(type), cell_(std::calloc(1, sizeOf(type))) {
        if (type == VT_VARIANT) VariantInit(static_cast<VARIANT*>(cell_));
    }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;
    ~Variable() {
        if (type_ == VT_VARIANT) VariantClear(static_cast<VARIANT*>(cell_));
        if (type_ == VT_BSTR) SysFreeString(*static_cast<BSTR*>(cell_));
        if ((type_ & VT_ARRAY) != 0) SafeArrayDestroy(*static_cast<SAFEARRAY**>(cell_));
        if ((type_ == VT_DISPATCH || type_ == VT_UNKNOWN) && *static_cast<IUnknown**>(cell_) != nullptr)
            (*static_cast<IUnknown**>(cell_))->Release();
        std::free(cell_);
    }
    void* cell() const { return cell_; }
    VARTYPE type() const { return type_; }

private:
    static std::size_t sizeOf(VARTYPE type) {
        switch (type) {
            case VT_I1:
            case VT_UI1: return 1;
            case VT_I2:
            case VT_UI2:
            case VT_BOOL: return 2;
            case VT_I4:
            case VT_R4: return 4;
            case VT_VARIANT: return sizeof(VARIANT);
            default: return 8;
        }
    }
    VARTYPE type_;
    void* cell_;
};

/// A member as a caller may learn it from the object.
struct Member {
    DISPID id;
    INVOKEKIND kind;
    std::u16string name;
    std::vector<VARTYPE> parameters;  // VT_EMPTY: an object or an enumeration
};

std::vector<Member> membersOf(IDispatch& object) {
    std::vector<Member> members;
    ComReference<ITypeInfo> information;
    require(object.GetTypeInfo(0, LOCALE_USER_DEFAULT, information.receive()) == S_OK, "an object is described");
    FUNCDESC* function = nullptr;
    for (UINT i = 0; information->GetFuncDesc(i, &function) == S_OK; ++i) {
        BSTR name = nullptr;
        UINT count = 0;
        information->GetNames(function->memid, &name, 1, &count);
        Member& member = members.emplace_back(Member{function->memid, function->invkind, testing::taken(name), {}});
        for (SHORT p = 0; p < function->cParams; ++p) {
            const ELEMDESC& element = function->lprgelemdescParam[p];
            if ((element.paramdesc.wParamFlags & PARAMFLAG_FRETVAL) != 0) continue;
            const TYPEDESC* type = &element.tdesc;
            while (type->vt == VT_PTR) type = type->lptdesc;
            member.parameters.push_back(type->vt == VT_USERDEFINED ? VARTYPE{VT_EMPTY} : type->vt);
        }
        information->ReleaseFuncDesc(function);
    }
    return members;
}

/// The members of the published interface that an object bears; null for what is none of the component's.
const std::vector<Member>* publishedMembers(IDispatch& object) {
    static const std::array<IID, 6> interfaces = {IID__clsScriptControl,   IID__clsProgramFunctionList,
                                                  IID__clsProgramFunction, IID__clsDataSetParameters,
                                                  IID__clsScriptParamList, IID__Collection};
    static std::array<std::vector<Member>, interfaces.size()> known;
    for (std::size_t i = 0; i < interfaces.size(); ++i) {
        if (!queryFor<IDispatch>(&object, interfaces[i])) continue;
        if (known[i].empty()) known[i] = membersOf(object);
        return &known[i];
    }
    return nullptr;
}

struct Object {
    ComReference<IDispatch> face;
    const std::vector<Member>* members;
};

/// The arguments of one call and the variables that they refer to.
struct Arguments {
    std::vector<VARIANTARG> passed;
    std::vector<DISPID> names;
    std::deque<Variable> variables;

    Arguments() = default;
    Arguments(const Arguments&) = delete;
    Arguments& operator=(const Arguments&) = delete;
    ~Arguments() {
        for (VARIANTARG& argument : passed) VariantClear(&argument);
    }
};

class Host {
public:
    explicit Host(FuzzInput& input)
        : choices_(input.choices), scripts_(input.scripts()), mostStatements_(input.mostStatements) {
        testing::standInServices() = {};
        testing::standInServices().onYield = [this] { yielded(); };
        testing::standInServices().onMessage = [this] { inside(); };
    }
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;
    ~Host() {
        ending_ = true;
        for (const auto& advised : advised_) advised.first->Unadvise(advised.second);
        for (const Object& object : objects_) empty(*object.face.get());
        advised_.clear();
        objects_.clear();
        testing::standInServices() = {};
        SetErrorInfo(0, nullptr);
        require(testing::canUnloadNow() == S_OK, "nothing is held when all is released");
        for (const auto& sink : sinks_) require(sink->references() == 0, "no sink is held");
    }

    void play() {
        add(testing::newControl());
        while (actions_ < mostActions && !choices_.isSpent()) act();
    }

private:
    static constexpr std::size_t mostObjects = 24;
    static constexpr int mostDepth = 3;
    static constexpr int mostActions = 60;

    template <typename Interface>
    void add(const ComReference<Interface>& object) {
        if (!object || objects_.size() >= mostObjects) return;
        const auto face = queryFor<IDispatch>(object.get(), IID_IDispatch);
        require(static_cast<bool>(face), "an object is reached by name");
        // A host's own objects come back from where it put them.
        if (const auto* const members = publishedMembers(*face.get())) objects_.push_back({face, members});
    }

    Object* anyObject() {
        return objects_.empty() ? nullptr : &objects_[choices_.below(static_cast<std::uint32_t>(objects_.size()))];
    }

    const Member& anyMember(const Object& object) {
        return (*object.members)[choices_.below(static_cast<std::uint32_t>(object.members->size()))];
    }

    void act() {
        ++actions_;
        switch (choices_.below(16)) {
            case 0: create(); break;
            case 1: advise(); break;
            case 2: unadvise(); break;
            case 3: drop(); break;
            case 4: nameMembers(); break;
            case 5: query(); break;
            case 6: enumerate(); break;
            case 7: passNull(); break;
            case 8: runScript(); break;
            default: invoke(); break;
        }
    }

    void inside() {
        if (ending_ || depth_ >= mostDepth || actions_ >= mostActions || !choices_.oneIn(4)) return;
        ++depth_;
        act();
        --depth_;
    }

    void yielded() {
        inside();
        // A listing goes on for ever where its script does.
        if (++yields_ % mostStatements_ == 0) throw std::runtime_error("enough");
    }

    void create() {
        static constexpr std::array<const CLSID*, 5> classes = {&CLSID_clsScriptControl, &CLSID_clsProgramFunctionList,
                                                                &CLSID_clsProgramFunction, &CLSID_clsDataSetParameters,
                                                                &CLSID_clsScriptParamList};
        add(testing::create<IDispatch>(*classes[choices_.below(classes.size())], IID_IDispatch));
    }

    void advise() {
        Object* const object = anyObject();
        if (object == nullptr || sinks_.size() >= 8) return;
        const auto point = testing::connectionPointOf(*object->face.get());
        if (!point) return;
        sinks_.push_back(
            std::make_unique<Sink>([this](DISPID event, DISPPARAMS& given) { return answer(event, given); }));
        DWORD cookie = 0;
        require(point->Advise(sinks_.back().get(), &cookie) == S_OK && cookie != 0, "a sink is advised");
        advised_.emplace_back(point, cookie);
    }

    void unadvise() {
        if (advised_.empty()) return;
        const auto place = advised_.begin() + choices_.below(static_cast<std::uint32_t>(advised_.size()));
        const auto [point, cookie] = *place;
        advised_.erase(place);
        require(point->Unadvise(cookie) == S_OK, "what was advised is unadvised");
        require(point->Unadvise(cookie) == CONNECT_E_NOCONNECTION, "once");
    }

    void drop() {
        if (objects_.empty()) return;
        const auto place = objects_.begin() + choices_.below(static_cast<std::uint32_t>(objects_.size()));
        const Object dropped = *place;
        objects_.erase(place);
        empty(*dropped.face.get());
    }

    // A collection that holds itself, by whatever way, would live for ever.
    static void empty(IDispatch& object) {
        const auto collection = queryFor<_Collection>(&object, IID__Collection);
        if (!collection) return;
        VARIANT first;
        V_VT(&first) = VT_I4;
        V_I4(&first) = 1;
        while (collection->Remove(first) == S_OK) {
        }
    }

    HRESULT answer(DISPID event, DISPPARAMS& given) {
        inside();
        for (UINT i = 0; i < given.cArgs; ++i)
            if (choices_.oneIn(4)) write(given.rgvarg[i]);
        constexpr DISPID keepGoing = 37;
        const bool goesOn = event != keepGoing || ++statements_ < mostStatements_;
        VARIANTARG& success = given.rgvarg[0];
        if (V_VT(&success) == (VT_BYREF | VT_BOOL)) *V_BOOLREF(&success) = variantBool(goesOn && !choices_.oneIn(8));
        if (choices_.oneIn(16)) return choices_.oneIn(2) ? E_FAIL : DISP_E_MEMBERNOTFOUND;
        return S_OK;
    }

    void write(VARIANTARG& argument) {
        switch (V_VT(&argument)) {
            case VT_BYREF | VT_BSTR:
                SysFreeString(*V_BSTRREF(&argument));
                *V_BSTRREF(&argument) = choices_.oneIn(4) ? nullptr : newText(choices_.text());
                break;
            case VT_BYREF | VT_R4: *V_R4REF(&argument) = choices_.single(); break;
            case VT_BYREF | VT_I4: *V_I4REF(&argument) = choices_.longInteger(); break;
            case VT_BYREF | VT_BOOL: *V_BOOLREF(&argument) = choices_.bits<VARIANT_BOOL>(); break;
            case VT_DISPATCH: add(ComReference<IDispatch>(V_DISPATCH(&argument))); break;
            default: break;
        }
    }

    // -- calls by identifier

    static bool touchesFiles(const Object& object, DISPID id) {
        return std::any_of(object.members->begin(), object.members->end(),
                           [&](const Member& member) { return member.id == id && member.name.ends_with(u"FromFile"); });
    }

    void invoke() {
        Object* const found = anyObject();
        if (found == nullptr) return;
        const Object object = *found;
        const Member& member = anyMember(object);
        const DISPID id = choices_.oneIn(16) ? choices_.bits<DISPID>() : member.id;
        if (touchesFiles(object, id)) return;
        const WORD flags = choices_.oneIn(16) ? choices_.byte() : static_cast<WORD>(member.kind);

        Arguments arguments;
        makeArguments(arguments, member);
        DISPPARAMS parameters{arguments.passed.data(), arguments.names.data(),
                              static_cast<UINT>(arguments.passed.size()), static_cast<UINT>(arguments.names.size())};
        VARIANT result;
        VariantInit(&result);
        EXCEPINFO exception{};
        UINT faulty = 0;
        DISPPARAMS* const passed = choices_.oneIn(32) ? nullptr : &parameters;
        VARIANT* const wantedResult = choices_.oneIn(4) ? nullptr : &result;
        EXCEPINFO* const wantedException = choices_.oneIn(8) ? nullptr : &exception;
        UINT* const wantedFaulty = choices_.oneIn(8) ? nullptr : &faulty;
        const HRESULT called = object.face->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, passed, wantedResult,
                                                   wantedException, wantedFaulty);
        require(faulty == 0 || faulty < arguments.passed.size(), "a faulty argument is one of those passed");
        require(called == DISP_E_EXCEPTION || exception.bstrSource == nullptr, "only an exception is described");
        require(SUCCEEDED(called) || V_VT(&result) == VT_EMPTY, "a failed call has no result");
        SysFreeString(exception.bstrSource);
        SysFreeString(exception.bstrDescription);
        SysFreeString(exception.bstrHelpFile);
        keepObjects(result, arguments);
        VariantClear(&result);
    }

    void keepObjects(const VARIANT& result, const Arguments& arguments) {
        if ((V_VT(&result) == VT_DISPATCH || V_VT(&result) == VT_UNKNOWN) && V_UNKNOWN(&result) != nullptr)
            add(queryFor<IDispatch>(V_UNKNOWN(&result), IID_IDispatch));
        for (const Variable& variable : arguments.variables)
            if (variable.type() == VT_DISPATCH)
                add(ComReference<IDispatch>(*static_cast<IDispatch**>(variable.cell())));
    }

    void makeArguments(Arguments& arguments, const Member& member) {
        const std::size_t count = choices_.oneIn(16) ? choices_.below(10) : member.parameters.size();
        // Automation counts from the last.
        for (std::size_t i = count; i-- > 0;)
            arguments.passed.push_back(
                argument(arguments, i < member.parameters.size() ? member.parameters[i] : VARTYPE{VT_EMPTY}));
        if (member.kind == INVOKE_PROPERTYPUT && count != 0 && !choices_.oneIn(16))
            arguments.names.push_back(DISPID_PROPERTYPUT);
        while (arguments.names.size() < count && choices_.oneIn(8))
            arguments.names.push_back(choices_.oneIn(4) ? choices_.longInteger()
                                                        : static_cast<DISPID>(choices_.below(8)));
    }

    VARIANT argument(Arguments& arguments, VARTYPE wanted) {
        if (wanted == VT_SAFEARRAY) wanted = VT_ARRAY | VT_BSTR;
        const bool isNumber = wanted == VT_I4 || wanted == VT_R4 || wanted == VT_BOOL;
        if (wanted == VT_EMPTY || choices_.oneIn(8))
            wanted = anyType();
        else if (isNumber && choices_.oneIn(4))
            wanted = anyNumber();
        const std::uint32_t form = choices_.below(16);
        if (form < 8 && wanted != (VT_ARRAY | VT_BSTR) && wanted != VT_VARIANT) return direct(wanted);
        if (form == 8) return leftOut();
        if (form == 9) return nullReference(wanted);
        if (form >= 13 || wanted == VT_VARIANT) return variantReference(arguments, wanted);
        return reference(arguments, wanted);
    }

    VARTYPE anyNumber() {
        static constexpr std::array<VARTYPE, 8> types = {VT_I1, VT_UI1, VT_I2, VT_I4, VT_UI4, VT_R4, VT_R8, VT_BOOL};
        return types[choices_.below(types.size())];
    }

    VARTYPE anyType() {
        static constexpr std::array<VARTYPE, 22> types = {VT_EMPTY,
                                                          VT_NULL,
                                                          VT_I2,
                                                          VT_I4,
                                                          VT_R4,
                                                          VT_R8,
                                                          VT_BOOL,
                                                          VT_BSTR,
                                                          VT_CY,
                                                          VT_DATE,
                                                          VT_DISPATCH,
                                                          VT_UNKNOWN,
                                                          VT_ERROR,
                                                          VT_I1,
                                                          VT_UI1,
                                                          VT_UI2,
                                                          VT_UI4,
                                                          VT_I8,
                                                          VT_INT,
                                                          VT_VARIANT,
                                                          VT_ARRAY | VT_BSTR,
                                                          VT_ARRAY | VT_VARIANT};
        return types[choices_.below(types.size())];
    }

    std::u16string text() {
        return choices_.oneIn(4) ? choices_.text()
                                 : scripts_[choices_.below(static_cast<std::uint32_t>(scripts_.size()))];
    }

    /// A new value in a cell of its type.
    void fill(void* cell, VARTYPE type) {
        const auto copy = [&](const auto& number) { std::memcpy(cell, &number, sizeof number); };
        switch (type) {
            case VT_I1:
            case VT_UI1: copy(choices_.byte()); break;
            case VT_I2:
            case VT_UI2: copy(static_cast<SHORT>(choices_.longInteger())); break;
            case VT_BOOL: copy(variantBool(choices_.oneIn(2))); break;
            case VT_R4: copy(choices_.single()); break;
            case VT_R8: copy(static_cast<double>(choices_.single())); break;
            case VT_BSTR: *static_cast<BSTR*>(cell) = choices_.oneIn(16) ? nullptr : newText(text()); break;
            case VT_CY:
            case VT_DATE:
            case VT_I8: copy(choices_.bits<std::int64_t>()); break;
            case VT_DISPATCH:
            case VT_UNKNOWN: *static_cast<IUnknown**>(cell) = anyFace(); break;
            case VT_ARRAY | VT_BSTR:
            case VT_ARRAY | VT_VARIANT: *static_cast<SAFEARRAY**>(cell) = array(type); break;
            default: copy(choices_.longInteger()); break;
        }
    }

    IUnknown* anyFace() {
        Object* const object = choices_.oneIn(4) ? nullptr : anyObject();
        return object == nullptr ? nullptr : ComReference<IDispatch>(object->face).detach();
    }

    SAFEARRAY* array(VARTYPE type) {
        if (choices_.oneIn(4)) return nullptr;
        std::array<SAFEARRAYBOUND, 2> bounds{{{choices_.below(4), 0}, {choices_.below(3), choices_.longInteger() % 9}}};
        const UINT dimensions = 1 + choices_.below(2);
        SAFEARRAY* const made = SafeArrayCreate(static_cast<VARTYPE>(type & ~VT_ARRAY), dimensions, bounds.data());
        if (choices_.oneIn(8)) made->fFeatures |= FADF_FIXEDSIZE;
        return made;
    }

    VARIANT direct(VARTYPE type) {
        VARIANT made;
        VariantInit(&made);
        if (type != VT_EMPTY && type != VT_NULL) fill(&V_I8(&made), type);
        V_VT(&made) = type;
        return made;
    }

    static VARIANT leftOut() {
        VARIANT made;
        V_VT(&made) = VT_ERROR;
        V_ERROR(&made) = DISP_E_PARAMNOTFOUND;
        return made;
    }

    static VARIANT nullReference(VARTYPE type) {
        VARIANT made;
        V_VT(&made) = static_cast<VARTYPE>(type | VT_BYREF);
        V_BYREF(&made) = nullptr;
        return made;
    }

    VARIANT reference(Arguments& arguments, VARTYPE type) {
        if (type == VT_EMPTY || type == VT_NULL) type = VT_I4;
        const Variable& variable = arguments.variables.emplace_back(type);
        fill(variable.cell(), type);
        VARIANT made;
        V_VT(&made) = static_cast<VARTYPE>(type | VT_BYREF);
        V_BYREF(&made) = variable.cell();
        return made;
    }

    VARIANT variantReference(Arguments& arguments, VARTYPE content) {
        const Variable& variable = arguments.variables.emplace_back(VARTYPE{VT_VARIANT});
        if (content == VT_VARIANT) content = VT_EMPTY;
        // Some variants refer on to a variable.
        *static_cast<VARIANT*>(variable.cell()) = choices_.oneIn(4) ? reference(arguments, content) : direct(content);
        VARIANT made;
        V_VT(&made) = VT_BYREF | VT_VARIANT;
        V_BYREF(&made) = variable.cell();
        return made;
    }

    // -- other calls

    void nameMembers() {
        Object* const object = anyObject();
        if (object == nullptr) return;
        const Member& member = anyMember(*object);
        std::array<std::u16string, 2> names{choices_.oneIn(4) ? choices_.text() : member.name, choices_.text()};
        std::array<OLECHAR*, 2> passed{};
        for (std::size_t i = 0; i < names.size(); ++i) passed[i] = reinterpret_cast<OLECHAR*>(names[i].data());
        std::array<DISPID, 2> identifiers{};
        object->face->GetIDsOfNames(IID_NULL, passed.data(), choices_.below(3), LOCALE_USER_DEFAULT,
                                    identifiers.data());
        require(object->face->GetIDsOfNames(IID_NULL, nullptr, 1, 0, identifiers.data()) == E_POINTER, "no names");
        require(object->face->GetIDsOfNames(IID_IUnknown, passed.data(), 1, 0, identifiers.data()) ==
                    DISP_E_UNKNOWNINTERFACE,
                "the reserved identifier is none");
    }

    void query() {
        Object* const object = anyObject();
        if (object == nullptr) return;
        static const std::array<IID, 7> known = {IID_IUnknown,
                                                 IID_IDispatch,
                                                 IID_ISupportErrorInfo,
                                                 IID_IProvideClassInfo2,
                                                 IID_IConnectionPointContainer,
                                                 IID__clsScriptControl,
                                                 IID__Collection};
        const IID id = choices_.oneIn(8) ? choices_.bits<GUID>() : known[choices_.below(known.size())];
        void* found = nullptr;
        const HRESULT answered = object->face->QueryInterface(id, &found);
        require(SUCCEEDED(answered) == (found != nullptr), "an interface is there or it is not");
        if (found != nullptr) static_cast<IUnknown*>(found)->Release();
        require(object->face->QueryInterface(id, nullptr) == E_POINTER, "nowhere to put an interface");
    }

    void enumerate() {
        Object* const object = anyObject();
        if (object == nullptr) return;
        const auto collection = queryFor<_Collection>(object->face.get(), IID__Collection);
        if (!collection) return;
        ComReference<IUnknown> unknown;
        require(collection->get__NewEnum(unknown.receive()) == S_OK, "a collection is walked");
        const auto items = queryFor<IEnumVARIANT>(unknown.get(), IID_IEnumVARIANT);
        require(static_cast<bool>(items), "by its items");
        std::array<VARIANT, 3> taken;
        for (VARIANT& item : taken) VariantInit(&item);
        ULONG count = 0;
        items->Skip(choices_.below(4));
        items->Next(choices_.below(taken.size() + 1), taken.data(), &count);
        require(count <= taken.size(), "no more than was asked for");
        for (ULONG i = 0; i < count; ++i) {
            if (V_VT(&taken[i]) == VT_DISPATCH && V_DISPATCH(&taken[i]) != nullptr)
                add(ComReference<IDispatch>(V_DISPATCH(&taken[i])));
            VariantClear(&taken[i]);
        }
    }

    void passNull() {
        Object* const object = anyObject();
        if (object == nullptr) return;
        const auto control = queryFor<_clsScriptControl>(object->face.get(), IID__clsScriptControl);
        if (!control) return;
        LONG number = 0;
        require(control->get_ScriptDB_UID(nullptr) == E_POINTER, "nowhere to put a value");
        require(control->RunScript(nullptr) == E_POINTER, "nowhere to put a result");
        require(control->EditDataVariable(&number, nullptr, nullptr) == E_POINTER, "no value");
        require(control->GetMemoryValue(nullptr, nullptr) == E_POINTER, "no name");
    }

    void runScript() {
        Object* const object = anyObject();
        if (object == nullptr) return;
        const auto control = queryFor<_clsScriptControl>(object->face.get(), IID__clsScriptControl);
        if (!control) return;
        testing::load(*control.get(), scripts_[choices_.below(static_cast<std::uint32_t>(scripts_.size()))]);
        VARIANT_BOOL result = VARIANT_FALSE;
        control->RunScript(&result);
        require(result == VARIANT_TRUE || result == VARIANT_FALSE, "a result is true or false");
    }

    Choices& choices_;
    std::vector<std::u16string> scripts_;
    int mostStatements_;
    std::vector<Object> objects_;
    std::vector<std::unique_ptr<Sink>> sinks_;
    std::vector<std::pair<ComReference<IConnectionPoint>, DWORD>> advised_;
    bool ending_ = false;
    int depth_ = 0;
    int actions_ = 0;
    int yields_ = 0;
    int statements_ = 0;
};

}  // namespace
}  // namespace corvane::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace corvane::fuzz;
    FuzzInput input(data, size);
    Host host(input);
    host.play();
    return 0;
}
