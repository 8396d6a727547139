#include "host/elevated/elevated_protocol.h"

#include <algorithm>

#include "host/contract/host_boundary.h"

namespace QVHost {
namespace {

constexpr size_t kNumberSize = 4;  // bytes
constexpr size_t kUnitSize = 2;    // bytes

constexpr uint32_t kRequestMagic = 0x51455651;  // "QVEQ"
constexpr uint32_t kReplyMagic = 0x52455651;    // "QVER"
constexpr uint32_t kAtWorkMagic = 0x57455651;   // "QVEW"
constexpr uint32_t kVersion = 2;
constexpr size_t kLongestLog = kLargestMessage / kUnitSize - 8;  // units; the rest is for what stands around them

}  // namespace

void AppendNumber(Bytes& bytes, uint32_t value) {
    for (int shift = 0; shift < 32; shift += 8) bytes.push_back(static_cast<uint8_t>(value >> shift));
}

void AppendString(Bytes& bytes, std::wstring_view text) {
    AppendNumber(bytes, static_cast<uint32_t>(text.size()));
    const auto* const units = reinterpret_cast<const uint8_t*>(text.data());
    bytes.insert(bytes.end(), units, units + text.size() * kUnitSize);
    bytes.insert(bytes.end(), kUnitSize, 0);
}

bool FieldReader::ReadNumber(uint32_t& value) {
    if (m_rest.size() < kNumberSize) return false;
    value = 0;
    for (size_t at = 0; at < kNumberSize; ++at) value |= static_cast<uint32_t>(m_rest[at]) << (8 * at);
    m_rest = m_rest.subspan(kNumberSize);
    return true;
}

bool FieldReader::ReadString(const wchar_t*& text) {
    FieldReader ahead = *this;
    uint32_t units = 0;
    if (!ahead.ReadNumber(units)) return false;
    const uint64_t size = (uint64_t{units} + 1) * kUnitSize;
    if (size > ahead.m_rest.size()) return false;
    const auto* const first = reinterpret_cast<const wchar_t*>(ahead.m_rest.data());
    // The first zero must be the closing one.
    if (std::find(first, first + units + 1, L'\0') != first + units) return false;
    text = first;
    m_rest = ahead.m_rest.subspan(static_cast<size_t>(size));
    return true;
}

Bytes EncodeRequest(const Request& request) {
    Bytes message;
    message.reserve(kRequestHeaderSize + request.payload.size());
    for (const uint32_t number :
         {kRequestMagic, kVersion, request.id, request.extension, static_cast<uint32_t>(request.payload.size())})
        AppendNumber(message, number);
    message.insert(message.end(), request.payload.begin(), request.payload.end());
    return message;
}

std::optional<uint32_t> SizeOfRequest(std::span<const uint8_t> message) {
    FieldReader fields(message);
    uint32_t magic = 0;
    uint32_t version = 0;
    uint32_t unused = 0;
    uint32_t size = 0;
    if (!fields.ReadNumber(magic) || !fields.ReadNumber(version) || !fields.ReadNumber(unused) ||
        !fields.ReadNumber(unused) || !fields.ReadNumber(size))
        return std::nullopt;
    if (magic != kRequestMagic || version != kVersion || size > kLargestPayload) return std::nullopt;
    return kRequestHeaderSize + size;
}

std::optional<Request> DecodeRequest(std::span<const uint8_t> bytes) {
    if (SizeOfRequest(bytes) != bytes.size()) return std::nullopt;
    FieldReader fields(bytes.subspan(2 * kNumberSize));
    Request request;
    fields.ReadNumber(request.id);
    fields.ReadNumber(request.extension);
    request.payload = bytes.subspan(kRequestHeaderSize);
    return request;
}

Bytes EncodeReply(const Reply& reply) {
    Bytes message;
    AppendNumber(message, kReplyMagic);
    AppendNumber(message, reply.result);
    AppendString(message, std::wstring_view(reply.log).substr(0, kLongestLog));
    return message;
}

std::optional<Reply> DecodeReply(std::span<const uint8_t> message) {
    FieldReader fields(message);
    Reply reply;
    uint32_t magic = 0;
    const wchar_t* log = nullptr;
    if (!fields.ReadNumber(magic) || !fields.ReadNumber(reply.result) || !fields.ReadString(log)) return std::nullopt;
    if (magic != kReplyMagic) return std::nullopt;
    reply.log = log;
    return reply;
}

Bytes EncodeAtWork() {
    Bytes message;
    AppendNumber(message, kAtWorkMagic);
    return message;
}

bool IsAtWork(std::span<const uint8_t> message) {
    return std::ranges::equal(message, EncodeAtWork());
}

void RequestWriter::WriteNumber(uint32_t value) {
    m_isWhole = m_isWhole && Guarded(false, [&] {
                    AppendNumber(m_bytes, value);
                    return true;
                });
}

void RequestWriter::WriteString(const wchar_t* text) {
    m_isWhole = m_isWhole && Guarded(false, [&] {
                    AppendString(m_bytes, text ? text : L"");
                    return true;
                });
}

const void* RequestWriter::GetData() {
    return m_isWhole ? m_bytes.data() : nullptr;
}

uint32_t RequestWriter::GetSize() {
    return static_cast<uint32_t>(m_bytes.size());
}

void RequestWriter::Release() {
    GuardedCall([&] { m_shelf.Remove(this); });
}

bool RequestReader::Attach(const void* data, uint32_t size) {
    if (!data || reinterpret_cast<uintptr_t>(data) % alignof(wchar_t) != 0) return false;
    m_fields = FieldReader({static_cast<const uint8_t*>(data), size});
    return true;
}

bool RequestReader::ReadString(const wchar_t** text) {
    return text && m_fields.ReadString(*text);
}

bool RequestReader::ReadNumber(uint32_t* value) {
    return value && m_fields.ReadNumber(*value);
}

void RequestReader::Release() {
    GuardedCall([&] { m_shelf.Remove(this); });
}

}  // namespace QVHost
