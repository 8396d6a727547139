// sort_options.h - the option bits of one sort. The same word travels in the request and is stored in the settings.
#pragma once

#include <cstdint>

namespace QVLineSorter::SortOption {

// What of a line is its key. Without any of them it is the line from the line offset on.
inline constexpr uint32_t EntireLine = 0x00000001;  // as without any, and number and date keys stay 0
inline constexpr uint32_t Substring = 0x00000002;
inline constexpr uint32_t Item = 0x00000004;

// How keys are read. Exactly one of them is set.
inline constexpr uint32_t AsText = 0x00000010;
inline constexpr uint32_t AsNumber = 0x00000100;
inline constexpr uint32_t AsDate = 0x00000200;

// How they are ordered.
inline constexpr uint32_t LanguageOrder = 0x00000800;
inline constexpr uint32_t Reverse = 0x00001000;
inline constexpr uint32_t IgnoreCase = 0x00002000;        // read by ordinal order only
inline constexpr uint32_t NaturalNumbers = 0x00008000;    // read by language order only
inline constexpr uint32_t RemoveDuplicates = 0x00020000;  // stored for the dialog, whose box is disabled; no effect
inline constexpr uint32_t RemoveBlankLines = 0x00040000;
inline constexpr uint32_t NoCompareStringEx = 0x00080000;  // 16-bit text: always the older comparison of the system

// Where the key begins and ends.
inline constexpr uint32_t SkipLeadingSpaces = 0x00100000;
inline constexpr uint32_t EndAtWhiteSpace = 0x00200000;
inline constexpr uint32_t EndAtCharacter = 0x00400000;

// What becomes of the file.
inline constexpr uint32_t SaveAs = 0x01000000;
inline constexpr uint32_t KeepBackup = 0x02000000;
inline constexpr uint32_t DeleteBackup = 0x04000000;
inline constexpr uint32_t Overwrite = 0x08000000;
inline constexpr uint32_t Silent = 0x10000000;

}  // namespace QVLineSorter::SortOption
