// file_faults_test.cpp - every file call of every command that writes fails once: nothing may be lost, nothing left
// behind, the failure is told, and the next file is done all the same.
#include <algorithm>
#include <set>
#include <utility>

#include "reliability/failing_calls.h"
#include "reliability/writing_commands.h"
#include "support/replaced_imports.h"
#include "support/services_of_host.h"
#include "win32/handle.h"

namespace {

using namespace QVTest;

constexpr uint32_t kNoCall = 0xFFFFFFFF;

using Fault = std::pair<uint32_t, bool>;  // the error, and whether it lasts
constexpr Fault kFaults[] = {
    {ERROR_DISK_FULL, false},     {ERROR_ACCESS_DENIED, true},     {ERROR_SHARING_VIOLATION, false},
    {ERROR_DEVICE_REMOVED, true}, {ERROR_SHARING_VIOLATION, true}, {ERROR_ACCESS_DENIED, false},
    {ERROR_DISK_FULL, true},      {ERROR_DEVICE_REMOVED, false},
};

/// Each call fails in one of the ways, the next call in the next one; in all of them when QV_EVERY_FAULT is set, which
/// takes minutes. Short writes always.
std::vector<Fault> FaultsOfCall(uint32_t number) {
    std::vector<Fault> faults = {{0u, false}};
    static const bool isEvery = GetEnvironmentVariableW(L"QV_EVERY_FAULT", nullptr, 0) > 0;
    for (size_t at = 0; at < std::size(kFaults); ++at)
        if (isEvery || at == number % std::size(kFaults)) faults.push_back(kFaults[at]);
    return faults;
}

/// The part of `contents` that belongs to one file: all that begins with its letter.
Contents PartOf(const Contents& contents, wchar_t letter) {
    Contents part;
    for (const auto& entry : contents)
        if (entry.first.front() == letter) part.insert(entry);
    return part;
}

constexpr char kListing[] = "GetFileInformationByHandleEx";

bool Contains(const std::string& text, const std::wstring& part) {
    return text.find(std::string(part.begin(), part.end())) != std::string::npos;
}

/// One failure, and what came of it.
struct Failure {
    uint32_t error;
    bool isLasting;
    std::string call;
    std::string said;

    /// A file that cannot be seen is passed over: that is no failure of the command.
    bool MustBeTold() const { return call != "GetFileAttributesW"; }
    /// What cannot be removed stays.
    bool MayLeaveFiles() const { return isLasting && call == "DeleteFileW"; }
};

/// What is wrong with the files of one letter; "" when nothing is.
std::string FaultOf(const WritingCommand& command, const Contents& before, const Contents& done, const Contents& now,
                    const Failure& failure) {
    if (now == done) return {};
    for (const auto& [name, content] : before) {
        const bool isTarget = name.find(L"_2") != std::wstring::npos;
        if (!IsSafe(name, content, done, now)) return "content is lost";
        if (!isTarget && failure.MustBeTold() &&
            (!Contains(failure.said, name) || failure.said.find(std::to_string(failure.error)) == std::string::npos))
            return "the failure is not told";
    }
    for (const auto& [name, content] : now) {
        if (before.contains(name) || done.contains(name) || failure.MayLeaveFiles()) continue;
        const bool isBeside = command.keptBeside && name.find(command.keptBeside) != std::wstring::npos;
        const bool isBackup = name.ends_with(L".bak") && before.contains(name.substr(0, name.size() - 4));
        if (!(isBeside || isBackup) || !Contains(failure.said, isBeside ? name : name.substr(0, name.size() - 4)))
            return "something is left behind: " + std::string(name.begin(), name.end());
        if (isBackup && !Contains(failure.said, L".bak")) return "nobody says that the original is in its backup";
    }
    return {};
}

/// Another program adds a byte to its file, if it can open it.
bool SaveMore(const std::wstring& path) {
    const Win32::FileHandle other(CreateFileW(path.c_str(), FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                              nullptr, OPEN_EXISTING, 0, nullptr));
    DWORD added = 0;
    return other && WriteFile(other.Get(), "+", 1, &added, nullptr);
}

/// What is wrong with the order in which contents are written, brought to the disk, put in place, and backups deleted;
/// "" when nothing is.
std::string FaultOfOrder(const std::vector<std::string>& calls) {
    bool isOnDisk = true;
    bool isDeleted = false;
    for (const std::string& call : calls) {
        const bool isMove = call == "MoveFileExW" || call == "ReplaceFileW";
        if (isMove && !isOnDisk) return "a file is put in place before its content is on disk";
        if (isMove && isDeleted) return "a backup is deleted before the new file is in its place";
        if (call == "FlushFileBuffers") isOnDisk = true;
        if (call == "WriteFile") isOnDisk = isDeleted = false;
        if (call == "DeleteFileW") isDeleted = true;
    }
    return {};
}

}  // namespace

