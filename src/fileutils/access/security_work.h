// security_work.h - what the security commands have in common: the selection, here or in the elevated process, the
// request that the elevated process is sent, the first failure that ends it, and how it is shown.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "fileutils/elevated_request.h"
#include "sdk/owners.h"

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

/// The panel's items that have a path.
struct SecuritySelection {
    Quorvane::SDK::Owned<Quorvane::SDK::IFileList> list;  // keeps the items alive
    std::vector<Quorvane::SDK::IFileItem*> items;
    Paths paths;  // one for each item
};
SecuritySelection GatherSecuritySelection(Quorvane::SDK::IHostServices& host);

/// Changes one file or folder. A Windows error code, 0 for success.
using SecurityChange = std::function<uint32_t(const std::wstring& path)>;

/// One command as its differences from the others.
struct SecurityWork {
    uint32_t requestId;
    Quorvane::SDK::TextId failureText;  // for other errors than a denied access; has a place for the code
    std::wstring done;                  // what the log says of each item that was changed
    std::function<void(Quorvane::SDK::IRequestWriter&)> writeRequest;
    SecurityChange change;
    std::function<void(Quorvane::SDK::IFileItem&)> onChanged = {};
};

/// In a host that is not elevated and can be, the elevated process does it all, and nothing is changed here whatever
/// becomes of it; where there is no way to that process, it is tried here. Items before one that fails stay changed,
/// those after it are not touched. Owner and list of each item as they were go into the log. False when the elevated
/// process reports a failure: the command is over then.
bool RunSecurityWork(Quorvane::SDK::IHostServices& host, const SecuritySelection& selection, const SecurityWork& work);

/// The elevated side: changes one path after the other and gives the first error. Shows nothing, since the process that
/// asked does; which path it was is in the log.
uint32_t ChangeUntilFailure(Quorvane::SDK::IHostServices& host, const Paths& paths, const SecurityChange& change);

}  // namespace FileUtils
