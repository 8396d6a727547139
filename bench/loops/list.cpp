#include "list.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>

#include <windows.h>

std::vector<std::wstring> PathsOfList(int argc, char** argv) {
    std::ifstream file(argc == 2 ? argv[1] : "", std::ios::binary);
    if (!file) {
        std::fprintf(stderr, "give the list of the files\n");
        std::exit(2);
    }
    std::vector<std::wstring> paths;
    for (std::string line; std::getline(file, line);) {
        std::wstring path(line.size(), L'\0');
        path.resize(static_cast<size_t>(MultiByteToWideChar(CP_UTF8, 0, line.data(), static_cast<int>(line.size()),
                                                            path.data(), static_cast<int>(path.size()))));
        for (wchar_t& unit : path)
            if (unit == L'/') unit = L'\\';
        paths.push_back(L"Z:" + path);
    }
    return paths;
}
