// allocation_faults_test.cpp - memory runs out at each point of each command of the built library in turn: the host
// lives on, nothing is thrown at it, and the files are as after any other failure.
#include <algorithm>
#include <atomic>
#include <functional>
#include <thread>

#include <gtest/gtest.h>

#include "reliability/failing_calls.h"
#include "reliability/failing_memory.h"
#include "reliability/in_process_host.h"
#include "reliability/writing_commands.h"
#include "sdk/extension_info.h"
#include "support/services_of_host.h"

using namespace QVTest;

class AllocationFaults : public testing::TestWithParam<WritingCommand> {};

TEST_P(AllocationFaults, LoseNothingAndEndNobody) {
    if (FailingMemory::kLocksNeedMemory) GTEST_SKIP() << "the debug containers' locks would end the process";
    const WritingCommand& command = GetParam();
    const InProcessHost host;
    FailingMemory memory(host.Library());
    FailingCalls calls{host.Library(), InProcessHost::Host()};
    const auto runWith = [&](const WorkFolder& work, size_t number, bool isLasting) {
        static std::function<void()> begin;
        begin = [&memory, number, isLasting] { memory.Arm(number, isLasting); };
        // The host looks at the files when the extensions are there. Making one is the one thing that may throw for
        // want of memory: that is the contract's.
        calls.Arm(work.Path(), 0xFFFFFFFF, 0);
        calls.OnFirstCall([] { begin(); });
        const HostRun run = host.Run(work.Arguments());
        memory.Disarm();
        calls.Disarm();
        return run;
    };
    const WorkFolder first(command);
    ASSERT_EQ(runWith(first, FailingMemory::kNone, false).status, 0);
    const size_t count = memory.Count();
    const Contents done = first.Read();
    ASSERT_GT(count, 0u);
    const size_t step = FailingMemory::IsEvery() ? 1 : std::max<size_t>(1, count / 20);
    for (size_t number = 0; number < count; number += step)
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
    FailingMemory memory(host.Library());
    const auto find = [&](const char* name) { return reinterpret_cast<void*>(GetProcAddress(host.Library(), name)); };
    const auto create = reinterpret_cast<CreateFunction>(find("Create"));
    const auto end = reinterpret_cast<DeleteFunction>(find("Delete"));
    const WorkFolder work(WritingCommands().front());
    for (const uint32_t index : {0u, 1u, 2u}) {
        size_t count = 1;
        for (size_t number = 0; number < count; ++number)
            for (const bool isLasting : {false, true}) {
                ServicesOfHost services(QV_HOST_PROGRAM);
                QVHost::FileItem& item = services.Select(work.Path() + L"\\a.txt");
                IPluginInterface* const extension = create(index);
                auto* const properties = index == 1 ? reinterpret_cast<IFileProperties*>(extension) : nullptr;
                memory.Arm(number, isLasting);
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
                memory.Disarm();
                count = std::max(count, memory.Count());
                EXPECT_TRUE(end(extension, index));
            }
    }
}

namespace {

/// What a thread's visible dialog is, or null.
HWND DialogOf(DWORD thread) {
    HWND found = nullptr;
    EnumThreadWindows(
        thread,
        [](HWND window, LPARAM result) -> BOOL {
            wchar_t name[16] = {};
            GetClassNameW(window, name, 16);
            if (std::wstring_view(name) != L"#32770" || !IsWindowVisible(window)) return TRUE;
            *reinterpret_cast<HWND*>(result) = window;
            return FALSE;
        },
        reinterpret_cast<LPARAM>(&found));
    return found;
}

BOOL CALLBACK FillEmptyEdit(HWND control, LPARAM) {
    wchar_t name[16] = {};
    GetClassNameW(control, name, 16);
    if (std::wstring_view(name) == L"Edit" && IsWindowEnabled(control) && GetWindowTextLengthW(control) == 0)
        SendMessageW(control, EM_REPLACESEL, FALSE, reinterpret_cast<LPARAM>(L"b"));
    return TRUE;
}

/// Fills each dialog of the thread and presses its OK; what does not close by that is cancelled.
void AnswerDialogs(DWORD thread, const std::atomic<bool>& isOver) {
    while (!isOver) {
        const HWND dialog = DialogOf(thread);
        if (!dialog) {
            Sleep(1);
            continue;
        }
        EnumChildWindows(dialog, FillEmptyEdit, 0);
        SendMessageTimeoutW(dialog, WM_COMMAND, IDOK, 0, SMTO_NORMAL, 1000, nullptr);
        SendMessageTimeoutW(dialog, WM_NULL, 0, 0, SMTO_NORMAL, 1000, nullptr);
        if (IsWindow(dialog) && DialogOf(thread) == dialog) PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
    }
}

}  // namespace

/// Opened, filled and closed by OK, with one point of it all without memory.
TEST(AllocationFaultsOfDialogs, EndNobody) {
    if (FailingMemory::kLocksNeedMemory) GTEST_SKIP() << "the debug containers' locks would end the process";
    const InProcessHost host;
    FailingMemory memory(host.Library());
    for (const wchar_t* const id : {L"30010", L"30150", L"30151", L"30300", L"30311", L"30350"}) {
        const WritingCommand command = {"dialog", {L"--answer", L"ok", L"command", id}, {{L"a.txt", "b\na\n"}}};
        for (const bool isLasting : {false, true}) {
            bool hasFailed = true;
            for (size_t number = 0; hasFailed; number += FailingMemory::IsEvery() ? 1 : 1 + number / 2) {
                const WorkFolder work(command);
                std::atomic<bool> isOver = false;
                std::thread person([thread = GetCurrentThreadId(), &isOver] { AnswerDialogs(thread, isOver); });
                FailingCalls calls{host.Library(), InProcessHost::Host()};
                static std::function<void()> begin;
                begin = [&] { memory.Arm(number, isLasting); };
                calls.Arm(work.Path(), 0xFFFFFFFF, 0);
                calls.OnFirstCall([] { begin(); });
                const HostRun run = host.Run(work.Arguments());
                hasFailed = memory.HasFailed();
                memory.Disarm();
                isOver = true;
                person.join();
                EXPECT_EQ(calls.OpenHandles(), 0u) << run.said;
                bool isThere = false;
                for (const auto& [name, content] : work.Read()) isThere = isThere || content == "b\na\n";
                const Contents now = work.Read();
                EXPECT_TRUE(isThere || now.size() == 1) << run.said << testing::PrintToString(now);
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Every, AllocationFaults, testing::ValuesIn(WritingCommands()),
                         [](const auto& instance) { return "Command" + std::to_string(instance.index); });
