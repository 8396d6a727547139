#include "fileutils/commands.h"
#include "fileutils/dialog_pages.h"
#include "fileutils/fileutils_resource.h"
#include "fileutils/ids.h"

#include "fileutils/access/account_picker.h"
#include "fileutils/access/change_access_dlg.h"
#include "fileutils/access/security_work.h"
#include "fileutils/fileutils_texts.h"
#include "security/account_names.h"
#include "security/ntfs_tools.h"

namespace FileUtils {
namespace {

using namespace Quorvane::SDK;

SecurityChange Grant(const std::wstring& account, uint32_t mask) {
    return [account, mask](const std::wstring& path) { return Security::NTFSTools().GrantAccess(path, account, mask); };
}

bool AccountExists(const std::wstring& account) {
    return Security::NTFSTools().CheckAccount(account) == ERROR_SUCCESS;
}

std::optional<AccessChoice> AskForAccess(IHostServices& host, const std::wstring& account) {
    Ui::DialogHost dialogHost = DialogHostFor(host, IDD_CHANGE_ACCESS);
    ChangeAccessDlg dialog(dialogHost.texts, account, AccountExists, PickAccount);
    dialog.UseHost(std::move(dialogHost));
    const HWND active = GetActiveWindow();
    return dialog.Show(active ? active : host.GetMainWindow());
}

}  // namespace

uint32_t RunGrantAccess(IHostServices& host, uint32_t) {
    const std::wstring account = Security::CurrentAccountName();
    const SecuritySelection selection = GatherSecuritySelection(host);
    if (selection.items.empty()) return 1;
    const std::optional<AccessChoice> chosen = AskForAccess(host, account);
    if (!chosen) return 1;
    RunSecurityWork(host, selection,
                    {.requestId = RequestId::GrantAccess,
                     .failureText = Text::GrantAccessFailed,
                     .done = L"Access granted to " + chosen->account,
                     .writeRequest =
                         [&](IRequestWriter& writer) {
                             WriteAccessGrant(writer, {chosen->mask, chosen->account, selection.paths});
                         },
                     .change = Grant(chosen->account, chosen->mask)});
    return 1;
}

uint32_t AnswerGrantAccessRequest(IHostServices& host, IRequestMessage& message) {
    const std::optional<AccessGrant> grant = ReadMessage(message, ReadAccessGrant);
    const uint32_t error = grant ? ChangeUntilFailure(host, grant->paths, Grant(grant->account, grant->mask))
                                 : uint32_t{ERROR_INVALID_PARAMETER};
    message.Reply(1, error, 0, 0);
    return 1;
}

}  // namespace FileUtils
