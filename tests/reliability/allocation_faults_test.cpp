// allocation_faults_test.cpp - memory runs out at points all over each command of the built library: the host lives on,
// nothing is thrown at it, and the files are as after any other failure.
#include <algorithm>
#include <atomic>
#include <functional>
#include <thread>

#include "reliability/failing_calls.h"
#include "reliability/failing_memory.h"
#include "reliability/writing_commands.h"
#include "support/dialog_driver.h"
#include "support/services_of_host.h"

using namespace QVTest;

namespace {

/// The visible dialog of this process, or null.
HWND OpenDialog() {
    const HWND dialog = FindOwnWindow(L"#32770");
    return IsWindowVisible(dialog) ? dialog : nullptr;
}

BOOL CALLBACK FillEmptyEdit(HWND control, LPARAM) {
    wchar_t name[16] = {};
    GetClassNameW(control, name, 16);
    if (std::wstring_view(name) == L"Edit" && IsWindowEnabled(control) && GetWindowTextLengthW(control) == 0)
        SendMessageW(control, EM_REPLACESEL, FALSE, reinterpret_cast<LPARAM>(L"b"));
    return TRUE;
}

/// Fills each dialog and presses its OK; what does not close by that is cancelled.
void AnswerDialogs(const std::stop_token& isOver) {
    while (!isOver.stop_requested()) {
        const HWND dialog = OpenDialog();
        if (!dialog) {
            Sleep(1);
            continue;
        }
        EnumChildWindows(dialog, FillEmptyEdit, 0);
        SendMessageTimeoutW(dialog, WM_COMMAND, IDOK, 0, SMTO_NORMAL, 1000, nullptr);
        SendMessageTimeoutW(dialog, WM_NULL, 0, 0, SMTO_NORMAL, 1000, nullptr);
        if (IsWindow(dialog) && OpenDialog() == dialog) PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
    }
}

/// The commands that write, and those that open a dialog first.
std::vector<WritingCommand> AllCommands() {
    std::vector<WritingCommand> commands = WritingCommands();
    for (const wchar_t* const id : {L"30010", L"30150", L"30151", L"30300", L"30311", L"30350"})
        commands.push_back({"dialog", {L"--answer", L"ok", L"command", id}, {{L"a.txt", "b\na\n"}}});
    return commands;
}

std::function<void()> g_begin;

}  // namespace

/// From the first few allocations, which are the command's own beginning, to the last in ever larger steps.
TEST(AllocationFaults, LoseNothingAndEndNobody) {
    if (FailingMemory::kLocksNeedMemory) GTEST_SKIP() << "the debug containers' locks would end the process";
    const InProcessHost host;
    FailingCalls calls{host.Library(), InProcessHost::Host()};
    FailingMemory memory(host.Library());
    const std::jthread person(AnswerDialogs);
    for (const WritingCommand& command : AllCommands()) {
        const bool hasDialog = command.name == std::string_view("dialog");
        Contents done;
        // The host looks at the files when the extensions are there, and only then memory begins to run out: making an
        // extension is the one thing that may throw for want of it, for that is the contract's.
        const auto run = [&](const WorkFolder& work, size_t number, bool isLasting) {
            g_begin = [&memory, number, isLasting] { memory.Arm(number, isLasting); };
            calls.Arm(work.Path(), 0xFFFFFFFF, 0);
            calls.OnFirstCall([] { g_begin(); });
            HostRun result = host.Run(work.Arguments());
            memory.Disarm();
            calls.Disarm();
            EXPECT_EQ(calls.OpenHandles(), 0u) << result.Said();
            return result;
        };
        {
            const WorkFolder work(command);
            ASSERT_EQ(run(work, FailingMemory::kNone, false).status, 0);
            done = work.Read();
        }
        bool hasFailed = true;
        for (size_t number = 0; hasFailed; number = FailingMemory::Next(number))
            for (const bool isLasting : {false, true}) {
                const WorkFolder work(command);
                const HostRun result = run(work, number, isLasting);
                hasFailed = memory.HasFailed();
                const Contents now = work.Read();
                SCOPED_TRACE(std::string(command.name) + ", allocation " + std::to_string(number) +
                             (isLasting ? " and all others\n" : "\n") + result.Said() + testing::PrintToString(now));
                for (const auto& [name, content] : command.files) {
                    const bool isThere = std::ranges::count(now, content, &Contents::value_type::second) > 0;
                    EXPECT_TRUE(isThere || IsSafe(name, content, done, now) || now == done) << "content is lost";
                }
                for (const auto& [name, content] : now)
                    EXPECT_TRUE(command.files.contains(name) || done.contains(name) || name.ends_with(L".bak"))
                        << "a file is left behind";
                EXPECT_TRUE(now == done || result.status != 0 || !result.Said().empty() || hasDialog)
                    << "nobody says that something is not done";
            }
    }
}

/// The calls of a host around the commands: beginning, columns, requests, end.
TEST(AllocationFaultsOfTheContract, EndNobody) {
    if (FailingMemory::kLocksNeedMemory) GTEST_SKIP() << "the debug containers' locks would end the process";
    using namespace Quorvane::SDK;
    const InProcessHost host;
    FailingMemory memory(host.Library());
    for (const uint32_t index : {0u, 1u, 2u})
        for (size_t number = 0, count = 1; number < count; number = FailingMemory::Next(number)) {
            ServicesOfHost services(QV_HOST_PROGRAM);
            QVHost::FileItem& item = services.Select(QV_HOST_PROGRAM);
            IPluginInterface* const extension = host.Create(index);
            memory.Arm(number, true);
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
            count = std::max(count, memory.Count());
            host.Delete(extension, index);
        }
}
