#include "security/streams.h"

#include <array>
#include <optional>

#include "security/privilege.h"
#include "win32/handle.h"
#include "win32/path.h"

namespace Security {
namespace {

constexpr size_t kBlockSize = 65536;  // bytes; on the stack, so that threads need neither a lock nor an allocation

}  // namespace

StreamFigures QueryStreamFigures(const std::wstring& path, const SecuritySystem& system) {
    const std::wstring name = Win32::ExtendedPath(path);
    const DWORD attributes = GetFileAttributesW(name.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) return {};
    const bool isFolder = (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    std::optional<ScopedPrivilege> backup;
    // Whether it is held or not, the folder is tried.
    if (isFolder) backup.emplace(SE_BACKUP_NAME);
    // No access rights are asked for: the streams' names and sizes count as attributes.
    const Win32::FileHandle file(CreateFileW(name.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                             OPEN_EXISTING, isFolder ? FILE_FLAG_BACKUP_SEMANTICS : 0, nullptr));
    if (!file) return {};
    alignas(uint64_t) std::array<uint8_t, kBlockSize> block = {};
    system.queryStreams(file.Get(), block.data(), kBlockSize);
    return FiguresOfStreams(block);
}

}  // namespace Security