class FileFaults : public testing::TestWithParam<WritingCommand> {};

TEST_P(FileFaults, LoseNothingAndAreTold) {
    const WritingCommand& command = GetParam();
    const InProcessHost host;
    FailingCalls calls{host.Library(), InProcessHost::Host()};
    uint32_t count = 0;
    Contents done;
    {
        const WorkFolder work(command);
        calls.Arm(work.Path(), kNoCall, 0);
        const HostRun run = host.Run(work.Arguments());
        calls.Disarm();
        count = calls.Count();
        done = work.Read();
        ASSERT_EQ(run.status, 0) << run.Said();
        ASSERT_NE(done, command.files);
        ASSERT_EQ(calls.OpenHandles(), 0u);
    }
    for (uint32_t number = 0; number < count; ++number)
        for (const auto& [error, isLasting] : FaultsOfCall(number)) {
            const WorkFolder work(command);
            calls.Arm(work.Path(), number, error, isLasting);
            const HostRun run = host.Run(work.Arguments());
            calls.Disarm();
            if (error == 0 && calls.FailedCall() != "WriteFile") continue;
            const Contents now = work.Read();
            const Failure failure = {error, isLasting, calls.FailedCall(), run.Said()};
            SCOPED_TRACE("call " + std::to_string(number) + " of " + std::to_string(count) + ", " + failure.call +
                         " with " + std::to_string(error) + (isLasting ? " for good\n" : "\n") + run.Said() +
                         testing::PrintToString(now));
            EXPECT_EQ(calls.OpenHandles(), 0u);
            int notDone = 0;
            for (const wchar_t letter : {L'a', L'b'}) {
                const Contents part = PartOf(now, letter);
                const Contents donePart = PartOf(done, letter);
                EXPECT_EQ(FaultOf(command, PartOf(command.files, letter), donePart, part, failure), "");
                notDone += part != donePart;
            }
            // The host refuses a selection with a file that it cannot see, before any command runs, and renames nothing
            // in a folder that it cannot list.
            const bool isRefused = (!failure.MustBeTold() && run.status == 2) || failure.call == kListing;
            EXPECT_LE(notDone, isLasting || isRefused ? 2 : 1);
            EXPECT_TRUE(error != 0 || now == done);
        }
}

