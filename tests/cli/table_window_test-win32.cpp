#include <windows.h>
// After windows.h, which it needs.
#include <commctrl.h>
#include <gtest/gtest.h>

#include "tests/cli/ran.h"
#include "tests/platform/open_dialog-win32.h"
#include "tests/platform/temporary_folder.h"

namespace corvane {
namespace {

/// The list view windows of a window, the uppermost first.
std::vector<HWND> listsOf(HWND window) {
    std::vector<HWND> lists;
    HWND list = nullptr;
    while ((list = FindWindowExW(window, list, WC_LISTVIEWW, nullptr)) != nullptr) lists.push_back(list);
    return lists;
}

std::wstring cell(HWND list, int row, int column) {
    wchar_t text[100] = L"";
    LVITEMW item{};
    item.iSubItem = column;
    item.pszText = text;
    item.cchTextMax = 100;
    SendMessageW(list, LVM_GETITEMTEXTW, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
    return text;
}

int columns(HWND list) {
    const auto header = reinterpret_cast<HWND>(SendMessageW(list, LVM_GETHEADER, 0, 0));
    return static_cast<int>(SendMessageW(header, HDM_GETITEMCOUNT, 0, 0));
}

RECT areaOf(HWND window) {
    RECT area{};
    GetWindowRect(window, &area);
    return area;
}

class TableWindow : public ::testing::Test {
protected:
    TemporaryFolder folder;
    std::string script = folder.write("a.script", "VAR N = 2.5\nAgain:\nWaitTime(N, \"a\")\nGoto(Again)\n").string();

    /// Shows the script, closed by Escape after `look` has seen the window.
    Ran show(const std::function<void(HWND)>& look) {
        WhileOpen open([&](HWND window) {
            look(window);
            PostMessageW(GetFocus(), WM_KEYDOWN, VK_ESCAPE, 0);
        });
        return ran({"show", "--windows", script});
    }
};

TEST_F(TableWindow, ShowsBothViews) {
    const Ran result = show([&](HWND window) {
        EXPECT_EQ(textOf(window), std::u16string(script.begin(), script.end()));
        const std::vector<HWND> lists = listsOf(window);
        ASSERT_EQ(lists.size(), 2u);
        EXPECT_EQ(columns(lists[0]), 27);
        EXPECT_EQ(SendMessageW(lists[0], LVM_GETITEMCOUNT, 0, 0), 2);
        EXPECT_EQ(cell(lists[0], 0, 0), L"1");
        EXPECT_EQ(cell(lists[0], 0, 1), L"WaitTime");
        EXPECT_EQ(cell(lists[0], 1, 2), L"0 - (Label Again)");
        EXPECT_EQ(columns(lists[1]), 4);
        EXPECT_EQ(SendMessageW(lists[1], LVM_GETITEMCOUNT, 0, 0), 4);
        EXPECT_EQ(cell(lists[1], 1, 1), L"N");
        EXPECT_EQ(cell(lists[1], 1, 3), L"2.5");
        EXPECT_EQ(GetFocus(), lists[0]);
    });
    EXPECT_EQ(result.code, ExitCode::Success);
    EXPECT_EQ(result.output, "");
}

TEST_F(TableWindow, ShowsARowOnOneLine) {
    script = folder.write("breaks.script", "MsgInfo(\"One|Two\")\n").string();
    show([](HWND window) { EXPECT_EQ(cell(listsOf(window)[0], 0, 2), LR"(One\r\nTwo)"); });
}

TEST_F(TableWindow, FitsTheColumns) {
    const std::string wide(80, 'W');
    script = folder.write("wide.script", "VAR N = \"" + wide + "\"\nWaitTime(2.5, N)\n").string();
    show([](HWND window) {
        for (const HWND list : listsOf(window))
            for (int column = 0; column < columns(list); ++column) {
                const auto width = SendMessageW(list, LVM_GETCOLUMNWIDTH, static_cast<WPARAM>(column), 0);
                for (const std::wstring& text : {cell(list, 0, column), cell(list, 1, column)})
                    EXPECT_GT(width,
                              SendMessageW(list, LVM_GETSTRINGWIDTHW, 0, reinterpret_cast<LPARAM>(text.c_str())));
            }
    });
}

TEST_F(TableWindow, HasRoomForTheHeaders) {
    show([](HWND window) {
        for (const HWND list : listsOf(window)) {
            const auto header = reinterpret_cast<HWND>(SendMessageW(list, LVM_GETHEADER, 0, 0));
            const LRESULT margins = 2 * SendMessageW(header, HDM_GETBITMAPMARGIN, 0, 0);
            for (int column = 0; column < columns(list); ++column) {
                wchar_t text[32] = L"";
                HDITEMW item{};
                item.mask = HDI_TEXT;
                item.pszText = text;
                item.cchTextMax = 32;
                SendMessageW(header, HDM_GETITEMW, static_cast<WPARAM>(column), reinterpret_cast<LPARAM>(&item));
                const LRESULT needed = SendMessageW(list, LVM_GETSTRINGWIDTHW, 0, reinterpret_cast<LPARAM>(text));
                EXPECT_GT(SendMessageW(list, LVM_GETCOLUMNWIDTH, static_cast<WPARAM>(column), 0), needed + margins)
                    << column;
            }
        }
    });
}

TEST_F(TableWindow, KeepsTheListsInsideWhenItsSizeChanges) {
    show([](HWND window) {
        for (const int size : {900, 500, 250, 10}) {
            SetWindowPos(window, nullptr, 0, 0, size, size, SWP_NOMOVE | SWP_NOZORDER);
            const std::vector<HWND> lists = listsOf(window);
            EXPECT_LE(areaOf(lists[0]).bottom, areaOf(lists[1]).top) << size;
            if (size < 100) continue;
            EXPECT_LT(areaOf(lists[0]).top, areaOf(lists[0]).bottom) << size;
            EXPECT_LT(areaOf(lists[1]).bottom, areaOf(window).bottom) << size;
            EXPECT_LT(areaOf(lists[1]).right, areaOf(window).right) << size;
        }
    });
}

TEST_F(TableWindow, SaysThatNobodyCouldSeeIt) {
    const UnseenDesktop unseen;
    const Ran result = ran({"show", "--windows", script});
    EXPECT_EQ(result.code, ExitCode::NoOutput);
    EXPECT_EQ(result.errors, "corvane: no window can be shown\n");
}

TEST_F(TableWindow, IsNotShownForAScriptWithFaults) {
    EXPECT_EQ(ran({"show", "--windows", folder.write("b.script", "nonsense").string()}).code, ExitCode::ScriptRejected);
}

TEST_F(TableWindow, IsNoJson) { EXPECT_EQ(ran({"show", "--windows", "--json", script}).code, ExitCode::WrongUsage); }

}  // namespace
}  // namespace corvane
