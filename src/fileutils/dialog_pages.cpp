#include "fileutils/dialog_pages.h"

#include <algorithm>

#include "fileutils/fileutils_resource.h"
#include "fileutils/fileutils_texts.h"
#include "sdk/owners.h"
#include "ui/name_fault_texts.h"

namespace FileUtils {
namespace {

using namespace Quorvane::SDK;

// The tooltips' texts have their numbers here and nowhere else.
constexpr TextId kFileNameTip = 802_d;
constexpr TextId kOneCharacterTip = 810_d;

constexpr Ui::Tip kFindAndReplaceTips[] = {
    {IDC_MODE, 801_d},       {IDC_FILE_NAME, kFileNameTip}, {IDC_WILDCARD, 803_d},
    {IDC_FORCE_UTF8, 804_d}, {IDC_SILENT, 805_d},           {IDC_IGNORE_CASE, 806_d},
};
constexpr Ui::Tip kConfirmReplaceTips[] = {{IDC_SWITCH_UTF8, 807_d}};
constexpr Ui::Tip kSortLinesTips[] = {
    {IDC_FILE_NAME, kFileNameTip},          {IDC_LINE_OFFSET, 808_d},
    {IDC_SUBSTRING_LENGTH, 809_d},          {IDC_END_CHARACTER, kOneCharacterTip},
    {IDC_ITEM_SEPARATOR, kOneCharacterTip}, {IDC_DATE_FORMAT, 811_d},
    {IDC_NATURAL_NUMBERS, 812_d},
};
constexpr Ui::Tip kCreateLinksTips[] = {{IDC_LINK_KIND, 813_d}, {IDC_LINK_AS_ADMIN, 814_d}};
constexpr Ui::Tip kChangeAccessTips[] = {{IDC_ACCESS_ACCOUNT, 815_d}};

constexpr Ui::Tip kChangeAccessTexts[] = {
    {0, Text::AccessDialog},
    {IDC_ACCESS_ACCOUNT_LABEL, Text::Account},
    {IDC_ACCESS_FIND, Text::FindAccount},
    {IDC_ACCESS_RIGHTS_LABEL, Text::AccessRights},
    {IDOK, Text::GrantPermissions},
    {IDC_ACCESS_NOTE, Text::AccessNote},
    {IDCANCEL, Text::Cancel},
};

constexpr Ui::DialogPage kPages[] = {
    {IDD_FIND_AND_REPLACE, L"FindAndReplace", L"replace-text-in-many-files", kFindAndReplaceTips},
    {IDD_CONFIRM_REPLACE, L"ConfirmReplace", L"answer-the-question-about-each-match", kConfirmReplaceTips},
    {IDD_SORT_LINES, L"SortLines", L"sort-the-lines-of-files", kSortLinesTips},
    {IDD_REPLACE_IN_NAMES, L"ReplaceInNames", L"change-names-quickly", {}},
    {IDD_CREATE_LINKS, L"CreateLinks", L"create-links", kCreateLinksTips},
    {IDD_CHANGE_ACCESS, L"ChangeAccess", L"change-ownership-and-access-rights", kChangeAccessTips, kChangeAccessTexts},
};

}  // namespace

std::span<const Ui::DialogPage> DialogPages() {
    return kPages;
}

std::wstring Reason(std::wstring_view english, const Words& say) {
    return say.Translated(english, {Text::kReasons, Ui::Text::kNameFaults});
}

Ui::DialogHost DialogHostFor(IHostServices& host, WORD dialog) {
    const auto text = [&host](TextId id) {
        if (static_cast<char>(id & 0xFF) != 'g') return HostText(host, id);
        // General words are not this extension's own: module 0 has them.
        const wchar_t* const word = host.GetModuleText(0, id);
        return word ? word : L"";
    };
    return {text, host.GetSettings(), std::ranges::find(kPages, dialog, &Ui::DialogPage::dialog)};
}

}  // namespace FileUtils
