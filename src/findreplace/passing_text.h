// passing_text.h - what is built unit by unit while a block of text passes, in memory that serves again for the next.
#pragma once

#include <algorithm>
#include <cstring>
#include <memory>
#include <string_view>

namespace QVFindAndReplace {

template <class CharT>
class PassingText {
public:
    using View = std::basic_string_view<CharT>;

    void Clear() noexcept { m_size = 0; }
    void Shorten(size_t size) noexcept { m_size = size; }
    size_t Size() const noexcept { return m_size; }
    View Get() const noexcept { return {m_units.get(), m_size}; }

    void Append(const CharT* begin, const CharT* end) {
        const auto length = static_cast<size_t>(end - begin);
        if (m_capacity - m_size < length) Grow(length);
        Copy(reinterpret_cast<char*>(m_units.get() + m_size), reinterpret_cast<const char*>(begin),
             length * sizeof(CharT));
        m_size += length;
    }
    void Append(View text) { Append(text.data(), text.data() + text.size()); }

private:
    /// Mostly it is the text between two hits: a call for each would cost more than the copy.
    static void Copy(char* to, const char* from, size_t size) {
        if (size > kLongBytes)
            std::memcpy(to, from, size);
        else if (size >= 16)
            CopyWords<16>(to, from, size);
        else if (size >= 4)
            CopyWords<4>(to, from, size);
        else
            std::copy(from, from + size, to);
    }

    /// Word by word, the last of which may overlap the one before.
    template <size_t kWord>
    static void CopyWords(char* to, const char* from, size_t size) {
        for (size_t at = 0; at + kWord < size; at += kWord) std::memcpy(to + at, from + at, kWord);
        std::memcpy(to + size - kWord, from + size - kWord, kWord);
    }

    void Grow(size_t more) {
        const size_t capacity = std::max(2 * m_capacity, m_size + more + kLeastUnits);
        auto larger = std::make_unique_for_overwrite<CharT[]>(capacity);
        if (m_size > 0) std::memcpy(larger.get(), m_units.get(), m_size * sizeof(CharT));
        m_units = std::move(larger);
        m_capacity = capacity;
    }

    static constexpr size_t kLongBytes = 512;
    static constexpr size_t kLeastUnits = size_t{192} * 1024 / sizeof(CharT);
    std::unique_ptr<CharT[]> m_units;
    size_t m_size = 0;
    size_t m_capacity = 0;
};

}  // namespace QVFindAndReplace
