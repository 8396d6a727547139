// test_extension.cpp - a library for the host's tests: its custom commands each use one service of the host and log
// what came back. It is faulty on purpose where a command says so.
#include <cstring>
#include <iterator>
#include <string>

#include "sdk/extension_info.h"
#include "sdk/host_services.h"
#include "sdk/owners.h"

namespace {

using namespace Quorvane::SDK;

constexpr char kId[] = "0123456789abcdef0123456789abcdef";
constexpr uint32_t kMenuCommand = 40000;
constexpr uint32_t kCommandInNoMenu = 40001;
constexpr uint32_t kFirstCustomCommand = 41000;
constexpr uint32_t kRequest = 7000;

class TestExtension final : public IPluginInterface {
public:
    uint32_t Init(IHostServices* services) override {
        IMenuBuilder* const menus = services->GetMenuBuilder();
        Menu* const sub = menus->AddSubMenu(menus->CreateRootMenu(1_m, 1, 0), 2_m, 1, 1);
        Command* const command =
            services->GetCommandFactory()->CreateCommand(kMenuCommand, 0x801, 3_m, 3_m, 0x0049004A, 0);
        menus->AddCommand(sub, command, 1, 0);
        ICustomCommandRegistry* const registry = services->GetCustomCommandRegistry("Test");
        if (!registry || registry->IsRegistered()) return 1;
        uint32_t id = kFirstCustomCommand;
        for (const CommandRow& row : kCustomCommands) {
            ICustomCommand* const added = registry->AddCustomCommand(row.name, id++, 0x100000, 2048);
            added->SetDescription(services->GetText(1_c));
            for (const ParameterRow& parameter : row.parameters)
                if (parameter.name) added->AddParameter(parameter.name, parameter.flags, services->GetText(2_c));
        }
        registry->Commit(1);
        return 1;
    }
    uint32_t GetType() override { return kTypeCommands; }
    uint32_t SetHost(IHostServices* services) override {
        m_services = services;
        return 1;
    }
    const char* GetId() override { return kId; }
    bool PreTranslateMessage(MSG*, uint32_t) override { return false; }
    uint32_t OnCommand(uint32_t id, uintptr_t, uintptr_t) override {
        if (id == kCommandInNoMenu) return 1;
        return id == kMenuCommand ? ShowAndMarkSelection() : 0;
    }
    uint32_t OnCustomCommand(ICustomCommandCall* call) override {
        const uint32_t row = call->GetCommandId() - kFirstCustomCommand;
        return row < std::size(kCustomCommands) ? (this->*kCustomCommands[row].run)(*call) : 0;
    }
    uint32_t OnElevatedRequest(uint32_t requestId, IRequestMessage* message) override {
        if (requestId != kRequest) return 0;
        const Owned<IRequestReader> reader(message->CreateReader());
        uint32_t sender = 0;
        const wchar_t* text = nullptr;
        const bool isWhole = reader->Attach(message->GetData(), message->GetSize()) && reader->ReadNumber(&sender) &&
                             reader->ReadString(&text);
        // The text's length comes back as the reply, so that the test sees that it arrived in another process.
        const bool isOtherProcess = sender != GetCurrentProcessId() && m_services->IsElevated();
        const uint32_t length = isOtherProcess && isWhole ? 1000 + static_cast<uint32_t>(std::wcslen(text)) : 1;
        message->Reply(1, isWhole ? length : ERROR_INVALID_PARAMETER, 0, 0);
        return 1;
    }
    uint32_t Shutdown() override {
        // As a window does that is closed with the host.
        m_services->GetSettings()->SetNumber(1, L"S", L"AtEnd", 1);
        return 0;
    }

private:
    struct ParameterRow {
        const char* name;
        uint32_t flags;
    };
    struct CommandRow {
        const char* name;
        uint32_t (TestExtension::*run)(ICustomCommandCall&);
        ParameterRow parameters[3];
    };
    static const CommandRow kCustomCommands[7];

    template <class... Arguments>
    uint32_t Log(const wchar_t* format, Arguments... arguments) {
        m_services->Log(kLogLevel, LogKind::Success, format, arguments...);
        return 1;
    }

