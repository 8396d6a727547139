// A host that is slow at the wrong moment, deletes the extension meanwhile, and takes its services away: from then on
// no call of it may begin. Also a host that shuts down from within a call of the window's thread.
#include <array>
#include <atomic>

#include "batchrename/dialogs/batchrename_resource.h"
#include "batchrename/window/main_frame.h"
#include "sdk/owners.h"
#include "support/dialog_driver.h"
#include "support/replaced_imports.h"
#include "support/services_of_host.h"

namespace {

using namespace QVTest;
using namespace Quorvane::SDK;

using AnySlot = uintptr_t (*)(void*, uintptr_t, uintptr_t, uintptr_t, uintptr_t, uintptr_t);

std::atomic<int> lateCalls;
uintptr_t LateCall() {
    ++lateCalls;
    return 0;
}

/// The call at which the host is slow, or does something of its own. The caller removes the arguments, so that one
/// function serves slots of all kinds.
struct {
    AnySlot original;
    std::function<void()> afterwards;
    DWORD hostThread;
} special;
uintptr_t SpecialCall(void* object, uintptr_t a, uintptr_t b, uintptr_t c, uintptr_t d, uintptr_t e) {
    const uintptr_t result = special.original(object, a, b, c, d, e);
    if (GetCurrentThreadId() != special.hostThread && special.afterwards) special.afterwards();
    return result;
}

enum Kind : uint8_t { Services, Files, Refresh, Settings, Xml, Document, Element };
constexpr std::array<size_t, 7> kSlotCounts = {149, 70, 1, 7, 30, 3, 8};

/// The stand-in host, with the tables of all classes that it gives objects of to the window.
class HostThatLeaves {
public:
    HostThatLeaves(Kind kind, size_t slot, std::function<void()> afterwards)
        : m_special(m_objects[kind], slot, SpecialCall) {
        lateCalls = 0;
        special = {reinterpret_cast<AnySlot>(m_special.Original()), std::move(afterwards), GetCurrentThreadId()};
        m_files.Write(L"a", "a");
        m_host.Select(m_files / L"a");
        m_host.State().panel = &m_panel;
        m_extension = m_process.Create(2);
        m_extension->SetHost(&m_host.Services());
    }
    HostThatLeaves(const HostThatLeaves&) = delete;
    HostThatLeaves& operator=(const HostThatLeaves&) = delete;

    IPluginInterface& Extension() { return *m_extension; }
    HMODULE Library() const { return m_process.Library(); }
    void Open() {
        m_extension->OnCommand(31000, 0, 0);
        EXPECT_TRUE(WaitUntil([&] { return Status().starts_with(L"1 item"); }));
    }
    void Delete() { m_process.Delete(m_extension, 2); }
    void TakeServicesAway() {
        for (const Kind kind : {Services, Files, Refresh, Settings, Xml, Document, Element})
            for (size_t slot = 0; slot < kSlotCounts[kind]; ++slot)
                m_poisoned.emplace_back(m_objects[kind], slot, LateCall);
    }

