#include "host/elevated/elevated_protocol.h"

namespace QVHost {
namespace {

constexpr uint32_t kRequestMagic = 0x51455651;  // "QVEQ"
constexpr uint32_t kReplyMagic = 0x52455651;    // "QVER"
constexpr uint32_t kVersion = 1;
constexpr size_t kReplySize = 8;

}  // namespace

Bytes EncodeRequest(const Request& request) {
    Bytes message;
    message.reserve(kRequestHeaderSize + request.payload.size());
    for (const uint32_t number :
         {kRequestMagic, kVersion, request.id, request.extension, static_cast<uint32_t>(request.payload.size())})
        AppendNumber(message, number);
    message.insert(message.end(), request.payload.begin(), request.payload.end());
    return message;
}

std::optional<Request> DecodeRequest(std::span<const uint8_t> message) {
    FieldReader fields(message);
    Request request;
    uint32_t magic = 0;
    uint32_t version = 0;
    uint32_t size = 0;
    if (!fields.ReadNumber(magic) || !fields.ReadNumber(version) || !fields.ReadNumber(request.id) ||
        !fields.ReadNumber(request.extension) || !fields.ReadNumber(size))
        return std::nullopt;
    if (magic != kRequestMagic || version != kVersion || size > kLargestPayload) return std::nullopt;
    if (message.size() != kRequestHeaderSize + size_t{size}) return std::nullopt;
    request.payload = message.subspan(kRequestHeaderSize);
    return request;
}

Bytes EncodeReply(uint32_t result) {
    Bytes message;
    AppendNumber(message, kReplyMagic);
    AppendNumber(message, result);
    return message;
}

std::optional<uint32_t> DecodeReply(std::span<const uint8_t> message) {
    FieldReader fields(message);
    uint32_t magic = 0;
    uint32_t result = 0;
    if (message.size() != kReplySize || !fields.ReadNumber(magic) || !fields.ReadNumber(result)) return std::nullopt;
    if (magic != kReplyMagic) return std::nullopt;
    return result;
}

}  // namespace QVHost
