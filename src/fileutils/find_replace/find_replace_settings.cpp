#include "fileutils/find_replace/find_replace_settings.h"

#include <vector>

namespace FileUtils {
namespace {

constexpr wchar_t kSection[] = L"FindReplace";
constexpr wchar_t kFindKey[] = L"Find";
constexpr wchar_t kReplaceKey[] = L"ReplaceWith";
constexpr wchar_t kOptionsKey[] = L"Options";
constexpr uint32_t kTextCapacity = 4096;

void LoadText(Quorvane::SDK::ISettings& store, const wchar_t* key, std::wstring& text) {
    std::vector<wchar_t> buffer(kTextCapacity + 1);
    if (store.GetString(1, kSection, key, buffer.data(), kTextCapacity)) text = buffer.data();
}

}  // namespace

void LoadFindReplaceSettings(Quorvane::SDK::ISettings* store, FindReplaceSettings& settings) {
    if (!store) return;
    LoadText(*store, kFindKey, settings.find);
    LoadText(*store, kReplaceKey, settings.replacement);
    store->GetNumber(1, kSection, kOptionsKey, &settings.options);
}

void SaveFindReplaceSettings(Quorvane::SDK::ISettings* store, const FindReplaceSettings& settings) {
    if (!store) return;
    store->SetString(1, kSection, kFindKey, settings.find.c_str());
    store->SetString(1, kSection, kReplaceKey, settings.replacement.c_str());
    store->SetNumber(1, kSection, kOptionsKey, settings.options);
}

}  // namespace FileUtils
