// base64.h - bytes as text of 64 letters (RFC 4648) and back, and the lines that such text is written in. Bytes in,
// bytes out; the header around it is mime_header.h, the files are the command's work.
#pragma once

#include <cstddef>
#include <cstdint>

namespace FileUtils {

/// Both directions. Encoding keeps nothing from block to block; decoding is done by one object for each text.
class CBase64 {
public:
    /// Characters that `size` bytes become, padding included.
    static constexpr size_t EncodedSize(size_t size) { return (size + 2) / 3 * 4; }

    /// Encodes `size` bytes into `text` and gives the number of characters. A size that is no multiple of three is
    /// padded with "=": only a text's last block may have one.
    static size_t Encode(const uint8_t* data, size_t size, char* text);

    /// The room that decoding a block of `size` characters needs: its bytes, and one that is written over again.
    static constexpr size_t LargestDecoded(size_t size) { return size / 4 * 3 + 4; }

    /// Decodes the next block into `data` and gives the number of bytes. Characters outside the alphabet (line breaks
    /// above all) are skipped, groups may be cut by the blocks, and everything after the first "=" is ignored.
    size_t Decode(const char* text, size_t size, uint8_t* data);

    /// The text is over: the bytes of a last group without its padding, at most two.
    size_t Finish(uint8_t* data);

    /// False after Finish when the text was cut in the middle of a byte: a single letter followed the last group.
    bool IsWhole() const noexcept { return m_isWhole; }

    /// Characters that were skipped or ignored though a text of this kind has none of them: all but blanks, line
    /// breaks, zero bytes and padding.
    uint64_t StrangerCount() const noexcept { return m_strangerCount; }

    /// True when something beside letters was there that is no blank and no line break.
    bool HasSkippedMarks() const noexcept { return m_strangerCount > 0 || m_hasSkippedMarks; }

private:
    void Skip(char letter);

    uint32_t m_group = 0;  // the letters of the group begun, six bits each
    uint32_t m_count = 0;  // of them, 0 to 3
    uint64_t m_strangerCount = 0;
    bool m_hasSkippedMarks = false;
    bool m_isAtEnd = false;
    bool m_isWhole = true;
};

/// Cuts encoded text into lines of 76 characters, each with CR LF after it.
///
/// The text is given in the blocks that it was encoded in. Of each block, what is not longer than a line goes out in
/// one piece, whatever is in the line already. So the last line of a text can have up to 144 characters, and a line
/// shorter than 76 gets no CR LF. compatibility: 21
class Base64Lines {
public:
    static constexpr size_t kLineLength = 76;

    /// Most characters that a block of `size` becomes.
    static constexpr size_t LargestResult(size_t size) { return size + (size / kLineLength + 2) * 2; }

    /// Writes the next block's lines to `out` and gives the number of characters written.
    size_t Put(const char* text, size_t size, char* out);

private:
    size_t m_column = 0;
};

}  // namespace FileUtils
