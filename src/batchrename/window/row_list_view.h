// row_list_view.h - the list control over a RowList: an owner-data list, so it holds no text and no row of its own, and
// a hundred thousand rows cost it nothing.
#pragma once

#include <optional>
#include <vector>

#include "batchrename/model/frame_model.h"
#include "batchrename/window/cell_tips.h"
#include "batchrename/window/name_edit.h"
#include "batchrename/window/name_painter.h"
#include "batchrename/window/pane_listener.h"
#include "batchrename/window/row_columns.h"
#include "ui/controls.h"
#include "win32/handle.h"

#include <commctrl.h>

namespace BatchRename {

struct ImageListTraits {
    using Raw = HIMAGELIST;
    static Raw Empty() noexcept { return nullptr; }
    static void Close(Raw raw) noexcept;
};
using ImageListHandle = Win32::UniqueHandle<ImageListTraits>;

/// One picture for each RowMark, in its order; the first is empty. `size`: pixels. In the system's colours as they are
/// now.
ImageListHandle MakeRowIcons(int size);

class RowListView {
public:
    /// Both outlive the view.
    RowListView(const RowList& rows, IPaneListener& listener, Ui::HostTexts texts)
        : m_rows(rows),
          m_listener(listener),
          m_texts(std::move(texts)),
          m_tips([this](int place, int column) { return TextOfCell(place, column); }) {}

    /// @throws std::system_error
    void Create(HWND parent, int id, HFONT font);
    HWND GetWindow() const { return m_window; }

    /// The rows, or what is known of them, are others: their number, and all that is on the screen, is taken anew. The
    /// selection stays with its rows, also over a moment in which there are none. `areInPlace`: each row stands for the
    /// one that had its number before, whatever it is called now.
    void Refresh(bool areInPlace = false);
    /// The list is wider or narrower.
    void FillWidth() { m_columns.Fit(); }
    /// The header over the new names tells when they are not up to date.
    void ShowOutdated(bool isOutdated);
    void ShowOrder(const RowOrder& order) const { m_columns.ShowOrder(order); }
    void Recolour();
    /// The window has gone to a screen of another scale, for which this is the font.
    void Rescale(HFONT font);

    RowRange VisibleRows() const;
    /// By row, true for the selected ones; when there is none, for the one with the focus.
    std::vector<bool> TargetRows() const;
    void Select(const std::vector<bool>& isSelected);
    /// Goes to the next or previous row with a problem; false when there is none.
    bool GoToProblem(bool isBack);
    /// Takes over the name that is being typed, if there is one.
    void EndEdit() { m_edit.Close(true); }

    /// The answer to a WM_NOTIFY of this list; nothing when the default is wanted.
    std::optional<LRESULT> OnNotify(NMHDR& header);

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept;
    void OnHeaderNotice(const NMHEADERW& notice);
    void FillItem(LVITEMW& item) const;
    std::wstring TextOfCell(int place, int column) const;

    // What is done to rows (row_list_actions.cpp).
    void Act(RowAction action);
    void OnKey(WORD key);
    /// True for a message that the control is not to get.
    bool OnMessage(UINT message, WPARAM wParam, LPARAM lParam);
    void OnClick(POINT point, bool isDouble);
    void ToggleCheck(int place);
    void SelectAll();
    std::vector<bool> SelectedRows() const;
    void Copy(const std::vector<bool>& isMarked) const;
    void ShowMenu(POINT point);
    void EditName(int place);

    LRESULT FindByText(const NMLVFINDITEMW& search) const;
    /// By row of those that are shown: the selected ones, or the one with the focus.
    std::vector<bool> ShownRowsWith(WPARAM state) const;
    void SetStates(const std::vector<bool>& isSelected, const std::vector<bool>& isFocused);
    LRESULT OnDraw(const NMLVCUSTOMDRAW& draw) const;
    void DrawName(HDC context, const NMLVCUSTOMDRAW& cell, const DrawnName& name) const;

    const RowList& m_rows;
    IPaneListener& m_listener;
    Ui::HostTexts m_texts;
    HWND m_window = nullptr;
    WNDPROC m_control = nullptr;  // the system's
    // What the control's places stand for, and what was selected in it when it was emptied.
    RowSnapshot m_shownRows = std::make_shared<const RenameItems>();
    std::optional<std::vector<uint32_t>> m_shownPlaces;
    std::vector<bool> m_keptSelection;
    std::vector<bool> m_keptFocus;
    bool m_isOutdated = false;
    RowColumns m_columns;
    CellTips m_tips;
    NameEdit m_edit;
    NamePainter m_painter;
    ImageListHandle m_icons;
};

}  // namespace BatchRename
