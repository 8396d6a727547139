#include "fileutils/links/link_rules.h"

#include "fileutils/links/link_creation.h"
#include "win32/file_name.h"
#include "win32/files.h"
#include "win32/folder.h"
#include "win32/path.h"
#include "win32/text.h"
#include "win32/windows.h"

namespace FileUtils {
namespace {

/// The root of the volume that holds `path`; empty when the system does not say.
std::wstring VolumeOf(const std::wstring& path) {
    const std::wstring full = Win32::FullPath(path);
    std::wstring volume(full.size() + 2, L'\0');
    if (!GetVolumePathNameW(full.c_str(), volume.data(), static_cast<DWORD>(volume.size()))) return {};
    volume.resize(std::char_traits<wchar_t>::length(volume.c_str()));
    return volume;
}

bool IsOnAnotherMachine(const std::wstring& path) {
    return path.starts_with(L"\\\\") && !path.starts_with(L"\\\\?\\");
}

}  // namespace

void LinkRules::LookAt(const std::wstring& folder) {
    if (m_folder.isKnown && m_folder.path == folder) return;
    m_folder = {};
    m_folder.isKnown = true;
    m_folder.path = folder;
    m_folder.volume = VolumeOf(folder);
    m_folder.exists = folder.empty() || Win32::Exists(folder);
    if (!m_folder.exists) return;
    const auto take = [&](std::wstring_view name, uint32_t) { m_folder.names.insert(Win32::ToUpperCase(name)); };
    m_folder.isListed = Win32::ListFolder(folder.empty() ? L"." : folder, take) == ERROR_SUCCESS;
}

std::wstring LinkRules::WhyNot(uint32_t type, const std::wstring& link, const std::wstring& target,
                               bool targetIsFolder) {
    const std::wstring name(Win32::FileNameOf(link));
    if (!Win32::IsFileName(name)) return L"This cannot be a name: " + name;
    LookAt(std::wstring(Win32::FolderOf(link)));
    const bool isTaken = m_folder.isListed ? m_folder.names.contains(Win32::ToUpperCase(name)) : Win32::Exists(link);
    if (isTaken) return L"This name is in use: " + name;
    if (!m_folder.exists) return L"There is no folder " + m_folder.path;
    if (type == LinkType::HardLink && targetIsFolder) return L"A hard link cannot lead to a folder: " + target;
    if (type == LinkType::HardLink) {
        std::wstring targetFolder(Win32::FolderOf(target));
        if (m_targetFolder != targetFolder || m_targetVolume.empty()) m_targetVolume = VolumeOf(target);
        m_targetFolder = std::move(targetFolder);
        if (!Win32::EqualIgnoringCase(m_folder.volume, m_targetVolume))
            return L"A hard link cannot lead to another volume: " + target;
    }
    if (type == LinkType::Junction && !targetIsFolder) return L"A junction cannot lead to a file: " + target;
    if (type == LinkType::Junction && IsOnAnotherMachine(target))
        return L"A junction cannot lead to another computer: " + target;
    return {};
}

}  // namespace FileUtils
