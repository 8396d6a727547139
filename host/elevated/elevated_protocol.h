// elevated_protocol.h - the messages between a host and its elevated second process. One message of the pipe is one
// request or one reply. Pure functions; the pipe is message_pipe's work.
#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "host/elevated/request_fields.h"

namespace QVHost {

/// The most that a request may carry, in bytes, and the size of what stands before it: magic, version, request id,
/// extension index and byte count, each a number of 4 bytes.
inline constexpr uint32_t kLargestPayload = 16 * 1024 * 1024;
inline constexpr uint32_t kRequestHeaderSize = 20;

struct Request {
    uint32_t id = 0;
    uint32_t extension = 0;
    std::span<const uint8_t> payload;
};

/// The message of a request; its payload must not be over the limit.
Bytes EncodeRequest(const Request& request);

/// Nothing unless the message is a whole request of this version whose byte count agrees with what arrived. The payload
/// points into `message`.
std::optional<Request> DecodeRequest(std::span<const uint8_t> message);

/// A reply holds the magic number and a Windows error code.
Bytes EncodeReply(uint32_t result);
std::optional<uint32_t> DecodeReply(std::span<const uint8_t> message);

}  // namespace QVHost
