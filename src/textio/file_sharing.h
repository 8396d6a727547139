// file_sharing.h - what other programs may do with a file that is open here.
#pragma once

#include <cstdint>

namespace QVUtils {

/// The values are the system's share modes. A file that another program has open for more than is shared cannot be
/// opened (code 32).
enum class FileSharing : uint32_t {
    Read = 1,
    ReadAndWrite = 3,
};

}  // namespace QVUtils
