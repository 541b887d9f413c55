#include "cli/json_writer.h"

#include <gtest/gtest.h>

#include <limits>
#include <nlohmann/json.hpp>
#include <sstream>

namespace corvane {
namespace {

TEST(Quoted, EscapesWhatIsNoPlainText) {
    struct Row {
        std::u16string_view given;
        const char* expected;
    };
    const Row rows[] = {
        {u"", R"("")"},
        {u"plain", R"("plain")"},
        {u"say \"a\\b\"", R"("say \"a\\b\"")"},
        {u"a\r\n\tb", R"("a\r\n\tb")"},
        {std::u16string_view(u"\0\x1F\x7F\x9F", 4), R"("\u0000\u001f\u007f\u009f")"},
        {u"\u00E4\u20AC", "\"\xC3\xA4\xE2\x82\xAC\""},
        {u"\U0001F600", "\"\xF0\x9F\x98\x80\""},
        {u"\xD83D", R"("\ud83d")"},
        {u"\xDE00\xD83D", R"("\ude00\ud83d")"},
        {u"\xD83D\"", R"("\ud83d\"")"},
    };
    for (const Row& row : rows) EXPECT_EQ(quoted(row.given), row.expected);
}

TEST(OnOneLine, LeavesQuotesAlone) { EXPECT_EQ(onOneLine(u"a \"b\\\"\n\x1B\xD800"), R"(a "b\"\n\u001b\ud800)"); }

TEST(NumberText, IsThatOfTheComponentWithAPoint) {
    EXPECT_EQ(numberText(2.5F), "2.5");
    EXPECT_EQ(numberText(-0.0001F), "-0.0001");
    EXPECT_EQ(numberText(16777216), "1.677722E+07");
    EXPECT_EQ(numberText(1e20F), "1E+20");
}

TEST(JsonWriter, WritesOnOneLine) {
    std::ostringstream output;
    JsonWriter json(output, JsonWriter::Layout::OneLine);
    json.beginObject();
    json.member("a", 1);
    json.key("b");
    json.beginArray();
    json.number(2.5F);
    json.boolean(true);
    json.null();
    json.beginObject();
    json.endObject();
    json.endArray();
    json.member("c", "\xC3\xA4");
    json.endObject();
    EXPECT_EQ(output.str(), "{\"a\":1,\"b\":[2.5,true,null,{}],\"c\":\"\xC3\xA4\"}\n");
}

TEST(JsonWriter, IndentsByTwo) {
    std::ostringstream output;
    JsonWriter json(output);
    json.beginArray();
    json.beginObject();
    json.member("a", false);
    json.endObject();
    json.endArray();
    EXPECT_EQ(output.str(), "[\n  {\n    \"a\": false\n  }\n]\n");
}

TEST(JsonWriter, WritesNullForANumberThatIsNotFinite) {
    constexpr float infinity = std::numeric_limits<float>::infinity();
    for (const float number : {infinity, -infinity, std::numeric_limits<float>::quiet_NaN()}) {
        std::ostringstream output;
        JsonWriter json(output, JsonWriter::Layout::OneLine);
        json.beginArray();
        json.number(number);
        json.number(1.0F);
        json.endArray();
        EXPECT_EQ(output.str(), "[null,1]\n");
    }
}

TEST(JsonWriter, IsReadBackAsItWasWritten) {
    for (const float number : {0.0F, -1.5F, 3.4e38F, 1e-38F, 1234567.0F}) {
        std::ostringstream output;
        JsonWriter(output).number(number);
        EXPECT_NEAR(nlohmann::json::parse(output.str()).get<double>(), number, std::abs(number) * 1e-6);
    }
}

}  // namespace
}  // namespace corvane
