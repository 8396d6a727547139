// counted_place.h - a place in a text that keeps the standard library's expressions from exploding: they compare two
// places at nearly every step.
#pragma once

#include <cstddef>
#include <iterator>

namespace QVFuzz {

/// The standard engine was about to explode.
struct TooManySteps {};

struct StepLimit {
    explicit StepLimit(int steps, size_t stack = 256 * 1024)
        : left(steps), stackFloor(static_cast<const char*>(__builtin_frame_address(0)) - stack) {}
    void Spend() {
        if (--left < 0 || static_cast<const char*>(__builtin_frame_address(0)) < stackFloor) throw TooManySteps();
    }

    int left;
    const char* stackFloor;
};

template <class CharT>
class CountedPlace {
public:
    using iterator_category = std::bidirectional_iterator_tag;
    using value_type = CharT;
    using difference_type = std::ptrdiff_t;
    using pointer = const CharT*;
    using reference = const CharT&;

    CountedPlace() = default;
    CountedPlace(const CharT* at, StepLimit* limit) : m_at(at), m_limit(limit) {}
    reference operator*() const { return *m_at; }
    CountedPlace& operator++() { return ++m_at, *this; }
    CountedPlace operator++(int) { return {m_at++, m_limit}; }
    CountedPlace& operator--() { return --m_at, *this; }
    CountedPlace operator--(int) { return {m_at--, m_limit}; }
    bool operator==(const CountedPlace& other) const {
        if (m_limit) m_limit->Spend();
        return m_at == other.m_at;
    }
    const CharT* Get() const { return m_at; }

private:
    const CharT* m_at = nullptr;
    StepLimit* m_limit = nullptr;
};

}  // namespace QVFuzz
