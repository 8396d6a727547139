#include "fileutils/link_rules.h"

#include "fileutils/link_creation.h"
#include "textio/target_name.h"
#include "win32/files.h"
#include "win32/path.h"
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

std::wstring WhyNoLink(uint32_t type, const std::wstring& link, const std::wstring& target, bool targetIsFolder) {
    const std::wstring name(Win32::FileNameOf(link));
    if (!QVUtils::IsPlainFileName(name)) return L"This cannot be a name: " + name;
    if (Win32::Exists(link)) return L"This name is in use: " + name;
    const std::wstring folder(Win32::FolderOf(link));
    if (!folder.empty() && !Win32::Exists(folder)) return L"There is no folder " + folder;
    if (type == LinkType::HardLink && targetIsFolder) return L"A hard link cannot lead to a folder: " + target;
    if (type == LinkType::HardLink && _wcsicmp(VolumeOf(folder).c_str(), VolumeOf(target).c_str()) != 0)
        return L"A hard link cannot lead to another volume: " + target;
    if (type == LinkType::Junction && !targetIsFolder) return L"A junction cannot lead to a file: " + target;
    if (type == LinkType::Junction && IsOnAnotherMachine(target))
        return L"A junction cannot lead to another computer: " + target;
    return {};
}

}  // namespace FileUtils
