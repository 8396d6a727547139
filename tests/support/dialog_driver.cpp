#include "support/dialog_driver.h"

#include <memory>
#include <stdexcept>
#include <thread>

#include <gtest/gtest.h>

#include "win32/handle.h"
#include "win32/window_text.h"

namespace QVTest {
namespace {

constexpr ULONGLONG kPatience = 10000;  // milliseconds
constexpr DWORD kStep = 5;
constexpr DWORD kGrace = 1000;

HWND FindThreadWindow(DWORD thread, const wchar_t* windowClass, const wchar_t* title) {
    HWND found = nullptr;
    while ((found = FindWindowExW(nullptr, found, windowClass, title)) != nullptr)
        if (GetWindowThreadProcessId(found, nullptr) == thread && IsWindowVisible(found)) break;
    return found;
}

}  // namespace

bool WaitUntil(const std::function<bool()>& isTrue) {
    const ULONGLONG end = GetTickCount64() + kPatience;
    while (!isTrue()) {
        if (GetTickCount64() > end) return false;
        SleepEx(kStep, FALSE);  // between two looks; what is waited for is the condition
    }
    return true;
}

HWND DrivenDialog::Control(int id) const {
    const HWND control = GetDlgItem(m_window, id);
    if (!control) throw std::runtime_error("the dialog has no control " + std::to_string(id));
    return control;
}

std::wstring DrivenDialog::Text(int id) const {
    return Win32::WindowText(Control(id));
}

bool DrivenDialog::IsEnabled(int id) const {
    return IsWindowEnabled(Control(id)) != FALSE;
}

bool DrivenDialog::IsVisible(int id) const {
    return IsWindowVisible(Control(id)) != FALSE;
}

bool DrivenDialog::IsChecked(int id) const {
    return SendMessageW(Control(id), BM_GETCHECK, 0, 0) == BST_CHECKED;
}

int DrivenDialog::Focus() const {
    const DWORD thread = GetWindowThreadProcessId(m_window, nullptr);
    GUITHREADINFO info = {};
    info.cbSize = sizeof(info);
    const auto hasFocus = [&] { return GetGUIThreadInfo(thread, &info) && info.hwndFocus; };
    // Another program's window may have come to the front; ours gets its focus back where it was.
    if (!hasFocus()) {
        SetForegroundWindow(m_window);
        WaitUntil(hasFocus);
    }
    return GetDlgCtrlID(info.hwndFocus);
}

std::vector<std::wstring> DrivenDialog::Entries(int combo) const {
    std::vector<std::wstring> entries;
    const HWND control = Control(combo);
    const auto count = static_cast<WPARAM>(SendMessageW(control, CB_GETCOUNT, 0, 0));
    for (WPARAM index = 0; index < count; ++index) {
        std::wstring text(static_cast<size_t>(SendMessageW(control, CB_GETLBTEXTLEN, index, 0)) + 1, L'\0');
        text.resize(
            static_cast<size_t>(SendMessageW(control, CB_GETLBTEXT, index, reinterpret_cast<LPARAM>(text.data()))));
        entries.push_back(text);
    }
    return entries;
}

int DrivenDialog::Selected(int combo) const {
    return static_cast<int>(SendMessageW(Control(combo), CB_GETCURSEL, 0, 0));
}

void DrivenDialog::Enter(int edit, const std::wstring& text) const {
    // WM_SETTEXT would not tell the dialog of the change in an edit of several lines.
    SendMessageW(Control(edit), EM_SETSEL, 0, -1);
    SendMessageW(Control(edit), EM_REPLACESEL, FALSE, reinterpret_cast<LPARAM>(text.c_str()));
}

void DrivenDialog::Check(int box, bool isChecked) const {
    if (IsChecked(box) != isChecked) Press(box);
}

void DrivenDialog::Select(int combo, int entry) const {
    SendMessageW(Control(combo), CB_SETCURSEL, static_cast<WPARAM>(entry), 0);
    SendMessageW(m_window, WM_COMMAND, MAKEWPARAM(combo, CBN_SELCHANGE), reinterpret_cast<LPARAM>(Control(combo)));
}

void DrivenDialog::Press(int button) const {
    SendMessageW(Control(button), BM_CLICK, 0, 0);
}

void DrivenDialog::PressLater(int button) const {
    PostMessageW(Control(button), BM_CLICK, 0, 0);
}

void DrivenDialog::Key(WPARAM virtualKey) const {
    PostMessageW(Control(Focus()), WM_KEYDOWN, virtualKey, 1);
}

void DrivenDialog::WaitUntilClosed() const {
    if (!WaitUntil([&] { return !IsWindow(m_window); })) throw std::runtime_error("the dialog does not close");
}

HWND DialogDriver::WaitForWindow(const wchar_t* windowClass, const std::wstring& title) const {
    HWND window = nullptr;
    WaitUntil([&] {
        window = FindThreadWindow(m_thread, windowClass, title.empty() ? nullptr : title.c_str());
        return window != nullptr;
    });
    if (!window) throw std::runtime_error("the window does not open: " + std::string(title.begin(), title.end()));
    return window;
}

DrivenDialog DialogDriver::WaitFor(const std::wstring& title) const {
    return DrivenDialog(WaitForWindow(L"#32770", title));
}

HWND DialogDriver::WaitForMenu() const {
    return WaitForWindow(L"#32768", {});
}

void WhileDriving(const std::function<void(DialogDriver&)>& script, const std::function<void()>& body) {
    const DWORD thread = GetCurrentThreadId();
    const Win32::KernelHandle finished(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    std::jthread person([&] {
        DialogDriver driver(thread);
        try {
            script(driver);
        } catch (const std::exception& failure) {
            ADD_FAILURE() << failure.what();
        }
        // Whatever the script left open would hold the test for ever. A progress window closes by itself.
        WaitForSingleObject(finished.Get(), kGrace);
        while (WaitForSingleObject(finished.Get(), kStep) == WAIT_TIMEOUT) {
            if (const HWND menu = FindThreadWindow(thread, L"#32768", nullptr))
                PostMessageW(menu, WM_KEYDOWN, VK_ESCAPE, 1);
            const HWND dialog = FindThreadWindow(thread, L"#32770", nullptr);
            if (!dialog) continue;
            ADD_FAILURE() << "a dialog is left open";
            PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
            WaitUntil([&] { return !IsWindow(dialog); });
        }
    });
    const std::unique_ptr<void, decltype(&SetEvent)> atEnd(finished.Get(), SetEvent);
    body();
}

}  // namespace QVTest
