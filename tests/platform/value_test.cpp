#include "platform/value.h"

#include <gtest/gtest.h>

#include <new>
#include <string>

namespace corvane {
namespace {

class Probe final : public SharedRecord {
public:
    explicit Probe(bool& isAlive) : isAlive_(isAlive) { isAlive_ = true; }
    ~Probe() override { isAlive_ = false; }

private:
    bool& isAlive_;
};

TEST(Text, KeepsCodeUnitsAsTheyCome) {
    const std::u16string units = {u'a', u'\0', char16_t{0xD800}, u'b', char16_t{0xDC00}};
    EXPECT_EQ(Text(units).view(), units);
}

TEST(Text, IsEmptyWithoutCharacters) {
    EXPECT_TRUE(Text().empty());
    EXPECT_TRUE(Text(u"").empty());
    EXPECT_EQ(Text(u"").view(), u"");
    EXPECT_FALSE(Text(u"x").empty());
}

TEST(Text, SharesItsCharactersWithItsCopies) {
    Text copy;
    {
        const Text original(u"shared");
        copy = original;
        EXPECT_EQ(copy.view().data(), original.view().data());
    }
    EXPECT_EQ(copy.view(), u"shared");
}

TEST(Text, IsEmptyAfterItWasMovedFrom) {
    Text from(u"moved");
    const Text to = std::move(from);
    EXPECT_EQ(to.view(), u"moved");
    EXPECT_TRUE(from.empty());  // NOLINT(bugprone-use-after-move): the state is promised
}

TEST(Text, JoinsTwoTexts) {
    EXPECT_EQ(Text::join(u"left", u"right").view(), u"leftright");
    EXPECT_EQ(Text::join(u"", u"right").view(), u"right");
    EXPECT_EQ(Text::join(u"left", u"").view(), u"left");
    EXPECT_TRUE(Text::join(u"", u"").empty());
}

TEST(Text, RefusesMoreThanALengthHolds) {
    const char16_t unit = u'x';
    EXPECT_THROW(Text(std::u16string_view(&unit, std::size_t{1} << 31)), std::bad_alloc);
}

TEST(Value, IsTheSixteenBitZeroByDefault) {
    const Value value;
    EXPECT_EQ(value.type(), ValueType::Integer);
    EXPECT_EQ(value.integer(), 0);
}

TEST(Value, HoldsWhatItWasMadeOf) {
    EXPECT_EQ(Value::ofInteger(-32768).integer(), -32768);
    EXPECT_EQ(Value::ofLong(-2147483647).longInteger(), -2147483647);
    EXPECT_EQ(Value::ofSingle(0.1f).single(), 0.1f);
    EXPECT_EQ(Value::ofDouble(0.1).doubleFloat(), 0.1);
    EXPECT_TRUE(Value::ofBoolean(true).boolean());
    EXPECT_FALSE(Value::ofBoolean(false).boolean());
    EXPECT_EQ(Value::ofText(u"text").textView(), u"text");
    EXPECT_EQ(Value::ofText(u"text").text().view(), u"text");
    EXPECT_EQ(Value::ofText(u"").textView(), u"");
}

TEST(Value, TellsItsType) {
    EXPECT_EQ(Value::ofInteger(1).type(), ValueType::Integer);
    EXPECT_EQ(Value::ofLong(1).type(), ValueType::Long);
    EXPECT_EQ(Value::ofSingle(1).type(), ValueType::Single);
    EXPECT_EQ(Value::ofDouble(1).type(), ValueType::Double);
    EXPECT_EQ(Value::ofBoolean(true).type(), ValueType::Boolean);
    EXPECT_EQ(Value::ofText(u"1").type(), ValueType::Text);
    EXPECT_TRUE(Value::ofText(u"1").isText());
    EXPECT_FALSE(Value::ofLong(1).isText());
}

TEST(Value, TakesSixteenBytes) { EXPECT_EQ(sizeof(Value), 16u); }

TEST(Value, SharesItsTextWithItsCopies) {
    const Value original = Value::ofText(u"shared");
    Value copy;
    copy = original;
    EXPECT_EQ(copy.textView().data(), original.textView().data());
    EXPECT_EQ(original.text().view().data(), original.textView().data());
}

TEST(Value, KeepsItsTextWhenAssignedToItself) {
    Value value = Value::ofText(u"kept");
    const Value& same = value;
    value = same;
    EXPECT_EQ(value.textView(), u"kept");
}

TEST(Value, IsZeroAfterItWasMovedFrom) {
    Value from = Value::ofText(u"moved");
    const Value to = std::move(from);
    EXPECT_EQ(to.textView(), u"moved");
    EXPECT_EQ(from.type(), ValueType::Integer);  // NOLINT(bugprone-use-after-move): the state is promised
    EXPECT_EQ(from.integer(), 0);
}

TEST(Value, KeepsItsObjectAliveUntilTheLastCopyGoes) {
    bool isAlive = false;
    {
        Value outer;
        {
            auto* probe = new Probe(isAlive);
            const Value inner = Value::ofObject(*probe);
            outer = inner;
            EXPECT_EQ(&outer.object(), probe);
        }
        EXPECT_TRUE(isAlive);
        outer = Value::ofInteger(1);
        EXPECT_FALSE(isAlive);
    }
}

TEST(Value, HandsItsReferenceOverWithItsPayload) {
    bool isAlive = false;
    Value::Payload payload = Value::ofObject(*new Probe(isAlive)).detach();
    EXPECT_TRUE(isAlive);
    {
        const Value copy = Value::copyOf(ValueType::Object, payload);
        EXPECT_TRUE(isAlive);
    }
    EXPECT_TRUE(isAlive);
    {
        const Value adopted = Value::adopt(ValueType::Object, payload);
        EXPECT_TRUE(isAlive);
    }
    EXPECT_FALSE(isAlive);
}

TEST(Value, DropsThePayloadThatIsReleased) {
    bool isAlive = false;
    const Value::Payload payload = Value::ofObject(*new Probe(isAlive)).detach();
    Value::retain(ValueType::Object, payload);
    Value::release(ValueType::Object, payload);
    EXPECT_TRUE(isAlive);
    Value::release(ValueType::Object, payload);
    EXPECT_FALSE(isAlive);
}

TEST(Value, KeepsTheBitsOfANumberInItsPayload) {
    const Value::Payload payload = Value::ofSingle(2.5f).detach();
    EXPECT_EQ(Value::copyOf(ValueType::Single, payload).single(), 2.5f);
}

TEST(Reference, KeepsItsRecordAliveUntilTheLastCopyGoes) {
    bool isAlive = false;
    Reference<Probe> outer;
    EXPECT_FALSE(outer);
    {
        const auto inner = makeReference<Probe>(isAlive);
        outer = inner;
        EXPECT_TRUE(outer == inner);
        EXPECT_EQ(outer.get(), inner.get());
    }
    EXPECT_TRUE(isAlive);
    Reference<Probe> moved = std::move(outer);
    EXPECT_FALSE(outer);  // NOLINT(bugprone-use-after-move): the state is promised
    EXPECT_TRUE(isAlive);
    moved = Reference<Probe>();
    EXPECT_FALSE(isAlive);
}

}  // namespace
}  // namespace corvane
