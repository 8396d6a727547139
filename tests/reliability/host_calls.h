// host_calls.h - stands between the library and its host: sees each call that the library makes on an object of the
// host, from the services to a document's element, and does with a chosen one what a faulty host would.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace QVTest {

enum class HostFault : uint8_t {
    Throws,        // in the place of an answer
    AnswersZero,   // null, false, nothing
    AnswersOddly,  // great numbers, true, texts without an end or with marks
    Refuses,       // the error 1: true where a truth is asked for, since a bool holds 0 or 1
};

/// Watches while it lives, one object at a time, since the tables of the classes are changed.
class HostCalls {
public:
    /// For extensions of the class of this one, and all objects that they get to see. `index` made it, on this thread.
    HostCalls(void* extension, uint32_t index);
    ~HostCalls();
    HostCalls(const HostCalls&) = delete;
    HostCalls& operator=(const HostCalls&) = delete;

    /// From now on calls are counted from 0, and the one with this number fails.
    void Arm(uint32_t number, HostFault fault);
    /// The same without a fault. `onCall` is told "INTERFACE SLOT" when the host has done its
    /// part of a call, on the thread of the call.
    void Arm(std::function<void(const std::string& call)> onCall);
    void Disarm();

    uint32_t Count() const;
    std::string FailedCall() const;  // "INTERFACE SLOT"; "" when none failed
    /// Objects handed out since Arm and not given back; one that was given back twice counts as well.
    size_t OpenObjects() const;
};

}  // namespace QVTest
