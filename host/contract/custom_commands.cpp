#include "host/contract/custom_commands.h"

#include <algorithm>
#include <charconv>

#include "host/app/host_error.h"
#include "host/app/host_text.h"
#include "host/contract/host_boundary.h"

namespace QVHost {
namespace {

namespace ParameterFlags = Quorvane::SDK::ParameterFlags;

}  // namespace

void CustomCommand::AddParameter(const char* name, uint32_t flags, const wchar_t* description) {
    GuardedCall([&] {
        if (name && *name && !Find(name)) m_parameters.push_back({name, flags, TextOrEmpty(description)});
    });
}

void CustomCommand::SetDescription(const wchar_t* text) {
    GuardedCall([&] { m_description = TextOrEmpty(text); });
}

const CustomParameter* CustomCommand::Find(const std::string& name) const {
    const auto found = std::ranges::find(m_parameters, name, &CustomParameter::name);
    return found == m_parameters.end() ? nullptr : &*found;
}

Quorvane::SDK::ICustomCommand* CustomCommandRegistry::AddCustomCommand(const char* name, uint32_t id, uint32_t,
                                                                       uint32_t) {
    return Guarded<Quorvane::SDK::ICustomCommand*>(nullptr, [&]() -> Quorvane::SDK::ICustomCommand* {
        if (!name || !*name || m_isCommitted) return nullptr;
        if (std::ranges::any_of(m_commands, [&](const auto& known) { return known->Name() == name; })) return nullptr;
        m_commands.push_back(std::make_unique<CustomCommand>(m_extension, name, id));
        return m_commands.back().get();
    });
}

void CustomCommandRegistry::Commit(uint32_t) {
    m_isCommitted = true;
}

CustomCommandRegistry& CustomCommandTable::RegistryOf(uint32_t extension, const std::string& module) {
    return m_registries.try_emplace({extension, module}, extension).first->second;
}

std::vector<const CustomCommand*> CustomCommandTable::Commands() const {
    std::vector<const CustomCommand*> commands;
    for (const auto& [key, registry] : m_registries)
        for (const auto& command : registry.Commands())
            if (registry.IsCommitted()) commands.push_back(command.get());
    return commands;
}

const CustomCommand* CustomCommandTable::Find(const std::wstring& name) const {
    for (const CustomCommand* command : Commands())
        if (Wide(command->Name()) == name) return command;
    return nullptr;
}

void CustomCommandCall::SetArgument(const std::wstring& argument) {
    const size_t equals = argument.find(L'=');
    const std::wstring name = argument.substr(0, equals);
    const bool hasValue = equals != std::wstring::npos;
    const CustomParameter* parameter = m_command.Find(ToUtf8(name));
    if (!parameter) {
        std::vector<std::wstring> known;
        for (const CustomParameter& each : m_command.Parameters()) known.push_back(Wide(each.name));
        throw UsageError(Wide(m_command.Name()) + L" has no parameter \"" + name + L"\"" + DidYouMean(name, known));
    }
    if (m_values.contains(parameter->name)) throw UsageError(name + L" is given twice");
    Value value;
    if (parameter->Is(ParameterFlags::Switch)) {
        if (hasValue) throw UsageError(name + L" is a switch and takes no value: write " + name + L" alone");
        value.kind = ParameterFlags::Switch;
    } else {
        if (!hasValue) throw UsageError(name + L" needs a value: write " + name + L"=VALUE");
        value.text = argument.substr(equals + 1);
        value.kind = parameter->flags & (ParameterFlags::Text | ParameterFlags::Number);
        if (parameter->Is(ParameterFlags::Number) && !ParseNumber(value.text, value.number))
            throw UsageError(name + L" needs a number from 0 to 4294967295, not \"" + value.text + L"\"");
    }
    m_values.emplace(parameter->name, std::move(value));
}

void CustomCommandCall::SetPreview() {
    if (!m_command.HasPreview()) throw UsageError(Wide(m_command.Name()) + L" has no preview");
    m_values.emplace("PREVIEW", Value{.kind = ParameterFlags::Switch, .text = {}});
}

std::vector<std::wstring> CustomCommandCall::MissingParameters() const {
    std::vector<std::wstring> missing;
    for (const CustomParameter& parameter : m_command.Parameters()) {
        if (!parameter.Is(ParameterFlags::Required)) continue;
        const auto value = m_values.find(parameter.name);
        if (value == m_values.end())
            missing.push_back(Wide(parameter.name));
        else if (value->second.text.empty() && value->second.kind != ParameterFlags::Switch)
            missing.push_back(Wide(parameter.name) + L" with a value, not an empty one");
    }
    return missing;
}

std::wstring CustomCommandCall::Describe() const {
    std::wstring text;
    for (const auto& [name, value] : m_values) {
        text += text.empty() ? L"" : L" ";
        text += Wide(name);
        if (value.kind != ParameterFlags::Switch) text.append(L"=\"").append(value.text).append(L"\"");
    }
    return text.empty() ? L"no parameter" : text;
}

const CustomCommandCall::Value* CustomCommandCall::Find(const char* name, uint32_t kind) const {
    if (!name) return nullptr;
    const auto value = m_values.find(name);
    return value != m_values.end() && (value->second.kind & kind) ? &value->second : nullptr;
}

bool CustomCommandCall::HasParameter(const char* name) {
    return Guarded(false, [&] { return name && m_values.contains(name); });
}

const wchar_t* CustomCommandCall::GetTextParameter(const char* name) {
    return Guarded<const wchar_t*>(nullptr, [&]() -> const wchar_t* {
        const Value* value = Find(name, ParameterFlags::Text);
        return value ? value->text.c_str() : nullptr;
    });
}

bool CustomCommandCall::GetNumberParameter(const char* name, uint32_t* number) {
    return Guarded(false, [&] {
        const Value* value = Find(name, ParameterFlags::Number);
        if (value && number) *number = value->number;
        return value && number;
    });
}

bool CustomCommandCall::GetSwitchParameter(const char* name) {
    return Guarded(false, [&] { return Find(name, ParameterFlags::Switch) != nullptr; });
}

void CustomCommandCall::SetResultText(const wchar_t* text) {
    GuardedCall([&] { m_resultText = TextOrEmpty(text); });
}

bool ParseNumber(const std::wstring& text, uint32_t& number) {
    const std::string digits = ToUtf8(text);
    const bool isHex = digits.starts_with("0x") || digits.starts_with("0X");
    const char* const first = digits.data() + (isHex ? 2 : 0);
    const char* const last = digits.data() + digits.size();
    uint32_t parsed = 0;
    const auto [end, error] = std::from_chars(first, last, parsed, isHex ? 16 : 10);
    if (error != std::errc() || end != last) return false;
    number = parsed;
    return true;
}

}  // namespace QVHost
