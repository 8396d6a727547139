#include "fileutils/commands.h"

#include "fileutils/dialog_pages.h"
#include "fileutils/fileutils_resource.h"
#include "fileutils/fileutils_texts.h"
#include "fileutils/links/create_links_dlg.h"
#include "fileutils/links/folder_picker.h"
#include "fileutils/links/link_creation.h"
#include "fileutils/links/link_rules.h"
#include "fileutils/names/rename_items.h"
#include "sdk/owners.h"

namespace FileUtils {
namespace {

using namespace Quorvane::SDK;

std::vector<LinkTarget> TargetsOf(IFileList& list) {
    std::vector<LinkTarget> targets;
    for (IFileItem* const item : ItemsOf(list)) {
        std::wstring path = PathOf(*item);
        if (!path.empty()) targets.push_back({std::move(path), IsFolder(*item)});
    }
    return targets;
}

}  // namespace

uint32_t RunCreateLinks(IHostServices& host, uint32_t) {
    const Owned<IFileList> list = GatherSelection(host, SelectionFlags::Files);
    if (!list) return 1;
    const std::vector<LinkTarget> targets = TargetsOf(*list);
    if (targets.empty()) return 1;
    const bool canElevate = host.CanElevate() && !host.IsElevated();
    LinkRules rules;
    const auto whyNot = [&](uint32_t type, const std::wstring& link, const LinkTarget& target) {
        return rules.WhyNot(type, link, target.path, target.isFolder);
    };
    CreateLinksDlg dialog(targets, canElevate, whyNot, PickFolder);
    dialog.UseHost(DialogHostFor(host, IDD_CREATE_LINKS));
    const auto chosen = dialog.Show(host.GetMainWindow());
    if (!chosen) return 1;
    size_t failed = 0;
    for (size_t at = 0; at < targets.size(); ++at) {
        const LinkRequest request = {chosen->type, chosen->links[at], targets[at].path, targets[at].isFolder};
        const uint32_t error =
            chosen->asAdministrator ? CreateLinkElevated(host, request) : CreateLinkHere(host, request);
        if (error != ERROR_SUCCESS) ++failed;
    }
    if (failed > 0) {
        const Words say(DialogHostFor(host, IDD_CREATE_LINKS).texts);
        const std::wstring message =
            targets.size() == 1 ? say(Text::LinkNotCreated) : say(Text::LinksNotCreated, {failed, targets.size()});
        host.MessageBox(message.c_str(), say(Text::CreateLinksTitle).c_str(), MB_ICONWARNING);
    }
    return 1;
}

}  // namespace FileUtils
