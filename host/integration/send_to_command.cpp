#include "host/app/subcommands.h"

#include <algorithm>
#include <optional>

#include "host/app/host_error.h"
#include "host/app/host_text.h"
#include "host/app/session.h"
#include "host/app/unix_paths.h"
#include "host/panel/panel_texts.h"
#include "win32/files.h"
#include "win32/folder.h"
#include "win32/path.h"
#include "win32/shortcut.h"

#include <shlobj.h>

namespace QVHost {
namespace {

/// Commands by the numbers that the guide gives them. The shell puts the selected paths after the arguments.
constexpr struct {
    PanelText name;
    const wchar_t* arguments;
} kEntries[] = {
    {PanelText::SendToRename, L"command --no-console 31000 --"},
    {PanelText::SendToFind, L"command --no-console 30151 --"},
    {PanelText::SendToSort, L"command --no-console 30150 --"},
    {PanelText::SendToPanel, L"panel --no-console --"},
};

/// @throws HostError
std::wstring SendToFolder() {
    wchar_t* raw = nullptr;
    const HRESULT result = SHGetKnownFolderPath(FOLDERID_SendTo, KF_FLAG_CREATE, nullptr, &raw);
    std::wstring folder = TextOrEmpty(raw);
    CoTaskMemFree(raw);
    if (FAILED(result) || folder.empty()) throw HostError(L"this user has no folder for the menu \"Send to\"");
    return folder;
}

/// What an option that was given adds to a shortcut's arguments. A quoted text may not end in a backslash.
std::wstring OptionText(const wchar_t* option, const std::wstring& path) {
    if (path.empty()) return {};
    return std::wstring(option).append(L" \"").append(Win32::WithoutSeparator(FullUserPath(path))).append(L"\" ");
}

std::wstring ArgumentsOf(const HostOptions& options, const wchar_t* arguments) {
    return OptionText(L"--language", options.language) + OptionText(L"--config", options.config) +
           OptionText(L"--library", options.library) + arguments;
}

/// True for a shortcut as this program makes them, with whatever options, here or in another folder (of an earlier
/// version, say). One of a person's own, even to this program, is none.
bool IsOurs(const Win32::Shortcut& shortcut, const std::wstring& program) {
    return EqualIgnoringCase(Win32::FileNameOf(shortcut.target), Win32::FileNameOf(program)) &&
           std::ranges::any_of(kEntries,
                               [&](const auto& entry) { return shortcut.arguments.ends_with(entry.arguments); });
}

class SendToMenu {
public:
    SendToMenu(const HostOptions& options, const std::wstring& program, Output& output)
        : m_options(options),
          m_program(FullUserPath(program)),
          m_output(output),
          m_folder(options.sendTo.folder.empty() ? SendToFolder() : FullUserPath(options.sendTo.folder)) {}

    bool Install(LanguageTexts& texts) {
        bool isDone = true;
        for (const auto& entry : kEntries)
            isDone = InstallOne(TextOf(texts, entry.name), ArgumentsOf(m_options, entry.arguments)) && isDone;
        return isDone;
    }

    bool Remove() {
        std::vector<std::wstring> names;
        if (const uint32_t error = Win32::ListFolder(m_folder, L"*.lnk", names))
            return Tell(L"failed", m_folder, error);
        bool isDone = true;
        for (const std::wstring& name : names) {
            const std::wstring file = Win32::JoinPath(m_folder, name);
            const std::optional<Win32::Shortcut> shortcut = Win32::ReadShortcut(file);
            if (!shortcut || !IsOurs(*shortcut, m_program)) continue;
            // Those of a program in another folder go with that program, or stay useless once it is gone.
            if (!EqualIgnoringCase(shortcut->target, m_program) && Win32::Exists(shortcut->target)) continue;
            const uint32_t error = Win32::RemoveFile(file);
            isDone = Tell(error == ERROR_SUCCESS ? L"removed" : L"failed", file, error) && isDone;
        }
        return isDone;
    }

private:
    bool InstallOne(const std::wstring& name, const std::wstring& arguments) {
        const std::wstring file = Win32::JoinPath(m_folder, name + L".lnk");
        const Win32::Shortcut wanted = {m_program, arguments,
                                        std::wstring(Win32::WithoutSeparator(Win32::FolderOf(m_program))), name};
        const std::optional<Win32::Shortcut> present = Win32::ReadShortcut(file);
        if (present == wanted) return Tell(L"there already", file, ERROR_SUCCESS);
        // Somebody's own file of that name, whatever it is, stays.
        const bool isOurs = present && IsOurs(*present, m_program);
        if (!isOurs && Win32::Exists(file)) return Tell(L"failed", file, ERROR_ALREADY_EXISTS);
        const uint32_t error = Win32::SaveShortcut(file, wanted);
        return Tell(error == ERROR_SUCCESS ? L"installed" : L"failed", file, error);
    }

    bool Tell(const wchar_t* word, const std::wstring& file, uint32_t error) {
        std::wstring line = std::wstring(word).append(L": ").append(file);
        if (error != ERROR_SUCCESS) line += L": " + DescribeError(error);
        m_output.Line(line);
        return error == ERROR_SUCCESS;
    }

    const HostOptions& m_options;
    std::wstring m_program;
    Output& m_output;
    std::wstring m_folder;
};

}  // namespace

int RunSendTo(const HostOptions& options, const HostEnvironment& environment, Output& output) {
    SendToMenu menu(options, environment.program, output);
    if (options.sendTo.removes) return menu.Remove() ? ExitStatus::Done : ExitStatus::Failed;
    LanguageTexts texts;
    ReadLanguage(texts, options, environment, output);
    return menu.Install(texts) ? ExitStatus::Done : ExitStatus::Failed;
}

}  // namespace QVHost
