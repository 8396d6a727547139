#include <algorithm>
#include <array>

#include "host/app/host_error.h"
#include "host/app/host_text.h"
#include "host/app/unix_paths.h"
#include "host/selftest/self_test.h"
#include "win32/files.h"
#include "win32/folder.h"
#include "win32/handle.h"
#include "win32/path.h"
#include "win32/shortcut.h"
#include "win32/windows.h"

#include <sddl.h>
#include <winioctl.h>

namespace QVHost {
namespace {

using Words = std::vector<std::wstring>;

std::wstring Reason(const wchar_t* what, uint32_t error) {
    return std::wstring(what).append(L": ").append(DescribeError(error));
}

/// Owner or access list in the system's text form; the reason, in place of it, when it cannot be read.
std::wstring SecurityText(const std::wstring& path, SECURITY_INFORMATION part) {
    DWORD size = 0;
    GetFileSecurityW(path.c_str(), part, nullptr, 0, &size);
    std::vector<std::byte> bytes(size);
    wchar_t* raw = nullptr;
    if (!GetFileSecurityW(path.c_str(), part, bytes.data(), size, &size) ||
        !ConvertSecurityDescriptorToStringSecurityDescriptorW(bytes.data(), SDDL_REVISION_1, part, &raw, nullptr))
        return Reason(L"cannot be read", GetLastError());
    const Win32::LocalMemory text(raw);
    return raw;
}

/// What was told done, and is not: a fault, unless this is Wine, which answers some calls without doing anything.
CheckResult Undone(const std::wstring& reason) {
    return RunsUnderWine() ? NotAvailableBecause(L"the system says that it is done, but " + reason)
                           : FailedBecause(reason);
}

std::wstring AccessListOf(const std::wstring& path) {
    return SecurityText(path, DACL_SECURITY_INFORMATION);
}

/// Windows error code, 0 for success.
uint32_t SetAccessList(const std::wstring& path, const wchar_t* list) {
    PSECURITY_DESCRIPTOR raw = nullptr;
    if (!ConvertStringSecurityDescriptorToSecurityDescriptorW(list, SDDL_REVISION_1, &raw, nullptr))
        return GetLastError();
    const Win32::LocalMemory descriptor(raw);
    return SetFileSecurityW(path.c_str(), DACL_SECURITY_INFORMATION | PROTECTED_DACL_SECURITY_INFORMATION, raw)
               ? ERROR_SUCCESS
               : GetLastError();
}

/// This user's, in the system's text form.
std::wstring OwnSid() {
    HANDLE raw = nullptr;
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &raw)) return {};
    const Win32::KernelHandle token(raw);
    alignas(TOKEN_USER) std::array<std::byte, sizeof(TOKEN_USER) + SECURITY_MAX_SID_SIZE> user = {};
    DWORD size = 0;
    wchar_t* text = nullptr;
    if (!GetTokenInformation(token.Get(), TokenUser, user.data(), static_cast<DWORD>(user.size()), &size) ||
        !ConvertSidToStringSidW(reinterpret_cast<const TOKEN_USER*>(user.data())->User.Sid, &text))
        return {};
    const Win32::LocalMemory memory(text);
    return text;
}

const wchar_t kDrivesAlone[] = L"access rights are changed on paths with a drive letter alone";

/// Owners only, which no folder hands down; the user keeps what is needed to take the file away.
const wchar_t kNarrowList[] = L"D:P(A;;FA;;;OW)(A;;FA;;;BA)(A;;FR;;;WD)";

/// A system that keeps no lists has nothing to test.
CheckResult WithNarrowList(const Trial& trial, CheckResult (*check)(const Trial&, const std::wstring& file)) {
    if ((trial.VolumeFlags() & FILE_PERSISTENT_ACLS) == 0)
        return NotAvailableBecause(L"this file system keeps no access rights");
    const std::wstring file = trial.MakeFile(L"rights.txt");
    if (const uint32_t error = SetAccessList(file, kNarrowList))
        return FailedBecause(Reason(L"the list of access rights cannot be set", error));
    return check(trial, file);
}

/// On a share, and after \\?\, the library changes no access list.
bool IsOnDrive(const Trial& trial) {
    return !trial.Folder().starts_with(LR"(\\)");
}

CheckResult ReplaceKeepsRights(const Trial& trial) {
    return WithNarrowList(trial, [](const Trial& self, const std::wstring& file) {
        const std::wstring before = AccessListOf(file);
        CheckResult result = self.Replace(file);
        const std::wstring now = AccessListOf(file);
        if (result.kind == CheckResult::Kind::Passed && now != before)
            return FailedBecause(std::wstring(L"the list was ").append(before).append(L" and is ").append(now));
        return result;
    });
}

