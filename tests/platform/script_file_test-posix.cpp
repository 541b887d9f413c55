#include <gtest/gtest.h>
#include <sys/stat.h>

#include <array>
#include <iterator>

#include "platform/code_page.h"
#include "platform/script_file.h"
#include "platform/whole_file.h"
#include "tests/platform/expect_automation_error.h"
#include "tests/platform/ordinary_user-posix.h"
#include "tests/platform/temporary_folder.h"

namespace corvane {
namespace {

TEST(CodePage, IsWindows1252WithItsGapsFilled) {
    struct Row {
        char byte;
        char16_t character;
    };
    const Row rows[] = {
        {'\x80', u'\x20AC'}, {'\x81', u'\x81'},   {'\x82', u'\x201A'}, {'\x83', u'\x192'},  {'\x84', u'\x201E'},
        {'\x85', u'\x2026'}, {'\x86', u'\x2020'}, {'\x87', u'\x2021'}, {'\x88', u'\x2C6'},  {'\x89', u'\x2030'},
        {'\x8A', u'\x160'},  {'\x8B', u'\x2039'}, {'\x8C', u'\x152'},  {'\x8D', u'\x8D'},   {'\x8E', u'\x17D'},
        {'\x8F', u'\x8F'},   {'\x90', u'\x90'},   {'\x91', u'\x2018'}, {'\x92', u'\x2019'}, {'\x93', u'\x201C'},
        {'\x94', u'\x201D'}, {'\x95', u'\x2022'}, {'\x96', u'\x2013'}, {'\x97', u'\x2014'}, {'\x98', u'\x2DC'},
        {'\x99', u'\x2122'}, {'\x9A', u'\x161'},  {'\x9B', u'\x203A'}, {'\x9C', u'\x153'},  {'\x9D', u'\x9D'},
        {'\x9E', u'\x17E'},  {'\x9F', u'\x178'},  {'\xA0', u'\xA0'},   {'\xE4', u'\xE4'},   {'\xFF', u'\xFF'},
        {'\x7F', u'\x7F'},   {'A', u'A'},         {'\0', u'\0'},
    };
    for (const Row& row : rows)
        EXPECT_EQ(fromSystemCodePage(std::string_view(&row.byte, 1)), std::u16string(1, row.character));
}

TEST(ScriptFile, DoesNotWaitForAPipe) {
    const TemporaryFolder folder;
    const auto path = folder.path("pipe");
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    expectAutomationError([&] { readScriptFile(path.u16string()); }, ErrorNumber::PathFileAccess, "pipe'");
    expectAutomationError([&] { readExistingScriptFile(path.u16string()); }, ErrorNumber::PathFileAccess, "pipe'");
}

TEST(ScriptFile, RefusesADevice) {
    for (const char16_t* name : {u"/dev/null", u"/dev/zero", u"/dev/tty"}) {
        expectAutomationError([&] { readScriptFile(name); }, ErrorNumber::PathFileAccess, "/dev/");
        expectAutomationError([&] { readExistingScriptFile(name); }, ErrorNumber::PathFileAccess, "/dev/");
    }
}

TEST(ScriptFile, ReportsAFileThatMayNotBeRead) {
    const TemporaryFolder folder;
    const auto path = folder.write("secret", "text");
    ASSERT_EQ(chmod(path.c_str(), 0), 0);
    const OrdinaryUser user;
    expectAutomationError([&] { readScriptFile(path.u16string()); }, ErrorNumber::PermissionDenied, "secret'");
    expectAutomationError([&] { readExistingScriptFile(path.u16string()); }, ErrorNumber::PermissionDenied, "secret'");
}

TEST(ScriptFile, ReportsAFileThatMayNotBeCreated) {
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder.path("closed"));
    ASSERT_EQ(chmod(folder.path("closed").c_str(), 0555), 0);
    const OrdinaryUser user;
    const std::u16string name = folder.path("closed/new.script").u16string();
    expectAutomationError([&] { readScriptFile(name); }, ErrorNumber::PermissionDenied, "new.script'");
}

TEST(ScriptFile, ReadsWhatAnotherUserMayOnlyRead) {
    const TemporaryFolder folder;
    const auto path = folder.write("shared", "text");
    ASSERT_EQ(chmod(path.c_str(), 0444), 0);
    const OrdinaryUser user;
    EXPECT_EQ(readScriptFile(path.u16string()), u"text");
}

TEST(ScriptFile, ReadsAProgramThatIsRunning) {
    const auto program = std::filesystem::read_symlink("/proc/self/exe");
    EXPECT_EQ(readScriptFile(program.u16string()).size(), std::filesystem::file_size(program))
        << "the system lets nobody write to it";
}

TEST(ScriptFile, IsClosedAgainHoweverItsReadingEnds) {
    const auto openFiles = [] {
        return std::distance(std::filesystem::directory_iterator("/proc/self/fd"),
                             std::filesystem::directory_iterator());
    };
    const TemporaryFolder folder;
    const auto huge = folder.write("huge", "");
    std::filesystem::resize_file(huge, 0x40000000);
    const auto before = openFiles();
    readScriptFile(folder.write("old", "text").u16string());
    readScriptFile(folder.path("new").u16string());
    readExistingScriptFile(folder.path("old").u16string());
    expectAutomationError([&] { readScriptFile(huge.u16string()); }, ErrorNumber::OutOfMemory, "huge'");
    EXPECT_EQ(openFiles(), before);
}

TEST(ScriptFile, FollowsALinkThatDoesNotLeadInACircle) {
    const TemporaryFolder folder;
    folder.write("target", "text");
    std::filesystem::create_symlink("target", folder.path("link"));
    EXPECT_EQ(readScriptFile(folder.path("link").u16string()), u"text");
    std::filesystem::create_symlink("circle", folder.path("circle"));
    expectAutomationError([&] { readScriptFile(folder.path("circle").u16string()); }, ErrorNumber::PathFileAccess,
                          "circle'");
}

TEST(ScriptFile, ReportsAFileInPlaceOfAFolder) {
    const TemporaryFolder folder;
    folder.write("file", "text");
    const std::u16string name = folder.path("file/a.script").u16string();
    expectAutomationError([&] { readScriptFile(name); }, ErrorNumber::PathNotFound, "a.script'");
    EXPECT_EQ(readExistingScriptFile(name), std::nullopt);
}

TEST(ScriptFile, RefusesANameThatIsTooLong) {
    const TemporaryFolder folder;
    const std::u16string name = folder.path(std::string(300, 'x')).u16string();
    expectAutomationError([&] { readScriptFile(name); }, ErrorNumber::BadFileName, "xxx'");
    expectAutomationError([&] { readExistingScriptFile(name); }, ErrorNumber::BadFileName, "xxx'");
}

TEST(ScriptFile, FindsANameWithALoneSurrogate) {
    const TemporaryFolder folder;
    const std::u16string name = folder.path("").u16string() + u"\xD800";
    folder.write("\xED\xA0\x80", "text");
    EXPECT_EQ(readExistingScriptFile(name), u"text");
}

}  // namespace
}  // namespace corvane
