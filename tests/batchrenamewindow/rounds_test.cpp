// rounds_test.cpp - a host that works all day: round by round it loads the library, runs every command, opens the
// window, renames, cancels, closes and unloads, and holds no more handles, threads and memory afterwards.
#include "batchrename/dialogs/batchrename_resource.h"
#include "batchrenamewindow/rename_window.h"
#include "reliability/writing_commands.h"
#include "support/host_run.h"
#include "support/replaced_imports.h"

#include <tlhelp32.h>
#include <winternl.h>

namespace {

using namespace QVTest;

/// What the static C++ runtime keeps of each library that was loaded and threw once: a handle of the thread that loaded
/// it, an event, two semaphores, and small blocks.
constexpr size_t kHandlesOfRuntime = 4;
constexpr size_t kBytesOfRuntime = 3000;
/// What it and the system keep of a round's threads and dialogs, in bytes.
constexpr size_t kBytesOfRound = 600;

struct Held {
    size_t handles = 0;
    size_t threads = 0;
    size_t bytes = 0;  // in blocks of all heaps
    DWORD place =
        0;  // the first that is free for values of threads, of 1,088: without one, the runtime ends the process
};

size_t CountHandles() {
    if (DWORD count = 0; GetProcessHandleCount(GetCurrentProcess(), &count) && count > 0) return count;
    // The test platform does not count them, but lists those of all processes: their number, then 24 bytes for each,
    // which begin with the process.
    std::vector<uint32_t> list(1 << 20);
    const auto bytes = static_cast<ULONG>(list.size() * sizeof(uint32_t));
    EXPECT_EQ(NtQuerySystemInformation(static_cast<SYSTEM_INFORMATION_CLASS>(16), list.data(), bytes, nullptr), 0);
    size_t count = 0;
    for (size_t entry = 0; entry < list[0]; ++entry) count += list[2 + 6 * entry] == GetCurrentProcessId();
    return count;
}

Held HeldNow() {
    Held held = {.handles = CountHandles(), .place = TlsAlloc()};
    TlsFree(held.place);
    const Win32::FileHandle threads(CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0));
    THREADENTRY32 thread = {};
    thread.dwSize = sizeof(thread);
    for (BOOL isThere = Thread32First(threads.Get(), &thread); isThere; isThere = Thread32Next(threads.Get(), &thread))
        held.threads += thread.th32OwnerProcessID == GetCurrentProcessId();
    HANDLE heaps[64] = {};
    const DWORD count = GetProcessHeaps(64, heaps);
    for (DWORD heap = 0; heap < count; ++heap)
        for (PROCESS_HEAP_ENTRY entry = {}; HeapWalk(heaps[heap], &entry);)
            if (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) held.bytes += entry.cbData;
    return held;
}

/// Returns how often the library was loaded.
size_t RunEveryCommand() {
    for (const WritingCommand& command : WritingCommands()) {
        const WorkFolder work(command);
        EXPECT_EQ(RunHost(QV_HOST_PROGRAM, work.Arguments()).status, 0) << command.name;
    }
    return WritingCommands().size();
}

void UseTheWindow() {
    RenameWindow window({L"a", L"b"});
    window.Open({L"a", L"b"});
    window.Panel().Enter(IDC_NAME_TEMPLATE, L"[N]2");
    EXPECT_TRUE(window.WaitForStatus(L"2 of 2 items will be renamed"));
    window.Panel().Press(IDC_START);
    EXPECT_TRUE(window.WaitForStatus(L"2 Renamed"));
    window.Panel().PressLater(IDC_UNDO);
    window.Dialog(L"Undo BatchRename").PressAndClose(IDCANCEL);
    PostMessageW(window.Frame(), WM_CLOSE, 0, 0);
    EXPECT_TRUE(window.WaitFor([&] { return !window.Frame(); }));
}

/// QV_ROUNDS says how many, where 10 are too few.
size_t CountRounds() {
    wchar_t text[16] = {};
    return GetEnvironmentVariableW(L"QV_ROUNDS", text, 16) > 0 ? std::stoul(text) : 10;
}

class Rounds : public testing::TestWithParam<bool> {};

TEST_P(Rounds, HoldNoMoreThanTheRuntimeKeeps) {
    const bool staysLoaded = GetParam();
    const std::wstring library = std::wstring(Win32::FolderOf(QV_HOST_PROGRAM)) + L"QVUtils.dll";
    const Win32::Module held(staysLoaded ? LoadLibraryW(Win32::FullPath(library).c_str()) : nullptr);
    size_t loads = 0;
    const auto run = [&](size_t rounds) {
        loads = 0;
        for (size_t round = 0; round < rounds; ++round) {
            const size_t commands = RunEveryCommand();
            loads += staysLoaded ? 0 : commands + 1;
            UseTheWindow();
        }
    };
    run(2);  // what the system sets up once
    const Held before = HeldNow();
    run(CountRounds());
    const Held after = HeldNow();
    // A thread of the system for windows may come late. Where the window's thread is the last to let go of the library,
    // the runtime keeps a handle of it, too.
    const size_t ofWindows = staysLoaded ? 0 : CountRounds();
    EXPECT_LE(after.handles, before.handles + loads * kHandlesOfRuntime + ofWindows + 8);
    EXPECT_LE(after.threads, before.threads + 1);
    EXPECT_LE(after.place, before.place + 1);
    EXPECT_LE(after.bytes, before.bytes + loads * kBytesOfRuntime + CountRounds() * kBytesOfRound);
}
INSTANTIATE_TEST_SUITE_P(OfALibraryThat, Rounds, testing::Bool(),
                         [](const auto& instance) { return instance.param ? "Stays" : "IsUnloaded"; });

}  // namespace
