// rename_options.h - the option word of a rename rule. It is stored in profiles, so its bits never change their
// meaning.
#pragma once

#include <cstdint>

namespace BatchRename {

namespace RenameOption {
// Case: the lowest bit that is set counts.
inline constexpr uint32_t LowerBoth = 0x01;
inline constexpr uint32_t UpperBoth = 0x02;
inline constexpr uint32_t LowerName = 0x04;
inline constexpr uint32_t UpperName = 0x08;
inline constexpr uint32_t LowerExtension = 0x10;
inline constexpr uint32_t UpperExtension = 0x20;
inline constexpr uint32_t CapitaliseWords = 0x40;  // of the name
inline constexpr uint32_t Sentence = 0x80;         // the name: first letter upper case, the rest lower case
inline constexpr uint32_t CaseMask = 0xFF;

inline constexpr uint32_t CaseSensitive = 0x100000;
inline constexpr uint32_t RegularExpression = 0x200000;
inline constexpr uint32_t ReplaceAll = 0x400000;  // plain search only

// What search and replace works on.
inline constexpr uint32_t ScopeBoth = 0x1000000;
inline constexpr uint32_t ScopeName = 0x2000000;
inline constexpr uint32_t ScopeExtension = 0x4000000;
inline constexpr uint32_t ScopeMask = ScopeBoth | ScopeName | ScopeExtension;
}  // namespace RenameOption

}  // namespace BatchRename
