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
constexpr uint32_t kRequest = 7000;

enum CustomCommandId : uint32_t {
    kEcho = 41000,
    kAsk,
    kChoose,
    kEnter,
    kSettings,
    kRename,
    kElevate,
    kResult,
    kMisuse,
};

class TestExtension final : public IPluginInterface {
public:
    uint32_t Init(IHostServices* services) override;
    uint32_t GetType() override { return kTypeCommands; }
    uint32_t SetHost(IHostServices* services) override {
        m_services = services;
        return 1;
    }
    const char* GetId() override { return kId; }
    bool PreTranslateMessage(MSG*, uint32_t) override { return false; }
    uint32_t OnCommand(uint32_t id, uintptr_t first, uintptr_t second) override;
    uint32_t OnCustomCommand(ICustomCommandCall* call) override;
    uint32_t OnElevatedRequest(uint32_t requestId, IRequestMessage* message) override;
    uint32_t Shutdown() override {
        // As a window does that is closed with the host.
        m_services->GetSettings()->SetNumber(1, L"S", L"AtEnd", 1);
        return 0;
    }

private:
    template <class... Arguments>
    void Log(const wchar_t* format, Arguments... arguments) {
        m_services->Log(kLogLevel, LogKind::Success, format, arguments...);
    }
    uint32_t Echo(ICustomCommandCall& call);
    uint32_t Choose();
    uint32_t Enter();
    uint32_t ReadAndWriteSettings(ICustomCommandCall& call);
    void RenameByPath(const std::wstring& path);
    uint32_t Rename(ICustomCommandCall& call);
    uint32_t Elevate(ICustomCommandCall& call);
    uint32_t Misuse(ICustomCommandCall& call);

    IHostServices* m_services = nullptr;
};

uint32_t TestExtension::Init(IHostServices* services) {
    IMenuBuilder* const menus = services->GetMenuBuilder();
    ICommandFactory* const factory = services->GetCommandFactory();
    Menu* const root = menus->CreateRootMenu(1_m, 1, 0);
    Menu* const sub = menus->AddSubMenu(root, 2_m, 1, 1);
    menus->AddCommand(sub, factory->CreateCommand(kMenuCommand, 0x801, 3_m, 3_m, 0x0049004A, 0), 1, 0);
    ICustomCommandRegistry* const registry = services->GetCustomCommandRegistry("Test");
    if (!registry || registry->IsRegistered()) return 1;
    const auto add = [&](const char* name, uint32_t id) {
        return registry->AddCustomCommand(name, id, 0x100000, 2048);
    };
    ICustomCommand* const echo = add("Echo", kEcho);
    echo->SetDescription(services->GetText(1_c));
    echo->AddParameter("TEXT", ParameterFlags::Text | ParameterFlags::Required, services->GetText(2_c));
    echo->AddParameter("NUMBER", ParameterFlags::Number, L"a number");
    echo->AddParameter("FLAG", ParameterFlags::Switch, L"a switch");
    add("Ask", kAsk)->AddParameter("STYLE", ParameterFlags::Number | ParameterFlags::Required, L"style of the box");
    add("Choose", kChoose);
    add("Enter", kEnter);
    add("Settings", kSettings)->AddParameter("SET", ParameterFlags::Text, L"the new value");
    ICustomCommand* const rename = add("Rename", kRename);
    for (const char* name : {"FILE", "TO", "FILE2", "TO2"}) rename->AddParameter(name, ParameterFlags::Text, L"");
    ICustomCommand* const elevate = add("Elevate", kElevate);
    elevate->AddParameter("TEXT", ParameterFlags::Text, L"sent to the other process");
    elevate->AddParameter("REQUEST", ParameterFlags::Number, L"request id");
    add("Result", kResult)->AddParameter("CODE", ParameterFlags::Number, L"result code");
    add("Misuse", kMisuse)->AddParameter("FILE", ParameterFlags::Text, L"");
    registry->Commit(1);
    return 1;
}

