#include "fileutils/commands.h"
#include "fileutils/ids.h"

#include <array>

#include "fileutils/access/security_work.h"
#include "fileutils/fileutils_texts.h"
#include "security/account_names.h"
#include "security/ntfs_prop.h"
#include "security/ntfs_tools.h"
#include "security/privilege.h"

namespace FileUtils {
namespace {

using namespace Quorvane::SDK;

/// Needs the privilege to take ownership where the user has no right to.
uint32_t MakeOwner(const std::wstring& path, const std::wstring& user) {
    return Security::NTFSTools().SetOwner(path, user);
}

/// What the host has kept of the item's owner is not true any more.
void RefreshOwner(IFileItem& item) {
    StoredPropertyValue value = {};
    if (item.QueryProperty(Security::Property::Owner, 1, &value) != 0) item.RefreshProperty(1);
}

/// All selected items lie in one panel; the first one tells which folder that shows.
void RefreshPanel(IHostServices& host, IFileItem& first) {
    const AcquiredService<IFolderRefresh> panel(host, ServiceNumber::FolderRefresh);
    if (!panel) return;
    std::array<wchar_t, kLargeCapacity + 1> location = {};  // it ends whatever the host does
    first.GetLocation(location.data(), kLargeCapacity);
    panel->RefreshFolder(location.data());
}

}  // namespace

uint32_t RunTakeOwnership(IHostServices& host, uint32_t) {
    const std::wstring user = Security::CurrentUserName();
    const SecuritySelection selection = GatherSecuritySelection(host);
    if (selection.items.empty()) return 1;
    // Without it the items that are the user's already still work; the others fail by themselves.
    const Security::ScopedPrivilege privilege(SE_TAKE_OWNERSHIP_NAME);
    const bool goesOn =
        RunSecurityWork(host, selection,
                        {.requestId = RequestId::TakeOwnership,
                         .failureText = Text::TakeOwnershipFailed,
                         .done = L"Ownership taken",
                         .writeRequest = [&](IRequestWriter& writer) { WritePaths(writer, selection.paths); },
                         .change = [&](const std::wstring& path) { return MakeOwner(path, user); },
                         .onChanged = RefreshOwner});
    if (goesOn) RefreshPanel(host, *selection.items.front());
    return 1;
}

uint32_t AnswerTakeOwnershipRequest(IHostServices& host, IRequestMessage& message) {
    uint32_t error = ERROR_INVALID_PARAMETER;
    if (const std::optional<Paths> paths = ReadMessage(message, ReadPaths)) {
        const Security::ScopedPrivilege privilege(SE_TAKE_OWNERSHIP_NAME);
        const std::wstring user = Security::CurrentUserName();
        error = ChangeUntilFailure(host, *paths, [&](const std::wstring& path) { return MakeOwner(path, user); });
    }
    message.Reply(1, error, 0, 0);
    return 1;
}

}  // namespace FileUtils
