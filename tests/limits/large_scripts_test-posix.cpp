// Scripts far beyond what a host loads, each in a process that gets little more address space than the script must
// have: what would take a copy too many, or grow with the square of the length, does not pass.

#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "host/clsScriptControl.h"
#include "platform/automation_error.h"
#include "platform/utf8.h"
#include "platform/value_rules.h"
#include "tests/limits/limited_process-posix.h"
#include "tests/platform/temporary_folder.h"

namespace corvane::testing {
namespace {

constexpr std::size_t million = 1'000'000;

/// A text that may be long: its beginning, and the length.
std::string beginning(std::u16string_view text) {
    constexpr std::size_t most = 40;
    if (text.size() <= most) return toUtf8(text);
    return toUtf8(text.substr(0, most)) + "... (" + std::to_string(text.size()) + " characters)";
}

std::string shown(const Value& value) { return beginning(toText(value, NumberLocale::pointDecimal()).view()); }

/// Nobody sits before it.
class UnansweredDialogs final : public OperatorDialogs {
public:
    std::string shown;

    std::optional<std::int32_t> showMessage(const OperatorMessage& message) override {
        shown = toUtf8(message.caption.value_or(u"")) + ": " + beginning(message.text);
        return std::nullopt;
    }
    InputAnswer askInput(const InputRequest& request) override {
        return {request.initialValue, InputAnswer::Ending::Unavailable};
    }
};

class NoPump final : public MessagePump {
public:
    void yield() override {}
};

/// Answers every event with success and lets each run go on.
class WillingHost final : public EventSink {
public:
    std::optional<Value> duration;  ///< of the last WaitTime statement

    void raise(Event& event) override {
        if (event.id() == HostEvent::WaitTime) duration = event.argument(0);
        event.succeed();
    }
};

/// A control with its host. What becomes of its scripts is told in words, one after the other.
class ToldControl {
public:
    ToldControl() { control_.setEventSink(&host_); }

    ToldControl& load(std::u16string_view script) {
        return tell([&] { return control_.LoadScript_FromScript(script, u"script", 0, 0); });
    }
    ToldControl& loadFile(const std::filesystem::path& file) {
        return tell([&] { return control_.LoadScript_FromFile(file.u16string()); });
    }
    ToldControl& run() {
        return tell([&] { return control_.RunScript(); });
    }
    /// Runs a script whose end is a WaitTime statement: what it waits for is told too, where the run comes so far.
    ToldControl& runToWait() {
        host_.duration.reset();
        run();
        story_ += host_.duration ? shown(*host_.duration) + "; " : "no wait; ";
        return *this;
    }
    /// The value that an item starts from.
    ToldControl& value(std::u16string_view name) {
        story_ += shown(control_.GetMemoryValue(name)) + "; ";
        return *this;
    }
    const std::string& story() const { return story_; }

private:
    template <typename Call>
    ToldControl& tell(Call call) {
        dialogs_.shown.clear();
        try {
            story_ += call() ? "True; " : "False; ";
        } catch (const automation_error& error) {
            story_ += "error " + std::to_string(static_cast<int>(error.number())) + ": " + error.what() + "; ";
        } catch (const std::bad_alloc&) {
            story_ += "out of memory; ";
        }
        if (!dialogs_.shown.empty()) story_ += dialogs_.shown + "; ";
        return *this;
    }

