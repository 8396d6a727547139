// elevated_protocol.h - the messages between a host and its elevated second process, and the fields of a request. Pure
// functions, and thin objects over them for the contract; the pipe is message_pipe's work.
//
// The second process begins with a reply: whether it is ready. Then each request is one message or, where it is long,
// several; what the second process says meanwhile is that it is at work, and last the reply.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/contract/shelf.h"
#include "sdk/services.h"

namespace QVHost {

using Bytes = std::vector<uint8_t>;

/// The fields: a number is 4 bytes, little-endian; a text is its number of UTF-16 units without the closing zero, the
/// units, and the zero.
void AppendNumber(Bytes& bytes, uint32_t value);
void AppendString(Bytes& bytes, std::wstring_view text);

/// Walks over the fields of a request, which somebody else may have written: every count is checked against the bytes
/// that are there. A read that fails answers false and moves nothing.
class FieldReader {
public:
    FieldReader() = default;
    explicit FieldReader(std::span<const uint8_t> bytes) : m_rest(bytes) {}

    bool ReadNumber(uint32_t& value);
    /// `text` points into the bytes. False too for a text without its closing zero, or with a zero inside: read
    /// up to the zero it would be another text than was meant.
    bool ReadString(const wchar_t*& text);

private:
    std::span<const uint8_t> m_rest;
};

/// The most that a request may carry, in bytes: half a million long paths.
inline constexpr uint32_t kLargestPayload = 256 * 1024 * 1024;
/// What stands before it: magic, version, request id, extension index and byte count, each a number of 4 bytes.
inline constexpr uint32_t kRequestHeaderSize = 20;
/// The most bytes of one message of the pipe, in either direction.
inline constexpr uint32_t kLargestMessage = 64 * 1024;

struct Request {
    uint32_t id = 0;
    uint32_t extension = 0;
    std::span<const uint8_t> payload;
};

/// The bytes of a request; its payload must not be over the limit.
Bytes EncodeRequest(const Request& request);

/// How many bytes the request has that `message` begins; nothing unless it begins one of this version.
std::optional<uint32_t> SizeOfRequest(std::span<const uint8_t> message);

/// Nothing unless the bytes are a whole request. The payload points into them.
std::optional<Request> DecodeRequest(std::span<const uint8_t> bytes);

/// The end of a request: a Windows error code, and the lines that its work has left for the log.
struct Reply {
    uint32_t result = 0;
    std::wstring log;
};
/// Lines that do not fit a message are left out.
Bytes EncodeReply(const Reply& reply);
std::optional<Reply> DecodeReply(std::span<const uint8_t> message);

/// What the second process says every few seconds until it replies.
Bytes EncodeAtWork();
bool IsAtWork(std::span<const uint8_t> message);

class RequestWriter final : public Quorvane::SDK::IRequestWriter {
public:
    explicit RequestWriter(Shelf<RequestWriter>& shelf) : m_shelf(shelf) {}

    void WriteNumber(uint32_t value) override;
    void WriteString(const wchar_t* text) override;
    /// Null when a field could not be written for want of memory: half a request must not be sent.
    const void* GetData() override;
    uint32_t GetSize() override;
    void Release() override;

private:
    Shelf<RequestWriter>& m_shelf;
    Bytes m_bytes;
    bool m_isWhole = true;
};

class RequestReader final : public Quorvane::SDK::IRequestReader {
public:
    explicit RequestReader(Shelf<RequestReader>& shelf) : m_shelf(shelf) {}

    /// False for null or data at an odd address, where its texts could not be read in place.
    bool Attach(const void* data, uint32_t size) override;
    bool ReadString(const wchar_t** text) override;
    bool ReadNumber(uint32_t* value) override;
    void Release() override;

private:
    Shelf<RequestReader>& m_shelf;
    FieldReader m_fields;
};

}  // namespace QVHost
