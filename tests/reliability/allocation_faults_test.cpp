// allocation_faults_test.cpp - memory runs out at points all over each command of the built library: the host lives on,
// nothing is thrown at it, and the files are as after any other failure.
#include <algorithm>

#include "reliability/failing_calls.h"
#include "reliability/failing_memory.h"
#include "reliability/writing_commands.h"
#include "support/services_of_host.h"

using namespace QVTest;

namespace {

FailingMemory::Begin g_begin;

}  // namespace

/// From the first few allocations, which are the command's own beginning, to the last in ever larger steps.
TEST(AllocationFaults, LoseNothingAndEndNobody) {
    if (FailingMemory::kLocksNeedMemory) GTEST_SKIP() << "the debug containers' locks would end the process";
    const InProcessHost host;
    FailingCalls calls{host.Library(), InProcessHost::Host()};
    FailingMemory memory(host.Library());
    for (const WritingCommand& command : WritingCommands()) {
        // The host looks at the files when the extensions are there, and only then memory begins to run out: making an
        // extension is the one thing that may throw for want of it, for that is the contract's.
        const auto run = [&](const WorkFolder& work, const FailingMemory::Begin& begin) {
            g_begin = begin;
            calls.Arm(work.Path(), 0xFFFFFFFF, 0);
            calls.OnCall(0, [] { g_begin(); });
            HostRun result = host.Run(work.Arguments());
            memory.Disarm();
            calls.Disarm();
            EXPECT_EQ(calls.OpenHandles(), 0u) << result.Said();
            return result;
        };
        const WorkFolder undisturbed(command);
        ASSERT_EQ(run(undisturbed, [] {}).status, 0);
        const Contents done = undisturbed.Read();
        memory.Walk([&](const FailingMemory::Begin& begin) {
            const WorkFolder work(command);
            const HostRun result = run(work, begin);
            const Contents now = work.Read();
            SCOPED_TRACE(command.name + ("\n" + result.Said()));
            ExpectNothingLost(command, done, now);
            for (const auto& [name, content] : now)
                EXPECT_TRUE(command.files.contains(name) || done.contains(name) || name.ends_with(L".bak"))
                    << "a file is left over";
            EXPECT_TRUE(now == done || result.status != 0 || !result.Said().empty())
                << "nobody says that something is not done";
        });
    }
}

/// The calls of a host around the commands: beginning, columns, requests, end.
TEST(AllocationFaultsOfTheContract, EndNobody) {
    if (FailingMemory::kLocksNeedMemory) GTEST_SKIP() << "the debug containers' locks would end the process";
    using namespace Quorvane::SDK;
    const InProcessHost host;
    FailingMemory memory(host.Library());
    for (const uint32_t index : {0u, 1u, 2u})
        memory.Walk([&](const FailingMemory::Begin& begin) {
            ServicesOfHost services(QV_HOST_PROGRAM);
            QVHost::FileItem& item = services.Select(QV_HOST_PROGRAM);
            IPluginInterface* const extension = host.Create(index);
            begin();
            // The first operations are those of the columns too.
            extension->SetHost(&services.Services());
            extension->Init(&services.Services());
            if (index == 1) {
                wchar_t text[64] = {};
                for (uint16_t id = 0; id < 6; ++id)
                    reinterpret_cast<IFileProperties*>(extension)->GetValue(&item, text, 64, id);
            } else {
                extension->OnElevatedRequest(5000, nullptr);
                extension->Shutdown();
            }
            memory.Disarm();
            host.Delete(extension, index);
        });
}
