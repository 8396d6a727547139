#include "host/panel/panel_menu.h"

#include <algorithm>

#include "host/app/host_text.h"
#include "host/panel/panel_texts.h"
#include "win32/text.h"

namespace QVHost {
namespace {

// The modifier code of a shortcut is, below its bit 0x40, what an accelerator table takes: the contract leaves its
// meaning to the host, and this one gives Ctrl+J, Ctrl+Shift+J and Ctrl+K for the values that extensions use.
constexpr uint32_t kModifiers = FVIRTKEY | FSHIFT | FCONTROL | FALT;

uint32_t KeyOf(uint32_t shortcut) {
    return shortcut & 0xFFFF;
}

BYTE ModifiersOf(uint32_t shortcut) {
    return static_cast<BYTE>((shortcut >> 16 & kModifiers) | FVIRTKEY);
}

bool IsShortcut(uint32_t shortcut) {
    const uint32_t key = KeyOf(shortcut);
    return shortcut != Quorvane::SDK::kNoShortcut && ((key >= 'A' && key <= 'Z') || (key >= '0' && key <= '9'));
}

bool IsFirst(const std::wstring&, size_t at) {
    return at == 0;
}

bool IsAtWordStart(const std::wstring& text, size_t at) {
    return at == 0 || text[at - 1] == L' ';
}

bool IsAnywhere(const std::wstring&, size_t) {
    return true;
}

void MarkFreeLetter(std::wstring& text, bool (*isGood)(const std::wstring&, size_t), std::set<std::wstring>& used) {
    for (size_t at = 0; at < text.size(); ++at) {
        const std::wstring letter = Win32::ToUpperCase(text.substr(at, 1));
        const bool isLetter = Win32::ToLowerCase(letter) != letter;
        if (!isLetter || !isGood(text, at) || !used.insert(letter).second) continue;
        text.insert(at, 1, L'&');
        return;
    }
}

struct OwnEntry {
    WORD command;  // 0: a line between entries
    PanelText text;
    const wchar_t* shortcut;
};
constexpr OwnEntry kOwnEntries[] = {
    {PanelCommand::OpenFolder, PanelText::OpenFolder, L"\tCtrl+O"},
    {PanelCommand::Up, PanelText::Up, L"\tAlt+Up"},
    {PanelCommand::Back, PanelText::Back, L"\tAlt+Left"},
    {PanelCommand::Refresh, PanelText::Refresh, L"\tF5"},
    {0, {}, nullptr},
    {PanelCommand::SelectAll, PanelText::SelectAll, L"\tCtrl+A"},
    {0, {}, nullptr},
    {PanelCommand::CopyLog, PanelText::CopyLog, L""},
    {PanelCommand::ClearLog, PanelText::ClearLog, L""},
    {0, {}, nullptr},
    {PanelCommand::Exit, PanelText::Exit, L"\tAlt+F4"},
};

constexpr ACCEL kOwnKeys[] = {
    {FVIRTKEY | FCONTROL, 'O', PanelCommand::OpenFolder}, {FVIRTKEY | FALT, VK_UP, PanelCommand::Up},
    {FVIRTKEY | FALT, VK_LEFT, PanelCommand::Back},       {FVIRTKEY, VK_F5, PanelCommand::Refresh},
    {FVIRTKEY | FCONTROL, 'L', PanelCommand::Address},    {FVIRTKEY | FALT, 'D', PanelCommand::Address},
};

WORD MenuCommandOf(const MenuModel& model, const MenuModel::Command* command) {
    const auto& commands = model.Commands();
    const auto at = std::ranges::find(commands, command, [](const auto& each) { return each.get(); });
    return static_cast<WORD>(PanelCommand::FirstOfExtensions + (at - commands.begin()));
}

UniqueMenu MakeOwnMenu(LanguageTexts& texts) {
    UniqueMenu menu(CreatePopupMenu());
    for (const OwnEntry& entry : kOwnEntries)
        if (entry.command == 0)
            AppendMenuW(menu.Get(), MF_SEPARATOR, 0, nullptr);
        else
            AppendMenuW(menu.Get(), MF_STRING, entry.command,
                        (TextOf(texts, entry.text) + std::wstring(entry.shortcut)).c_str());
    return menu;
}

void Append(HMENU parent, UniqueMenu menu, const std::wstring& text) {
    if (AppendMenuW(parent, MF_POPUP, reinterpret_cast<UINT_PTR>(menu.Get()), text.c_str())) menu.Release();
}

/// An extension cannot make a ring of menus: a submenu is added as it is made. So this ends.
UniqueMenu MakeMenu(const MenuModel& model, const MenuModel::Menu& shown) {
    UniqueMenu menu(CreatePopupMenu());
    std::vector<std::wstring> texts;
    for (const MenuModel::Menu::Entry& entry : shown.entries)
        texts.push_back(OnOneLine(entry.menu ? entry.menu->text : entry.command->text));
    GiveAccessKeys(texts);
    for (size_t at = 0; at < texts.size(); ++at) {
        const MenuModel::Menu::Entry& entry = shown.entries[at];
        if (entry.menu) {
            Append(menu.Get(), MakeMenu(model, *entry.menu), texts[at]);
            continue;
        }
        const std::wstring shortcut = ShortcutText(entry.command->shortcut);
        if (!shortcut.empty()) texts[at].append(1, L'\t').append(shortcut);
        AppendMenuW(menu.Get(), MF_STRING, MenuCommandOf(model, entry.command), texts[at].c_str());
    }
    return menu;
}

}  // namespace

std::wstring ShortcutText(uint32_t shortcut) {
    if (!IsShortcut(shortcut)) return {};
    const BYTE modifiers = ModifiersOf(shortcut);
    std::wstring text;
    if ((modifiers & FCONTROL) != 0) text += L"Ctrl+";
    if ((modifiers & FSHIFT) != 0) text += L"Shift+";
    if ((modifiers & FALT) != 0) text += L"Alt+";
    return text + static_cast<wchar_t>(KeyOf(shortcut));
}

void GiveAccessKeys(std::vector<std::wstring>& texts, std::set<std::wstring> used) {
    for (const std::wstring& text : texts)
        if (const size_t mark = text.find(L'&'); mark != std::wstring::npos)
            used.insert(Win32::ToUpperCase(text.substr(mark + 1, 1)));
    for (const auto isGood : {IsFirst, IsAtWordStart, IsAnywhere})
        for (std::wstring& text : texts)
            if (text.find(L'&') == std::wstring::npos) MarkFreeLetter(text, isGood, used);
}

std::wstring TitleOf(const MenuModel::Command& command) {
    std::wstring title = OnOneLine(command.text);
    std::erase(title, L'&');
    while (title.ends_with(L'.')) title.pop_back();
    return title;
}

bool OpensDialog(const MenuModel::Command& command) {
    return command.text.ends_with(L"...");
}

UniqueMenu MakePanelMenu(const MenuModel& model, LanguageTexts& texts) {
    UniqueMenu bar(CreateMenu());
    std::vector<std::wstring> titles = {TextOf(texts, PanelText::Menu)};
    for (const MenuModel::Menu* root : model.Roots()) titles.push_back(OnOneLine(root->text));
    GiveAccessKeys(titles, {L"D"});  // Alt+D is a key of the panel's own
    Append(bar.Get(), MakeOwnMenu(texts), titles.front());
    for (size_t at = 0; at < model.Roots().size(); ++at)
        Append(bar.Get(), MakeMenu(model, *model.Roots()[at]), titles[at + 1]);
    return bar;
}

UniqueKeys MakePanelKeys(const MenuModel& model) {
    std::vector<ACCEL> keys(std::begin(kOwnKeys), std::end(kOwnKeys));
    for (const auto& command : model.Commands())
        if (IsShortcut(command->shortcut))
            keys.push_back({ModifiersOf(command->shortcut), static_cast<WORD>(KeyOf(command->shortcut)),
                            MenuCommandOf(model, command.get())});
    return UniqueKeys(CreateAcceleratorTableW(keys.data(), static_cast<int>(keys.size())));
}

const MenuModel::Command* CommandBehind(const MenuModel& model, WORD menuCommand) {
    const size_t at = size_t{menuCommand} - PanelCommand::FirstOfExtensions;
    return menuCommand >= PanelCommand::FirstOfExtensions && at < model.Commands().size() ? model.Commands()[at].get()
                                                                                          : nullptr;
}

}  // namespace QVHost