/// With each call for the first file in turn, another program saves that file. It cannot, or its save stays.
TEST_P(FileFaults, AnotherProgramsSaveStays) {
    const WritingCommand& command = GetParam();
    const InProcessHost host;
    FailingCalls calls{host.Library(), InProcessHost::Host()};
    const std::wstring name = command.files.begin()->first;
    const std::string before = command.files.begin()->second;
    Contents done;
    for (uint32_t number = 0, count = 1; number < count; ++number) {
        const WorkFolder work(command);
        bool isSaved = false;
        const std::wstring path = work.Path() + L"\\" + name;
        const auto rights = GiveAccessList(path, kNarrowList);
        calls.Arm(work.Path(), kNoCall, 0);
        if (number > 0) calls.OnCall(number, [&] { isSaved = SaveMore(path); });
        const HostRun run = host.Run(work.Arguments());
        calls.Disarm();
        count = calls.Count();
        const Contents now = work.Read();
        SCOPED_TRACE("call " + std::to_string(number) + " of " + testing::PrintToString(calls.Calls()) + run.Said() +
                     testing::PrintToString(now));
        EXPECT_EQ(FaultOfOrder(calls.Calls()), "");
        EXPECT_TRUE(!now.contains(name) || AccessListOf(path) == rights);
        if (number == 0) {
            done = now;
            if (!done.contains(name) || Holds(done, name, before)) return;  // not replaced
            continue;
        }
        EXPECT_EQ(PartOf(now, L'b'), PartOf(done, L'b'));
        if (!isSaved) {
            EXPECT_EQ(PartOf(now, L'a'), PartOf(done, L'a'));
        } else if (Holds(now, name, before + "+")) {
            EXPECT_EQ(PartOf(now, L'a').size(), 1U);
            const bool isTold =
                Contains(run.Said(), L"The file was changed") || Contains(run.Said(), L"Failed to load");
            EXPECT_TRUE(isTold && Contains(run.Said(), name));
        } else {
            EXPECT_TRUE(now.contains(name) && now.at(name).find('+') != std::string::npos);
        }
    }
}

QV_WITH_EVERY_WRITING_COMMAND(FileFaults);

/// A ring of two names, and a name of its own. Each call for the files fails in turn, then each for the journal.
TEST(FileFaultsOfRenaming, LoseNothingAreToldAndCanBeUndone) {
    const WritingCommand command = {
        "rename",
        {L"rename", L"--regex", L"--find", L"^1", L"--replace", L"x", L"--find", L"^2", L"--replace", L"1", L"--find",
         L"^x", L"--replace", L"2", L"--find", L"^a", L"--replace", L"new"},
        {{L"1.txt", "1"}, {L"2.txt", "2"}, {L"a.txt", "a"}}};
    const Contents done = {{L"1.txt", "2"}, {L"2.txt", "1"}, {L"new.txt", "a"}};
    const InProcessHost host;
    FailingCalls calls{InProcessHost::Host()};
    const auto fail = [&](uint32_t number, uint32_t error, bool isLasting, bool isJournal) {
        const WorkFolder work(command);
        calls.Arm(isJournal ? work.Settings() / L"Undo" : work.Path(), number, error, isLasting);
        const HostRun run = host.Run(work.Arguments());
        calls.Disarm();
        const Contents now = work.Read();
        SCOPED_TRACE("call " + std::to_string(number) + ", " + calls.FailedCall() + " with " + std::to_string(error) +
                     (isLasting ? " for good\n" : "\n") + run.Said() + testing::PrintToString(now));
        EXPECT_EQ(calls.OpenHandles(), 0u);
        std::multiset<std::string> contents;
        for (const auto& [name, content] : now) {
            contents.insert(content);
            EXPECT_TRUE(!name.starts_with(L"~") || Contains(run.Said(), name)) << "a file is stranded in silence";
        }
        EXPECT_EQ(contents, (std::multiset<std::string>{"1", "2", "a"}));
        EXPECT_TRUE(now == done || !isJournal || Contains(run.Said(), L"could not be recorded"));
        // A run that ends with its steps recorded is well recorded, also when the record cannot be made shorter.
        EXPECT_EQ(now == done, run.status == 0);
        const HostRun undone = host.Run({L"--config", work.Settings().Path(), L"undo", L"restore", L"last"});
        EXPECT_EQ(work.Read(), command.files) << undone.Said();
    };
    for (const bool isJournal : {false, true})
        for (uint32_t number = 0, count = 1; number < count; ++number)
            for (const auto& [error, isLasting] : FaultsOfCall(number)) {
                fail(number, error, isLasting, isJournal);
                count = std::max(count, calls.Count());
            }
}
