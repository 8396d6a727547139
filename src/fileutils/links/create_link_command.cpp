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

/// Fills the request of a call. Gives the error when a parameter is missing or the target cannot be seen.
uint32_t ReadCall(ICustomCommandCall& call, LinkRequest& request) {
    for (const char* name : {Parameter::LinkPath, Parameter::LinkTarget, Parameter::LinkType})
        if (!call.HasParameter(name)) return ERROR_INVALID_PARAMETER;
    const wchar_t* const link = call.GetTextParameter(Parameter::LinkPath);
    const wchar_t* const target = call.GetTextParameter(Parameter::LinkTarget);
    if (!link || !target || !call.GetNumberParameter(Parameter::LinkType, &request.type))
        return ERROR_INVALID_PARAMETER;
    request.link = link;
    request.target = target;
    const DWORD attributes = GetFileAttributesW(Win32::ExtendedPath(request.target).c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) return GetLastError();
    request.targetIsFolder = (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    return ERROR_SUCCESS;
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

CallResult RunCreateLinkCommand(IHostServices& host, ICustomCommandCall& call) {
    LinkRequest request;
    uint32_t error = ReadCall(call, request);
    if (error != ERROR_SUCCESS) return {false, error};
    if (call.HasParameter(Parameter::AsAdministrator)) {
        // An elevated host could make the link by itself, and still makes none: scripts rely on this switch meaning the
        // second process and nothing else.
        if (!host.CanElevate() || host.IsElevated()) return {false, ERROR_ACCESS_DENIED};
        error = CreateLinkElevated(host, request);
        return {error == ERROR_SUCCESS, error};
    }
    error = CreateLinkHere(host, request);
    if (error == ERROR_PRIVILEGE_NOT_HELD) error = ERROR_ACCESS_DENIED;  // the log keeps the system's own code
    call.SetResultText(std::to_wstring(error).c_str());
    return {error == ERROR_SUCCESS, error};
}

uint32_t AnswerCreateLinkRequest(IHostServices& host, IRequestMessage& message) {
    const std::optional<LinkRequest> request = ReadMessage(message, ReadRequest);
    const uint32_t error = request ? CreateLinkHere(host, *request) : uint32_t{ERROR_INVALID_PARAMETER};
    message.Reply(1, error, 0, 0);
    return 1;
}

}  // namespace FileUtils
