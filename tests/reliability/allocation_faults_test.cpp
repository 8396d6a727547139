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
#include "support/own_window.h"
#include "support/services_of_host.h"

using namespace QVTest;

namespace {

/// The host and the library, where memory runs out at a chosen allocation of a command.
class HostWithoutMemory {
public:
    /// The host looks at the files when the extensions are there, and only then memory begins to run out: making an
    /// extension is the one thing that may throw for want of it, for that is the contract's.
    HostRun Run(const WorkFolder& work, size_t number, bool isLasting) {
        static std::function<void()> begin;
        begin = [this, number, isLasting] { memory.Arm(number, isLasting); };
        m_calls.Arm(work.Path(), 0xFFFFFFFF, 0);
        m_calls.OnFirstCall([] { begin(); });
        const HostRun run = m_host.Run(work.Arguments());
        memory.Disarm();
        m_calls.Disarm();
        EXPECT_EQ(m_calls.OpenHandles(), 0u) << run.Said();
        return run;
    }

private:
    const InProcessHost m_host;
    FailingCalls m_calls{m_host.Library(), InProcessHost::Host()};

public:
    FailingMemory memory{m_host.Library()};
};

}  // namespace

class AllocationFaults : public testing::TestWithParam<WritingCommand> {};

TEST_P(AllocationFaults, LoseNothingAndEndNobody) {
    if (FailingMemory::kLocksNeedMemory) GTEST_SKIP() << "the debug containers' locks would end the process";
    const WritingCommand& command = GetParam();
    HostWithoutMemory host;
    const WorkFolder first(command);
    ASSERT_EQ(host.Run(first, FailingMemory::kNone, false).status, 0);
    const size_t count = host.memory.Count();
    const Contents done = first.Read();
    ASSERT_GT(count, 0u);
    const size_t step = FailingMemory::IsEvery() ? 1 : std::max<size_t>(1, count / 20);
    for (size_t number = 0; number < count; number += step)
        for (const bool isLasting : {false, true}) {
            const WorkFolder work(command);
            const HostRun run = host.Run(work, number, isLasting);
            const Contents now = work.Read();
            SCOPED_TRACE("allocation " + std::to_string(number) + " of " + std::to_string(count) +
                         (isLasting ? " and all others\n" : "\n") + run.Said() + testing::PrintToString(now));
            for (const auto& [name, content] : command.files)
                EXPECT_TRUE(IsSafe(name, content, done, now) || now == done) << "content is lost";
            for (const auto& [name, content] : now)
                EXPECT_TRUE(command.files.contains(name) || done.contains(name) || name.ends_with(L".bak"))
                    << "a file is left behind";
            EXPECT_TRUE(now == done || run.status != 0 || !run.Said().empty())
                << "nobody says that something is not done";
        }
}

QV_WITH_EVERY_WRITING_COMMAND(AllocationFaults);

/// The calls of a host around the commands: beginning, columns, requests, end.
TEST(AllocationFaultsOfTheContract, EndNobody) {
    using namespace Quorvane::SDK;
    const InProcessHost host;
    FailingMemory memory(host.Library());
    const WorkFolder work(WritingCommands().front());
    for (const uint32_t index : {0u, 1u, 2u}) {
        size_t count = 1;
        for (size_t number = 0; number < count; ++number)
            for (const bool isLasting : {false, true}) {
                ServicesOfHost services(QV_HOST_PROGRAM);
                QVHost::FileItem& item = services.Select(work.Path() + L"\\a.txt");
                IPluginInterface* const extension = host.Create(index);
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
                host.Delete(extension, index);
            }
    }
}

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
void AnswerDialogs(const std::atomic<bool>& isOver) {
    while (!isOver) {
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

}  // namespace

/// Opened, filled and closed by OK, with one point of it all without memory.
TEST(AllocationFaultsOfDialogs, EndNobody) {
    if (FailingMemory::kLocksNeedMemory) GTEST_SKIP() << "the debug containers' locks would end the process";
    HostWithoutMemory host;
    for (const wchar_t* const id : {L"30010", L"30150", L"30151", L"30300", L"30311", L"30350"}) {
        const WritingCommand command = {"dialog", {L"--answer", L"ok", L"command", id}, {{L"a.txt", "b\na\n"}}};
        for (const bool isLasting : {false, true})
            for (size_t number = 0; number == 0 || host.memory.HasFailed();
                 number += FailingMemory::IsEvery() ? 1 : 1 + number / 2) {
                const WorkFolder work(command);
                std::atomic<bool> isOver = false;
                std::thread person([&] { AnswerDialogs(isOver); });
                const HostRun run = host.Run(work, number, isLasting);
                isOver = true;
                person.join();
                const Contents now = work.Read();
                const bool isThere = std::ranges::any_of(now, [](const auto& file) { return file.second == "b\na\n"; });
                EXPECT_TRUE(isThere || now.size() == 1) << run.Said() << testing::PrintToString(now);
            }
    }
}
