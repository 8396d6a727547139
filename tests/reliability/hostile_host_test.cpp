// hostile_host_test.cpp - the built library in the hands of a host that gives it nothing, or nonsense: null pointers,
// services that are not there, numbers out of range, texts without an end. Each call must come back.
#include <algorithm>
#include <array>
#include <string_view>

#include <gtest/gtest.h>

#include "reliability/in_process_host.h"
#include "sdk/extension_info.h"
#include "sdk/host_services.h"
#include "support/services_of_host.h"

namespace {

using namespace QVTest;
using namespace Quorvane::SDK;

enum class Manner { Nothing, NullTexts, Nonsense };

/// Fills the whole buffer and leaves no closing zero.
uint32_t Overfill(wchar_t* buffer, uint32_t capacity) {
    if (buffer) std::fill_n(buffer, capacity, L'x');
    return 0xFFFFFFFF;
}

class OddItem final : public IFileItem {
public:
    uint32_t GetName(wchar_t* buffer, uint32_t capacity) override { return Overfill(buffer, capacity); }
    uint32_t GetLocation(wchar_t* buffer, uint32_t capacity) override { return Overfill(buffer, capacity); }
    uint32_t GetPath(wchar_t* buffer, uint32_t capacity) override { return Overfill(buffer, capacity); }
    uint32_t GetAttributes() override { return 0xFFFFFFFF; }
    bool GetStoredProperty(uint16_t, uint16_t, StoredPropertyValue* value) override {
        if (value)
            *value = {.status = -1, .reserved = 0, .text = {}},
            std::fill(std::begin(value->text), std::end(value->text), L'x');
        return true;
    }
    int32_t IsRemote() override { return INT32_MIN; }
    void Release() override {}
    uint32_t QueryProperty(uint16_t, uint32_t, StoredPropertyValue*) override { return 0xFFFFFFFF; }
    void RefreshProperty(uint32_t) override {}
};

/// Says that it has items, and has few.
class OddList final : public IFileList {
public:
    bool AddItem(IFileItem*) override { return false; }
    uint32_t GetCount() override { return 3; }
    IFileItem* GetItem(uint32_t index) override { return index == 1 ? &m_item : nullptr; }
    void Release() override {}

private:
    OddItem m_item;
};

class OddHost final : public IHostServices {
public:
    explicit OddHost(Manner manner) : m_manner(manner) {}

    void Release() override {}
    HWND GetMainWindow() override { return reinterpret_cast<HWND>(uintptr_t{0xFFFF}); }
    uint16_t GetTextModule(const char*) override { return 0xFFFF; }
    const wchar_t* GetText(TextId) override { return m_manner == Manner::NullTexts ? nullptr : L"%s%s%d%"; }
    const wchar_t* GetModuleText(uint16_t, TextId) override { return m_manner == Manner::NullTexts ? nullptr : L""; }
    uint32_t RunHostCommand(uint32_t, IFileList*, uint32_t, uintptr_t) override { return 0xFFFFFFFF; }
    ICommandFactory* GetCommandFactory() override { return nullptr; }
    IMenuBuilder* GetMenuBuilder() override { return nullptr; }
    ICustomCommandRegistry* GetCustomCommandRegistry(const char*) override { return nullptr; }
    IXmlService* GetXmlService(const wchar_t*, uint32_t) override { return nullptr; }
    ISettings* GetSettings() override { return nullptr; }
    uint32_t GetConfigurationFolder(wchar_t* buffer, uint32_t capacity) override { return Overfill(buffer, capacity); }
    void* AcquireService(uint32_t, uint32_t, const wchar_t*) override { return nullptr; }
    void ReleaseService(void*, uint32_t) override {}
    bool IsElevated() override { return false; }
    bool CanElevate() override { return true; }
    bool UseColumnD() override { return true; }
    bool UseColumnE() override { return false; }
    IFileList* CreateFileList() override { return m_manner == Manner::Nothing ? nullptr : &m_list; }
    IProgress* OpenProgress(const wchar_t*, uint32_t) override { return nullptr; }
    IChoiceList* CreateChoiceList() override { return nullptr; }
    void Log(uint32_t, uint32_t, const wchar_t*, ...) override { ++logged; }
    uint32_t MessageBox(const wchar_t*, const wchar_t*, uint32_t) override { return 0xFFFFFFFF; }
    bool ShowInputDialog(TextId, wchar_t* buffer, uint32_t capacity) override {
        return Overfill(buffer, capacity) != 0;
    }
    bool ShowChoiceDialog(ChoiceRequest* request) override {
        if (request) request->position = 0xFFFFFFFF;
        return true;
    }

