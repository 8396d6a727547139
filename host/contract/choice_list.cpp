#include "host/contract/choice_list.h"

#include "host/contract/host_boundary.h"

namespace QVHost {

bool ChoiceList::AddChoice(const wchar_t* text) {
    return Guarded(false, [&] {
        if (!text) return false;
        m_choices.emplace_back(text);
        return true;
    });
}

uint32_t ChoiceList::GetCount() {
    return static_cast<uint32_t>(m_choices.size());
}

const wchar_t* ChoiceList::GetChoice(uint32_t index) {
    return index < m_choices.size() ? m_choices[index].c_str() : nullptr;
}

void ChoiceList::Release() {
    GuardedCall([&] { m_shelf.Remove(this); });
}

}  // namespace QVHost
