#include "win32/stack.h"

#include "win32/windows.h"

namespace Win32 {
namespace {

/// A stack as far as it is known: from the lowest address reserved for it to its top.
struct Stack {
    const char* low = nullptr;
    const char* high = nullptr;
};

}  // namespace

const char* StackFloor(size_t reserve) {
    // Asking the system costs as much as matching a short name, so the answer is kept. Where the thread has gone over
    // to another stack (a fiber's), the address of a local says so.
    static thread_local Stack known;
    MEMORY_BASIC_INFORMATION region = {};
    const char* const here = reinterpret_cast<const char*>(&region);
    if (here < known.low || here >= known.high) {
        // The region that a local lies in begins where the whole stack was reserved, committed yet or not.
        if (VirtualQuery(&region, &region, sizeof(region)) == 0) return nullptr;
        known.low = static_cast<const char*>(region.AllocationBase);
        known.high = static_cast<const char*>(region.BaseAddress) + region.RegionSize;
    }
    return known.low + reserve;
}

}  // namespace Win32
