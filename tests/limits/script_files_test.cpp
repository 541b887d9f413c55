// Files that are no ordinary script files, loaded as a host loads them.

#include "tests/limits/script_file.h"

namespace corvane::testing {
namespace {

using namespace std::string_literals;
using ScriptFiles = ComponentTest;

const std::string namedScript = "CONST Which = \"this one\"\r\nPark()\r\n";

TEST_F(ScriptFiles, AnEmptyFileIsAScriptWithoutStatements) {
    const TemporaryFolder folder;
    const auto control = newControl();
    EXPECT_EQ(loadFile(*control.get(), folder.write("empty.script", "").u16string()), "True");
    EXPECT_EQ(run(*control.get()).result, automationError(9));
    takeError();
}

TEST_F(ScriptFiles, ANulIsACharacterLikeAnyOther) {
    const TemporaryFolder folder;
    const auto control = newControl();
    const auto path = folder.write("zero.script", ";\0\r\nCONST Text = \"a\0b\"\r\nInfo(\"\0\")"s);
    EXPECT_EQ(loadFile(*control.get(), path.u16string()), "True");
    EXPECT_EQ(constantOf(*control.get(), u"Text"), "a\0b"s);
    EXPECT_EQ(loadFile(*control.get(), folder.write("zeros.script", std::string(1000, '\0')).u16string()), "False");
}

TEST_F(ScriptFiles, AFolderIsRefused) {
    const TemporaryFolder folder;
    const std::u16string path = folder.path("scripts").u16string();
    std::filesystem::create_directory(path);
    EXPECT_EQ(loadFile(*newControl().get(), path), errorOf("75: Path/File access error", path));
}

TEST_F(ScriptFiles, APathOf300CharactersIsAsGoodAsAnother) {
    const TemporaryFolder folder;
    const std::string part(100, 'x');
    const std::filesystem::path longFolder = folder.path(part) / part / part;
    std::filesystem::create_directories(longFolder);
    const auto path = folder.write(longFolder / "a.script", namedScript);
    ASSERT_GT(path.u16string().size(), 300U);
    const auto control = newControl();
    EXPECT_EQ(loadFile(*control.get(), path.u16string()), "True");
    EXPECT_EQ(constantOf(*control.get(), u"Which"), "this one");
    const std::u16string missing = (longFolder / "missing" / "a.script").u16string();
    EXPECT_EQ(loadFile(*control.get(), missing), errorOf("76: Path not found", missing));
    // Some releases do not list a folder with so long a path, which a removal of everything needs.
    for (const auto& gone : {path, longFolder, longFolder.parent_path()}) std::filesystem::remove(gone);
}

TEST_F(ScriptFiles, ANameOf300CharactersIsNone) {
    const TemporaryFolder folder;
    const std::u16string path = folder.path(std::string(300, 'x')).u16string();
    EXPECT_EQ(loadFile(*newControl().get(), path), errorOf("52: Bad file name or number", path));
}

TEST_F(ScriptFiles, APathMayHoldCharactersOutsideTheCodePage) {
    const TemporaryFolder folder;
    const std::filesystem::path name(u"\u041F\u0440\u043E\u0431\u0430 \u8A66\u9A13 \U0001F9EA");
    std::filesystem::create_directory(folder.path(name));
    const auto path = folder.write(name / u"\u8349\u7A3F", namedScript);
    const auto control = newControl();
    EXPECT_EQ(loadFile(*control.get(), path.u16string()), "True");
    EXPECT_EQ(constantOf(*control.get(), u"Which"), "this one");
    const std::u16string missing = folder.path("missing" / name).u16string();
    EXPECT_EQ(loadFile(*control.get(), missing), errorOf("76: Path not found", missing));
}

}  // namespace
}  // namespace corvane::testing
