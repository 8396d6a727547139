// allocation_faults_test.cpp - memory runs out at each point of each command of the built library in turn: the host
// lives on, nothing is thrown at it, and the files are as after any other failure.
#include <algorithm>
#include <atomic>
#include <cstdlib>

#include <gtest/gtest.h>

#include "reliability/failing_calls.h"
#include "reliability/in_process_host.h"
#include "reliability/replaced_imports.h"
#include "reliability/writing_commands.h"
#include "sdk/extension_info.h"
#include "support/services_of_host.h"

namespace {

using namespace QVTest;

constexpr long kNone = -1;

// The replaced functions are plain ones, so what they know is global. Below zero nothing fails any more.
std::atomic<long> g_left = kNone;
std::atomic<long> g_count = 0;
std::atomic<bool> g_isLasting = false;
std::atomic<bool> g_isBegun = false;

bool FailsNow() {
    if (!g_isBegun) return false;
    ++g_count;
    const long left = g_left.load();
    if (left == kNone) return false;
    if (left > 0) {
        --g_left;
        return false;
    }
    if (!g_isLasting) g_left = kNone;
    return true;
}
void* FailingMalloc(size_t size) {
    return FailsNow() ? nullptr : std::malloc(size);
}
void* FailingCalloc(size_t count, size_t size) {
    return FailsNow() ? nullptr : std::calloc(count, size);
}
void* FailingRealloc(void* block, size_t size) {
    return FailsNow() ? nullptr : std::realloc(block, size);
}

}  // namespace

class AllocationFaults : public testing::TestWithParam<WritingCommand> {};

TEST_P(AllocationFaults, LoseNothingAndEndNobody) {
    const WritingCommand& command = GetParam();
    const InProcessHost host;
    const ReplacedImport imports[] = {{host.Library(), "malloc", reinterpret_cast<void*>(FailingMalloc)},
                                      {host.Library(), "calloc", reinterpret_cast<void*>(FailingCalloc)},
                                      {host.Library(), "realloc", reinterpret_cast<void*>(FailingRealloc)}};
    FailingCalls calls{host.Library(), InProcessHost::Host()};
    const auto runWith = [&](const WorkFolder& work, long number, bool isLasting) {
        g_count = 0;
        g_isLasting = isLasting;
        g_left = number;
        // The host looks at the files when the extensions are there. Making one is the one thing that may throw for
        // want of memory: that is the contract's.
        calls.Arm(work.Path(), 0xFFFFFFFF, 0);
        calls.OnFirstCall([] { g_isBegun = true; });
        const HostRun run = host.Run(work.Arguments());
        g_isBegun = false;
        calls.Disarm();
        return run;
    };
    const WorkFolder first(command);
    ASSERT_EQ(runWith(first, kNone, false).status, 0);
    const long count = g_count;
    const Contents done = first.Read();
    ASSERT_GT(count, 0);
    const bool isEvery = GetEnvironmentVariableW(L"QV_EVERY_FAULT", nullptr, 0) > 0;
    const long step = isEvery ? 1 : std::max(1L, count / 20);
    for (long number = 0; number < count; number += step)
        for (const bool isLasting : {false, true}) {
            const WorkFolder work(command);
            const HostRun run = runWith(work, number, isLasting);
            const Contents now = work.Read();
            SCOPED_TRACE("allocation " + std::to_string(number) + " of " + std::to_string(count) +
                         (isLasting ? " and all others\n" : "\n") + run.said + testing::PrintToString(now));
            EXPECT_EQ(calls.OpenHandles(), 0u);
            for (const auto& [name, content] : command.files) {
                const auto holds = [&](const std::wstring& at, const std::string& wanted) {
                    return now.contains(at) && now.at(at) == wanted;
                };
                const bool isDone = done.contains(name) ? holds(name, done.at(name)) : now == done;
                EXPECT_TRUE(isDone || holds(name, content) || holds(name + L".bak", content)) << "content is lost";
            }
            for (const auto& [name, content] : now) {
                const bool isBackup = name.ends_with(L".bak");
                EXPECT_TRUE(command.files.contains(name) || done.contains(name) || isBackup) << "a file is left behind";
            }
            if (now != done) {
                EXPECT_TRUE(run.status != 0 || !run.said.empty()) << "nobody says that something is not done";
            }
        }
}

/// The calls of a host around the commands: beginning, columns, requests, end.
TEST(AllocationFaultsOfTheContract, EndNobody) {
    using namespace Quorvane::SDK;
    const InProcessHost host;
    const ReplacedImport imports[] = {{host.Library(), "malloc", reinterpret_cast<void*>(FailingMalloc)},
                                      {host.Library(), "calloc", reinterpret_cast<void*>(FailingCalloc)},
                                      {host.Library(), "realloc", reinterpret_cast<void*>(FailingRealloc)}};
    const auto find = [&](const char* name) { return reinterpret_cast<void*>(GetProcAddress(host.Library(), name)); };
    const auto create = reinterpret_cast<CreateFunction>(find("Create"));
    const auto end = reinterpret_cast<DeleteFunction>(find("Delete"));
    const WorkFolder work(WritingCommands().front());
    for (const uint32_t index : {0u, 1u, 2u}) {
        long count = 1;
        for (long number = 0; number < count; ++number)
            for (const bool isLasting : {false, true}) {
                ServicesOfHost services(QV_HOST_PROGRAM);
                QVHost::FileItem& item = services.Select(work.Path() + L"\\a.txt");
                IPluginInterface* const extension = create(index);
                auto* const properties = index == 1 ? reinterpret_cast<IFileProperties*>(extension) : nullptr;
                g_count = 0;
                g_isLasting = isLasting;
                g_left = number;
                g_isBegun = true;
                if (properties) {
                    properties->SetHost(&services.Services());
                    properties->Init(&services.Services());
                    wchar_t text[64] = {};
                    for (uint16_t id = 0; id < 6; ++id) properties->GetValue(&item, text, 64, id);
                    properties->ClearCache();
                } else {
                    extension->SetHost(&services.Services());
                    extension->Init(&services.Services());
                    extension->OnElevatedRequest(5000, nullptr);
                    extension->Shutdown();
                }
                g_isBegun = false;
                count = std::max(count, g_count.load());
                EXPECT_TRUE(end(extension, index));
            }
    }
}

INSTANTIATE_TEST_SUITE_P(Every, AllocationFaults, testing::ValuesIn(WritingCommands()),
                         [](const auto& instance) { return "Command" + std::to_string(instance.index); });
