#include "fileutils/commands.h"
#include "fileutils/ids.h"

#include "fileutils/access/security_work.h"
#include "fileutils/fileutils_texts.h"
#include "security/ntfs_tools.h"

namespace FileUtils {
namespace {

using namespace Quorvane::SDK;

uint32_t Reset(const std::wstring& path) {
    return Security::NTFSTools().RemoveAllEntries(path);
}

}  // namespace

uint32_t RunResetAccess(IHostServices& host, uint32_t) {
    if (host.MessageBox(HostText(host, Text::ResetAccessQuestion), HostText(host, Text::ResetAccessTitle),
                        MB_YESNO | MB_ICONINFORMATION) != IDYES)
        return 1;
    const SecuritySelection selection = GatherSecuritySelection(host);
    RunSecurityWork(host, selection,
                    {.requestId = RequestId::ResetAccess,
                     .failureText = Text::ResetAccessFailed,
                     .done = L"Access reset to inherited",
                     .writeRequest = [&](IRequestWriter& writer) { WritePaths(writer, selection.paths); },
                     .change = Reset});
    return 1;
}

uint32_t AnswerResetAccessRequest(IHostServices& host, IRequestMessage& message) {
    const std::optional<Paths> paths = ReadMessage(message, ReadPaths);
    message.Reply(1, paths ? ChangeUntilFailure(host, *paths, Reset) : uint32_t{ERROR_INVALID_PARAMETER}, 0, 0);
    return 1;
}

}  // namespace FileUtils
