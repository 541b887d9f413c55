#include "platform/script_file.h"

#include <gtest/gtest.h>

#include "tests/platform/expect_automation_error.h"
#include "tests/platform/temporary_folder.h"

namespace corvane {
namespace {

using namespace std::string_literals;

TEST(ScriptFile, ReadsWholeWithoutTrimmingOrConverting) {
    const TemporaryFolder folder;
    const auto path = folder.write("a.script", "\r\n VAR A = 1\n\0\tEnd()\r\x1A \n"s);
    EXPECT_EQ(readScriptFile(path.u16string()), u"\r\n VAR A = 1\n\0\tEnd()\r\x1A \n"s);
    EXPECT_EQ(readExistingScriptFile(path.u16string()), u"\r\n VAR A = 1\n\0\tEnd()\r\x1A \n"s);
}

TEST(ScriptFile, RecognisesNoByteOrderMark) {
    const TemporaryFolder folder;
    EXPECT_EQ(readScriptFile(folder.write("utf8", "\xEF\xBB\xBFX").u16string()).size(), 4U);
    EXPECT_EQ(readScriptFile(folder.write("utf16", "\xFF\xFEX\0"s).u16string()).size(), 4U);
}

TEST(ScriptFile, MakesEveryByteOneCharacter) {
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte) bytes.push_back(static_cast<char>(byte));
    const TemporaryFolder folder;
    const std::u16string text = readScriptFile(folder.write("all", bytes + bytes).u16string());
    ASSERT_EQ(text.size(), 512U);
    for (char16_t byte = 0; byte < 0x80; ++byte) EXPECT_EQ(text[byte], byte);
    EXPECT_EQ(text.substr(0, 256), text.substr(256));
}

TEST(ScriptFile, ReadsAnEmptyFile) {
    const TemporaryFolder folder;
    const auto path = folder.write("empty", "");
    EXPECT_EQ(readScriptFile(path.u16string()), u"");
    EXPECT_EQ(readExistingScriptFile(path.u16string()), u"");
}

TEST(ScriptFile, ReadsALongFile) {
    const TemporaryFolder folder;
    const auto path = folder.write("long", std::string(5'000'000, 'x') + "end");
    const std::u16string text = readScriptFile(path.u16string());
    EXPECT_EQ(text.size(), 5'000'003U);
    EXPECT_TRUE(text.ends_with(u"xend"));
}

TEST(ScriptFile, FindsNamesBeyondAscii) {
    const TemporaryFolder folder;
    const auto path = folder.write(
        u"Pr\xFC"
        u"fung \x20AC.script",
        "Z");
    EXPECT_EQ(readScriptFile(path.u16string()), u"Z");
}

TEST(ScriptFile, CreatesAFileThatDoesNotExist) {
    const TemporaryFolder folder;
    const auto path = folder.path("new.script");
    EXPECT_EQ(readScriptFile(path.u16string()), u"");
    EXPECT_TRUE(std::filesystem::is_regular_file(path));
    EXPECT_EQ(std::filesystem::file_size(path), 0U);
}

TEST(ScriptFile, ReportsAbsenceWhenItOnlyReads) {
    const TemporaryFolder folder;
    const auto path = folder.path("none.script");
    EXPECT_EQ(readExistingScriptFile(path.u16string()), std::nullopt);
    EXPECT_FALSE(std::filesystem::exists(path));
    EXPECT_EQ(readExistingScriptFile(folder.path("nowhere/none.script").u16string()), std::nullopt);
}

TEST(ScriptFile, ReadsAFileThatMustNotBeWritten) {
    const TemporaryFolder folder;
    const auto path = folder.write("read only", "text");
    std::filesystem::permissions(path, std::filesystem::perms::owner_read);
    EXPECT_EQ(readScriptFile(path.u16string()), u"text");
    EXPECT_EQ(readExistingScriptFile(path.u16string()), u"text");
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
}

TEST(ScriptFile, RefusesAnEmptyName) {
    expectAutomationError([] { readScriptFile(u""); }, ErrorNumber::BadFileName, "''");
    expectAutomationError([] { readExistingScriptFile(u""); }, ErrorNumber::BadFileName, "''");
}

TEST(ScriptFile, RefusesANameWithANulAndShowsAllOfIt) {
    const TemporaryFolder folder;
    const std::u16string name = folder.path("a").u16string() + u"\0b.script"s;
    expectAutomationError([&] { readScriptFile(name); }, ErrorNumber::BadFileName,
                          "a\xEF\xBF\xBD"
                          "b.script'");
    expectAutomationError([&] { readExistingScriptFile(name); }, ErrorNumber::BadFileName, "b.script'");
    EXPECT_FALSE(std::filesystem::exists(folder.path("a")));
}

TEST(ScriptFile, RefusesAFolder) {
    const TemporaryFolder folder;
    const std::u16string name = folder.path("").u16string();
    expectAutomationError([&] { readScriptFile(name); }, ErrorNumber::PathFileAccess, "corvane_ScriptFile");
    expectAutomationError([&] { readExistingScriptFile(name); }, ErrorNumber::PathFileAccess, "corvane_ScriptFile");
}

TEST(ScriptFile, ReportsAMissingFolderByItsOwnNumber) {
    const TemporaryFolder folder;
    const std::u16string name = folder.path("nowhere/a.script").u16string();
    expectAutomationError([&] { readScriptFile(name); }, ErrorNumber::PathNotFound, "a.script'");
}

TEST(ScriptFile, RefusesAFileThatNoTextCouldHold) {
    const TemporaryFolder folder;
    const auto path = folder.write("huge.script", "");
    std::filesystem::resize_file(path, 0x40000000);
    expectAutomationError([&] { readScriptFile(path.u16string()); }, ErrorNumber::OutOfMemory, "huge.script'");
}

}  // namespace
}  // namespace corvane
