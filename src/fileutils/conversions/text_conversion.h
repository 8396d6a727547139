// text_conversion.h - line ends and tabs of a file's bytes, block by block. Knows no encoding: the bytes of UTF-16 text
// are converted one by one like all others (compatibility: 19). Reading and writing files is left to the command.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

namespace FileUtils {

enum class TextConversion { ToLf, ToCrLf, ToCr, TabsToSpaces };

/// Converts one file's bytes, given in blocks of any size. The result does not depend on where the blocks are cut.
///
/// - ToLf: CR LF and CR become LF.
/// - ToCrLf: LF and CR become CR LF, CR LF stays. A CR that is the file's last byte is dropped.
/// - ToCr: LF and CR LF become CR.
/// - TabsToSpaces: each tab becomes as many spaces as the tab width says (not up to the next tab stop); 0 removes it.
///
/// Every CR counts by itself: CR CR LF is two line ends, an empty line between them.
class TextConverter {
public:
    /// The tab width matters to TabsToSpaces alone.
    explicit TextConverter(TextConversion conversion, uint32_t tabWidth = 0)
        : m_conversion(conversion), m_tabWidth(tabWidth) {}

    /// Bytes of memory in which to put what becomes of a block of `size` bytes: at least as many as it can become.
    size_t LargestResult(size_t size) const;

    /// Converts the next block into `out`, which has LargestResult bytes, and gives the number of bytes written.
    size_t Convert(const char* data, size_t size, char* out);

private:
    char* ToLf(const char* data, const char* end, char* out);
    char* ToCrLf(const char* data, const char* end, char* out);
    char* ToCr(const char* data, const char* end, char* out);
    char* ExpandTabs(const char* data, const char* end, char* out) const;

    TextConversion m_conversion;
    uint32_t m_tabWidth;
    bool m_isAfterCr = false;  // the last block ended in a CR; for ToCrLf it is still to be written
};

}  // namespace FileUtils
