// Hosts that calculate in another way than the component: with floating-point exceptions unmasked, as programs of some
// compilers run, or with another rounding or precision. Nothing that the component does may end in an exception, come
// out otherwise, or change the host's way.

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <functional>
#include <limits>
#include <map>
#include <string>
#include <vector>

#include "platform/floating_point.h"
#include "platform/utf8.h"
#include "tests/com/dispatch_call.h"
#include "tests/com/every_event.h"

namespace corvane::testing {
namespace {

using Lines = std::vector<std::string>;

struct HostWay {
    const char* name;
    FloatingPointState state;
};

constexpr HostWay ways[] = {
    {"AllExceptionsUnmasked", {0x0240, 0x0000}},
    {"AllExceptionsUnmaskedAnd64BitPrecision", {0x0340, 0x0000}},
    {"InvalidOverflowAndDivisionUnmasked", {0x1372, 0x1900}},
    {"Precision64BitRoundingUp", {0x0B7F, 0x5F80}},
    {"Precision24BitRoundingDown", {0x047F, 0x3F80}},
    {"RoundingToZeroWithoutDenormals", {0x0E7F, 0xFFC0}},
};

// The low bits of the SSE register note what happened; they are not part of the way.
constexpr std::uint32_t notes = 0x3F;

bool isInForce(const FloatingPointState& state) {
    const FloatingPointState present = FloatingPointState::present();
    return present.x87 == state.x87 && (present.sse & ~notes) == state.sse;
}

/// What a host of one way does and sees. The tests themselves calculate as everybody.
class Host {
public:
    explicit Host(const FloatingPointState& state) : way_(state), state_(state) {}

