#include "host/elevated/request_fields.h"

#include <algorithm>

#include "host/contract/host_boundary.h"

namespace QVHost {
namespace {

constexpr size_t kNumberSize = 4;  // bytes
constexpr size_t kUnitSize = 2;    // bytes

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
