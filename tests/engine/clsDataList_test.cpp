#include "engine/clsDataList.h"

#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "engine/text_utilities.h"
#include "host/clsDataSetParameters.h"
#include "platform/text_case.h"
#include "tests/allocation_counter.h"
#include "tests/memory/every_request.h"
#include "tests/support/engine_fixture.h"

namespace corvane {
namespace {

using testing::EngineTest;
using testing::errorOf;
using testing::RecordingListener;
using testing::RecordingTrace;
using testing::show;

constexpr std::int32_t highest = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t lowest = std::numeric_limits<std::int32_t>::min();

/// The position that a lookup reports, with a mark when it found nothing: "2" or "none, 5".
std::string lookUp(clsDataList& list, std::u16string_view name, std::int32_t filter = 255) {
    std::int32_t index = -77;
    const bool found = list.FindItem(name, index, filter);
    return (found ? "" : "none, ") + std::to_string(index);
}

std::string lookUpValue(const clsDataList& list, std::u16string_view name, std::u16string_view value,
                        std::int32_t type) {
    std::int32_t index = -77;
    const bool found = list.FindItemValue(name, value, index, type);
    return (found ? "" : "none, ") + std::to_string(index);
}

// Items

TEST(MemoryItem, EqualsOnlyTheSameItemOfTheSameList) {
    SlabMemory memory;
    clsDataList list(memory);
    clsDataList other(memory);
    const clsData first = list.AddItem();
    const clsData second = list.AddItem();
    EXPECT_TRUE(first == list.Item(0));
    EXPECT_FALSE(first == second);
    EXPECT_FALSE(first == other.AddItem());
}

TEST(MemoryItem, TakesASingleWhateverItHeldBefore) {
    SlabMemory memory;
    clsDataList list(memory);
    const clsData item = list.AddItem();
    for (const Value& before : {Value::ofInteger(3), Value::ofText(u"text"), Value::ofDouble(5), Value::ofSingle(4)}) {
        item.setCurrentValue(before);
        item.setCurrentSingle(2.5F);
        EXPECT_EQ(show(item.CurrentValue()), "s2.5") << show(before);
    }
}

TEST(MemoryItem, ReadsItsDefaultsUntilSet) {
    SlabMemory memory;
    clsDataList list(memory);
    const clsData item = list.AddItem();
    EXPECT_EQ(item.Identifier(), u"");
    EXPECT_EQ(item.ParameterType(), 1);
    EXPECT_EQ(show(item.CurrentValue()), "i0");
    EXPECT_EQ(show(item.InitialValue()), "i0");
    EXPECT_FALSE(item.IsEditable());
    EXPECT_EQ(item.MinVal(), 0.0F);
    EXPECT_EQ(item.MaxVal(), 0.0F);
    EXPECT_EQ(item.Units(), u"");
    EXPECT_EQ(item.PromptString(), u"");
}

TEST(MemoryItem, KeepsEachPropertyThatIsWritten) {
    SlabMemory memory;
    clsDataList list(memory);
    clsData other = list.AddItem();
    clsData item = list.AddItem();
    item.setIdentifier(u"Force");
    item.setParameterType(ptNumber);
    item.setCurrentValue(Value::ofSingle(1.5F));
    item.setInitialValue(Value::ofText(u"start"));
    item.setIsEditable(true);
    item.setMinVal(-2.5F);
    item.setMaxVal(7.25F);
    item.setUnits(u"N");
    item.setPromptString(u"Which force?");
    EXPECT_EQ(item.Identifier(), u"Force");
    EXPECT_EQ(item.ParameterType(), 2);
    EXPECT_EQ(show(item.CurrentValue()), "s1.5");
    EXPECT_EQ(show(item.InitialValue()), "\"start\"");
    EXPECT_TRUE(item.IsEditable());
    EXPECT_EQ(item.MinVal(), -2.5F);
    EXPECT_EQ(item.MaxVal(), 7.25F);
    EXPECT_EQ(item.Units(), u"N");
    EXPECT_EQ(item.PromptString(), u"Which force?");
    EXPECT_EQ(other.Identifier(), u"");
    EXPECT_EQ(other.ParameterType(), 1);
    EXPECT_FALSE(other.IsEditable());
    EXPECT_EQ(other.Units(), u"");
}

TEST(MemoryItem, KeepsAnyTypeCode) {
    SlabMemory memory;
    clsDataList list(memory);
    clsData item = list.AddItem();
    for (const std::int32_t code : {0, 1, 130, 255, 65534, 65535, 65536, -1, highest, lowest, 8}) {
        item.setParameterType(code);
        EXPECT_EQ(item.ParameterType(), code);
    }
}

TEST(MemoryItem, KeepsValuesOfEveryType) {
    SlabMemory memory;
    clsDataList list(memory);
    clsData item = list.AddItem();
    const auto dataSet = makeReference<clsDataSetParameters>();
    const std::vector<std::pair<Value, std::string>> cases = {
        {Value::ofInteger(-1), "i-1"},           {Value::ofLong(70000), "l70000"},  {Value::ofSingle(2.5F), "s2.5"},
        {Value::ofDouble(0.125), "d0.125"},      {Value::ofBoolean(true), "bTrue"}, {Value::ofText(u"abc"), "\"abc\""},
        {Value::ofObject(*dataSet), "<object>"},
    };
    for (const auto& [value, shown] : cases) {
        item.setCurrentValue(value);
        item.setInitialValue(value);
        EXPECT_EQ(show(item.CurrentValue()), shown);
        EXPECT_EQ(show(item.InitialValue()), shown);
    }
    EXPECT_EQ(&item.CurrentValue().object(), dataSet.get());
}

TEST(MemoryItem, AValueOutlivesTheItemThatItWasReadFrom) {
    Value value;
    {
        SlabMemory memory;
        clsDataList list(memory);
        list.AddItem({}, ptString, Value::ofText(u"stays"));
        value = list.Item(0).InitialValue();
    }
    EXPECT_EQ(show(value), "\"stays\"");
}

TEST(MemoryItem, InitialiseCopiesTheInitialValueWithItsType) {
    SlabMemory memory;
    clsDataList list(memory);
    for (const Value& initial : {Value::ofSingle(2.5F), Value::ofText(u"text"), Value::ofInteger(-1), Value()}) {
        clsData item = list.AddItem({}, ptNumber, initial);
        item.setCurrentValue(Value::ofLong(99));
        EXPECT_TRUE(item.Initialise());
        EXPECT_EQ(show(item.CurrentValue()), show(initial));
        EXPECT_EQ(show(item.InitialValue()), show(initial));
    }
}

TEST(MemoryItem, InitialAndCurrentValueAreIndependent) {
    SlabMemory memory;
    clsDataList list(memory);
    clsData item = list.AddItem(u"x", ptNumber, Value::ofSingle(1));
    item.setCurrentValue(Value::ofSingle(2));
    EXPECT_EQ(show(item.InitialValue()), "s1");
    item.setInitialValue(Value::ofSingle(3));
    EXPECT_EQ(show(item.CurrentValue()), "s2");
}

// CurrentValueChanged

class ValueChanges : public ::testing::Test {
protected:
    RecordingListener recorder;
    EngineListener* listener = &recorder;
    SlabMemory memory;
    clsDataList list{memory, listener};
};

TEST_F(ValueChanges, AreToldAtEachAssignmentOfTheCurrentValue) {
    clsData item = list.AddItem(u"x", ptNumber, Value::ofSingle(1));
    item.setCurrentValue(Value::ofSingle(2));
    item.setCurrentValue(Value::ofSingle(2));
    item.setCurrentValue(Value::ofText(u"two"));
    EXPECT_EQ(recorder.lines, (std::vector<std::string>{"CurrentValueChanged(x, s2)", "CurrentValueChanged(x, s2)",
                                                        "CurrentValueChanged(x, \"two\")"}));
}

TEST_F(ValueChanges, AreNotToldForAnythingElse) {
    clsData item = list.AddItem(u"x", ptNumber, Value::ofSingle(1));
    item.setInitialValue(Value::ofSingle(5));
    item.setIdentifier(u"y");
    item.setParameterType(ptString);
    item.Initialise();
    list.InitialiseData();
    EXPECT_EQ(recorder.lines, std::vector<std::string>());
}

TEST_F(ValueChanges, GoToWhoeverListensAtThatTime) {
    clsData item = list.AddItem(u"x", ptNumber, Value::ofSingle(1));
    listener = nullptr;
    item.setCurrentValue(Value::ofSingle(2));
    RecordingListener second;
    listener = &second;
    item.setCurrentValue(Value::ofSingle(3));
    EXPECT_EQ(recorder.lines, std::vector<std::string>());
    EXPECT_EQ(second.lines, std::vector<std::string>{"CurrentValueChanged(x, s3)"});
}

TEST_F(ValueChanges, AreToldAfterTheAssignmentAndMayAssignAgain) {
    struct Doubling final : EngineListener {
        std::vector<std::string> seen;
        void CurrentValueChanged(const clsData& item, const Value& value) override {
            seen.push_back(show(item.CurrentValue()) + " told " + show(value));
            clsData same = item;
            if (seen.size() == 1) same.setCurrentValue(Value::ofText(u"again"));
            seen.push_back("told " + show(value));
        }
    } doubling;
    listener = &doubling;
    list.AddItem(u"x", ptString, Value());
    list.Item(0).setCurrentValue(Value::ofText(u"once"));
    EXPECT_EQ(doubling.seen, (std::vector<std::string>{"\"once\" told \"once\"", "\"again\" told \"again\"",
                                                       "told \"again\"", "told \"once\""}));
    EXPECT_EQ(show(list.Item(0).CurrentValue()), "\"again\"");
}

// The list

TEST(DataList, StartsEmpty) {
    SlabMemory memory;
    clsDataList list(memory);
    EXPECT_EQ(list.Count(), 0);
    EXPECT_EQ(list.EditableCount(), 0);
    EXPECT_EQ(list.undeclaredCount(), 0);
    EXPECT_TRUE(list.InitialiseData());
    EXPECT_EQ(lookUp(list, u"x"), "none, 0");
    EXPECT_EQ(lookUp(list, u""), "none, 0");
    EXPECT_EQ(lookUpValue(list, u"", u"", 132), "none, 0");
}

TEST(DataList, KeepsItemsInTheOrderOfAdding) {
    SlabMemory memory;
    clsDataList list(memory);
    list.AddItem().setIdentifier(u"first");
    list.AddItem(u"second", ptLabel, Value::ofLong(4));
    list.AddItem().setIdentifier(u"third");
    ASSERT_EQ(list.Count(), 3);
    EXPECT_EQ(list.Item(0).Identifier(), u"first");
    EXPECT_EQ(list.Item(1).Identifier(), u"second");
    EXPECT_EQ(list.Item(1).ParameterType(), 8);
    EXPECT_EQ(show(list.Item(1).InitialValue()), "l4");
    EXPECT_EQ(show(list.Item(1).CurrentValue()), "i0");
    EXPECT_EQ(list.Item(2).Identifier(), u"third");
    EXPECT_EQ(list.Item(2).position(), 2U);
}

TEST(DataList, GetItemPtrCountsFromOneAndItemFromZero) {
    SlabMemory memory;
    clsDataList list(memory);
    const clsData first = list.AddItem();
    const clsData second = list.AddItem();
    EXPECT_EQ(list.GetItemPtr(1), list.Item(0));
    EXPECT_EQ(list.GetItemPtr(1), first);
    EXPECT_EQ(list.GetItemPtr(2), second);
    EXPECT_FALSE(list.GetItemPtr(1) == list.Item(1));
}

TEST(DataList, PositionsOutsideItAreInvalidArguments) {
    SlabMemory memory;
    clsDataList list(memory);
    EXPECT_EQ(errorOf([&] { list.Item(0); }), 5);
    EXPECT_EQ(errorOf([&] { list.GetItemPtr(1); }), 5);
    list.AddItem();
    list.AddItem();
    for (const std::int32_t index : {-1, 2, highest, lowest}) EXPECT_EQ(errorOf([&] { list.Item(index); }), 5) << index;
    for (const std::int32_t index : {-1, 0, 3, highest, lowest})
        EXPECT_EQ(errorOf([&] { list.GetItemPtr(index); }), 5) << index;
    EXPECT_EQ(errorOf([&] { list.GetItemPtr(2); }), 0);
}

TEST(DataList, KeepsTheEditableCountForItsOwner) {
    SlabMemory memory;
    clsDataList list(memory);
    list.setEditableCount(12);
    list.AddItem().setIsEditable(true);
    EXPECT_EQ(list.EditableCount(), 12);
}

TEST(DataList, KeepsWhatItemsAreThroughManyAdditions) {
    SlabMemory memory;
    clsDataList list(memory);
    const clsData early = list.AddItem(u"early", ptNumber, Value::ofSingle(7));
    const std::u16string_view name = early.Identifier();
    for (int i = 0; i < 5000; ++i) list.AddItem(u"later", ptString, Value::ofText(u"text"));
    EXPECT_EQ(list.Count(), 5001);
    EXPECT_EQ(name, u"early");
    EXPECT_EQ(show(early.InitialValue()), "s7");
    EXPECT_EQ(early, list.Item(0));
}

TEST(DataList, AnItemKnowsItsPosition) {
    SlabMemory memory;
    clsDataList list(memory);
    for (std::uint32_t i = 0; i < 1000; ++i) EXPECT_EQ(list.AddItem().position(), i);
    for (std::uint32_t i = 0; i < 1000; ++i) EXPECT_EQ(list.at(i).position(), i);
}

TEST(DataList, ALiteralIsANamelessConstantOfItsValue) {
    SlabMemory memory;
    clsDataList list(memory);
    const clsData number = list.AddNumber(2.5F);
    const clsData text = list.AddString(Text(u"two"));
    EXPECT_EQ(number.ParameterType(), ptConstant | ptNumber);
    EXPECT_EQ(text.ParameterType(), ptConstant | ptString);
    EXPECT_TRUE(number.Identifier().empty());
    EXPECT_EQ(number.InitialValue().single(), 2.5F);
    EXPECT_EQ(text.InitialValue().textView(), u"two");
    EXPECT_EQ(number.CurrentValue().type(), ValueType::Integer);
    EXPECT_EQ(list.Count(), 2);
}

TEST(DataList, GivesBackTheTextsThatItHeld) {
    const std::size_t living = test::livingAllocations();
    {
        SlabMemory memory;
        clsDataList list(memory);
        for (int i = 0; i < 600; ++i) {
            clsData item = list.AddItem(u"name", ptString, Value::ofText(u"first"));
            item.setInitialValue(Value::ofText(u"second"));
            item.setCurrentValue(Value::ofText(u"third"));
            item.setUnits(u"words");
            list.AddString(Text(u"literal"));
        }
        list.InitialiseData();
    }
    EXPECT_EQ(test::livingAllocations(), living);
}

// FindItem

TEST(FindItem, WithTheEmptyNameFindsTheFirstLiteralOfAType) {
    SlabMemory memory;
    clsDataList list(memory);
    list.AddString(Text(u"a"));
    list.AddString(Text(u"b"));
    list.AddNumber(1);
    list.AddNumber(2);
    std::int32_t position = -1;
    EXPECT_TRUE(list.FindItem(u"", position, ptNumber));
    EXPECT_EQ(position, 2);
    EXPECT_TRUE(list.FindItem(u"", position, ptString));
    EXPECT_EQ(position, 0);
    list.at(2).setParameterType(ptString);
    EXPECT_TRUE(list.FindItem(u"", position, ptNumber));
    EXPECT_EQ(position, 3);
}

TEST(FindItem, FindsANameInAnyCase) {
    SlabMemory memory;
    clsDataList list(memory);
    list.AddItem(u"other", ptNumber, Value());
    list.AddItem(u"loop", ptNumber, Value());
    for (const std::u16string_view name : {u"LOOP", u"loop", u"Loop"}) EXPECT_EQ(lookUp(list, name), "1");
}

TEST(FindItem, TakesAnyItemUnlessAskedOtherwise) {
    SlabMemory memory;
    clsDataList list(memory);
    for (const std::int32_t type : {1, 2, 4, 8, 16, 130, 132}) {
        const std::string digits = std::to_string(type);
        const std::u16string name(digits.begin(), digits.end());
        list.AddItem(name, type, Value());
        std::int32_t index = -1;
        EXPECT_TRUE(list.FindItem(name, index)) << type;
        EXPECT_EQ(index, list.Count() - 1);
    }
}

TEST(FindItem, WithTheLabelMaskSkipsAVariableOfThatName) {
    SlabMemory memory;
    clsDataList list(memory);
    list.AddItem(u"loop", ptNumber, Value());
    EXPECT_EQ(lookUp(list, u"LOOP", 9), "none, 1");
    list.AddItem(u"Loop", ptLabel, Value::ofLong(3));
    EXPECT_EQ(lookUp(list, u"LOOP", 9), "1");
    EXPECT_EQ(lookUp(list, u"LOOP", 255), "0");
}

TEST(FindItem, WithTheLabelMaskFindsAForwardReference) {
    SlabMemory memory;
    clsDataList list(memory);
    list.AddItem(u"loop", ptString | ptConstant, Value());
    list.AddItem(u"loop", ptUndeclared, Value::ofInteger(-1));
    EXPECT_EQ(lookUp(list, u"loop", 9), "1");
}

TEST(FindItem, OneCommonBitOfTheMaskIsEnough) {
    SlabMemory memory;
    clsDataList list(memory);
    list.AddItem(u"c", ptConstant | ptNumber, Value());
    for (const std::int32_t filter : {2, 128, 130, 255, 6, -1}) EXPECT_EQ(lookUp(list, u"c", filter), "0") << filter;
    for (const std::int32_t filter : {0, 1, 4, 8, 16, 64, 125}) {
        EXPECT_EQ(lookUp(list, u"c", filter), "none, 1") << filter;
    }
}

TEST(FindItem, FindsTheFirstOfSeveral) {
    SlabMemory memory;
    clsDataList list(memory);
    list.AddItem(u"a", ptNumber, Value());
    list.AddItem(u"x", ptString, Value());
    list.AddItem(u"X", ptString, Value());
    list.AddItem(u"x", ptNumber, Value());
    EXPECT_EQ(lookUp(list, u"x"), "1");
    EXPECT_EQ(lookUp(list, u"x", 2), "3");
}

TEST(FindItem, ComparesTheWholeNameWithItsBlanks) {
    SlabMemory memory;
    clsDataList list(memory);
    list.AddItem(u"Loop ", ptLabel, Value());
    for (const std::u16string_view name : {u"Loop", u"Loo", u" Loop ", u"Loop  "})
        EXPECT_EQ(lookUp(list, name), "none, 1") << toUtf8(name);
    EXPECT_EQ(lookUp(list, u"LOOP "), "0");
}

TEST(FindItem, ComparesLettersBeyondAsciiInAnyCase) {
    SlabMemory memory;
    clsDataList list(memory);
    list.AddItem(u"H\u00D6HE", ptNumber, Value());
    list.AddItem(u"\u03B1\u0431", ptNumber, Value());
    list.AddItem(u"stra\u00DFe", ptNumber, Value());
    EXPECT_EQ(lookUp(list, u"h\u00F6he"), "0");
    EXPECT_EQ(lookUp(list, u"\u0391\u0411"), "1");
    EXPECT_EQ(lookUp(list, u"STRASSE"), "none, 3");
    EXPECT_EQ(lookUp(list, u"hohe"), "none, 3");
}

TEST(FindItem, WithTheEmptyNameFindsTheFirstLiteral) {
    SlabMemory memory;
    clsDataList list(memory);
    list.AddItem(u"a", ptNumber, Value());
    list.AddItem(u"b", ptString, Value());
    list.AddItem(u"c", ptLabel, Value());
    EXPECT_EQ(lookUp(list, u""), "none, 3");
    list.AddItem({}, ptConstant | ptNumber, Value::ofSingle(5));
    list.AddItem({}, ptConstant | ptString, Value::ofText(u"t"));
    EXPECT_EQ(lookUp(list, u""), "3");
    EXPECT_EQ(lookUp(list, u"", 4), "4");
}

TEST(FindItem, FollowsChangesOfNameAndType) {
    SlabMemory memory;
    clsDataList list(memory);
    clsData first = list.AddItem(u"x", ptUndeclared, Value());
    list.AddItem(u"x", ptUndeclared, Value());
    EXPECT_EQ(lookUp(list, u"x", 1), "0");
    first.setParameterType(ptLabel);
    EXPECT_EQ(lookUp(list, u"x", 1), "1");
    EXPECT_EQ(lookUp(list, u"x", 8), "0");
    first.setIdentifier(u"y");
    EXPECT_EQ(lookUp(list, u"x"), "1");
    EXPECT_EQ(lookUp(list, u"Y"), "0");
    first.setIdentifier(u"");
    EXPECT_EQ(lookUp(list, u"y"), "none, 2");
    EXPECT_EQ(lookUp(list, u""), "0");
}

TEST(FindItem, SeesALiteralThatWasAddedBehindAChangeOfName) {
    SlabMemory memory;
    clsDataList list(memory);
    clsData item = list.AddItem(u"x", ptNumber, Value());
    item.setIdentifier(u"y");
    list.AddNumber(1);
    EXPECT_EQ(lookUp(list, u""), "1");
    EXPECT_EQ(lookUp(list, u"y"), "0");
    EXPECT_EQ(lookUp(list, u"x"), "none, 2");
}

// Whatever an addition had done when memory ran out, a lookup finds what the list holds and nothing else.
TEST(FindItem, AgreesWithTheListAfterAnAdditionThatMemoryRefused) {
    constexpr std::size_t requestsTried = 100;
    constexpr std::int32_t additions = 200;
    std::vector<std::u16string> names;
    for (std::int32_t i = 0; i < additions; ++i) names.push_back(u"Variable" + decimal(i));
    test::refuseEachRequest("additions", requestsTried, test::livingAllocations,
                            [&](std::size_t nth, test::Refused refused) {
                                SlabMemory memory;
                                clsDataList list(memory);
                                std::size_t requests = 0;
                                {
                                    const test::MemoryFault fault(nth, refused);
                                    try {
                                        for (const std::u16string& name : names)
                                            list.AddItem(name, ptNumber, Value::ofSingle(1));
                                    } catch (const std::bad_alloc&) {
                                        EXPECT_TRUE(fault.isReached());
                                    }
                                    requests = fault.requests();
                                }
                                for (std::int32_t i = 0; i < additions; ++i) {
                                    const std::string expected =
                                        i < list.Count() ? std::to_string(i) : "none, " + std::to_string(list.Count());
                                    EXPECT_EQ(lookUp(list, names[static_cast<std::size_t>(i)]), expected);
                                }
                                return requests;
                            });
}

TEST(FindItem, FindsItemsOfUnusualTypes) {
    SlabMemory memory;
    clsDataList list(memory);
    clsData item = list.AddItem(u"x", 64, Value());
    list.AddItem(u"x", ptNumber, Value());
    EXPECT_EQ(lookUp(list, u"x"), "0");
    item.setParameterType(0);
    EXPECT_EQ(lookUp(list, u"x"), "1");
    item.setParameterType(256);
    EXPECT_EQ(lookUp(list, u"x"), "1");
    EXPECT_EQ(lookUp(list, u"x", 256), "0");
    item.setParameterType(65535);
    EXPECT_EQ(lookUp(list, u"x"), "0");
    item.setParameterType(lowest);
    EXPECT_EQ(lookUp(list, u"x", lowest), "0");
    item.setParameterType(ptString);
    EXPECT_EQ(lookUp(list, u"x"), "0");
}

/// The plain form of the list: items in a row, walked from the first.
struct PlainList {
    struct Item {
        std::u16string name;
        std::int32_t type;
    };
    std::vector<Item> items;