    /// Runs something that calls the component.
    template <typename Call>
    void calling(Call call) {
        state_.apply();
        call();
        const bool kept = isInForce(state_);
        ownFloatingPoint.apply();
        EXPECT_TRUE(kept) << "the call changed the host's way of calculating";
    }
    /// The same for a call that handles the thread's messages. Wine's own part of that calculates in the program's way,
    /// and inexactly, so this one exception is masked.
    template <typename Call>
    void callingWithMessages(Call call) {
        state_.x87 |= 0x20;
        state_.sse |= 0x1000;
        calling(call);
        state_ = way_;
    }
    /// Runs what the host does inside an event.
    template <typename Handler>
    void answering(Handler handler) {
        const bool given = isInForce(state_);
        {
            const ComponentArithmetic arithmetic;
            EXPECT_TRUE(given) << "the host's way of calculating is not in force in an event";
            handler();
        }
    }

private:
    const FloatingPointState way_;
    FloatingPointState state_;
};

constexpr float infinity = std::numeric_limits<float>::infinity();
// Among them one that is an exception just to be loaded.
const std::array wildNumbers{1.5F,
                             infinity,
                             -infinity,
                             std::numeric_limits<float>::quiet_NaN(),
                             std::bit_cast<float>(0x7FA00000U),
                             std::numeric_limits<float>::max(),
                             -std::numeric_limits<float>::max(),
                             std::numeric_limits<float>::denorm_min(),
                             0.0F,
                             2147483647.0F,
                             0.1F};

void setBits(float* target, float number) { std::memcpy(target, &number, sizeof number); }

std::string shown(const VARIANT& variant) {
    OwnedVariant text;
    if (V_VT(&variant) == VT_R4) return "bits " + std::to_string(std::bit_cast<std::uint32_t>(V_R4(&variant)));
    if (FAILED(VariantChangeType(text.get(), const_cast<VARIANT*>(&variant), 0, VT_BSTR)))
        return "type " + std::to_string(V_VT(&variant));
    return toUtf8(viewOf(V_BSTR(text.get())));
}

/// Loads and runs a script, and tells all that can be seen of it. Numbers by reference are answered wildly.
Lines observe(Host& host, _clsScriptControl& control, std::u16string_view script) {
    Lines lines;
    std::size_t answers = 0;
    Sink sink([&](DISPID event, DISPPARAMS& arguments) {
        host.answering([&] {
            lines.push_back(show(event, arguments));
            constexpr std::size_t patience = 400;
            if (lines.size() > patience) return;
            answer(event, arguments);
            for (UINT i = 0; i < arguments.cArgs; ++i)
                if (V_VT(&arguments.rgvarg[i]) == (VT_R4 | VT_BYREF))
                    setBits(V_R4REF(&arguments.rgvarg[i]), wildNumbers[answers++ % wildNumbers.size()]);
        });
        return S_OK;
    });
    const Advised advised(control, sink);
    bool loaded = false;
    host.callingWithMessages([&] { loaded = load(control, script); });
    lines.push_back(loaded ? "loaded" : "not loaded");
    if (!loaded) return lines;
    RunResult result;
    host.callingWithMessages([&] { result = run(control); });
    lines.push_back("result " + std::to_string(result.result) + ", " + std::to_string(result.value));
    for (const char16_t* name : {u"A", u"B", u"T"}) {
        HostText text(name);
        OwnedVariant value;
        host.calling([&] { control.GetMemoryValue(text.address(), value.get()); });
        lines.push_back(shown(*value.get()));
    }
    SetErrorInfo(0, nullptr);
    return lines;
}

/// Everything that statements do with numbers, one after another, so that no failure hides the next.
Lines observeStatements(Host& host) {
    constexpr std::u16string_view statements[] = {
        u"Set(A, B)",
        u"Increment(A, B)",
        u"Decrement(A, B)",
        u"ConCatString(T, A, B)",
        u"Set(T, A)",
        u"Set(A, T)",
        u"IfGreaterThan(A, B, End)",
        u"IfLessThan(A, B, End)",
        u"IfEqual(A, B, End)",
        u"IfNotEqual(A, B, End)",
        u"IfEqual(A, T, End)",
        u"MathsFunction(\"Divide\", A, B, 1, 0, 0)\r\nIfGreaterThan(A, 1, End)\r\nIncrement(A, A)\r\nConCatString(T, "
        u"A, 1)",
        u"InputNumber(\"How many?\", A, 1, 2)\r\nIncrement(A, 1)\r\nSet(T, A)",
        u"WaitTime(A, T)",
        u"MoveIntoVessel(A)",
        u"ShakeBlade(A)",
        u"ShakeBlade(A, B, A)",
        u"RotateForDuration(A, B, A, B)",
        u"MoveToHeight(A, B, A, B)",
        u"GetDataSet(A, B, A, B)",
        u"SCTestFull(A, B, A, B, A, B, A, B, A, B, A, B, A, B, A, B, A, T, B, A, B, T, T, T, T)",
        u"ChangeBlade(A, B, 1, 1, 1, 1)",
        u"AddTestVariable(T, A, B)",
        u"TextCommand(T, A, B, A, B, A, B)",
    };
    constexpr std::u16string_view numbers[] = {u"0",     u"0.1",   u"3.4e38", u"-3.4e38",    u"1e39",
                                               u"1e-45", u"1e400", u"1e-400", u"2147483648", u"0.5"};
    const ComReference<_clsScriptControl> control = newControl();
    Lines lines;
    for (const std::u16string_view first : numbers)
        for (const std::u16string_view second : {u"0", u"3.4e38", u"1e-45"})
            for (const std::u16string_view statement : statements) {
                std::u16string script = u"VAR A = ";
                script.append(first).append(u"\r\nVAR B = ").append(second).append(u"\r\nVAR T = \"1.5e300\"\r\n");
                script.append(statement).append(u"\r\nEnd:\r\nInfo(T)");
                for (std::string& line : observe(host, *control.get(), script)) lines.push_back(std::move(line));
            }
    return lines;
}

Lines observeScripts(Host& host) {
    const ComReference<_clsScriptControl> control = newControl();
    Lines lines = observe(host, *control.get(), everyEventScript);
    for (const char* folder : {"examples", "tests/scripts"})
        for (const auto& file : std::filesystem::directory_iterator(folder)) {
            if (file.path().extension() != ".script") continue;
            HostText path(file.path().u16string());
            VARIANT_BOOL loaded = VARIANT_FALSE;
            host.callingWithMessages([&] { control->LoadScript_FromFile(path.address(), &loaded); });
            lines.push_back(file.path().string() + " " + std::to_string(loaded));
            if (loaded == VARIANT_FALSE) continue;
            std::size_t events = 0;
            Sink sink([&](DISPID event, DISPPARAMS& arguments) {
                host.answering([&] {
                    lines.push_back(show(event, arguments));
                    constexpr std::size_t patience = 300;
                    if (++events <= patience) answer(event, arguments);
                });
                return S_OK;
            });
            const Advised advised(*control.get(), sink);
            RunResult result;
            host.callingWithMessages([&] { result = run(*control.get()); });
            lines.push_back("result " + std::to_string(result.result) + ", " + std::to_string(result.value));
        }
    SetErrorInfo(0, nullptr);
    return lines;
}

/// A call through IDispatch as a host of the way makes it.
std::string observeCall(Host& host, IDispatch& object, DISPID member, WORD flags, const std::vector<VARIANT>& inOrder) {
    Arguments arguments(inOrder);
    if (flags == DISPATCH_PROPERTYPUT) arguments.named({DISPID_PROPERTYPUT});
    OwnedVariant value;
    EXCEPINFO exception{};
    UINT faultyArgument = 0;
    HRESULT result = S_OK;
    host.calling([&] {
        result = object.Invoke(member, IID_NULL, LOCALE_USER_DEFAULT, flags, arguments.parameters(), value.get(),
                               &exception, &faultyArgument);
    });
    SysFreeString(exception.bstrSource);
    SysFreeString(exception.bstrDescription);
    SysFreeString(exception.bstrHelpFile);
    SetErrorInfo(0, nullptr);
    return std::to_string(result) + " " + std::to_string(exception.scode) + " " + shown(*value.get());
}

VARIANT date(double day) {
    VARIANT variant = number(day);
    V_VT(&variant) = VT_DATE;
    return variant;
}

VARIANT currency(LONGLONG tenThousandths) {
    VARIANT variant = ofType(VT_CY);
    V_CY(&variant).int64 = tenThousandths;
    return variant;
}

/// Members called late bound with numbers that are not of the published types.
Lines observeLateBoundCalls(Host& host) {
    const std::vector<std::function<VARIANT()>> values = {
        [] { return number(1e300); },
        [] { return number(-1e300); },
        [] { return number(1e-300); },
        [] { return number(0.1); },
        [] { return number(2.5); },
        [] { return number(1e20); },
        [] { return number(std::numeric_limits<double>::quiet_NaN()); },
        [] { return number(std::numeric_limits<double>::infinity()); },
        [] { return text(u"1e400"); },
        [] { return text(u"1e-400"); },
        [] { return text(u"0.1"); },
        [] { return text(u"1.5"); },
        [] { return text(u"no number"); },
        [] { return boolean(true); },
        [] { return integer(0x7FFFFFFF); },
        [] { return single(std::numeric_limits<float>::max()); },
        [] { return single(infinity); },
        [] { return date(43831.7); },
        [] { return currency(123456789); },
        [] { return emptyVariant(); },
    };
    const ComReference<_clsScriptControl> control = newControl();
    const auto record = create<_clsDataSetParameters>(CLSID_clsDataSetParameters, IID__clsDataSetParameters);
    const auto list = create<_clsScriptParamList>(CLSID_clsScriptParamList, IID__clsScriptParamList);
    EXPECT_TRUE(load(*control.get(), u"VAR A = 1\r\nVAR B = 2"));
    constexpr DISPID editDataVariable = 0x60030038;
    constexpr DISPID functionNameFromType = 0x60030039;
    constexpr DISPID helixAngle = 0x6803000F;
    constexpr DISPID singleValue = 0x68030002;
    constexpr DISPID stringValue = 0x68030001;
    Lines lines;
    const auto observe = [&](IDispatch& object, DISPID member, WORD flags, const std::vector<VARIANT>& arguments) {
        lines.push_back(observeCall(host, object, member, flags, arguments));
    };
    for (const auto& value : values) {
        observe(*control.get(), editDataVariable, DISPATCH_METHOD, {integer(0), value()});
        observe(*control.get(), editDataVariable, DISPATCH_METHOD, {value(), single(1)});
        observe(*control.get(), functionNameFromType, DISPATCH_METHOD, {value()});
        observe(*record.get(), helixAngle, DISPATCH_PROPERTYPUT, {value()});
        observe(*record.get(), helixAngle, DISPATCH_PROPERTYGET, {});
        observe(*list.get(), singleValue, DISPATCH_PROPERTYPUT, {integer(1), value()});
        observe(*list.get(), singleValue, DISPATCH_PROPERTYGET, {integer(1)});
        observe(*list.get(), stringValue, DISPATCH_PROPERTYPUT, {integer(1), value()});
        observe(*list.get(), stringValue, DISPATCH_PROPERTYGET, {integer(1)});
        // A variable of the caller's that the answer is converted back into.
        double variable = 0.1;
        observe(*control.get(), editDataVariable, DISPATCH_METHOD, {integer(0), reference(VT_R8, &variable)});
        observe(*control.get(), 0x60030036, DISPATCH_METHOD, {text(u"A")});
    }
    return lines;
}

/// A listing, with all numbers as text.
Lines observeListing(Host& host) {
    const ComReference<_clsProgramFunctionList> list = newFunctionList();
    HostText script(everyEventScript);
    LONG number = 0;
    VARIANT_BOOL result = VARIANT_FALSE;
    ComReference<_Collection> collection;
    host.callingWithMessages([&] {
        list->LoadProgramScript_FromDatabase(script.address(), script.address(), &number, &number, &result);
        list->CreateFunctionList(collection.receive(), &result);
    });
    LONG count = 0;
    host.calling([&] { collection->get_Count(&count); });
    Lines lines;
    for (double position = 1; position <= count; ++position) {
        VARIANT index = corvane::testing::number(position);
        OwnedVariant item;
        host.calling([&] { collection->get_Item(index, item.get()); });
        const auto function = queryFor<_clsProgramFunction>(V_DISPATCH(item.get()), IID__clsProgramFunction);
        LONG parameters = 0;
        host.calling([&] { function->get_ParamCount(&parameters); });
        for (LONG i = 0; i < parameters; ++i) {
            BSTR text = nullptr;
            host.calling([&] { function->get_Param(&i, &text); });
            lines.push_back(toUtf8(taken(text)));
        }
    }
    return lines;
}

Lines observeWhatCanBeEdited(Host& host) {
    const ComReference<_clsScriptControl> control = newControl();
    EXPECT_TRUE(load(*control.get(), u"VAR A = 0.1"));
    SAFEARRAY* array = nullptr;
    LONG count = 0;
    HRESULT result = E_FAIL;
    host.calling([&] { result = control->GetEditable(&array, &count); });
    OwnedVariant late;
    return {std::to_string(result) + " " + std::to_string(count),
            observeCall(host, *control.get(), 0x60030037, DISPATCH_METHOD,
                        {reference(*late.get()), reference(VT_I4, &count)})};
}

class HostArithmeticTest : public ::testing::TestWithParam<HostWay> {
protected:
    void TearDown() override { ownFloatingPoint.apply(); }

