#include "batchrename/dialogs/rename_dialog_pages.h"

#include <algorithm>

#include "batchrename/dialogs/batchrename_resource.h"

namespace BatchRename {
namespace {

using namespace Quorvane::SDK;

// The tooltips' texts have their numbers here and nowhere else.
constexpr Ui::Tip kRulePanelTips[] = {
    {IDC_NAME_TEMPLATE, 350_d}, {IDC_EXTENSION_TEMPLATE, 351_d}, {IDC_COUNTER_DIGITS, 352_d}, {IDC_REGEX, 353_d},
    {IDC_SCOPE, 354_d},         {IDC_SAVE_UNDO, 355_d},          {IDC_LIVE_PREVIEW, 356_d},   {IDC_CHANGES_ONLY, 357_d},
    {IDC_PROFILES, 358_d},      {IDC_RESET_LIST, 359_d},
};

constexpr Ui::DialogPage kPages[] = {
    {IDD_RULE_PANEL, L"RulePanel", L"rename-many-files", kRulePanelTips},
    {IDD_ADD_TAG, L"AddTag", L"build-names-with-tags", {}},
    {IDD_UNDO_MANAGER, L"UndoManager", L"take-a-renaming-back", {}},
    {IDD_RENAME_ITEM, L"RenameItem", L"search-and-replace-in-names", {}},
    {IDD_SAVE_PROFILE, L"SaveProfile", L"keep-a-rule-for-later", {}},
};

}  // namespace

std::span<const Ui::DialogPage> DialogPages() {
    return kPages;
}

const Ui::DialogPage& PageOf(WORD dialog) {
    return *std::ranges::find(kPages, dialog, &Ui::DialogPage::dialog);
}

}  // namespace BatchRename
