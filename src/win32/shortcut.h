// shortcut.h - shortcuts of the shell, written and read whole. Each call uses COM on the calling thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace Win32 {

struct Shortcut {
    std::wstring target;
    std::wstring arguments = {};  // "": none; so are the next two
    std::wstring workingFolder = {};
    std::wstring description = {};

    bool operator==(const Shortcut&) const = default;
};

/// Writes the file, which takes the place of one that is there. Windows error code, 0 for success; the shell tells no
/// more of a failure than that the path cannot be used (3).
uint32_t SaveShortcut(const std::wstring& file, const Shortcut& shortcut);

/// Nothing when the file is no shortcut, or leads to something that has no path.
std::optional<Shortcut> ReadShortcut(const std::wstring& file);

}  // namespace Win32
