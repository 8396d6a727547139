// Elevated requests as they come out of the pipe: whatever the bytes, they are read to their end or refused.
#include "fileutils/elevated_request.h"

#include "fileutils/access/security_work.h"
#include "fuzz/elevated_message.h"
#include "fuzz/input.h"
#include "host/elevated/elevated_protocol.h"
#include "win32/windows.h"

namespace QVFuzz {

void RunElevatedRequest(Bytes bytes) {
    if (const auto request = QVHost::DecodeRequest(bytes)) {
        const QVHost::Bytes again = QVHost::EncodeRequest(*request);
        Require(std::ranges::equal(again, bytes), "a request is written as it was read");
    }
    QVHost::DecodeReply(bytes);
    // The payload alone, in memory of its own: the header's checks must not be what keeps the reader safe.
    const Exact<char> payload(Input(bytes).Rest());
    ElevatedMessage message({reinterpret_cast<const uint8_t*>(payload.View().data()), payload.View().size()});
    if (const auto grant = FileUtils::ReadMessage<FileUtils::AccessGrant>(message, FileUtils::ReadAccessGrant)) {
        Require(grant->mask != 0 && (grant->mask & ~uint32_t{FILE_ALL_ACCESS}) == 0, "a mask holds rights of files");
        Require(!grant->account.empty(), "an account has a name");
        for (const std::wstring& path : grant->paths) Require(!path.empty(), "so has a path");
    }
    FileUtils::ReadMessage<FileUtils::Paths>(message, FileUtils::ReadPaths);
}

}  // namespace QVFuzz