    int logged = 0;

private:
    Manner m_manner;
    OddList m_list;
};

class OddCall final : public ICustomCommandCall {
public:
    OddCall(uint32_t id, Manner manner) : m_id(id), m_manner(manner) {}
    bool HasParameter(const char*) override { return true; }
    const wchar_t* GetTextParameter(const char*) override {
        return m_manner == Manner::Nothing ? nullptr : L"\x1?*|<\"";
    }
    bool GetNumberParameter(const char*, uint32_t* value) override {
        if (value) *value = 0xFFFFFFFF;
        return m_manner != Manner::Nothing;
    }
    uint32_t GetCommandId() override { return m_id; }
    // Silent, for there is nobody to close a dialog.
    bool GetSwitchParameter(const char* name) override { return std::string(name) == "SILENT"; }
    void SetResultCode(uint32_t) override {}
    void SetResultText(const wchar_t*) override {}

private:
    uint32_t m_id;
    Manner m_manner;
};

class OddMessage final : public IRequestMessage {
public:
    const void* GetData() override { return nullptr; }
    uint32_t GetSize() override { return 0xFFFFFFFF; }
    void Reply(uint32_t, uint32_t result, uintptr_t, uintptr_t) override { EXPECT_NE(result, 0u); }
    IRequestReader* CreateReader() override { return nullptr; }
};

class HostileHost : public testing::TestWithParam<Manner> {
protected:
    const InProcessHost m_process;
    const CreateFunction m_create =
        reinterpret_cast<CreateFunction>(reinterpret_cast<void*>(GetProcAddress(m_process.Library(), "Create")));
    const DeleteFunction m_delete =
        reinterpret_cast<DeleteFunction>(reinterpret_cast<void*>(GetProcAddress(m_process.Library(), "Delete")));
};

}  // namespace

TEST_P(HostileHost, GetsAnAnswerToEveryCall) {
    for (const uint32_t index : {0u, 2u}) {
        OddHost host(GetParam());
        IPluginInterface* const extension = m_create(index);
        ASSERT_NE(extension, nullptr);
        extension->SetHost(&host);
        extension->Init(&host);
        extension->PreTranslateMessage(nullptr, 0xFFFFFFFF);
        // All ids but those that open a panel of the system, which need nothing of the host. Commands that ask in a
        // dialog of their own do so only for files.
        for (uint32_t id = 0; id <= 40000; ++id) {
            const bool opensPanel = id >= 6100 && id <= 7100;
            const bool asksForFiles = GetParam() != Manner::Nothing && (id == 30010 || id == 30150 || id == 30151 ||
                                                                        id == 30300 || id == 30311 || id == 30350);
            // The end of the extension comes last.
            if (!opensPanel && !asksForFiles && id != kCommandShutdown) extension->OnCommand(id, ~uintptr_t{0}, 1);
        }
        for (const uint32_t id : {0u, 30350u, 30351u, 30352u, 30353u, 30354u, 0xFFFFFFFFu}) {
            OddCall call(id, GetParam());
            extension->OnCustomCommand(&call);
        }
        OddMessage message;
        for (uint32_t id = 4990; id < 5010; ++id) {
            extension->OnElevatedRequest(id, &message);
            extension->OnElevatedRequest(id, nullptr);
        }
        extension->OnCustomCommand(nullptr);
        extension->SetHost(nullptr);
        extension->OnCommand(30101, 0, 0);
        extension->Init(nullptr);
        extension->Shutdown();
        extension->Shutdown();
        EXPECT_TRUE(m_delete(extension, index));
    }
}

TEST_P(HostileHost, GetsNoMoreTextThanItHasRoomFor) {
    OddHost host(GetParam());
    OddItem item;
    auto* const properties = reinterpret_cast<IFileProperties*>(m_create(1));
    properties->SetHost(&host);
    properties->Init(&host);
    for (uint32_t id = 0; id < 8; ++id)
        for (const uint32_t capacity : {0u, 1u, 2u, 600u}) {
            std::vector<wchar_t> text(capacity + 1, L'#');
            const uint32_t isKnown = properties->GetValue(&item, text.data(), capacity, static_cast<uint16_t>(id));
            EXPECT_EQ(text[capacity], L'#') << "one unit beyond the room";
            if (isKnown) {
                EXPECT_NE(std::find(text.begin(), text.end() - 1, L'\0'), text.end() - 1) << "the text has an end";
            }
            properties->GetValue(nullptr, text.data(), capacity, static_cast<uint16_t>(id));
            properties->GetValue(&item, nullptr, capacity, static_cast<uint16_t>(id));
        }
    properties->ClearCache();
    properties->SetHost(nullptr);
    std::vector<wchar_t> text(8);
    properties->GetValue(&item, text.data(), 8, 1);
    EXPECT_TRUE(m_delete(reinterpret_cast<IPluginInterface*>(properties), 1));
}

namespace {

/// The host's services by their slots: all of the contract, of which one answers 0 (null, false, nothing) whatever it
/// is asked.
class OneSlotAbsent {
public:
    static constexpr size_t kSlots = 149;

