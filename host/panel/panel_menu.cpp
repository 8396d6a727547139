#include "host/panel/panel_menu.h"

#include <algorithm>
#include <functional>

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
    {PanelCommand::Guide, PanelText::Guide, L"\tF1"},
    {PanelCommand::Exit, PanelText::Exit, L"\tAlt+F4"},
};

constexpr ACCEL kOwnKeys[] = {
    {FVIRTKEY | FCONTROL, 'O', PanelCommand::OpenFolder}, {FVIRTKEY | FALT, VK_UP, PanelCommand::Up},
    {FVIRTKEY | FALT, VK_LEFT, PanelCommand::Back},       {FVIRTKEY, VK_F5, PanelCommand::Refresh},
    {FVIRTKEY | FCONTROL, 'L', PanelCommand::Address},    {FVIRTKEY | FALT, 'D', PanelCommand::Address},
    {FVIRTKEY, VK_F6, PanelCommand::SwitchPane},
};

WORD MenuCommandOf(const MenuModel& model, const MenuModel::Command* command) {
    const auto& commands = model.Commands();
    const auto at = std::ranges::find(commands, command, [](const auto& each) { return each.get(); });
    return static_cast<WORD>(PanelCommand::FirstOfExtensions + (at - commands.begin()));
}

/// A shortcut as the user's keyboard names its keys.
std::wstring InUsersWords(std::wstring shortcut, LanguageTexts& texts) {
    constexpr std::pair<std::wstring_view, PanelText> kKeys[] = {{L"Ctrl", PanelText::KeyCtrl},
                                                                 {L"Shift", PanelText::KeyShift},
                                                                 {L"Up", PanelText::KeyUp},
                                                                 {L"Left", PanelText::KeyLeft}};
    for (const auto& [key, text] : kKeys)
        if (const size_t at = shortcut.find(key); at != std::wstring::npos)
            shortcut.replace(at, key.size(), TextOf(texts, text));
    return shortcut;
}

UniqueMenu MakeOwnMenu(LanguageTexts& texts) {
    UniqueMenu menu(CreatePopupMenu());
    for (const OwnEntry& entry : kOwnEntries)
        if (entry.command == 0)
            AppendMenuW(menu.Get(), MF_SEPARATOR, 0, nullptr);
        else
            AppendMenuW(menu.Get(), MF_STRING, entry.command,
                        (TextOf(texts, entry.text) + InUsersWords(entry.shortcut, texts)).c_str());
    return menu;
}

void Append(HMENU parent, UniqueMenu menu, const std::wstring& text) {
    if (AppendMenuW(parent, MF_POPUP, reinterpret_cast<UINT_PTR>(menu.Get()), text.c_str())) menu.Release();
}

using Choice = std::function<bool(const MenuModel::Command&)>;

bool HasChosen(const MenuModel::Menu& menu, const Choice& isChosen) {
    return std::ranges::any_of(menu.entries, [&](const MenuModel::Menu::Entry& entry) {
        return entry.menu ? HasChosen(*entry.menu, isChosen) : isChosen(*entry.command);
    });
}

/// Adds the entries for which there is something chosen. An extension cannot make a ring of menus: a submenu is added
/// as it is made. So this ends.
void AddEntries(HMENU menu, const MenuModel& model, LanguageTexts& words,
                const std::vector<MenuModel::Menu::Entry>& entries, const Choice& isChosen,
                std::set<std::wstring> usedKeys = {}) {
    std::vector<const MenuModel::Menu::Entry*> chosen;
    std::vector<std::wstring> texts;
    for (const MenuModel::Menu::Entry& entry : entries) {
        if (entry.menu ? !HasChosen(*entry.menu, isChosen) : !isChosen(*entry.command)) continue;
        chosen.push_back(&entry);
        texts.push_back(OnOneLine(entry.menu ? entry.menu->text : entry.command->text));
    }
    GiveAccessKeys(texts, std::move(usedKeys));
    for (size_t at = 0; at < texts.size(); ++at) {
        const MenuModel::Menu::Entry& entry = *chosen[at];
        if (entry.menu) {
            UniqueMenu below(CreatePopupMenu());
            AddEntries(below.Get(), model, words, entry.menu->entries, isChosen);
            Append(menu, std::move(below), texts[at]);
            continue;
        }
        const std::wstring shortcut = InUsersWords(ShortcutText(entry.command->shortcut), words);
        if (!shortcut.empty()) texts[at].append(1, L'\t').append(shortcut);
        AppendMenuW(menu, MF_STRING, MenuCommandOf(model, entry.command), texts[at].c_str());
    }
}

