// host_boundary.h - the guard of every entry through which an extension calls the host.
#pragma once

#include <utility>

namespace QVHost {

/// Runs `body` and gives its result; when it throws (memory has run out, say), gives `refused` instead. Nothing is
/// thrown into an extension: its compiler may not be ours.
template <class Result, class Body>
Result Guarded(Result refused, Body&& body) noexcept {
    try {
        return std::forward<Body>(body)();
    } catch (...) {
        return refused;
    }
}

/// The same for entries without a result.
template <class Body>
void GuardedCall(Body&& body) noexcept {
    try {
        std::forward<Body>(body)();
    } catch (...) {
        // The extension has no way to learn of it; what it asked for was not done.
    }
}

}  // namespace QVHost
