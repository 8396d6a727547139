// encoding.h - what kind of text some bytes are. Works on a sample; opening the file is the caller's work.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace QVUtils {

/// Numbers are part of the contract with callbacks and of the log readers' expectations.
enum class EncodingKind : uint32_t {
    CodePage = 1,  // 8-bit text in the thread's code page
    Utf16 = 2,     // little-endian
    Utf8 = 3,
    NotText = 4,
};

/// The kind of text that `size` bytes (the first 1024 of a file, or all of a shorter one) begin.
///
/// The rules in order: a UTF-16 mark; five 16-bit units below 256 that are not zero; a UTF-8 mark; an XML declaration
/// that names "UTF-8"; else the share of suspicious bytes decides between text and not text. UTF-8 without a mark, in
/// scripts whose bytes count as suspicious, is called not text: that is how the rule is meant. No bytes are text.
EncodingKind DetectEncoding(const uint8_t* sample, size_t size);

/// Bytes of the byte-order mark that the sample of a text of this kind begins with: 2, 3, or 0 when there is none.
size_t ByteOrderMarkSize(EncodingKind kind, const uint8_t* sample, size_t size);

}  // namespace QVUtils
