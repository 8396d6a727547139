// list.h - what the bare loops share: the paths of a list, as the system's functions take them.
#pragma once

#include <string>
#include <vector>

/// The paths of a list file, one a line, in UTF-8 with slashes. Ends the program with status 2 when it cannot be read.
std::vector<std::wstring> PathsOfList(int argc, char** argv);