    std::string lookUp(std::u16string_view name, std::int32_t filter) const {
        for (std::size_t i = 0; i < items.size(); ++i)
            if ((items[i].type & filter) != 0 && toLower(items[i].name) == toLower(name)) return std::to_string(i);
        return "none, " + std::to_string(items.size());
    }
    int undeclared() const {
        int count = 0;
        for (const Item& item : items) count += item.type == 1 ? 1 : 0;
        return count;
    }
};

TEST(FindItem, AgreesWithAWalkOverTheItemsWhateverIsChanged) {
    std::vector<std::u16string> names = {
        u"",           u" ",          u"loop",        u"LOOP",   u"Loop ", u"h\u00F6he", u"H\u00D6HE", u"\u03A9mega",
        u"\u03C9MEGA", u"\U0001F600", u"\U0001F600X", u"\xD83D", u"a=b",   u"\u0130",    u"\u212A"};
    for (char16_t letter = u'a'; letter <= u'z'; ++letter) {
        names.emplace_back(1, letter);
        names.push_back(std::u16string(300, static_cast<char16_t>(letter - u'a' + u'A')) + u"long");
    }
    constexpr std::array<std::int32_t, 7> usual = {1, 2, 4, 8, 16, 130, 132};
    constexpr std::array<std::int32_t, 9> unusual = {0, 3, 64, 128, 255, 256, 65535, 65536, -1};
    constexpr std::array<std::int32_t, 9> filters = {255, 9, 16, 8, 1, 2, 128, 0, -1};
    std::mt19937 random(7);
    const auto below = [&](std::size_t limit) { return static_cast<std::size_t>(random() % limit); };
    for (int round = 0; round < 150; ++round) {
        const std::size_t namesInUse = 1 + below(names.size());
        const bool withUnusualTypes = round % 3 == 0;
        const auto anyName = [&]() -> const std::u16string& { return names[below(namesInUse)]; };
        const auto anyType = [&] {
            if (withUnusualTypes && below(20) == 0) return unusual[below(unusual.size())];
            return usual[below(usual.size())];
        };
        SlabMemory memory;
        clsDataList list(memory);
        PlainList plain;
        for (int step = 0; step < 200; ++step) {
            const std::size_t action = plain.items.empty() ? 0 : below(6);
            const std::size_t position = plain.items.empty() ? 0 : below(plain.items.size());
            if (action <= 1) {
                plain.items.push_back({anyName(), anyType()});
                list.AddItem(plain.items.back().name, plain.items.back().type, Value());
            } else if (action == 2) {
                plain.items.push_back({u"", 1});
                list.AddItem();
            } else if (action == 3) {
                plain.items[position].name = anyName();
                list.at(static_cast<std::uint32_t>(position)).setIdentifier(plain.items[position].name);
            } else {
                plain.items[position].type = anyType();
                list.at(static_cast<std::uint32_t>(position)).setParameterType(plain.items[position].type);
            }
            ASSERT_EQ(list.undeclaredCount(), plain.undeclared()) << "round " << round << ", step " << step;
            if (below(4) == 0) continue;  // a change may follow a change without a lookup between them
            const std::u16string& name = anyName();
            const std::int32_t filter = filters[below(filters.size())];
            ASSERT_EQ(lookUp(list, name, filter), plain.lookUp(name, filter))
                << "round " << round << ", step " << step << ", name " << toUtf8(name) << ", filter " << filter;
        }
        for (std::size_t i = 0; i < plain.items.size(); ++i) {
            ASSERT_EQ(list.Item(static_cast<std::int32_t>(i)).Identifier(), plain.items[i].name);
            ASSERT_EQ(list.Item(static_cast<std::int32_t>(i)).ParameterType(), plain.items[i].type);
        }
    }
}

// FindItemValue

TEST(FindItemValue, FindsATextByValueTypeAndName) {
    SlabMemory memory;
    clsDataList list(memory);
    list.AddItem(u"a", ptString, Value::ofText(u"red"));
    list.AddItem({}, ptConstant | ptString, Value::ofText(u"red"));
    list.AddItem({}, ptConstant | ptString, Value::ofText(u"red"));
    EXPECT_EQ(lookUpValue(list, u"", u"red", 132), "1");
    EXPECT_EQ(lookUpValue(list, u"a", u"red", 4), "0");
}

TEST(FindItemValue, ComparesAllThreeExactly) {
    SlabMemory memory;
    clsDataList list(memory);
    list.AddItem(u"Name", ptConstant | ptString, Value::ofText(u"Red"));
    EXPECT_EQ(lookUpValue(list, u"Name", u"Red", 132), "0");
    EXPECT_EQ(lookUpValue(list, u"name", u"Red", 132), "none, 1");
    EXPECT_EQ(lookUpValue(list, u"Name", u"red", 132), "none, 1");
    EXPECT_EQ(lookUpValue(list, u"Name", u"Red ", 132), "none, 1");
    for (const std::int32_t type : {4, 128, 255, 0, 130})
        EXPECT_EQ(lookUpValue(list, u"Name", u"Red", type), "none, 1") << type;
}

TEST(FindItemValue, NeverFindsANumber) {
    SlabMemory memory;
    clsDataList list(memory);
    list.AddItem({}, ptConstant | ptNumber, Value::ofSingle(2));
    list.AddItem({}, ptConstant | ptNumber, Value::ofInteger(2));
    list.AddItem({}, ptConstant | ptNumber, Value::ofLong(2));
    EXPECT_EQ(lookUpValue(list, u"", u"2", 130), "none, 3");
    EXPECT_EQ(lookUpValue(list, u"", u"", 130), "none, 3");
}

TEST(FindItemValue, LooksAtTheInitialValueOnly) {
    SlabMemory memory;
    clsDataList list(memory);
    clsData item = list.AddItem(u"x", ptString, Value::ofText(u"first"));
    item.setCurrentValue(Value::ofText(u"now"));
    EXPECT_EQ(lookUpValue(list, u"x", u"now", 4), "none, 1");
    EXPECT_EQ(lookUpValue(list, u"x", u"first", 4), "0");
}

TEST(FindItemValue, FindsTheEmptyText) {
    SlabMemory memory;
    clsDataList list(memory);
    list.AddItem({}, ptConstant | ptString, Value());
    list.AddItem({}, ptConstant | ptString, Value::ofText(u""));
    EXPECT_EQ(lookUpValue(list, u"", u"", 132), "1");
}

// The reset before a run

TEST_F(ValueChanges, DoNotComeFromTheResetBeforeARun) {
    list.AddItem(u"n", ptNumber, Value::ofSingle(5)).setCurrentValue(Value::ofLong(1));
    list.AddItem(u"t", ptString, Value::ofText(u"start")).setCurrentValue(Value::ofSingle(2));
    list.AddItem(u"l", ptLabel, Value::ofLong(3));
    recorder.lines.clear();
    EXPECT_TRUE(list.InitialiseData());
    EXPECT_EQ(show(list.Item(0).CurrentValue()), "s5");
    EXPECT_EQ(show(list.Item(1).CurrentValue()), "\"start\"");
    EXPECT_EQ(show(list.Item(2).CurrentValue()), "l3");
    EXPECT_EQ(recorder.lines, std::vector<std::string>());
}

using DataMemory = EngineTest;

TEST_F(DataMemory, ARunStartsFromTheDeclaredValues) {
    RecordingListener listener;
    ASSERT_TRUE(load(u"VAR Count = 5\nENV Who = Ann\nHere:\nIncrement(Count)"));
    EXPECT_EQ(current(u"Count"), "i0");
    ASSERT_TRUE(engine.ExecuteList());
    EXPECT_EQ(current(u"Count"), "s6");
    EXPECT_EQ(current(u"Who"), "\"Ann\"");
    EXPECT_EQ(current(u"Here"), "l0");
    engine.setListener(&listener);
    ASSERT_TRUE(engine.DataMemory().InitialiseData());
    EXPECT_EQ(current(u"Count"), "s5");
    EXPECT_EQ(listener.lines, std::vector<std::string>());
}

TEST_F(DataMemory, NoStatementAndNoDeclarationMakesAnItemEditable) {
    dialogs.inputAnswers = {{Value::ofSingle(7), InputAnswer::Ending::Accepted},
                            {Value::ofText(u"seven"), InputAnswer::Ending::Accepted}};
    ASSERT_TRUE(
        run(u"VAR Count = 5\nVAR Word = \"w\"\nCONST Limit = 2\nENV Who = Ann\nIncrement(Count)\nInfo(\"text\")\n"
            u"InputNumber(\"How many?\", Count, 2, 9)\nInputString(\"Which?\", Word, 20)\nReturn"));
    ASSERT_EQ(dialogs.inputs.size(), 2U);
    for (std::int32_t i = 0; i < engine.DataMemory().Count(); ++i) {
        const clsData item = engine.DataMemory().Item(i);
        EXPECT_FALSE(item.IsEditable()) << i;
        EXPECT_EQ(item.MinVal(), 0.0F) << i;
        EXPECT_EQ(item.MaxVal(), 0.0F) << i;
        EXPECT_EQ(item.Units(), u"") << i;
        EXPECT_EQ(item.PromptString(), u"") << i;
    }
    EXPECT_EQ(engine.DataMemory().EditableCount(), 0);
}

TEST_F(DataMemory, ARunAddsNoItem) {
    ASSERT_TRUE(load(u"VAR Count = 5\nIncrement(Count)\nSet(Count, 7)"));
    const std::int32_t count = engine.DataMemory().Count();
    ASSERT_TRUE(engine.ExecuteList());
    EXPECT_EQ(engine.DataMemory().Count(), count);
}

TEST_F(DataMemory, ALoadStartsANewList) {
    ASSERT_TRUE(load(u"VAR Count = 5"));
    engine.DataMemory().setEditableCount(4);
    ASSERT_TRUE(load(u"VAR Other = 5"));
    EXPECT_EQ(lookUp(engine.DataMemory(), u"Count"), "none, 2");
    EXPECT_EQ(engine.DataMemory().EditableCount(), 0);
}

// The identifier table in the trace

TEST(DebugPrint, TracesPositionNameTypeAndInitialValueOfEachItem) {
    SlabMemory memory;
    clsDataList list(memory);
    list.AddItem(u"Limit", ptConstant | ptNumber, Value::ofSingle(2.5F)).setCurrentValue(Value::ofLong(9));
    list.AddItem({}, ptConstant | ptString, Value::ofText(u"text"));
    RecordingTrace trace;
    list.DebugPrint(trace, NumberLocale::pointDecimal());
    EXPECT_EQ(trace.lines, (std::vector<std::string>{"2 0: Limit, 130, 2.5", "2 1: , 132, text"}));
}

TEST(DebugPrint, WritesNumbersAsTheUserDoes) {
    SlabMemory memory;
    clsDataList list(memory);
    list.AddItem(u"x", ptNumber, Value::ofSingle(2.5F));
    RecordingTrace trace;
    list.DebugPrint(trace, NumberLocale::commaDecimal());
    EXPECT_EQ(trace.lines, std::vector<std::string>{"2 0: x, 2, 2,5"});
}

}  // namespace
}  // namespace corvane
