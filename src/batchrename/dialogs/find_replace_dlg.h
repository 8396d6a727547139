// find_replace_dlg.h - the dialog that edits one find and replace pair, and shows at once what it does to the names.
#pragma once

#include <functional>
#include <optional>

#include "batchrename/model/preview.h"
#include "rename/rename_rule.h"
#include "ui/dialog.h"

namespace BatchRename {

class BatchRenameFindReplaceDlg final : private Ui::Dialog {
public:
    using Follow = std::function<void(const SearchAndReplaceItem&)>;

    /// `rule` has items, and `place` is the pair's number among them. `rows`: to try the pair on. `follow` hears of the
    /// pair each time that it has changed.
    BatchRenameFindReplaceDlg(const RuleDefinition& rule, size_t place, RowSnapshot rows, Follow follow);

    /// The pair; nothing when the user cancels. The dialog opens at the lower edge of its owner, whose list stays in
    /// sight.
    std::optional<SearchAndReplaceItem> Show(HWND owner);
    using Dialog::UseHost;

private:
    bool OnInit() override;
    bool OnCommand(int id, int notification) override;
    void PickGroup();
    void MoveToLowerEdge();
    /// True when the pair can be used.
    bool Refresh();

    RuleDefinition m_rule;
    SearchAndReplaceItems m_items;  // of the rule, with the pair as it is in the fields
    size_t m_place;
    RowSnapshot m_rows;
    Follow m_follow;
    bool m_isFilled = false;
};

}  // namespace BatchRename
