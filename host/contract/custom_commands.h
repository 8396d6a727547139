// custom_commands.h - the custom commands that extensions register, and one call of such a command with its parameters.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "sdk/menus_and_commands.h"

namespace QVHost {

struct CustomParameter {
    std::string name;
    uint32_t flags = 0;  // ParameterFlags
    std::wstring description;

    bool Is(uint32_t flag) const { return (flags & flag) != 0; }
};

class CustomCommand final : public Quorvane::SDK::ICustomCommand {
public:
    CustomCommand(uint32_t extension, std::string name, uint32_t id)
        : m_extension(extension), m_name(std::move(name)), m_id(id) {}

    void AddParameter(const char* name, uint32_t flags, const wchar_t* description) override;
    void SetDescription(const wchar_t* text) override;

    uint32_t Extension() const { return m_extension; }
    const std::string& Name() const { return m_name; }
    uint32_t Id() const { return m_id; }
    const std::wstring& Description() const { return m_description; }
    const std::vector<CustomParameter>& Parameters() const { return m_parameters; }
    const CustomParameter* Find(const std::string& name) const;
    /// True for a command that can show what it would do. No registration says so: it is known by its name.
    bool HasPreview() const { return m_name == "FindAndReplace"; }

private:
    uint32_t m_extension;
    std::string m_name;
    uint32_t m_id;
    std::wstring m_description;
    std::vector<CustomParameter> m_parameters;
};

/// The commands of one module of one extension. They count from the moment they are committed.
class CustomCommandRegistry final : public Quorvane::SDK::ICustomCommandRegistry {
public:
    explicit CustomCommandRegistry(uint32_t extension) : m_extension(extension) {}

    Quorvane::SDK::ICustomCommand* AddCustomCommand(const char* name, uint32_t id, uint32_t flags,
                                                    uint32_t moreFlags) override;
    void Commit(uint32_t one) override;
    bool IsRegistered() override { return m_isCommitted; }
    bool IsCommitted() const { return m_isCommitted; }

    const std::vector<std::unique_ptr<CustomCommand>>& Commands() const { return m_commands; }

private:
    uint32_t m_extension;
    bool m_isCommitted = false;
    std::vector<std::unique_ptr<CustomCommand>> m_commands;
};

/// All registries by extension and module name.
class CustomCommandTable {
public:
    CustomCommandRegistry& RegistryOf(uint32_t extension, const std::string& module);
    /// The committed commands, in the order registered.
    std::vector<const CustomCommand*> Commands() const;
    const CustomCommand* Find(const std::wstring& name) const;

private:
    std::map<std::pair<uint32_t, std::string>, CustomCommandRegistry> m_registries;
};

/// One call. Parameters are checked against the command when they are set.
class CustomCommandCall final : public Quorvane::SDK::ICustomCommandCall {
public:
    explicit CustomCommandCall(const CustomCommand& command) : m_command(command) {}

    /// Takes `KEY=VALUE` (cut at the first `=`) or the name of a switch.
    /// @throws UsageError for an unknown name, a name given twice, or a value that does not fit the kind
    void SetArgument(const std::wstring& argument);
    /// The command is to write nothing. It hears of it by a switch that it has not registered, PREVIEW, so that no
    /// parameter of its own can be taken for it. @throws UsageError for a command that would not heed it
    void SetPreview();
    /// Names of the parameters that must be given and are not, or with an empty text.
    std::vector<std::wstring> MissingParameters() const;
    /// What was given, for a person: `KEY="VALUE"` and switches, by name.
    std::wstring Describe() const;
    uint32_t ResultCode() const { return m_resultCode; }
    const std::wstring& ResultText() const { return m_resultText; }

    bool HasParameter(const char* name) override;
    const wchar_t* GetTextParameter(const char* name) override;
    bool GetNumberParameter(const char* name, uint32_t* value) override;
    uint32_t GetCommandId() override { return m_command.Id(); }
    bool GetSwitchParameter(const char* name) override;
    void SetResultCode(uint32_t code) override { m_resultCode = code; }
    void SetResultText(const wchar_t* text) override;

private:
    struct Value {
        uint32_t kind = 0;  // ParameterFlags
        std::wstring text;
        uint32_t number = 0;
    };
    const Value* Find(const char* name, uint32_t kind) const;

    const CustomCommand& m_command;
    std::map<std::string, Value> m_values;
    uint32_t m_resultCode = 0;
    std::wstring m_resultText;
};

/// A decimal number, or a hexadecimal one after 0x, that fits 32 bits; false leaves `number` alone.
bool ParseNumber(const std::wstring& text, uint32_t& number);

}  // namespace QVHost
