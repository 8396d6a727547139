// windows.h - as much of the system's header as the files around the cores need to compile where there is no Windows.
// The cores themselves do not include it. Calls that would reach a disk fail.
#pragma once

#include <cstdint>

using BOOL = int;
using DWORD = uint32_t;
using LONG = int32_t;
using SECURITY_INFORMATION = DWORD;
using PSECURITY_DESCRIPTOR = void*;
using HANDLE = void*;
using HLOCAL = void*;
using LARGE_INTEGER = union { int64_t QuadPart; };
using HMODULE = void*;
using PSID = void*;
using LPVOID = void*;
using LPDWORD = DWORD*;
using LPWSTR = wchar_t*;
using LPCWSTR = const wchar_t*;
using ULONG = uint32_t;
using PULONG = ULONG*;
using BOOLEAN = uint8_t;
enum SID_NAME_USE { SidTypeUser = 1 };
#define WINAPI

#define INVALID_HANDLE_VALUE (reinterpret_cast<HANDLE>(intptr_t{-1}))
inline constexpr DWORD GENERIC_READ = 0x80000000;
inline constexpr DWORD GENERIC_WRITE = 0x40000000;
inline constexpr DWORD FILE_SHARE_READ = 1;
inline constexpr DWORD FILE_SHARE_WRITE = 2;
inline constexpr DWORD FILE_SHARE_DELETE = 4;
inline constexpr DWORD OPEN_EXISTING = 3;
inline constexpr DWORD CREATE_ALWAYS = 2;
inline constexpr DWORD CREATE_NEW = 1;
inline constexpr DWORD ERROR_SUCCESS = 0;
inline constexpr DWORD ERROR_ALREADY_EXISTS = 183;
inline constexpr DWORD ERROR_MORE_DATA = 234;

inline DWORD GetLastError() {
    return 5;
}
inline void SetLastError(DWORD) {}
inline BOOL CloseHandle(HANDLE) {
    return 1;
}
inline void FindClose(HANDLE) {}
inline void FreeLibrary(HMODULE) {}
inline void* GetProcAddress(HMODULE, const char*) {
    return nullptr;
}
inline DWORD GetLengthSid(PSID) {
    return 8;
}
inline BOOL GetUserNameW(wchar_t*, DWORD*) {
    return 0;
}
inline void LocalFree(HLOCAL) {}
inline HANDLE CreateFileW(const wchar_t*, DWORD, DWORD, void*, DWORD, DWORD, HANDLE) {
    return INVALID_HANDLE_VALUE;
}
inline BOOL GetFileSizeEx(HANDLE, LARGE_INTEGER*) {
    return 0;
}
inline BOOL ReadFile(HANDLE, void*, DWORD, DWORD*, void*) {
    return 0;
}
inline BOOL WriteFile(HANDLE, const void*, DWORD, DWORD*, void*) {
    return 0;
}