    /// Compares what such a host sees with what every other sees.
    static void expectNoDifference(Lines (*observation)(Host&)) {
        static std::map<Lines (*)(Host&), Lines> known;
        Host usual(ownFloatingPoint);
        if (!known.contains(observation)) known[observation] = observation(usual);
        const Lines& expected = known[observation];
        Host host(GetParam().state);
        const Lines seen = observation(host);
        ASSERT_EQ(seen.size(), expected.size());
        for (std::size_t i = 0; i < seen.size(); ++i) ASSERT_EQ(seen[i], expected[i]) << "line " << i;
        EXPECT_GE(seen.size(), 2U);
    }
};

TEST_P(HostArithmeticTest, MakesNoDifferenceToStatements) { expectNoDifference(observeStatements); }
TEST_P(HostArithmeticTest, MakesNoDifferenceToScripts) { expectNoDifference(observeScripts); }
TEST_P(HostArithmeticTest, MakesNoDifferenceToLateBoundCalls) { expectNoDifference(observeLateBoundCalls); }
TEST_P(HostArithmeticTest, MakesNoDifferenceToAListing) { expectNoDifference(observeListing); }
TEST_P(HostArithmeticTest, MakesNoDifferenceToWhatCanBeEdited) { expectNoDifference(observeWhatCanBeEdited); }

INSTANTIATE_TEST_SUITE_P(Each, HostArithmeticTest, ::testing::ValuesIn(ways),
                         [](const ::testing::TestParamInfo<HostWay>& way) { return way.param.name; });

}  // namespace
}  // namespace corvane::testing
