// A host that is slow at the wrong moment and deletes the extension meanwhile: from then on no call of it may begin.
// Also a host that shuts down from within a call of the window's thread.
#include <atomic>
#include <functional>
#include <string>

#include "batchrename/dialogs/batchrename_resource.h"
#include "batchrename/window/main_frame.h"
#include "reliability/host_calls.h"
#include "support/dialog_driver.h"
#include "support/replaced_imports.h"
#include "support/services_of_host.h"

namespace {

using namespace QVTest;
using namespace Quorvane::SDK;

class HostThatLeaves {
public:
    /// `afterwards` is done at the end of each such call ("CLASS SLOT") by a thread of the library.
    HostThatLeaves(const std::string& slowCall, std::function<void()> afterwards) {
        m_files.Write(L"a", "a");
        Select();
        m_host.State().panel = &m_panel;
        Create();
        HostCalls::Tell([=, thread = GetCurrentThreadId()](const std::string& call) {
            if (call == slowCall && GetCurrentThreadId() != thread) afterwards();
        });
    }
    HostThatLeaves(const HostThatLeaves&) = delete;
    HostThatLeaves& operator=(const HostThatLeaves&) = delete;

    IPluginInterface& Extension() { return *m_extension; }
    /// What the library has put into the host's queue is done here, too.
    bool WaitFor(const std::function<bool()>& isTrue) {
        return WaitUntil([&] {
            for (const QVHost::QueuedCommand& command : m_host.State().commandQueue.Take()) {
                m_extension->OnCommand(command.id, 0, command.value);
                ++m_collections;
            }
            return isTrue();
        });
    }
    int Collections() const { return m_collections; }
    const TemporaryFolder& Files() const { return m_files; }
    /// The file, whatever its name is now.
    void Select() {
        m_host.State().selection.clear();
        m_host.Select(m_files / m_files.List().front());
    }
    HMODULE Library() const { return m_process.Library(); }
    void Create() {
        m_extension = m_process.Create(2);
        m_extension->SetHost(&m_host.Services());
    }
    void Open() {
        m_extension->OnCommand(31000, 0, 0);
        EXPECT_TRUE(WaitUntil([&] { return Status().find(L" of 1 item") != std::wstring::npos; }));
    }
    void Delete() { m_process.Delete(m_extension, 2); }

