// What waits in the host's message queue while the component runs a script.

#include <windows.h>
// After windows.h, which it needs.
#include <gtest/gtest.h>

#include "tests/com/every_event.h"
#include "tests/platform/open_dialog-win32.h"

namespace corvane::testing {
namespace {

constexpr UINT ordinaryMessage = WM_APP + 1;
constexpr UINT echoingMessage = WM_APP + 2;  // posts itself again

constexpr std::u16string_view threeTimes = u"VAR N = 0\r\nAgain:\r\nIncrement(N)\r\nIfLessThan(N, 3, Again)";

int handledMessages = 0;

LRESULT CALLBACK handleMessage(HWND window, UINT message, WPARAM first, LPARAM second) {
    if (message != ordinaryMessage && message != echoingMessage) return DefWindowProcW(window, message, first, second);
    ++handledMessages;
    if (message == echoingMessage) PostMessageW(window, echoingMessage, 0, 0);
    return 0;
}

class MessagePump : public ComponentTest {
protected:
    MessagePump() {
        handledMessages = 0;
        SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&handleMessage));
    }
    ~MessagePump() override {
        DestroyWindow(window);
        waitingQuit();
    }

    /// Runs the loop to its end, acting whenever a statement is about to be performed; how many there were.
    int runActing(const std::function<void()>& act) {
        int statements = 0;
        Sink sink([&](DISPID event, DISPPARAMS& arguments) {
            Sink::succeed(event, arguments);
            if (event != static_cast<DISPID>(HostEvent::FunctionCalled)) return S_OK;
            ++statements;
            act();
            return S_OK;
        });
        const ComReference<_clsScriptControl> control = newControl();
        const Advised advised(*control.get(), sink);
        EXPECT_TRUE(load(*control.get(), threeTimes));
        EXPECT_EQ(run(*control.get()), (RunResult{S_OK, VARIANT_TRUE}));
        return statements;
    }

    const HWND window = CreateWindowExW(0, L"STATIC", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
};

TEST_F(MessagePump, AMessageIsHandledAfterTheStatementDuringWhichItCame) {
    int posted = 0;
    const int statements = runActing([&] {
        EXPECT_EQ(handledMessages, posted);
        posted += PostMessageW(window, ordinaryMessage, 0, 0) != FALSE ? 1 : 0;
    });
    EXPECT_EQ(statements, 6);
    EXPECT_EQ(handledMessages, 6);
}

TEST_F(MessagePump, ARunEndsThoughAMessageComesAgainWheneverItIsHandled) {
    bool isPosted = false;
    const int statements = runActing([&] {
        if (!isPosted) isPosted = PostMessageW(window, echoingMessage, 0, 0) != FALSE;
    });
    EXPECT_EQ(statements, 6);
    EXPECT_GT(handledMessages, statements);
}

TEST_F(MessagePump, ARequestToQuitWaitsForTheHostsOwnLoop) {
    bool isPosted = false;
    const int statements = runActing([&] {
        if (!isPosted) PostQuitMessage(9);
        isPosted = true;
    });
    EXPECT_EQ(statements, 6);
    EXPECT_EQ(waitingQuit(), 9);
    EXPECT_EQ(waitingQuit(), std::nullopt);
}

}  // namespace
}  // namespace corvane::testing
