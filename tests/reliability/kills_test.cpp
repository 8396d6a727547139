// kills_test.cpp - the host is killed in the middle of each command that writes: every original is there under its own
// name or its backup's, and a rename can be undone.
#include <functional>
#include <random>

#include "host/elevated/elevated_channel.h"
#include "reliability/writing_commands.h"
#include "win32/handle.h"

namespace {

using namespace QVTest;

constexpr DWORD kPatience = 20000;  // milliseconds

Win32::KernelHandle Start(std::vector<std::wstring> arguments) {
    arguments.insert(arguments.begin(), QV_HOST_PROGRAM);
    std::wstring line = QVHost::QuoteArguments(arguments);
    STARTUPINFOW start = {};
    start.cb = sizeof(start);
    PROCESS_INFORMATION started = {};
    if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, CREATE_NO_WINDOW | DETACHED_PROCESS, nullptr,
                        nullptr, &start, &started))
        ADD_FAILURE() << "the host does not start, error " << GetLastError();
    const Win32::KernelHandle thread(started.hThread);
    return Win32::KernelHandle(started.hProcess);
}

/// Runs a command to its end. The time that this took, in milliseconds.
DWORD RunToEnd(std::vector<std::wstring> arguments) {
    const ULONGLONG begin = GetTickCount64();
    const Win32::KernelHandle process = Start(std::move(arguments));
    EXPECT_EQ(WaitForSingleObject(process.Get(), kPatience), WAIT_OBJECT_0);
    return static_cast<DWORD>(GetTickCount64() - begin);
}

/// Runs the command undisturbed, then kills it QV_KILLS times (once when that is not set) at a moment of chance and
/// hands over what it left, with what it leaves when it is done. Whether it was done by then is chance too, and right
/// either way.
void Kill(const WritingCommand& command, const std::function<void(const WorkFolder&, const Contents& done)>& check) {
    static std::mt19937 random(std::random_device{}());
    const WorkFolder undisturbed(command);
    const DWORD time = RunToEnd(undisturbed.Arguments());
    const Contents done = undisturbed.Read();
    ASSERT_TRUE(done != command.files);
    wchar_t kills[16] = {};
    for (int count = GetEnvironmentVariableW(L"QV_KILLS", kills, 16) > 0 ? _wtoi(kills) : 1; count > 0; --count) {
        const WorkFolder work(command);
        const Win32::KernelHandle process = Start(work.Arguments());
        const DWORD moment = random() % (time + 1);
        SCOPED_TRACE("killed after " + std::to_string(moment) + " of " + std::to_string(time) + " ms");
        WaitForSingleObject(process.Get(), moment);
        TerminateProcess(process.Get(), 1);
        EXPECT_EQ(WaitForSingleObject(process.Get(), kPatience), WAIT_OBJECT_0);
        check(work, done);
    }
}

}  // namespace

class Kills : public testing::TestWithParam<WritingCommand> {};

TEST_P(Kills, LoseNothing) {
    WritingCommand command = GetParam();
    for (auto& [name, content] : command.files)  // long texts, so that a kill has something to meet
        for (int doubled = 0; name.ends_with(L".txt") && doubled < 17; ++doubled) content += content;
    Kill(command, [&](const WorkFolder& work, const Contents& done) {
        const Contents now = work.Read();
        for (const auto& [name, content] : command.files) {
            const bool isTarget = name.find(L"_2") != std::wstring::npos;
            bool isSafe = isTarget || IsSafe(name, content, done, now);
            // A renamed file is under its new name.
            for (const auto& entry : now) isSafe = isSafe || (!done.contains(name) && entry.second == content);
            EXPECT_TRUE(isSafe) << name << " is lost";
        }
        RunToEnd(work.Arguments());
        for (const auto& entry : work.Read()) EXPECT_FALSE(entry.first.starts_with(L"~qv")) << "left after a kill";
    });
}

QV_WITH_EVERY_WRITING_COMMAND(Kills);

TEST(KillsOfRenaming, CanBeUndone) {
    WritingCommand command = {"rename", {L"rename", L"--name", L"[C2,1,3]", L"--extension", L""}, {}};
    for (int number = 101; number <= 160; ++number)
        command.files[L"0" + std::to_wstring(number).substr(1)] = std::to_string(number);
    Kill(command, [&](const WorkFolder& work, const Contents&) {
        // Without a session nothing was begun; with one everything comes back.
        RunToEnd({L"--config", work.Settings().Path(), L"undo", L"restore", L"last"});
        EXPECT_EQ(work.Read(), command.files);
    });
}