    static HWND Frame() { return FindOwnWindow(BatchRename::kFrameClass); }
    static std::wstring Status() { return ShownText(GetDlgItem(Frame(), IDC_STATUS_BAR), SB_GETTEXTW, 0); }
    static DrivenDialog Panel() { return DrivenDialog(FindWindowExW(Frame(), nullptr, L"#32770", nullptr)); }
    static DialogDriver Driver() { return DialogDriver(GetWindowThreadProcessId(Frame(), nullptr)); }

private:
    TemporaryFolder m_files;
    InProcessHost m_process;
    ServicesOfHost m_host{QV_HOST_PROGRAM};
    AcquiredService<IFileOperations> m_operations{m_host.Services(), ServiceNumber::FileOperations};
    AcquiredService<IFolderRefresh> m_refresh{m_host.Services(), ServiceNumber::FolderRefresh};
    Owned<IXmlService> m_xml{m_host.Services().GetXmlService(nullptr, 0)};
    Owned<IXmlDocument> m_document{m_xml->CreateDocument()};
    const std::array<void*, 7> m_objects = {
        &m_host.Services(), m_operations.Get(),          m_refresh.Get(), m_host.Services().GetSettings(), m_xml.get(),
        m_document.get(),   m_document->CreateRoot(L"a")};
    FakePanel m_panel{[this] { return m_host.State().selection; }, [](const std::wstring&) {}};
    IPluginInterface* m_extension = nullptr;
    // Put back in the opposite order, before the objects end.
    ReplacedSlot m_special;
    std::vector<ReplacedSlot> m_poisoned;
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
    EXPECT_TRUE(WaitUntil([&] { return HostThatLeaves::Status() == L"1 item, 1 will be renamed"; }));
    HostThatLeaves::Panel().Press(IDC_START);
}

TEST(HostThatLeaves, IsNeverCalledAgain) {
    const struct {
        const char* moment;
        Kind kind;
        size_t slot;  // in which the host is slow
        std::function<void()> bring;
        bool isShutDown;
    } cases[] = {
        {"renaming", Files, 67, Rename, false},
        {"renaming, shut down in vain", Files, 67, Rename, true},
        {"telling of a folder", Refresh, 0, Rename, true},
        {"collecting", Services, 32, [] { HostThatLeaves::Panel().PressLater(IDC_RESET_LIST); }, true},
        {"a preview", Files, 68, [] { HostThatLeaves::Panel().Enter(IDC_NAME_TEMPLATE, L"[?modified]-[?size]"); },
         false},
        {"opening a dialog", Files, 69,
         [] {
             ChooseInMenu(IDC_NAME_TAGS, {VK_UP, VK_RETURN});
         },
         true},
        {"saving a profile", Element, 7,
         [] {
             ChooseInMenu(IDC_PROFILES, {VK_UP, VK_UP, VK_RETURN});
             const DrivenDialog dialog = HostThatLeaves::Driver().WaitFor(L"Save profile");
             const HWND field = FindWindowExW(dialog.Control(IDC_PROFILE_NAME), nullptr, L"Edit", nullptr);
             SendMessageW(field, EM_REPLACESEL, FALSE, reinterpret_cast<LPARAM>(L"mine"));
             dialog.PressLater(IDOK);
         },
         true},
        {"closing", Settings, 5, [] { PostMessageW(HostThatLeaves::Frame(), WM_CLOSE, 0, 0); }, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.moment);
        const Win32::KernelHandle isIn(CreateEventW(nullptr, TRUE, FALSE, nullptr));
        const Win32::KernelHandle goesOn(CreateEventW(nullptr, TRUE, FALSE, nullptr));
        HostThatLeaves host(c.kind, c.slot, [&] {
            SetEvent(isIn.Get());
            WaitForSingleObject(goesOn.Get(), 20000);
        });
        waits.clear();
        const ReplacedImport hurried(host.Library(), "WaitForSingleObject", reinterpret_cast<void*>(EndBoundedWait));
        host.Open();
        const Win32::KernelHandle thread(
            OpenThread(SYNCHRONIZE, FALSE, GetWindowThreadProcessId(HostThatLeaves::Frame(), nullptr)));
        c.bring();
        ASSERT_EQ(WaitForSingleObject(isIn.Get(), 10000), WAIT_OBJECT_0);
        if (c.isShutDown) host.Extension().Shutdown();
        host.Delete();
        host.TakeServicesAway();
        SetEvent(goesOn.Get());
        EXPECT_EQ(WaitForSingleObject(thread.Get(), 10000), WAIT_OBJECT_0);
        EXPECT_EQ(lateCalls, 0);
        std::erase(waits, 3000u);  // of the lock for saving profiles
        EXPECT_EQ(waits, (std::vector<DWORD>{c.isShutDown ? 5000u : 4000u}));
    }
}

/// Shutdown on the window's thread does nothing, also while the command that opens the window has not returned yet.
TEST(HostThatShutsDown, OnTheWindowsThreadIsRecognisedFromItsFirstCall) {
    HostThatLeaves* opening = nullptr;
    std::atomic<int> shutdowns = 0;
    HostThatLeaves host(Settings, 1, [&] {
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

}  // namespace
