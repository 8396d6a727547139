// request_fields.h - the fields of an elevated request, as bytes. A number is 4 bytes, little-endian; a text is its
// number of UTF-16 units without the closing zero, the units, and the zero. Pure functions, and thin objects over them
// for the contract.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "host/contract/shelf.h"
#include "sdk/services.h"

namespace QVHost {

using Bytes = std::vector<uint8_t>;

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
