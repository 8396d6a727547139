#include "fileutils/access/security_requests.h"

#include <algorithm>

#include "fileutils/elevated_path.h"
#include "win32/windows.h"

namespace FileUtils {

using namespace Quorvane::SDK;

void WritePaths(IRequestWriter& writer, const Paths& paths) {
    writer.WriteNumber(static_cast<uint32_t>(paths.size()));
    for (const std::wstring& path : paths) writer.WriteString(path.c_str());
}

Paths ReadPaths(RequestFields& fields) {
    Paths paths = fields.FilePaths();
    if (std::ranges::any_of(paths, IsRemoteRegistryKey)) fields.Refuse();
    return paths;
}

void WriteAccessGrant(IRequestWriter& writer, const AccessGrant& grant) {
    writer.WriteNumber(grant.mask);
    writer.WriteString(grant.account.c_str());
    WritePaths(writer, grant.paths);
}

AccessGrant ReadAccessGrant(RequestFields& fields) {
    AccessGrant grant;
    grant.mask = fields.Number();
    grant.account = fields.Text();
    grant.paths = ReadPaths(fields);
    if (grant.mask == 0 || (grant.mask & ~uint32_t{FILE_ALL_ACCESS}) != 0) fields.Refuse();
    return grant;
}

}  // namespace FileUtils
