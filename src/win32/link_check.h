// link_check.h - whether a path leads out of the folder that it names.
#pragma once

#include <string>

namespace Win32 {

/// True for a symbolic link and whatever else the system follows from that name (a reparse point), also one that leads
/// nowhere, and for a file that lies in another folder than the path says. False for a name that is free. Where the
/// system shows a link that leads nowhere as a free name, only creating a file that must be new finds out.
bool IsLink(const std::wstring& path);

}  // namespace Win32
