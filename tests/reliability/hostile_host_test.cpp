// hostile_host_test.cpp - the built library in the hands of a host that gives it nothing, or nonsense: null pointers,
// services that are not there, numbers out of range, texts without an end. Each call must come back.
#include <algorithm>
#include <array>

#include "sdk/host_services.h"
#include "support/replaced_imports.h"
#include "support/services_of_host.h"

namespace {

using namespace QVTest;
using namespace Quorvane::SDK;

constexpr size_t kSlots = 149;  // of the host's services, the longest interface

// What stands in odd slots. The caller removes the arguments, so one function serves slots of all kinds.
uintptr_t Nothing() {
    return 0;
}
uintptr_t Most() {
    return 0xFFFFFFFF;
}
/// Fills the whole buffer and leaves no closing zero.
uintptr_t Overfill(void*, wchar_t* buffer, uint32_t capacity) {
    if (buffer) std::fill_n(buffer, capacity, L'x');
    return 0xFFFFFFFF;
}
bool OverfillInput(void*, TextId, wchar_t* buffer, uint32_t capacity) {
    return Overfill(nullptr, buffer, capacity) != 0;
}
bool ChooseOutOfRange(void*, ChoiceRequest* request) {
    request->position = 0xFFFFFFFF;
    return true;
}
bool OddProperty(void*, uint16_t, uint16_t, StoredPropertyValue* value) {
    value->status = -1;
    std::ranges::fill(value->text, L'x');
    return true;
}
const wchar_t* OddText() {
    return L"%s%s%d%";
}

struct Slot {
    template <class Function>
    Slot(size_t number, Function* content) : at(number), function(reinterpret_cast<void*>(content)) {}

    size_t at;
    void* function;
};

/// An object of the contract whose slots answer 0 (null, false, nothing), but for some.
template <class Interface>
class OddObject {
public:
    OddObject(std::initializer_list<Slot> slots) {
        m_slots.fill(reinterpret_cast<void*>(Nothing));
        for (const Slot& slot : slots) m_slots[slot.at] = slot.function;
    }
    OddObject(const OddObject&) = delete;
    OddObject& operator=(const OddObject&) = delete;

