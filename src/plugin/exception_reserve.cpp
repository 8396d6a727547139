#include "plugin/exception_reserve.h"

#include <atomic>
#include <cstddef>

namespace {

/// The next allocation is refused: that is the only way to the reserve.
std::atomic<bool> g_refusesNext = false;

}  // namespace

// The linker leads every malloc of the library, the runtime's own included, through here (--wrap).
// NOLINTBEGIN(clang-diagnostic-reserved-identifier): the linker gives the names.
extern "C" void* __real_malloc(size_t size);
extern "C" void* __wrap_malloc(size_t size) {
    if (g_refusesNext.load(std::memory_order_relaxed) && g_refusesNext.exchange(false)) [[unlikely]]
        return nullptr;
    return __real_malloc(size);
}
// NOLINTEND(clang-diagnostic-reserved-identifier)

namespace Plugin {

void PrepareExceptionReserve() noexcept {
    try {
        g_refusesNext = true;
        throw 0;
    } catch (int) {
        g_refusesNext = false;
    }
    [[maybe_unused]] static const bool isLockMade = g_refusesNext.exchange(false);
}

}  // namespace Plugin
