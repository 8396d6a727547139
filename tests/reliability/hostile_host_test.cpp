// hostile_host_test.cpp - the built library in the hands of a host that gives it nothing, and of one in which one call
// goes wrong: nothing is lost, every object of the host is given back, and each call comes back.
#include <algorithm>
#include <optional>
#include <span>

#include "reliability/host_calls.h"
#include "reliability/writing_commands.h"
#include "support/services_of_host.h"

namespace {

using namespace QVTest;
using namespace Quorvane::SDK;

TEST(HostThatGivesNothing, GetsAnAnswerToEveryCall) {
    const InProcessHost process;
    auto* const host = static_cast<IHostServices*>(HostCalls::Nothing());
    for (const uint32_t index : {0u, 2u}) {
        IPluginInterface* const extension = process.Create(index);
        extension->SetHost(host);
        extension->Init(host);
        extension->PreTranslateMessage(nullptr, 0xFFFFFFFF);
        // All ids but those that open a panel of the system; the end of the extension comes last.
        for (uint32_t id = 0; id <= 40000; ++id)
            if ((id < 6100 || id > 7100) && id != kCommandShutdown) extension->OnCommand(id, ~uintptr_t{0}, 1);
        extension->OnCustomCommand(nullptr);
        for (uint32_t id = 4990; id < 5010; ++id)
            for (void* const request : {HostCalls::Nothing(), static_cast<void*>(nullptr)})
                extension->OnElevatedRequest(id, static_cast<IRequestMessage*>(request));
        extension->Shutdown();
        extension->OnCommand(30101, 0, 0);  // after its end
        extension->SetHost(nullptr);
        extension->Init(nullptr);
        extension->OnCommand(30101, 0, 0);
        process.Delete(extension, index);
    }
}

/// From the beginning of each extension to its end.
TEST(FaultsOfTheHost, AreBorneByEachExtension) {
    const InProcessHost process;
    ServicesOfHost host(QV_HOST_PROGRAM);
    QVHost::FileItem& item = host.Select(QV_HOST_PROGRAM);
    const HostCalls calls(&host.Services());
    HostCalls::Watch(&item);
    for (const uint32_t index : {0u, 1u, 2u})
        HostCalls::Walk([&] {
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
}

/// Those that write files, and others.
std::vector<WritingCommand> AllCommands() {
    std::vector<WritingCommand> commands = WritingCommands();
    for (const wchar_t* id : {L"30000", L"30001", L"30003", L"30020", L"30103", L"30110", L"30201", L"30310"})
        commands.push_back({"another", {L"--answer", L"yes", L"command", id}, {{L"a b.txt", "b"}, {L"c.xml", "<c/>"}}});
    return commands;
}

/// What gives an object of the host that a command cannot do without: XML service, services, list, batch of renames.
constexpr std::string_view kObjects[] = {"HostServices 42", "HostServices 63", "HostServices 129", "FileOperations 64"};

/// Done by the host's own words: a command over all files; a call over the first of them.
void Act(const QVHost::HostOptions& options, IPluginInterface& extension, QVHost::HostState& host) {
    if (options.action != QVHost::Action::Call) {
        extension.OnCommand(static_cast<uint32_t>(std::stoul(options.operands.front())), 0, 0);
        return;
    }
    QVHost::CustomCommandCall call(*host.customCommands.Find(options.operands.front()));
    for (std::wstring argument : std::span(options.operands).subspan(1)) {
        if (const size_t place = argument.find(L"{}"); place != argument.npos)
            argument.replace(place, 2, host.selection.front()->Path());
        call.SetArgument(argument);
    }
    HostCalls::Watch(&call);
    extension.OnCustomCommand(&call);
}

class FaultsOfTheHostInACommand : public testing::TestWithParam<WritingCommand> {};

TEST_P(FaultsOfTheHostInACommand, LoseNothingAndEndNobody) {
    const InProcessHost process;
    QVHost::HostOptions options = QVHost::ParseCommandLine(GetParam().arguments);
    if (!options.answers.empty()) options.answers.resize(10000, options.answers.front());
    ServicesOfHost host(QV_HOST_PROGRAM, options);
    IPluginInterface* const extension = process.Create(0);
    const HostCalls calls(&host.Services());
    extension->SetHost(&host.Services());
    extension->Init(&host.Services());
    std::optional<Contents> done;
    HostCalls::Walk([&] {
        const TemporaryFolder folder;
        host.State().selection.clear();
        for (const auto& [name, content] : GetParam().files) {
            folder.Write(name, content);
            if (name.find(L"_2") == std::wstring::npos) host.Select(folder / name);  // else a target
        }
        const size_t saidBefore = host.Log().size();
        Act(options, *extension, host.State());
        const Contents now = folder.ReadAll();
        if (!done) done = now;
        const std::string failed = HostCalls::FailedCall();
        if (failed.starts_with("CustomCommandCall")) return;  // another request than the one that was meant
        SCOPED_TRACE(failed);
        // What the host did not give it is told of; a call has its result code.
        const bool isMissing = std::ranges::count(kObjects, failed) > 0 && !HostCalls::HasGivenNonsense();
        const bool isCommand = options.action != QVHost::Action::Call;
        EXPECT_TRUE(now == *done || !isMissing || !isCommand || host.Log().size() > saidBefore);
        ExpectNothingLost(GetParam(), *done, now);
    });
    process.Delete(extension, 0);
}
INSTANTIATE_TEST_SUITE_P(Every, FaultsOfTheHostInACommand, testing::ValuesIn(AllCommands()));

}  // namespace
