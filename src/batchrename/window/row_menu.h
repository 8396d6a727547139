// row_menu.h - the menu of the list's rows.
#pragma once

#include <optional>

#include "batchrename/window/pane_listener.h"
#include "ui/controls.h"

namespace BatchRename {

struct RowMenuState {
    bool hasRows = false;  // the menu is for some
    bool canChange = false;
    bool canName = false;
    bool hasOwnName = false;
    bool hasProblems = false;
};

/// Opens the menu at a point of the screen; nothing when nothing is chosen.
std::optional<RowAction> PickRowAction(HWND owner, POINT point, const RowMenuState& state, const Ui::HostTexts& texts);

}  // namespace BatchRename