    uint32_t ShowAndMarkSelection() {
        const Owned<IFileList> list = GatherSelection(*m_services, SelectionFlags::Files);
        const Owned<IFileList> done(m_services->CreateFileList());
        const Owned<IFileList> failed(m_services->CreateFileList());
        for (uint32_t at = 0; at < list->GetCount(); ++at) {
            IFileItem* const item = list->GetItem(at);
            wchar_t location[2048] = {};
            item->GetLocation(location, static_cast<uint32_t>(std::size(location)));
            if (NameOf(*item) == L"rename me.txt") RenameByPath(PathOf(*item));
            Log(L"%s in %s, attributes %d", NameOf(*item).c_str(), location, static_cast<int>(item->GetAttributes()));
            (NameOf(*item).starts_with(L"bad") ? failed : done)->AddItem(item);
        }
        m_services->RunHostCommand(HostCommand::MarkFiles, done.get(), MarkKind::Done, 0);
        m_services->RunHostCommand(HostCommand::MarkFiles, failed.get(), MarkKind::Failed, 0);
        return 1;
    }

    /// As the window of the batch renamer does it: the host sees no item.
    void RenameByPath(const std::wstring& path) {
        class Ignored final : public IRenameResultCallback {
            bool OnRenameStarting(uint32_t) override { return true; }
            bool OnRenameResult(uint32_t, uint32_t) override { return true; }
        } callback;
        const AcquiredService<IFileOperations> files(*m_services, ServiceNumber::FileOperations);
        const RenameRowInfo row = {0, 0, path.c_str(), L"another name.txt", nullptr};
        files->RenameRows(&row, 1, &callback);
    }

    uint32_t Echo(ICustomCommandCall& call) {
        const wchar_t* const text = call.GetTextParameter("TEXT");
        if (!text) return 0;
        uint32_t number = 7;
        const bool hasNumber = call.GetNumberParameter("NUMBER", &number);
        return Log(L"text <%s> number %I64d %s switch %s", text, static_cast<int64_t>(number),
                   hasNumber ? L"given" : L"default", call.GetSwitchParameter("FLAG") ? L"on" : L"off");
    }

    uint32_t Ask(ICustomCommandCall& call) {
        uint32_t style = 0;
        if (!call.GetNumberParameter("STYLE", &style)) return 0;
        return Log(L"button %d", static_cast<int>(m_services->MessageBox(L"Really?\nSure?", L"Test", style)));
    }

    uint32_t Choose(ICustomCommandCall&) {
        const Owned<IChoiceList> choices(m_services->CreateChoiceList());
        for (const wchar_t* choice : {L"Replace", L"Replace All", L"Find Next", L"Cancel"}) choices->AddChoice(choice);
        ChoiceRequest request = {L"Replace here?", L"Find and Replace", choices.get(), 0};
        const bool isChosen = m_services->ShowChoiceDialog(&request);
        return Log(L"%s %d", isChosen ? L"chosen" : L"cancelled", static_cast<int>(request.position));
    }

    uint32_t Enter(ICustomCommandCall&) {
        wchar_t text[16] = L"proposed";
        const bool isEntered = m_services->ShowInputDialog(2_c, text, static_cast<uint32_t>(std::size(text)));
        return Log(L"%s <%s>", isEntered ? L"entered" : L"cancelled", text);
    }

    uint32_t Elevate(ICustomCommandCall& call) {
        const AcquiredService<IElevatedChannel> channel(*m_services, ServiceNumber::ElevatedChannel);
        if (!channel || !channel->Connect()) return Log(L"no channel");
        uint32_t request = kRequest;
        call.GetNumberParameter("REQUEST", &request);
        const Owned<IRequestWriter> writer(channel->CreateWriter());
        writer->WriteNumber(GetCurrentProcessId());
        writer->WriteString(call.GetTextParameter("TEXT"));
        for (int time = 0; time < 2; ++time)
            Log(L"result %d", static_cast<int>(channel->Send(request, writer->GetData(), writer->GetSize())));
        channel->Close();
        return 1;
    }

