#include "win32/stack.h"

#include "win32/windows.h"

namespace Win32 {

const char* StackFloor(size_t reserve) {
    // The region that a local lies in begins where the whole stack was reserved, committed yet or not.
    MEMORY_BASIC_INFORMATION region = {};
    if (VirtualQuery(&region, &region, sizeof(region)) == 0) return nullptr;
    return static_cast<const char*>(region.AllocationBase) + reserve;
}

}  // namespace Win32
