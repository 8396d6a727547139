// case_conversion.h - the case options of a rule, applied to a name.
#pragma once

#include <cstdint>
#include <string>

namespace BatchRename {

/// Applies the lowest case bit of `options` (RenameOption) to a new name and extension.
///
/// The plain conversions change only the letters A to Z; the first letters that CapitaliseWords and Sentence make know
/// all letters, and so does the lowering of CapitaliseWords. The difference is on purpose: it is what people's rules
/// and profiles were made for.
void ApplyCase(std::wstring& name, std::wstring& extension, uint32_t options);

}  // namespace BatchRename
