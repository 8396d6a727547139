#include "fileutils/conversions/text_conversion.h"

#include <algorithm>
#include <cstring>

#include "textio/byte_search.h"

namespace FileUtils {
namespace {

constexpr char kCr = '\r';
constexpr char kLf = '\n';

/// Copies [begin, end) and gives the place after the copy.
char* Copy(const char* begin, const char* end, char* out) {
    const auto size = static_cast<size_t>(end - begin);
    std::memcpy(out, begin, size);
    return out + size;
}

}  // namespace

size_t TextConverter::LargestResult(size_t size) const {
    switch (m_conversion) {
        case TextConversion::ToCrLf: return 2 * size + 2;  // and a CR left from the block before
        case TextConversion::TabsToSpaces: return std::max<size_t>(m_tabWidth, 1) * size;
        default: return size;
    }
}

size_t TextConverter::Convert(const char* data, size_t size, char* out) {
    if (size == 0) return 0;
    const char* const end = data + size;
    switch (m_conversion) {
        case TextConversion::ToLf: return static_cast<size_t>(ToLf(data, end, out) - out);
        case TextConversion::ToCrLf: return static_cast<size_t>(ToCrLf(data, end, out) - out);
        case TextConversion::ToCr: return static_cast<size_t>(ToCr(data, end, out) - out);
        default: return static_cast<size_t>(ExpandTabs(data, end, out) - out);
    }
}

char* TextConverter::ToLf(const char* data, const char* end, char* out) {
    if (m_isAfterCr && *data == kLf) ++data;  // its line end was written with the block before
    m_isAfterCr = end[-1] == kCr;
    while (data != end) {
        const char* const found = QVUtils::FindUnit(data, end, kCr);
        out = Copy(data, found, out);
        if (found == end) break;
        *out++ = kLf;
        data = found + 1;
        if (data != end && *data == kLf) ++data;
    }
    return out;
}

char* TextConverter::ToCrLf(const char* data, const char* end, char* out) {
    const auto lineEnd = [&out] {
        *out++ = kCr;
        *out++ = kLf;
    };
    if (m_isAfterCr) {
        lineEnd();
        if (*data == kLf) ++data;
        m_isAfterCr = false;
    }
    while (data != end) {
        const char* const found = QVUtils::FindLineBreak(data, end);
        out = Copy(data, found, out);
        if (found == end) break;
        data = found + 1;
        if (*found == kCr && data == end) {
            m_isAfterCr = true;  // dropped, unless another block follows
            break;
        }
        lineEnd();
        if (*found == kCr && *data == kLf) ++data;
    }
    return out;
}

char* TextConverter::ToCr(const char* data, const char* end, char* out) {
    if (m_isAfterCr && *data == kLf) ++data;
    m_isAfterCr = end[-1] == kCr;
    while (data != end) {
        const char* const found = QVUtils::FindUnit(data, end, kLf);
        out = Copy(data, found, out);
        if (found == end) break;
        if (found == data || found[-1] != kCr) *out++ = kCr;
        data = found + 1;
    }
    return out;
}

char* TextConverter::ExpandTabs(const char* data, const char* end, char* out) const {
    while (data != end) {
        const char* const found = QVUtils::FindUnit(data, end, '\t');
        out = Copy(data, found, out);
        if (found == end) break;
        std::memset(out, ' ', m_tabWidth);
        out += m_tabWidth;
        data = found + 1;
    }
    return out;
}

}  // namespace FileUtils