/// One of the panel's own. Its letter is added to `keys`.
void AddOwn(HMENU menu, LanguageTexts& texts, WORD command, PanelText text, std::set<std::wstring>& keys,
            bool isEnabled = true) {
    const std::wstring shown = TextOf(texts, text);
    if (const size_t mark = shown.find(L'&'); mark != std::wstring::npos)
        keys.insert(Win32::ToUpperCase(shown.substr(mark + 1, 1)));
    AppendMenuW(menu, MF_STRING | (isEnabled ? MF_ENABLED : MF_GRAYED), command, shown.c_str());
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
    for (size_t at = 0; at < model.Roots().size(); ++at) {
        UniqueMenu menu(CreatePopupMenu());
        AddEntries(menu.Get(), model, texts, model.Roots()[at]->entries,
                   [](const MenuModel::Command&) { return true; });
        Append(bar.Get(), std::move(menu), titles[at + 1]);
    }
    return bar;
}

bool Fits(uint32_t command, const SelectionKind& selected) {
    constexpr uint32_t kFirstOnSelection = 30000;
    constexpr uint32_t kFirstOnContent = 30100;
    constexpr uint32_t kEndOfContent = 30300;
    const bool needsFiles = command >= kFirstOnContent && command < kEndOfContent;
    return command >= kFirstOnSelection && (selected.files > 0 || (selected.folders > 0 && !needsFiles));
}

UniqueMenu MakeContextMenu(const MenuModel& model, LanguageTexts& texts, const SelectionKind& selected) {
    UniqueMenu menu(CreatePopupMenu());
    std::set<std::wstring> keys;
    const bool isSelected = selected.files + selected.folders > 0;
    if (selected.folders == 1 && selected.files == 0)
        AddOwn(menu.Get(), texts, PanelCommand::OpenFocused, PanelText::Open, keys);
    if (isSelected) AddOwn(menu.Get(), texts, PanelCommand::CopyPaths, PanelText::CopyPaths, keys);
    AddOwn(menu.Get(), texts, PanelCommand::SelectAll, PanelText::SelectAll, keys);
    AddOwn(menu.Get(), texts, PanelCommand::Refresh, PanelText::Refresh, keys);
    std::vector<MenuModel::Menu::Entry> entries;
    for (const MenuModel::Menu* root : model.Roots())
        entries.insert(entries.end(), root->entries.begin(), root->entries.end());
    if (isSelected) AppendMenuW(menu.Get(), MF_SEPARATOR, 0, nullptr);
    AddEntries(
        menu.Get(), model, texts, entries,
        [&](const MenuModel::Command& command) { return Fits(command.id, selected); }, std::move(keys));
    return menu;
}

UniqueMenu MakeLogMenu(LanguageTexts& texts, bool hasLines, bool namesFile) {
    UniqueMenu menu(CreatePopupMenu());
    std::set<std::wstring> keys;
    AddOwn(menu.Get(), texts, PanelCommand::GoToFile, PanelText::GoToFile, keys, namesFile);
    AppendMenuW(menu.Get(), MF_SEPARATOR, 0, nullptr);
    AddOwn(menu.Get(), texts, PanelCommand::CopyLog, PanelText::CopyLog, keys, hasLines);
    AddOwn(menu.Get(), texts, PanelCommand::SelectLog, PanelText::SelectAll, keys, hasLines);
    AddOwn(menu.Get(), texts, PanelCommand::ClearLog, PanelText::ClearLog, keys, hasLines);
    return menu;
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
