// reparse.h - the block of bytes that makes a folder a junction. Opening the folder and setting it is link_system.cpp's
// work.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace FileUtils {

/// The system's own limit of a reparse point.
inline constexpr size_t kReparseBufferSize = 16 * 1024;  // bytes

struct ReparseBuffer {
    std::vector<uint8_t> bytes;  // kReparseBufferSize of them, zero after what is used
    uint32_t usedSize = 0;       // what is handed to the system
};

/// A mount point that leads to `substituteName` (a path as the system's core writes it: \??\C:\folder) and has no name
/// to print. Nothing when the name does not fit into the block.
std::optional<ReparseBuffer> JunctionReparseBuffer(std::wstring_view substituteName);

}  // namespace FileUtils
