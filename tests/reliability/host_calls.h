// host_calls.h - stands between the library and its host: sees each call that the library makes on an object of the
// host, from the services to a document's element, and does with a chosen one what a faulty host would.
#pragma once

#include <cstddef>
#include <functional>
#include <string>

namespace QVTest {

/// One watches at a time.
class HostCalls {
public:
    /// The calls of the library on this object of the host, and on all that it is given by these.
    explicit HostCalls(void* object) { Watch(object); }
    ~HostCalls();
    HostCalls(const HostCalls&) = delete;
    HostCalls& operator=(const HostCalls&) = delete;
    /// The same for an object that is handed to the library.
    static void Watch(void* object);
    /// An object of any interface of the contract. It answers 0 in all slots.
    static void* Nothing();

    /// Does `act` undisturbed, and again for each of its calls, which throws, or gives null or false, or nonsense (an
    /// object that does nothing, great numbers, true, texts without an end or with marks), or the error 1. The first
    /// call of a slot goes wrong in all ways, a later one in one; all in all when QV_EVERY_FAULT is set. What the
    /// library is given it has to give back each time, once. With `restore`, which is done undisturbed after each act,
    /// an act takes its time: a later call does not go wrong, and the first throws and goes wrong in another way.
    static void Walk(const std::function<void()>& act, const std::function<void()>& restore = nullptr);
    /// "CLASS SLOT" of the call that has gone wrong; "" when none has.
    static std::string FailedCall();
    /// It has given nonsense, and not nothing.
    static bool HasGivenNonsense();

    /// From now on `onCall` is told "CLASS SLOT" when the host has done its part, on the thread of the call.
    static void Tell(std::function<void(const std::string& call)> onCall);
    /// Calls that have begun since.
    static size_t Count();
};

}  // namespace QVTest
