// pane_listener.h - what the list and the rule panel tell the window, and ask of it.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "batchrename/model/preview.h"
#include "batchrename/model/row_order.h"
#include "ui/dialog_host.h"

namespace BatchRename {

class IPaneListener {
public:
    virtual void OnRuleChanged() = 0;
    /// A button, or a box that is no part of the rule.
    virtual void OnButton(int id) = 0;
    virtual void OnHeader(RowKey key) = 0;
    /// Of the selected rows.
    virtual void OnRemoveRows() = 0;

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
