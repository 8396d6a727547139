// extension_ids.h - who File Utils is to the host.
#pragma once

namespace FileUtils {

inline constexpr char kExtensionId[] = "7c1d4e0a9b2f4c6d8e3a5b1f0c9d2e47";
inline constexpr char kModuleName[] = "QV.Utils";  // of the custom commands

}  // namespace FileUtils
