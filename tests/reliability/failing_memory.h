// failing_memory.h - memory runs out for a loaded module at a chosen allocation. One object at a time.
#pragma once

#include <cstddef>
#include <functional>
#include <vector>

#include "support/replaced_imports.h"

namespace QVTest {

class FailingMemory {
public:
    explicit FailingMemory(HMODULE module);
    ~FailingMemory() { Disarm(); }
    FailingMemory(const FailingMemory&) = delete;
    FailingMemory& operator=(const FailingMemory&) = delete;

    /// The allocation with this number from now on fails, and with `isLasting` all later ones. The first few of a
    /// thread never do: they are the runtime's own for exceptions, without which it ends the process.
    void Arm(size_t number, bool isLasting);
    static void Disarm();
    bool HasFailed() const;  // also once disarmed
    size_t Count() const;    // allocations since Arm

    /// The locks of the library's debug containers allocate with their first use, in destructors too, and end the
    /// process when they cannot: code that reaches such a first use without memory is not tested in the checked build.
#ifdef _GLIBCXX_DEBUG
    static constexpr bool kLocksNeedMemory = true;
#else
    static constexpr bool kLocksNeedMemory = false;
#endif

    /// From now on memory is to run out.
    using Begin = std::function<void()>;
    /// Lets memory run out for the action, once and for good: at its first allocations, then later in steps of growing
    /// size (or at each, where QV_EVERY_FAULT asks for a long run), until it has all that it wants.
    void Walk(const std::function<void(const Begin&)>& action);

private:
    std::vector<ReplacedImport> m_imports;
};

}  // namespace QVTest
