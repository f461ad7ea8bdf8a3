// The documents' example of a program with a window.
#include "documented/Places.h"
#include "support/VantryTest.h"

#include <windows.h>

#include <chrono>

extern bool isClosing;
void start(HWND window);
LRESULT CALLBACK windowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

using namespace std::chrono_literals;

namespace
{
class DocumentedWindow : public VantryTest
{
protected:
    DocumentedWindow()
    {
        WNDCLASSW kind{};
        kind.lpfnWndProc = windowProcedure;
        kind.hInstance = GetModuleHandleW(nullptr);
        kind.lpszClassName = L"documented";
        RegisterClassW(&kind);
        window = CreateWindowExW(0, kind.lpszClassName, L"", 0, 0, 0, 0, 0, nullptr, nullptr, kind.hInstance,
                                 nullptr);
    }

    /// Lets the program work until `isDone`; false if that takes too long.
    template <typename Condition>
    static bool work(Condition isDone)
    {
        const auto end = std::chrono::steady_clock::now() + 25s;
        while (!isDone() && std::chrono::steady_clock::now() < end) {
            MSG message;
            while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != 0) {
                DispatchMessageW(&message);
            }
            MsgWaitForMultipleObjects(0, nullptr, FALSE, 20, QS_ALLINPUT);
        }
        return isDone();
    }

    std::wstring title() const
    {
        wchar_t text[200] = L"";
        GetWindowTextW(window, text, 200);
        return text;
    }

    HWND window;
};
} // namespace

TEST_F(DocumentedWindow, ShowsHowTheOperationEnded)
{
    start(window);
    EXPECT_TRUE(work([this] { return title() == L"The session is open"; })) << narrow(title());
    sandbox.plan(Answer::bytes("HTTP/1.1 500 \r\nContent-Length: 0\r\n\r\n"));
    start(window);
    EXPECT_TRUE(work([this] { return title() == L"Failed: 500 "; })) << narrow(title());
}

TEST_F(DocumentedWindow, StaysUntilTheOperationHasEnded)
{
    sandbox.plan(Answer(200).held());
    start(window);
    PostMessageW(window, WM_CLOSE, 0, 0);
    EXPECT_TRUE(work([] { return isClosing; }));
    EXPECT_TRUE(IsWindow(window));
    sandbox.release();
    EXPECT_TRUE(work([this] { return !IsWindow(window); }));
    EXPECT_EQ(GetLastResponse().httpStatusCode, 200);
}
