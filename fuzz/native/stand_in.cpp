// stand_in.cpp - what the cores ask of the system, answered by this platform.
#include <cwctype>

#include "win32/code_page.h"
#include "win32/files.h"
#include "win32/path.h"
#include "win32/system_lock.h"
#include "win32/text.h"

namespace Win32 {

wchar_t UpperWide(wchar_t unit) {
    return static_cast<wchar_t>(std::towupper(static_cast<std::wint_t>(unit)));
}

wchar_t LowerWide(wchar_t unit) {
    return static_cast<wchar_t>(std::towlower(static_cast<std::wint_t>(unit)));
}

std::wstring FullPath(const std::wstring& path) {
    return path;
}

std::wstring ExtendedPath(const std::wstring& path) {
    return path;
}

void CloseSystemFile::operator()(void*) const noexcept {}

HeldFile HeldFileOf(void*) noexcept {
    return nullptr;
}

bool Exists(const std::wstring&) {
    return false;
}

uint32_t GetStamp(void*, FileStamp&) {
    return 5;
}

// A target has one thread.
void SystemLock::lock() noexcept {}
void SystemLock::unlock() noexcept {}
void SystemCondition::Wait(std::unique_lock<SystemLock>&, uint32_t) noexcept {}
void SystemCondition::WakeOne() noexcept {}
void SystemCondition::WakeAll() noexcept {}

/// Byte by byte: decoding well is the system's affair.
std::wstring FromCodePage(std::string_view text, uint32_t) {
    std::wstring wide;
    for (const char byte : text) wide += static_cast<wchar_t>(static_cast<uint8_t>(byte));
    return wide;
}

}  // namespace Win32
