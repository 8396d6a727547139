// name_fault_texts.h - what can be wrong with a name, for the dialogs to say in the host's language.
#pragma once

#include "sdk/words.h"

namespace Ui::Text {

using namespace Quorvane::SDK::TextIdLiterals;

/// As Win32::DescribeNameFault says it.
inline constexpr Quorvane::SDK::OwnText kNameFaults[] = {
    {300_e, L"the name is empty"},
    {301_e, L"the character %s cannot be in a name"},
    {302_e, L"the character %s is half of a surrogate pair"},
    {303_e, L"the name is reserved for a device"},
    {304_e, L"a name cannot end with a dot"},
    {305_e, L"a name cannot end with a blank"},
    {306_e, L"the name has %s characters, %s are possible"},
};

}  // namespace Ui::Text
