#include <gtest/gtest.h>

#include "cli/window_form-win32.h"
#include "platform/automation_error.h"
#include "tests/platform/open_dialog-win32.h"
#include "ui/late_bound-win32.h"
#include "ui/windows_dialogs.h"

namespace corvane {
namespace {

RECT areaOf(HWND window) {
    RECT area{};
    GetWindowRect(window, &area);
    return area;
}

/// Where the input box stands that is asked for with an owner form.
RECT areaOfBoxOver(IDispatch& form) {
    RECT area{};
    const WhileOpen open([&area](HWND window) {
        area = areaOf(window);
        PostMessageW(GetFocus(), WM_KEYDOWN, VK_RETURN, 0);
    });
    InputRequest request{};
    request.kind = InputKind::SingleNumber;
    WindowsDialogs(NumberLocale::pointDecimal(), &form).askInput(request);
    return area;
}

TEST(WindowForm, TellsWhereAWindowIsInTwips) {
    const HostWindow window(L"Console", 40, 60, 500, 300);
    WindowForm form(window);
    const LateBoundObject object(&form);
    // 15 twips are a pixel of 96 to the inch.
    EXPECT_EQ(object.get(L"Left").toLong(), 40 * 15);
    EXPECT_EQ(object.get(L"top").toLong(), 60 * 15);
    EXPECT_EQ(object.get(L"WIDTH").toLong(), 500 * 15);
    EXPECT_EQ(object.get(L"Height").toLong(), 300 * 15);
    EXPECT_ANY_THROW(object.get(L"Caption"));
}

TEST(WindowForm, HasTheInputBoxStandOverIt) {
    for (const int left : {0, 200, 400}) {
        const HostWindow window(L"Console", left, 80, 500, 400);
        WindowForm form(window);
        const RECT box = areaOfBoxOver(form);
        EXPECT_NEAR((box.left + box.right) / 2, left + 250, 1);
        EXPECT_NEAR((box.top + box.bottom) / 2, 280, 1);
    }
}

TEST(WindowForm, DoesNotTellWhereAnUnseenWindowIs) {
    std::optional<HostWindow> window(std::in_place);
    WindowForm form(*window);
    const auto isTold = [&form] {
        try {
            LateBoundObject(&form).get(L"Left");
            return true;
        } catch (const automation_error&) {
            return false;
        }
    };
    EXPECT_TRUE(isTold());
    ShowWindow(*window, SW_MINIMIZE);
    EXPECT_FALSE(isTold());
    ShowWindow(*window, SW_HIDE);
    EXPECT_FALSE(isTold());
    window.reset();
    EXPECT_FALSE(isTold());
    WindowForm none(nullptr);
    areaOfBoxOver(none);
}

}  // namespace
}  // namespace corvane