    UnansweredDialogs dialogs_;
    NoPump pump_;
    NumberLocale numbers_ = NumberLocale::pointDecimal();
    WillingHost host_;
    clsScriptControl control_{{dialogs_, pump_, &numbers_}};
    std::string story_;
};

/// The lines that `line` makes of the numbers from 0.
template <typename Line>
std::u16string lines(std::size_t count, Line line) {
    std::u16string script;
    script.reserve(count * 32);
    for (std::size_t i = 0; i < count; ++i) script += line(fromUtf8(std::to_string(i)));
    return script;
}

std::u16string repeated(std::u16string_view text, std::size_t count) {
    std::u16string whole;
    whole.reserve(text.size() * count);
    for (std::size_t i = 0; i < count; ++i) whole += text;
    return whole;
}

TEST(LargeScripts, AMillionLinesAreLoadedAndRun) {
    const std::u16string script = u"VAR N = 0\r\n" + repeated(u"Set(N, 1.5)\r\n", million) + u"WaitTime(N, \"\")";
    EXPECT_EQ(inLimitedProcess(144, [&] { return ToldControl().load(script).runToWait().story(); }),
              "True; True; 1.5; ");
}

TEST(LargeScripts, AMillionNamesAreFound) {
    const std::u16string script =
        lines(million, [](const std::u16string& n) { return u"VAR Name" + n + u" = " + n + u"\n"; }) +
        lines(million, [](const std::u16string& n) { return u"Increment(NAME" + n + u")\n"; }) +
        u"WaitTime(name999999, \"\")";
    const auto work = [&] { return ToldControl().load(script).runToWait().value(u"name999999").story(); };
    EXPECT_EQ(inLimitedProcess(320, work), "True; True; 1000000; 999999; ");
}

TEST(LargeScripts, AMillionLabelsAreResolved) {
    const std::u16string script = lines(million, [](const std::u16string& n) { return u"Goto(Label" + n + u")\n"; }) +
                                  lines(million, [](const std::u16string& n) { return u"Label" + n + u":\n"; }) +
                                  u"WaitTime(7, \"\")";
    EXPECT_EQ(inLimitedProcess(320, [&] { return ToldControl().load(script).runToWait().story(); }), "True; True; 7; ");
}

TEST(LargeScripts, TheFirstOfAMillionUndefinedLabelsIsTold) {
    const std::u16string script = lines(million, [](const std::u16string& n) { return u"Goto(Label" + n + u")\n"; });
    EXPECT_EQ(inLimitedProcess(320, [&] { return ToldControl().load(script).story(); }),
              "False; Syntax Error on Line 1000001: Undefined Label: Label0; ");
}

TEST(LargeScripts, AScriptThatMemoryDoesNotSufficeForIsRejectedWithoutAMessage) {
    const std::u16string script =
        lines(million, [](const std::u16string& n) { return u"VAR Name" + n + u" = " + n + u"\n"; });
    const auto work = [&] { return ToldControl().load(script).load(u"VAR N = 1\nIncrement(N)").run().story(); };
    EXPECT_EQ(inLimitedProcess(32, work), "False; True; True; ");
}

TEST(LargeScripts, ATextOf100MillionCharactersIsKept) {
    const std::u16string script = u"CONST Text = \"" + std::u16string(100 * million, u'x') + u"\"\nInfo(Text)";
    EXPECT_EQ(inLimitedProcess(256, [&] { return ToldControl().load(script).run().value(u"Text").story(); }),
              "True; True; xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx... (100000000 characters); ");
}

TEST(LargeScripts, ALineOf100MillionCharactersThatIsNoStatementIsShown) {
    const std::u16string script(100 * million, u'x');
    EXPECT_EQ(inLimitedProcess(640, [&] { return ToldControl().load(script).story(); }),
              "False; Syntax Error on Line 0: Invalid input:\r\n\r\n'xxxxxxxxxxxxxxxxxxxxx... "
              "(100000020 characters); ");
    EXPECT_EQ(inLimitedProcess(100, [&] { return ToldControl().load(script).story(); }), "False; ");
}

TEST(LargeScripts, ANumberOf100MillionDigitsIsANumber) {
    const std::u16string script = u"CONST Third = 0." + std::u16string(100 * million, u'3');
    EXPECT_EQ(inLimitedProcess(896, [&] { return ToldControl().load(script).value(u"Third").story(); }),
              "True; 0.3333333; ");
}

TEST(LargeScripts, TenMillionParametersAreTooMany) {
    const std::u16string parameters = repeated(u"1,", 10 * million);
    const std::u16string one = u"Info(" + parameters + u"1)";
    EXPECT_EQ(inLimitedProcess(16, [&] { return ToldControl().load(one).story(); }),
              "False; Syntax Error on Line 0: Info requires 1 parameters; ");
    const std::u16string all = u"SCTestFull(" + parameters + u"1)";
    EXPECT_EQ(inLimitedProcess(16, [&] { return ToldControl().load(all).story(); }), "False; ");
}

TEST(LargeScripts, EndlessCallsEndWithTheMemory) {
    const auto work = [] {
        ToldControl control;
        control.load(u"Again:\nCall(Again)").run();
        return control.load(u"VAR N = 1\nIncrement(N)").run().story();
    };
    EXPECT_EQ(inLimitedProcess(64, work), "True; out of memory; True; True; ");
}

TEST(LargeScripts, AFileThatMemoryDoesNotSufficeForIsError7) {
    const TemporaryFolder folder;
    const auto path = folder.write("large.script", "");
    std::filesystem::resize_file(path, 200 * million);
    const std::string error = "error 7: Out of memory: '" + path.string() + "'; ";
    const auto work = [&] { return ToldControl().loadFile(path).story(); };
    EXPECT_EQ(inLimitedProcess(100, work), error) << "no room for the file";
    EXPECT_EQ(inLimitedProcess(300, work), error) << "no room for its text";
    EXPECT_EQ(inLimitedProcess(700, work), "False; ") << "no room for the message";
}

TEST(LargeScripts, AFileOf1073741823BytesIsTheLargestThatIsRead) {
    const TemporaryFolder folder;
    const auto path = folder.write("large.script", "");
    const auto work = [&] { return ToldControl().loadFile(path).story(); };
    const std::string error = "error 7: Out of memory: '" + path.string() + "'";
    std::filesystem::resize_file(path, 1'073'741'823);
    EXPECT_EQ(inLimitedProcess(100, work), error + "; ") << "only the memory is missing";
    std::filesystem::resize_file(path, 1'073'741'824);
    EXPECT_EQ(inLimitedProcess(100, work), error + " is larger than a text can be; ");
}

}  // namespace
}  // namespace corvane::testing
