// menus_and_commands.h - what an extension registers with the host: menus, commands, scriptable custom commands.
#pragma once

#include <cstdint>

#include "sdk/text_format.h"

namespace Quorvane::SDK {

/// Host-owned objects that the library only passes around.
struct Menu;
struct Command;

/// Menus and commands live as long as the host; nothing here is released. Every operation may answer null.
class IMenuBuilder {
public:
    virtual Menu* FindOrAddSubMenu(Menu* parent, const wchar_t* text, uint32_t zero) = 0;     // slot 0
    virtual Menu* AddSubMenu(Menu* parent, TextId text, uint32_t one, uint32_t alsoOne) = 0;  // slot 1
    virtual Menu* CreateRootMenu(TextId text, uint32_t one, uint32_t zero) = 0;               // slot 2
    virtual intptr_t Reserved3() { return 0; }                                                // slot 3
    virtual Menu* AddCategoryMenu(Menu* parent, TextId text, uint32_t one) = 0;               // slot 4
    virtual intptr_t Reserved5() { return 0; }                                                // slot 5
    virtual intptr_t Reserved6() { return 0; }                                                // slot 6
    virtual Menu* AddNamedSubMenu(Menu* parent, TextId text, uint32_t one) = 0;               // slot 7
    virtual intptr_t Reserved8() { return 0; }                                                // slot 8
    virtual intptr_t Reserved9() { return 0; }                                                // slot 9
    virtual intptr_t Reserved10() { return 0; }                                               // slot 10
    virtual intptr_t Reserved11() { return 0; }                                               // slot 11
    virtual bool AddCommand(Menu* menu, Command* command, uint32_t one, uint32_t zero) = 0;   // slot 12

protected:
    ~IMenuBuilder() = default;
};

/// A keyboard shortcut: high word the modifier code, low word the key code.
inline constexpr uint32_t kNoShortcut = 0x00400000;

class ICommandFactory {
public:
    virtual intptr_t Reserved0() { return 0; }  // slot 0
    virtual Command* CreateCommand(uint32_t id, uint32_t flags, TextId text, TextId tooltip, uint32_t shortcut,
                                   uint32_t zero) = 0;  // slot 1

protected:
    ~ICommandFactory() = default;
};

/// Parameter kinds of custom commands. Exactly one kind, plus Required where it must be given.
namespace ParameterFlags {
inline constexpr uint32_t Switch = 0x10;  // true when present
inline constexpr uint32_t Text = 0x20;
inline constexpr uint32_t Number = 0x40;
inline constexpr uint32_t Required = 0x1000;
}  // namespace ParameterFlags

class ICustomCommand {
public:
    virtual void AddParameter(const char* name, uint32_t flags, const wchar_t* description) = 0;  // slot 0
    virtual void SetDescription(const wchar_t* text) = 0;                                         // slot 1

protected:
    ~ICustomCommand() = default;
};

class ICustomCommandRegistry {
public:
    virtual intptr_t Reserved0() { return 0; }  // slot 0
    virtual ICustomCommand* AddCustomCommand(const char* name, uint32_t id, uint32_t flags,
                                             uint32_t moreFlags) = 0;  // slot 1
    virtual void Commit(uint32_t one) = 0;                             // slot 2
    virtual bool IsRegistered() = 0;                                   // slot 3

protected:
    ~ICustomCommandRegistry() = default;
};

/// One call of a custom command, with its parameters. Names are ASCII, as registered. Slots 1, 2 and 4 to 6 are this
/// library's choice.
class ICustomCommandCall {
public:
    virtual bool HasParameter(const char* name) = 0;                         // slot 0
    virtual const wchar_t* GetTextParameter(const char* name) = 0;           // slot 1: null when not given; host-owned
    virtual bool GetNumberParameter(const char* name, uint32_t* value) = 0;  // slot 2: false leaves `value` alone
    virtual uint32_t GetCommandId() = 0;                                     // slot 3
    virtual bool GetSwitchParameter(const char* name) = 0;                   // slot 4
    virtual void SetResultCode(uint32_t code) = 0;                           // slot 5: a Windows error code
    virtual void SetResultText(const wchar_t* text) = 0;                     // slot 6

protected:
    ~ICustomCommandCall() = default;
};

}  // namespace Quorvane::SDK
