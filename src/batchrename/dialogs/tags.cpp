#include "batchrename/dialogs/tags.h"

#include "batchrename/batchrename_texts.h"

namespace BatchRename {
namespace {

using namespace Quorvane::SDK;

constexpr TagEntry kTags[] = {
    {L"[N]", Text::NameTag}, {L"[E]", Text::ExtensionTag}, {L"[C]", Text::CounterTag}, {L"[F]", Text::FolderTag},
    {nullptr, kNoText},      {L"[Y]", Text::YearTag},      {L"[M]", Text::MonthTag},   {L"[D]", Text::DayTag},
    {nullptr, kNoText},      {L"[h]", Text::HourTag},      {L"[m]", Text::MinuteTag},  {L"[s]", Text::SecondTag},
    {nullptr, kNoText},
};

}  // namespace

std::span<const TagEntry> TagEntries() {
    return kTags;
}

std::wstring PropertyTag(const std::wstring& property, const SubString* part) {
    std::wstring tag = L"[?" + property;
    if (part) tag += L"," + std::to_wstring(part->start) + L"," + std::to_wstring(part->length);
    return tag + L"]";
}

}  // namespace BatchRename
