#include "support/temporary_folder.h"

#include <algorithm>
#include <atomic>

#include <gtest/gtest.h>

#include "win32/folder.h"
#include "win32/handle.h"
#include "win32/path.h"

namespace QVTest {
namespace {

/// Works on names as they stand, also on those that only an extended path reaches.
void RemoveTree(const std::wstring& folder) {
    Win32::ListFolder(folder, [&](std::wstring_view name, uint32_t attributes) {
        const std::wstring path = Win32::ExtendedPath(Win32::JoinPath(folder, name));
        SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);
        if (attributes & FILE_ATTRIBUTE_DIRECTORY)
            RemoveTree(path);
        else
            DeleteFileW(path.c_str());
    });
    RemoveDirectoryW(Win32::ExtendedPath(folder).c_str());
}

}  // namespace

TemporaryFolder::TemporaryFolder() {
    static std::atomic<unsigned> counter = 0;
    std::wstring base(MAX_PATH + 1, L'\0');
    base.resize(GetTempPathW(static_cast<DWORD>(base.size()), base.data()));
    const std::wstring name = L"qvtest-" + std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(++counter);
    m_path = Win32::JoinPath(base, name);
    RemoveTree(m_path);
    if (!CreateDirectoryW(m_path.c_str(), nullptr)) ADD_FAILURE() << "cannot make the test's folder";
}

TemporaryFolder::~TemporaryFolder() {
    RemoveTree(m_path);
}

std::wstring TemporaryFolder::operator/(std::wstring_view name) const {
    return Win32::JoinPath(m_path, name);
}

std::wstring TemporaryFolder::Write(std::wstring_view name, std::string_view bytes) const {
    const std::wstring path = *this / name;
    const Win32::FileHandle file(CreateFileW(Win32::ExtendedPath(path).c_str(), GENERIC_WRITE, 0, nullptr,
                                             CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    DWORD written = 0;
    if (!file || !WriteFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) ||
        written != bytes.size())
        ADD_FAILURE() << "cannot write a test file, error " << GetLastError();
    return path;
}

std::string TemporaryFolder::Read(std::wstring_view name) const {
    const Win32::FileHandle file(CreateFileW(Win32::ExtendedPath(*this / name).c_str(), GENERIC_READ,
                                             FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr));
    LARGE_INTEGER size = {};
    if (!file || !GetFileSizeEx(file.Get(), &size)) {
        ADD_FAILURE() << "cannot read a test file, error " << GetLastError();
        return {};
    }
    std::string bytes(static_cast<size_t>(size.QuadPart), '\0');
    DWORD read = 0;
    ReadFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &read, nullptr);
    bytes.resize(read);
    return bytes;
}

std::vector<std::wstring> TemporaryFolder::List() const {
    std::vector<std::wstring> names;
    Win32::ListFolder(m_path, L"*", names);
    std::ranges::sort(names);
    return names;
}

Contents TemporaryFolder::ReadAll() const {
    Contents contents;
    Win32::ListFolder(m_path, [&](std::wstring_view name, uint32_t attributes) {
        contents[std::wstring(name)] = attributes & FILE_ATTRIBUTE_DIRECTORY ? std::string() : Read(name);
    });
    return contents;
}

std::wstring TemporaryFolder::MakeFolder(std::wstring_view name) const {
    const std::wstring path = *this / name;
    if (!CreateDirectoryW(Win32::ExtendedPath(path).c_str(), nullptr)) ADD_FAILURE() << "cannot make a folder";
    return path;
}

std::string Utf16(std::wstring_view text) {
    return {reinterpret_cast<const char*>(text.data()), text.size() * sizeof(wchar_t)};
}

}  // namespace QVTest
