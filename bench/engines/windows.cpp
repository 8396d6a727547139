// windows.cpp - what a person waits for in a window: the preview of a key in Batch Rename, and a dialog over many
// files.
#include "windows_bench.h"

#include <algorithm>
#include <cstdio>
#include <functional>
#include <sstream>
#include <thread>

#include "batchrename/model/preview.h"
#include "fileutils/ids.h"
#include "host/app/session.h"
#include "win32/path.h"

namespace Bench {
namespace {

/// Processor time of this process, in seconds.
double ProcessorTime() {
    FILETIME unused = {}, kernel = {}, user = {};
    GetProcessTimes(GetCurrentProcess(), &unused, &unused, &kernel, &user);
    const auto ticks = [](const FILETIME& time) {
        return static_cast<double>(uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime);
    };
    return (ticks(kernel) + ticks(user)) * 1e-7;
}

/// The first dialog of this process; null after ten seconds.
HWND WaitForDialog() {
    for (int look = 0; look < 10000; ++look) {
        for (HWND found = nullptr; (found = FindWindowExW(nullptr, found, L"#32770", nullptr)) != nullptr;) {
            DWORD process = 0;
            GetWindowThreadProcessId(found, &process);
            if (process == GetCurrentProcessId() && IsWindowVisible(found)) return found;
        }
        Sleep(1);
    }
    return nullptr;
}

/// From a key to the whole preview, in seconds of processor time.
double SecondsOfPreview(const BatchRename::RenameItems& rows, const std::vector<BatchRename::FolderNames>& listings) {
    BatchRename::FolderCache folders([&](const std::wstring& folder) {
        for (const BatchRename::FolderNames& listing : listings)
            if (listing.folder == folder) return listing;
        return BatchRename::FolderNames();
    });
    BatchRename::PreviewRequest request;
    request.rows = std::make_shared<const BatchRename::RenameItems>(rows);
    request.rule.nameTemplate = L"[C1,1,6]_[N]";
    request.visibleCount = 50;
    const auto pass = [&] {
        const double begin = ProcessorTime();
        BatchRename::MakePreview(
            request, folders, nullptr, [] { return false; }, [](const auto&) {});
        return ProcessorTime() - begin;
    };
    pass();  // the folders are read with the first key
    return pass();
}

/// From a command over 20,000 files to its dialog, which is closed then.
double SecondsToDialog(uint32_t command) {
    std::wstring program(32768, L'\0');
    program.resize(GetModuleFileNameW(nullptr, program.data(), static_cast<DWORD>(program.size())));
    const std::wstring binaries = Win32::FullPath(std::wstring(Win32::FolderOf(program)) + L"..\\bin\\");
    std::ostringstream out, notes;
    std::istringstream in;
    QVHost::HostEnvironment environment = {out, notes, in, binaries + L"qvhost.exe", false, {}, {}};
    QVHost::Output output(out, notes, true);
    QVHost::HostOptions options;
    options.config = Win32::FolderOf(program);
    QVHost::Session session(options, environment, output);
    session.StartExtension(0);
    const std::shared_ptr<QVHost::FileItem> item = session.State().files.MakeItem(program);
    session.State().selection.assign(20'000, item);
    double seconds = 0;
    const ULONGLONG begin = GetTickCount64();
    std::thread person([&] {
        const HWND dialog = WaitForDialog();
        seconds = static_cast<double>(GetTickCount64() - begin) / 1000;
        PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
    });
    session.RunCommand(command);
    person.join();
    return seconds;
}

}  // namespace

void ShowWindows(std::string_view wanted, const BatchRename::RenameItems& rows,
                 const std::vector<BatchRename::FolderNames>& listings) {
    constexpr int kRounds = 5;
    const auto opened = [](uint32_t command) { return [=] { return SecondsToDialog(command); }; };
    namespace Id = FileUtils::CommandId;
    const struct {
        const char* name;
        double limit;  // in seconds
        std::function<double()> measure;
    } windows[] = {
        {"preview of 100,000 rows, processor", 0.15, [&] { return SecondsOfPreview(rows, listings); }},
        {"20,000 files: replace in names", 0.5, opened(Id::ReplaceInNames)},
        {"20,000 files: sort lines", 0.5, opened(Id::SortLines)},
        {"20,000 files: find and replace", 0.5, opened(Id::FindAndReplace)},
        {"20,000 files: create links", 0.5, opened(Id::CreateLinks)},
        {"20,000 files: grant access", 0.5, opened(Id::GrantAccess)},
    };
    std::printf("%-36s %10s %s\n", "window", "ms", "limit");
    for (const auto& window : windows) {
        if (std::string_view(window.name).find(wanted) == std::string_view::npos) continue;
        double best = 1e9;
        for (int round = 0; round < kRounds; ++round) best = std::min(best, window.measure());
        std::printf("%-36s %10.0f %5.0f %s\n", window.name, best * 1e3, window.limit * 1e3,
                    best <= window.limit ? "holds" : "MISSES");
    }
}

}  // namespace Bench
