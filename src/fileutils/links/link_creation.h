// link_creation.h - makes one link, here or in the elevated host process, and writes its line to the log.
// The system calls themselves are in link_system.cpp.
#pragma once

#include <cstdint>
#include <string>

#include "fileutils/links/reparse.h"
#include "sdk/host_services.h"

namespace FileUtils {

/// The system calls for links, as a table that a test can replace: not every system that this library is tested on has
/// them all. Each gives a Windows error code, 0 for success.
struct LinkSystem {
    uint32_t (*makeHardLink)(const std::wstring& link, const std::wstring& target);
    uint32_t (*makeSymbolicLink)(const std::wstring& link, const std::wstring& target, uint32_t flags);
    /// `folder` exists and is empty.
    uint32_t (*setReparsePoint)(const std::wstring& folder, const ReparseBuffer& buffer);
    /// An empty `workingFolder` is not set. An existing file is overwritten.
    uint32_t (*saveShortcut)(const std::wstring& link, const std::wstring& target, const std::wstring& workingFolder,
                             const wchar_t* description);
};

/// The table of this system.
const LinkSystem& ThisSystem();

/// The kinds of link, as scripts and elevated requests number them.
namespace LinkType {
inline constexpr uint32_t HardLink = 1;
inline constexpr uint32_t Junction = 2;
inline constexpr uint32_t SymbolicLink = 3;
inline constexpr uint32_t Shortcut = 4;
}  // namespace LinkType

struct LinkRequest {
    uint32_t type = 0;  // any number: those that are no LinkType fail
    std::wstring link;  // the new name
    std::wstring target;
    bool targetIsFolder = false;
};

/// Makes the link. A Windows error code, 0 for success: 13 for a junction that cannot be made and an
/// unknown type, 3 for a shortcut that cannot be saved, otherwise the system's.
///
/// - A junction's folder may be there already when it is empty. It is made with the folders above it when it is not;
///   what was made is removed again when the junction fails. A target that begins with \? is written as it stands; any
///   other must exist.
/// - A shortcut gets no extension here, and replaces no file that is there.
uint32_t MakeLink(const LinkRequest& request, const LinkSystem& system = ThisSystem());

/// Makes the link and logs it. Result: as above.
uint32_t CreateLinkHere(Quorvane::SDK::IHostServices& host, const LinkRequest& request);

/// The same in the elevated host process; logged on both sides. 5 when there is no way to that process.
uint32_t CreateLinkElevated(Quorvane::SDK::IHostServices& host, const LinkRequest& request);

}  // namespace FileUtils
