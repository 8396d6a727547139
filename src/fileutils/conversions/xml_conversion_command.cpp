#include "fileutils/commands.h"
#include "fileutils/ids.h"

#include "sdk/owners.h"
#include "win32/windows.h"

namespace FileUtils {
namespace {

using namespace Quorvane::SDK;

constexpr uint32_t kTextCapacity = 100;  // units that the host's writer wants of a document's beginning

void ConvertDocument(IHostServices& host, const std::wstring& path, uint32_t mode) {
    const Owned<IXmlService> service(host.GetXmlService(path.c_str(), mode));
    if (!service) return TellMissing(host, (L"XML service for : " + path).c_str());
    const Owned<IXmlDocument> document(service->Load(path.c_str(), 0));
    if (!document) {
        host.Log(kLogLevel, LogKind::Failure, L"[Convert XML] - Failed to load file : %s", path.c_str());
        return;
    }
    wchar_t text[kTextCapacity + 1] = {};
    service->ReadText(document.get(), text, kTextCapacity);
    if (service->Save(document.get(), path.c_str(), mode, text)) {
        host.Log(kLogLevel, LogKind::Success, L"[Convert XML] - Converted file : %s", path.c_str());
        return;
    }
    host.Log(kLogLevel, LogKind::Failure, L"[Convert XML] - Failed to save file : %s", path.c_str());
    host.MessageBox(L"Failed to save xml file", L"Error", MB_ICONERROR);
}

}  // namespace

uint32_t RunXmlConversion(IHostServices& host, uint32_t id) {
    const Owned<IFileList> list = GatherSelection(host, SelectionFlags::Files);
    if (!list) return 1;
    for (const std::wstring& path : PathsOf(*list)) ConvertDocument(host, path, id == CommandId::ReadableXml ? 1 : 0);
    return 1;
}

}  // namespace FileUtils
