// hostile_host_test.cpp - the built library in the hands of a host that gives it nothing, or nonsense: null pointers,
// services that are not there, numbers out of range, texts without an end. Each call must come back.
#include <algorithm>
#include <cstdlib>

#include <gtest/gtest.h>

#include "reliability/in_process_host.h"
#include "sdk/extension_info.h"
#include "sdk/host_services.h"

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

INSTANTIATE_TEST_SUITE_P(Every, HostileHost, testing::Values(Manner::Nothing, Manner::NullTexts, Manner::Nonsense),
                         [](const auto& instance) { return "Manner" + std::to_string(instance.index); });
