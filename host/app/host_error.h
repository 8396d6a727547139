// host_error.h - the two ways in which a run of the host ends before its work: wrong use, and what cannot be had.
#pragma once

#include <stdexcept>
#include <string>

#include "host/app/host_text.h"

namespace QVHost {

/// Exit status of the program.
namespace ExitStatus {
inline constexpr int Done = 0;      // handled, nothing failed
inline constexpr int Failed = 1;    // not handled, or something failed
inline constexpr int WrongUse = 2;  // nothing was run
}  // namespace ExitStatus

/// The command line asks for something that cannot be; the text says what, and what there is instead.
class UsageError : public std::runtime_error {
public:
    explicit UsageError(const std::wstring& text) : std::runtime_error(ToUtf8(text)) {}
};

/// Something the run needs (the library, a folder) cannot be had.
class HostError : public std::runtime_error {
public:
    explicit HostError(const std::wstring& text) : std::runtime_error(ToUtf8(text)) {}
};

}  // namespace QVHost
