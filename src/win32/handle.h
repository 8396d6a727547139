// handle.h - owners for system handles: one template, one small traits struct per kind of handle.
#pragma once

#include <utility>

#include "win32/windows.h"

namespace Win32 {

/// Owns one system handle. `Traits` says which value means "none" (null or INVALID_HANDLE_VALUE, it depends on the
/// call that makes the handle) and how to close it.
template <class Traits>
class UniqueHandle {
public:
    using Raw = typename Traits::Raw;

    UniqueHandle() = default;
    explicit UniqueHandle(Raw raw) noexcept : m_raw(raw) {}
    UniqueHandle(UniqueHandle&& other) noexcept : m_raw(other.Release()) {}
    UniqueHandle& operator=(UniqueHandle&& other) noexcept {
        Reset(other.Release());
        return *this;
    }
    UniqueHandle(const UniqueHandle&) = delete;
    UniqueHandle& operator=(const UniqueHandle&) = delete;
    ~UniqueHandle() { Reset(); }

    explicit operator bool() const noexcept { return m_raw != Traits::Empty(); }
    Raw Get() const noexcept { return m_raw; }
    Raw Release() noexcept { return std::exchange(m_raw, Traits::Empty()); }

    /// Closes the handle held and takes over `raw`. The thread's last error is kept: closing must not hide the code of
    /// the call that failed.
    void Reset(Raw raw = Traits::Empty()) noexcept {
        if (m_raw != Traits::Empty()) {
            const DWORD error = GetLastError();
            Traits::Close(m_raw);
            SetLastError(error);
        }
        m_raw = raw;
    }

private:
    Raw m_raw = Traits::Empty();
};

/// A handle from CreateFileW or CreateNamedPipeW.
struct FileTraits {
    using Raw = HANDLE;
    static Raw Empty() noexcept { return INVALID_HANDLE_VALUE; }
    static void Close(Raw raw) noexcept { CloseHandle(raw); }
};
using FileHandle = UniqueHandle<FileTraits>;

inline constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

/// A search of a folder, or of a file's streams.
struct FindTraits {
    using Raw = HANDLE;
    static Raw Empty() noexcept { return INVALID_HANDLE_VALUE; }
    static void Close(Raw raw) noexcept { FindClose(raw); }
};
using FindHandle = UniqueHandle<FindTraits>;

/// A handle of the kernel that is null when there is none: events, processes, threads, tokens.
struct KernelTraits {
    using Raw = HANDLE;
    static Raw Empty() noexcept { return nullptr; }
    static void Close(Raw raw) noexcept { CloseHandle(raw); }
};
using KernelHandle = UniqueHandle<KernelTraits>;

/// Memory that the system hands out to be given back with LocalFree.
struct LocalMemoryTraits {
    using Raw = HLOCAL;
    static Raw Empty() noexcept { return nullptr; }
    static void Close(Raw raw) noexcept { LocalFree(raw); }
};
using LocalMemory = UniqueHandle<LocalMemoryTraits>;

}  // namespace Win32
