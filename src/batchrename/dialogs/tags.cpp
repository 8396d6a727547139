#include "batchrename/dialogs/tags.h"

namespace BatchRename {
namespace {

using namespace Quorvane::SDK;

constexpr TagEntry kTags[] = {
    {L"[N]", 300_m}, {L"[E]", 301_m}, {L"[C]", 302_m},    {L"[F]", 303_m},    {nullptr, kNoText},
    {L"[Y]", 304_m}, {L"[M]", 305_m}, {L"[D]", 306_m},    {nullptr, kNoText}, {L"[h]", 307_m},
    {L"[m]", 308_m}, {L"[s]", 309_m}, {nullptr, kNoText},
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
