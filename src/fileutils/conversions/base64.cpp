#include "fileutils/conversions/base64.h"

#include <array>
#include <cstring>
#include <string_view>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace FileUtils {
namespace {

constexpr std::string_view kAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
static_assert(kAlphabet.size() == 64);
constexpr char kPadding = '=';
constexpr uint8_t kNoLetter = 255;

/// The letters of three bytes, as a number of 24 bits.
void PutLetters(uint32_t group, char* out) {
    for (int shift = 18; shift >= 0; shift -= 6) *out++ = kAlphabet[group >> shift & 63];
}

#ifdef __SSE2__

/// Four bytes as a number, the first counting most.
int LoadGroup(const uint8_t* data) {
    uint32_t bytes;
    std::memcpy(&bytes, data, sizeof(bytes));
    return static_cast<int>(__builtin_bswap32(bytes));
}

/// The letters of twelve bytes, of which sixteen can be read.
__m128i LettersOf(const uint8_t* data) {
    // A group in each 32 bits, its bytes in the upper 24.
    const __m128i groups =
        _mm_set_epi32(LoadGroup(data + 9), LoadGroup(data + 6), LoadGroup(data + 3), LoadGroup(data));
    const auto take = [&](__m128i shifted, int place) {
        return _mm_and_si128(shifted, _mm_set1_epi32(63 << 8 * place));
    };
    const __m128i values =
        _mm_or_si128(_mm_or_si128(take(_mm_srli_epi32(groups, 26), 0), take(_mm_srli_epi32(groups, 12), 1)),
                     _mm_or_si128(take(_mm_slli_epi32(groups, 2), 2), take(_mm_slli_epi32(groups, 16), 3)));
    // How far the letters of the alphabet's five runs lie from those of the run before.
    const auto from = [&](char first, char step) {
        return _mm_and_si128(_mm_cmpgt_epi8(values, _mm_set1_epi8(static_cast<char>(first - 1))), _mm_set1_epi8(step));
    };
    const __m128i steps = _mm_add_epi8(_mm_add_epi8(from(26, 'a' - 26 - 'A'), from(52, '0' - 52 - ('a' - 26))),
                                       _mm_add_epi8(from(62, '+' - 62 - ('0' - 52)), from(63, '/' - 63 - ('+' - 62))));
    return _mm_add_epi8(_mm_add_epi8(values, _mm_set1_epi8('A')), steps);
}

#endif

constexpr std::array<uint8_t, 256> MakeValues() {
    std::array<uint8_t, 256> values = {};
    values.fill(kNoLetter);
    for (size_t value = 0; value < kAlphabet.size(); ++value)
        values[static_cast<uint8_t>(kAlphabet[value])] = static_cast<uint8_t>(value);
    return values;
}
constexpr std::array<uint8_t, 256> kValues = MakeValues();

constexpr uint32_t kNoGroup = 0xFF000000;  // the byte after a group's three

/// What a letter at one of a group's four places adds to the group's bytes, as they lie in memory: the four values of a
/// group joined by "or" are its three bytes, and a fourth that is not 0 when one was no letter.
constexpr std::array<uint32_t, 256> ValuesAt(uint32_t place) {
    std::array<uint32_t, 256> values = {};
    for (size_t letter = 0; letter < values.size(); ++letter) {
        const uint32_t group = uint32_t{kValues[letter]} << (18 - 6 * place);
        const uint32_t inMemory = (group >> 16 & 0xFF) | (group & 0xFF00) | (group & 0xFF) << 16;
        values[letter] = kValues[letter] == kNoLetter ? kNoGroup : inMemory;
    }
    return values;
}
constexpr std::array<uint32_t, 256> kValuesAt[] = {ValuesAt(0), ValuesAt(1), ValuesAt(2), ValuesAt(3)};

uint32_t GroupAt(const char* text) {
    uint32_t group = 0;
    for (size_t place = 0; place < 4; ++place) group |= kValuesAt[place][static_cast<uint8_t>(text[place])];
    return group;
}

uint8_t ValueOf(char letter) {
    return kValues[static_cast<uint8_t>(letter)];
}

/// The first `count` bytes of a group of 24 bits.
uint8_t* PutBytes(uint32_t group, size_t count, uint8_t* data) {
    for (size_t at = 0; at < count; ++at) *data++ = static_cast<uint8_t>(group >> (16 - 8 * at));
    return data;
}

}  // namespace

size_t CBase64::Encode(const uint8_t* data, size_t size, char* text) {
    char* out = text;
    const uint8_t* const whole = data + size;
#ifdef __SSE2__
    for (; whole - data >= 16; data += 12, out += 16)
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out), LettersOf(data));
#endif
    for (; whole - data >= 3; data += 3, out += 4)
        PutLetters(uint32_t{data[0]} << 16 | uint32_t{data[1]} << 8 | data[2], out);
    const auto left = static_cast<size_t>(whole - data);
    if (left == 0) return static_cast<size_t>(out - text);
    PutLetters(uint32_t{data[0]} << 16 | (left == 2 ? uint32_t{data[1]} << 8 : 0), out);
    if (left == 1) out[2] = kPadding;
    out[3] = kPadding;
    return static_cast<size_t>(out + 4 - text);
}

size_t CBase64::Decode(const char* text, size_t size, uint8_t* data) {
    uint8_t* out = data;
    const char* const end = text + size;
    while (text != end && !m_isAtEnd) {
        // Whole groups as long as there is nothing but letters; only the others are looked at one by one.
        while (m_count == 0 && end - text >= 4) {
            const uint32_t group = GroupAt(text);
            if (group >= kNoGroup) break;
            std::memcpy(out, &group, sizeof(group));
            out += 3;
            text += 4;
        }
        if (text == end) break;
        const char letter = *text++;
        const uint8_t value = ValueOf(letter);
        if (letter == kPadding) m_isAtEnd = true;
        if (value == kNoLetter) {
            Skip(letter);
            continue;
        }
        m_group = m_group << 6 | value;
        if (++m_count < 4) continue;
        out = PutBytes(m_group, 3, out);
        m_group = m_count = 0;
    }
    for (; text != end; ++text) Skip(*text);
    return static_cast<size_t>(out - data);
}

void CBase64::Skip(char letter) {
    if (std::string_view(" \t\r\n").find(letter) != std::string_view::npos) return;
    m_hasSkippedMarks = true;
    if (letter != kPadding && letter != '\0') ++m_strangerCount;
}

size_t CBase64::Finish(uint8_t* data) {
    m_isWhole = m_count != 1;
    const size_t bytes = m_count > 1 ? m_count - 1 : 0;
    PutBytes(m_group << 6 * (4 - m_count), bytes, data);
    m_group = m_count = 0;
    return bytes;
}

size_t Base64Lines::Put(const char* text, size_t size, char* out) {
    char* const begin = out;
    while (size > 0) {
        const size_t piece = size > kLineLength ? kLineLength - m_column : size;
        if (piece == kLineLength)
            std::memcpy(out, text, kLineLength);  // without a call
        else
            std::memcpy(out, text, piece);
        out += piece;
        text += piece;
        size -= piece;
        m_column += piece;
        if (m_column < kLineLength) continue;
        *out++ = '\r';
        *out++ = '\n';
        m_column = 0;
    }
    return static_cast<size_t>(out - begin);
}

}  // namespace FileUtils
