// columns_loop.cpp - reads what the four columns are made of, for each file: the descriptors of owner and access, and
// the streams.
#include <algorithm>
#include <string>

#include "list.h"

#include <windows.h>

namespace {

void ReadDescriptor(const std::wstring& path, SECURITY_INFORMATION information) {
    DWORD size = 0;
    GetFileSecurityW(path.c_str(), information, nullptr, 0, &size);
    std::string descriptor(size, '\0');
    GetFileSecurityW(path.c_str(), information, descriptor.data(), size, &size);
}

void ReadStreams(const std::wstring& path) {
    WIN32_FIND_STREAM_DATA stream = {};
    const HANDLE search = FindFirstStreamW(path.c_str(), FindStreamInfoStandard, &stream, 0);
    if (search == INVALID_HANDLE_VALUE) return;
    while (FindNextStreamW(search, &stream)) {
    }
    FindClose(search);
}

}  // namespace

int main(int argc, char** argv) {
    for (const std::wstring& path : PathsOfList(argc, argv)) {
        ReadDescriptor(path, OWNER_SECURITY_INFORMATION);
        ReadDescriptor(path, DACL_SECURITY_INFORMATION);
        ReadStreams(path);
    }
    return 0;
}