CheckResult ResetRights(const Trial& trial) {
    if (!IsOnDrive(trial)) return NotAvailableBecause(kDrivesAlone);
    return WithNarrowList(trial, [](const Trial& self, const std::wstring& file) {
        const std::wstring before = AccessListOf(file);
        const Trial::Said said = self.Run({L"command", L"30310", file, L"--answer", L"yes"});
        if (said.status != ExitStatus::Done) return FailedBecause(said.text);
        return AccessListOf(file) != before ? CheckResult() : Undone(L"the list stayed as it was");
    });
}

CheckResult GrantRights(const Trial& trial) {
    if (!IsOnDrive(trial)) return NotAvailableBecause(kDrivesAlone);
    return WithNarrowList(trial, [](const Trial& self, const std::wstring& file) {
        const std::wstring before = AccessListOf(file);
        const Trial::Said said = self.RunInWindows({L"command", L"30311", file}, IDOK);
        if (said.status != ExitStatus::Done) return FailedBecause(said.text);
        return AccessListOf(file) != before ? CheckResult() : Undone(L"the list stayed as it was");
    });
}

CheckResult TakeOwnership(const Trial& trial) {
    const std::wstring file = trial.MakeFile(L"owner.txt");
    const Trial::Said said = trial.Run({L"command", L"30300", file});
    if (said.status != ExitStatus::Done) return NotAvailableBecause(said.text);
    const std::wstring owner = SecurityText(file, OWNER_SECURITY_INFORMATION);
    return owner == L"O:" + OwnSid() ? CheckResult() : FailedBecause(L"the owner is " + owner);
}

CheckResult TakeOwnershipElevated(const Trial& trial) {
    const std::wstring file = trial.MakeFile(L"elevated.txt");
    const Trial::Said said = trial.Run({L"command", L"30300", file, L"--can-elevate"});
    if (said.status != ExitStatus::Done) return FailedBecause(said.text);
    const bool wasServed = said.text.find(L"[elevated]") != std::wstring::npos;
    return wasServed ? CheckResult() : FailedBecause(L"no second process answered: " + said.text);
}

CheckResult ReplaceKeeps(const Trial& trial, const wchar_t* what, uint32_t attribute, const std::wstring& file) {
    CheckResult result = trial.Replace(file);
    const DWORD now = GetFileAttributesW(file.c_str());
    if (result.kind == CheckResult::Kind::Passed && (now & attribute) != attribute)
        return FailedBecause(std::wstring(L"afterwards the file is not ").append(what));
    return result;
}

CheckResult ReplaceKeepsAttributes(const Trial& trial) {
    constexpr DWORD kAttributes = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM;
    const std::wstring file = trial.MakeFile(L"attributes.txt");
    SetFileAttributesW(file.c_str(), kAttributes);
    if ((GetFileAttributesW(file.c_str()) & kAttributes) != kAttributes)
        return NotAvailableBecause(L"this file system keeps no such attributes");
    return ReplaceKeeps(trial, L"hidden and of the system", kAttributes, file);
}

CheckResult ReplaceKeepsEncryption(const Trial& trial) {
    if ((trial.VolumeFlags() & FILE_SUPPORTS_ENCRYPTION) == 0)
        return NotAvailableBecause(L"this file system encrypts no files");
    const std::wstring file = trial.MakeFile(L"encrypted.txt");
    if (!EncryptFileW(file.c_str())) return NotAvailableBecause(Reason(L"the system does not encrypt", GetLastError()));
    return ReplaceKeeps(trial, L"encrypted", FILE_ATTRIBUTE_ENCRYPTED, file);
}

CheckResult ReplaceKeepsCompression(const Trial& trial) {
    if ((trial.VolumeFlags() & FILE_FILE_COMPRESSION) == 0)
        return NotAvailableBecause(L"this file system compresses no files");
    const std::wstring file = trial.MakeFile(L"compressed.txt");
    {
        const Win32::FileHandle handle(CreateFileW(file.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ, nullptr,
                                                   OPEN_EXISTING, 0, nullptr));
        USHORT format = COMPRESSION_FORMAT_DEFAULT;
        DWORD returned = 0;
        if (!handle || !DeviceIoControl(handle.Get(), FSCTL_SET_COMPRESSION, &format, sizeof(format), nullptr, 0,
                                        &returned, nullptr))
            return NotAvailableBecause(Reason(L"the system does not compress", GetLastError()));
    }
    return ReplaceKeeps(trial, L"compressed", FILE_ATTRIBUTE_COMPRESSED, file);
}

