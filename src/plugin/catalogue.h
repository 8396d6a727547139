// catalogue.h - the extensions that the library carries, by index.
#pragma once

#include "sdk/extension_info.h"
#include "sdk/plugin_interface.h"

namespace Plugin {

/// Fills `record` with the description of extension `index`; bytes without a field keep their values. False, with the
/// record untouched, for an unknown index or a null record.
bool DescribeExtension(uint32_t index, Quorvane::SDK::ExtensionInfo* record);

/// A new extension object, null for an unknown index. Running out of memory is thrown on to the caller.
Quorvane::SDK::IPluginInterface* CreateExtension(uint32_t index);

/// Ends an object from CreateExtension. False for a null object or an unknown index. An object of another class than
/// the index says is left alone, and the answer is true all the same - except for index 1, whose object is not checked.
/// The difference is deliberate: hosts have always been answered so.
bool DeleteExtension(Quorvane::SDK::IPluginInterface* object, uint32_t index);

}  // namespace Plugin
