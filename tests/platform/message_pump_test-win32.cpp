#include <gtest/gtest.h>
#include <windows.h>

#include "platform/message_pump.h"

namespace corvane {
namespace {

constexpr UINT ordinaryMessage = WM_APP + 1;
constexpr UINT echoingMessage = WM_APP + 2;  // posts itself again

int handledMessages = 0;

LRESULT CALLBACK handleMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message != ordinaryMessage && message != echoingMessage) return DefWindowProcW(window, message, wParam, lParam);
    ++handledMessages;
    if (message == echoingMessage) PostMessageW(window, echoingMessage, 0, 0);
    return 0;
}

class SystemMessagePumpTest : public testing::Test {
protected:
    SystemMessagePumpTest() {
        handledMessages = 0;
        WNDCLASSW description{};
        description.lpfnWndProc = handleMessage;
        description.hInstance = GetModuleHandleW(nullptr);
        description.lpszClassName = L"message_pump_test";
        RegisterClassW(&description);
        window_ = CreateWindowExW(0, L"message_pump_test", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                                  description.hInstance, nullptr);
        error_ = GetLastError();
    }
    void SetUp() override { ASSERT_NE(window_, nullptr) << "error " << error_; }
    ~SystemMessagePumpTest() override {
        DestroyWindow(window_);
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE) {
        }
    }

    HWND window_ = nullptr;
    DWORD error_ = 0;
    SystemMessagePump pump_;
};

TEST_F(SystemMessagePumpTest, ReturnsWhenNothingIsWaiting) {
    pump_.yield();
    EXPECT_EQ(handledMessages, 0);
}

TEST_F(SystemMessagePumpTest, HandlesWhatIsWaitingInOnePass) {
    for (int count = 0; count < 10; ++count) ASSERT_TRUE(PostMessageW(window_, ordinaryMessage, 0, 0));
    pump_.yield();
    EXPECT_EQ(handledMessages, 10);
}

TEST_F(SystemMessagePumpTest, HandlesAtMost256MessagesInOnePass) {
    for (int count = 0; count < 300; ++count) ASSERT_TRUE(PostMessageW(window_, ordinaryMessage, 0, 0));
    pump_.yield();
    EXPECT_EQ(handledMessages, 256);
    pump_.yield();
    EXPECT_EQ(handledMessages, 300);
}

TEST_F(SystemMessagePumpTest, LeavesARequestToQuitToTheHost) {
    PostQuitMessage(42);
    pump_.yield();
    pump_.yield();
    MSG message{};
    ASSERT_TRUE(PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE));
    EXPECT_EQ(message.message, static_cast<UINT>(WM_QUIT));
    EXPECT_EQ(message.wParam, 42U);
    EXPECT_FALSE(PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) << "the request came back more than once";
}

TEST_F(SystemMessagePumpTest, EndsAPassThatMessagesWouldKeepGoingForEver) {
    ASSERT_TRUE(PostMessageW(window_, echoingMessage, 0, 0));
    pump_.yield();
    const int handledInOnePass = handledMessages;
    EXPECT_GT(handledInOnePass, 0);
    pump_.yield();
    EXPECT_GT(handledMessages, handledInOnePass) << "what was left over is handled by the next pass";
}

}  // namespace
}  // namespace corvane
