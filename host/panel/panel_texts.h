// panel_texts.h - the panel's own texts. They stand in the section [Panel] of the language file, numbered as here.
#pragma once

#include "host/contract/language.h"

namespace QVHost {

/// The part of the guide that F1 opens in the panel.
inline constexpr wchar_t kPanelTopic[] = L"choose-files-and-run-a-command";

enum class PanelText : uint32_t {
    Program = 1,
    Menu,
    OpenFolder,
    Up,
    Back,
    Refresh,
    SelectAll,
    CopyLog,
    ClearLog,
    Exit,
    Name,
    Size,
    Date,
    Result,
    Done,
    Failed,
    Skipped,
    Folder,
    CountOfItems,     // %d
    CountOfSelected,  // %d of %d, %s
    Address,
    CannotOpen,  // %s: %s
    NotHandled,  // %s
    Drives,
    Working,
    ChooseFolder,
    BackButton,
    UpButton,
    EmptyFolder,
    EmptyLog,
    Ended,            // %s
    NothingSelected,  // %s
    OtherFolders,     // %d
    SendToRename,     // the names of shortcuts; so are the next three
    SendToFind,
    SendToSort,
    SendToPanel,
    Open,
    CopyPaths,
    GoToFile,
    Guide,
    NoFileNamed,
    Summary,         // %s: %s, the parts below that are not 0, with commas between
    CountOfChanged,  // each with one %d, as those that follow
    CountOfAdded,
    CountOfGone,
    CountOfRenamed,
    CountOfReplaced,
    CountOfFailed,
    CountOfSkipped,
    Ok,
    Cancel,
    Input,  // the title of a question for a text
    KeyCtrl,
    KeyShift,
    KeyUp,
    KeyLeft,
    CountOfTold,  // one %d
    Last = CountOfTold,
};

inline constexpr wchar_t kPanelSection[] = L"Panel";

/// The texts of the panel are of category "w".
inline Quorvane::SDK::TextId TextIdOf(PanelText text) {
    return Quorvane::SDK::MakeTextId(static_cast<uint32_t>(text), 'w');
}

inline const wchar_t* TextOf(LanguageTexts& texts, PanelText text) {
    return texts.Find(kPanelSection, TextIdOf(text));
}

}  // namespace QVHost
