// elevated_request.h - requests to the elevated host process, from both ends: how one is sent, and how its fields are
// read back, and which paths it serves. What the fields mean is up to those who use them.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "sdk/owners.h"

namespace FileUtils {

/// True for the path of a file or folder on a drive (`C:\a`) or a share (`\\server\share\a`), either also with the
/// prefix of long paths (`\\?\C:\a`, `\\?\UNC\server\share\a`). False for a path that depends on a current folder or
/// drive, a key of the registry, a device (also `C:\NUL`), a pipe, and a stream of a file.
bool IsFullFilePath(std::wstring_view path);

/// True for `\\server\USERS\...` and the other names of a registry's root where a share's name stands: the system's
/// calls for access rights take such a path for a key on that machine.
bool IsRemoteRegistryKey(std::wstring_view path);

/// True for what may stand in a symbolic link: the path of a file as above, or one seen from the link.
bool IsSymbolicLinkTarget(std::wstring_view path);

using WriteFields = std::function<void(Quorvane::SDK::IRequestWriter&)>;

/// Sends the fields that `write` writes and waits for the reply, a Windows error code. 5 when they cannot be written.
/// Nothing when there is no way to that process. `path` is one that the request is about.
std::optional<uint32_t> SendElevated(Quorvane::SDK::IHostServices& host, uint32_t requestId, const std::wstring& path,
                                     const WriteFields& write);

/// The same over a channel at hand. It is connected and, whatever `write` throws, closed again; the writer is released
/// after that.
std::optional<uint32_t> SendOver(Quorvane::SDK::IElevatedChannel& channel, uint32_t requestId,
                                 const WriteFields& write);

/// The fields of a message that anybody may have written. One that cannot be read makes the whole message refused; from
/// then on numbers are 0 and texts "".
class RequestFields {
public:
    /// `size`: of the message, in bytes.
    RequestFields(Quorvane::SDK::IRequestReader& reader, uint32_t size) : m_reader(reader), m_size(size) {}

    uint32_t Number();
    /// At least one unit, at most the longest path of the system.
    std::wstring Text();
    /// A text that is the path of a file or folder and of nothing else.
    std::wstring FilePath();
    /// A number and as many of those.
    std::vector<std::wstring> FilePaths();
    void Refuse() { m_isGood = false; }
    bool IsGood() const { return m_isGood; }

private:
    Quorvane::SDK::IRequestReader& m_reader;
    uint32_t m_size;
    bool m_isGood = true;
};

/// What `read` makes of the message's fields; nothing when one of them is refused. A host may send more bytes than the
/// fields take (it may pad them), and nobody looks at those.
template <class Request>
std::optional<Request> ReadMessage(Quorvane::SDK::IRequestMessage& message, Request (*read)(RequestFields&)) {
    const uint32_t size = message.GetSize();
    const Quorvane::SDK::Owned<Quorvane::SDK::IRequestReader> reader(message.CreateReader());
    if (!reader || !reader->Attach(message.GetData(), size)) return std::nullopt;
    RequestFields fields(*reader, size);
    Request request = read(fields);
    return fields.IsGood() ? std::optional<Request>(std::move(request)) : std::nullopt;
}

}  // namespace FileUtils
