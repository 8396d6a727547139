// temporary_folder.h - a folder of its own for each test that touches files, and short ways to fill and read it.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "win32/handle.h"
#include "win32/successor.h"

#include <sddl.h>

namespace QVTest {

/// Of a folder, by name.
using Contents = std::map<std::wstring, std::string>;

/// Made empty, removed with everything in it (read-only files too) at the end.
class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::wstring& Path() const { return m_path; }
    /// The full path of an entry, which need not exist.
    std::wstring operator/(std::wstring_view name) const;

    /// Writes a file and gives its full path.
    std::wstring Write(std::wstring_view name, std::string_view bytes) const;
    /// The file's bytes; a missing file fails the test and gives "".
    std::string Read(std::wstring_view name) const;
    /// Names of all entries, sorted.
    std::vector<std::wstring> List() const;
    /// All files with their bytes: what is lost and what is left behind shows in one comparison. A folder has none.
    Contents ReadAll() const;
    /// Makes a folder in it and gives its full path.
    std::wstring MakeFolder(std::wstring_view name) const;

private:
    std::wstring m_path;
};

/// `text` as UTF-16 little-endian bytes, without a mark.
std::string Utf16(std::wstring_view text);

inline Win32::FileState StateOf(const std::wstring& path) {
    const Win32::FileHandle file(CreateFileW(path.c_str(), READ_CONTROL | FILE_READ_ATTRIBUTES, Win32::kShareAll,
                                             nullptr, OPEN_EXISTING, 0, nullptr));
    Win32::FileState state;
    EXPECT_EQ(Win32::GetState(file.Get(), path, state), 0u);
    EXPECT_EQ(Win32::GetStamp(file.Get(), state.stamp), 0u);
    return state;
}

inline std::vector<std::byte> AccessListOf(const std::wstring& path) {
    return StateOf(path).rights;
}

/// The access list of a descriptor in the system's text form.
inline std::wstring TextOfAccessList(PSECURITY_DESCRIPTOR descriptor) {
    wchar_t* text = nullptr;
    EXPECT_TRUE(ConvertSecurityDescriptorToStringSecurityDescriptorW(descriptor, SDDL_REVISION_1,
                                                                     DACL_SECURITY_INFORMATION, &text, nullptr));
    const Win32::LocalMemory memory(text);
    return text ? text : L"";
}

/// True when everybody may do everything, or nearly that where the system keeps fewer rights.
inline bool IsOpenToAll(PSECURITY_DESCRIPTOR descriptor) {
    const std::wstring list = TextOfAccessList(descriptor);
    return list.find(L"FA;;;WD)") != list.npos || list.find(L"0x1301ff;;;WD)") != list.npos;
}

/// `list` in the system's text form. Gives it back as the file then has it.
inline std::vector<std::byte> GiveAccessList(const std::wstring& path, const wchar_t* list) {
    PSECURITY_DESCRIPTOR raw = nullptr;
    EXPECT_TRUE(ConvertStringSecurityDescriptorToSecurityDescriptorW(list, SDDL_REVISION_1, &raw, nullptr));
    const Win32::LocalMemory descriptor(raw);
    const auto usual = AccessListOf(path);
    EXPECT_TRUE(SetFileSecurityW(path.c_str(), DACL_SECURITY_INFORMATION, raw));
    EXPECT_NE(AccessListOf(path), usual);
    return AccessListOf(path);
}

/// What no folder hands down to new files: administrators only.
inline constexpr wchar_t kNarrowList[] = L"D:(A;;FA;;;BA)";

}  // namespace QVTest
