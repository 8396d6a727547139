#include "fileutils/commands.h"
#include "fileutils/ids.h"

#include <optional>
#include <string>

#include "fileutils/elevated_request.h"
#include "fileutils/links/link_creation.h"
#include "win32/path.h"

namespace FileUtils {
namespace {

using namespace Quorvane::SDK;

/// The request of a call; nothing when a parameter is missing or the target does not exist.
std::optional<LinkRequest> RequestOf(ICustomCommandCall& call) {
    for (const char* name : {Parameter::LinkPath, Parameter::LinkTarget, Parameter::LinkType})
        if (!call.HasParameter(name)) return std::nullopt;
    const wchar_t* const link = call.GetTextParameter(Parameter::LinkPath);
    const wchar_t* const target = call.GetTextParameter(Parameter::LinkTarget);
    LinkRequest request;
    if (!link || !target || !call.GetNumberParameter(Parameter::LinkType, &request.type)) return std::nullopt;
    request.link = link;
    request.target = target;
    const DWORD attributes = GetFileAttributesW(Win32::ExtendedPath(request.target).c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) return std::nullopt;
    request.targetIsFolder = (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    return request;
}

/// A symbolic link is text that others follow, and so is a junction in the form of the system's core.
bool IsTarget(uint32_t type, std::wstring path) {
    if (type == LinkType::SymbolicLink) return IsSymbolicLinkTarget(path);
    if (type == LinkType::Junction && path.starts_with(LR"(\??\)")) path[1] = L'\\';
    return IsFullFilePath(path);
}

LinkRequest ReadRequest(RequestFields& fields) {
    LinkRequest request;
    request.type = fields.Number();
    request.link = fields.FilePath();
    request.target = fields.Text();
    if (!IsTarget(request.type, request.target)) fields.Refuse();
    const uint32_t folderFlag = fields.Number();
    request.targetIsFolder = folderFlag == 1;
    if (folderFlag > 1) fields.Refuse();
    return request;
}

}  // namespace

uint32_t RunCreateLinkCommand(IHostServices& host, ICustomCommandCall& call) {
    const std::optional<LinkRequest> request = RequestOf(call);
    if (!request) return 0;
    if (call.HasParameter(Parameter::AsAdministrator)) {
        // An elevated host could make the link by itself, and still makes none: scripts rely on this switch meaning the
        // second process and nothing else.
        if (!host.CanElevate() || host.IsElevated()) return 0;
        const uint32_t error = CreateLinkElevated(host, *request);
        call.SetResultCode(error);
        return error == ERROR_SUCCESS;
    }
    uint32_t error = CreateLinkHere(host, *request);
    if (error == ERROR_PRIVILEGE_NOT_HELD) error = ERROR_ACCESS_DENIED;  // the log keeps the system's own code
    call.SetResultText(std::to_wstring(error).c_str());
    call.SetResultCode(error);
    return error == ERROR_SUCCESS;
}

uint32_t AnswerCreateLinkRequest(IHostServices& host, IRequestMessage& message) {
    const std::optional<LinkRequest> request = ReadMessage(message, ReadRequest);
    const uint32_t error = request ? CreateLinkHere(host, *request) : uint32_t{ERROR_INVALID_PARAMETER};
    message.Reply(1, error, 0, 0);
    return 1;
}

}  // namespace FileUtils
