// input.h - cuts a target's bytes into numbers and texts, so that seeds can be written by hand: options are single
// letters in front, texts end at the character 0x1E (record separator) or with the bytes.
#pragma once

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "fuzz/targets.h"

namespace QVFuzz {

/// UTF-16 text of this platform.
#ifdef _WIN32
using WideChar = wchar_t;
#else
using WideChar = char16_t;
#endif

/// What must hold. Ends the process when it does not.
inline void Require(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "not so: %s\n", what);
    std::abort();
}

class Input {
public:
    explicit Input(Bytes bytes) : m_rest(reinterpret_cast<const char*>(bytes.data()), bytes.size()) {}

    bool IsAtEnd() const { return m_rest.empty(); }
    /// 0 after the end.
    uint8_t Byte() {
        if (m_rest.empty()) return 0;
        const auto byte = static_cast<uint8_t>(m_rest.front());
        m_rest.remove_prefix(1);
        return byte;
    }
    uint32_t Number() {
        uint32_t number = 0;
        for (int at = 0; at < 4; ++at) number = number << 8 | Byte();
        return number;
    }
    std::string Text() {
        const size_t end = std::min(m_rest.find('\x1E'), m_rest.size());
        std::string text(m_rest.substr(0, end));
        m_rest.remove_prefix(std::min(end + 1, m_rest.size()));
        return text;
    }
    std::string_view Rest() { return std::exchange(m_rest, {}); }

private:
    std::string_view m_rest;
};

/// ASCII as it is; each other byte as a character that cores treat in a way of its own, or as itself.
template <class CharT>
std::basic_string<CharT> Widened(std::string_view text) {
    static constexpr uint16_t kSpecial[] = {0x2028, 0x2029, 0xFEFF, 0xD83D, 0xDE00, 0xDC00, 0xFF0E, 0xFF21,
                                            0x0130, 0x0131, 0x00DF, 0x4E2D, 0x0301, 0xFFFF, 0x0660, 0x00B2};
    std::basic_string<CharT> wide;
    for (const char unit : text) {
        const auto byte = static_cast<uint8_t>(unit);
        const bool isSpecial = sizeof(CharT) > 1 && byte >= 0x80 && byte < 0x90;
        wide += static_cast<CharT>(isSpecial ? kSpecial[byte - 0x80] : byte);
    }
    return wide;
}

/// A copy without a spare byte around it, so that a look beyond its ends is seen.
template <class CharT>
class Exact {
public:
    explicit Exact(std::basic_string_view<CharT> text) : m_size(text.size()), m_units(new CharT[text.size()]) {
        std::copy(text.begin(), text.end(), m_units.get());
    }
    std::basic_string_view<CharT> View() const { return {m_units.get(), m_size}; }
    CharT* Data() { return m_units.get(); }

private:
    size_t m_size;
    std::unique_ptr<CharT[]> m_units;
};

}  // namespace QVFuzz
