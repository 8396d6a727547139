// limited_memory.h - this program gets no blocks of memory above a size.
#pragma once

#include <cstdint>
#include <cstdlib>

#include "support/replaced_imports.h"

namespace QVTest {

/// For the life of the object. One at a time.
class LimitedMemory {
public:
    explicit LimitedMemory(size_t largestBlock)
        : m_malloc(GetModuleHandleW(nullptr), "malloc", reinterpret_cast<void*>(Malloc)) {
        s_largestBlock = largestBlock;
    }

private:
    static void* Malloc(size_t size) {
        // The runtime's own: this program's import of it is what is replaced.
        static const auto original =
            reinterpret_cast<decltype(&std::malloc)>(GetProcAddress(GetModuleHandleW(L"msvcrt.dll"), "malloc"));
        return size > s_largestBlock ? nullptr : original(size);
    }

    static inline size_t s_largestBlock = SIZE_MAX;  // the function is a plain one, so what it knows is global
    ReplacedImport m_malloc;
};

}  // namespace QVTest
