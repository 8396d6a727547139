// kills_test.cpp - the host is killed in the middle of each command that writes: every original is there under its own
// name or its backup's, and a rename can be undone.
#include <algorithm>
#include <random>

#include "host/elevated/elevated_channel.h"
#include "reliability/writing_commands.h"
#include "support/start_process.h"
#include "win32/handle.h"

namespace {

using namespace QVTest;

constexpr DWORD kPatience = 20000;  // milliseconds

int KillCount() {
    wchar_t text[16] = {};
    return GetEnvironmentVariableW(L"QV_KILLS", text, 16) > 0 ? _wtoi(text) : 1;
}

Win32::KernelHandle Start(std::vector<std::wstring> arguments) {
    arguments.insert(arguments.begin(), QV_HOST_PROGRAM);
    StartedProcess host =
        StartProcess(QV_HOST_PROGRAM, QVHost::QuoteArguments(arguments), {CREATE_NO_WINDOW | DETACHED_PROCESS});
    EXPECT_TRUE(host.process) << "the host does not start, error " << GetLastError();
    return std::move(host.process);
}

/// Runs a command to its end. The time that this took, in milliseconds.
DWORD RunToEnd(std::vector<std::wstring> arguments) {
    const ULONGLONG begin = GetTickCount64();
    const Win32::KernelHandle process = Start(std::move(arguments));
    EXPECT_EQ(WaitForSingleObject(process.Get(), kPatience), WAIT_OBJECT_0);
    return static_cast<DWORD>(GetTickCount64() - begin);
}

/// Long texts, so that a kill has something to meet.
WritingCommand Enlarged(WritingCommand command) {
    for (auto& [name, content] : command.files) {
        const bool isText = name.ends_with(L".txt");
        for (int doubled = 0; isText && doubled < 17; ++doubled) content += content;
    }
    return command;
}

size_t Random(size_t count) {
    static std::mt19937 random(std::random_device{}());
    return random() % count;
}

/// Starts the host and kills it at a moment of chance, which is given back: milliseconds, at most `time`. Whether it
/// was done by then is chance too, and right either way.
DWORD KillWithin(DWORD time, std::vector<std::wstring> arguments) {
    const Win32::KernelHandle process = Start(std::move(arguments));
    const auto moment = static_cast<DWORD>(Random(time + 1));
    WaitForSingleObject(process.Get(), moment);
    TerminateProcess(process.Get(), 1);
    EXPECT_EQ(WaitForSingleObject(process.Get(), kPatience), WAIT_OBJECT_0);
    return moment;
}

}  // namespace

class Kills : public testing::TestWithParam<WritingCommand> {};

TEST_P(Kills, LoseNothing) {
    const WritingCommand command = Enlarged(GetParam());
    const WorkFolder undisturbed(command);
    const DWORD time = RunToEnd(undisturbed.Arguments());
    const Contents done = undisturbed.Read();
    ASSERT_TRUE(done != command.files);
    for (int count = KillCount(); count > 0; --count) {
        const WorkFolder work(command);
        const DWORD moment = KillWithin(time, work.Arguments());
        const Contents now = work.Read();
        for (const auto& [name, content] : command.files) {
            const bool isTarget = name.find(L"_2") != std::wstring::npos;
            bool isSafe = isTarget || IsSafe(name, content, done, now);
            // A renamed file is under its new name.
            for (const auto& entry : now) isSafe = isSafe || (!done.contains(name) && entry.second == content);
            EXPECT_TRUE(isSafe) << "killed after " << moment << " of " << time << " ms: " << name << " is lost";
        }
        // Killed between two steps, a file is there as its backup alone: then the same run finds nothing to work on.
        const auto isThere = [&](const auto& file) { return now.contains(file.first) || !done.contains(file.first); };
        if (!std::ranges::all_of(command.files, isThere)) continue;
        RunToEnd(work.Arguments());
        for (const auto& entry : work.Read()) EXPECT_FALSE(entry.first.starts_with(L"~qv")) << "left after " << moment;
    }
}

QV_WITH_EVERY_WRITING_COMMAND(Kills);

/// Lets names change places by chance: in rings and shifts, and, where a file would keep its name, in its letters
/// alone.
std::string ShuffledNames(const Contents& files) {
    std::vector<std::wstring> names;
    for (const auto& entry : files) names.push_back(entry.first);
    for (size_t at = names.size(); at-- > 1;) std::swap(names[at], names[Random(at + 1)]);
    std::string list;
    auto own = files.begin();
    for (std::wstring& name : names) {
        if (name == (own++)->first)
            name.front() = L'N';
        else if (Random(8) == 0)
            name += L'x';
        list += std::string(name.begin(), name.end()) + '\n';
    }
    return list;
}

/// The run or its restores are killed, and restores meet a file that somebody holds; in any order.
TEST(KillsOfRenaming, OfRestoresAndLocksCanBeUndone) {
    DWORD time = 0;
    for (int count = KillCount(); count >= 0; --count) {
        WritingCommand command = {"rename", {L"rename", L"--names-from"}, {}};
        for (int number = 0; number < 40; ++number) {
            const std::wstring name = L"n" + std::to_wstring(number);
            command.files[name] = std::string(name.begin(), name.end());
        }
        const WorkFolder work(command);
        const std::string names = ShuffledNames(command.files);
        command.arguments.push_back(work.Settings().Write(L"names.txt", names));
        const std::vector<std::wstring> restore = {L"--config", work.Settings().Path(), L"undo", L"restore", L"last"};
        std::string history = names;
        if (time == 0) {
            time = RunToEnd(work.Arguments());  // to know how long one takes
            EXPECT_NE(work.Read(), command.files);
        } else {
            history += "killed after " + std::to_string(KillWithin(time, work.Arguments()));
        }
        for (size_t mishaps = Random(4); mishaps > 0; --mishaps) {
            if (Random(2) == 0) {
                history += ", restore killed after " + std::to_string(KillWithin(time, restore));
                continue;
            }
            const Contents now = work.Read();
            const std::wstring held = std::next(now.begin(), static_cast<ptrdiff_t>(Random(now.size())))->first;
            const Win32::FileHandle handle(CreateFileW((work.Path() + L"\\" + held).c_str(), GENERIC_READ,
                                                       FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
            RunToEnd(restore);
            history += ", restore met " + std::string(held.begin(), held.end());
        }
        // Without a session nothing was begun; with one everything comes back.
        RunToEnd(restore);
        EXPECT_EQ(work.Read(), command.files) << history;
    }
}
