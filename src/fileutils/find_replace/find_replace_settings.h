// find_replace_settings.h - the last find-and-replace request, as the host's settings keep it.
#pragma once

#include <cstdint>
#include <string>

#include "sdk/host_objects.h"

namespace FileUtils {

struct FindReplaceSettings {
    std::wstring find;
    std::wstring replacement;
    uint32_t options = 0;
};

/// Loads what the store has; a key that is missing leaves its field alone. Texts are cut at 4,095 units. A null store
/// loads and saves nothing.
void LoadFindReplaceSettings(Quorvane::SDK::ISettings* store, FindReplaceSettings& settings);
void SaveFindReplaceSettings(Quorvane::SDK::ISettings* store, const FindReplaceSettings& settings);

}  // namespace FileUtils
