// A host that is slow at the wrong moment, deletes the extension meanwhile, and takes its services away: from then on
// no call of it may begin. Also a host that shuts down from within a call of the window's thread.
#include <array>
#include <atomic>
#include <cstring>
#include <memory>

#include "batchrename/dialogs/batchrename_resource.h"
#include "batchrename/window/main_frame.h"
#include "host/xml/xml_document.h"
#include "host/xml/xml_service.h"
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

/// The table of one object of the host, with slots replaced until the object's end.
class Table {
public:
    Table(void* object, size_t slotCount) : m_slotCount(slotCount) {
        void*** const place = static_cast<void***>(object);
        m_original = *place;
        std::memcpy(m_slots.data(), m_original - kBefore, (kBefore + slotCount) * sizeof(void*));
        *place = m_slots.data() + kBefore;
    }
    Table(const Table&) = delete;
    Table& operator=(const Table&) = delete;

    template <class Function>
    void* Replace(size_t slot, Function* function) {
        m_slots[kBefore + slot] = reinterpret_cast<void*>(function);
        return m_original[slot];
    }
    void Poison() {
        for (size_t slot = 0; slot < m_slotCount; ++slot) Replace(slot, LateCall);
    }

private:
    static constexpr size_t kBefore = 2;  // words of the compiler's own stand before the first slot
    void** m_original;
    size_t m_slotCount;
    std::array<void*, 160> m_slots = {};
};

enum Kind : uint8_t { Services, Files, Refresh, Settings, Xml, Document, Element };
constexpr std::array<size_t, 7> kSlotCounts = {149, 70, 1, 7, 30, 3, 8};

class HostThatLeaves;
HostThatLeaves* theHost = nullptr;

/// The stand-in host, which sees to the tables of all that it gives out.
class HostThatLeaves {
public:
    HostThatLeaves(Kind kind, size_t slot, std::function<void()> afterwards) : m_kind(kind), m_slot(slot) {
        theHost = this;
        lateCalls = 0;
        special = {nullptr, std::move(afterwards), GetCurrentThreadId()};
        m_files.Write(L"a", "a");
        m_host.Select(m_files / L"a");
        m_host.State().panel = &m_panel;
        Table& services = *Watch(&m_host.Services(), Services);
        services.Replace(42, &GiveXml);
        services.Replace(44, &GiveSettings);
        services.Replace(63, &GiveService);
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
        const std::lock_guard lock(m_lock);
        for (const auto& table : m_tables) table->Poison();
    }

    static HWND Frame() { return FindOwnWindow(BatchRename::kFrameClass); }
    static std::wstring Status() { return ShownText(GetDlgItem(Frame(), IDC_STATUS_BAR), SB_GETTEXTW, 0); }
    static DrivenDialog Panel() { return DrivenDialog(FindWindowExW(Frame(), nullptr, L"#32770", nullptr)); }
    static DialogDriver Driver() { return DialogDriver(GetWindowThreadProcessId(Frame(), nullptr)); }

private:
    Table* Watch(void* object, Kind kind) {
        const std::lock_guard lock(m_lock);
        Table& table = *m_tables.emplace_back(std::make_unique<Table>(object, kSlotCounts[kind]));
        if (kind == m_kind) special.original = reinterpret_cast<AnySlot>(table.Replace(m_slot, SpecialCall));
        return &table;
    }
    static IXmlService* GiveXml(QVHost::HostServices* services, const wchar_t* path, uint32_t mode) {
        IXmlService* const xml = services->QVHost::HostServices::GetXmlService(path, mode);
        theHost->Watch(xml, Xml)->Replace(1, &GiveDocument);
        return xml;
    }
    static IXmlDocument* GiveDocument(QVHost::XmlService* xml) {
        IXmlDocument* const document = xml->QVHost::XmlService::CreateDocument();
        theHost->Watch(document, Document)->Replace(1, &GiveRoot);
        return document;
    }
    static IXmlElement* GiveRoot(QVHost::XmlDocument* document, const wchar_t* name) {
        IXmlElement* const root = document->QVHost::XmlDocument::CreateRoot(name);
        theHost->Watch(root, Element)->Replace(5, &GiveChild);
        return root;
    }
    static IXmlElement* GiveChild(QVHost::XmlElement* parent, const wchar_t* name) {
        IXmlElement* const child = parent->QVHost::XmlElement::AddChild(name);
        theHost->Watch(child, Element)->Replace(5, &GiveChild);
        return child;
    }
    static ISettings* GiveSettings(QVHost::HostServices* services) {
        ISettings* const settings = services->QVHost::HostServices::GetSettings();
        if (!std::exchange(theHost->m_knowsSettings, true)) theHost->Watch(settings, Settings);
        return settings;
    }
    static void* GiveService(QVHost::HostServices* services, uint32_t number, uint32_t zero, const wchar_t* path) {
        void* const service = services->QVHost::HostServices::AcquireService(number, zero, path);
        theHost->Watch(service, number == ServiceNumber::FileOperations ? Files : Refresh);
        return service;
    }

    std::mutex m_lock;
    std::vector<std::unique_ptr<Table>> m_tables;
    TemporaryFolder m_files;
    InProcessHost m_process;
    ServicesOfHost m_host{QV_HOST_PROGRAM};
    FakePanel m_panel{[this] { return m_host.State().selection; }, [](const std::wstring&) {}};
    IPluginInterface* m_extension = nullptr;
    Kind m_kind;
    size_t m_slot;
    bool m_knowsSettings = false;
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
