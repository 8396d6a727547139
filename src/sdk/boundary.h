// boundary.h - nothing is thrown into the host: the one guard that every entry from outside goes through.
#pragma once

#include <exception>
#include <utility>

namespace Quorvane::SDK {

/// The runtime keeps a record of exceptions for each thread and allocates it with the first use. Were that use the
/// report of memory that has run out, it could not be reported: so the record is made before. First thing in a thread
/// of ours.
inline void ReserveExceptionRecord() noexcept {
    [[maybe_unused]] const volatile int underWay = std::uncaught_exceptions();
}

/// Runs `body` and gives its result, or `onFailure` when anything at all is thrown in it (out of memory included).
template <class Result, class Body>
Result AtBoundary(Result onFailure, Body&& body) noexcept {
    ReserveExceptionRecord();
    try {
        return std::forward<Body>(body)();
    } catch (...) {
        return onFailure;
    }
}

}  // namespace Quorvane::SDK
