// rename_results.h - the counts of a run.
#pragma once

#include <atomic>
#include <cstdint>

#include "sdk/rename_result.h"

namespace BatchRename {

/// Counts the rows of a run, one result each. May be read from any thread while the run is going on.
class CRenameResultCallback final : public Quorvane::SDK::IRenameResultCallback {
public:
    bool OnRenameStarting(uint32_t) override { return true; }
    bool OnRenameResult(uint32_t, uint32_t code) override {
        using namespace Quorvane::SDK;
        ++(code == RenameResult::Renamed   ? m_doneCount
           : code == RenameResult::Ignored ? m_ignoredCount
                                           : m_failedCount);
        return true;
    }

    uint32_t DoneCount() const { return m_doneCount; }  // renamed, or restored in a restore run
    uint32_t IgnoredCount() const { return m_ignoredCount; }
    uint32_t FailedCount() const { return m_failedCount; }

private:
    std::atomic<uint32_t> m_doneCount = 0;
    std::atomic<uint32_t> m_ignoredCount = 0;
    std::atomic<uint32_t> m_failedCount = 0;
};

}  // namespace BatchRename
