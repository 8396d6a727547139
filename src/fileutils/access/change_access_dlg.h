// change_access_dlg.h - the dialog "Add File Access": who is to get access, and which. Granting it is the command's
// work.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "ui/controls.h"
#include "ui/dialog.h"

namespace FileUtils {

struct AccessChoice {
    std::wstring account;  // `DOMAIN\name` or `name`
    uint32_t mask = 0;     // as in access lists
};

/// True when the system knows the account. It may ask other machines, so it is not called at every key.
using AccountExists = std::function<bool(const std::wstring& account)>;
/// Lets a person choose an account; "" when none was chosen.
using AccountPicker = std::function<std::wstring(HWND owner)>;

class ChangeAccessDlg final : private Ui::Dialog {
public:
    /// `account` is what the dialog begins with.
    ChangeAccessDlg(Ui::HostTexts texts, std::wstring account, AccountExists exists, AccountPicker pick);

    /// Nothing when the user cancels. The account exists.
    std::optional<AccessChoice> Show(HWND owner);
    using Dialog::UseHost;

private:
    bool OnInit() override;
    bool OnCommand(int id, int notification) override;
    AccessChoice FromControls() const;
    void Accept();
    void Pick();

    Ui::HostTexts m_texts;
    AccountExists m_exists;
    AccountPicker m_pick;
    AccessChoice m_choice;
};

}  // namespace FileUtils
