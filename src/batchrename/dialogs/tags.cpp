#include "batchrename/dialogs/tags.h"

#include <vector>

#include "batchrename/batchrename_texts.h"
#include "ui/popup_menu.h"

namespace BatchRename {

using namespace Quorvane::SDK;

namespace {

/// One line of the menu.
struct TagEntry {
    const wchar_t* tag;  // null: a separator
    TextId text;
};

constexpr TagEntry kTags[] = {
    {L"[N]", Text::NameTag}, {L"[E]", Text::ExtensionTag}, {L"[C]", Text::CounterTag}, {L"[F]", Text::FolderTag},
    {nullptr, kNoText},      {L"[Y]", Text::YearTag},      {L"[M]", Text::MonthTag},   {L"[D]", Text::DayTag},
    {nullptr, kNoText},      {L"[h]", Text::HourTag},      {L"[m]", Text::MinuteTag},  {L"[s]", Text::SecondTag},
    {nullptr, kNoText},
};

}  // namespace

std::optional<std::wstring> PickTag(HWND owner, HWND button, const Ui::HostTexts& texts) {
    Ui::PopupMenu menu;
    std::vector<const wchar_t*> tags;
    for (const TagEntry& entry : kTags) {
        if (!entry.tag) {
            menu.AddSeparator();
            continue;
        }
        menu.Add(texts(entry.text));
        tags.push_back(entry.tag);
    }
    const int property = menu.Add(texts(Text::PropertyTag));
    const int chosen = menu.Show(owner, button);
    if (chosen < 0) return std::nullopt;
    return chosen == property ? std::wstring() : tags[static_cast<size_t>(chosen)];
}

std::wstring PropertyTag(const std::wstring& property, const SubString* part) {
    std::wstring tag = L"[?" + property;
    if (part) tag += L"," + std::to_wstring(part->start) + L"," + std::to_wstring(part->length);
    return tag + L"]";
}

}  // namespace BatchRename
