#include "fileutils/access/security_work.h"

#include <algorithm>

#include "fileutils/elevated_request.h"
#include "fileutils/fileutils_texts.h"
#include "sdk/owners.h"
#include "sdk/text_format.h"
#include "security/ntfs_tools.h"
#include "win32/windows.h"

namespace FileUtils {
namespace {

using namespace Quorvane::SDK;

void ShowFailure(IHostServices& host, uint32_t error, TextId failureText) {
    if (error == ERROR_ACCESS_DENIED) {
        host.MessageBox(HostText(host, Text::AccessDenied), HostText(host, Text::AccessDeniedTitle), MB_ICONERROR);
        return;
    }
    const std::wstring message = FormatText(HostText(host, failureText), {error});
    host.MessageBox(message.c_str(), HostText(host, Text::FailureTitle), MB_ICONERROR);
}

/// What an administrator needs to put an item back. Nothing is told of one whose owner and list cannot be read.
void LogFormer(IHostServices& host, const std::wstring& path) {
    const std::wstring former = Security::NTFSTools().DescribeOwnerAndList(path);
    if (!former.empty())
        host.Log(kLogLevel, LogKind::Success, L"[Security] - Before : %s : %s", former.c_str(), path.c_str());
}

/// The message that the user gets takes the code alone; the log says which path it was.
uint32_t Change(IHostServices& host, const SecurityChange& change, const std::wstring& path) {
    LogFormer(host, path);
    const uint32_t error = change(path);
    if (error != ERROR_SUCCESS)
        host.Log(kLogLevel, LogKind::Failure, L"[Security] - Failed (Error : %d) : %s", error, path.c_str());
    return error;
}

bool AsksElevated(IHostServices& host) {
    return host.CanElevate() && !host.IsElevated();
}

/// The reply; nothing when the work is to be done in this process.
std::optional<uint32_t> AskElevated(IHostServices& host, const SecuritySelection& selection, const SecurityWork& work) {
    if (!AsksElevated(host)) return std::nullopt;
    // That process has a log of its own, which not every host shows. Told before it begins: it may end half-way.
    for (const std::wstring& path : selection.paths) LogFormer(host, path);
    return SendElevated(host, work.requestId, selection.paths.front(), work.writeRequest);
}

}  // namespace

SecuritySelection GatherSecuritySelection(IHostServices& host) {
    SecuritySelection selection;
    selection.list = GatherSelection(host, SelectionFlags::Access);
    if (!selection.list) return selection;
    const uint32_t capacity = AsksElevated(host) ? kLargeCapacity : kUsualCapacity;
    for (IFileItem* const item : ItemsOf(*selection.list)) {
        std::wstring path = PathOf(*item, capacity);
        if (path.empty()) continue;
        selection.items.push_back(item);
        selection.paths.push_back(std::move(path));
    }
    return selection;
}

bool RunSecurityWork(IHostServices& host, const SecuritySelection& selection, const SecurityWork& work) {
    if (selection.items.empty()) return true;
    const std::optional<uint32_t> reply = AskElevated(host, selection, work);
    for (size_t at = 0; at < selection.items.size(); ++at) {
        const uint32_t error = reply ? *reply : Change(host, work.change, selection.paths[at]);
        if (error != ERROR_SUCCESS) {
            ShowFailure(host, error, work.failureText);
            return !reply;
        }
        host.Log(kLogLevel, LogKind::Success, L"[Security] - %s : %s", work.done.c_str(), selection.paths[at].c_str());
        if (work.onChanged) work.onChanged(*selection.items[at]);
    }
    return true;
}

uint32_t ChangeUntilFailure(IHostServices& host, const Paths& paths, const SecurityChange& change) {
    for (const std::wstring& path : paths)
        if (const uint32_t error = Change(host, change, path)) return error;
    return ERROR_SUCCESS;
}

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
