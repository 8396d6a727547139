#include "host/app/subcommands.h"

#include <array>

#include "host/app/host_error.h"
#include "host/app/host_text.h"
#include "host/app/selection.h"
#include "host/app/session.h"
#include "host/app/unix_paths.h"
#include "host/selftest/self_test.h"
#include "win32/files.h"
#include "win32/folder.h"
#include "win32/module.h"
#include "win32/path.h"
#include "win32/windows.h"

namespace QVHost {
namespace {

/// Everything in the folder, and the folder. Links go, what they lead to stays.
void RemoveTree(const std::wstring& folder) {
    std::vector<Win32::FolderEntry> entries;
    Win32::ListFolder(folder, L"*", entries);
    for (const Win32::FolderEntry& entry : entries) {
        const std::wstring path = Win32::JoinPath(folder, entry.name);
        if ((entry.attributes & FILE_ATTRIBUTE_DIRECTORY) == 0)
            Win32::RemoveFileWhateverItsAttributes(path);
        else if ((entry.attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0)
            RemoveDirectoryW(Win32::ExtendedPath(path).c_str());
        else
            RemoveTree(path);
    }
    RemoveDirectoryW(Win32::ExtendedPath(folder).c_str());
}

/// A folder of this process alone, made in another one, with all that it holds removed at the end.
class OwnFolder {
public:
    /// @throws UsageError
    explicit OwnFolder(const std::wstring& where)
        : m_path(Win32::JoinPath(where, L"QVUtils self-test " + std::to_wstring(GetCurrentProcessId()))) {
        if (!CreateDirectoryW(Win32::ExtendedPath(m_path).c_str(), nullptr))
            throw UsageError(L"no folder can be made in " + where + L": " + DescribeError(GetLastError()));
    }
    OwnFolder(const OwnFolder&) = delete;
    OwnFolder& operator=(const OwnFolder&) = delete;
    ~OwnFolder() { RemoveTree(m_path); }

    const std::wstring& Path() const { return m_path; }

private:
    std::wstring m_path;
};

std::wstring TemporaryFolder() {
    std::array<wchar_t, MAX_PATH + 1> path = {};
    GetTempPathW(static_cast<DWORD>(path.size()), path.data());
    return path.data();
}

struct Volume {
    std::wstring name;
    DWORD flags = 0;
};

Volume VolumeOf(const std::wstring& folder) {
    std::wstring root(folder.size() + 2, L'\0');
    std::array<wchar_t, MAX_PATH + 1> name = {};
    Volume volume;
    if (!GetVolumePathNameW(folder.c_str(), root.data(), static_cast<DWORD>(root.size())) ||
        !GetVolumeInformationW(root.c_str(), nullptr, 0, nullptr, nullptr, &volume.flags, name.data(),
                               static_cast<DWORD>(name.size())))
        return {L"unknown", 0};
    volume.name = name.data();
    return volume;
}

/// As the system calls itself, which the usual function hides from programs that are older than it.
std::wstring SystemVersion() {
    using Function = LONG(WINAPI*)(OSVERSIONINFOW*);
    const Win32::Module system = Win32::LoadSystemModule(L"ntdll.dll");
    OSVERSIONINFOW version = {};
    version.dwOSVersionInfoSize = sizeof(version);
    const auto ask = Win32::FindFunction<Function>(system, "RtlGetVersion");
    if (!ask || ask(&version) != 0) return L"unknown";
    return std::to_wstring(version.dwMajorVersion) + L"." + std::to_wstring(version.dwMinorVersion) + L"." +
           std::to_wstring(version.dwBuildNumber);
}

/// The head of the report: what somebody far away has to know, and nothing about whose machine it is.
void PrintHead(Output& output, const Volume& volume) {
    std::array<wchar_t, LOCALE_NAME_MAX_LENGTH> locale = {};
    GetUserDefaultLocaleName(locale.data(), static_cast<int>(locale.size()));
    const HDC screen = GetDC(nullptr);
    const int scale = MulDiv(GetDeviceCaps(screen, LOGPIXELSX), 100, USER_DEFAULT_SCREEN_DPI);
    ReleaseDC(nullptr, screen);
    output.Line(L"QVUtils self-test");
    output.Line(L"program:      qvhost " + Wide(QV_VERSION));
    output.Line(L"platform:     Windows " + SystemVersion() + L", 64 bits" + (RunsUnderWine() ? L", under Wine" : L""));
    output.Line(L"file system:  " + volume.name);
    output.Line(L"language:     " + std::wstring(locale.data()) + L", code page " + std::to_wstring(GetACP()));
    output.Line(std::wstring(L"rights:       ") + (IsProcessElevated() ? L"administrator" : L"user"));
    output.Line(L"scale:        " + std::to_wstring(scale) + L" %");
    output.Line(L"processors:   " + std::to_wstring(GetActiveProcessorCount(ALL_PROCESSOR_GROUPS)));
    output.Line(L"");
}

CheckResult RunCheck(const Check& check, const Trial& trial) {
    try {
        return check.run(trial);
    } catch (const std::exception& error) {
        return FailedBecause(Wide(error.what()));
    }
}

const wchar_t* WordOf(CheckResult::Kind kind) {
    switch (kind) {
        case CheckResult::Kind::Passed: return L"passed";
        case CheckResult::Kind::Failed: return L"failed";
        default: return L"not available here";
    }
}

/// Paths that may have the name of their user, and what stands for them in the report.
using HiddenPaths = std::vector<std::pair<std::wstring, const wchar_t*>>;

HiddenPaths PathsToHide(const std::wstring& where, const std::wstring& program) {
    HiddenPaths paths = {{where, L"FOLDER"},
                         {std::wstring(Win32::WithoutSeparator(Win32::FolderOf(FullUserPath(program)))), L"PROGRAM"},
                         {EnvironmentText(L"USERPROFILE"), L"PROFILE"}};
    // The root of a drive has no name in it, and stands before every other path.
    std::erase_if(paths, [](const auto& path) { return path.first.empty() || path.first.ends_with(L'\\'); });
    return paths;
}

/// One line, without the paths.
std::wstring LineOf(const Check& check, const CheckResult& result, const HiddenPaths& hidden) {
    std::wstring line = std::wstring(WordOf(result.kind)).append(L": ").append(check.name);
    if (!result.reason.empty()) line += L": " + OnOneLine(result.reason);
    for (const auto& [path, word] : hidden)
        for (size_t at = 0; at + path.size() <= line.size(); ++at)
            if (EqualIgnoringCase(std::wstring_view(line).substr(at, path.size()), path))
                line.replace(at, path.size(), word);
    return line;
}

/// What each run begins with: this program's texts and library, and settings of its own.
std::vector<std::wstring> CommonOptions(const HostOptions& options, const std::wstring& folder) {
    std::vector<std::wstring> common = {L"--config", Win32::JoinPath(folder, L"settings")};
    const auto add = [&](const wchar_t* option, const std::wstring& path) {
        if (!path.empty()) common.insert(common.end(), {option, FullUserPath(path)});
    };
    add(L"--library", options.library);
    add(L"--language", options.language);
    return common;
}

}  // namespace

int RunSelfTest(const HostOptions& options, const HostEnvironment& environment, Output& output) {
    const bool isGiven = !options.operands.empty();
    if (isGiven && options.operands.front().empty()) RefuseMissingPath({});
    const std::wstring where(
        Win32::WithoutSeparator(isGiven ? FullUserPath(options.operands.front()) : TemporaryFolder()));
    const OwnFolder own(where);
    const Volume volume = VolumeOf(own.Path());
    const HiddenPaths hidden = PathsToHide(where, environment.program);
    PrintHead(output, volume);
    size_t counts[3] = {};
    for (const Check& check : AllChecks()) {
        if (check.needsElevation && !options.isElevated) continue;
        if (IsStopped(environment.progressWatch)) return ExitStatus::Failed;
        const std::wstring folder = Win32::JoinPath(own.Path(), std::to_wstring(&check - AllChecks().data()));
        Win32::MakeFolders(folder);
        const Trial trial(folder, volume.flags, environment.program, CommonOptions(options, own.Path()));
        const CheckResult result = RunCheck(check, trial);
        ++counts[static_cast<size_t>(result.kind)];
        output.Line(LineOf(check, result, hidden));
    }
    output.Line(L"");
    output.Line(std::to_wstring(counts[0]) + L" passed, " + std::to_wstring(counts[1]) + L" failed, " +
                std::to_wstring(counts[2]) + L" not available here");
    return counts[1] == 0 ? ExitStatus::Done : ExitStatus::Failed;
}

}  // namespace QVHost
