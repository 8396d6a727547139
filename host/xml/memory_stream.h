// memory_stream.h - bytes as the stream that the system's XML readers and writers take. A path would reach them as an
// address: "a%41.xml" would be read from "aA.xml", and no path over 260 units would be found.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "win32/com.h"

#include <objidl.h>

namespace QVHost {

/// A stream that holds a copy of `bytes` and stands at their beginning; none where memory has run out.
Win32::ComPtr<IStream> StreamOf(std::string_view bytes);

/// All that `stream` holds, wherever it stands. A Windows error code, 0 for success.
uint32_t ReadStream(IStream& stream, std::string& bytes);

}  // namespace QVHost
