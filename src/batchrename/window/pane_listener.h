// pane_listener.h - what the list and the rule panel tell the window, and ask of it.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "batchrename/model/preview.h"
#include "batchrename/model/row_order.h"
#include "ui/dialog_host.h"

namespace BatchRename {

/// What can be done to rows of the list.
enum class RowAction : uint8_t {
    Name,
    DropName,
    Check,
    Uncheck,
    TakeOut,
    Keep,
    Copy,
    SelectAll,
    NextProblem,
    OpenFolder
};

class IPaneListener {
public:
    virtual void OnRuleChanged() = 0;
    /// A button, or a box that is no part of the rule.
    virtual void OnButton(int id) = 0;
    virtual void OnHeader(RowKey key) = 0;
    /// For the rows that are marked. What the list does by itself does not come here, but for names that it cannot
    /// change.
    virtual void OnRows(RowAction action, const std::vector<bool>& isMarked) = 0;
    virtual void OnName(const std::vector<bool>& isMarked, const std::wstring& name) = 0;
    virtual bool CanChangeRows() const = 0;
    virtual bool CanNameRows() const = 0;

    /// To try a find text on.
    virtual RowSnapshot Rows() const = 0;
    /// Those that the host knows.
    virtual std::vector<std::wstring> PropertyNames() const = 0;
    /// For the dialog of this resource.
    virtual Ui::DialogHost DialogHostFor(WORD dialog) const = 0;
    /// Runs what opens a dialog or a menu.
    virtual void RunModal(const std::function<void()>& body) = 0;

protected:
    ~IPaneListener() = default;
};

}  // namespace BatchRename
