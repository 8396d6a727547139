// hostile_host_test.cpp - the built library in the hands of a host that gives it nothing, and of one in which one call
// goes wrong: nothing is lost, every object of the host is given back, and each call comes back.
#include <algorithm>
#include <array>
#include <functional>
#include <optional>
#include <span>

#include "reliability/host_calls.h"
#include "reliability/writing_commands.h"
#include "support/services_of_host.h"

namespace {

using namespace QVTest;
using namespace Quorvane::SDK;

/// An object of the contract that answers 0 in all slots; the caller removes the arguments.
template <class Interface>
class Nothing {
public:
    Nothing() { m_slots.fill(reinterpret_cast<void*>(Answer)); }
    Nothing(const Nothing&) = delete;
    Nothing& operator=(const Nothing&) = delete;

    Interface* Get() { return reinterpret_cast<Interface*>(&m_table); }

private:
    static uintptr_t Answer() { return 0; }

    std::array<void*, 149> m_slots;  // as many as the longest interface has
    void** m_table = m_slots.data();
};

TEST(HostThatGivesNothing, GetsAnAnswerToEveryCall) {
    const InProcessHost process;
    Nothing<IHostServices> host;
    Nothing<IRequestMessage> message;
    for (const uint32_t index : {0u, 2u}) {
        IPluginInterface* const extension = process.Create(index);
        extension->SetHost(host.Get());
        extension->Init(host.Get());
        extension->PreTranslateMessage(nullptr, 0xFFFFFFFF);
        // All ids but those that open a panel of the system; the end of the extension comes last.
        for (uint32_t id = 0; id <= 40000; ++id)
            if ((id < 6100 || id > 7100) && id != kCommandShutdown) extension->OnCommand(id, ~uintptr_t{0}, 1);
        extension->OnCustomCommand(nullptr);
        for (uint32_t id = 4990; id < 5010; ++id)
            for (IRequestMessage* const request : {message.Get(), static_cast<IRequestMessage*>(nullptr)})
                extension->OnElevatedRequest(id, request);
        extension->Shutdown();
        extension->OnCommand(30101, 0, 0);  // after its end
        extension->SetHost(nullptr);
        extension->Init(nullptr);
        extension->OnCommand(30101, 0, 0);
        process.Delete(extension, index);
    }
}

/// Runs `act` undisturbed, then with each of its calls throwing, and failing in one of the other ways, the next call in
/// the next one; in all of them when QV_EVERY_FAULT is set.
void Walk(HostCalls& calls, const std::function<void()>& act) {
    calls.Arm({});
    act();
    const bool isEvery = GetEnvironmentVariableW(L"QV_EVERY_FAULT", nullptr, 0) > 0;
    const uint32_t count = calls.Count();
    EXPECT_GT(count, 5u);
    for (uint32_t number = 0; number < count; ++number)
        for (uint32_t way = 0; way < 4; ++way) {
            if (!isEvery && way != 0 && way != 1 + number % 3) continue;
            calls.Arm(number, static_cast<HostFault>(way));
            act();
            calls.Disarm();
            EXPECT_EQ(calls.OpenObjects(), 0u) << calls.FailedCall();
        }
}

/// From the beginning of each extension to its end.
TEST(FaultsOfTheHost, AreBorneByEachExtension) {
    const InProcessHost process;
    ServicesOfHost host(QV_HOST_PROGRAM);
    QVHost::FileItem& item = host.Select(QV_HOST_PROGRAM);
    for (const uint32_t index : {0u, 1u, 2u}) {
        IPluginInterface* const watched = process.Create(index);
        HostCalls calls(watched, index);
        Walk(calls, [&] {
            IPluginInterface* const extension = process.Create(index);
            extension->SetHost(&host.Services());
            extension->Init(&host.Services());
            auto* const properties = reinterpret_cast<IFileProperties*>(extension);
            for (uint16_t id = 0; id < 8 && index == 1; ++id)
                for (const uint32_t capacity : {0u, 1u, 2u, 600u}) {
                    std::vector<wchar_t> text(capacity + 1, L'#');
                    const bool isKnown = properties->GetValue(&item, text.data(), capacity, id) != 0;
                    EXPECT_EQ(text[capacity], L'#') << "one unit beyond the buffer";
                    EXPECT_TRUE(!isKnown || std::ranges::count(text, L'\0') > 0) << "the text has an end";
                    properties->GetValue(nullptr, text.data(), capacity, id);
                    properties->GetValue(&item, nullptr, capacity, id);
                }
            if (index != 1) extension->Shutdown();
            process.Delete(extension, index);
        });
        process.Delete(watched, index);
    }
}

/// Those that write files, and others.
std::vector<WritingCommand> AllCommands() {
    std::vector<WritingCommand> commands = WritingCommands();
    for (const wchar_t* id : {L"30000", L"30001", L"30003", L"30020", L"30103", L"30110", L"30201", L"30310"})
        commands.push_back({"another", {L"--answer", L"yes", L"command", id}, {{L"a b.txt", "b"}, {L"c.xml", "<c/>"}}});
    return commands;
}

class FaultsOfTheHostInACommand : public testing::TestWithParam<WritingCommand> {
protected:
    /// The command over its files, which are in `folder`; a call over the first of them.
    void Run(IPluginInterface& extension, ServicesOfHost& host, const TemporaryFolder& folder) const {
        host.State().selection.clear();
        for (const auto& [name, content] : GetParam().files) {
            if (name.find(L"_2") != std::wstring::npos) continue;  // a target
            host.Select(folder / name);
            if (options.action != QVHost::Action::Call) continue;
            QVHost::CustomCommandCall call(*host.State().customCommands.Find(options.operands.front()));
            for (std::wstring argument : std::span(options.operands).subspan(1)) {
                if (const size_t place = argument.find(L"{}"); place != argument.npos)
                    argument.replace(place, 2, folder / name);
                call.SetArgument(argument);
            }
            extension.OnCustomCommand(&call);
            return;
        }
        extension.OnCommand(static_cast<uint32_t>(std::stoul(options.operands.front())), 0, 0);
    }

    QVHost::HostOptions options = QVHost::ParseCommandLine(GetParam().arguments);
};

TEST_P(FaultsOfTheHostInACommand, LoseNothingAndEndNobody) {
    const InProcessHost process;
    if (!options.answers.empty()) options.answers.resize(10000, options.answers.front());
    ServicesOfHost host(QV_HOST_PROGRAM, options);
    IPluginInterface* const extension = process.Create(0);
    HostCalls calls(extension, 0);
    extension->SetHost(&host.Services());
    extension->Init(&host.Services());
    std::optional<Contents> done;
    Walk(calls, [&] {
        const TemporaryFolder folder;
        for (const auto& [name, content] : GetParam().files) folder.Write(name, content);
        Run(*extension, host, folder);
        const Contents now = folder.ReadAll();
        if (!done) done = now;
        if (calls.FailedCall().starts_with("call")) return;  // another request than the one that was meant
        SCOPED_TRACE(calls.FailedCall());
        ExpectNothingLost(GetParam(), *done, now);
    });
    process.Delete(extension, 0);
}
INSTANTIATE_TEST_SUITE_P(Every, FaultsOfTheHostInACommand, testing::ValuesIn(AllCommands()));

}  // namespace
