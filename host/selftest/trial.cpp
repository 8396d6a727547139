#include <algorithm>
#include <atomic>
#include <map>
#include <sstream>
#include <thread>

#include "host/app/host_error.h"
#include "host/app/host_text.h"
#include "host/contract/whole_file.h"
#include "host/selftest/self_test.h"
#include "textio/replace_file.h"
#include "win32/folder.h"
#include "win32/path.h"
#include "win32/windows.h"

namespace QVHost {
namespace {

constexpr DWORD kBetweenLooks = 50;   // milliseconds between two looks for windows
constexpr ULONGLONG kAgain = 3'000;   // milliseconds until a window that is still there is closed once more
constexpr int kMaximumLooks = 1'200;  // a minute in all

/// Visible windows of this process that have no owner, or are dialogs.
std::vector<HWND> OwnWindows() {
    std::vector<HWND> windows;
    const auto take = [](HWND window, LPARAM list) -> BOOL {
        DWORD process = 0;
        GetWindowThreadProcessId(window, &process);
        if (process == GetCurrentProcessId() && IsWindowVisible(window))
            reinterpret_cast<std::vector<HWND>*>(list)->push_back(window);
        return TRUE;
    };
    EnumWindows(take, reinterpret_cast<LPARAM>(&windows));
    return windows;
}

bool IsDialog(HWND window) {
    wchar_t name[16] = {};
    GetClassNameW(window, name, static_cast<int>(std::size(name)));
    return std::wstring_view(name) == L"#32770";
}

/// Plays the person in front of the windows that open while it lives.
class WindowCloser {
public:
    explicit WindowCloser(int button) : m_button(button), m_known(OwnWindows()), m_thread([this] { Watch(); }) {}
    WindowCloser(const WindowCloser&) = delete;
    WindowCloser& operator=(const WindowCloser&) = delete;
    ~WindowCloser() { Stop(); }

    void Stop() {
        m_isOver = true;
        if (m_thread.joinable()) m_thread.join();
    }
    // Once it was stopped.
    const std::wstring& Faults() const { return m_faults; }
    size_t CountOfSeen() const { return m_closed.size(); }

private:
    void Watch() {
        for (int look = 0; look < kMaximumLooks && !m_isOver; ++look) {
            for (HWND window : OwnWindows())
                if (std::ranges::find(m_known, window) == m_known.end()) Close(window);
            Sleep(kBetweenLooks);
        }
    }

    void Close(HWND window) {
        const ULONGLONG now = GetTickCount64();
        const auto [known, isNew] = m_closed.try_emplace(window, now);
        if (!isNew && now - known->second < kAgain) return;
        const int button = isNew && m_closed.size() == 1 ? m_button : IDCANCEL;
        known->second = now;
        if (isNew) Look(window);
        if (IsDialog(window))
            PostMessageW(window, WM_COMMAND, static_cast<WPARAM>(button), 0);
        else
            PostMessageW(window, WM_CLOSE, 0, 0);
    }

    void Look(HWND window) {
        RECT place = {};
        MONITORINFO monitor = {.cbSize = sizeof(monitor), .rcMonitor = {}, .rcWork = {}, .dwFlags = 0};
        if (!GetWindowRect(window, &place) ||
            !GetMonitorInfoW(MonitorFromWindow(window, MONITOR_DEFAULTTONEAREST), &monitor))
            return;
        const RECT& screen = monitor.rcWork;
        const long width = place.right - place.left;
        const long height = place.bottom - place.top;
        if (width <= screen.right - screen.left && height <= screen.bottom - screen.top) return;
        m_faults += L" a window of " + std::to_wstring(width) + L" x " + std::to_wstring(height) +
                    L" pixels is larger than the screen;";
    }

    int m_button;
    std::vector<HWND> m_known;           // there before
    std::map<HWND, ULONGLONG> m_closed;  // and when it was asked to close
    std::wstring m_faults;
    std::atomic<bool> m_isOver = false;
    std::thread m_thread;  // last: it uses the others
};

}  // namespace

CheckResult FailedBecause(std::wstring reason) {
    return {CheckResult::Kind::Failed, std::move(reason)};
}

CheckResult NotAvailableBecause(std::wstring reason) {
    return {CheckResult::Kind::NotAvailable, std::move(reason)};
}

Trial::Trial(std::wstring folder, uint32_t volumeFlags, const std::wstring& program, std::vector<std::wstring> common)
    : m_folder(std::move(folder)), m_volumeFlags(volumeFlags), m_program(program), m_common(std::move(common)) {}

Trial::Said Trial::Run(const std::vector<std::wstring>& words) const {
    std::vector<std::wstring> arguments = m_common;
    arguments.insert(arguments.end(), words.begin(), words.end());
    std::ostringstream said;
    std::istringstream nothing;
    HostEnvironment environment = {.out = said,
                                   .error = said,
                                   .in = nothing,
                                   .program = m_program,
                                   .outIsTerminal = true,  // so that lines and notes come in their order
                                   .readAnswer = {},
                                   .progressWatch = {}};
    const int status = RunQvHost(arguments, environment);
    return {status, OnOneLine(Win32::Trimmed(Wide(said.str())))};
}

Trial::Said Trial::RunInWindows(std::vector<std::wstring> words, int button) const {
    words.emplace_back(L"--windows");
    WindowCloser closer(button);
    Said said = Run(words);
    closer.Stop();
    said.text += closer.Faults();
    if (!closer.Faults().empty() || closer.CountOfSeen() == 0) said.status = ExitStatus::Failed;
    if (closer.CountOfSeen() == 0) said.text += L" no window was seen";
    return said;
}

CheckResult Trial::Replace(const std::wstring& file) const {
    const Said said = Run({L"call", L"FindAndReplace", L"FILE=" + file, L"FIND=old", L"REPLACEWITH=new", L"DELETE",
                           L"REPLACEALL", L"SILENT"});
    std::string bytes;
    if (said.status != ExitStatus::Done) return FailedBecause(said.text);
    if (const uint32_t error = ReadWholeFile(file, bytes)) return FailedBecause(DescribeError(error));
    return bytes == "new\r\n" ? CheckResult() : FailedBecause(L"the file does not hold the new text: " + said.text);
}

std::wstring Trial::PathOf(std::wstring_view name) const {
    return Win32::JoinPath(m_folder, name);
}

std::wstring Trial::MakeFile(std::wstring_view name) const {
    std::wstring path = PathOf(name);
    if (const uint32_t error = QVUtils::ReplaceRecord(path, "old\r\n", false))
        throw HostError(L"a file cannot be written: " + DescribeError(error));
    return path;
}

std::wstring Trial::MakeFolder(std::wstring_view name) const {
    std::wstring path = PathOf(name);
    if (const uint32_t error = Win32::MakeFolders(path))
        throw HostError(L"a folder cannot be made: " + DescribeError(error));
    return path;
}

}  // namespace QVHost
