// choice_list.h - the entries of a choice dialog, as an extension fills them.
#pragma once

#include <string>
#include <vector>

#include "host/contract/shelf.h"
#include "sdk/host_objects.h"

namespace QVHost {

class ChoiceList final : public Quorvane::SDK::IChoiceList {
public:
    explicit ChoiceList(Shelf<ChoiceList>& shelf) : m_shelf(shelf) {}

    bool AddChoice(const wchar_t* text) override;
    uint32_t GetCount() override;
    const wchar_t* GetChoice(uint32_t index) override;
    void Release() override;

    const std::vector<std::wstring>& Choices() const { return m_choices; }

private:
    Shelf<ChoiceList>& m_shelf;
    std::vector<std::wstring> m_choices;
};

}  // namespace QVHost
