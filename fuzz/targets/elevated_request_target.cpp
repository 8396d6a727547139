// Elevated requests as they come out of the pipe: whatever the bytes, they are read to their end or refused.
#include "fileutils/elevated_request.h"

#include "fileutils/access/security_work.h"
#include "fuzz/input.h"
#include "host/elevated/elevated_protocol.h"
#include "win32/windows.h"

namespace QVFuzz {
namespace {

class Message final : public Quorvane::SDK::IRequestMessage {
public:
    explicit Message(std::span<const uint8_t> payload) : m_payload(payload) {}
    const void* GetData() override { return m_payload.data(); }
    uint32_t GetSize() override { return static_cast<uint32_t>(m_payload.size()); }
    void Reply(uint32_t, uint32_t, uintptr_t, uintptr_t) override {}
    Quorvane::SDK::IRequestReader* CreateReader() override {
        return m_readers.Keep(std::make_shared<QVHost::RequestReader>(m_readers));
    }

private:
    std::span<const uint8_t> m_payload;
    QVHost::Shelf<QVHost::RequestReader> m_readers;
};

}  // namespace

void RunElevatedRequest(Bytes bytes) {
    if (const auto request = QVHost::DecodeRequest(bytes)) {
        const QVHost::Bytes again = QVHost::EncodeRequest(*request);
        Require(std::ranges::equal(again, bytes), "a request is written as it was read");
    }
    QVHost::DecodeReply(bytes);
    // The payload alone, in memory of its own: the header's checks must not be what keeps the reader safe.
    const Exact<char> payload(Input(bytes).Rest());
    Message message({reinterpret_cast<const uint8_t*>(payload.View().data()), payload.View().size()});
    if (const auto grant = FileUtils::ReadMessage<FileUtils::AccessGrant>(message, FileUtils::ReadAccessGrant)) {
        Require(grant->mask != 0 && (grant->mask & ~uint32_t{FILE_ALL_ACCESS}) == 0, "a mask holds rights of files");
        Require(!grant->account.empty(), "an account has a name");
        for (const std::wstring& path : grant->paths) Require(!path.empty(), "so has a path");
    }
    FileUtils::ReadMessage<FileUtils::Paths>(message, FileUtils::ReadPaths);
}

}  // namespace QVFuzz
