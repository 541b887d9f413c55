// The statements that the engine carries out itself: flow control, comparisons, values, questions and messages.

#include <compare>
#include <optional>

#include "engine/clsCommandList.h"
#include "platform/automation_error.h"
#include "platform/value_rules.h"

namespace corvane {
namespace {

constexpr std::u16string_view messageCaption = u"Corvane";

}  // namespace

// Flow control

namespace {

// What the everyday ways leave to functions of their own costs them neither registers nor stack.
[[gnu::noinline]] StatementResult jumpToConverted(const clsCommandList& engine, ValueView address) {
    return {crJump, toLong(address, engine.locale())};
}

inline StatementResult jump(const clsCommandList& engine, StatementStep step, std::int32_t parameter) {
    const ValueView address = step.view(parameter);
    if (address.type() != ValueType::Long) [[unlikely]]
        return jumpToConverted(engine, address);
    return {crJump, address.longInteger()};
}

}  // namespace

StatementResult clsCommandList::executeGoto(StatementStep step) { return jump(*this, step, 0); }

StatementResult clsCommandList::executeCall(StatementStep step) { return {crCall, longOf(step.view(0))}; }

StatementResult clsCommandList::executeReturn(StatementStep) { return crReturn; }

StatementResult clsCommandList::executeIfNotFinishLoopFlag(StatementStep step) {
    // Kept: the flag is asked of the statement collection, which has no such member.
    if (!options_.designedMemberAccess) throw automation_error(ErrorNumber::MemberNotFound);
    if (EnvFinishLoopFlag()) {
        setEnvFinishLoopFlag(false);
        return crNext;
    }
    Event required(HostEvent::RequiredFinishLoopFlag);
    required.append(Value::ofText(textOf(step.view(0))));
    required.append(Value::ofBoolean(false));
    owner_.raise(required);
    return {required.succeeded() ? crJump : crFailed, longOf(step.view(1))};
}

// Comparisons

namespace {

using Relation = bool(std::partial_ordering) noexcept;

inline StatementResult jumpIf(bool holds, const clsCommandList& engine, StatementStep step) {
    return holds ? jump(engine, step, 2) : crNext;
}

template <Relation holds>
[[gnu::noinline]] StatementResult compareOthers(const clsCommandList& engine, StatementStep step) {
    return jumpIf(holds(platform_rules::compare(step.view(0), step.view(1))), engine, step);
}

template <Relation holds>
inline StatementResult compareParameters(const clsCommandList& engine, StatementStep step) {
    const ValueView left = step.view(0);
    const ValueView right = step.view(1);
    if (!everyday::isComparable(left, right)) [[unlikely]]
        return compareOthers<holds>(engine, step);
    return jumpIf(holds(everyday::compare(left, right)), engine, step);
}

}  // namespace

StatementResult clsCommandList::executeIfGreaterThan(StatementStep step) {
    return compareParameters<std::is_gt>(*this, step);
}

StatementResult clsCommandList::executeIfLessThan(StatementStep step) {
    return compareParameters<std::is_lt>(*this, step);
}

StatementResult clsCommandList::executeIfNotEqual(StatementStep step) {
    return compareParameters<std::is_neq>(*this, step);
}

StatementResult clsCommandList::executeIfEqual(StatementStep step) {
    return compareParameters<std::is_eq>(*this, step);
}

// Values

StatementResult clsCommandList::executeSet(StatementStep step) {
    step.item(0).setCurrentValue(step.item(1).CurrentValue());
    return crNext;
}

namespace {

using EverydayRule = std::optional<float>(ValueView, ValueView);
using UnusualRule = Value(ValueView, ValueView, const NumberLocale&);

constexpr ValueView one(ValueType::Integer, {1});

template <UnusualRule rule>
[[gnu::noinline]] StatementResult changeOther(const clsCommandList& engine, StatementStep step) {
    const clsData item = step.item(0);
    item.setCurrentValue(rule(item.currentView(), one, engine.locale()));
    return crNext;
}

template <EverydayRule everydayRule, UnusualRule rule>
inline StatementResult changeByOne(const clsCommandList& engine, StatementStep step) {
    const clsData item = step.item(0);
    const auto result = everydayRule(item.currentView(), one);
    if (!result) [[unlikely]]
        return changeOther<rule>(engine, step);
    item.setCurrentSingle(*result);
    return crNext;
}

}  // namespace

StatementResult clsCommandList::executeDecrement(StatementStep step) {
    return changeByOne<everyday::subtract, unusual::subtract>(*this, step);
}

StatementResult clsCommandList::executeIncrement(StatementStep step) {
    return changeByOne<everyday::add, unusual::add>(*this, step);
}

StatementResult clsCommandList::executeMathsFunction(StatementStep step) {
    constexpr std::size_t returnArgument = 5;
    Event maths(HostEvent::MathsFunction);
    maths.append(Value::ofText(textOf(step.view(0))));
    for (std::int32_t parameter = 2; parameter <= 5; ++parameter)
        maths.append(Value::ofSingle(singleOf(step.view(parameter))));
    maths.append(Value::ofSingle(0));
    maths.append(Value::ofBoolean(false));
    owner_.raise(maths);
    if (!maths.succeeded()) return crFailed;
    step.item(1).setCurrentValue(maths.argument(returnArgument));
    return crNext;
}

StatementResult clsCommandList::executeConCatString(StatementStep step) {
    const Text left = textOf(step.view(1));
    const Text right = textOf(step.view(2));
    step.item(0).setCurrentValue(Value::ofText(Text::join(left.view(), right.view())));
    return crNext;
}

// Input

StatementResult clsCommandList::executeInputNumber(StatementStep step) {
    constexpr std::size_t executeArgument = 4;
    Event input(HostEvent::InputNumber);
    input.append(Value::ofText(textOf(step.view(0))));
    input.append(Value::ofSingle(singleOf(step.view(2))));
    input.append(Value::ofSingle(singleOf(step.view(3))));
    input.append(Value::ofSingle(singleOf(step.view(1))));
    input.append(Value::ofBoolean(step.execute));
    input.append(Value::ofBoolean(false));
    owner_.raise(input);
    if (input.argument(executeArgument).boolean()) return askOperator(step, InputKind::SingleNumber);
    // Kept: the value that the host answers with is not stored; a host stores it through the facade.
    return input.succeeded() ? crNext : crFailed;
}

StatementResult clsCommandList::executeInputString(StatementStep step) {
    constexpr std::size_t valueArgument = 2;
    constexpr std::size_t executeArgument = 3;
    bool execute = step.execute;
    const auto raiseInput = [&](Event& input) {
        input.append(Value::ofText(textOf(step.view(0))));
        input.append(Value::ofLong(longOf(step.view(2))));
        input.append(Value::ofText(textOf(step.view(1))));
        input.append(Value::ofBoolean(execute));
        input.append(Value::ofBoolean(false));
        owner_.raise(input);
        execute = input.argument(executeArgument).boolean();
    };
    // Kept: raised twice; only what the host writes into the second event is stored.
    Event first(HostEvent::InputString);
    raiseInput(first);
    if (!execute) return crNext;
    Event second(HostEvent::InputString);
    raiseInput(second);
    if (execute) return askOperator(step, InputKind::String);
    step.item(1).setCurrentValue(second.argument(valueArgument));
    return crNext;
}

ResultCode clsCommandList::askOperator(StatementStep step, InputKind kind) {
    for (;;) {
        const Text question = textOf(step.view(0));
        InputRequest request;
        request.initialValue = step.item(1).CurrentValue();
        request.kind = kind;
        request.question = question.view();
        if (kind == InputKind::String) {
            request.maximum = singleOf(step.view(2));
            request.title = u"Enter String";
        } else {
            request.minimum = singleOf(step.view(2));
            request.maximum = singleOf(step.view(3));
            request.title = u"Enter Number";
        }
        InputAnswer answer = services_.dialogs.askInput(request);
        step.item(1).setCurrentValue(std::move(answer.value));
        if (answer.ending == InputAnswer::Ending::Accepted) return crNext;
        if (answer.ending == InputAnswer::Ending::Unavailable || confirmCancel()) return crFailed;
    }
}

// Whether the operator means it. Where nobody can be asked the cancel stands: asking again would never end.
bool clsCommandList::confirmCancel() {
    const std::optional<std::int32_t> answer =
        services_.dialogs.showMessage({.text = u"Are you sure you want to cancel the Script?",
                                       .caption = {},
                                       .style = yesNoQuestionStyle,
                                       .helpFile = {}});
    return answer.value_or(yesAnswer) == yesAnswer;
}

// Messages

StatementResult clsCommandList::executeInfo(StatementStep step) {
    Event info(HostEvent::Info);
    info.append(Value::ofText(textOf(step.view(0))));
    info.append(Value::ofBoolean(false));
    owner_.raise(info);
    return info.succeeded() ? crNext : crFailed;
}

StatementResult clsCommandList::executeMsgAsk(StatementStep step) {
    constexpr std::size_t executeArgument = 2;
    Event ask(HostEvent::MsgAsk);
    ask.append(Value::ofText(textOf(step.view(0))));
    ask.append(Value::ofLong(0));
    ask.append(Value::ofBoolean(step.execute));
    ask.append(Value::ofBoolean(false));
    owner_.raise(ask);
    // Kept: a host that asks the operator itself cannot make the script jump.
    if (!ask.argument(executeArgument).boolean()) return crNext;
    const Text question = textOf(step.view(0));
    const std::optional<std::int32_t> answer = services_.dialogs.showMessage(
        {.text = question.view(), .caption = messageCaption, .style = yesNoQuestionStyle, .helpFile = {}});
    return answer == yesAnswer ? jump(*this, step, 1) : crNext;
}

StatementResult clsCommandList::executeMsgInfo(StatementStep step) {
    constexpr std::size_t executeArgument = 1;
    if (!step.execute) return crNext;
    Event message(HostEvent::MsgInfo);
    message.append(Value::ofText(textOf(step.view(0))));
    message.append(Value::ofBoolean(step.execute));
    message.append(Value::ofBoolean(false));
    owner_.raise(message);
    if (message.argument(executeArgument).boolean()) {
        const Text text = textOf(step.view(0));
        services_.dialogs.showMessage(
            {.text = text.view(), .caption = messageCaption, .style = okInformationStyle, .helpFile = {}});
    }
    return crNext;
}

StatementResult clsCommandList::executeMsgInfoEx(StatementStep step) {
    constexpr std::size_t executeArgument = 2;
    if (!step.execute) return crNext;
    Event message(HostEvent::MsgInfoEx);
    message.append(Value::ofText(textOf(step.view(0))));
    message.append(Value::ofLong(longOf(step.view(1))));
    message.append(Value::ofBoolean(step.execute));
    message.append(Value::ofBoolean(false));
    owner_.raise(message);
    if (message.argument(executeArgument).boolean()) {
        const Text text = textOf(step.view(0));
        // Kept: the sound number stands where the style belongs, the style where the caption, the caption where the
        // help file.
        const OperatorMessage shown{
            .text = text.view(), .caption = u"64", .style = longOf(step.view(1)), .helpFile = messageCaption};
        services_.dialogs.showMessage(shown);
    }
    return crNext;
}

}  // namespace corvane
