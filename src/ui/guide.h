// guide.h - opens the user guide at a topic.
#pragma once

#include <string>

#include "ui/controls.h"

namespace Ui {

// The texts of the language files that tell why it does not open.
namespace Text {
inline constexpr Quorvane::SDK::TextId GuideMissing = Quorvane::SDK::MakeTextId(40, 'g');    // one argument: its path
inline constexpr Quorvane::SDK::TextId GuideNotOpened = Quorvane::SDK::MakeTextId(41, 'g');  // its path, the reason
inline constexpr Quorvane::SDK::TextId kAll[] = {GuideMissing, GuideNotOpened};
}  // namespace Text

/// Where the guide stands for a program or library in `folder`: the page of the topic in docs\help beside it, as it is
/// packed; else, for one that lies where it was built, the guide's text. Both may be missing.
struct GuidePlace {
    std::wstring page;
    std::wstring text;
};
GuidePlace PlaceOfGuide(const std::wstring& folder, const std::wstring& topic);

/// Has the system show the page, with whatever shows such pages here, else the text; says so when there is neither. To
/// be called on the thread of `owner`, since the shell may put windows above it. Nothing else happens.
void OpenGuide(HWND owner, const GuidePlace& place, const HostTexts& texts);
/// The place is that of our own module.
void OpenGuide(HWND owner, const std::wstring& topic, const HostTexts& texts);

}  // namespace Ui
