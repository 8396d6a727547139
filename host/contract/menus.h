// menus.h - the menus and commands that extensions build; a model, drawn by nobody and listed by `qvhost menus`.
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "host/contract/language.h"
#include "sdk/menus_and_commands.h"
#include "win32/handle.h"

namespace Quorvane::SDK {

/// A command as the factory made it.
struct Command {
    uint32_t extension;  // the index of the one that made it
    uint32_t id;
    uint32_t flags;
    uint32_t shortcut;
    std::wstring text;
    std::wstring tooltip;
    bool isInMenu = false;
};

/// A menu holds submenus and commands in the order added.
struct Menu {
    struct Entry {
        Menu* menu;  // one of the two is set
        Command* command;
    };
    std::wstring text;
    std::vector<Entry> entries;
};

}  // namespace Quorvane::SDK

namespace QVHost {

/// Owns all menus and commands; they live as long as it does.
class MenuModel {
public:
    using Menu = Quorvane::SDK::Menu;
    using Command = Quorvane::SDK::Command;

    Menu* AddRoot(std::wstring text);
    /// Null when `parent` is no menu of this model.
    Menu* AddSubMenu(Menu* parent, std::wstring text);
    Menu* FindSubMenu(Menu* parent, const std::wstring& text);
    Command* AddCommand(Command command);
    bool PutIntoMenu(Menu* menu, Command* command);

    const std::vector<Menu*>& Roots() const { return m_roots; }
    const std::vector<std::unique_ptr<Command>>& Commands() const { return m_commands; }
    /// Null for an id that no extension made a command for.
    const Command* Find(uint32_t id) const;

private:
    bool Owns(const Menu* menu) const;

    std::vector<std::unique_ptr<Menu>> m_menus;
    std::vector<std::unique_ptr<Command>> m_commands;
    std::vector<Menu*> m_roots;
};

/// The builder and the factory that one extension gets.
class MenuBuilder final : public Quorvane::SDK::IMenuBuilder {
public:
    MenuBuilder(MenuModel& model, LanguageTexts& texts, std::wstring section)
        : m_model(model), m_texts(texts), m_section(std::move(section)) {}

    using Menu = Quorvane::SDK::Menu;
    using TextId = Quorvane::SDK::TextId;
    Menu* FindOrAddSubMenu(Menu* parent, const wchar_t* text, uint32_t zero) override;
    Menu* AddSubMenu(Menu* parent, TextId text, uint32_t one, uint32_t alsoOne) override;
    Menu* CreateRootMenu(TextId text, uint32_t one, uint32_t zero) override;
    Menu* AddCategoryMenu(Menu* parent, TextId text, uint32_t one) override;
    Menu* AddNamedSubMenu(Menu* parent, TextId text, uint32_t one) override;
    bool AddCommand(Menu* menu, Quorvane::SDK::Command* command, uint32_t one, uint32_t zero) override;

private:
    Menu* Add(Menu* parent, TextId text);

    MenuModel& m_model;
    LanguageTexts& m_texts;
    std::wstring m_section;
};

class CommandFactory final : public Quorvane::SDK::ICommandFactory {
public:
    CommandFactory(MenuModel& model, LanguageTexts& texts, std::wstring section, uint32_t extension)
        : m_model(model), m_texts(texts), m_section(std::move(section)), m_extension(extension) {}

    Quorvane::SDK::Command* CreateCommand(uint32_t id, uint32_t flags, Quorvane::SDK::TextId text,
                                          Quorvane::SDK::TextId tooltip, uint32_t shortcut, uint32_t zero) override;

private:
    MenuModel& m_model;
    LanguageTexts& m_texts;
    std::wstring m_section;
    uint32_t m_extension;
};

struct QueuedCommand {
    uint32_t extension = 0;
    uint32_t id = 0;
    uintptr_t value = 0;  // the second of the command's two further values
};

/// Commands that an extension asks for from a thread of its own. They are carried out on the host's thread, as every
/// command is.
class CommandQueue {
public:
    void Put(const QueuedCommand& command);
    /// All of them, in order.
    std::vector<QueuedCommand> Take();
    /// Set when there is something to take.
    HANDLE Event() const { return m_event.Get(); }

private:
    std::mutex m_mutex;
    std::vector<QueuedCommand> m_commands;
    Win32::KernelHandle m_event{CreateEventW(nullptr, FALSE, FALSE, nullptr)};
};

}  // namespace QVHost
