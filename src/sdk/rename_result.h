// rename_result.h - what the host says of each row that it renames.
#pragma once

#include <cstdint>

namespace Quorvane::SDK {

/// Result codes that are no Windows error of a rename.
namespace RenameResult {
inline constexpr uint32_t Renamed = 0;
inline constexpr uint32_t Ignored = 10;
}  // namespace RenameResult

/// Hears of every row of a rename. Its slots are this library's choice. Called on the thread that asked for the
/// renames; false from either operation lets no further row begin.
class IRenameResultCallback {
public:
    virtual bool OnRenameStarting(uint32_t row) = 0;               // slot 0: false: not this row either
    virtual bool OnRenameResult(uint32_t row, uint32_t code) = 0;  // slot 1: RenameResult, else a Windows error code

protected:
    ~IRenameResultCallback() = default;
};

}  // namespace Quorvane::SDK