uint32_t TestExtension::OnCommand(uint32_t id, uintptr_t, uintptr_t) {
    if (id == kCommandInNoMenu) return 1;
    if (id != kMenuCommand) return 0;
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

uint32_t TestExtension::OnCustomCommand(ICustomCommandCall* call) {
    switch (call->GetCommandId()) {
        case kEcho: return Echo(*call);
        case kAsk: {
            uint32_t style = 0;
            if (!call->GetNumberParameter("STYLE", &style)) return 0;
            Log(L"button %d", static_cast<int>(m_services->MessageBox(L"Really?\nSure?", L"Test", style)));
            return 1;
        }
        case kChoose: return Choose();
        case kEnter: return Enter();
        case kSettings: return ReadAndWriteSettings(*call);
        case kRename: return Rename(*call);
        case kElevate: return Elevate(*call);
        case kResult: {
            uint32_t code = 0;
            call->GetNumberParameter("CODE", &code);
            call->SetResultCode(code);
            call->SetResultText(L"that is it");
            return 1;
        }
        case kMisuse: return Misuse(*call);
        default: return 0;
    }
}

uint32_t TestExtension::Echo(ICustomCommandCall& call) {
    const wchar_t* const text = call.GetTextParameter("TEXT");
    if (!text) return 0;
    uint32_t number = 7;
    const bool hasNumber = call.GetNumberParameter("NUMBER", &number);
    Log(L"text <%s> number %I64d %s switch %s", text, static_cast<int64_t>(number), hasNumber ? L"given" : L"default",
        call.GetSwitchParameter("FLAG") ? L"on" : L"off");
    return 1;
}

uint32_t TestExtension::Choose() {
    const Owned<IChoiceList> choices(m_services->CreateChoiceList());
    for (const wchar_t* choice : {L"Replace", L"Replace All", L"Find Next", L"Cancel"}) choices->AddChoice(choice);
    ChoiceRequest request = {L"Replace here?", L"Find and Replace", choices.get(), 0};
    const bool isChosen = m_services->ShowChoiceDialog(&request);
    Log(L"%s %d", isChosen ? L"chosen" : L"cancelled", static_cast<int>(request.position));
    return 1;
}

uint32_t TestExtension::Enter() {
    wchar_t text[16] = L"proposed";
    const bool isEntered = m_services->ShowInputDialog(2_c, text, static_cast<uint32_t>(std::size(text)));
    Log(L"%s <%s>", isEntered ? L"entered" : L"cancelled", text);
    return 1;
}

uint32_t TestExtension::ReadAndWriteSettings(ICustomCommandCall& call) {
    ISettings* const settings = m_services->GetSettings();
    wchar_t text[64] = L"none";
    uint32_t number = 0;
    settings->GetString(1, L"Section", L"Text", text, static_cast<uint32_t>(std::size(text)));
    settings->GetNumber(1, L"Section", L"Number", &number);
    Log(L"text <%s> number %d", text, static_cast<int>(number));
    const wchar_t* const value = call.GetTextParameter("SET");
    if (!value) return 1;
    return settings->SetString(1, L"Section", L"Text", value) &&
           settings->SetNumber(1, L"Section", L"Number", number + 1);
}

/// As the window of the batch renamer does it: the host sees no item.
void TestExtension::RenameByPath(const std::wstring& path) {
    class Ignored final : public IRenameResultCallback {
        bool OnRenameStarting(uint32_t) override { return true; }
        bool OnRenameResult(uint32_t, uint32_t) override { return true; }
    } callback;
    const AcquiredService<IFileOperations> files(*m_services, ServiceNumber::FileOperations);
    const RenameRowInfo row = {0, 0, path.c_str(), L"another name.txt", nullptr};
    files->RenameRows(&row, 1, &callback);
}

uint32_t TestExtension::Rename(ICustomCommandCall& call) {
    const AcquiredService<IFileOperations> files(*m_services, ServiceNumber::FileOperations);
    IRenameBatch* const batch = files->CreateRenameBatch();
    const auto add = [&](const char* file, const char* to) {
        if (!call.HasParameter(file)) return;
        const Owned<IFileItem> item(files->CreateFileItem(call.GetTextParameter(file), 1));
        if (item) batch->AddRename(item.get(), call.GetTextParameter(to), 0);
    };
    add("FILE", "TO");
    add("FILE2", "TO2");
    const uint32_t error = files->CommitRenameBatch(batch, 0);
    files->EndRenameBatch(batch);
    Log(L"error %d", static_cast<int>(error));
    return 1;
}

uint32_t TestExtension::Elevate(ICustomCommandCall& call) {
    const AcquiredService<IElevatedChannel> channel(*m_services, ServiceNumber::ElevatedChannel);
    if (!channel || !channel->Connect()) {
        Log(L"no channel");
        return 0;
    }
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

/// Everything that a host must survive; ends with 1 when it did.
uint32_t TestExtension::Misuse(ICustomCommandCall& call) {
    IHostServices& host = *m_services;
    uint32_t foreign[64] = {};
    host.MessageBox(nullptr, nullptr, 0xFFFFFFFF);
    host.RunHostCommand(HostCommand::GetSelection, nullptr, 0, 0);
    host.RunHostCommand(12345, reinterpret_cast<IFileList*>(foreign), 0, 0);
    host.GetTextModule(nullptr);
    host.GetModuleText(60000, 0xFFFFFFFF);
    host.ShowInputDialog(1_c, nullptr, 10);
    host.ShowChoiceDialog(nullptr);
    host.GetCustomCommandRegistry(nullptr);
    host.AcquireService(99, 0, nullptr);
    host.ReleaseService(nullptr, 3000);
    host.ReleaseService(foreign, 3000);
    host.Release();
    host.Release();
    host.GetConfigurationFolder(nullptr, 100);
    ChoiceRequest request = {};
    request.choices = reinterpret_cast<IChoiceList*>(foreign);
    host.ShowChoiceDialog(&request);
    IMenuBuilder* const menus = host.GetMenuBuilder();
    menus->AddCommand(nullptr, nullptr, 1, 0);
    menus->AddSubMenu(reinterpret_cast<Menu*>(foreign), 1_m, 1, 1);
    menus->FindOrAddSubMenu(nullptr, nullptr, 0);
    ISettings* const settings = host.GetSettings();
    settings->GetString(1, nullptr, nullptr, nullptr, 0);
    settings->SetString(1, L"Section", L"Text", L"\xD800");
    settings->SetNumber(1, nullptr, L"Key", 1);
    const Owned<IFileList> list(host.CreateFileList());
    list->AddItem(nullptr);
    list->AddItem(reinterpret_cast<IFileItem*>(foreign));
    list->GetItem(1000);
    host.RunHostCommand(HostCommand::MarkFiles, list.get(), 77, 0);
    call.GetTextParameter(nullptr);
    call.GetNumberParameter("FILE", nullptr);
    host.Log(1, 10, nullptr);
    const AcquiredService<IFileOperations> files(host, ServiceNumber::FileOperations);
    files->Exists(nullptr);
    files->CreateFileItem(L"", 1);
    files->CommitRenameBatch(nullptr, 0);
    files->EndRenameBatch(reinterpret_cast<IRenameBatch*>(foreign));
    Log(L"%s", std::wstring(100000, L'x').c_str());
    return 1;
}

uint32_t TestExtension::OnElevatedRequest(uint32_t requestId, IRequestMessage* message) {
    if (requestId != kRequest) return 0;
    const Owned<IRequestReader> reader(message->CreateReader());
    uint32_t sender = 0;
    const wchar_t* text = nullptr;
    const bool isWhole = reader->Attach(message->GetData(), message->GetSize()) && reader->ReadNumber(&sender) &&
                         reader->ReadString(&text);
    if (!isWhole) {
        message->Reply(1, ERROR_INVALID_PARAMETER, 0, 0);
        return 1;
    }
    // A text of the sender comes back as the reply, so that the test sees that it arrived in another process.
    const bool isOtherProcess = sender != GetCurrentProcessId() && m_services->IsElevated();
    message->Reply(1, isOtherProcess ? 1000 + static_cast<uint32_t>(std::wcslen(text)) : 1, 0, 0);
    return 1;
}

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
