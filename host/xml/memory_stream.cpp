#include "host/xml/memory_stream.h"

#include <shlwapi.h>

namespace QVHost {

Win32::ComPtr<IStream> StreamOf(std::string_view bytes) {
    const auto* const first = reinterpret_cast<const BYTE*>(bytes.data());
    Win32::ComPtr<IStream> stream;
    *stream.GetAddressOf() = SHCreateMemStream(first, static_cast<UINT>(bytes.size()));
    return stream;
}

uint32_t ReadStream(IStream& stream, std::string& bytes) {
    STATSTG state = {};
    const LARGE_INTEGER start = {};
    if (FAILED(stream.Stat(&state, STATFLAG_NONAME)) || FAILED(stream.Seek(start, STREAM_SEEK_SET, nullptr)))
        return ERROR_READ_FAULT;
    std::string content(static_cast<size_t>(state.cbSize.QuadPart), '\0');
    ULONG read = 0;
    if (FAILED(stream.Read(content.data(), static_cast<ULONG>(content.size()), &read)) || read != content.size())
        return ERROR_READ_FAULT;
    bytes = std::move(content);
    return ERROR_SUCCESS;
}

}  // namespace QVHost
