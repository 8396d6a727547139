// rule_panel.h - the rule's controls and the buttons, below the list: a rule into controls and back. What the buttons
// do, and what follows from a change, is the window's work.
#pragma once

#include <functional>

#include "batchrename/model/preview.h"
#include "rename/rename_rule.h"
#include "ui/controls.h"
#include "ui/dialog.h"

namespace BatchRename {

/// What can be used at the moment.
struct PanelState {
    bool isRunning = false;
    bool isRestoring = false;  // the names come from a session: the rule is not used
    bool canStart = false;
};

class RulePanel final : private Ui::Dialog {
public:
    struct Owner {
        std::function<void()> onRuleChanged;
        std::function<void(int id)> onButton;  // and the boxes that are no part of the rule
        std::function<RowSnapshot()> rows;     // to try a find text on
        std::function<std::vector<std::wstring>()> properties;
        std::function<void(const std::function<void()>&)> modal;  // runs what opens a dialog or a menu
    };
    RulePanel(Ui::HostTexts texts, Owner owner);

    /// @throws std::system_error
    void Create(HWND parent);
    using Dialog::GetWindow;
    /// As the resource has it, in pixels: the smallest that shows everything.
    SIZE NaturalSize() const { return m_naturalSize; }

    /// The window goes to a screen of another scale; the system scales the controls.
    void Rescale(UINT dotsPerInch);

    RuleDefinition Rule() const;
    void SetRule(const RuleDefinition& rule);
    bool IsLive() const;
    bool SavesUndo() const;
    bool ShowsChangesOnly() const;
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
    /// Fills the list anew, and selects a row.
    void ShowItems(int selected);
    void RefreshButtons();
    uint32_t Options() const;

    Ui::HostTexts m_texts;
    Owner m_owner;
    HWND m_parent = nullptr;
    UINT m_dotsPerInch = USER_DEFAULT_SCREEN_DPI;
    SIZE m_naturalSize = {};
    SearchAndReplaceItems m_items;
    PanelState m_state;
    bool m_isSetting = false;  // controls are being filled: their notifications mean nothing
};

}  // namespace BatchRename
