// find_replace_dlg.h - the dialog that edits one find and replace pair, and shows at once what it does to the names.
#pragma once

#include <optional>

#include "batchrename/model/preview.h"
#include "rename/search_and_replace_items.h"
#include "ui/dialog.h"

namespace BatchRename {

class BatchRenameFindReplaceDlg final : private Ui::Dialog {
public:
    /// `options`: of the rule, which all its pairs share. `rows`: to try the pair on.
    BatchRenameFindReplaceDlg(SearchAndReplaceItem item, uint32_t options, RowSnapshot rows);

    /// The pair; nothing when the user cancels.
    std::optional<SearchAndReplaceItem> Show(HWND owner);

private:
    bool OnInit() override;
    bool OnCommand(int id, int notification) override;
    void PickGroup();
    /// True when the pair can be used.
    bool Refresh();

    SearchAndReplaceItem m_item;
    uint32_t m_options;
    RowSnapshot m_rows;
};

}  // namespace BatchRename