    static HWND Frame() { return FindOwnWindow(BatchRename::kFrameClass); }
    static std::wstring Status() { return ShownText(GetDlgItem(Frame(), IDC_STATUS_BAR), SB_GETTEXTW, 0); }
    static DrivenDialog Panel() { return DrivenDialog(FindWindowExW(Frame(), nullptr, L"#32770", nullptr)); }
    static DialogDriver Driver() { return DialogDriver(GetWindowThreadProcessId(Frame(), nullptr)); }

private:
    TemporaryFolder m_files;
    InProcessHost m_process;
    HurriedLibrary m_hurried{m_process.Library()};
    ServicesOfHost m_host{QV_HOST_PROGRAM};
    FakePanel m_panel{[this] { return m_host.State().selection; }, [](const std::wstring&) {}};
    IPluginInterface* m_extension = nullptr;
    HostCalls m_calls{&m_host.Services()};
    int m_collections = 0;
};

std::vector<DWORD> waits;
/// The library's bounded waits end at once: the host is slow.
DWORD WINAPI EndBoundedWait(HANDLE object, DWORD milliseconds) {
    if (milliseconds < 1000 || milliseconds == INFINITE) return WaitForSingleObject(object, milliseconds);
    waits.push_back(milliseconds);
    return WAIT_TIMEOUT;
}

void ChooseInMenu(int control, const std::vector<WPARAM>& keys) {
    HostThatLeaves::Panel().PressLater(control);
    const HWND menu = HostThatLeaves::Driver().WaitForMenu();
    for (const WPARAM key : keys) PostMessageW(menu, WM_KEYDOWN, key, 1);
}

void Rename() {
    HostThatLeaves::Panel().Enter(IDC_NAME_TEMPLATE, L"[N]2");
    EXPECT_TRUE(WaitUntil([&] { return HostThatLeaves::Status() == L"1 of 1 item will be renamed"; }));
    HostThatLeaves::Panel().Press(IDC_START);
}

/// Where a thread of the library waits until the extension is deleted.
struct Halt {
    Win32::KernelHandle isReached{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
    Win32::KernelHandle goesOn{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
    std::atomic<DWORD> thread = 0;

    void Stay() {
        thread = GetCurrentThreadId();
        SetEvent(isReached.Get());
        EXPECT_EQ(WaitForSingleObject(goesOn.Get(), 20000), WAIT_OBJECT_0) << "the host waited for its own call";
    }
};
Halt* g_journal = nullptr;
BOOL WINAPI WriteTheJournalSlowly(HANDLE file, const void* data, DWORD size, DWORD* written, OVERLAPPED* overlapped) {
    if (g_journal) g_journal->Stay();
    return WriteFile(file, data, size, written, overlapped);
}

TEST(HostThatLeaves, IsNeverCalledAgain) {
    const auto bringNothing = [] {};
    const struct {
        const char* moment;
        const char* slowCall;  // "": the one that writes the journal
        std::function<void()> bring;
        bool isShutDown;
    } cases[] = {
        {"opening, a text", "HostServices 16", bringNothing, false},
        {"opening, its place", "ExtensionSettings 1", bringNothing, true},
        {"renaming", "FileOperations 67", Rename, false},
        {"renaming, shut down in vain", "FileOperations 67", Rename, true},
        {"the journal", "", Rename, false},
        {"telling of a folder", "FolderRefresh 0", Rename, true},
        {"collecting", "HostServices 32", [] { HostThatLeaves::Panel().PressLater(IDC_RESET_LIST); }, true},
        {"a preview", "FileOperations 68",
         [] { HostThatLeaves::Panel().Enter(IDC_NAME_TEMPLATE, L"[?modified]-[?size]"); }, false},
        {"opening a dialog", "FileOperations 69",
         [] {
             ChooseInMenu(IDC_NAME_TAGS, {VK_UP, VK_RETURN});
         },
         true},
        {"saving a profile", "XmlElement 7",
         [] {
             ChooseInMenu(IDC_PROFILES, {VK_UP, VK_UP, VK_RETURN});
             const DrivenDialog dialog = HostThatLeaves::Driver().WaitFor(L"Save profile");
             const HWND field = FindWindowExW(dialog.Control(IDC_PROFILE_NAME), nullptr, L"Edit", nullptr);
             SendMessageW(field, EM_REPLACESEL, FALSE, reinterpret_cast<LPARAM>(L"mine"));
             dialog.PressLater(IDOK);
         },
         true},
        {"closing", "ExtensionSettings 5", [] { PostMessageW(HostThatLeaves::Frame(), WM_CLOSE, 0, 0); }, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.moment);
        const bool isOpening = std::string_view(c.moment).starts_with("opening,");
        Halt halt;
        HostThatLeaves host(c.slowCall, [&] { halt.Stay(); });
        waits.clear();
        const ReplacedImport hurried(host.Library(), "WaitForSingleObject", reinterpret_cast<void*>(EndBoundedWait));
        const ReplacedImport journal(host.Library(), "WriteFile", reinterpret_cast<void*>(WriteTheJournalSlowly));
        if (isOpening)
            host.Extension().OnCommand(31000, 0, 0);
        else
            host.Open();
        const HWND frame = HostThatLeaves::Frame();
        g_journal = *c.slowCall == 0 ? &halt : nullptr;
        c.bring();
        ASSERT_EQ(WaitForSingleObject(halt.isReached.Get(), 10000), WAIT_OBJECT_0);
        const Win32::KernelHandle thread(
            OpenThread(SYNCHRONIZE, FALSE, isOpening ? halt.thread.load() : GetWindowThreadProcessId(frame, nullptr)));
        if (c.isShutDown) host.Extension().Shutdown();
        host.Delete();
        const size_t calls = HostCalls::Count();
        SetEvent(halt.goesOn.Get());
        EXPECT_EQ(WaitForSingleObject(thread.Get(), 10000), WAIT_OBJECT_0);
        g_journal = nullptr;
        EXPECT_EQ(HostCalls::Count(), calls);
        std::erase(waits, 3000u);  // of the lock for saving profiles
        EXPECT_EQ(waits, (std::vector<DWORD>{c.isShutDown ? 5000u : 4000u}));
    }
}

/// Shutdown on the window's thread does nothing, also while the command that opens the window has not returned yet.
TEST(HostThatShutsDown, OnTheWindowsThreadIsRecognisedFromItsFirstCall) {
    HostThatLeaves* opening = nullptr;
    std::atomic<int> shutdowns = 0;
    HostThatLeaves host("ExtensionSettings 1", [&] {
        if (shutdowns++ == 0) opening->Extension().Shutdown();
    });
    opening = &host;
    waits.clear();
    const ReplacedImport hurried(host.Library(), "WaitForSingleObject", reinterpret_cast<void*>(EndBoundedWait));
    host.Open();
    EXPECT_GT(shutdowns, 0);
    EXPECT_EQ(waits, std::vector<DWORD>());
    EXPECT_EQ(host.Extension().OnCommand(31000, 0, 0), 1u);
    PostMessageW(HostThatLeaves::Frame(), WM_CLOSE, 0, 0);
    EXPECT_TRUE(WaitUntil([] { return !HostThatLeaves::Frame(); }));
    host.Extension().Shutdown();
    EXPECT_EQ(host.Extension().OnCommand(31000, 0, 0), 0u) << "there is no host any more";
    host.Delete();
}

/// Each call of the host goes wrong in turn while the window does one thing. It comes to rest, works again, and has
/// given everything back.
TEST(FaultsOfTheHost, AreBorneByTheWindow) {
    HostThatLeaves host("", [] {});
    host.Open();
    const auto shows = [&](const std::wstring& status) {
        // What is said in a box is read and gone.
        const HWND box = GetLastActivePopup(HostThatLeaves::Frame());
        if (box != HostThatLeaves::Frame()) PostMessageW(box, WM_CLOSE, 0, 0);
        return HostThatLeaves::Panel().IsEnabled(IDC_NAME_TEMPLATE) && HostThatLeaves::Status() == status;
    };
    const auto newName = [] { return CellOf(GetDlgItem(HostThatLeaves::Frame(), IDC_ROWS), 0, 1); };
    const auto enter = [&](const std::wstring& rule, const std::wstring& status) {
        HostThatLeaves::Panel().Enter(IDC_NAME_TEMPLATE, rule);
        EXPECT_TRUE(host.WaitFor([&] { return shows(status); })) << HostThatLeaves::Status();
    };
    int collections = 0;
    const struct {
        const char* what;
        std::function<void()> act;
        std::function<bool()> isDone;
    } cases[] = {
        {"collecting", [] { HostThatLeaves::Panel().PressLater(IDC_RESET_LIST); },
         [&] { return host.Collections() > collections; }},
        {"a preview", [] { HostThatLeaves::Panel().Enter(IDC_NAME_TEMPLATE, L"[?size]-[?modified]"); },
         [&] { return newName().find(L'-') != std::wstring::npos; }},
        {"a run", [] { HostThatLeaves::Panel().Press(IDC_START); }, [&] { return shows(L"1 Renamed"); }},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        const auto act = [&] {
            c.act();
            EXPECT_TRUE(host.WaitFor([&] { return !HostCalls::FailedCall().empty() || c.isDone(); }));
            // What the host makes of the news is no part of the run.
            const bool isNewsOfTheEnd = HostCalls::FailedCall() == "FolderRefresh 0";
            EXPECT_TRUE(!isNewsOfTheEnd || host.WaitFor([&] { return shows(L"1 Renamed"); }));
        };
        const auto restore = [&] {
            EXPECT_TRUE(host.WaitFor([&] { return shows(HostThatLeaves::Status()); }));
            host.Select();
            HostThatLeaves::Panel().PressLater(IDC_RESET_LIST);
            EXPECT_TRUE(host.WaitFor([&] { return host.Collections() > collections; }));
            enter(L"[N]", L"0 of 1 item will be renamed");
            enter(L"[N]2", L"1 of 1 item will be renamed");
            collections = host.Collections();
            EXPECT_EQ(host.Files().Read(host.Files().List().front()), "a");
        };
        HostCalls::Walk(act, restore);
    }
    host.Extension().Shutdown();
    host.Delete();
}

TEST(FaultsOfTheHost, AreBorneWhileTheWindowComesAndGoes) {
    HostThatLeaves host("", [] {});
    host.Delete();
    const auto openAndClose = [&] {
        host.Create();
        host.Extension().OnCommand(31000, 0, 0);
        EXPECT_TRUE(host.WaitFor([] {
            return !HostCalls::FailedCall().empty() || HostThatLeaves::Status() == L"0 of 1 item will be renamed";
        }));
        host.Extension().Shutdown();
        host.Delete();
        EXPECT_FALSE(HostThatLeaves::Frame());
    };
    HostCalls::Walk(openAndClose, [] {});
}

}  // namespace
