// small_files_loop.cpp - the system calls of a safe replacement and nothing else: read, write beside, keep the original
// aside, move into its place, remove the original.
#include <algorithm>
#include <string>
#include <string_view>

#include "list.h"

#include <windows.h>

namespace {

std::string Read(const std::wstring& path) {
    const HANDLE file = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    LARGE_INTEGER size = {};
    GetFileSizeEx(file, &size);
    std::string text(static_cast<size_t>(size.QuadPart), '\0');
    DWORD read = 0;
    ReadFile(file, text.data(), static_cast<DWORD>(text.size()), &read, nullptr);
    CloseHandle(file);
    return text;
}

bool Write(const std::wstring& path, const std::string& text) {
    const HANDLE file = CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr);
    DWORD written = 0;
    WriteFile(file, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
    return CloseHandle(file) && written == text.size();
}

bool Replace(const std::wstring& path) {
    constexpr std::string_view kFind = "needle";
    std::string text = Read(path);
    const size_t hit = text.find(kFind);
    if (hit == std::string::npos) return false;
    text.replace(hit, kFind.size(), "pin");
    const std::wstring beside = path + L".new";
    const std::wstring aside = path + L".bak";
    return Write(beside, text) && MoveFileExW(path.c_str(), aside.c_str(), 0) &&
           MoveFileExW(beside.c_str(), path.c_str(), 0) && DeleteFileW(aside.c_str());
}

}  // namespace

int main(int argc, char** argv) {
    return std::ranges::all_of(PathsOfList(argc, argv), Replace) ? 0 : 1;
}
