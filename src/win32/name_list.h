// name_list.h - many names in two blocks of memory: a string of its own for each would cost more than most of what is
// done with them.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace Win32 {

class NameList {
public:
    void Add(std::wstring_view name) {
        m_text += name;
        m_ends.push_back(m_text.size());
    }

    size_t Count() const { return m_ends.size(); }

    /// Until the next name is added.
    std::wstring_view operator[](size_t number) const {
        const size_t begin = number == 0 ? 0 : m_ends[number - 1];
        return std::wstring_view(m_text).substr(begin, m_ends[number] - begin);
    }

private:
    std::wstring m_text;
    std::vector<size_t> m_ends;
};

}  // namespace Win32