    uint32_t Refuse(ICustomCommandCall& call) {
        uint32_t code = 0;
        call.GetNumberParameter("CODE", &code);
        call.SetResultCode(code);
        return 0;
    }

    /// Everything that a host must survive; ends with 1 when it did.
    uint32_t Misuse(ICustomCommandCall& call) {
        IHostServices& host = *m_services;
        uint32_t foreign[64] = {};
        host.MessageBox(nullptr, nullptr, 0xFFFFFFFF);
        host.RunHostCommand(HostCommand::GetSelection, nullptr, 0, 0);
        host.RunHostCommand(12345, reinterpret_cast<IFileList*>(foreign), 0, 0);
        host.GetModuleText(60000, 0xFFFFFFFF);
        host.ShowInputDialog(1_c, nullptr, 10);
        host.ShowChoiceDialog(nullptr);
        host.GetCustomCommandRegistry(nullptr);
        host.AcquireService(99, 0, nullptr);
        host.ReleaseService(foreign, 3000);
        host.Release();
        host.Release();
        ChoiceRequest request = {};
        request.choices = reinterpret_cast<IChoiceList*>(foreign);
        host.ShowChoiceDialog(&request);
        IMenuBuilder* const menus = host.GetMenuBuilder();
        menus->AddCommand(nullptr, nullptr, 1, 0);
        menus->AddSubMenu(reinterpret_cast<Menu*>(foreign), 1_m, 1, 1);
        ISettings* const settings = host.GetSettings();
        settings->GetString(1, nullptr, nullptr, nullptr, 0);
        settings->SetString(1, L"Section", L"Text", L"\xD800");
        const Owned<IFileList> list(host.CreateFileList());
        list->AddItem(nullptr);
        list->AddItem(reinterpret_cast<IFileItem*>(foreign));
        host.RunHostCommand(HostCommand::MarkFiles, list.get(), 77, 0);
        call.GetNumberParameter("FILE", nullptr);
        host.Log(1, 10, nullptr);
        const AcquiredService<IFileOperations> files(host, ServiceNumber::FileOperations);
        files->CreateFileItem(L"", 1);
        files->CommitRenameBatch(nullptr, 0);
        files->EndRenameBatch(reinterpret_cast<IRenameBatch*>(foreign));
        Log(L"%s", std::wstring(100000, L'x').c_str());
        return 1;
    }

    IHostServices* m_services = nullptr;
};

using namespace ParameterFlags;
constexpr TestExtension::CommandRow TestExtension::kCustomCommands[] = {
    {"Echo", &TestExtension::Echo, {{"TEXT", Text | Required}, {"NUMBER", Number}, {"FLAG", Switch}}},
    {"Ask", &TestExtension::Ask, {{"STYLE", Number | Required}}},
    {"Choose", &TestExtension::Choose, {}},
    {"Enter", &TestExtension::Enter, {}},
    {"Elevate", &TestExtension::Elevate, {{"TEXT", Text}, {"REQUEST", Number}}},
    {"Refuse", &TestExtension::Refuse, {{"CODE", Number}, {"TEXT", Text}}},
    {"Misuse", &TestExtension::Misuse, {{"FILE", Text}}},
};

}  // namespace

extern "C" {

__declspec(dllexport) bool GetExtensionInfo(uint32_t index, ExtensionInfo* record) {
    if (index != 0 || !record) return false;
    std::wcscpy(record->Name, L"Test Extension");
    std::wcscpy(record->ShortName, L"Test");
    std::memcpy(record->ExtensionId, kId, sizeof(kId));
    std::memcpy(record->Version, "1.2.3.4", sizeof("1.2.3.4"));
    record->TypeFlags = kTypeFlagsCommands;
    record->SdkVersion = kSdkVersion;
    return true;
}

__declspec(dllexport) IPluginInterface* Create(uint32_t index) {
    return index == 0 ? new TestExtension : nullptr;
}

__declspec(dllexport) bool Delete(IPluginInterface* object, uint32_t index) {
    if (!object || index != 0) return false;
    delete static_cast<TestExtension*>(object);
    return true;
}

}  // extern "C"
