// security_requests.h - the elevated requests of the security commands: their numbers and their fields.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "fileutils/elevated_request.h"

namespace FileUtils {

using Paths = std::vector<std::wstring>;

/// Taking ownership and resetting need the paths alone: their number, then each of them. A path of anything but a file
/// or folder is refused.
void WritePaths(Quorvane::SDK::IRequestWriter& writer, const Paths& paths);
Paths ReadPaths(RequestFields& fields);

/// Mask, account, and the paths as above. A mask that allows nothing, or has bits that no right of a file has, is
/// refused.
struct AccessGrant {
    uint32_t mask = 0;
    std::wstring account;
    Paths paths;
};
void WriteAccessGrant(Quorvane::SDK::IRequestWriter& writer, const AccessGrant& grant);
AccessGrant ReadAccessGrant(RequestFields& fields);

}  // namespace FileUtils
