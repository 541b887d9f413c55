#include <gmock/gmock.h>

#include <algorithm>

#include "platform/desktop-win32.h"
#include "platform/message_box.h"
#include "tests/platform/open_dialog-win32.h"

namespace corvane {
namespace {

using testing::ElementsAre;

struct Seen {
    std::u16string caption;
    std::u16string text;
    std::vector<int> buttons;  ///< from the left
    int defaultButton = 0;
    HICON icon = nullptr;
    HWND owner = nullptr;
};

Seen look(HWND box) {
    Seen seen;
    seen.caption = textOf(box);
    seen.owner = GetWindow(box, GW_OWNER);
    std::vector<std::pair<LONG, int>> buttons;
    for (HWND child = GetWindow(box, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT)) {
        if (IsWindowVisible(child) == FALSE) continue;
        wchar_t name[16];
        GetClassNameW(child, name, 16);
        const auto style = static_cast<DWORD>(GetWindowLongPtrW(child, GWL_STYLE));
        if (std::wstring_view(name) == L"Button") {
            RECT place;
            GetWindowRect(child, &place);
            buttons.emplace_back(place.left, GetDlgCtrlID(child));
        } else if ((style & SS_TYPEMASK) == SS_ICON) {
            seen.icon = reinterpret_cast<HICON>(SendMessageW(child, STM_GETICON, 0, 0));
        } else {
            seen.text = textOf(child);
        }
    }
    std::sort(buttons.begin(), buttons.end());
    for (const auto& [left, id] : buttons) seen.buttons.push_back(id);
    seen.defaultButton = GetDlgCtrlID(GetFocus());
    return seen;
}

// 32513 error, 32514 question, 32515 warning, 32516 information.
HICON systemIcon(WORD id) { return LoadIconW(nullptr, MAKEINTRESOURCEW(id)); }

// Shows a box, looks at it and presses one of its buttons.
Seen shown(std::u16string_view text, std::optional<std::u16string_view> caption, std::int32_t style, int pressed,
           std::optional<std::int32_t> answer) {
    Seen seen;
    const WhileOpen whileOpen([&](HWND box) {
        seen = look(box);
        PostMessageW(box, WM_COMMAND, static_cast<WPARAM>(pressed), 0);
    });
    EXPECT_EQ(showMessageBox(text, caption, style), answer) << style;
    return seen;
}

TEST(ShowMessageBox, ShowsTextAndCaptionAsTheyAre) {
    const Seen seen = shown(u"a & b\r\n'c'\tü €", u"Syntax Error on Line 3", MB_OK | MB_ICONEXCLAMATION, IDOK, IDOK);
    EXPECT_EQ(seen.text, u"a & b\r\n'c'\tü €");
    EXPECT_EQ(seen.caption, u"Syntax Error on Line 3");
    EXPECT_THAT(seen.buttons, ElementsAre(IDOK));
    EXPECT_EQ(seen.icon, systemIcon(32515));
}

TEST(ShowMessageBox, HasTheButtonsOfItsStyleAndAnswersWithTheOnePressed) {
    struct Row {
        std::int32_t style;
        std::vector<int> buttons;
    };
    const Row rows[] = {
        {0, {IDOK}},
        {1, {IDOK, IDCANCEL}},
        {2, {IDABORT, IDRETRY, IDIGNORE}},
        {3, {IDYES, IDNO, IDCANCEL}},
        {4, {IDYES, IDNO}},
        {5, {IDRETRY, IDCANCEL}},
        {6, {IDCANCEL, IDTRYAGAIN, IDCONTINUE}},
    };
    for (const Row& row : rows)
        for (const int pressed : row.buttons)
            EXPECT_EQ(shown(u"text", u"caption", row.style, pressed, pressed).buttons, row.buttons) << row.style;
}

TEST(ShowMessageBox, HasTheDefaultButtonOfItsStyle) {
    struct Row {
        std::int32_t style;
        int button;
    };
    for (const Row& row : {Row{0x003, IDYES}, Row{0x103, IDNO}, Row{0x203, IDCANCEL}, Row{0x104, IDNO}})
        EXPECT_EQ(shown(u"text", u"caption", row.style, row.button, row.button).defaultButton, row.button) << row.style;
}

TEST(ShowMessageBox, HasTheIconOfItsStyle) {
    struct Row {
        std::int32_t style;
        WORD icon;
    };
    for (const Row& row : {Row{0x00, 0}, Row{0x10, 32513}, Row{0x20, 32514}, Row{0x30, 32515}, Row{0x40, 32516},
                           Row{0x50, 0}, Row{0x80, 0}, Row{0xF0, 0}})
        EXPECT_EQ(shown(u"text", u"caption", row.style, IDOK, IDOK).icon,
                  row.icon == 0 ? nullptr : systemIcon(row.icon))
            << row.style;
}

TEST(ShowMessageBox, IsShownWhateverItsStyle) {
    for (const std::int32_t style :
         {7, 15, 999, -1, 0x20000, 0x40000, 0x200000, 0x7FFFFFFF, static_cast<int>(0x80000000)}) {
        const Seen seen = shown(u"text", u"caption", style, IDOK, IDOK);
        EXPECT_EQ(seen.text, u"text") << style;
    }
}

TEST(ShowMessageBox, BearsTheProgramsTitleWithoutACaption) {
    EXPECT_EQ(shown(u"text", std::nullopt, 36, IDYES, IDYES).caption, applicationTitle());
    EXPECT_EQ(shown(u"text", u"", 36, IDYES, IDYES).caption, u"");
    EXPECT_EQ(applicationTitle(), u"test_windows");
}

TEST(ShowMessageBox, ShowsTheWholeOfATextWithANul) {
    EXPECT_EQ(shown(std::u16string_view(u"a\0b", 3), std::u16string_view(u"\0", 1), 0, IDOK, IDOK).text,
              u"a\xFFFD"
              u"b");
}

TEST(ShowMessageBox, ShowsTheBeginningOfAnEndlessText) {
    const std::u16string longest(10000, u'x');
    EXPECT_EQ(shown(longest, u"caption", 0, IDOK, IDOK).text, longest);
    EXPECT_EQ(shown(std::u16string(1000000, u'x'), std::u16string(1000000, u'x'), 0, IDOK, IDOK).text,
              longest + u'\x2026');
}

TEST(ShowMessageBox, StandsInFrontOfTheHostsActiveWindow) {
    const HostWindow main(L"Main");
    const HostWindow other(L"Other", 300, 200);
    SetActiveWindow(main);
    EXPECT_EQ(shown(u"text", u"caption", 0, IDOK, IDOK).owner, static_cast<HWND>(main));
    SetActiveWindow(other);
    EXPECT_EQ(shown(u"text", u"caption", 0, IDOK, IDOK).owner, static_cast<HWND>(other));
}

TEST(ShowMessageBox, StandsInFrontOfAWindowOfTheHostThatIsNotActive) {
    const HostWindow main(L"Main");
    EnableWindow(main, FALSE);
    const HostWindow other(L"Other", 300, 200);
    SetForegroundWindow(GetDesktopWindow());
    ASSERT_EQ(GetActiveWindow(), nullptr);
    EXPECT_EQ(shown(u"text", u"caption", 0, IDOK, IDOK).owner, static_cast<HWND>(other));
}

TEST(ShowMessageBox, KeepsTheHostsWindowsFromInputWhileItIsOpen) {
    const HostWindow main(L"Main");
    const HostWindow other(L"Other", 300, 200);
    const HostWindow never(L"Never", 350, 250);
    EnableWindow(never, FALSE);
    SetActiveWindow(main);
    {
        const WhileOpen whileOpen([&](HWND box) {
            EXPECT_FALSE(main.takesInput() || other.takesInput() || never.takesInput());
            PostMessageW(box, WM_COMMAND, IDOK, 0);
        });
        EXPECT_EQ(showMessageBox(u"text", u"caption", 0), IDOK);
    }
    EXPECT_TRUE(main.takesInput() && other.takesInput());
    EXPECT_FALSE(never.takesInput());
    EXPECT_EQ(GetActiveWindow(), static_cast<HWND>(main));
}

TEST(ShowMessageBox, ClosesWhenTheProgramIsToQuit) {
    const WhileOpen whileOpen([](HWND) { PostQuitMessage(7); });
    EXPECT_EQ(showMessageBox(u"text", u"caption", MB_YESNO), std::nullopt);
    EXPECT_EQ(waitingQuit(), 7);
}

TEST(ShowMessageBox, IsNotShownWhenTheProgramIsToQuitAlready) {
    PostQuitMessage(8);
    WhileOpen whileOpen([](HWND) {});
    whileOpen.mayStayClosed();
    EXPECT_EQ(showMessageBox(u"text", u"caption", MB_OK), std::nullopt);
    EXPECT_FALSE(whileOpen.hasActed());
    EXPECT_EQ(waitingQuit(), 8);
}

TEST(ShowMessageBox, IsAnsweredAtOnceWhereNobodySeesTheDesktop) {
    const UnseenDesktop unseen;
    WhileOpen whileOpen([](HWND) {});
    whileOpen.mayStayClosed();
    const UntouchedQueue atOnce;
    EXPECT_EQ(showMessageBox(u"text", u"caption", 0), std::nullopt);
    EXPECT_FALSE(whileOpen.hasActed());
}

}  // namespace
}  // namespace corvane
