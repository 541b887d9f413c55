#include "cli/message_buttons.h"

#include <gtest/gtest.h>

#include <fstream>
#include <nlohmann/json.hpp>

#include "platform/text_case.h"
#include "platform/utf8.h"

namespace corvane {
namespace {

TEST(MessageButtons, AreKnownByTheirCaptionsInSmallLetters) {
    EXPECT_EQ(messageButtons().size(), 9U);
    for (const MessageButton& button : messageButtons()) {
        EXPECT_TRUE(equalIgnoringCase(button.caption, fromUtf8(button.word))) << button.word;
        EXPECT_EQ(findButton(button.answer), &button);
    }
    EXPECT_EQ(findButton(8), nullptr);
}

TEST(MessageButtons, OfEverySetAreKnown) {
    for (std::int32_t style = 0; style < 16; ++style)
        for (const MessageButton& button : buttonsOf(style)) {
            const MessageButton* const known = findButton(button.answer);
            ASSERT_NE(known, nullptr);
            EXPECT_EQ(known->caption, button.caption) << style;
        }
}

TEST(MessageButtons, AreAllInTheSchemaOfTheAnswersFile) {
    std::ifstream file("docs/answers.schema.json");
    const auto schema = nlohmann::json::parse(file);
    nlohmann::json words = nlohmann::json::array();
    for (const MessageButton& button : messageButtons()) words.push_back(button.word);
    EXPECT_EQ(schema["properties"]["dialogs"]["properties"]["messages"]["items"]["enum"], words);
}

}  // namespace
}  // namespace corvane