CheckResult ReplaceKeepsStreams(const Trial& trial) {
    if ((trial.VolumeFlags() & FILE_NAMED_STREAMS) == 0)
        return NotAvailableBecause(L"this file system keeps no alternate streams");
    const std::wstring file = trial.MakeFile(L"streams.txt");
    const auto open = [&](DWORD access, DWORD way) {
        return Win32::FileHandle(
            CreateFileW((file + L":note").c_str(), access, FILE_SHARE_READ, nullptr, way, 0, nullptr));
    };
    constexpr std::string_view kNote = "a note";
    DWORD count = 0;
    Win32::FileHandle made = open(GENERIC_WRITE, CREATE_NEW);
    if (!made || !WriteFile(made.Get(), kNote.data(), static_cast<DWORD>(kNote.size()), &count, nullptr))
        return FailedBecause(Reason(L"a stream cannot be written", GetLastError()));
    made.Reset();
    CheckResult result = trial.Replace(file);
    if (result.kind != CheckResult::Kind::Passed) return result;
    std::string bytes(2 * kNote.size(), '\0');
    const Win32::FileHandle kept = open(GENERIC_READ, OPEN_EXISTING);
    if (!kept || !ReadFile(kept.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &count, nullptr))
        return FailedBecause(Reason(L"the stream cannot be read afterwards", GetLastError()));
    bytes.resize(count);
    return bytes == kNote ? CheckResult() : FailedBecause(L"the stream holds something else afterwards");
}

/// Makes a link of a type that the library numbers so.
Trial::Said MakeLink(const Trial& trial, const wchar_t* type, const std::wstring& link, const std::wstring& target) {
    return trial.Run(
        {L"call", L"CreateLink", std::wstring(L"LNKTYPE=") + type, L"LNKSRC=" + link, L"LNKTRG=" + target});
}

/// Through the link to the same file. A refusal for want of a right, or of the file system, is its own matter.
CheckResult LinkLeads(const Trial::Said& said, const std::wstring& link, const std::wstring& target,
                      bool mayBeRefused) {
    if (said.status != ExitStatus::Done)
        return mayBeRefused ? NotAvailableBecause(said.text) : FailedBecause(said.text);
    return Win32::IsSameFile(link, target) ? CheckResult() : Undone(L"the link does not lead to its target");
}

CheckResult HardLink(const Trial& trial) {
    const std::wstring target = trial.MakeFile(L"target.txt");
    const std::wstring link = trial.PathOf(L"link.txt");
    return LinkLeads(MakeLink(trial, L"1", link, target), link, target,
                     (trial.VolumeFlags() & FILE_SUPPORTS_HARD_LINKS) == 0);
}

CheckResult SymbolicLink(const Trial& trial) {
    const std::wstring target = trial.MakeFile(L"target.txt");
    const std::wstring link = trial.PathOf(L"link.txt");
    // Windows gives the right to administrators, and to developers who ask for it.
    CheckResult result = LinkLeads(MakeLink(trial, L"3", link, target), link, target, true);
    if (result.kind != CheckResult::Kind::Passed) return result;
    result = trial.Replace(link);
    if (result.kind == CheckResult::Kind::Passed && !Win32::IsLink(link))
        return FailedBecause(L"after a replacement there is a file in the link's place");
    return result;
}

CheckResult Junction(const Trial& trial) {
    const std::wstring target = trial.MakeFolder(L"target");
    trial.MakeFile(L"target\\inside.txt");
    const std::wstring link = trial.PathOf(L"junction");
    return LinkLeads(MakeLink(trial, L"2", link, target), Win32::JoinPath(link, L"inside.txt"),
                     Win32::JoinPath(target, L"inside.txt"), (trial.VolumeFlags() & FILE_SUPPORTS_REPARSE_POINTS) == 0);
}

CheckResult ShellShortcut(const Trial& trial) {
    const std::wstring target = trial.MakeFile(L"target.txt");
    const Trial::Said said = MakeLink(trial, L"4", trial.PathOf(L"shortcut.lnk"), target);
    if (said.status != ExitStatus::Done)
        return target.size() < MAX_PATH ? FailedBecause(said.text) : NotAvailableBecause(said.text);
    const std::optional<Win32::Shortcut> shortcut = Win32::ReadShortcut(trial.PathOf(L"shortcut.lnk"));
    return shortcut && Win32::IsSameFile(shortcut->target, target) ? CheckResult()
                                                                   : FailedBecause(L"it does not lead to its target");
}

