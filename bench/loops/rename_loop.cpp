// rename_loop.cpp - one call of the system for each file, and nothing else.
#include <algorithm>
#include <string>

#include "list.h"

#include <windows.h>

namespace {

/// "name.txt" becomes "name-renamed.txt".
bool Rename(const std::wstring& path) {
    std::wstring target = path;
    target.insert(target.rfind(L'.'), L"-renamed");
    return MoveFileExW(path.c_str(), target.c_str(), 0) != FALSE;
}

}  // namespace

int main(int argc, char** argv) {
    return std::ranges::all_of(PathsOfList(argc, argv), Rename) ? 0 : 1;
}
