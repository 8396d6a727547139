// rule_panel.h - the rule's controls and the buttons, below the list: a rule into controls and back. What the buttons
// do, and what follows from a change, is the window's work.
#pragma once

#include "batchrename/model/frame_model.h"
#include "batchrename/window/pane_listener.h"
#include "rename/rename_rule.h"
#include "ui/controls.h"
#include "ui/dialog.h"

#include <commctrl.h>

namespace BatchRename {

class RulePanel final : private Ui::Dialog {
public:
    /// `listener` outlives the panel.
    RulePanel(Ui::HostTexts texts, IPaneListener& listener);

    /// @throws std::system_error
    void Create(HWND parent);
    using Dialog::GetWindow;
    /// As the resource has it, in pixels: the smallest that shows everything in its usual place.
    SIZE NaturalSize() const { return Sizes().NaturalClient(); }
    int LeastWidth() const { return Sizes().LeastWidth(); }
    /// The least that shows everything in a window that is so wide.
    int HeightFor(int width) const { return Sizes().HeightFor(width); }

    /// The window goes to a screen of another scale.
    void Rescale(UINT dotsPerInch) { RescaleControls(dotsPerInch); }

    RuleDefinition Rule() const;
    void SetRule(const RuleDefinition& rule);
    PanelChoices Choices() const;
    HWND Button(int id) const { return Item(id); }
    void SetState(const PanelState& state);

private:
    bool OnInit() override;
    bool OutlivesFailure() const noexcept override { return true; }  // the window is of no use without it
    bool OnCommand(int id, int notification) override;
    bool OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;

    void InsertTag(int button, int edit);
    void OnItemButton(int id);
    void EditItem(bool isNew);
    /// The pair is as it was typed by now: the list of rows follows while the preview is live.
    void FollowItem(size_t place, const SearchAndReplaceItem& item);
    void ShareItemColumns();
    void OnItemsNotify(const NMHDR& header, LPARAM lParam);
    /// A pair's find text or, in the second column, its replacement is edited in the list itself.
    void EditCell(int row, int column);
    void OnCell(int notification);
    void EndCell(bool isTaken);
    /// Fills the list anew, and selects a row.
    void ShowItems(int selected);
    void ShowTexts(int row, const SearchAndReplaceItem& item);
    void RefreshButtons();
    uint32_t Options() const;

    Ui::HostTexts m_texts;
    IPaneListener& m_listener;
    HWND m_parent = nullptr;
    SearchAndReplaceItems m_items;
    PanelState m_state;
    HWND m_cell = nullptr;  // null: no cell is being edited
    size_t m_cellRow = 0;
    int m_cellColumn = 0;
    SearchAndReplaceItem m_cellBefore;
    bool m_isSetting = false;  // controls are being filled: their notifications mean nothing
};

}  // namespace BatchRename