    Interface* Get() { return reinterpret_cast<Interface*>(&m_table); }

private:
    std::array<void*, kSlots> m_slots;
    void** m_table = m_slots.data();
};

IFileItem* OddItem() {
    static OddObject<IFileItem> item = {{0, Overfill}, {2, Overfill},     {3, Overfill}, {9, Most},
                                        {11, Most},    {10, OddProperty}, {35, Most}};
    return item.Get();
}

IFileItem* OneItem(void*, uint32_t index) {
    return index == 0 ? OddItem() : nullptr;
}

/// Says that it has all the items that can be counted, and has one.
IFileList* OddList() {
    static OddObject<IFileList> list = {{3, Most}, {4, OneItem}};
    return list.Get();
}

/// A call with a file that is there, or with nonsense. It is silent, for there is nobody to close a dialog.
class Call final : public ICustomCommandCall {
public:
    Call(uint32_t id, std::wstring file) : m_id(id), m_file(std::move(file)) {}
    bool HasParameter(const char* name) override { return GetTextParameter(name) || GetSwitchParameter(name); }
    const wchar_t* GetTextParameter(const char* name) override {
        const std::string_view wanted = name;
        if (m_file.empty()) return L"\x1?*|<\"";
        if (wanted == "FILE" || wanted == "LNKTRG") return m_file.c_str();
        if (wanted == "LNKSRC") return m_link.c_str();
        return wanted == "FIND" || wanted == "REPLACEWITH" ? L"b" : nullptr;
    }
    bool GetNumberParameter(const char*, uint32_t* value) override {
        *value = m_file.empty() ? 0xFFFFFFFF : 1;
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

/// Both extensions with commands, from their making to their end. The message may be null.
void UseExtensions(const InProcessHost& process, IHostServices* host, const std::vector<uint32_t>& commands,
                   const std::vector<std::wstring>& files, IRequestMessage* message) {
    for (const uint32_t index : {0u, 2u}) {
        IPluginInterface* const extension = process.Create(index);
        ASSERT_NE(extension, nullptr);
        extension->SetHost(host);
        extension->Init(host);
        extension->PreTranslateMessage(nullptr, 0xFFFFFFFF);
        for (const uint32_t id : commands) extension->OnCommand(id, ~uintptr_t{0}, 1);
        for (const std::wstring& file : files)
            for (const uint32_t id : {0u, 30350u, 30351u, 30352u, 30353u, 30354u, 0xFFFFFFFFu}) {
                Call call(id, file);
                extension->OnCustomCommand(&call);
            }
        for (uint32_t id = 4990; id < 5010; ++id) extension->OnElevatedRequest(id, message);
        extension->OnCustomCommand(nullptr);
        extension->Shutdown();
        extension->OnCommand(30101, 0, 0);  // after its end
        extension->SetHost(nullptr);
        extension->Init(nullptr);
        extension->OnCommand(30101, 0, 0);
        extension->Shutdown();
        process.Delete(extension, index);
    }
}

void ExpectFailure(void*, uint32_t, uint32_t result) {
    EXPECT_NE(result, 0u);
}

}  // namespace

TEST(HostThatGivesNothing, GetsAnAnswerToEveryCall) {
    const InProcessHost process;
    OddObject<IHostServices> host = {};
    OddObject<IRequestMessage> message = {{2, Most}, {3, ExpectFailure}};  // its size, and the reply
    // All ids but those that open a panel of the system; the end of the extension comes last.
    std::vector<uint32_t> commands;
    for (uint32_t id = 0; id <= 40000; ++id)
        if ((id < 6100 || id > 7100) && id != kCommandShutdown) commands.push_back(id);
    UseExtensions(process, host.Get(), commands, {L""}, message.Get());
    UseExtensions(process, host.Get(), {}, {}, nullptr);
}

TEST(OddItems, GetNoMoreTextThanTheirBuffersHold) {
    const InProcessHost process;
    ServicesOfHost host(QV_HOST_PROGRAM);
    QVHost::FileItem& item = host.Select(QV_HOST_PROGRAM);
    IFileProperties* const properties = process.CreateProperties();
    properties->SetHost(&host.Services());
    properties->Init(&host.Services());
    for (uint16_t id = 0; id < 8; ++id)
        for (const uint32_t capacity : {0u, 1u, 2u, 600u})
            for (IFileItem* const asked : {OddItem(), static_cast<IFileItem*>(&item)}) {
                std::vector<wchar_t> text(capacity + 1, L'#');
                const bool isKnown = properties->GetValue(asked, text.data(), capacity, id) != 0;
                EXPECT_EQ(text[capacity], L'#') << "one unit beyond the buffer";
                EXPECT_TRUE(!isKnown || std::ranges::count(text, L'\0') > 0) << "the text has an end";
                properties->GetValue(nullptr, text.data(), capacity, id);
                properties->GetValue(asked, nullptr, capacity, id);
            }
    properties->ClearCache();
    properties->SetHost(nullptr);
    wchar_t text[8] = {};
    properties->GetValue(&item, text, 8, 1);
    process.Delete(properties, 1);
}

TEST(HostWithOneOddSlot, IsServedByEveryCommandAllTheSame) {
    const InProcessHost process;
    std::vector<Slot> odd = {
        {4, Most},      {7, Most},      {15, OddText}, {16, OddText},        {32, Most},
        {45, Overfill}, {129, OddList}, {146, Most},   {147, OverfillInput}, {148, ChooseOutOfRange}};
    // What a contract has beside reserved slots; all of them, and those that give out objects above all.
    for (const size_t slot : {2,   4,   7,   15,  16,  32,  34,  35,  36,  42,  44,  45,  63, 65,
                              111, 112, 113, 114, 115, 129, 130, 131, 133, 134, 138, 147, 148})
        odd.emplace_back(slot, Nothing);
    const std::vector<uint32_t> commands = {30000, 30001, 30002, 30003, 30005, 30020, 30101, 30102, 30103, 30110,
                                            30200, 30201, 30210, 30211, 30310, 20500, 31001, 32000, 5,     0xFFFFFFFF};
    for (const Slot& slot : odd) {
        SCOPED_TRACE("slot " + std::to_string(slot.at));
        const TemporaryFolder folder;
        folder.Write(L"a b.txt", "b\r\na\r\n");
        folder.Write(L"c.b64", "YWJj");
        QVHost::HostOptions options;
        options.answers = std::vector<std::wstring>(100, L"yes");
        ServicesOfHost host(QV_HOST_PROGRAM, options);
        QVHost::FileItem& item = host.Select(folder / L"a b.txt");
        host.Select(folder / L"c.b64");
        const ReplacedFunction isOdd(*reinterpret_cast<void***>(&host.Services()) + slot.at, slot.function);
        UseExtensions(process, &host.Services(), commands, {folder / L"a b.txt", L""}, nullptr);
        IFileProperties* const properties = process.CreateProperties();
        properties->SetHost(&host.Services());
        properties->Init(&host.Services());
        wchar_t text[64] = {};
        for (uint16_t id = 0; id < 6; ++id) properties->GetValue(&item, text, 64, id);
        process.Delete(properties, 1);
        const std::vector<std::wstring> names = folder.List();
        EXPECT_GE(std::ranges::count_if(names, [&](const auto& name) { return !folder.Read(name).empty(); }), 2)
            << "a file is lost";
    }
}
