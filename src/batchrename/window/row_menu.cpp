#include "batchrename/window/row_menu.h"

#include "batchrename/batchrename_texts.h"

namespace BatchRename {

std::optional<RowAction> PickRowAction(HWND owner, POINT point, const RowMenuState& state, const Ui::HostTexts& texts) {
    const Ui::MenuHandle menu(CreatePopupMenu());
    const auto add = [&](RowAction action, Quorvane::SDK::TextId text, bool isEnabled) {
        AppendMenuW(menu.Get(), MF_STRING | (isEnabled ? MF_ENABLED : MF_GRAYED),
                    static_cast<UINT_PTR>(action) + 1,  // 0 means that nothing was chosen
                    texts(text));
    };
    const auto separate = [&] { AppendMenuW(menu.Get(), MF_SEPARATOR, 0, nullptr); };
    const bool canChange = state.hasRows && state.canChange;
    add(RowAction::Name, Text::NameRow, state.hasRows && state.canName);
    add(RowAction::DropName, Text::DropRowName, state.hasOwnName && state.canName);
    separate();
    add(RowAction::Check, Text::CheckRows, canChange);
    add(RowAction::Uncheck, Text::UncheckRows, canChange);
    add(RowAction::TakeOut, Text::TakeOutRows, canChange);
    add(RowAction::Keep, Text::KeepRows, canChange);
    separate();
    add(RowAction::Copy, Text::CopyRows, state.hasRows);
    add(RowAction::SelectAll, Text::SelectAllRows, true);
    add(RowAction::NextProblem, Text::NextProblem, state.hasProblems);
    add(RowAction::OpenFolder, Text::OpenRowFolder, state.hasRows);
    const int chosen =
        TrackPopupMenuEx(menu.Get(), TPM_RETURNCMD | TPM_NONOTIFY | TPM_RIGHTBUTTON, point.x, point.y, owner, nullptr);
    return chosen > 0 ? std::optional(static_cast<RowAction>(chosen - 1)) : std::nullopt;
}

}  // namespace BatchRename