CheckResult LongPaths(const Trial& trial) {
    const std::wstring part(100, L'd');
    const std::wstring folder = part + L'\\' + part + L'\\' + part;
    trial.MakeFolder(folder);
    const std::wstring file = trial.MakeFile(folder + L"\\file.txt");
    CheckResult result = trial.Replace(file);
    if (result.kind != CheckResult::Kind::Passed) return result;
    const Trial::Said said = trial.Run({L"rename", file, L"--name", L"renamed"});
    const bool isThere = Win32::Exists(trial.PathOf(folder + L"\\renamed.txt"));
    return said.status == ExitStatus::Done && isThere ? CheckResult() : FailedBecause(said.text);
}

/// Renames a file, and looks for the new name as the folder shows it.
CheckResult RenameTo(const Trial& trial, const std::wstring& file, const std::wstring& stem) {
    const Trial::Said said = trial.Run({L"rename", file, L"--name", stem});
    std::vector<std::wstring> names;
    const uint32_t error = Win32::ListFolder(trial.Folder(), L"*.txt", names);
    if (said.status != ExitStatus::Done || error != ERROR_SUCCESS)
        return FailedBecause(said.text + (error ? DescribeError(error) : L""));
    const bool isThere = std::ranges::find(names, stem + L".txt") != names.end();
    return isThere ? CheckResult() : FailedBecause(L"the folder shows another name");
}

CheckResult RenameCaseOnly(const Trial& trial) {
    return RenameTo(trial, trial.MakeFile(L"letters.txt"), L"LETTERS");
}

CheckResult NamesAtTheirLimit(const Trial& trial) {
    constexpr size_t kLongest = 255;  // units, as NTFS has it
    const std::wstring longest(kLongest - 4, L'n');
    CheckResult result = RenameTo(trial, trial.MakeFile(L"short.txt"), longest);
    if (result.kind != CheckResult::Kind::Passed) return result;
    const std::wstring file = trial.PathOf(longest + L".txt");
    const Trial::Said said = trial.Run({L"rename", file, L"--name", longest + L"n"});
    if (said.status == ExitStatus::Done) return FailedBecause(L"a name of 256 characters was taken");
    return Win32::Exists(file) ? CheckResult() : FailedBecause(L"the file is not under its name: " + said.text);
}

template <size_t Size>
CheckResult ShowWindowOf(const Trial& trial, const wchar_t* const (&words)[Size]) {
    Words arguments(words, words + Size);
    arguments.push_back(trial.MakeFile(L"shown.txt"));
    const Trial::Said said = trial.RunInWindows(std::move(arguments), IDCANCEL);
    return said.status == ExitStatus::Done ? CheckResult() : FailedBecause(said.text);
}

constexpr Check kChecks[] = {
    {L"replacing text in a file", [](const Trial& trial) { return trial.Replace(trial.MakeFile(L"plain.txt")); }},
    {L"a replaced file keeps its access rights", ReplaceKeepsRights},
    {L"a replaced file keeps its attributes", ReplaceKeepsAttributes},
    {L"a replaced file stays encrypted", ReplaceKeepsEncryption},
    {L"a replaced file stays compressed", ReplaceKeepsCompression},
    {L"a replaced file keeps its alternate streams", ReplaceKeepsStreams},
    {L"take ownership", TakeOwnership},
    {L"reset access rights", ResetRights},
    {L"grant access", GrantRights},
    {L"hard link", HardLink},
    {L"symbolic link", SymbolicLink},
    {L"junction", Junction},
    {L"shortcut", ShellShortcut},
    {L"paths of more than 260 characters", LongPaths},
    {L"a rename that changes the case of letters alone", RenameCaseOnly},
    {L"names of 255 characters, and one too long", NamesAtTheirLimit},
    {L"window: find and replace",
     [](const Trial& trial) {
         return ShowWindowOf(trial, {L"command", L"30151"});
     }},
    {L"window: sort lines",
     [](const Trial& trial) {
         return ShowWindowOf(trial, {L"command", L"30150"});
     }},
    {L"window: replace text in names",
     [](const Trial& trial) {
         return ShowWindowOf(trial, {L"command", L"30010"});
     }},
    {L"window: create links",
     [](const Trial& trial) {
         return ShowWindowOf(trial, {L"command", L"30350"});
     }},
    {L"window: grant access",
     [](const Trial& trial) {
         return ShowWindowOf(trial, {L"command", L"30311"});
     }},
    {L"window: Batch Rename",
     [](const Trial& trial) {
         return ShowWindowOf(trial, {L"command", L"31000"});
     }},
    {L"window: the panel", [](const Trial& trial) { return ShowWindowOf(trial, {L"panel"}); }},
    {L"administrator rights for one command", TakeOwnershipElevated, true},
};

}  // namespace

std::span<const Check> AllChecks() {
    return kChecks;
}

}  // namespace QVHost
