#include "engine/event.h"

#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "host/clsDataSetParameters.h"
#include "tests/allocation_counter.h"
#include "tests/support/engine_fixture.h"

namespace corvane {
namespace {

using testing::show;

/// The sentence that `action` is refused with; empty when it is not refused.
template <typename Action>
std::string refusalOf(Action&& action) {
    try {
        action();
    } catch (const std::logic_error& error) {
        return error.what();
    }
    return {};
}

Value anyOf(ValueType type) {
    switch (type) {
        case ValueType::Integer: return Value::ofInteger(3);
        case ValueType::Long: return Value::ofLong(70000);
        case ValueType::Single: return Value::ofSingle(1.5F);
        case ValueType::Double: return Value::ofDouble(2.25);
        case ValueType::Boolean: return Value::ofBoolean(true);
        case ValueType::Text: return Value::ofText(u"some text");
        case ValueType::Object: break;
    }
    return Value::ofObject(*makeReference<clsDataSetParameters>());
}

template <std::size_t... I>
void withEvent(HostEvent id, const std::vector<Value>& arguments, const std::function<void(Event&)>& use,
               std::index_sequence<I...>) {
    Event event(id, std::initializer_list<Value>{arguments[I]...});
    use(event);
}

template <std::size_t Count = 0>
void withEvent(HostEvent id, const std::vector<Value>& arguments, const std::function<void(Event&)>& use) {
    if (arguments.size() == Count)
        withEvent(id, arguments, use, std::make_index_sequence<Count>());
    else if constexpr (Count < maximumEventArguments)
        withEvent<Count + 1>(id, arguments, use);
}

/// Makes each of the 41 events with a value of the right type in every place.
void withEveryEvent(const std::function<void(Event&)>& use) {
    for (const EventRow& row : eventTable) {
        SCOPED_TRACE(row.name);
        std::vector<Value> arguments;
        for (std::size_t i = 0; i + 1 < row.argumentCount; ++i) arguments.push_back(anyOf(row.arguments[i].type));
        withEvent(row.id, arguments, use);
    }
}

TEST(Event, EveryEventTakesArgumentsOfItsPublishedTypes) {
    int events = 0;
    withEveryEvent([&](Event& event) {
        ++events;
        ASSERT_EQ(event.count(), event.row().argumentCount);
        for (std::size_t i = 0; i < event.count(); ++i) {
            EXPECT_EQ(event.argument(i).type(), event.row().arguments[i].type) << i;
            EXPECT_EQ(&event.argument(event.row().arguments[i].name), &event.argument(i)) << i;
        }
    });
    EXPECT_EQ(events, 41);
}

TEST(Event, SuccessStartsFalseOnEveryEvent) {
    withEveryEvent([](Event& event) {
        EXPECT_FALSE(event.succeeded());
        EXPECT_EQ(show(event.argument("tSucess")), "bFalse");
    });
}

TEST(Event, OfEveryEventExactlyTheArgumentsByReferenceTakeAnswers) {
    withEveryEvent([](Event& event) {
        for (std::size_t i = 0; i < event.count(); ++i) {
            const EventArgument& argument = event.row().arguments[i];
            const std::string refusal = refusalOf([&] { event.answer(i, anyOf(argument.type)); });
            EXPECT_EQ(refusal.empty(), argument.byReference) << argument.name << " " << refusal;
        }
    });
}

TEST(Event, NoArgumentOfAnyEventTakesAnAnswerOfAnotherType) {
    withEveryEvent([](Event& event) {
        for (std::size_t i = 0; i < event.count(); ++i) {
            for (const ValueType type : {ValueType::Integer, ValueType::Long, ValueType::Single, ValueType::Double,
                                         ValueType::Boolean, ValueType::Text, ValueType::Object}) {
                if (type == event.row().arguments[i].type) continue;
                EXPECT_THROW(event.answer(i, anyOf(type)), std::logic_error) << i;
            }
        }
    });
}

TEST(Event, KeepsItsIdentityAndItsArgumentsInOrder) {
    const Event event(HostEvent::InputString,
                      {Value::ofText(u"Name?"), Value::ofLong(20), Value::ofText(u"old"), Value::ofBoolean(true)});
    EXPECT_EQ(event.id(), HostEvent::InputString);
    EXPECT_EQ(event.row().name, "InputString");
    EXPECT_EQ(event.count(), 5U);
    EXPECT_EQ(show(event), "InputString(\"Name?\", l20, \"old\", bTrue)");
}

TEST(Event, ArgumentsAreReadByPublishedName) {
    const Event event(HostEvent::ShakeBlade, {Value::ofLong(3), Value::ofSingle(2.5F), Value::ofSingle(10)});
    EXPECT_EQ(show(event.argument("tNumberOfTimes")), "l3");
    EXPECT_EQ(show(event.argument("tAmplitude")), "s2.5");
    EXPECT_EQ(show(event.argument("tFrequency")), "s10");
}

TEST(Event, SuccessCanBeGivenAndTakenBack) {
    Event event(HostEvent::Park, {});
    event.succeed();
    EXPECT_TRUE(event.succeeded());
    EXPECT_EQ(show(event.argument(0)), "bTrue");
    event.succeed(false);
    EXPECT_FALSE(event.succeeded());
}

TEST(Event, SuccessIsAnArgumentLikeAnyOther) {
    Event event(HostEvent::Park, {});
    event.answer("tSucess", Value::ofBoolean(true));
    EXPECT_TRUE(event.succeeded());
    event.answer(0, Value::ofBoolean(false));
    EXPECT_FALSE(event.succeeded());
}

TEST(Event, AnswersReplaceWhatTheRaiserPassed) {
    Event event(HostEvent::InputString,
                {Value::ofText(u"Name?"), Value::ofLong(20), Value::ofText(u"old"), Value::ofBoolean(true)});
    event.answer("tValue", Value::ofText(u"new"));
    event.answer(3, Value::ofBoolean(false));
    EXPECT_EQ(show(event), "InputString(\"Name?\", l20, \"new\", bFalse)");
    EXPECT_FALSE(event.succeeded());
}

TEST(Event, ARefusedAnswerChangesNothing) {
    Event event(HostEvent::MathsFunction, {Value::ofText(u"f"), Value::ofSingle(1), Value::ofSingle(2),
                                           Value::ofSingle(3), Value::ofSingle(4), Value::ofSingle(0)});
    EXPECT_THROW(event.answer("tReturn", Value::ofDouble(9)), std::logic_error);
    EXPECT_EQ(show(event.argument("tReturn")), "s0");
}

TEST(Event, AnAnswerToAnArgumentByValueIsRefusedByName) {
    Event event(HostEvent::ShakeBlade, {Value::ofLong(3), Value::ofSingle(2.5F), Value::ofSingle(10)});
    EXPECT_EQ(refusalOf([&] { event.answer("tAmplitude", Value::ofSingle(1)); }),
              "event ShakeBlade, argument tAmplitude: passed by value, it takes no answer");
    EXPECT_EQ(show(event.argument("tAmplitude")), "s2.5");
}

TEST(Event, AnAnswerOfTheWrongTypeIsRefusedByName) {
    Event event(HostEvent::Info, {Value::ofText(u"Hello")});
    EXPECT_EQ(refusalOf([&] { event.answer("tInfoStr", Value::ofLong(1)); }),
              "event Info, argument tInfoStr: wrong type of answer");
}

TEST(Event, AnArgumentThatTheEventDoesNotHaveIsRefusedByName) {
    Event event(HostEvent::Park, {});
    const std::string refusal = "event Park, argument tValue: no such argument";
    EXPECT_EQ(refusalOf([&] { event.answer("tValue", Value::ofLong(1)); }), refusal);
    EXPECT_EQ(refusalOf([&] { static_cast<void>(event.argument("tValue")); }), refusal);
}

TEST(Event, HasNoArgumentWithoutAName) {
    const Event event(HostEvent::Park, {});
    EXPECT_EQ(refusalOf([&] { event.argument(""); }), "event Park, argument : no such argument");
}

TEST(Event, ArgumentNamesKeepTheirCase) {
    Event event(HostEvent::Park, {});
    EXPECT_THROW(event.answer("tsucess", Value::ofBoolean(true)), std::logic_error);
}

TEST(Event, AnAnswerBehindTheLastArgumentIsRefusedByPosition) {
    Event event(HostEvent::Park, {});
    EXPECT_EQ(refusalOf([&] { event.answer(1, Value::ofBoolean(true)); }), "event Park, argument 1: no such argument");
}

TEST(Event, CannotBeMadeWithAnotherNumberOfArguments) {
    const std::string refusal = "event Info, argument tSucess: wrong number of arguments before it";
    EXPECT_EQ(refusalOf([] { const Event event(HostEvent::Info, {}); }), refusal);
    EXPECT_EQ(refusalOf([] {
                  const Event event(HostEvent::Info, {Value::ofText(u"a"), Value::ofText(u"b")});
              }),
              refusal);
}

TEST(Event, CannotBeMadeWithSuccessAmongTheArguments) {
    EXPECT_THROW(Event(HostEvent::Park, {Value::ofBoolean(true)}), std::logic_error);
}

TEST(Event, CannotBeMadeWithAnArgumentOfAnotherType) {
    EXPECT_EQ(refusalOf([] {
                  const Event event(HostEvent::WaitTime, {Value::ofSingle(1), Value::ofSingle(2)});
              }),
              "event WaitTime, argument tMessage: wrong type");
}

TEST(Event, GivesBackWhatItsArgumentsHeld) {
    withEveryEvent([](Event&) {});  // what is only made once
    const std::size_t living = test::livingAllocations();
    withEveryEvent([](Event&) {});
    EXPECT_EQ(test::livingAllocations(), living);
}

TEST(Event, HandsOverTheVeryObject) {
    const auto dataSet = makeReference<clsDataSetParameters>();
    const Event event(HostEvent::GetDataSet, {Value::ofObject(*dataSet)});
    EXPECT_EQ(&event.argument("tTestParameters").object(), dataSet.get());
}

}  // namespace
}  // namespace corvane
