#include <gmock/gmock.h>
#include <windows.h>

#include "tests/cli/ran.h"
#include "tests/platform/open_dialog-win32.h"

namespace corvane {
namespace {

std::vector<std::u16string> labelsOf(HWND window) {
    std::vector<std::u16string> texts;
    HWND label = nullptr;
    while ((label = FindWindowExW(window, label, L"STATIC", nullptr)) != nullptr) texts.push_back(textOf(label));
    return texts;
}

HWND boxOf(HWND window) { return FindWindowExW(window, nullptr, L"COMBOBOX", nullptr); }

/// Shows a locale, closed by Escape after `look` has seen the window.
Ran show(const char* id, const std::function<void(HWND)>& look) {
    const WhileOpen open([&](HWND window) {
        look(window);
        PostMessageW(GetFocus(), WM_KEYDOWN, VK_ESCAPE, 0);
    });
    return ran({"locale", "--windows", id});
}

void choose(HWND window, int row) {
    SendMessageW(boxOf(window), CB_SETCURSEL, static_cast<WPARAM>(row), 0);
    SendMessageW(window, WM_COMMAND, MAKEWPARAM(GetDlgCtrlID(boxOf(window)), CBN_SELCHANGE),
                 reinterpret_cast<LPARAM>(boxOf(window)));
}

TEST(LocaleWindow, ShowsTheCountriesAndTheFigures) {
    const Ran result = show("1031", [](HWND window) {
        EXPECT_EQ(textOf(window), u"Locale");
        EXPECT_EQ(SendMessageW(boxOf(window), CB_GETCOUNT, 0, 0), 5);
        EXPECT_EQ(textOf(boxOf(window)), u"Germany");
        EXPECT_EQ(GetFocus(), boxOf(window));
        const std::vector<std::u16string> labels = labelsOf(window);
        ASSERT_EQ(labels.size(), 13u);
        const std::u16string expected[] = {
            u"Count&ry",       u"Locale", u"1031, Germany", u"Decimal separator", u"\",\"",
            u"List separator", u"\";\"",  u"Windows type",  u"1, Windows 2000",   u"Version",
        };
        EXPECT_TRUE(std::equal(std::begin(expected), std::end(expected), labels.begin()));
        EXPECT_EQ(labels[11], u"Service pack");
    });
    EXPECT_EQ(result.code, ExitCode::Success);
    EXPECT_EQ(result.output, "");
}

TEST(LocaleWindow, FollowsTheChosenCountry) {
    show("1031", [](HWND window) {
        choose(window, 4);
        EXPECT_EQ(labelsOf(window)[2], u"2057, English - UK");
        EXPECT_EQ(labelsOf(window)[4], u"\".\"");
        EXPECT_EQ(labelsOf(window)[6], u"\",\"");
        choose(window, 3);
        EXPECT_EQ(labelsOf(window)[2], u"1036, France");
        EXPECT_EQ(labelsOf(window)[4], u"\",\"");
    });
}

TEST(LocaleWindow, SelectsUnknownForALocaleThatIsNotOffered) {
    show("1034", [](HWND window) {
        EXPECT_EQ(textOf(boxOf(window)), u"Unknown");
        EXPECT_EQ(labelsOf(window)[2], u"1034, Unknown");
    });
}

TEST(LocaleWindow, HasRoomForItsTexts) {
    show("1033", [](HWND window) {
        RECT client{};
        GetClientRect(window, &client);
        for (HWND control = GetWindow(window, GW_CHILD); control != nullptr;
             control = GetWindow(control, GW_HWNDNEXT)) {
            RECT place{};
            GetWindowRect(control, &place);
            MapWindowPoints(nullptr, window, reinterpret_cast<POINT*>(&place), 2);
            EXPECT_TRUE(place.left > 0 && place.top > 0 && place.right < client.right && place.bottom < client.bottom);
            const HDC context = GetDC(control);
            SelectObject(context, reinterpret_cast<HFONT>(SendMessageW(control, WM_GETFONT, 0, 0)));
            const std::u16string text = textOf(control);
            SIZE size{};
            GetTextExtentPoint32W(context, reinterpret_cast<const wchar_t*>(text.c_str()),
                                  static_cast<int>(text.size()), &size);
            ReleaseDC(control, context);
            EXPECT_LE(size.cx, place.right - place.left);
            EXPECT_LE(size.cy, place.bottom - place.top);
        }
    });
}

TEST(LocaleWindow, SaysThatNobodyCouldSeeIt) {
    const UnseenDesktop unseen;
    const Ran result = ran({"locale", "--windows"});
    EXPECT_EQ(result.code, ExitCode::NoOutput);
    EXPECT_EQ(result.errors, "corvane: no window can be shown\n");
}

TEST(LocaleWindow, IsNoJson) { EXPECT_EQ(ran({"locale", "--windows", "--json"}).code, ExitCode::WrongUsage); }

}  // namespace
}  // namespace corvane
