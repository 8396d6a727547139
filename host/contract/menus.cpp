#include "host/contract/menus.h"

#include <algorithm>
#include <utility>

#include "host/contract/host_boundary.h"

namespace QVHost {

using Quorvane::SDK::Command;
using Quorvane::SDK::Menu;
using Quorvane::SDK::TextId;

Menu* MenuModel::AddRoot(std::wstring text) {
    m_menus.push_back(std::make_unique<Menu>(Menu{std::move(text), {}}));
    m_roots.push_back(m_menus.back().get());
    return m_menus.back().get();
}

Menu* MenuModel::AddSubMenu(Menu* parent, std::wstring text) {
    if (!Owns(parent)) return nullptr;
    m_menus.push_back(std::make_unique<Menu>(Menu{std::move(text), {}}));
    parent->entries.push_back({m_menus.back().get(), nullptr});
    return m_menus.back().get();
}

Menu* MenuModel::FindSubMenu(Menu* parent, const std::wstring& text) {
    if (!Owns(parent)) return nullptr;
    for (const Menu::Entry& entry : parent->entries)
        if (entry.menu && entry.menu->text == text) return entry.menu;
    return nullptr;
}

Command* MenuModel::AddCommand(Command command) {
    m_commands.push_back(std::make_unique<Command>(std::move(command)));
    return m_commands.back().get();
}

bool MenuModel::PutIntoMenu(Menu* menu, Command* command) {
    const bool isOurs = std::ranges::any_of(m_commands, [&](const auto& known) { return known.get() == command; });
    if (!Owns(menu) || !isOurs) return false;
    menu->entries.push_back({nullptr, command});
    command->isInMenu = true;
    return true;
}

const Command* MenuModel::Find(uint32_t id) const {
    const auto found = std::ranges::find_if(m_commands, [&](const auto& command) { return command->id == id; });
    return found == m_commands.end() ? nullptr : found->get();
}

bool MenuModel::Owns(const Menu* menu) const {
    return std::ranges::any_of(m_menus, [&](const auto& known) { return known.get() == menu; });
}

Menu* MenuBuilder::Add(Menu* parent, TextId text) {
    return Guarded<Menu*>(nullptr, [&] { return m_model.AddSubMenu(parent, m_texts.Find(m_section, text)); });
}

Menu* MenuBuilder::FindOrAddSubMenu(Menu* parent, const wchar_t* text, uint32_t) {
    return Guarded<Menu*>(nullptr, [&]() -> Menu* {
        if (!text) return nullptr;
        Menu* const known = m_model.FindSubMenu(parent, text);
        return known ? known : m_model.AddSubMenu(parent, text);
    });
}

Menu* MenuBuilder::AddSubMenu(Menu* parent, TextId text, uint32_t, uint32_t) {
    return Add(parent, text);
}

Menu* MenuBuilder::CreateRootMenu(TextId text, uint32_t, uint32_t) {
    return Guarded<Menu*>(nullptr, [&] { return m_model.AddRoot(m_texts.Find(m_section, text)); });
}

Menu* MenuBuilder::AddCategoryMenu(Menu* parent, TextId text, uint32_t) {
    return Add(parent, text);
}

Menu* MenuBuilder::AddNamedSubMenu(Menu* parent, TextId text, uint32_t) {
    return Add(parent, text);
}

bool MenuBuilder::AddCommand(Menu* menu, Command* command, uint32_t, uint32_t) {
    return Guarded(false, [&] { return m_model.PutIntoMenu(menu, command); });
}

Command* CommandFactory::CreateCommand(uint32_t id, uint32_t flags, TextId text, TextId tooltip, uint32_t shortcut,
                                       uint32_t) {
    return Guarded<Command*>(nullptr, [&] {
        const auto textOf = [&](TextId wanted) {
            return wanted == Quorvane::SDK::kNoText ? std::wstring() : m_texts.Find(m_section, wanted);
        };
        return m_model.AddCommand({m_extension, id, flags, shortcut, textOf(text), textOf(tooltip)});
    });
}

void CommandQueue::Put(const QueuedCommand& command) {
    {
        const std::lock_guard lock(m_mutex);
        m_commands.push_back(command);
    }
    SetEvent(m_event.Get());
}

std::vector<QueuedCommand> CommandQueue::Take() {
    const std::lock_guard lock(m_mutex);
    return std::exchange(m_commands, {});
}

}  // namespace QVHost
