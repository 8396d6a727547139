// fake_panel.h - a panel of the host without a window: it has a selection and hears of folders that have changed.
#pragma once

#include <functional>
#include <utility>

#include "host/contract/panel_view.h"

namespace QVTest {

class FakePanel final : public QVHost::IPanelView {
public:
    FakePanel(std::function<Items()> selection, std::function<void(const std::wstring&)> onFolderChanged)
        : m_selection(std::move(selection)), m_onFolderChanged(std::move(onFolderChanged)) {}

    Items SelectedItems() override { return m_selection(); }
    Items FocusedGroup() override { return {}; }
    void ShowLine(std::wstring_view, QVHost::Tone) override {}
    void MarkFile(const std::wstring&, uint32_t) override {}
    void FileRenamed(const std::wstring&, const std::wstring&) override {}
    void FolderChanged(const std::wstring& folder) override { m_onFolderChanged(folder); }

private:
    std::function<Items()> m_selection;
    std::function<void(const std::wstring&)> m_onFolderChanged;
};

}  // namespace QVTest
