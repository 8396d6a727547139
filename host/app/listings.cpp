#include "host/app/subcommands.h"

#include <algorithm>
#include <cwchar>

#include "host/app/host_text.h"
#include "host/contract/custom_commands.h"
#include "host/contract/menus.h"

namespace QVHost {
namespace {

using namespace Quorvane::SDK;

constexpr size_t kDepthIndent = 2;
constexpr size_t kTextColumn = 56;  // where shortcuts begin, at the least

std::wstring Hex(uint32_t number, int digits) {
    wchar_t text[16] = {};
    std::swprintf(text, std::size(text), L"0x%0*X", digits, number);
    return text;
}

/// The line without blanks at its end, which an empty last column would leave.
std::wstring WithoutTail(std::wstring line) {
    line.resize(line.find_last_not_of(L' ') + 1);
    return line;
}

/// `text` filled up with blanks to `width` units.
std::wstring Padded(std::wstring text, size_t width) {
    text.resize(std::max(text.size(), width), L' ');
    return text;
}

void PrintField(Output& output, const wchar_t* name, const std::wstring& value) {
    output.Line(L"  " + Padded(name, 16) + (value.empty() ? L"(none)" : value));
}

/// "Shortcut 0x0049+J": the modifier code as the host's number, the key as its letter.
std::wstring DescribeShortcut(uint32_t shortcut) {
    const uint32_t key = shortcut & 0xFFFF;
    if (shortcut == kNoShortcut || key == 0) return {};
    const bool isLetter = (key >= 'A' && key <= 'Z') || (key >= '0' && key <= '9');
    return L"Shortcut " + Hex(shortcut >> 16, 4) + L"+" +
           (isLetter ? std::wstring(1, static_cast<wchar_t>(key)) : Hex(key, 4));
}

void PrintCommand(Output& output, const Command& command, size_t depth) {
    std::wstring line =
        std::wstring(depth * kDepthIndent, L' ') + Padded(std::to_wstring(command.id), 7) + OnOneLine(command.text);
    const std::wstring shortcut = DescribeShortcut(command.shortcut);
    output.Line(shortcut.empty() ? line : Padded(line, kTextColumn) + L"  " + shortcut);
}

void PrintMenu(Output& output, const Menu& menu, size_t depth) {
    output.Line(std::wstring(depth * kDepthIndent, L' ') + OnOneLine(menu.text));
    for (const Menu::Entry& entry : menu.entries) {
        if (entry.menu) PrintMenu(output, *entry.menu, depth + 1);
        if (entry.command) PrintCommand(output, *entry.command, depth + 1);
    }
}

std::wstring KindOf(const CustomParameter& parameter) {
    if (parameter.Is(ParameterFlags::Switch)) return L"switch";
    if (parameter.Is(ParameterFlags::Number)) return L"number";
    return parameter.Is(ParameterFlags::Text) ? L"text" : Hex(parameter.flags, 8);
}

}  // namespace

void PrintExtensions(Output& output, const std::vector<ExtensionInfo>& records) {
    for (size_t index = 0; index < records.size(); ++index) {
        const ExtensionInfo& record = records[index];
        if (index > 0) output.Line(L"");
        output.Line(std::to_wstring(index) + L"  " + TextOfField(record.Name, std::size(record.Name)));
        PrintField(output, L"Short name", TextOfField(record.ShortName, std::size(record.ShortName)));
        PrintField(output, L"Version", TextOfField(record.Version, std::size(record.Version)));
        PrintField(output, L"Description", TextOfField(record.Description, std::size(record.Description)));
        PrintField(output, L"Author", TextOfField(record.Author, std::size(record.Author)));
        PrintField(output, L"Home page", TextOfField(record.HomePage, std::size(record.HomePage)));
        PrintField(output, L"Extension id", TextOfField(record.ExtensionId, std::size(record.ExtensionId)));
        PrintField(output, L"Type flags", Hex(record.TypeFlags, 1));
        PrintField(output, L"SDK version", std::to_wstring(record.SdkVersion));
        PrintField(output, L"Order hint", std::to_wstring(record.OrderHint));
        PrintField(output, L"Property text 1", TextOfField(record.PropertyText1, std::size(record.PropertyText1)));
        PrintField(output, L"Property text 2", TextOfField(record.PropertyText2, std::size(record.PropertyText2)));
        PrintField(output, L"Property value", std::to_wstring(record.PropertyValue));
    }
}

void PrintMenus(Output& output, const MenuModel& menus) {
    for (const Menu* root : menus.Roots()) PrintMenu(output, *root, 0);
    const bool hasOthers = std::ranges::any_of(menus.Commands(), [](const auto& each) { return !each->isInMenu; });
    if (hasOthers) output.Line(L"(in no menu)");
    for (const auto& command : menus.Commands())
        if (!command->isInMenu) PrintCommand(output, *command, 1);
}

void PrintCustomCommands(Output& output, const CustomCommandTable& table) {
    bool isFirst = true;
    for (const CustomCommand* command : table.Commands()) {
        if (!isFirst) output.Line(L"");
        isFirst = false;
        output.Line(WithoutTail(Wide(command->Name()) + L" (" + std::to_wstring(command->Id()) + L"): " +
                                OnOneLine(command->Description())));
        size_t width = 0;
        for (const CustomParameter& parameter : command->Parameters()) width = std::max(width, parameter.name.size());
        for (const CustomParameter& parameter : command->Parameters())
            output.Line(WithoutTail(L"  " + Padded(Wide(parameter.name), width + 2) + Padded(KindOf(parameter), 8) +
                                    Padded(parameter.Is(ParameterFlags::Required) ? L"required" : L"", 10) +
                                    OnOneLine(parameter.description)));
        if (command->HasPreview())
            output.Line(L"  With qvhost call --preview it shows each line that would change, and writes nothing");
    }
}

}  // namespace QVHost
