// columns_loop.cpp - reads what the four columns are made of, for each file and nothing else: the descriptors of owner
// and access, and for the number and the size of the streams the file opened once each.
#include <string>

#include "list.h"

#include <windows.h>

namespace {

void ReadDescriptor(const std::wstring& path, SECURITY_INFORMATION information) {
    char descriptor[1024];
    DWORD size = 0;
    GetFileSecurityW(path.c_str(), information, descriptor, sizeof(descriptor), &size);
}

void OpenForStreams(const std::wstring& path) {
    GetFileAttributesW(path.c_str());
    const HANDLE file =
        CreateFileW(path.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr);
    BY_HANDLE_FILE_INFORMATION information = {};
    GetFileInformationByHandle(file, &information);
    CloseHandle(file);
}

}  // namespace

int main(int argc, char** argv) {
    for (const std::wstring& path : PathsOfList(argc, argv)) {
        ReadDescriptor(path, OWNER_SECURITY_INFORMATION);
        ReadDescriptor(path, DACL_SECURITY_INFORMATION);
        OpenForStreams(path);
        OpenForStreams(path);
    }
    return 0;
}