    OneSlotAbsent(IHostServices& services, size_t slot) : m_object(reinterpret_cast<void***>(&services)) {
        m_original = *m_object;
        std::copy_n(m_original, kSlots, m_slots.begin());
        m_slots[slot] = reinterpret_cast<void*>(Nothing);
        *m_object = m_slots.data();
    }
    ~OneSlotAbsent() { *m_object = m_original; }
    OneSlotAbsent(const OneSlotAbsent&) = delete;
    OneSlotAbsent& operator=(const OneSlotAbsent&) = delete;

private:
    static uintptr_t Nothing() { return 0; }  // the caller removes the arguments

    void*** m_object;
    void** m_original;
    std::array<void*, kSlots> m_slots = {};
};

/// A call without one file to work on, or with one that is there.
class PlainCall final : public ICustomCommandCall {
public:
    PlainCall(uint32_t id, std::wstring file) : m_id(id), m_file(std::move(file)) {}
    bool HasParameter(const char* name) override { return GetTextParameter(name) || GetSwitchParameter(name); }
    const wchar_t* GetTextParameter(const char* name) override {
        const std::string_view wanted = name;
        if (wanted == "FILE" || wanted == "LNKTRG") return m_file.c_str();
        if (wanted == "LNKSRC") return m_link.c_str();
        return wanted == "FIND" || wanted == "REPLACEWITH" ? L"b" : nullptr;
    }
    bool GetNumberParameter(const char*, uint32_t* value) override {
        *value = 1;
        return true;
    }
    uint32_t GetCommandId() override { return m_id; }
    bool GetSwitchParameter(const char* name) override { return std::string_view(name) == "SILENT"; }
    void SetResultCode(uint32_t) override {}
    void SetResultText(const wchar_t*) override {}

private:
    uint32_t m_id;
    std::wstring m_file;
    std::wstring m_link = m_file + L".lnk";
};

}  // namespace

TEST(HostWithoutOneService, IsServedByEveryCommandAllTheSame) {
    const InProcessHost process;
    const auto find = [&](const char* name) {
        return reinterpret_cast<void*>(GetProcAddress(process.Library(), name));
    };
    const auto create = reinterpret_cast<CreateFunction>(find("Create"));
    const auto end = reinterpret_cast<DeleteFunction>(find("Delete"));
    // What a contract has beside reserved slots; all of them, and those that give out objects above all.
    constexpr size_t kUsedSlots[] = {2,   4,   7,   15,  16,  32,  34,  35,  36,  42,  44,  45,  63, 65,
                                     111, 112, 113, 114, 115, 129, 130, 131, 133, 134, 138, 147, 148};
    constexpr uint32_t kCommands[] = {30000, 30001, 30002, 30003, 30005, 30020, 30101, 30102, 30103,     30110,
                                      30200, 30201, 30210, 30211, 30310, 20500, 31001, 5,     0xFFFFFFFF};
    for (const size_t slot : kUsedSlots) {
        SCOPED_TRACE("slot " + std::to_string(slot));
        const TemporaryFolder folder;
        folder.Write(L"a b.txt", "b\r\na\r\n");
        folder.Write(L"c.b64", "YWJj");
        QVHost::HostOptions options;
        options.answers = std::vector<std::wstring>(100, L"yes");
        ServicesOfHost host(QV_HOST_PROGRAM, options);
        QVHost::FileItem& item = host.Select(folder / L"a b.txt");
        host.Select(folder / L"c.b64");
        const OneSlotAbsent absent(host.Services(), slot);
        for (const uint32_t index : {0u, 2u}) {
            IPluginInterface* const extension = create(index);
            extension->SetHost(&host.Services());
            extension->Init(&host.Services());
            for (const uint32_t id : kCommands) extension->OnCommand(id, 0, 0);
            for (const uint32_t id : {30350u, 30351u, 30352u, 30353u, 30354u}) {
                PlainCall call(id, folder / L"a b.txt");
                extension->OnCustomCommand(&call);
            }
            extension->Shutdown();
            extension->OnCommand(30101, 0, 0);  // after its end
            EXPECT_TRUE(end(extension, index));
        }
        auto* const properties = reinterpret_cast<IFileProperties*>(create(1));
        properties->SetHost(&host.Services());
        properties->Init(&host.Services());
        wchar_t text[64] = {};
        for (const uint32_t id : {0u, 1u, 2u, 3u, 4u, 0xFFFFu})
            properties->GetValue(&item, text, 64, static_cast<uint16_t>(id));
        EXPECT_TRUE(end(reinterpret_cast<IPluginInterface*>(properties), 1));
        size_t count = 0;
        for (const std::wstring& name : folder.List()) count += folder.Read(name).empty() ? 0 : 1;
        EXPECT_GE(count, 2u) << "a file is lost";
    }
}

INSTANTIATE_TEST_SUITE_P(Every, HostileHost, testing::Values(Manner::Nothing, Manner::NullTexts, Manner::Nonsense),
                         [](const auto& instance) { return "Manner" + std::to_string(instance.index); });
