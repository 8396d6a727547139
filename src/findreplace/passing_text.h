// passing_text.h - what is built unit by unit while a block of text passes, in memory that serves again for the next.
#pragma once

#include <algorithm>
#include <cstring>
#include <memory>
#include <string_view>

#include "textio/short_copy.h"

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
        Reserve(length);
        QVUtils::CopyBytes(m_units.get() + m_size, begin, length * sizeof(CharT));
        m_size += length;
    }
    void Append(View text) { Append(text.data(), text.data() + text.size()); }

    /// Makes sure of memory for so many more units.
    void Reserve(size_t more) {
        if (m_capacity - m_size < more) Grow(more);
    }

    /// Gives up the memory, in which the text stays where it is.
    std::unique_ptr<CharT[]> Release() noexcept {
        m_size = m_capacity = 0;
        return std::move(m_units);
    }

private:
    void Grow(size_t more) {
        const size_t capacity = std::max(2 * m_capacity, m_size + more + kLeastUnits);
        auto larger = std::make_unique_for_overwrite<CharT[]>(capacity);
        if (m_size > 0) std::memcpy(larger.get(), m_units.get(), m_size * sizeof(CharT));
        m_units = std::move(larger);
        m_capacity = capacity;
    }

    static constexpr size_t kLeastUnits = size_t{8} * 1024 / sizeof(CharT);
    std::unique_ptr<CharT[]> m_units;
    size_t m_size = 0;
    size_t m_capacity = 0;
};

}  // namespace QVFindAndReplace
