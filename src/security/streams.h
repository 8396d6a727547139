// streams.h - asks the system for the streams of a file or folder. What the records say is stream_records' work.
#pragma once

#include <string>

#include "security/security_system.h"
#include "security/stream_records.h"

namespace Security {

/// No figures (zeros) for a path that does not exist or cannot be opened, and where the system knows no streams. Of
/// more streams than fit into 64 KB of records those that fit are counted.
StreamFigures QueryStreamFigures(const std::wstring& path, const SecuritySystem& system = RealSystem());

}  // namespace Security
