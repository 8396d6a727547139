// failing_calls.h - a disk on which one chosen call fails: counts the calls by which the host and the library reach the
// files of a test, and lets the one with a given number fail with a given error.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "support/replaced_imports.h"

namespace QVTest {

class FailingCalls {
public:
    /// Watches the file calls of these modules while the object lives. One object at a time.
    FailingCalls(std::initializer_list<HMODULE> modules);
    ~FailingCalls();

    /// From now on the calls about files below `folder` are counted from 0, and the one with this number fails. Error
    /// 0: a write of half the bytes succeeds instead; other calls are let through. With `isLasting` all later calls of
    /// the same name fail too.
    void Arm(const std::wstring& folder, uint32_t number, uint32_t error, bool isLasting = false);
    /// Called before the call with this number.
    void OnCall(uint32_t number, std::function<void()> listener);
    /// Nothing fails and nothing is counted any more.
    void Disarm();

    uint32_t Count() const;                  // calls since Arm
    std::vector<std::string> Calls() const;  // their names
    std::string FailedCall() const;          // name of the call that failed; "" when none did
    size_t OpenHandles() const;              // opened since Arm and not closed

private:
    std::vector<ReplacedImport> m_imports;
};

}  // namespace QVTest
