#include "fileutils/conversions/text_conversion.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "textio/byte_search.h"

namespace FileUtils {
namespace {

constexpr char kCr = '\r';
constexpr char kLf = '\n';

// What a copy of a short piece moves at a time, beyond its end too.
constexpr size_t kStep = 32;
constexpr size_t kLongPiece = 1024;

/// Copies [begin, end) and gives the place after the copy. Most pieces are words or lines, where a call takes longer
/// than the copy: as long as there is text up to `limit`, and so memory for it, they are copied in whole steps.
char* Copy(const char* begin, const char* end, const char* limit, char* out) {
    const auto size = static_cast<size_t>(end - begin);
    if (size > kLongPiece || static_cast<size_t>(limit - end) < kStep)
        std::memcpy(out, begin, size);
    else
        for (size_t at = 0; at < size; at += kStep) std::memcpy(out + at, begin + at, kStep);
    return out + size;
}

/// Copies [data, end) but for the units that `find` marks: for each of them, `put` writes what takes its place, moves
/// the position it is given on to the text that follows, and gives the place after what it wrote.
template <class Find, class Put>
char* ReplaceUnits(const char* data, const char* end, char* out, Find find, Put put) {
    const char* copied = data;
    for (const char* block = data; block < end; block += std::min<size_t>(QVUtils::kMarks, end - block)) {
        for (uint64_t marks = find(block); marks != 0; marks &= marks - 1) {
            const char* const unit = block + std::countr_zero(marks);
            if (unit < copied) continue;  // the second unit of a break that was taken whole
            out = Copy(copied, unit, end, out);
            copied = unit + 1;
            out = put(unit, copied, out);
        }
    }
    return Copy(copied, end, end, out);
}

}  // namespace

size_t TextConverter::LargestResult(size_t size) const {
    switch (m_conversion) {
        case TextConversion::ToCrLf: return 2 * size + 2 + kStep;  // and a CR left from the block before
        case TextConversion::TabsToSpaces: return std::max<size_t>(m_tabWidth, 1) * size + kStep;
        default: return size + kStep;
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
    const auto find = [end](const char* block) { return QVUtils::MarkUnits(block, end, kCr); };
    return ReplaceUnits(data, end, out, find, [end](const char*, const char*& next, char* to) {
        *to++ = kLf;
        if (next != end && *next == kLf) ++next;
        return to;
    });
}

char* TextConverter::ToCrLf(const char* data, const char* end, char* out) {
    const auto lineEnd = [](char* to) {
        *to++ = kCr;
        *to++ = kLf;
        return to;
    };
    if (m_isAfterCr) {
        out = lineEnd(out);
        if (*data == kLf) ++data;
    }
    m_isAfterCr = data != end && end[-1] == kCr;
    if (m_isAfterCr) --end;  // dropped, unless another block follows
    const auto find = [end](const char* block) {
        return QVUtils::MarkUnits(block, end, kCr) | QVUtils::MarkUnits(block, end, kLf);
    };
    return ReplaceUnits(data, end, out, find, [end, lineEnd](const char* unit, const char*& next, char* to) {
        if (*unit == kCr && next != end && *next == kLf) ++next;
        return lineEnd(to);
    });
}

char* TextConverter::ToCr(const char* data, const char* end, char* out) {
    const bool isAfterCr = m_isAfterCr;
    m_isAfterCr = end[-1] == kCr;
    const auto find = [end](const char* block) { return QVUtils::MarkUnits(block, end, kLf); };
    return ReplaceUnits(data, end, out, find, [=](const char* unit, const char*&, char* to) {
        const bool isCrLf = unit == data ? isAfterCr : unit[-1] == kCr;
        if (!isCrLf) *to++ = kCr;
        return to;
    });
}

char* TextConverter::ExpandTabs(const char* data, const char* end, char* out) const {
    const auto find = [end](const char* block) { return QVUtils::MarkUnits(block, end, '\t'); };
    return ReplaceUnits(data, end, out, find, [width = m_tabWidth](const char*, const char*&, char* to) {
        for (size_t at = 0; at < width; at += kStep) std::memset(to + at, ' ', kStep);
        return to + width;
    });
}

}  // namespace FileUtils
