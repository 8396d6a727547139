// sort_lines_settings.h - the last sort request, as the host's settings keep it.
#pragma once

#include "linesorter/sort_request.h"
#include "sdk/host_objects.h"

namespace FileUtils {

/// Loads what the store has; a key that is missing leaves its field alone. What cannot be a separator loads as none,
/// and a date format is cut at 127 characters. The "Save as" name is not kept. A null store loads and saves nothing.
void LoadSortLinesSettings(Quorvane::SDK::ISettings* store, QVLineSorter::SortRequest& request);
void SaveSortLinesSettings(Quorvane::SDK::ISettings* store, const QVLineSorter::SortRequest& request);

}  // namespace FileUtils
