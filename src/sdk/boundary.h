// boundary.h - nothing is thrown into the host: the one guard that every entry from outside goes through.
#pragma once

#include <utility>

namespace Quorvane::SDK {

/// Runs `body` and gives its result, or `onFailure` when anything at all is thrown in it (out of memory included).
template <class Result, class Body>
Result AtBoundary(Result onFailure, Body&& body) noexcept {
    try {
        return std::forward<Body>(body)();
    } catch (...) {
        return onFailure;
    }
}

}  // namespace Quorvane::SDK
