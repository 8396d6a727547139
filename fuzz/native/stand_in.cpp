// stand_in.cpp - what the cores ask of the system, answered by this platform.
#include <pthread.h>

#include <cwctype>

#include "win32/code_page.h"
#include "win32/files.h"
#include "win32/path.h"
#include "win32/stack.h"
#include "win32/text.h"

namespace Win32 {

const char* StackFloor(size_t reserve) {
    static thread_local const char* low = nullptr;
    if (!low) {
        pthread_attr_t attributes;
        void* address = nullptr;
        size_t size = 0;
        pthread_getattr_np(pthread_self(), &attributes);
        pthread_attr_getstack(&attributes, &address, &size);
        pthread_attr_destroy(&attributes);
        low = static_cast<const char*>(address);
    }
    return low + reserve;
}

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

bool Exists(const std::wstring&) {
    return false;
}

uint32_t GetStamp(void*, FileStamp&) {
    return 5;
}

/// Byte by byte: decoding well is the system's affair.
std::wstring FromCodePage(std::string_view text, uint32_t) {
    return {text.begin(), text.end()};
}

}  // namespace Win32
