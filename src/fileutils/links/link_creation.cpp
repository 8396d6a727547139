#include "fileutils/links/link_creation.h"

#include <optional>
#include <utility>
#include <vector>

#include <shlwapi.h>

#include "fileutils/elevated_request.h"
#include "fileutils/ids.h"
#include "sdk/owners.h"
#include "win32/files.h"
#include "win32/path.h"

namespace FileUtils {
namespace {

using namespace Quorvane::SDK;

constexpr wchar_t kDescription[] = L"Link created by Quorvane";
constexpr DWORD kSymbolicLinkToFolder = 1;
constexpr DWORD kLongestJunctionTarget = 1024;  // units

const wchar_t* NameOfType(uint32_t type) {
    switch (type) {
        case LinkType::HardLink: return L"Hardlink";
        case LinkType::Junction: return L"Junction";
        case LinkType::SymbolicLink: return L"Symlink";
        default: return L"Unknown";  // shortcuts too. compatibility: 22
    }
}

void LogResult(IHostServices& host, const LinkRequest& request, uint32_t error) {
    const wchar_t* const type = NameOfType(request.type);
    if (error == ERROR_SUCCESS)
        host.Log(kLogLevel, LogKind::Success, L"Link Created (%s) Link : \"%s\" Link Target : \"%s\"", type,
                 request.link.c_str(), request.target.c_str());
    else
        host.Log(kLogLevel, LogKind::Failure,
                 L"Failed to create link (%s) (Error : %d) Link : \"%s\" Link Target : \"%s\"", type, error,
                 request.link.c_str(), request.target.c_str());
}

bool IsExistingFolder(const std::wstring& path) {
    const DWORD attributes = GetFileAttributesW(Win32::ExtendedPath(path).c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

/// True for a path that means another place where the current folder or drive is another: `a`, `\a`, `C:a`.
bool IsRelative(std::wstring_view path) {
    const auto isSeparator = [&](size_t at) { return at < path.size() && (path[at] == L'\\' || path[at] == L'/'); };
    if (isSeparator(0)) return !isSeparator(1) && !path.starts_with(L"\\?");
    return !(path.size() > 1 && path[1] == L':' && isSeparator(2));
}

/// A relative path made absolute; any other as it stands, since the system's core has forms that must not be touched.
std::wstring Absolute(const std::wstring& path) {
    return IsRelative(path) ? Win32::FullPath(path) : path;
}

/// Folders made on the way to a junction; removed again, deepest first, unless they are kept.
class NewFolders {
public:
    NewFolders() = default;
    NewFolders(const NewFolders&) = delete;
    NewFolders& operator=(const NewFolders&) = delete;
    ~NewFolders() {
        for (auto path = m_made.rbegin(); path != m_made.rend(); ++path) RemoveDirectoryW(path->c_str());
    }

    /// Makes `path` and what is missing above it.
    bool Make(const std::wstring& path) {
        std::vector<std::wstring> missing;
        for (std::wstring folder = Win32::FullPath(path); !folder.empty() && !Win32::Exists(folder);) {
            while (folder.size() > 1 && (folder.back() == L'\\' || folder.back() == L'/')) folder.pop_back();
            missing.push_back(folder);
            std::wstring above(Win32::FolderOf(folder));
            if (above.size() == folder.size()) break;
            folder = std::move(above);
        }
        // Nothing is allocated between making a folder and knowing that it was made, nor when it is removed.
        m_made.reserve(m_made.size() + missing.size());
        for (auto folder = missing.rbegin(); folder != missing.rend(); ++folder) {
            std::wstring made = Win32::ExtendedPath(*folder);
            if (!CreateDirectoryW(made.c_str(), nullptr)) return false;
            m_made.push_back(std::move(made));
        }
        return IsExistingFolder(path);
    }
    void Keep() { m_made.clear(); }

private:
    std::vector<std::wstring> m_made;
};

/// The target as the system's core writes it; nothing when it cannot be one.
std::optional<std::wstring> SubstituteName(const std::wstring& target) {
    if (target.starts_with(L"\\?")) return target;
    if (!Win32::Exists(target)) return std::nullopt;
    std::wstring full = Win32::FullPath(target);
    // The long form of a path has a prefix of its own, which the core's form replaces.
    if (full.starts_with(L"\\\\?\\")) full.erase(0, 4);
    if (full.empty() || full.size() >= kLongestJunctionTarget) return std::nullopt;
    return L"\\??\\" + full;
}

uint32_t CreateJunction(const LinkRequest& request, const LinkSystem& system) {
    const bool exists = IsExistingFolder(request.link);
    if (exists && !PathIsDirectoryEmptyW(request.link.c_str())) return ERROR_INVALID_DATA;
    NewFolders folders;
    if (!exists && !folders.Make(request.link)) return ERROR_INVALID_DATA;
    const std::optional<std::wstring> name = SubstituteName(request.target);
    const std::optional<ReparseBuffer> buffer = name ? JunctionReparseBuffer(*name) : std::nullopt;
    if (!buffer || system.setReparsePoint(request.link, *buffer) != ERROR_SUCCESS) return ERROR_INVALID_DATA;
    folders.Keep();
    return ERROR_SUCCESS;
}

uint32_t CreateShortcut(const LinkRequest& request, const LinkSystem& system) {
    // Saving would overwrite whatever file has the name; the other kinds of link never do.
    if (Win32::Exists(request.link)) return ERROR_PATH_NOT_FOUND;
    const std::wstring target = Absolute(request.target);
    std::wstring workingFolder;
    if (!request.targetIsFolder) {
        // "C:" alone would be another place than "C:\\".
        workingFolder = Win32::WithoutSeparator(Win32::FolderOf(target));
    }
    const uint32_t error = system.saveShortcut(Absolute(request.link), target, workingFolder, kDescription);
    return error == ERROR_SUCCESS ? ERROR_SUCCESS : ERROR_PATH_NOT_FOUND;
}

uint32_t SendRequest(IHostServices& host, const LinkRequest& request) {
    // The other process has a current folder of its own. A symbolic link's target is seen from the link, not from
    // there.
    const bool staysRelative = request.type == LinkType::SymbolicLink;
    const std::wstring target = staysRelative ? request.target : Absolute(request.target);
    const auto write = [&](IRequestWriter& writer) {
        writer.WriteNumber(request.type);
        writer.WriteString(Absolute(request.link).c_str());
        writer.WriteString(target.c_str());
        writer.WriteNumber(request.targetIsFolder ? 1 : 0);
    };
    return SendElevated(host, RequestId::CreateLink, request.link, write).value_or(ERROR_ACCESS_DENIED);
}

}  // namespace

uint32_t MakeLink(const LinkRequest& request, const LinkSystem& system) {
    switch (request.type) {
        case LinkType::HardLink: return system.makeHardLink(request.link, request.target);
        case LinkType::Junction: return CreateJunction(request, system);
        case LinkType::SymbolicLink:
            return system.makeSymbolicLink(request.link, request.target,
                                           request.targetIsFolder ? kSymbolicLinkToFolder : 0);
        case LinkType::Shortcut: return CreateShortcut(request, system);
        default: return ERROR_INVALID_DATA;
    }
}

uint32_t CreateLinkHere(IHostServices& host, const LinkRequest& request) {
    const uint32_t error = MakeLink(request);
    LogResult(host, request, error);
    return error;
}

uint32_t CreateLinkElevated(IHostServices& host, const LinkRequest& request) {
    const uint32_t error = SendRequest(host, request);
    LogResult(host, request, error);
    return error;
}

}  // namespace FileUtils
